#pragma once

// Seeded random transforms and tolerant comparisons for the transform classes. The seed is
// fixed, so a failing property check fails the same way on every run.

#include "Math/Mat4.h"
#include "Math/Quaternion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <random>

namespace Halvane::Quorvex {

inline void PrintTo(Quaternion const& q, std::ostream* os)
{
    *os << "(" << q.x << ", " << q.y << ", " << q.z << ", " << q.w << ")";
}

namespace Testing {

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

inline ::testing::AssertionResult nearMatrix(Mat4 const& expected, Mat4 const& actual, double tolerance)
{
    for (int k = 0; k < 16; ++k) {
        if (!(std::abs(expected.elements[k] - actual.elements[k]) <= tolerance)) {
            return ::testing::AssertionFailure()
                << "element " << k << ": expected " << expected.elements[k] << ", got " << actual.elements[k];
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
