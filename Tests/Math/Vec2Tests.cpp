#include "Math/BitCompare.h"

#include "Math/Float.h"
#include "Math/Vec2.h"
#include "Math/Vec4.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Halvane::Quorvex {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
double const kJustAboveTolerance = std::nextafter(kFloatTolerance, 1.0);
double const kJustBelowTolerance = std::nextafter(kFloatTolerance, 0.0);

TEST(Vec2Equality, AbsoluteIncludesTheToleranceRadialExcludesIt)
{
    EXPECT_TRUE(floatEqual(0.0, kFloatTolerance));
    EXPECT_FALSE(floatEqual(0.0, kJustAboveTolerance));
    EXPECT_FALSE(floatEqual(NAN, NAN));
    EXPECT_FALSE(floatEqual(kInf, kInf));

    Vec2 zero;
    EXPECT_TRUE(Vec2(1e-12, -1e-12) == zero);
    EXPECT_FALSE(Vec2(0.0, kJustAboveTolerance) == zero);
    EXPECT_TRUE(zero != Vec2(0.0, kJustAboveTolerance));
    EXPECT_TRUE(Vec2(1.0, 2.0).equal(Vec2(1.5, 2.5), 0.5));
    Vec2 withNaN(NAN, 0.0);
    EXPECT_TRUE(!(withNaN == withNaN) && withNaN != withNaN);
    EXPECT_FALSE(Vec2(0.0, kInf) == Vec2(0.0, kInf));

    EXPECT_FALSE(Vec2::equalWithTolerance(Vec2(0.0, 0.0), Vec2(0.5, 0.0), 0.5));
    // Each component lies within the tolerance, the distance does not.
    EXPECT_FALSE(Vec2::equalWithTolerance(0.0, 0.0, 0.4, 0.4, 0.5));
    EXPECT_TRUE(Vec2::equalWithTolerance(1.0, 1.0, 1.3, 1.3, 0.5));
}

TEST(Vec2Predicates, ZeroNegligibleDuplicateCollinearAndOrthogonalBounds)
{
    EXPECT_TRUE(Vec2(-0.0, -0.0).isZero());
    EXPECT_TRUE(Vec2(kJustBelowTolerance, -kJustBelowTolerance).negligible());
    EXPECT_FALSE(Vec2(kFloatTolerance, 0.0).negligible());
    EXPECT_FALSE(Vec2::negligible(-kFloatTolerance));
    EXPECT_TRUE(Vec2(NAN, 0.0).nonNegligible());

    // A square of half-width 0.25, boundary excluded.
    EXPECT_TRUE(Vec2::isDuplicate(Vec2(1.0, 1.0), Vec2(1.24, 1.24)));
    EXPECT_FALSE(Vec2::isDuplicate(Vec2(1.0, 1.0), Vec2(1.0, 0.75)));

    EXPECT_TRUE(Vec2(0.0, 0.0).isCollinear(Vec2(3.0, 7.0)));
    EXPECT_TRUE(Vec2(1e6, 0.0).isCollinear(Vec2(1e6, 1e-7))); // relative to the lengths
    EXPECT_FALSE(Vec2(1.0, 0.0).isCollinear(Vec2(1.0, 1e-9)));
    // The difference of the component products, not their sum, is compared.
    EXPECT_TRUE(Vec2(1.0, 1.0).isOrthogonal(Vec2(1.0, 1.0)));
    EXPECT_FALSE(Vec2(1.0, 1.0).isOrthogonal(Vec2(1.0, -1.0)));
}

TEST(Vec2Tests, ZeroVectorFallbacks)
{
    Vec2 v;
    v.normalize();
    EXPECT_SAME_BITS(Vec2(1.0, 0.0), v);
    v.setZero();
    v.setLength(5.0);
    EXPECT_SAME_BITS(Vec2(5.0, 0.0), v);
    EXPECT_SAME_BITS(Vec2(0.0, 0.0), Vec2(2.0, 3.0).project(Vec2(0.0, 0.0)));

    // Only the member falls back; the static form leaves short vectors alone.
    double x = 1e-13;
    double y = 0.0;
    Vec2::normalize(&x, &y);
    EXPECT_SAME_BITS(1e-13, x);
    Vec2 tiny(1e-13, 0.0);
    tiny.normalize();
    EXPECT_EQ(Vec2(1.0, 0.0), tiny);

    EXPECT_EQ(kInf, Vec2(0.0, 1.0).slope());
    EXPECT_TRUE(std::isnan(Vec2(1.0, 1.0).modulo(Vec2(0.0, 1.0)).x));
}

TEST(Vec2SignedZeros, NegateFollowSignsAndClamp)
{
    EXPECT_SAME_BITS(Vec2(-0.0, 0.0), Vec2(0.0, -0.0).negate());
    Vec2 v(3.0, 0.0);
    v.followSigns(Vec2(0.0, 5.0));
    EXPECT_SAME_BITS(Vec2(-3.0, -0.0), v);
    v.set(-3.0, -3.0);
    v.followSigns(Vec2(0.0, 2.0));
    EXPECT_SAME_BITS(Vec2(-3.0, 3.0), v);

    // With the bounds crossed, low wins below it and high everywhere else.
    Vec2 value(0.0, 7.0);
    value.clamp(Vec2(5.0, 5.0), Vec2(1.0, 1.0));
    EXPECT_SAME_BITS(Vec2(5.0, 1.0), value);
}

TEST(Vec2Angles, ZeroVectorHasAngleZeroAndQuadrantsCountZeroAsPositive)
{
    for (Vec2 zero : {Vec2(), Vec2(-0.0, 0.0), Vec2(-0.0, -0.0)}) {
        EXPECT_SAME_BITS(0.0, zero.getAngle());
    }
    Vec2 zero;
    zero.setAngle(90.0);
    EXPECT_SAME_BITS(Vec2(), zero);
    Vec2 v(0.0, 2.0);
    EXPECT_DOUBLE_EQ(90.0, v.getAngle());
    v.setAngle(180.0);
    EXPECT_EQ(Vec2(-2.0, 0.0), v);

    EXPECT_EQ(1, Vec2(0.0, 0.0).getQuadrant());
    EXPECT_EQ(1, Vec2(0.0, -0.0).getQuadrant());
    EXPECT_EQ(2, Vec2(-1.0, 0.0).getQuadrant());
    EXPECT_EQ(3, Vec2(-1.0, -1.0).getQuadrant());
    EXPECT_EQ(4, Vec2(0.0, -1.0).getQuadrant());
}

TEST(Vec2Angles, RotationUsesTheFifteenDigitConstant)
{
    Vec2 exact(-0.0, kInf);
    exact.rotate(0.0);
    EXPECT_SAME_BITS(Vec2(-0.0, kInf), exact);
    EXPECT_SAME_BITS(Vec2(-0.0, kInf), exact.rotateRound(0.0, Vec2(1.0, 1.0)));

    // 360 * kDegreesToRadians falls short of 2 pi, so a full turn does not come back.
    Vec2 fullTurn(1.0, 0.0);
    fullTurn.rotate(360.0);
    EXPECT_NEAR(360.0 * kDegreesToRadians - 2.0 * M_PI, fullTurn.y, 1e-15);
    EXPECT_LT(fullTurn.y, -1e-13);

    Vec2 const point(2.0, 1.0);
    EXPECT_EQ(Vec2(1.0, 2.0), point.rotateRound(90.0, Vec2(1.0, 1.0)));
    Vec2 moved = point;
    moved.rotateAround(-90.0, Vec2(1.0, 1.0));
    EXPECT_EQ(Vec2(1.0, 0.0), moved);
    EXPECT_DOUBLE_EQ(90.0, Vec2(1.0, 0.0).angleBetween(Vec2(0.0, 1.0)));
    EXPECT_DOUBLE_EQ(-90.0, Vec2(0.0, 1.0).angleBetween(Vec2(1.0, 0.0)));
}

TEST(Vec2Intersect, ReportsTheCrossingAndItsParameters)
{
    constexpr double kUntouched = -99.0;
    struct Case
    {
        Vec2 a, b, c, d;
        IntersectResult result;
        Vec2 out;
        double t1, t2;
    };
    Case const cases[] = {
        {{0, 0}, {2, 2}, {0, 2}, {2, 0}, IntersectResult::Intersecting, {1, 1}, 0.5, 0.5},
        // Parameters of exactly 0 and 1 lie on their segments.
        {{0, 0}, {1, 0}, {1, 0}, {1, 1}, IntersectResult::Intersecting, {1, 0}, 1.0, 0.0},
        {{0, 0}, {1, 1}, {3, 0}, {3, 5}, IntersectResult::OutsideFirst, {3, 3}, 3.0, 0.6},
        {{0, 0}, {2, 0}, {1, 1}, {1, 3}, IntersectResult::OutsideSecond, {1, 0}, 0.5, -0.5},
        {{0, 0}, {1, 0}, {3, 1}, {3, 2}, IntersectResult::OutsideBoth, {3, 0}, 3.0, -1.0},
        // Neither writes the parameters.
        {{0, 0}, {2, 0}, {1, 0}, {3, 0}, IntersectResult::Coincident, {1, 0}, kUntouched, kUntouched},
        {{0, 0}, {1, 0}, {0, 1}, {1, 1}, IntersectResult::Parallel, {0, 0}, kUntouched, kUntouched},
    };
    for (Case const& expected : cases) {
        SCOPED_TRACE(::testing::Message() << "case " << &expected - cases);
        Vec2 out(kUntouched, kUntouched);
        double t1 = kUntouched;
        double t2 = kUntouched;
        EXPECT_EQ(expected.result, Vec2::intersect(expected.a, expected.b, expected.c, expected.d, out, &t1, &t2));
        EXPECT_EQ(expected.out, out);
        EXPECT_DOUBLE_EQ(expected.t1, t1);
        EXPECT_DOUBLE_EQ(expected.t2, t2);
    }
    Vec2 out;
    EXPECT_EQ(IntersectResult::OutsideFirst, Vec2::intersect({0, 0}, {1, 1}, {3, 0}, {3, 5}, out));
    EXPECT_EQ(Vec2(3.0, 3.0), out);
}

TEST(Vec2Lines, DistancesAreasAndSides)
{
    Vec2 point(5.0, 2.0);
    EXPECT_DOUBLE_EQ(2.0, point.distanceToLine({0, 0}, {1, 0}));
    EXPECT_DOUBLE_EQ(5.0, point.lineProjectionLength({0, 0}, {1, 0}));
    // Behind p the projection length stays unsigned.
    EXPECT_DOUBLE_EQ(3.0, Vec2(-3.0, 1.0).lineProjectionLength({0, 0}, {2, 0}));
    EXPECT_TRUE(std::isnan(point.distanceToLine({1, 1}, {1, 1})));

    EXPECT_SAME_BITS(Vec2(60.0, 22.0), Vec2::centerToTopLefetPoint({10, 3}, {100, 50}));
    EXPECT_SAME_BITS(Vec2(10.0, 3.0), Vec2::topLeftToCenterPoint({60, 22}, {100, 50}));
    EXPECT_EQ(1.0, Vec2::signedArea({0, 0}, {1, 0}, {0, 1}));
    EXPECT_EQ(-1.0, Vec2::signedArea({0, 0}, {0, 1}, {1, 0}));

    // Only c and d against the line through a and b: the segments themselves need not meet.
    EXPECT_TRUE(Vec2::intersecting({0, 0}, {1, 0}, {5, 1}, {5, -1}));
    EXPECT_FALSE(Vec2::intersecting({0, 0}, {1, 0}, {5, 1}, {6, 2}));
    EXPECT_FALSE(Vec2::intersecting({0, 0}, {1, 0}, {5, 0}, {5, -1}));
    EXPECT_TRUE(Vec2::intersecting({0, 0}, {1, 0}, {5, 0}, {5, 1}));

    // Zero is a sign of its own.
    EXPECT_TRUE(Vec2::oppositeQuadrant({1, 1}, {0, -1}));
    EXPECT_FALSE(Vec2::oppositeQuadrant({1, 1}, {-1, 1}));
    EXPECT_TRUE(Vec2::oppositeQuadrant({1, 0}, {-1, 0}));
    EXPECT_TRUE(Vec2::oppositeQuadrant({0, 0}, {1, 0}));
    EXPECT_FALSE(Vec2::oppositeQuadrant({0, 0}, {0, 0}));
    EXPECT_TRUE(Vec2::oppositeQuadrant({NAN, 0}, {0, 2}));
}

TEST(Vec2Anchors, OrientADirectionAgainstAPoint)
{
    Vec2 direction(-1.0, 0.0);
    EXPECT_FALSE(Vec2::anchorOutwardD(direction, {2, 0}, {0, 0}));
    EXPECT_SAME_BITS(Vec2(-1.0, 0.0), direction);
    EXPECT_TRUE(Vec2::anchorOutward(direction, {2, 0}, {0, 0}, false));
    EXPECT_SAME_BITS(Vec2(1.0, -0.0), direction);
    EXPECT_FALSE(Vec2::anchorOutward(direction, {2, 0}, {0, 0}, false));
    EXPECT_TRUE(Vec2::anchorInward(direction, {2, 0}, {0, 0}));
    EXPECT_SAME_BITS(Vec2(-1.0, 0.0), direction);

    // Perpendicular to b - c is not outward, so the outward form flips it.
    Vec2 sideways(0.0, 1.0);
    EXPECT_TRUE(Vec2::anchorOutward(sideways, {2, 0}, {0, 0}, false));
    EXPECT_SAME_BITS(Vec2(-0.0, -1.0), sideways);
}

} // namespace
} // namespace Halvane::Quorvex
