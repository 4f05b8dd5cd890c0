#include "QuorvexProfiling.h"

#include "EffectInterface.h"
#include "GL/AEOpenGLContextManager.h"
#include "GL/FrameProfiler.h"
#include "GL/GLObjectCensus.h"
#include "GL/GLPlatform.h"
#include "GL/SaveRestoreGLContextMac.h"

#include <new>

using Halvane::Quorvex::AEOpenGLContextManager;
using Halvane::Quorvex::FrameProfiler;
using Halvane::Quorvex::GLObjectCensus;
using Halvane::Quorvex::GLPlatform;
using Halvane::Quorvex::SaveRestoreGLContextMac;

static_assert(static_cast<int>(kQuorvexStageCount) == static_cast<int>(FrameProfiler::kStageCount));

extern "C" {

__attribute__((visibility("default"))) void QuorvexProfilerSetSynchronised(int synchronised)
{
    FrameProfiler::setSynchronised(synchronised != 0);
}

__attribute__((visibility("default"))) int QuorvexProfilerLastFrame(QuorvexFrameProfile* profile)
{
    const FrameProfiler::Times& last = FrameProfiler::lastFrame();
    if (!last.mComplete) {
        return 1;
    }
    for (int stage = 0; stage < kQuorvexStageCount; ++stage) {
        profile->mStageSeconds[stage] = last.mStageSeconds[stage];
    }
    profile->mFrameSeconds = last.mFrameSeconds;
    return 0;
}

__attribute__((visibility("default"))) int QuorvexProfilerCountLiveObjects(QuorvexLiveObjects* objects)
{
    // As every command does: the render context for the work, the caller's
    // context back on every way out.
    try {
        SaveRestoreGLContextMac saver;
        AEOpenGLContextManager::getCurrentRenderContext()->makeContextCurrent();
        const GLObjectCensus census = GLObjectCensus::take();
        objects->mTextures = census.mTextures;
        objects->mRenderbuffers = census.mRenderbuffers;
        objects->mBuffers = census.mBuffers;
        objects->mPrograms = census.mPrograms;
        objects->mShaders = census.mShaders;
        objects->mFramebuffers = census.mFramebuffers;
        objects->mVertexArrays = census.mVertexArrays;
        objects->mContexts = static_cast<long>(GLPlatform::liveContextCount());
        saver.restore();
        return PF_Err_NONE;
    } catch (const std::bad_alloc&) {
        return PF_Err_OUT_OF_MEMORY;
    } catch (...) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
}

}
