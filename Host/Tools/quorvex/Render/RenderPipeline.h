#pragma once

#include "Media/Frames/PipelineItem.h"
#include "Options/PixelDepth.h"
#include "Render/FrameTimeline.h"

#include <cstddef>
#include <functional>

namespace Halvane::Quorvex::Tools {

class EffectHost;
class FrameSink;
class FrameSource;
class InterruptWatcher;
class ProgressReporter;

// Runs a render: a reader thread fills a short queue from the source, this
// thread hands each frame to the effect, one at a time (the effect is not
// thread-safe), and a writer thread empties a second queue into the sink.
// So the effect never waits for decoding or encoding while there is work
// queued. Packets of other streams travel the same queues, keeping order.
//
// The first failure on any thread stops all three; it is thrown here once
// the threads are joined. An interrupt stops them as well and throws a
// ToolError carrying the signal's exit code. The sink is finished (its
// output put in place) only when everything succeeded.
class RenderPipeline {
public:
    using FrameHook = std::function<void(const SourceFrame& rendered)>;

    RenderPipeline(FrameSource& source, FrameSink& sink, EffectHost& effect, PixelDepth depth,
                   const FrameTimeline& timeline, ProgressReporter& progress,
                   InterruptWatcher& interrupts);

    // Called on the writer thread with each rendered frame after the sink
    // took it.
    void setRenderedFrameHook(FrameHook hook) { mHook = std::move(hook); }

    // Returns the number of frames rendered.
    std::size_t run();

private:
    FrameSource& mSource;
    FrameSink& mSink;
    EffectHost& mEffect;
    PixelDepth mDepth;
    FrameTimeline mTimeline;
    ProgressReporter& mProgress;
    InterruptWatcher& mInterrupts;
    FrameHook mHook;
};

}  // namespace Halvane::Quorvex::Tools
