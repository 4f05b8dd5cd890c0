#include "GL/SaveRestoreGLContextMac.h"

#include "GL/AEOpenGLContext.h"

#include <iostream>

namespace Halvane::Quorvex {

SaveRestoreGLContextMac::SaveRestoreGLContextMac()
{
    init();
}

SaveRestoreGLContextMac::~SaveRestoreGLContextMac()
{
    restore();
}

void SaveRestoreGLContextMac::init()
{
    mContext = GLPlatform::currentBinding();
    mRC = GLPlatform::currentHandle();
    mRestored = false;
}

void SaveRestoreGLContextMac::restore() noexcept
{
    if (mRestored) {
        return;
    }
    try {
        if (GLPlatform::currentBinding() != mContext && mContext.context != nullptr) {
            GLPlatform::makeCurrent(mContext);
        }
        // Both views come from one EGL query, so after the step above this
        // one normally finds the handle current already.
        if (mRC != GLPlatform::currentHandle() && mRC != nullptr) {
            AEOpenGLContext::flushUnlessFramebufferIncomplete();
            GLPlatform::makeCurrent(mRC);
        }
    } catch (const GLPlatform::Error& error) {
        std::cerr << "Quorvex: cannot make the host's OpenGL context current again: " << error.what()
                  << std::endl;
        return;
    }
    mRestored = true;
}

}  // namespace Halvane::Quorvex
