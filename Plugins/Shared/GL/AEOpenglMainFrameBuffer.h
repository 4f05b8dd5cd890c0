#pragma once

#include "GL/GLObject.h"
#include "GL/GLPlatform.h"
#include "Math/Vec2.h"

#include <glbinding/gl/enum.h>
#include <glbinding/gl/types.h>

#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace Halvane::Quorvex {

class ScreenRender;

// The off-screen target of a frame, one in the process: the final colour
// renderbuffer at the frame's size, the stack of open drawing levels, and the
// framebuffers they are bound to.
//
// Renderbuffers and textures serve the whole share group. Framebuffers do
// not, so each context that draws gets framebuffers of its own, made at its
// first use of the frame buffer; a frame may therefore run on any thread
// whose render context is current. Nothing here is locked: one frame at a
// time.
//
// The colour storage of a frame (the levels, the resolve texture and the
// final renderbuffer) has one sized format, chosen by prepare. Levels of a
// multisampled frame get the smaller of 8 and the most samples the driver
// allows for that format; the effect's frames ask for single-sample levels,
// since their one quad covers every pixel. The frame's targets live while
// size and format stay the same; the renderbuffers and the
// resolve texture serve every context of the share group, one frame at a
// time. A frame larger than the GL limits gets no storage at all;
// UploadTexture reports such a frame.
class AEOpenglMainFrameBuffer {
public:
    static AEOpenglMainFrameBuffer* mainFrameBuffer();

    // prepare(width, height, multisample, GL_RGBA8).
    void prepare(long width, long height, bool multisample);
    // Sizes the targets. With the size and the format unchanged it does
    // nothing, the multisample flag included (the flag changes only with
    // them); otherwise it frees the old targets and makes new ones in the
    // current context.
    void prepare(long width, long height, bool multisample, gl::GLenum colourFormat);
    // Frees the final renderbuffer, the levels and the current context's
    // framebuffers; the other contexts' framebuffers are remade at their next
    // use. The size is kept.
    void unprepare();
    // Global set-down, with the shared data context current: frees what
    // unprepare frees and the final pass, and forgets every context's
    // framebuffers (they end with their contexts). The instance stays usable:
    // the next prepare starts from nothing and the final pass is made again
    // at its next draw.
    void destory();
    // Deletes every level, its stencil buffer included.
    void clearStack();

    // The low 16 bits of the frame's size.
    unsigned short width() const;
    unsigned short height() const;

    // Empty textures of the frame's size, transparent black, linear or
    // nearest as asked, clamped to the edge, unbound; the caller owns them.
    // createRenderTexture has the frame's colour format, createFloatRenderTexture
    // GL_RGBA32F.
    gl::GLuint createRenderTexture(bool mipmap);
    gl::GLuint createFloatRenderTexture(bool linear, bool mipmap);
    // The same at `size`, each component truncated to whole pixels.
    gl::GLuint createRenderTexture(const Vec2& size, bool mipmap);
    gl::GLuint createFloatRenderTexture(const Vec2& size, bool linear, bool mipmap);

    // Opens a frame: one level, cleared to transparent black, the viewport
    // set to the frame. The level's storage is the last frame's while the
    // targets stay as prepared.
    void beginDrawing();
    // Closes the frame: resolves its level into the frame's resolve texture
    // and runs the final pass with the 16-bit multiplier into the final
    // renderbuffer, which stays bound for reading. The level's storage and
    // the resolve texture are kept for the next frame until the targets
    // change. Without an open level it does nothing.
    void endDrawing(float multiplier);

    // Opens a level with a new colour renderbuffer (and a stencil
    // renderbuffer if asked), cleared to transparent black. The first flag
    // has no effect.
    void pushRenderContext(bool unused, bool stencil);
    // Closes the top level and returns its picture in a new texture that the
    // caller owns, binding the level below again; 0 with no level open.
    gl::GLuint popRenderContext();
    // Draws straight into level 0 of `texture` through a framebuffer of its
    // own, cleared to transparent black; the viewport is left alone.
    void pushNormalRenderContext(gl::GLuint texture);
    // The same into mip level `level` of `texture`, ending with the viewport
    // set to `size`, each component truncated to whole pixels.
    void pushNormalRenderContext(gl::GLuint texture, const Vec2& size, int level);
    // Undoes a normal push (its framebuffer must still be bound) and brings
    // the top level and the frame's viewport back.
    void popNormalRenderContext();

    // A GL_RGBA32F texture of the frame's size, linear and clamped, for the
    // host's pixels: kept from frame to frame like the other targets, and
    // owned by the frame buffer. Made at its first use after prepare.
    gl::GLuint inputTexture();

    // The format prepare chose for the frame's colour storage.
    gl::GLenum colourFormat() const { return mColourFormat; }
    // The samples a multisampled level of the frame's format gets.
    gl::GLsizei sampleCount();
    gl::GLuint renderBuffer() const { return mRenderBuffer.name(); }
    // The open levels' colour renderbuffers, bottom first, and the stencil
    // renderbuffers of those opened with one, by their colour renderbuffer.
    std::vector<std::uint32_t> renderBufferStack() const;
    std::map<std::uint32_t, std::uint32_t> stencilBuffers() const;

private:
    // The framebuffers of one context. Those made before the targets last
    // changed are of an older generation and are remade at their next use.
    struct ContextFrameBuffers {
        GLFramebuffer mResolveFrameBuffer;
        GLFramebuffer mFrameBuffer;
        GLFramebuffer mMultisampleFrameBuffer;
        std::uint64_t mGeneration = 0;

        bool owns(gl::GLuint name) const;
        // Forgets the names without deleting them, for a context that is not
        // current: its framebuffers end with it.
        void abandon();
    };

    // One open level: its colour storage, and its stencil storage if asked.
    struct Level {
        GLRenderbuffer mColour;
        GLRenderbuffer mStencil;
    };

    AEOpenglMainFrameBuffer();
    ~AEOpenglMainFrameBuffer();

    // The current context's framebuffers, made at its first use.
    ContextFrameBuffers& contextFrameBuffers();
    // Drops the current context's framebuffers and abandons the others'.
    void forgetFrameBuffers(bool allContexts);
    // The framebuffer that the levels are bound to in the current context.
    gl::GLuint levelFrameBuffer();
    void attachTopLevel();
    // Pushes a level on `storage` (a level's colour renderbuffer of the
    // prepared kind), or on new storage when it is empty; bound and cleared.
    void openLevel(GLRenderbuffer storage, bool stencil);
    // Copies the top level into `texture` (of the frame's size and format):
    // a blit that resolves the samples, or a copy for a single-sample level.
    void resolveTopLevel(gl::GLuint texture);
    // A framebuffer of its own on mip level `level` of `texture`, bound and
    // cleared.
    void bindNormalFrameBuffer(gl::GLuint texture, int level);
    // Colour or stencil storage for a level, multisampled if the frame is.
    void levelStorage(gl::GLenum format);
    // A texture of the frame's size, unbound; its texels are transparent
    // black if asked for, undefined otherwise.
    GLTexture createTexture(gl::GLenum internalFormat, gl::GLsizei width, gl::GLsizei height,
                             gl::GLenum minFilter, gl::GLenum magFilter, bool transparentBlack);
    // The filters of a float texture by its two flags.
    static std::pair<gl::GLenum, gl::GLenum> floatFilters(bool linear, bool mipmap);
    ScreenRender& screenRender();

    std::map<GLPlatform::ContextId, ContextFrameBuffers> mContextFrameBuffers;
    std::uint64_t mGeneration = 1;
    GLRenderbuffer mRenderBuffer;
    bool mMultisample = true;
    std::uint32_t mWidth = 0;
    std::uint32_t mHeight = 0;
    gl::GLenum mColourFormat = gl::GL_RGBA8;
    // Whether the frame's size is within the GL limits, so that its storage
    // can be made.
    bool mStorageFits = true;
    std::vector<Level> mLevels;
    // Kept between frames while the targets stay as prepared: the storage of
    // the frame's level, the texture that it is resolved into, and the input.
    GLRenderbuffer mSpareLevel;
    GLTexture mResolveTexture;
    GLTexture mInputTexture;
    // Framebuffers of normal pushes, until their pop.
    std::vector<GLFramebuffer> mNormalFrameBuffers;
    std::map<gl::GLenum, gl::GLsizei> mSampleCounts;
    std::unique_ptr<ScreenRender> mScreenRender;
};

}  // namespace Halvane::Quorvex
