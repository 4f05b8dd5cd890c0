#include "GL/AEOpenglMainFrameBuffer.h"

#include "GL/AEOpenGLUtilities.h"
#include "GL/FrameHooks.h"
#include "GL/ScreenRender.h"

#include <glbinding/gl/gl.h>

#include <algorithm>
#include <vector>

namespace Halvane::Quorvex {

using namespace gl;

namespace {

constexpr GLsizei kMostSamples = 8;

// A side of the frame's own textures: none while the frame is beyond the GL
// limits, which UploadTexture then reports.
GLsizei FrameSize(std::uint32_t size, bool fits)
{
    return fits ? static_cast<GLsizei>(size) : 0;
}

}  // namespace

AEOpenglMainFrameBuffer::AEOpenglMainFrameBuffer() : mScreenRender(std::make_unique<ScreenRender>())
{
}

AEOpenglMainFrameBuffer::~AEOpenglMainFrameBuffer() = default;

bool AEOpenglMainFrameBuffer::ContextFrameBuffers::owns(GLuint name) const
{
    return name != 0 && (name == mFrameBuffer.name() || name == mMultisampleFrameBuffer.name() ||
                         name == mResolveFrameBuffer.name());
}

void AEOpenglMainFrameBuffer::ContextFrameBuffers::abandon()
{
    mResolveFrameBuffer.release();
    mFrameBuffer.release();
    mMultisampleFrameBuffer.release();
}

AEOpenglMainFrameBuffer* AEOpenglMainFrameBuffer::mainFrameBuffer()
{
    static AEOpenglMainFrameBuffer* const kSharedMainFrameBuffer = new AEOpenglMainFrameBuffer();
    return kSharedMainFrameBuffer;
}

void AEOpenglMainFrameBuffer::prepare(long width, long height, bool multisample)
{
    prepare(width, height, multisample, GL_RGBA8);
}

void AEOpenglMainFrameBuffer::prepare(long width, long height, bool multisample, GLenum colourFormat)
{
    if (width == static_cast<long>(mWidth) && height == static_cast<long>(mHeight) &&
        colourFormat == mColourFormat) {
        return;
    }
    unprepare();
    mWidth = static_cast<std::uint32_t>(width);
    mHeight = static_cast<std::uint32_t>(height);
    mMultisample = multisample;
    mColourFormat = colourFormat;
    mStorageFits = AEOpenGLUtilities::FrameSizeProblem(width, height).empty();

    contextFrameBuffers();
    mRenderBuffer = GLRenderbuffer::generate();
    glBindRenderbuffer(GL_RENDERBUFFER, mRenderBuffer.name());
    if (mStorageFits) {
        glRenderbufferStorage(GL_RENDERBUFFER, mColourFormat, static_cast<GLsizei>(mWidth),
                              static_cast<GLsizei>(mHeight));
    }
}

void AEOpenglMainFrameBuffer::unprepare()
{
    forgetFrameBuffers(false);
    ++mGeneration;
    mRenderBuffer.reset();
    mSpareLevel.reset();
    mResolveTexture.reset();
    mInputTexture.reset();
    clearStack();
}

GLuint AEOpenglMainFrameBuffer::inputTexture()
{
    if (!mInputTexture) {
        // Every frame overwrites every texel, so it starts undefined.
        mInputTexture = createTexture(GL_RGBA32F, FrameSize(mWidth, mStorageFits), FrameSize(mHeight, mStorageFits),
                                      GL_LINEAR, GL_LINEAR, false);
    }
    return mInputTexture.name();
}

void AEOpenglMainFrameBuffer::forgetFrameBuffers(bool allContexts)
{
    // Other contexts' framebuffers cannot be deleted from here. Kept, a new
    // generation has them remade at their next use; forgotten, they end with
    // their contexts.
    const GLPlatform::ContextId current = GLPlatform::currentContextId();
    for (auto frameBuffers = mContextFrameBuffers.begin(); frameBuffers != mContextFrameBuffers.end();) {
        if (frameBuffers->first == current) {
            frameBuffers = mContextFrameBuffers.erase(frameBuffers);
        } else if (allContexts) {
            frameBuffers->second.abandon();
            frameBuffers = mContextFrameBuffers.erase(frameBuffers);
        } else {
            ++frameBuffers;
        }
    }
}

void AEOpenglMainFrameBuffer::destory()
{
    unprepare();
    mScreenRender.reset();
    forgetFrameBuffers(true);
    mWidth = 0;
    mHeight = 0;
}

void AEOpenglMainFrameBuffer::clearStack()
{
    mLevels.clear();
}

std::vector<std::uint32_t> AEOpenglMainFrameBuffer::renderBufferStack() const
{
    std::vector<std::uint32_t> names;
    for (const Level& level : mLevels) {
        names.push_back(level.mColour.name());
    }
    return names;
}

std::map<std::uint32_t, std::uint32_t> AEOpenglMainFrameBuffer::stencilBuffers() const
{
    std::map<std::uint32_t, std::uint32_t> names;
    for (const Level& level : mLevels) {
        if (level.mStencil) {
            names.emplace(level.mColour.name(), level.mStencil.name());
        }
    }
    return names;
}

unsigned short AEOpenglMainFrameBuffer::width() const
{
    return static_cast<unsigned short>(mWidth & 0xFFFFu);
}

unsigned short AEOpenglMainFrameBuffer::height() const
{
    return static_cast<unsigned short>(mHeight & 0xFFFFu);
}

GLuint AEOpenglMainFrameBuffer::createRenderTexture(bool mipmap)
{
    return createTexture(mColourFormat, FrameSize(mWidth, mStorageFits), FrameSize(mHeight, mStorageFits),
                         mipmap ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR, GL_LINEAR, true)
        .release();
}

GLuint AEOpenglMainFrameBuffer::createFloatRenderTexture(bool linear, bool mipmap)
{
    const auto [minFilter, magFilter] = floatFilters(linear, mipmap);
    return createTexture(GL_RGBA32F, FrameSize(mWidth, mStorageFits), FrameSize(mHeight, mStorageFits),
                         minFilter, magFilter, true)
        .release();
}

GLuint AEOpenglMainFrameBuffer::createRenderTexture(const Vec2& size, bool mipmap)
{
    return createTexture(mColourFormat, static_cast<GLsizei>(size.x), static_cast<GLsizei>(size.y),
                         mipmap ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR, GL_LINEAR, true)
        .release();
}

GLuint AEOpenglMainFrameBuffer::createFloatRenderTexture(const Vec2& size, bool linear, bool mipmap)
{
    const auto [minFilter, magFilter] = floatFilters(linear, mipmap);
    return createTexture(GL_RGBA32F, static_cast<GLsizei>(size.x), static_cast<GLsizei>(size.y),
                         minFilter, magFilter, true)
        .release();
}

std::pair<GLenum, GLenum> AEOpenglMainFrameBuffer::floatFilters(bool linear, bool mipmap)
{
    if (mipmap) {
        return {linear ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR_MIPMAP_NEAREST, GL_LINEAR};
    }
    const GLenum filter = linear ? GL_LINEAR : GL_NEAREST;
    return {filter, filter};
}

void AEOpenglMainFrameBuffer::beginDrawing()
{
    glDisable(GL_BLEND);
    if (mMultisample) {
        glEnable(GL_MULTISAMPLE);
    }
    openLevel(std::move(mSpareLevel), false);
    glDrawBuffer(GL_COLOR_ATTACHMENT0);
    glViewport(0, 0, static_cast<GLsizei>(mWidth), static_cast<GLsizei>(mHeight));
    NotifyFrameEvent(FrameEvent::TargetsReady);
}

void AEOpenglMainFrameBuffer::endDrawing(float multiplier)
{
    if (mLevels.empty()) {
        return;
    }
    NotifyFrameEvent(FrameEvent::EffectDrawn);
    // The final pass maps texels to pixels one to one. A linear filter there
    // would mix a sliver of each neighbour into every pixel, and dividing by
    // an alpha that ought to be 0 would blow the sliver up into the
    // neighbour's colour. The resolve covers every texel, so the texture is
    // never cleared.
    if (!mResolveTexture) {
        mResolveTexture = createTexture(mColourFormat, FrameSize(mWidth, mStorageFits),
                                        FrameSize(mHeight, mStorageFits), GL_NEAREST, GL_NEAREST, false);
    }
    resolveTopLevel(mResolveTexture.name());
    // The level's storage serves the next frame of this size and format.
    Level closed = std::move(mLevels.back());
    mLevels.pop_back();
    if (!closed.mStencil) {
        mSpareLevel = std::move(closed.mColour);
    }
    if (!mLevels.empty()) {
        attachTopLevel();
    }
    NotifyFrameEvent(FrameEvent::LevelResolved);
    glBindFramebuffer(GL_FRAMEBUFFER, contextFrameBuffers().mFrameBuffer.name());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, mRenderBuffer.name());
    glDisable(GL_BLEND);
    glDisable(GL_MULTISAMPLE);
    glViewport(0, 0, static_cast<GLsizei>(mWidth), static_cast<GLsizei>(mHeight));
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    screenRender().draw(mResolveTexture.name(), multiplier);
    NotifyFrameEvent(FrameEvent::FinalPassDrawn);
}

void AEOpenglMainFrameBuffer::pushRenderContext(bool /*unused*/, bool stencil)
{
    openLevel(GLRenderbuffer(), stencil);
}

void AEOpenglMainFrameBuffer::openLevel(GLRenderbuffer storage, bool stencil)
{
    const bool fresh = !storage;
    Level level{fresh ? GLRenderbuffer::generate() : std::move(storage), {}};
    glBindRenderbuffer(GL_RENDERBUFFER, level.mColour.name());
    if (fresh) {
        levelStorage(mColourFormat);
    }
    glBindFramebuffer(GL_FRAMEBUFFER, levelFrameBuffer());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, level.mColour.name());
    if (stencil) {
        level.mStencil = GLRenderbuffer::generate();
        glBindRenderbuffer(GL_RENDERBUFFER, level.mStencil.name());
        levelStorage(GL_STENCIL_INDEX8);
    }
    // A level below may have left its stencil buffer attached.
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_STENCIL_ATTACHMENT, GL_RENDERBUFFER, level.mStencil.name());
    mLevels.push_back(std::move(level));
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    glClear(GL_COLOR_BUFFER_BIT);
}

GLuint AEOpenglMainFrameBuffer::popRenderContext()
{
    if (mLevels.empty()) {
        return 0;
    }
    // The resolve covers every texel, so the texture need not be cleared
    // first; that would cost a frame-sized block of zeros each time.
    GLTexture texture = createTexture(mColourFormat, FrameSize(mWidth, mStorageFits),
                                      FrameSize(mHeight, mStorageFits), GL_LINEAR, GL_LINEAR, false);
    resolveTopLevel(texture.name());
    mLevels.pop_back();
    if (!mLevels.empty()) {
        attachTopLevel();
    }
    return texture.release();
}

void AEOpenglMainFrameBuffer::resolveTopLevel(GLuint texture)
{
    const GLsizei width = static_cast<GLsizei>(mWidth);
    const GLsizei height = static_cast<GLsizei>(mHeight);
    const ContextFrameBuffers& frameBuffers = contextFrameBuffers();
    if (mMultisample) {
        glBindFramebuffer(GL_READ_FRAMEBUFFER, frameBuffers.mMultisampleFrameBuffer.name());
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, frameBuffers.mResolveFrameBuffer.name());
        glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
        glBlitFramebuffer(0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
        // Detached, so that the texture's storage goes when its owner deletes it.
        glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 0, 0);
    } else {
        glBindFramebuffer(GL_READ_FRAMEBUFFER, frameBuffers.mFrameBuffer.name());
        glBindTexture(GL_TEXTURE_2D, texture);
        glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 0, width, height);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
}

void AEOpenglMainFrameBuffer::pushNormalRenderContext(GLuint texture)
{
    bindNormalFrameBuffer(texture, 0);
}

void AEOpenglMainFrameBuffer::pushNormalRenderContext(GLuint texture, const Vec2& size, int level)
{
    bindNormalFrameBuffer(texture, level);
    glViewport(0, 0, static_cast<GLsizei>(size.x), static_cast<GLsizei>(size.y));
}

void AEOpenglMainFrameBuffer::bindNormalFrameBuffer(GLuint texture, int level)
{
    mNormalFrameBuffers.push_back(GLFramebuffer::generate());
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, mNormalFrameBuffers.back().name());
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, level);
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    glClear(GL_COLOR_BUFFER_BIT);
}

void AEOpenglMainFrameBuffer::popNormalRenderContext()
{
    GLint bound = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &bound);
    const auto name = static_cast<GLuint>(bound);
    // Only the framebuffer of a normal push goes; without one bound there is
    // nothing to undo, and the frame's own framebuffers stay.
    const auto pushed = std::find_if(mNormalFrameBuffers.begin(), mNormalFrameBuffers.end(),
                                     [name](const GLFramebuffer& frameBuffer) { return frameBuffer.name() == name; });
    if (pushed != mNormalFrameBuffers.end()) {
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 0, 0);
    }
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    if (pushed != mNormalFrameBuffers.end()) {
        mNormalFrameBuffers.erase(pushed);
    }
    if (!mLevels.empty()) {
        attachTopLevel();
        const GLenum drawBuffer = GL_COLOR_ATTACHMENT0;
        glDrawBuffers(1, &drawBuffer);
        glViewport(0, 0, static_cast<GLsizei>(mWidth), static_cast<GLsizei>(mHeight));
    }
}

GLsizei AEOpenglMainFrameBuffer::sampleCount()
{
    const auto known = mSampleCounts.find(mColourFormat);
    if (known != mSampleCounts.end()) {
        return known->second;
    }
    // A format that the driver cannot multisample gets single-sample levels;
    // a driver that cannot say gets its overall limit.
    GLint counts = -1;
    GLint most = 0;
    glGetInternalformativ(GL_RENDERBUFFER, mColourFormat, GL_NUM_SAMPLE_COUNTS, 1, &counts);
    if (counts > 0) {
        glGetInternalformativ(GL_RENDERBUFFER, mColourFormat, GL_SAMPLES, 1, &most);
    } else if (counts < 0) {
        glGetIntegerv(GL_MAX_SAMPLES, &most);
    }
    const GLsizei count = std::clamp<GLsizei>(most, 0, kMostSamples);
    mSampleCounts.emplace(mColourFormat, count);
    return count;
}

AEOpenglMainFrameBuffer::ContextFrameBuffers& AEOpenglMainFrameBuffer::contextFrameBuffers()
{
    ContextFrameBuffers& frameBuffers = mContextFrameBuffers[GLPlatform::currentContextId()];
    if (frameBuffers.mFrameBuffer && frameBuffers.mGeneration == mGeneration) {
        return frameBuffers;
    }
    frameBuffers.mGeneration = mGeneration;
    frameBuffers.mFrameBuffer = GLFramebuffer::generate();
    frameBuffers.mResolveFrameBuffer = mMultisample ? GLFramebuffer::generate() : GLFramebuffer();
    frameBuffers.mMultisampleFrameBuffer = mMultisample ? GLFramebuffer::generate() : GLFramebuffer();
    return frameBuffers;
}

GLuint AEOpenglMainFrameBuffer::levelFrameBuffer()
{
    const ContextFrameBuffers& frameBuffers = contextFrameBuffers();
    return mMultisample ? frameBuffers.mMultisampleFrameBuffer.name() : frameBuffers.mFrameBuffer.name();
}

void AEOpenglMainFrameBuffer::attachTopLevel()
{
    const Level& top = mLevels.back();
    glBindRenderbuffer(GL_RENDERBUFFER, top.mColour.name());
    glBindFramebuffer(GL_FRAMEBUFFER, levelFrameBuffer());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, top.mColour.name());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_STENCIL_ATTACHMENT, GL_RENDERBUFFER, top.mStencil.name());
}

void AEOpenglMainFrameBuffer::levelStorage(GLenum format)
{
    if (!mStorageFits) {
        return;
    }
    const auto width = static_cast<GLsizei>(mWidth);
    const auto height = static_cast<GLsizei>(mHeight);
    if (mMultisample) {
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, sampleCount(), format, width, height);
    } else {
        glRenderbufferStorage(GL_RENDERBUFFER, format, width, height);
    }
}

GLTexture AEOpenglMainFrameBuffer::createTexture(GLenum internalFormat, GLsizei width, GLsizei height,
                                                 GLenum minFilter, GLenum magFilter, bool transparentBlack)
{
    GLTexture texture = GLTexture::generate();
    glBindTexture(GL_TEXTURE_2D, texture.name());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, minFilter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, magFilter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    if (width > 0 && height > 0) {
        const std::vector<unsigned char> zeros(
            transparentBlack ? static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4 : 0);
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(internalFormat), width, height, 0, GL_RGBA,
                     GL_UNSIGNED_BYTE, transparentBlack ? zeros.data() : nullptr);
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    return texture;
}

ScreenRender& AEOpenglMainFrameBuffer::screenRender()
{
    if (!mScreenRender) {
        mScreenRender = std::make_unique<ScreenRender>();
    }
    return *mScreenRender;
}

}  // namespace Halvane::Quorvex
