#pragma once

#include "GL/FrameHooks.h"
#include "QuorvexProfiling.h"

namespace Halvane::Quorvex {

// The stage clock of the profiled module, fed by the GL runtime's frame
// events (GL/FrameHooks.h). Each event after FrameBegins ends a stage: the
// clock waits for GL to finish what the stage queued (while synchronised)
// and charges the time since the previous event to it. Without the wait
// llvmpipe and real GPUs run the draws only at the read-back, so stage times
// would say nothing. OutputRead ends the frame.
//
// One frame at a time, like the frame path itself; an event outside a frame
// does nothing.
class FrameProfiler {
public:
    // Points the GL runtime's frame events at this clock.
    static void listen();
    static void hear(FrameEvent event);

    // Whether the clock waits for GL (glFinish) before reading the time. Off,
    // the frame's whole time is what the production module would take.
    static void setSynchronised(bool synchronised);
    // The last frame that reached OutputRead; false before one has.
    static bool lastFrame(QuorvexFrameProfile& profile);
};

}  // namespace Halvane::Quorvex
