#include "FrameProfiler.h"

#include <glbinding/gl/gl.h>

#include <chrono>

namespace Halvane::Quorvex {

namespace {

using Clock = std::chrono::steady_clock;

bool gSynchronised = true;
bool gInFrame = false;
bool gHaveLast = false;
Clock::time_point gFrameStart;
Clock::time_point gStageStart;
QuorvexFrameProfile gCurrent;
QuorvexFrameProfile gLast;

double SecondsBetween(Clock::time_point start, Clock::time_point end)
{
    return std::chrono::duration<double>(end - start).count();
}

// The stage that an event ends.
QuorvexProfileStage StageEndedBy(FrameEvent event)
{
    switch (event) {
    case FrameEvent::InputUploaded:
        return kQuorvexStageUpload;
    case FrameEvent::EffectDrawn:
        return kQuorvexStageEffectDraw;
    case FrameEvent::LevelResolved:
        return kQuorvexStageResolve;
    case FrameEvent::FinalPassDrawn:
        return kQuorvexStageScreenPass;
    case FrameEvent::OutputRead:
        return kQuorvexStageReadBack;
    case FrameEvent::FrameBegins:
    case FrameEvent::TargetsReady:
        break;
    }
    return kQuorvexStagePrepare;
}

void FrameBegins()
{
    // The previous frame ended with a read-back, which waits for GL, so
    // nothing of the plug-in's is pending here; and the host's context is
    // current, which is not ours to wait for.
    gCurrent = QuorvexFrameProfile{};
    gInFrame = true;
    gFrameStart = Clock::now();
    gStageStart = gFrameStart;
}

void StageEnds(QuorvexProfileStage stage)
{
    if (gSynchronised) {
        gl::glFinish();
    }
    const Clock::time_point now = Clock::now();
    gCurrent.mStageSeconds[stage] += SecondsBetween(gStageStart, now);
    gStageStart = now;
}

}  // namespace

void FrameProfiler::listen()
{
    SetFrameEventHook(&FrameProfiler::hear);
}

void FrameProfiler::hear(FrameEvent event)
{
    if (event == FrameEvent::FrameBegins) {
        FrameBegins();
        return;
    }
    if (!gInFrame) {
        return;
    }
    StageEnds(StageEndedBy(event));
    if (event == FrameEvent::OutputRead) {
        gCurrent.mFrameSeconds = SecondsBetween(gFrameStart, Clock::now());
        gLast = gCurrent;
        gHaveLast = true;
        gInFrame = false;
    }
}

void FrameProfiler::setSynchronised(bool synchronised)
{
    gSynchronised = synchronised;
}

bool FrameProfiler::lastFrame(QuorvexFrameProfile& profile)
{
    if (gHaveLast) {
        profile = gLast;
    }
    return gHaveLast;
}

}  // namespace Halvane::Quorvex
