#include "Math/BitCompare.h"

#include "Math/Box3.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Halvane::Quorvex {
namespace {

using Testing::bitsOf;

constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSmallestNormal = std::numeric_limits<double>::min();

::testing::AssertionResult isEmptyValue(Box3 const& box)
{
    if (auto result = Testing::sameBits(Vec3(kLargest), box.min); !result) {
        return result << " of min";
    }
    return Testing::sameBits(Vec3(kSmallestNormal), box.max) << " of max";
}

Box3 unitBox()
{
    return Box3(Vec3(0, 0, 0), Vec3(1, 1, 1));
}

TEST(Box3Empty, HasItsExactValue)
{
    EXPECT_EQ(0x7FEFFFFFFFFFFFFFu, bitsOf(Box3().min.y));
    EXPECT_EQ(0x0010000000000000u, bitsOf(Box3().max.z));
    EXPECT_TRUE(isEmptyValue(Box3()));
    EXPECT_TRUE(Box3().isEmpty());

    // Not zero: nothing special-cases the empty value.
    EXPECT_EQ(Vec3(kLargest * 0.5), Box3().getCenter());
    EXPECT_EQ(Vec3(kSmallestNormal - kLargest), Box3().getSize());
}

TEST(Box3Empty, OnlyCrossedCornersOrTheZeroBoxAreEmpty)
{
    EXPECT_TRUE(Box3(Vec3(0, 0, 0), Vec3(0, 0, 0)).isEmpty());
    EXPECT_FALSE(Box3(Vec3(1, 1, 1), Vec3(1, 1, 1)).isEmpty());
    EXPECT_TRUE(Box3(Vec3(1, 0, 0), Vec3(0, 1, 1)).isEmpty());
    EXPECT_FALSE(Box3(Vec3(0, 0, 0), Vec3(0, 0, 1e-300)).isEmpty());
}

TEST(Box3Growth, MaxOfTheEmptyValueStaysAboveZero)
{
    Box3 box;
    box.expandByPoint(Vec3(1, 2, 3));
    EXPECT_SAME_BITS(Vec3(1, 2, 3), box.min);
    EXPECT_SAME_BITS(Vec3(1, 2, 3), box.max);

    box.makeEmpty();
    box.expandByPoint(Vec3(-1, -2, -3));
    EXPECT_SAME_BITS(Vec3(-1, -2, -3), box.min);
    EXPECT_SAME_BITS(Vec3(kSmallestNormal), box.max);

    Box3 negative(Vec3(-3, -3, -3), Vec3(-1, 5, -1));
    negative.unionBox(Box3());
    EXPECT_SAME_BITS(Vec3(-3, -3, -3), negative.min);
    EXPECT_SAME_BITS(Vec3(kSmallestNormal, 5, kSmallestNormal), negative.max);
}

TEST(Box3Growth, PointsSeedMaxWhileArraysDoNot)
{
    Vec3 single(-1, -2, -3);
    Box3 fromPoints;
    fromPoints.setFromPoints(&single, 1);
    EXPECT_SAME_BITS(single, fromPoints.min);
    EXPECT_SAME_BITS(single, fromPoints.max);

    float values[] = {-1.0f, -2.0f, -3.0f, 0.5f, -4.0f, -2.5f};
    Box3 fromArray = unitBox();
    fromArray.setFromArray(values, 3);
    EXPECT_SAME_BITS(single, fromArray.min);
    EXPECT_SAME_BITS(Vec3(kSmallestNormal), fromArray.max);
    fromArray.setFromArray(values, 6);
    EXPECT_SAME_BITS(Vec3(-1, -4, -3), fromArray.min);
    EXPECT_SAME_BITS(Vec3(0.5, kSmallestNormal, kSmallestNormal), fromArray.max);
    fromArray.setFromArray(values, 0);
    EXPECT_TRUE(isEmptyValue(fromArray));

    Vec3 points[] = {Vec3(1, 5, -2), Vec3(-1, 6, -3)};
    fromPoints.setFromPoints(points, 2);
    EXPECT_SAME_BITS(Vec3(-1, 5, -3), fromPoints.min);
    EXPECT_SAME_BITS(Vec3(1, 6, -2), fromPoints.max);
    // A negative count reads the first point only.
    fromPoints.setFromPoints(points, -2);
    EXPECT_SAME_BITS(points[0], fromPoints.max);
    fromPoints.setFromPoints(nullptr, 3);
    EXPECT_TRUE(isEmptyValue(fromPoints));
}

TEST(Box3Growth, ScalarArrivesAsAFloat)
{
    Box3 box = unitBox();
    box.expandByScalar(1.0f);
    EXPECT_TRUE(box == Box3(Vec3(-1, -1, -1), Vec3(2, 2, 2)));
    box.expandByScalar(0.1f);
    EXPECT_SAME_BITS(Vec3(-1.0 - static_cast<double>(0.1f)), box.min);
}

TEST(Box3Overlap, IntersectsReplacesTheBoxByTheOverlap)
{
    Box3 box = unitBox();
    box.intersects(Box3(Vec3(2, 2, 2), Vec3(3, 3, 3)));
    EXPECT_TRUE(isEmptyValue(box));

    box = unitBox();
    box.intersects(Box3(Vec3(1, 0, 0), Vec3(2, 1, 1)));
    EXPECT_SAME_BITS(Vec3(1, 0, 0), box.min);
    EXPECT_SAME_BITS(Vec3(1, 1, 1), box.max);
    EXPECT_FALSE(box.isEmpty());

    // Touching at the origin leaves the zero box, which counts as empty.
    box = unitBox();
    box.intersects(Box3(Vec3(-1, -1, -1), Vec3(0, 0, 0)));
    EXPECT_TRUE(isEmptyValue(box));
}

TEST(Box3Overlap, TestsIncludeTheFaces)
{
    Box3 box = unitBox();
    EXPECT_TRUE(box.intersectsBox(Box3(Vec3(1, 0, 0), Vec3(2, 1, 1))));
    EXPECT_TRUE(box.intersectsBox(Box3(Vec3(-1, -1, -1), Vec3(0, 0, 0))));
    EXPECT_FALSE(box.intersectsBox(Box3(Vec3(1.5, 0, 0), Vec3(2, 1, 1))));
    EXPECT_TRUE(box.containsPoint(Vec3(0, 0, 0)));
    EXPECT_TRUE(box.containsPoint(Vec3(1, 1, 1)));
    EXPECT_FALSE(box.containsPoint(Vec3(1, 1, 1.5)));
    EXPECT_TRUE(box.containsBox(Box3(Vec3(0, 0, 0.5), Vec3(1, 1, 1))));
}

TEST(Box3Parameters, MapPointsIntoTheBox)
{
    Box3 box(Vec3(0, 0, 0), Vec3(2, 4, 8));
    EXPECT_SAME_BITS(Vec3(0.5, 0.5, 0.5), box.getParameter(box.getCenter()));
    EXPECT_SAME_BITS(Vec3(1, 1, 1), box.getParameter(box.max));

    Box3 flat(Vec3(0, 0, 1), Vec3(1, 1, 1));
    Vec3 const onFlatAxis = flat.getParameter(Vec3(0.5, 0.5, 1));
    EXPECT_TRUE(std::isnan(onFlatAxis.z));
    EXPECT_EQ(std::numeric_limits<double>::infinity(), flat.getParameter(Vec3(0, 0, 2)).z);

    Box3 unit = unitBox();
    EXPECT_EQ(1.0, unit.distanceToPoint(Vec3(2, 1, 1)));
    EXPECT_EQ(0.0, unit.distanceToPoint(Vec3(0.5, 0.25, 1)));
}

} // namespace
} // namespace Halvane::Quorvex
