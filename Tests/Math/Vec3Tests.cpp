#include "Math/BitCompare.h"
#include "Math/TransformTesting.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Halvane::Quorvex {
namespace {

TEST(Vec3Tests, EqualityIndexedAccessAndLargestComponent)
{
    Vec3 const origin;
    EXPECT_TRUE(origin == Vec3(1e-12, -1e-12, 1e-12));
    EXPECT_TRUE(origin != Vec3(0.0, 0.0, std::nextafter(1e-12, 1.0)));
    Vec3 const withNaN(0.0, 0.0, NAN);
    EXPECT_FALSE(withNaN == withNaN);
    Vec3 v;
    v.set(7, 1.5);
    EXPECT_SAME_BITS(Vec3(0.0, 0.0, 1.5), v);

    // Ties go to the later index.
    EXPECT_EQ(0, Vec3(-5, 1, 1).largestAbsComponent());
    EXPECT_EQ(1, Vec3(1, 3, 1).largestAbsComponent());
    EXPECT_EQ(1, Vec3(3, 3, 1).largestAbsComponent());
    EXPECT_EQ(2, Vec3(3, 1, 3).largestAbsComponent());
    EXPECT_EQ(2, Vec3(1, 3, -3).largestAbsComponent());
    EXPECT_EQ(2, Vec3().largestAbsComponent());
}

TEST(Vec3Tests, ZeroVectorFallbacksAndSignedZeros)
{
    Vec3 v;
    v.normalize();
    EXPECT_SAME_BITS(Vec3(1.0, 0.0, 0.0), v);
    v.setZero();
    v.setLength(5.0);
    EXPECT_SAME_BITS(Vec3(5.0, 0.0, 0.0), v);
    EXPECT_DOUBLE_EQ(M_PI / 2.0, Vec3(1, 0, 0).angleBetween(Vec3(0, 1, 0)));
    EXPECT_TRUE(std::isnan(Vec3().angleBetween(Vec3(0, 1, 0))));

    v.set(0.0, -0.0, 2.0);
    EXPECT_SAME_BITS(Vec3(-0.0, 0.0, -2.0), v.negate());
    v.setNegate();
    EXPECT_SAME_BITS(Vec3(-0.0, 0.0, -2.0), v);
    double const inf = std::numeric_limits<double>::infinity();
    v.setInvert();
    EXPECT_SAME_BITS(Vec3(-inf, inf, -0.5), v);
    Vec3 fractional(1.5, -1.5, -0.0);
    EXPECT_SAME_BITS(Vec3(1.0, -2.0, -0.0), fractional.floor());
    EXPECT_SAME_BITS(Vec3(1.5, -1.5, -0.0), fractional);
}

TEST(Vec3Cycles, CyclicDifferenceTakesOffOneCycleAtMost)
{
    EXPECT_EQ(-20.0, cyclicDifference(350.0, 10.0, 360.0));
    EXPECT_EQ(20.0, cyclicDifference(10.0, 350.0, 360.0));
    EXPECT_EQ(180.0, cyclicDifference(180.0, 0.0, 360.0));
    EXPECT_EQ(-180.0, cyclicDifference(0.0, 180.0, 360.0));
    EXPECT_EQ(640.0, cyclicDifference(1000.0, 0.0, 360.0));
    // With a cycle of 0 nothing wraps.
    EXPECT_SAME_BITS(Vec3(340.0, -5.0, 0.0), Vec3(350, 0, 1).rotationalDifference(Vec3(10, 5, 1)));
}

TEST(Vec3Ortho, PerpendicularFromTheVectorsOwnLargestComponent)
{
    Vec3 v(1.0, 0.0, 0.0);
    v.ortho(Vec3(1.0, 2.0, 3.0));
    Vec3 expected(2.0, -1.0, 0.0);
    expected.normalize();
    EXPECT_SAME_BITS(expected, v);

    // The axis is chosen from this vector (y here, so x), not from v.
    Vec3 w(0.0, 5.0, 0.0);
    w.ortho(Vec3(0.0, 0.0, 2.0));
    EXPECT_EQ(Vec3(0.0, 1.0, 0.0), w);

    // Parallel, and the vector itself: no perpendicular, x.
    Vec3 parallel(1.0, 0.0, 0.0);
    parallel.ortho(Vec3(0.0, 0.0, 1.0));
    EXPECT_SAME_BITS(Vec3(1.0, 0.0, 0.0), parallel);
    Vec3 self(0.0, 0.0, 4.0);
    self.ortho(self);
    EXPECT_SAME_BITS(Vec3(1.0, 0.0, 0.0), self);
}

TEST(Vec3Transforms, AgreeWithTheMatrixAndQuaternionForms)
{
    Testing::SeededRandom random;
    for (int i = 0; i < 100; ++i) {
        Mat4 const m = random.invertibleMatrix();
        Quaternion const q = random.unitQuaternion();
        Vec3 const v = random.vec3(-10, 10);
        Vec3 point(v);
        point.applyMatrix4(m);
        EXPECT_SAME_BITS(m.mult(v), point);
        point = v;
        point.applyProjection(m);
        EXPECT_TRUE(point.equal(m.multAndProject(v), 1e-13));
        point = v;
        point.applyQuaternion(q);
        EXPECT_TRUE(point.equal(Quaternion::quaternionMulVec3(q, v), 1e-13));
        // Unnormalised, the length scales by the squared length of q.
        point = v;
        point.applyQuaternion(Quaternion(q.x * 2, q.y * 2, q.z * 2, q.w * 2));
        EXPECT_NEAR(4.0 * v.length(), point.length(), 1e-12);
    }

    Mat4 const m(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, false);
    Vec3 v;
    v.setFromMatrixPosition(m);
    EXPECT_SAME_BITS(Vec3(4, 8, 12), v);
    v.setFromMatrixColumn(m, 1);
    EXPECT_SAME_BITS(Vec3(2, 6, 10), v);
    v.transformDirection(m); // untranslated, then unit length
    EXPECT_TRUE(v == Vec3(44, 116, 188) * (1.0 / Vec3(44, 116, 188).length()));
    v.transformDirection(Mat4(false));
    EXPECT_SAME_BITS(Vec3(1, 0, 0), v);
}

} // namespace
} // namespace Halvane::Quorvex
