#include "GLObjectCensus.h"

#include <glbinding/gl/gl.h>

#include <algorithm>

namespace Halvane::Quorvex {

using namespace gl;

namespace {

// How many names in 1..max(fresh, kNamesAlwaysScanned) `isObject` accepts.
template <typename IsObject>
long CountNames(GLuint fresh, IsObject isObject)
{
    const GLuint last = std::max<GLuint>(fresh, GLObjectCensus::kNamesAlwaysScanned);
    long count = 0;
    for (GLuint name = 1; name <= last; ++name) {
        if (isObject(name) == GL_TRUE) {
            ++count;
        }
    }
    return count;
}

// The name that glGen* would hand out next, given back at once. A name that
// was generated but never bound is no object to glIs*, so it counts nowhere.
template <typename Generate, typename Delete>
GLuint FreshName(Generate generate, Delete remove)
{
    GLuint name = 0;
    generate(1, &name);
    remove(1, &name);
    return name;
}

}  // namespace

void GLObjectCensus::take(QuorvexLiveObjects& objects)
{
    objects.mTextures = CountNames(FreshName(glGenTextures, glDeleteTextures), glIsTexture);
    objects.mRenderbuffers = CountNames(FreshName(glGenRenderbuffers, glDeleteRenderbuffers), glIsRenderbuffer);
    objects.mBuffers = CountNames(FreshName(glGenBuffers, glDeleteBuffers), glIsBuffer);
    objects.mFramebuffers = CountNames(FreshName(glGenFramebuffers, glDeleteFramebuffers), glIsFramebuffer);
    objects.mVertexArrays = CountNames(FreshName(glGenVertexArrays, glDeleteVertexArrays), glIsVertexArray);

    // Programs and shaders share one namespace.
    const GLuint freshProgram = glCreateProgram();
    glDeleteProgram(freshProgram);
    objects.mPrograms = CountNames(freshProgram, glIsProgram);
    objects.mShaders = CountNames(freshProgram, glIsShader);
}

}  // namespace Halvane::Quorvex
