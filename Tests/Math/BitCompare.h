#pragma once

// Comparisons on bit patterns, for results that are fixed to the last bit: they tell
// 0 from -0, and a float rounding from the double it was widened to.

#include "Math/Vec2.h"
#include "Math/Vec3.h"
#include "Math/Vec4.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <ostream>

namespace Halvane::Quorvex::Testing {

inline std::uint64_t bitsOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

inline ::testing::AssertionResult sameBits(double expected, double actual)
{
    if (bitsOf(expected) == bitsOf(actual)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << std::hexfloat << "expected " << expected << ", got " << actual;
}

// Component by component, naming the first that differs by its letter in names.
inline ::testing::AssertionResult sameComponents(std::initializer_list<double> expected,
                                                 std::initializer_list<double> actual, char const* names = "xyzw")
{
    for (std::size_t k = 0; k < expected.size(); ++k) {
        if (auto result = sameBits(expected.begin()[k], actual.begin()[k]); !result) {
            return result << " in " << names[k];
        }
    }
    return ::testing::AssertionSuccess();
}

inline ::testing::AssertionResult sameBits(Vec2 const& e, Vec2 const& a)
{
    return sameComponents({e.x, e.y}, {a.x, a.y});
}
inline ::testing::AssertionResult sameBits(Vec3 const& e, Vec3 const& a)
{
    return sameComponents({e.x, e.y, e.z}, {a.x, a.y, a.z});
}
inline ::testing::AssertionResult sameBits(Vec4 const& e, Vec4 const& a)
{
    return sameComponents({e.x, e.y, e.z, e.w}, {a.x, a.y, a.z, a.w});
}

// A float result widened to double, as the library forms channels and weights.
inline double widened(float value)
{
    return static_cast<double>(value);
}

} // namespace Halvane::Quorvex::Testing

// Printers, so that failed comparisons show values instead of bytes.
namespace Halvane::Quorvex {

inline void PrintTo(Vec2 const& v, std::ostream* os) { *os << "(" << v.x << ", " << v.y << ")"; }
inline void PrintTo(Vec3 const& v, std::ostream* os) { *os << "(" << v.x << ", " << v.y << ", " << v.z << ")"; }
inline void PrintTo(Vec4 const& v, std::ostream* os)
{
    *os << "(" << v.x << ", " << v.y << ", " << v.z << ", " << v.w << ")";
}

} // namespace Halvane::Quorvex

#define EXPECT_SAME_BITS(expected, actual) \
    EXPECT_TRUE(::Halvane::Quorvex::Testing::sameBits((expected), (actual)))
