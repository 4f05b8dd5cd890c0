#pragma once

// Bit-exact and tolerant comparisons for the math classes, and seeded random transforms. Bit
// patterns tell 0 from -0, and a float rounding from the double it was widened to; the seed is
// fixed, so a failing property check fails the same way on every run.

#include "Math/Mat4.h"
#include "Math/Quaternion.h"
#include "Math/Vec2.h"
#include "Math/Vec3.h"
#include "Math/Vec4.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <ostream>
#include <random>

namespace Halvane::Quorvex {

// Printers, so that failed comparisons show values instead of bytes.
inline void PrintTo(Vec2 const& v, std::ostream* os) { *os << "(" << v.x << ", " << v.y << ")"; }
inline void PrintTo(Vec3 const& v, std::ostream* os) { *os << "(" << v.x << ", " << v.y << ", " << v.z << ")"; }
inline void PrintTo(Vec4 const& v, std::ostream* os)
{
    *os << "(" << v.x << ", " << v.y << ", " << v.z << ", " << v.w << ")";
}
inline void PrintTo(Quaternion const& q, std::ostream* os)
{
    *os << "(" << q.x << ", " << q.y << ", " << q.z << ", " << q.w << ")";
}

namespace Testing {

inline ::testing::AssertionResult sameBits(double expected, double actual)
{
    std::uint64_t e = 0;
    std::uint64_t a = 0;
    std::memcpy(&e, &expected, sizeof e);
    std::memcpy(&a, &actual, sizeof a);
    if (e == a) {
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

class SeededRandom
{
public:
    double uniform(double low, double high) { return std::uniform_real_distribution<double>(low, high)(mEngine); }
    Vec3 vec3(double low, double high) { return {uniform(low, high), uniform(low, high), uniform(low, high)}; }

    // Every other one close to a half turn, where a rotation's trace is negative.
    Quaternion unitQuaternion()
    {
        mNearHalfTurn = !mNearHalfTurn;
        Quaternion q;
        q.set(vec3(-1.0, 1.0), mNearHalfTurn ? uniform(2.6, M_PI) : uniform(-M_PI, M_PI));
        return q;
    }

    // Diagonally dominant, hence invertible and well conditioned.
    Mat4 invertibleMatrix()
    {
        Mat4 m(false);
        for (int k = 0; k < 16; ++k) {
            m.elements[k] = uniform(-1.0, 1.0) + (k % 5 == 0 ? 4.0 : 0.0);
        }
        return m;
    }

private:
    std::mt19937 mEngine{20240917u};
    bool mNearHalfTurn = false;
};

// Within tolerance per element; a negative tolerance asks for the same bits.
inline ::testing::AssertionResult nearMatrix(Mat4 const& expected, Mat4 const& actual, double tolerance)
{
    for (int k = 0; k < 16; ++k) {
        double const e = expected.elements[k];
        double const a = actual.elements[k];
        if (tolerance < 0.0 ? !sameBits(e, a) : !(std::abs(e - a) <= tolerance)) {
            return ::testing::AssertionFailure() << "element " << k << ": expected " << e << ", got " << a;
        }
    }
    return ::testing::AssertionSuccess();
}

inline Mat4 rotationMatrix(Quaternion const& q)
{
    Mat4 m(true);
    m.setWithQuaternion(q);
    return m;
}

// q and -q are the same rotation; compared through their matrices.
inline ::testing::AssertionResult sameRotation(Quaternion const& expected, Quaternion const& actual, double tolerance)
{
    return nearMatrix(rotationMatrix(expected), rotationMatrix(actual), tolerance)
        << " between " << ::testing::PrintToString(expected) << " and " << ::testing::PrintToString(actual);
}

} // namespace Testing
} // namespace Halvane::Quorvex

#define EXPECT_SAME_BITS(expected, actual) \
    EXPECT_TRUE(::Halvane::Quorvex::Testing::sameBits((expected), (actual)))
