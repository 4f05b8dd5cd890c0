#include "Math/BitCompare.h"
#include "Math/TransformTesting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace Halvane::Quorvex {
namespace {

using Testing::rotationMatrix;
using Testing::sameRotation;

TEST(QuaternionConstruction, AxesZeroFallbacksAndQueries)
{
    EXPECT_DOUBLE_EQ(std::sqrt(15.0), Quaternion(1, 2, 3).length());
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
    EXPECT_NE(Quaternion(0, 0, 0, 1e-10), Quaternion(0, 0, 0, 0));
    EXPECT_NE(Quaternion(NAN, 0, 0, 1), Quaternion(NAN, 0, 0, 1));

    q.set(Vec3(1, -2, 2), 1.0);
    EXPECT_NEAR(57.29578, q.getRotationAngle(), 1e-5);
    EXPECT_TRUE(q.getRotationAxis().equal(Vec3(1, -2, 2) * (1.0 / 3.0), 1e-15));
    EXPECT_SAME_BITS(Vec3(0, 0, 1), Quaternion(0.5, 0.5, 0, 1).getRotationAxis()); // only w counts
}

TEST(QuaternionDirections, ShortestRotationBetweenUnitVectors)
{
    EXPECT_EQ(Quaternion(0, 1, 0, 0), Quaternion(Vec3(1, 0, 0), Vec3(-1, 0, 0)));
    EXPECT_EQ(Quaternion(0, -1, 0, 0), Quaternion(Vec3(0, 0, 1), Vec3(0, 0, -1)));
    EXPECT_EQ(Quaternion(0, 0, 1, 0), Quaternion(Vec3(0, 1, 0), Vec3(0, -1, 0)));
    EXPECT_EQ(Quaternion(), Quaternion(Vec3(0, 1, 0), Vec3(0, 1, 0)));
    EXPECT_EQ(Quaternion(), Quaternion(Vec3(), Vec3()));

    Testing::SeededRandom random;
    for (int i = 0; i < 100; ++i) {
        Vec3 from = random.vec3(-1.0, 1.0);
        Vec3 to = random.vec3(-1.0, 1.0);
        from.normalize();
        to.normalize();
        Quaternion const q(from, to);
        EXPECT_TRUE(Quaternion::quaternionMulVec3(q, from).equal(to, 1e-13));
        EXPECT_NEAR(from.angleBetween(to) * kRadiansToDegrees, q.getRotationAngle(), 1e-9);
    }
}

TEST(QuaternionProducts, MatchMatricesInEveryForm)
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

TEST(QuaternionSlerp, EndpointsShorterWayArcAndNearlyParallelMidpoint)
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
    EXPECT_EQ(q, Quaternion::lerp(q, q, 0.37));

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
    for (double t : {0.1, 0.5, 0.9}) {
        EXPECT_EQ(midpoint, Quaternion::lerp(a, b, t)) << "t = " << t;
    }
    Quaternion const wider(Vec3(0, 1, 0), 0.303);
    EXPECT_NE(Quaternion::lerp(a, wider, 0.1), Quaternion::lerp(a, wider, 0.9));
}

} // namespace
} // namespace Halvane::Quorvex
