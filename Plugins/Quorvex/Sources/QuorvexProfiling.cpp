#include "QuorvexProfiling.h"

#include "EffectInterface.h"
#include "FrameProfiler.h"
#include "GL/AEOpenGLContextManager.h"
#include "GL/GLPlatform.h"
#include "GL/SaveRestoreGLContextMac.h"
#include "GLObjectCensus.h"

#include <new>

using Halvane::Quorvex::AEOpenGLContextManager;
using Halvane::Quorvex::FrameProfiler;
using Halvane::Quorvex::GLObjectCensus;
using Halvane::Quorvex::GLPlatform;
using Halvane::Quorvex::SaveRestoreGLContextMac;

namespace {

// The clock hears the frame's events from the module's load on.
const bool gListening = (FrameProfiler::listen(), true);

}  // namespace

extern "C" {

__attribute__((visibility("default"))) void QuorvexProfilerSetSynchronised(int synchronised)
{
    FrameProfiler::setSynchronised(synchronised != 0);
}

__attribute__((visibility("default"))) int QuorvexProfilerLastFrame(QuorvexFrameProfile* profile)
{
    return FrameProfiler::lastFrame(*profile) ? 0 : 1;
}

__attribute__((visibility("default"))) int QuorvexProfilerCountLiveObjects(QuorvexLiveObjects* objects)
{
    // As every command does: the render context for the work, the caller's
    // context back on every way out.
    try {
        SaveRestoreGLContextMac saver;
        AEOpenGLContextManager::getCurrentRenderContext()->makeContextCurrent();
        GLObjectCensus::take(*objects);
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
