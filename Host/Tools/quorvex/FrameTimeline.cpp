#include "FrameTimeline.h"

#include "NumberText.h"
#include "ToolError.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace Halvane::Quorvex::Tools {

namespace {

bool FitsTime(double units)
{
    return std::abs(units) <= static_cast<double>(std::numeric_limits<A_long>::max());
}

}  // namespace

FrameTimeline::FrameTimeline(A_long start, A_long step, A_u_long scale)
    : mStart(start), mStep(step), mScale(scale)
{
}

FrameTimeline FrameTimeline::forClip(const FrameRate& rate, double offsetSeconds)
{
    const double start = std::round(offsetSeconds * static_cast<double>(rate.numerator()));
    if (!FitsTime(start) || rate.numerator() > std::numeric_limits<A_long>::max()) {
        throw ToolError::usage("--time-offset: " + FormatNumber(offsetSeconds) +
                               " s is beyond the time a host can state at " + rate.text() +
                               " frames per second");
    }
    return FrameTimeline(static_cast<A_long>(start), static_cast<A_long>(rate.denominator()),
                         static_cast<A_u_long>(rate.numerator()));
}

FrameTimeline FrameTimeline::forStill(double seconds)
{
    const double value = std::round(seconds * kStillTimeScale);
    if (!FitsTime(value)) {
        throw ToolError::usage("--time: " + FormatNumber(seconds) +
                               " s is beyond the time a host can state");
    }
    return FrameTimeline(static_cast<A_long>(value), 1, kStillTimeScale);
}

Host::FrameTime FrameTimeline::timeOf(std::size_t index) const
{
    const std::int64_t value =
        static_cast<std::int64_t>(mStart) + static_cast<std::int64_t>(index) * mStep;
    if (value > std::numeric_limits<A_long>::max() || value < std::numeric_limits<A_long>::min()) {
        throw ToolError::runtime("frame " + std::to_string(index + 1) +
                                 " lies beyond the time a host can state");
    }
    return Host::FrameTime{static_cast<A_long>(value), mStep, mScale};
}

}  // namespace Halvane::Quorvex::Tools
