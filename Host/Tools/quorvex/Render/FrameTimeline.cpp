#include "Render/FrameTimeline.h"

#include "Options/NumberText.h"
#include "Options/ToolError.h"

#include <algorithm>
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

FrameTimeline::FrameTimeline(A_long start, A_long unit, A_long step, A_u_long scale)
    : mStart(start), mUnit(unit), mStep(step), mScale(scale)
{
}

FrameTimeline FrameTimeline::forClip(AVRational timeBase, std::int64_t nominalStep,
                                     double offsetSeconds)
{
    av_reduce(&timeBase.num, &timeBase.den, timeBase.num, timeBase.den,
              std::numeric_limits<int>::max());
    const double start = std::round(offsetSeconds * static_cast<double>(timeBase.den));
    const double step = static_cast<double>(nominalStep) * timeBase.num;
    if (!FitsTime(start) || !FitsTime(step) || timeBase.num <= 0 || timeBase.den <= 0) {
        throw ToolError::usage("--time-offset: " + FormatNumber(offsetSeconds) +
                               " s is beyond the time a host can state in units of " +
                               std::to_string(timeBase.num) + "/" + std::to_string(timeBase.den) +
                               " s");
    }
    return FrameTimeline(static_cast<A_long>(start), timeBase.num,
                         std::max<A_long>(1, static_cast<A_long>(step)),
                         static_cast<A_u_long>(timeBase.den));
}

FrameTimeline FrameTimeline::forClip(const FrameRate& rate, double offsetSeconds)
{
    if (rate.numerator() > std::numeric_limits<int>::max() ||
        rate.denominator() > std::numeric_limits<int>::max()) {
        throw ToolError::usage("--fps: " + rate.text() +
                               " frames per second is beyond the time a host can state");
    }
    return forClip(rate.frameDuration(), 1, offsetSeconds);
}

FrameTimeline FrameTimeline::forStill(double seconds)
{
    const double value = std::round(seconds * kStillTimeScale);
    if (!FitsTime(value)) {
        throw ToolError::usage("--time: " + FormatNumber(seconds) +
                               " s is beyond the time a host can state");
    }
    return FrameTimeline(static_cast<A_long>(value), 1, 1, kStillTimeScale);
}

Host::FrameTime FrameTimeline::timeOf(std::int64_t timestamp, std::int64_t duration) const
{
    const double value = static_cast<double>(mStart) + static_cast<double>(timestamp) * mUnit;
    const double step = duration > 0 ? static_cast<double>(duration) * mUnit : mStep;
    if (!FitsTime(value) || !FitsTime(step)) {
        throw ToolError::runtime("the frame at " + FormatNumber(value / mScale) +
                                 " s lies beyond the time a host can state");
    }
    return Host::FrameTime{static_cast<A_long>(value), static_cast<A_long>(step), mScale};
}

}  // namespace Halvane::Quorvex::Tools
