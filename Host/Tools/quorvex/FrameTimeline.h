#pragma once

#include "FrameRate.h"

#include "Runtime/FrameTime.h"

#include <cstddef>

namespace Halvane::Quorvex::Tools {

// The layer time at which each frame of a render is drawn, in the units a
// host states to an effect. A clip of rate num/den counts in units of
// 1/num second, den units a frame, from the offset on; a still image sits
// at one moment on a fine scale.
class FrameTimeline {
public:
    // The scale of a still's time: 1/10000 second.
    static constexpr A_u_long kStillTimeScale = 10000;

    // Throws ToolError (usage) naming the option when the offset or time
    // lies beyond what the host's 32-bit time can hold.
    static FrameTimeline forClip(const FrameRate& rate, double offsetSeconds);
    static FrameTimeline forStill(double seconds);

    // Throws ToolError (runtime) when the frame lies beyond the 32-bit time.
    Host::FrameTime timeOf(std::size_t index) const;

private:
    FrameTimeline(A_long start, A_long step, A_u_long scale);

    A_long mStart;
    A_long mStep;
    A_u_long mScale;
};

}  // namespace Halvane::Quorvex::Tools
