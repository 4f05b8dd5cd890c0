#include "Math/BitCompare.h"

#include "Math/Range.h"
#include "Math/Rect.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Halvane::Quorvex {
namespace {

using Testing::widened;

// x, y, width, height
Vec4 fields(Rect const& rect)
{
    return {rect.getLeft(), rect.getTop(), rect.getSize().x, rect.getSize().y};
}

TEST(RangeTests, BoolSelectsTheUnboundedRange)
{
    EXPECT_TRUE(Range(true).first == 0 && Range(true).second == 2147483647);
    EXPECT_EQ(0, Range(false).second);
    EXPECT_EQ(0, Range(5).second);
}

TEST(RectEdges, EmptinessEqualityAndSetters)
{
    EXPECT_TRUE(Rect().isEmpty());
    EXPECT_FALSE(Rect(0, 0, 10, 0).isEmpty());
    EXPECT_TRUE(Rect(3, 4, 0, 0).isEmpty());
    EXPECT_TRUE(Rect(0, 0, 0, 0) == Rect(0, 0, 0, 1e-12));
    EXPECT_TRUE(Rect(0, 0, 0, 0) != Rect(0, 0, 0, std::nextafter(1e-12, 1.0)));
    EXPECT_FALSE(Rect(NAN, 0, 0, 0) == Rect(NAN, 0, 0, 0));

    // One edge moves, or the whole rectangle; the bottom arrives as a float.
    Rect rect(5, 0, 1, 1);
    rect.setRight(15);
    EXPECT_SAME_BITS(Vec4(5, 0, 10, 1), fields(rect));
    rect.setLeft(7);
    EXPECT_SAME_BITS(Vec4(7, 0, 10, 1), fields(rect));
    rect.setBottom(0.1f);
    EXPECT_SAME_BITS(widened(0.1f), fields(rect).w);
    rect.setCenter(Vec2(10, 10));
    EXPECT_SAME_BITS(Vec4(5, 10 - 0.5 * widened(0.1f), 10, widened(0.1f)), fields(rect));
}

TEST(RectRelations, SharedEdgesTouchWithoutIntersecting)
{
    Rect const a(0, 0, 10, 10);
    Rect const b(10, 0, 5, 5);
    EXPECT_FALSE(a.intersects(b) || b.intersects(a));
    EXPECT_TRUE(a.touches(b));
    EXPECT_TRUE(a.touches(Rect(10, 10, 1, 1)));
    EXPECT_FALSE(a.touches(Rect(10.5, 0, 1, 1)));
    EXPECT_TRUE(a.containsPoint(Vec2(10, 10)));
    EXPECT_FALSE(a.containsPoint(Vec2(10.5, 5)));
    EXPECT_TRUE(a.containsRect(Rect(5, 0, 5, 10)));
    EXPECT_FALSE(a.containsRect(Rect(5, 0, 6, 10)));
}

TEST(RectDerived, IntersectAndUniteAreUnclamped)
{
    Rect a(0, 0, 10, 10);
    EXPECT_SAME_BITS(Vec4(10, 0, 0, 5), fields(a.intersect(Rect(10, 0, 5, 5))));
    EXPECT_SAME_BITS(Vec4(0, 0, 10, 10), fields(a));
    Rect small(0, 0, 1, 1);
    EXPECT_SAME_BITS(Vec4(5, 5, -4, -4), fields(small.intersect(Rect(5, 5, 1, 1))));
    EXPECT_SAME_BITS(Vec4(0, 0, 6, 6), fields(small.unite(Rect(5, 5, 1, 1))));

    // The empty rectangle pulls the union to the origin.
    Rect away(5, 5, 1, 1);
    EXPECT_SAME_BITS(Vec4(0, 0, 6, 6), fields(away.unite(Rect())));
    away.include(Vec2(2, 8));
    EXPECT_SAME_BITS(Vec4(2, 5, 4, 3), fields(away));
}

TEST(RectDerived, ExpandAndScaleMoveEverySide)
{
    Rect rect(0, 0, 10, 10);
    EXPECT_SAME_BITS(Vec4(-1, -1, 12, 12), fields(rect.expand(1.0f)));
    double const d = widened(0.1f);
    EXPECT_SAME_BITS(Vec4(-d, -d, 10 + widened(0.1f + 0.1f), 10 + widened(0.1f + 0.1f)), fields(rect.expand(0.1f)));

    // d + d is summed in float: it overflows where the double would not.
    float const huge = std::numeric_limits<float>::max();
    Vec4 const overflowed = fields(rect.expand(huge));
    EXPECT_SAME_BITS(-widened(huge), overflowed.x);
    EXPECT_EQ(std::numeric_limits<double>::infinity(), overflowed.z);

    EXPECT_TRUE(rect.scale(1, 1) == rect);
    EXPECT_SAME_BITS(Vec4(-10, -10, 30, 30), fields(rect.scale(2, 2)));
    EXPECT_SAME_BITS(Vec4(5, -5, 0, 20), fields(rect.scale(0.5f, 1.5f)));
    EXPECT_SAME_BITS(Vec4(0, 0, 10, 10), fields(rect));
}

} // namespace
} // namespace Halvane::Quorvex
