#pragma once

#include "GL/AEOpenGLContext.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>

namespace Halvane::Quorvex {

// Decides which GL context serves whom: one shared data context that roots
// the share group, and one render context for every host thread that renders,
// made on the thread's first request and kept until release. Class-level
// only; the manager owns every context it hands out.
class AEOpenGLContextManager {
public:
    AEOpenGLContextManager() = delete;

    // Creates the shared data context and leaves it current on the calling
    // thread. Not locked: set-up never runs alongside rendering.
    static void setupContextManager();
    static AEOpenGLContext* getSharedDataContext();

    // The calling thread's render context, created in the shared data
    // context's group on the thread's first call (or with no partner when
    // there is no shared data context). A thread whose context was released
    // gets a new one; a failed creation throws and leaves the manager as it
    // was, so the thread may ask again. The result is not necessarily
    // current: call makeContextCurrent on it.
    static AEOpenGLContext* getCurrentRenderContext();

    // Destroys the render contexts in ascending order of thread number, then
    // the shared data context. Thread numbers are not handed out again.
    static void releaseContextManager();

private:
    static AEOpenGLContext* mSharedDataContext;
    static std::map<std::int32_t, AEOpenGLContext*> mRenderContexts;
    static std::recursive_mutex mMutex;
    static std::atomic<std::int32_t> mContextCount;
};

}  // namespace Halvane::Quorvex
