#pragma once

#include "GL/GLPlatform.h"

namespace Halvane::Quorvex {

// A snapshot of the GL context that is current on the calling thread when a
// host command begins; restore() puts it back when the command ends. The
// snapshot keeps two views of what was current, everything EGL reports
// (mContext) and the bare context handle (mRC), and puts back each by itself.
//
// Restores at most once: an explicit restore() and the one that destruction
// performs (so that a command left by an exception gives the host its
// context back too) count as one.
class SaveRestoreGLContextMac {
public:
    SaveRestoreGLContextMac();
    ~SaveRestoreGLContextMac();

    SaveRestoreGLContextMac(const SaveRestoreGLContextMac&) = delete;
    SaveRestoreGLContextMac& operator=(const SaveRestoreGLContextMac&) = delete;

    // Captures what is current now. The constructor has done so already.
    void init();

    // Makes the captured context current again, unless it still is. With
    // nothing captured it changes nothing. glbinding is not told; the next
    // makeContextCurrent does that. A refusal is reported on standard error
    // and leaves the snapshot unrestored.
    void restore() noexcept;

    bool restored() const { return mRestored; }
    const GLPlatform::CurrentBinding& context() const { return mContext; }
    GLPlatform::ContextHandle rc() const { return mRC; }

private:
    bool mRestored = false;
    GLPlatform::CurrentBinding mContext;
    GLPlatform::ContextHandle mRC = nullptr;
};

}  // namespace Halvane::Quorvex
