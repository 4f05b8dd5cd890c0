#include "Math/BitCompare.h"

#include "Math/Box3.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Halvane::Quorvex {
namespace {

constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSmallestNormal = std::numeric_limits<double>::min();

::testing::AssertionResult spans(Box3 const& box, Vec3 const& min, Vec3 const& max)
{
    if (auto result = Testing::sameBits(min, box.min); !result) {
        return result << " of min";
    }
    return Testing::sameBits(max, box.max) << " of max";
}

::testing::AssertionResult isEmptyValue(Box3 const& box)
{
    return spans(box, Vec3(kLargest), Vec3(kSmallestNormal));
}

Box3 const kUnit(Vec3(0, 0, 0), Vec3(1, 1, 1));

TEST(Box3Empty, HasItsExactValueAndOnlyCrossedCornersOrTheZeroBoxAreEmpty)
{
    // The largest double and the smallest normal one.
    EXPECT_TRUE(isEmptyValue(Box3()));
    EXPECT_TRUE(Box3().isEmpty());
    // Not zero: nothing special-cases the empty value.
    EXPECT_EQ(Vec3(kLargest * 0.5), Box3().getCenter());
    EXPECT_EQ(Vec3(kSmallestNormal - kLargest), Box3().getSize());

    EXPECT_TRUE(Box3(Vec3(0, 0, 0), Vec3(0, 0, 0)).isEmpty());
    EXPECT_FALSE(Box3(Vec3(1, 1, 1), Vec3(1, 1, 1)).isEmpty());
    EXPECT_TRUE(Box3(Vec3(1, 0, 0), Vec3(0, 1, 1)).isEmpty());
    EXPECT_FALSE(Box3(Vec3(0, 0, 0), Vec3(0, 0, 1e-300)).isEmpty());
}

TEST(Box3Growth, MaxOfTheEmptyValueStaysAboveZero)
{
    Box3 box;
    box.expandByPoint(Vec3(1, 2, 3));
    EXPECT_TRUE(spans(box, Vec3(1, 2, 3), Vec3(1, 2, 3)));
    box.makeEmpty();
    box.expandByPoint(Vec3(-1, -2, -3));
    EXPECT_TRUE(spans(box, Vec3(-1, -2, -3), Vec3(kSmallestNormal)));

    Box3 negative(Vec3(-3, -3, -3), Vec3(-1, 5, -1));
    negative.unionBox(Box3());
    EXPECT_TRUE(spans(negative, Vec3(-3, -3, -3), Vec3(kSmallestNormal, 5, kSmallestNormal)));

    box = kUnit;
    box.expandByScalar(1.0f);
    EXPECT_TRUE(box == Box3(Vec3(-1, -1, -1), Vec3(2, 2, 2)));
    box.expandByScalar(0.1f); // arrives as a float
    EXPECT_SAME_BITS(Vec3(-1.0 - Testing::widened(0.1f)), box.min);
}

TEST(Box3Growth, PointsSeedMaxWhileArraysDoNot)
{
    Vec3 single(-1, -2, -3);
    Box3 fromPoints;
    fromPoints.setFromPoints(&single, 1);
    EXPECT_TRUE(spans(fromPoints, single, single));

    float values[] = {-1.0f, -2.0f, -3.0f, 0.5f, -4.0f, -2.5f};
    Box3 fromArray = kUnit;
    fromArray.setFromArray(values, 3);
    EXPECT_TRUE(spans(fromArray, single, Vec3(kSmallestNormal)));
    fromArray.setFromArray(values, 6);
    EXPECT_TRUE(spans(fromArray, Vec3(-1, -4, -3), Vec3(0.5, kSmallestNormal, kSmallestNormal)));
    fromArray.setFromArray(values, 0);
    EXPECT_TRUE(isEmptyValue(fromArray));

    Vec3 points[] = {Vec3(1, 5, -2), Vec3(-1, 6, -3)};
    fromPoints.setFromPoints(points, 2);
    EXPECT_TRUE(spans(fromPoints, Vec3(-1, 5, -3), Vec3(1, 6, -2)));
    // A negative count reads the first point only.
    fromPoints.setFromPoints(points, -2);
    EXPECT_SAME_BITS(points[0], fromPoints.max);
    fromPoints.setFromPoints(nullptr, 3);
    EXPECT_TRUE(isEmptyValue(fromPoints));
}

TEST(Box3Overlap, IntersectsReplacesTheBoxByTheOverlapAndTestsIncludeTheFaces)
{
    Box3 box = kUnit;
    box.intersects(Box3(Vec3(2, 2, 2), Vec3(3, 3, 3)));
    EXPECT_TRUE(isEmptyValue(box));
    box = kUnit;
    box.intersects(Box3(Vec3(1, 0, 0), Vec3(2, 1, 1)));
    EXPECT_TRUE(spans(box, Vec3(1, 0, 0), Vec3(1, 1, 1)));
    EXPECT_FALSE(box.isEmpty());
    // Touching at the origin leaves the zero box, which counts as empty.
    box = kUnit;
    box.intersects(Box3(Vec3(-1, -1, -1), Vec3(0, 0, 0)));
    EXPECT_TRUE(isEmptyValue(box));

    EXPECT_TRUE(kUnit.intersectsBox(Box3(Vec3(1, 0, 0), Vec3(2, 1, 1))));
    EXPECT_TRUE(kUnit.intersectsBox(Box3(Vec3(-1, -1, -1), Vec3(0, 0, 0))));
    EXPECT_FALSE(kUnit.intersectsBox(Box3(Vec3(1.5, 0, 0), Vec3(2, 1, 1))));
    EXPECT_TRUE(kUnit.containsPoint(Vec3(0, 0, 0)) && kUnit.containsPoint(Vec3(1, 1, 1)));
    EXPECT_FALSE(kUnit.containsPoint(Vec3(1, 1, 1.5)));
    EXPECT_TRUE(kUnit.containsBox(Box3(Vec3(0, 0, 0.5), Vec3(1, 1, 1))));
}

TEST(Box3Parameters, MapPointsIntoTheBox)
{
    Box3 box(Vec3(0, 0, 0), Vec3(2, 4, 8));
    EXPECT_SAME_BITS(Vec3(0.5, 0.5, 0.5), box.getParameter(box.getCenter()));
    EXPECT_SAME_BITS(Vec3(1, 1, 1), box.getParameter(box.max));
    Box3 flat(Vec3(0, 0, 1), Vec3(1, 1, 1));
    EXPECT_TRUE(std::isnan(flat.getParameter(Vec3(0.5, 0.5, 1)).z));
    EXPECT_EQ(std::numeric_limits<double>::infinity(), flat.getParameter(Vec3(0, 0, 2)).z);

    Box3 unit = kUnit;
    EXPECT_EQ(1.0, unit.distanceToPoint(Vec3(2, 1, 1)));
    EXPECT_EQ(0.0, unit.distanceToPoint(Vec3(0.5, 0.25, 1)));
}

} // namespace
} // namespace Halvane::Quorvex
