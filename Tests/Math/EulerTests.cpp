#include "Math/TransformTesting.h"

#include "Math/Euler.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Halvane::Quorvex {
namespace {

using Testing::nearMatrix;

constexpr Euler::RotationOrder kOrders[] = {Euler::XYZ, Euler::YZX, Euler::ZXY, Euler::XZY, Euler::YXZ, Euler::ZYX};
// The factors of each order, left to right.
char const* const kLetters[] = {"", "XYZ", "YZX", "ZXY", "XZY", "YXZ", "ZYX"};

double& angle(Euler& e, char letter)
{
    return letter == 'X' ? e.x : letter == 'Y' ? e.y : e.z;
}

Vec3 anglesOf(Euler const& e)
{
    return {e.x, e.y, e.z};
}

// The order's product of one-axis rotations, built without Euler.
Mat4 rotationOf(Euler e)
{
    Mat4 result(true);
    for (char const* letter = kLetters[e.order]; *letter != '\0'; ++letter) {
        *letter == 'X' ? result.rotateX(e.x) : *letter == 'Y' ? result.rotateY(e.y) : result.rotateZ(e.z);
    }
    return result;
}

// Outer angles in -pi..pi, the middle one as given.
Euler randomAngles(Testing::SeededRandom& random, Euler::RotationOrder order, double middle)
{
    Euler e(random.uniform(-M_PI, M_PI), random.uniform(-M_PI, M_PI), random.uniform(-M_PI, M_PI), order);
    angle(e, kLetters[order][1]) = middle;
    return e;
}

// At gimbal lock exactly one of the outer angles is fixed at 0.
bool oneOuterAngleIsZero(Euler e)
{
    return (angle(e, kLetters[e.order][0]) == 0.0) != (angle(e, kLetters[e.order][2]) == 0.0);
}

TEST(EulerOrders, CurrentOrderKeepsWhatTheObjectHolds)
{
    EXPECT_TRUE(Euler() == Euler(1e-13, 0, 0, Euler::XYZ));
    EXPECT_FALSE(Euler() == Euler(0, 0, 0, Euler::YZX));
    Euler e(0, 0, 0, Euler::ZXY);
    e.set(1, 2, 3, Euler::CurrentOrder);
    EXPECT_EQ(Euler::ZXY, e.order);
    Mat4 m(true);
    m.setRotation(0.7, Vec3(1, 2, 3));
    Euler explicitOrder;
    explicitOrder.setWithMat4(m, Euler::YZX);
    e.set(0, 0, 0, Euler::YZX);
    e.setWithMat4(m, Euler::CurrentOrder);
    EXPECT_TRUE(explicitOrder == e);
    e.setWithMat4(m, Euler::XZY);
    EXPECT_EQ(Euler::XZY, e.order);

    // Without an order of its own, or with one beyond the six, the angles stay.
    Euler const untouched(1, 2, 3, Euler::CurrentOrder);
    e = untouched;
    e.setWithMat4(m);
    EXPECT_TRUE(untouched == e);
    e.setWithMat4(m, static_cast<Euler::RotationOrder>(9));
    EXPECT_TRUE(Euler(1, 2, 3, static_cast<Euler::RotationOrder>(9)) == e);
}

TEST(EulerFromMatrix, EveryOrderAwayFromAndAtGimbalLock)
{
    Testing::SeededRandom random;
    for (Euler::RotationOrder order : kOrders) {
        SCOPED_TRACE(kLetters[order]);
        for (int i = 0; i < 100; ++i) {
            Euler const angles = randomAngles(random, order, random.uniform(-1.5, 1.5));
            Euler back(0, 0, 0, order);
            back.setWithMat4(rotationOf(angles));
            EXPECT_TRUE(anglesOf(back).equal(anglesOf(angles), 1e-13));
        }
        for (double middle : {M_PI / 2.0, -M_PI / 2.0}) {
            Euler const angles = randomAngles(random, order, middle);
            Euler back(0, 0, 0, order);
            back.setWithMat4(rotationOf(angles));
            EXPECT_TRUE(oneOuterAngleIsZero(back) && !oneOuterAngleIsZero(angles));
            EXPECT_TRUE(nearMatrix(rotationOf(angles), rotationOf(back), 1e-13));
        }
    }
}

TEST(EulerFromMatrix, ThresholdIsTheWidenedFloatAndTheSineIsClamped)
{
    // Not a rotation: only the elements that XYZ reads matter.
    Mat4 m(true);
    m.elements[0] = 0.5;
    m.elements[4] = -0.5;
    Euler e;
    m.elements[8] = static_cast<double>(0.999999f);
    e.setWithMat4(m);
    EXPECT_EQ(0.0, e.z);
    m.elements[8] = std::nextafter(static_cast<double>(0.999999f), 0.0);
    e.setWithMat4(m);
    EXPECT_DOUBLE_EQ(M_PI / 4.0, e.z);
    m.elements[8] = std::nextafter(1.0, 2.0);
    e.setWithMat4(m);
    EXPECT_EQ(M_PI / 2.0, e.y);
}

TEST(EulerToQuaternion, RoundTripsInSinglePrecision)
{
    Testing::SeededRandom random;
    for (Euler::RotationOrder order : kOrders) {
        SCOPED_TRACE(kLetters[order]);
        for (int i = 0; i < 100; ++i) {
            Euler const angles = randomAngles(random, order, random.uniform(-1.4, 1.4));
            Quaternion q;
            q.setWithEuler(angles);
            for (double field : {q.x, q.y, q.z, q.w}) {
                EXPECT_EQ(static_cast<double>(static_cast<float>(field)), field);
            }
            EXPECT_TRUE(nearMatrix(rotationOf(angles), Testing::rotationMatrix(q), 1e-6));
            Euler back(0, 0, 0, order);
            back.setWithQuaternion(q);
            EXPECT_TRUE(anglesOf(back).equal(anglesOf(angles), 1e-5));
        }
        for (double middle : {M_PI / 2.0, -M_PI / 2.0}) {
            // The float quaternion's key element misses 1 by float rounding, still locked;
            // asin turns that rounding into an angle of about its square root, so the
            // rebuilt rotation holds to some 1e-4 only.
            Quaternion q;
            q.setWithEuler(randomAngles(random, order, middle));
            Euler back(0, 0, 0, order);
            back.setWithQuaternion(q);
            Quaternion rebuilt;
            rebuilt.setWithEuler(back);
            EXPECT_TRUE(oneOuterAngleIsZero(back) && Testing::sameRotation(q, rebuilt, 1e-3));
        }
    }
    Quaternion q(1, 2, 3, 4);
    q.setWithEuler(Euler(0.1, 0.2, 0.3, static_cast<Euler::RotationOrder>(7)));
    EXPECT_EQ(Quaternion(1, 2, 3, 4), q);
    q.setWithEuler(Euler(0.1, 0.2, 0.3, Euler::CurrentOrder));
    EXPECT_EQ(Quaternion(0, 0, 0, 0), q);
}

} // namespace
} // namespace Halvane::Quorvex
