#include "Math/BitCompare.h"

#include "Math/Vec3.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Halvane::Quorvex {
namespace {

TEST(Vec3Tests, EqualityAndIndexedAccess)
{
    Vec3 const origin;
    EXPECT_TRUE(origin == Vec3(1e-12, -1e-12, 1e-12));
    EXPECT_TRUE(origin != Vec3(0.0, 0.0, std::nextafter(1e-12, 1.0)));
    Vec3 const withNaN(0.0, 0.0, NAN);
    EXPECT_FALSE(withNaN == withNaN);

    Vec3 v;
    v.set(7, 1.5);
    EXPECT_SAME_BITS(Vec3(0.0, 0.0, 1.5), v);
}

TEST(Vec3Tests, LargestAbsComponentGivesTiesToTheLaterIndex)
{
    EXPECT_EQ(0, Vec3(-5, 1, 1).largestAbsComponent());
    EXPECT_EQ(1, Vec3(1, 3, 1).largestAbsComponent());
    EXPECT_EQ(1, Vec3(3, 3, 1).largestAbsComponent());
    EXPECT_EQ(2, Vec3(3, 1, 3).largestAbsComponent());
    EXPECT_EQ(2, Vec3(1, 3, -3).largestAbsComponent());
    EXPECT_EQ(2, Vec3().largestAbsComponent());
}

TEST(Vec3Tests, ZeroVectorFallbacksAndUnguardedResults)
{
    Vec3 v;
    v.normalize();
    EXPECT_SAME_BITS(Vec3(1.0, 0.0, 0.0), v);
    v.setZero();
    v.setLength(5.0);
    EXPECT_SAME_BITS(Vec3(5.0, 0.0, 0.0), v);

    EXPECT_DOUBLE_EQ(M_PI / 2.0, Vec3(1, 0, 0).angleBetween(Vec3(0, 1, 0)));
    EXPECT_TRUE(std::isnan(Vec3().angleBetween(Vec3(0, 1, 0))));
}

TEST(Vec3SignedZeros, NegateAndInvertKeepSigns)
{
    Vec3 v(0.0, -0.0, 2.0);
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

    Vec3 parallel(1.0, 0.0, 0.0);
    parallel.ortho(Vec3(0.0, 0.0, 1.0));
    EXPECT_SAME_BITS(Vec3(1.0, 0.0, 0.0), parallel);

    Vec3 self(0.0, 0.0, 4.0);
    self.ortho(self);
    EXPECT_SAME_BITS(Vec3(1.0, 0.0, 0.0), self);
}

} // namespace
} // namespace Halvane::Quorvex
