#pragma once

#include <cmath>

namespace Halvane::Quorvex {

// The library's absolute tolerance; -kFloatTolerance is the lower bound of "negligible".
inline constexpr double kFloatTolerance = 1e-12;

// Deliberately the 15-digit value, not the double nearest to pi/180
// (0.017453292519943295); results of every rotation in degrees depend on its bits.
inline constexpr double kDegreesToRadians = 0.017453292519943;

// The double nearest to 180/pi.
inline constexpr double kRadiansToDegrees = 57.29577951308232;

// Per-axis distance below which two points count as the same.
inline constexpr double kDuplicateDistance = 0.25;

// Absolute compare with the boundary included; false when either side is NaN.
inline bool floatEqual(double a, double b)
{
    return std::abs(a - b) <= kFloatTolerance;
}

} // namespace Halvane::Quorvex
