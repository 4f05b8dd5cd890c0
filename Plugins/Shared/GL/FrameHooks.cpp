#include "GL/FrameHooks.h"

#include <atomic>

namespace Halvane::Quorvex {

namespace {

std::atomic<FrameEventHook> gHook{nullptr};

}  // namespace

void SetFrameEventHook(FrameEventHook hook)
{
    gHook.store(hook);
}

void NotifyFrameEvent(FrameEvent event)
{
    if (const FrameEventHook hook = gHook.load()) {
        hook(event);
    }
}

}  // namespace Halvane::Quorvex
