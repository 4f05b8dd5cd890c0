#include "Math/BitCompare.h"

#include "Math/Vec2.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Halvane::Quorvex {
namespace {

constexpr double kUntouched = -99.0;

TEST(Vec2Intersect, ReportsTheCrossingAndItsParameters)
{
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
    EXPECT_EQ(IntersectResult::OutsideFirst, Vec2::intersect({0, 0}, {1, 1}, {3, 0}, {3, 5}, out, nullptr, nullptr));
    EXPECT_EQ(Vec2(3.0, 3.0), out);
}

TEST(Vec2Lines, DistancesUseTheUnboundedLine)
{
    Vec2 point(5.0, 2.0);
    EXPECT_DOUBLE_EQ(2.0, point.distanceToLine({0, 0}, {1, 0}));
    EXPECT_DOUBLE_EQ(5.0, point.lineProjectionLength({0, 0}, {1, 0}));
    // Behind p the projection length stays unsigned.
    EXPECT_DOUBLE_EQ(3.0, Vec2(-3.0, 1.0).lineProjectionLength({0, 0}, {2, 0}));
    EXPECT_TRUE(std::isnan(point.distanceToLine({1, 1}, {1, 1})));
}

TEST(Vec2Lines, AreaConversionsAndSides)
{
    EXPECT_SAME_BITS(Vec2(60.0, 22.0), Vec2::centerToTopLefetPoint({10, 3}, {100, 50}));
    EXPECT_SAME_BITS(Vec2(10.0, 3.0), Vec2::topLeftToCenterPoint({60, 22}, {100, 50}));
    EXPECT_EQ(1.0, Vec2::signedArea({0, 0}, {1, 0}, {0, 1}));
    EXPECT_EQ(-1.0, Vec2::signedArea({0, 0}, {0, 1}, {1, 0}));

    // Only c and d against the line through a and b: the segments themselves need not meet.
    EXPECT_TRUE(Vec2::intersecting({0, 0}, {1, 0}, {5, 1}, {5, -1}));
    EXPECT_FALSE(Vec2::intersecting({0, 0}, {1, 0}, {5, 1}, {6, 2}));
    EXPECT_FALSE(Vec2::intersecting({0, 0}, {1, 0}, {5, 0}, {5, -1}));
    EXPECT_TRUE(Vec2::intersecting({0, 0}, {1, 0}, {5, 0}, {5, 1}));
}

TEST(Vec2Quadrants, OppositeQuadrantTreatsZeroAsASignOfItsOwn)
{
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
