#include "GL/GLObject.h"

#include <glbinding/gl/gl.h>

namespace Halvane::Quorvex {

using namespace gl;

GLuint GLObjectNames::generate(GLObjectKind kind)
{
    GLuint name = 0;
    switch (kind) {
    case GLObjectKind::Texture:
        glGenTextures(1, &name);
        break;
    case GLObjectKind::Renderbuffer:
        glGenRenderbuffers(1, &name);
        break;
    case GLObjectKind::Framebuffer:
        glGenFramebuffers(1, &name);
        break;
    case GLObjectKind::Buffer:
        glGenBuffers(1, &name);
        break;
    case GLObjectKind::VertexArray:
        glGenVertexArrays(1, &name);
        break;
    case GLObjectKind::Program:
        name = glCreateProgram();
        break;
    case GLObjectKind::Shader:
        // A shader needs its stage: made with glCreateShader and adopted.
        break;
    }
    return name;
}

void GLObjectNames::destroy(GLObjectKind kind, GLuint name) noexcept
{
    switch (kind) {
    case GLObjectKind::Texture:
        glDeleteTextures(1, &name);
        break;
    case GLObjectKind::Renderbuffer:
        glDeleteRenderbuffers(1, &name);
        break;
    case GLObjectKind::Framebuffer:
        glDeleteFramebuffers(1, &name);
        break;
    case GLObjectKind::Buffer:
        glDeleteBuffers(1, &name);
        break;
    case GLObjectKind::VertexArray:
        glDeleteVertexArrays(1, &name);
        break;
    case GLObjectKind::Program:
        glDeleteProgram(name);
        break;
    case GLObjectKind::Shader:
        glDeleteShader(name);
        break;
    }
}

}  // namespace Halvane::Quorvex
