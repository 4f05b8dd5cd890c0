#pragma once

#include "GL/GLPlatform.h"

#include <glbinding/gl/extension.h>

#include <set>

namespace Halvane::Quorvex {

// One headless OpenGL context of the plug-in, optionally in the share group
// of another. Construction leaves it current on the calling thread, bound in
// glbinding, and prints what GL it got to standard output.
//
// A context that cannot be created or made current is reported with one
// line on standard error and thrown as PF_Err_BAD_CALLBACK_PARAM (an int),
// which reaches the host as 516 through EntryPointFunc.
class AEOpenGLContext {
public:
    explicit AEOpenGLContext(AEOpenGLContext* shareContext);
    // Destroys the platform context without changing what is current.
    virtual ~AEOpenGLContext();

    AEOpenGLContext(const AEOpenGLContext&) = delete;
    AEOpenGLContext& operator=(const AEOpenGLContext&) = delete;

    // Makes this context current on the calling thread and points the
    // thread's GL calls at it in glbinding. Must run on the drawing thread.
    void makeContextCurrent();

    // A new platform context in the share group of `shareContext` (or a group
    // of its own when null); `cglContext` receives its low-level handle.
    static GLPlatform::OwnedContext createNSContext(const GLPlatform::Context* shareContext,
                                                    GLPlatform::ContextHandle& cglContext);

    // Switches the calling thread to `handle` unless it is current already,
    // flushing the context being left first (see flushUnlessFramebufferIncomplete).
    static void makeCurrentFlush(GLPlatform::ContextHandle handle);

    // Registers the current context with glbinding, binds it for this thread
    // and prints the context block. Runs once per context.
    static void InitializeOpenGLBindings();

    // glFlush, except while an incomplete draw framebuffer is bound: some
    // drivers fault on that flush, and there is nothing to flush anyway.
    static void flushUnlessFramebufferIncomplete();

    GLPlatform::ContextHandle cglContext() const { return mCGLContext; }
    const GLPlatform::Context* nsContext() const { return mNSContext.get(); }
    const std::set<gl::GLextension>& extensions() const { return mExtensions; }

private:
    GLPlatform::ContextHandle mCGLContext = nullptr;
    GLPlatform::OwnedContext mNSContext;
    std::set<gl::GLextension> mExtensions;
};

}  // namespace Halvane::Quorvex
