#include "Runtime/TimeSeed.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <string>

namespace Halvane::Quorvex::Host {

namespace {

constexpr std::int64_t kLargestTime = std::numeric_limits<A_long>::max();

// value x factor / scale rounded to the nearest whole number, halves away
// from zero, for a scale below 2^32 and a factor below 2^31: the product
// itself may not fit 64 bits, its part below one scale does.
std::int64_t RescaledRounded(std::int64_t value, std::int64_t factor, std::int64_t scale)
{
    const std::int64_t magnitude = value < 0 ? -value : value;
    const std::int64_t rounded =
        magnitude / scale * factor + (magnitude % scale * factor + scale / 2) / scale;
    return value < 0 ? -rounded : rounded;
}

}  // namespace

TimeSeed::TimeSeed(int number) : mNumber(number)
{
    if (number < 0 || number > kLargest) {
        throw std::out_of_range("seed " + std::to_string(number) + " is outside 0 to " +
                                std::to_string(kLargest));
    }
}

TimeSeed TimeSeed::fromUnitValue(double value)
{
    if (std::isnan(value)) {
        return TimeSeed();
    }
    return TimeSeed(static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * kLargest)));
}

double TimeSeed::unitValue(int number)
{
    return static_cast<double>(number) / kLargest;
}

std::optional<FrameTime> TimeSeed::shift(const FrameTime& time) const
{
    if (mNumber == 0 || time.scale == 0) {
        return time;
    }
    const std::int64_t common = std::gcd(std::int64_t{time.value}, std::int64_t{time.scale});
    const std::int64_t scale = time.scale / common;
    const std::int64_t value = time.value / common + offsetSeconds() * scale;
    // The step tells the effect how long the frame lasts; it moves nothing.
    const auto stepAt = [&](std::int64_t factor, std::int64_t divisor) {
        return static_cast<A_long>(std::clamp<std::int64_t>(
            RescaledRounded(time.step, factor, divisor), 1, kLargestTime));
    };
    if (std::abs(value) <= kLargestTime) {
        return FrameTime{static_cast<A_long>(value), stepAt(1, common),
                         static_cast<A_u_long>(scale)};
    }
    // Whole seconds past the moment, so that the time at the new scale
    // stays below the largest count.
    const std::int64_t finest = kLargestTime / (std::abs(value) / scale + 1);
    if (finest == 0) {
        return std::nullopt;
    }
    return FrameTime{static_cast<A_long>(RescaledRounded(value, finest, scale)),
                     stepAt(finest, time.scale), static_cast<A_u_long>(finest)};
}

}  // namespace Halvane::Quorvex::Host
