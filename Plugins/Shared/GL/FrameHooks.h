#pragma once

namespace Halvane::Quorvex {

// The points on a frame's road where an instrumented build can look in: the
// benchmarks' profiled module times the stretches between them. They name
// what the GL runtime and the effect have just done, in the order a frame
// does it.
enum class FrameEvent {
    FrameBegins,     // the host called SmartRender
    TargetsReady,    // render context current, targets sized, the drawing level open
    InputUploaded,   // the host's pixels are in a texture
    EffectDrawn,     // parameters read and the effect's shader drawn
    LevelResolved,   // the drawing level is in a texture
    FinalPassDrawn,  // the final pass is in the frame's renderbuffer
    OutputRead,      // the pixels are in the host's output: the frame is done
};

#ifdef QUORVEX_GL_INSTRUMENTED
// Hears every event while set; null (at start) hears nothing. Whoever sets it
// runs on the frame's thread, with the render context current.
using FrameEventHook = void (*)(FrameEvent event);
void SetFrameEventHook(FrameEventHook hook);
void NotifyFrameEvent(FrameEvent event);
#else
// The module that users load: no hook, no call, no cost.
inline void NotifyFrameEvent(FrameEvent) {}
#endif

}  // namespace Halvane::Quorvex
