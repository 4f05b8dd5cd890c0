#include "GL/AEOpenGLContext.h"

#include "HostTypes.h"

#include <glbinding/Binding.h>
#include <glbinding/ContextInfo.h>
#include <glbinding/Meta.h>
#include <glbinding/Version.h>
#include <glbinding/gl/gl.h>

#include <iostream>

namespace Halvane::Quorvex {

namespace {

[[noreturn]] void ReportContextFailure(const char* what, const GLPlatform::Error& error)
{
    std::cerr << "Quorvex: " << what << ": " << error.what() << std::endl;
    throw static_cast<int>(PF_Err_BAD_CALLBACK_PARAM);
}

void MakeCurrentOrThrow(const GLPlatform::Context* context)
{
    try {
        GLPlatform::makeCurrent(context);
    } catch (const GLPlatform::Error& error) {
        ReportContextFailure("cannot make an OpenGL context current", error);
    }
}

// glbinding cannot see an EGL context (it asks GLX), so the context is named
// to it by its id. A handle glbinding already knows is not bound again by
// initialize, hence the separate useContext: without it a second thread's
// first GL call fails an assertion inside glbinding.
void BindCurrentContextInGlbinding()
{
    const auto handle = static_cast<glbinding::ContextHandle>(GLPlatform::currentContextId());
    glbinding::Binding::initialize(handle, true, false);
    glbinding::Binding::useContext(handle);
}

}  // namespace

AEOpenGLContext::AEOpenGLContext(AEOpenGLContext* shareContext)
{
    mNSContext = createNSContext(shareContext ? shareContext->mNSContext.get() : nullptr, mCGLContext);
    MakeCurrentOrThrow(mNSContext.get());
    InitializeOpenGLBindings();
    mExtensions = glbinding::ContextInfo::extensions(nullptr);
}

AEOpenGLContext::~AEOpenGLContext()
{
    mNSContext.reset();
}

void AEOpenGLContext::makeContextCurrent()
{
    if (mNSContext) {
        MakeCurrentOrThrow(mNSContext.get());
    }
    makeCurrentFlush(mCGLContext);
    BindCurrentContextInGlbinding();
}

GLPlatform::OwnedContext AEOpenGLContext::createNSContext(const GLPlatform::Context* shareContext,
                                                          GLPlatform::ContextHandle& cglContext)
{
    try {
        GLPlatform::OwnedContext context = GLPlatform::createContext(shareContext);
        cglContext = GLPlatform::handle(context.get());
        return context;
    } catch (const GLPlatform::Error& error) {
        ReportContextFailure("cannot create an OpenGL context", error);
    }
}

void AEOpenGLContext::makeCurrentFlush(GLPlatform::ContextHandle handle)
{
    if (GLPlatform::currentHandle() == handle) {
        return;
    }
    flushUnlessFramebufferIncomplete();
    try {
        GLPlatform::makeCurrent(handle);
    } catch (const GLPlatform::Error& error) {
        ReportContextFailure("cannot make an OpenGL context current", error);
    }
}

void AEOpenGLContext::flushUnlessFramebufferIncomplete()
{
    using namespace gl;
    // With nothing current there is nothing to flush.
    if (GLPlatform::currentHandle() == nullptr) {
        return;
    }
    GLint drawFramebuffer = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &drawFramebuffer);
    if (drawFramebuffer == 0 || glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE) {
        glFlush();
    }
}

void AEOpenGLContext::InitializeOpenGLBindings()
{
    BindCurrentContextInGlbinding();
    std::cout << std::endl;
    std::cout << "OpenGL Version:  " << glbinding::ContextInfo::version().toString() << std::endl;
    std::cout << "OpenGL Vendor:   " << glbinding::ContextInfo::vendor() << std::endl;
    std::cout << "OpenGL Renderer: " << glbinding::ContextInfo::renderer() << std::endl;
    std::cout << "OpenGL Revision: " << glbinding::Meta::glRevision() << " (gl.xml)" << std::endl;
    std::cout << std::endl;
}

}  // namespace Halvane::Quorvex
