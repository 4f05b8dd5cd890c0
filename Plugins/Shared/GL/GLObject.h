#pragma once

#include <glbinding/gl/types.h>

#include <utility>

namespace Halvane::Quorvex {

// The kinds of GL object that GLObject owns, each made and deleted by its own
// pair of GL calls.
enum class GLObjectKind { Texture, Renderbuffer, Framebuffer, Buffer, VertexArray, Program, Shader };

namespace GLObjectNames {
// glGen* (glCreateProgram for a program); shaders are made with their stage
// and adopted.
gl::GLuint generate(GLObjectKind kind);
void destroy(GLObjectKind kind, gl::GLuint name) noexcept;
}  // namespace GLObjectNames

// The owner of one GL name: deletes it when it goes, unless release() has
// handed it over. Name 0 means empty, and an empty owner makes no GL call.
// Move-only; a moved-from owner is empty. Deleting needs a current context
// that can see the name (of the share group, or the very context for
// framebuffers and vertex arrays).
template <GLObjectKind Kind>
class GLObject {
public:
    GLObject() noexcept = default;
    ~GLObject() { reset(); }

    // A new name of this kind in the current context.
    static GLObject generate()
    {
        static_assert(Kind != GLObjectKind::Shader, "a shader is made for its stage by glCreateShader, then adopted");
        return GLObject(GLObjectNames::generate(Kind));
    }
    // Takes ownership of a name made elsewhere (0 gives an empty owner).
    static GLObject adopt(gl::GLuint name) noexcept { return GLObject(name); }

    GLObject(GLObject&& other) noexcept : mName(std::exchange(other.mName, 0)) {}
    GLObject& operator=(GLObject&& other) noexcept
    {
        std::swap(mName, other.mName);
        other.reset();
        return *this;
    }
    GLObject(const GLObject&) = delete;
    GLObject& operator=(const GLObject&) = delete;

    gl::GLuint name() const noexcept { return mName; }
    explicit operator bool() const noexcept { return mName != 0; }

    // Hands the name over without deleting it; the owner is empty after.
    gl::GLuint release() noexcept { return std::exchange(mName, 0); }
    // Deletes the name now, if any.
    void reset() noexcept
    {
        if (mName != 0) {
            GLObjectNames::destroy(Kind, std::exchange(mName, 0));
        }
    }

private:
    explicit GLObject(gl::GLuint name) noexcept : mName(name) {}

    gl::GLuint mName = 0;
};

using GLTexture = GLObject<GLObjectKind::Texture>;
using GLRenderbuffer = GLObject<GLObjectKind::Renderbuffer>;
using GLFramebuffer = GLObject<GLObjectKind::Framebuffer>;
using GLBuffer = GLObject<GLObjectKind::Buffer>;
using GLVertexArray = GLObject<GLObjectKind::VertexArray>;
using GLProgram = GLObject<GLObjectKind::Program>;
using GLShader = GLObject<GLObjectKind::Shader>;

}  // namespace Halvane::Quorvex
