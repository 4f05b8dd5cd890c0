#include "GL/FrameProfiler.h"

#include <glbinding/gl/gl.h>

#include <chrono>

namespace Halvane::Quorvex {

namespace {

using Clock = std::chrono::steady_clock;

bool gSynchronised = true;
bool gInFrame = false;
Clock::time_point gFrameStart;
Clock::time_point gStageStart;
FrameProfiler::Times gCurrent;
FrameProfiler::Times gLast;

double SecondsBetween(Clock::time_point start, Clock::time_point end)
{
    return std::chrono::duration<double>(end - start).count();
}

}  // namespace

void FrameProfiler::frameBegins()
{
    // The previous frame ended with a read-back, which waits for GL, so
    // nothing of the plug-in's is pending here; and the host's context is
    // current, which is not ours to wait for.
    gCurrent = Times{};
    gInFrame = true;
    gFrameStart = Clock::now();
    gStageStart = gFrameStart;
}

void FrameProfiler::stageEnds(Stage stage)
{
    if (!gInFrame) {
        return;
    }
    if (gSynchronised) {
        gl::glFinish();
    }
    const Clock::time_point now = Clock::now();
    gCurrent.mStageSeconds[stage] += SecondsBetween(gStageStart, now);
    gStageStart = now;
}

void FrameProfiler::frameEnds()
{
    if (!gInFrame) {
        return;
    }
    gCurrent.mFrameSeconds = SecondsBetween(gFrameStart, Clock::now());
    gCurrent.mComplete = true;
    gLast = gCurrent;
    gInFrame = false;
}

void FrameProfiler::setSynchronised(bool synchronised)
{
    gSynchronised = synchronised;
}

const FrameProfiler::Times& FrameProfiler::lastFrame()
{
    return gLast;
}

}  // namespace Halvane::Quorvex
