#pragma once

namespace Halvane::Quorvex {

// Stage markers of a frame, for the benchmarks.
//
// The module that users load is built without QUORVEX_FRAME_PROFILING: every
// marker is then an empty inline function, and the frame path gains no
// synchronisation and no clock read. The benchmarks' own build of the module
// defines it: a marker then waits for GL to finish what the stage queued
// (while synchronisation is on) and charges the time since the previous
// marker to the stage that ends. Without the wait llvmpipe and real GPUs run
// the draws only at the read-back, so stage times would say nothing.
//
// One frame at a time, like the frame path itself; a marker outside a frame
// does nothing.
class FrameProfiler {
public:
    enum Stage {
        kPrepare,     // the render context made current, targets sized, the level opened and cleared
        kUpload,      // the host's pixels into a texture
        kEffectDraw,  // parameters read and the glitch shader drawn
        kResolve,     // the multisampled level resolved into a texture
        kScreenPass,  // the final pass into the frame's renderbuffer
        kReadBack,    // the pixels read back into the host's output
        kStageCount
    };

    struct Times {
        double mStageSeconds[kStageCount] = {};
        // From the frame's first marker to its last.
        double mFrameSeconds = 0.0;
        bool mComplete = false;
    };

#ifdef QUORVEX_FRAME_PROFILING
    static void frameBegins();
    static void stageEnds(Stage stage);
    static void frameEnds();

    // Whether markers wait for GL (glFinish) before reading the clock. Off,
    // the frame's whole time is what the production module would take.
    static void setSynchronised(bool synchronised);
    // The last frame that reached frameEnds; mComplete is false before one has.
    static const Times& lastFrame();
#else
    static void frameBegins() {}
    static void stageEnds(Stage) {}
    static void frameEnds() {}
#endif
};

}  // namespace Halvane::Quorvex
