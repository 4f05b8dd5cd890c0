#include "Math/MathTesting.h"

#include "Math/Euler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace Halvane::Quorvex {
namespace {

using Testing::nearMatrix;
using Testing::rotationMatrix;
using Testing::sameRotation;

TEST(QuaternionTests, AxesZeroFallbacksAndShortestRotations)
{
    // The constructor keeps the axis length, set() normalises it, and a zero axis means x.
    Quaternion q;
    q.set(Vec3(0, 0, 2), 1.0);
    EXPECT_EQ(Quaternion(0, 0, 2.0 * std::sin(0.5), std::cos(0.5)), Quaternion(Vec3(0, 0, 2), 1.0));
    EXPECT_EQ(Quaternion(0, 0, std::sin(0.5), std::cos(0.5)), q);
    q.set(Vec3(), 1.0);
    EXPECT_EQ(Quaternion(Vec3(1, 0, 0), 1.0), q);
    q.set(0, 0, 0, 0);
    q.setInverse();
    EXPECT_EQ(Quaternion(), q);
    q.set(Vec3(1, -2, 2), 1.0);
    EXPECT_NEAR(57.29578, q.getRotationAngle(), 1e-5);
    EXPECT_TRUE(q.getRotationAxis().equal(Vec3(1, -2, 2) * (1.0 / 3.0), 1e-15));

    EXPECT_EQ(Quaternion(0, 1, 0, 0), Quaternion(Vec3(1, 0, 0), Vec3(-1, 0, 0)));
    EXPECT_EQ(Quaternion(0, -1, 0, 0), Quaternion(Vec3(0, 0, 1), Vec3(0, 0, -1)));
    EXPECT_EQ(Quaternion(0, 0, 1, 0), Quaternion(Vec3(0, 1, 0), Vec3(0, -1, 0)));
    EXPECT_EQ(Quaternion(), Quaternion(Vec3(), Vec3()));
    Testing::SeededRandom random;
    for (int i = 0; i < 100; ++i) {
        Vec3 from = random.vec3(-1.0, 1.0);
        Vec3 to = random.vec3(-1.0, 1.0);
        from.normalize();
        to.normalize();
        Quaternion const between(from, to);
        EXPECT_TRUE(Quaternion::quaternionMulVec3(between, from).equal(to, 1e-13));
        EXPECT_NEAR(from.angleBetween(to) * kRadiansToDegrees, between.getRotationAngle(), 1e-9);
    }
}

TEST(QuaternionTests, ProductsMatchMatricesInEveryForm)
{
    Testing::SeededRandom random;
    for (int i = 0; i < 400; ++i) {
        Quaternion const a = random.unitQuaternion();
        Quaternion const b = random.unitQuaternion();
        Quaternion product(a);
        product.multiply(b);
        EXPECT_TRUE(rotationMatrix(a) * rotationMatrix(b) == rotationMatrix(product));
        Quaternion reversed(a);
        reversed.premultiply(b);
        EXPECT_TRUE(rotationMatrix(b) * rotationMatrix(a) == rotationMatrix(reversed));
        reversed = b;
        reversed.multiplyQuaternions(a, reversed);
        EXPECT_EQ(product, reversed);

        Vec3 const v = random.vec3(-5.0, 5.0);
        EXPECT_TRUE(Quaternion::quaternionMulVec3(a, v).equal(rotationMatrix(a).mult(v), 1e-13));
        // Every other a turns by more than 2.6 radians, so all four branches are taken.
        Quaternion back;
        back.setWithMat4(rotationMatrix(a));
        EXPECT_TRUE(sameRotation(a, back, 1e-14));
    }
}

TEST(QuaternionTests, SlerpEndpointsShorterWayArcAndNearlyParallelMidpoint)
{
    Quaternion const q(Vec3(0, 0, 1), 0.2);
    Quaternion const farSide(-0.1, 0.2, -0.3, -0.9);
    Quaternion moved(q);
    moved.slerp(farSide, 1.0);
    EXPECT_EQ(farSide, moved);
    moved = q;
    moved.slerp(farSide, 0.0);
    EXPECT_EQ(q, moved);
    moved.slerp(farSide, 0.999);
    EXPECT_TRUE(sameRotation(farSide, moved, 0.01) && moved.dot(farSide) < 0.0);
    moved = q;
    moved.slerp(Quaternion(-q.x, -q.y, -q.z, -q.w), 0.3);
    EXPECT_EQ(q, moved);

    Testing::SeededRandom random;
    for (int i = 0; i < 100; ++i) {
        Quaternion const a = random.unitQuaternion();
        Quaternion const b = random.unitQuaternion();
        double const t = random.uniform(0.0, 1.0);
        Quaternion const between = Quaternion::lerp(a, b, t);
        EXPECT_NEAR(1.0, between.length(), 1e-14);
        double const whole = std::acos(std::abs(a.dot(b)));
        EXPECT_NEAR(t * whole, std::acos(std::min(1.0, std::abs(a.dot(between)))), 1e-7);
    }

    // Half angles 0.00075 apart: the sine lies below 0.001, and t no longer matters.
    Quaternion const a(Vec3(0, 1, 0), 0.3);
    Quaternion const b(Vec3(0, 1, 0), 0.3015);
    Quaternion const midpoint((a.x + b.x) * 0.5, (a.y + b.y) * 0.5, (a.z + b.z) * 0.5, (a.w + b.w) * 0.5);
    EXPECT_EQ(midpoint, Quaternion::lerp(a, b, 0.1));
    Quaternion const wider(Vec3(0, 1, 0), 0.303);
    EXPECT_NE(Quaternion::lerp(a, wider, 0.1), Quaternion::lerp(a, wider, 0.9));
}

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

TEST(EulerTests, EveryOrderFromMatrixAndQuaternionAwayFromAndAtGimbalLock)
{
    Testing::SeededRandom random;
    for (Euler::RotationOrder order : kOrders) {
        SCOPED_TRACE(kLetters[order]);
        for (int i = 0; i < 100; ++i) {
            Euler const angles = randomAngles(random, order, random.uniform(-1.4, 1.4));
            Euler back(0, 0, 0, order);
            back.setWithMat4(rotationOf(angles));
            EXPECT_TRUE(anglesOf(back).equal(anglesOf(angles), 1e-13));
            // The quaternion form runs in single precision.
            Quaternion q;
            q.setWithEuler(angles);
            for (double field : {q.x, q.y, q.z, q.w}) {
                EXPECT_EQ(static_cast<double>(static_cast<float>(field)), field);
            }
            EXPECT_TRUE(nearMatrix(rotationOf(angles), rotationMatrix(q), 1e-6));
            back.setWithQuaternion(q);
            EXPECT_TRUE(anglesOf(back).equal(anglesOf(angles), 1e-5));
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

TEST(EulerTests, ThresholdIsTheWidenedFloatAndTheOrderCanBeKept)
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

    m.setRotation(0.7, Vec3(1, 2, 3));
    Euler explicitOrder;
    explicitOrder.setWithMat4(m, Euler::YZX);
    e.set(0, 0, 0, Euler::YZX);
    e.setWithMat4(m, Euler::CurrentOrder);
    EXPECT_TRUE(explicitOrder == e);
    // Without an order of its own the angles stay.
    Euler const untouched(1, 2, 3, Euler::CurrentOrder);
    e = untouched;
    e.setWithMat4(m);
    EXPECT_TRUE(untouched == e);
    Quaternion q(1, 2, 3, 4);
    q.setWithEuler(Euler(0.1, 0.2, 0.3, Euler::CurrentOrder));
    EXPECT_EQ(Quaternion(0, 0, 0, 0), q);
}

} // namespace
} // namespace Halvane::Quorvex
