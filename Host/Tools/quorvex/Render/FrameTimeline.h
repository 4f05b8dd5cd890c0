#pragma once

#include "Options/FrameRate.h"

#include "Runtime/FrameTime.h"

extern "C" {
#include <libavutil/rational.h>
}

#include <cstdint>

namespace Halvane::Quorvex::Tools {

// The layer time at which each frame of a render is drawn, in the units a
// host states to an effect. A clip's frame lies at its timestamp in the
// clip's time base num/den, counted in units of 1/den second from the
// offset on, so a frame's time depends on its place in the source alone,
// never on where a render starts. A still image sits at one moment on a
// fine scale.
class FrameTimeline {
public:
    // The scale of a still's time: 1/10000 second.
    static constexpr A_u_long kStillTimeScale = 10000;

    // Timestamps in units of `timeBase` seconds, frames `nominalStep` units
    // long where a frame does not say. Throws ToolError (usage) naming the
    // option when the offset or time lies beyond what the host's 32-bit
    // time can hold.
    static FrameTimeline forClip(AVRational timeBase, std::int64_t nominalStep,
                                 double offsetSeconds);
    // Timestamps that count frames at `rate`.
    static FrameTimeline forClip(const FrameRate& rate, double offsetSeconds);
    static FrameTimeline forStill(double seconds);

    // The time of the frame at `timestamp` lasting `duration` units (0: the
    // nominal step). Throws ToolError (runtime) when the frame lies beyond
    // the 32-bit time.
    Host::FrameTime timeOf(std::int64_t timestamp, std::int64_t duration = 0) const;

private:
    FrameTimeline(A_long start, A_long unit, A_long step, A_u_long scale);

    A_long mStart;
    A_long mUnit;  // host units in one timestamp unit
    A_long mStep;
    A_u_long mScale;
};

}  // namespace Halvane::Quorvex::Tools
