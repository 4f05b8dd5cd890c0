#include "GL/AEOpenGLContextManager.h"

#include <memory>

namespace Halvane::Quorvex {

namespace {

// The calling thread's number, -1 until its first request.
thread_local std::int32_t mThread = -1;

}  // namespace

// Plain pointers on purpose: contexts left at process exit are not destroyed
// by static destructors, which may run after the EGL driver has gone.
AEOpenGLContext* AEOpenGLContextManager::mSharedDataContext = nullptr;
std::map<std::int32_t, AEOpenGLContext*> AEOpenGLContextManager::mRenderContexts;
std::recursive_mutex AEOpenGLContextManager::mMutex;
std::atomic<std::int32_t> AEOpenGLContextManager::mContextCount{0};

void AEOpenGLContextManager::setupContextManager()
{
    auto context = std::make_unique<AEOpenGLContext>(nullptr);
    delete mSharedDataContext;
    mSharedDataContext = context.release();
}

AEOpenGLContext* AEOpenGLContextManager::getSharedDataContext()
{
    return mSharedDataContext;
}

AEOpenGLContext* AEOpenGLContextManager::getCurrentRenderContext()
{
    std::lock_guard<std::recursive_mutex> lock(mMutex);
    if (mThread == -1) {
        mThread = mContextCount.fetch_add(1);
    }
    const auto found = mRenderContexts.find(mThread);
    if (found != mRenderContexts.end() && found->second != nullptr) {
        return found->second;
    }
    auto context = std::make_unique<AEOpenGLContext>(mSharedDataContext);
    mRenderContexts[mThread] = context.get();
    return context.release();
}

void AEOpenGLContextManager::releaseContextManager()
{
    for (auto& entry : mRenderContexts) {
        delete entry.second;
        entry.second = nullptr;
    }
    mRenderContexts.clear();
    delete mSharedDataContext;
    mSharedDataContext = nullptr;
}

}  // namespace Halvane::Quorvex
