#include "Math/MathTesting.h"

#include "Math/Barycentric.h"
#include "Math/Box3.h"
#include "Math/Color.h"
#include "Math/Range.h"
#include "Math/Rect.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

namespace Halvane::Quorvex {
namespace {

using Testing::widened;

// A channel as the parser forms it: the field divided in float, then widened.
double fromField(unsigned field, float fieldMax)
{
    return widened(static_cast<float>(field) / fieldMax);
}

::testing::AssertionResult channelsAre(Color const& color, double r, double g, double b, double a)
{
    auto const& c = color.channels;
    return Testing::sameComponents({r, g, b, a}, {c[0], c[1], c[2], c[3]}, "rgba");
}

TEST(ColorTests, TextAndPackedFormsPutAlphaFirstNilColoursAreEqualAndLerpClamps)
{
    // The float quotient widened, not 128/255 in double.
    EXPECT_TRUE(channelsAre(Color(std::string("#80FF0000")), 1, 0, 0, 0x1.0101020000000p-1));
    EXPECT_TRUE(channelsAre(Color(std::string("#1abc")), fromField(10, 15.0f), fromField(11, 15.0f),
                            fromField(12, 15.0f), fromField(1, 15.0f)));
    for (char const* text : {"", " #FF0000", "#12345"}) {
        EXPECT_TRUE(channelsAre(Color(std::string(text)), 1, 1, 1, 1)) << '"' << text << '"';
    }
    // Digits are converted before the length is checked.
    EXPECT_THROW(Color{std::string("#GGGGG")}, std::invalid_argument);
    EXPECT_THROW(Color{std::string("#11112222333344445")}, std::out_of_range);
    EXPECT_TRUE(channelsAre(Color(std::string("#12G")), 0, fromField(1, 15.0f), fromField(2, 15.0f), 1));

    EXPECT_TRUE(channelsAre(Color(0xFF336699u), 0.20000000298023224, fromField(0x66, 255.0f),
                            fromField(0x99, 255.0f), 1));
    EXPECT_EQ("#7FFFFFFF", Color(1, 1, 1, 0.5).toHexString());
    EXPECT_EQ("#0FF00", Color(0xFF0000u).toHexString());
    EXPECT_EQ("#1FE00", Color(2, 0, 0, 1).toHexString());

    // Any negative channel makes a colour nil, and nil colours are all equal.
    EXPECT_TRUE(Color(-1, 0, 0, 0) == Color(0, -2, 0, -1e-300) && Color(-1, 0, 0, 0) != Color(0, 0, 0, 0));
    // Lerp clamps t, and forms the first weight in single precision: 1 - 0.1 is not 0.9.
    EXPECT_TRUE(channelsAre(Color::lerp(Color(0, 1, 0, 1), Color(1, 0, 0, 0), 7.0), 1, 0, 0, 0));
    double const nine = widened(0.9f);
    EXPECT_TRUE(channelsAre(Color::lerp(Color(1, 1, 1, 1), Color(0, 0, 0, 0), 0.1), nine, nine, nine, nine));
}

constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSmallestNormal = std::numeric_limits<double>::min();

::testing::AssertionResult spans(Box3 const& box, Vec3 const& min, Vec3 const& max)
{
    if (auto result = Testing::sameBits(min, box.min); !result) {
        return result << " of min";
    }
    return Testing::sameBits(max, box.max) << " of max";
}

Box3 const kUnit(Vec3(0, 0, 0), Vec3(1, 1, 1));

TEST(Box3Tests, TheEmptyValueGrowsIntoPointsAndOverlaps)
{
    // The largest double and the smallest normal one: max stays above zero.
    EXPECT_TRUE(spans(Box3(), Vec3(kLargest), Vec3(kSmallestNormal)));
    EXPECT_TRUE(Box3(Vec3(0, 0, 0), Vec3(0, 0, 0)).isEmpty());
    EXPECT_FALSE(Box3(Vec3(1, 1, 1), Vec3(1, 1, 1)).isEmpty());
    Box3 box;
    box.expandByPoint(Vec3(-1, -2, -3));
    EXPECT_TRUE(spans(box, Vec3(-1, -2, -3), Vec3(kSmallestNormal)));
    box.expandByScalar(0.1f); // arrives as a float
    EXPECT_SAME_BITS(Vec3(-1.0 - widened(0.1f), -2.0 - widened(0.1f), -3.0 - widened(0.1f)), box.min);

    // Points seed max, arrays do not.
    Vec3 points[] = {Vec3(1, 5, -2), Vec3(-1, 6, -3)};
    box.setFromPoints(points, 2);
    EXPECT_TRUE(spans(box, Vec3(-1, 5, -3), Vec3(1, 6, -2)));
    float values[] = {-1.0f, -2.0f, -3.0f, 0.5f, -4.0f, -2.5f};
    box.setFromArray(values, 6);
    EXPECT_TRUE(spans(box, Vec3(-1, -4, -3), Vec3(0.5, kSmallestNormal, kSmallestNormal)));

    box = kUnit;
    box.intersects(Box3(Vec3(1, 0, 0), Vec3(2, 1, 1)));
    EXPECT_TRUE(spans(box, Vec3(1, 0, 0), Vec3(1, 1, 1)));
    box = kUnit;
    box.intersects(Box3(Vec3(2, 2, 2), Vec3(3, 3, 3)));
    EXPECT_TRUE(spans(box, Vec3(kLargest), Vec3(kSmallestNormal)));
    EXPECT_TRUE(kUnit.intersectsBox(Box3(Vec3(-1, -1, -1), Vec3(0, 0, 0))));
    EXPECT_TRUE(kUnit.containsPoint(Vec3(1, 1, 1)) && !kUnit.containsPoint(Vec3(1, 1, 1.5)));

    Box3 wide(Vec3(1, 1, 1), Vec3(3, 5, 9));
    EXPECT_SAME_BITS(Vec3(0.5, 0.5, 0.5), wide.getParameter(wide.getCenter()));
    wide = kUnit;
    EXPECT_EQ(1.0, wide.distanceToPoint(Vec3(2, 1, 1)));
}

::testing::AssertionResult weightsAre(Barycentric const& b, double u, double v, double w)
{
    if (std::abs(b.u - u) > 1e-12 || std::abs(b.v - v) > 1e-12 || std::abs(b.w - w) > 1e-12) {
        return ::testing::AssertionFailure() << "weights are (" << b.u << ", " << b.v << ", " << b.w << ")";
    }
    return ::testing::AssertionSuccess();
}

TEST(BarycentricTests, WeightsInEverySpaceAndDegenerateTriangles)
{
    Vec2 const a(0, 0);
    Vec2 const b(1, 0);
    Vec2 const c(0, 1);
    Barycentric inner(a, b, c, Vec2(0.25, 0.5));
    EXPECT_TRUE(weightsAre(inner, 0.25, 0.25, 0.5) && inner.isInside());
    Barycentric outside(a, b, c, Vec2(2, 2));
    EXPECT_TRUE(weightsAre(outside, -3.0, 2.0, 2.0) && !outside.isInside());
    EXPECT_EQ(Vec2(2, 2), outside.interpolate(a, b, c));

    Barycentric collinear(Vec2(0, 0), Vec2(1, 0), Vec2(2, 0), Vec2(0.25, 0.5));
    EXPECT_TRUE(std::isnan(collinear.u) && !collinear.isInside());
    // Stored weights: all bounds checked but the upper one of w.
    EXPECT_TRUE(Barycentric(0.5, 0.5, 3.0).isInside());
    EXPECT_FALSE(Barycentric(0.5, 0.5, -1e-300).isInside());

    // Off the plane a point projects onto it.
    Barycentric above(Vec3(0, 0, 0), Vec3(4, 0, 0), Vec3(0, 4, 0), Vec3(1, 2, 5));
    EXPECT_TRUE(weightsAre(above, 0.25, 0.25, 0.5));
    EXPECT_EQ(Vec4(1, 1, 2, 4), above.interpolate(Vec4(4, 0, 0, 0), Vec4(0, 4, 0, 0), Vec4(0, 0, 4, 8)));
    // Alpha is a coordinate like the others.
    Barycentric colorWeights(Color(0, 0, 0, 0), Color(0, 0, 0, 1), Color(1, 0, 0, 0), Color(0.25, 0, 0, 0.5));
    EXPECT_TRUE(weightsAre(colorWeights, 0.25, 0.5, 0.25));
    Color const mixed = colorWeights.interpolate(Color(1, 0, 0, 1), Color(0, 1, 0, 1), Color(0, 0, 1, -1));
    EXPECT_TRUE(mixed == Color(0.25, 0.5, 0.25, 0.5));
}

// x, y, width, height
Vec4 fields(Rect const& rect)
{
    return {rect.getLeft(), rect.getTop(), rect.getSize().x, rect.getSize().y};
}

TEST(RectTests, EdgesRelationsAndUnclampedDerivedRectangles)
{
    EXPECT_TRUE(Range(true).first == 0 && Range(true).second == 2147483647);
    EXPECT_FALSE(Rect(0, 0, 10, 0).isEmpty());
    EXPECT_TRUE(Rect(3, 4, 0, 0).isEmpty());

    Rect rect(5, 0, 1, 1);
    rect.setRight(15);
    EXPECT_SAME_BITS(Vec4(5, 0, 10, 1), fields(rect));
    rect.setBottom(0.1f);
    rect.setCenter(Vec2(10, 10));
    EXPECT_SAME_BITS(Vec4(5, 10 - 0.5 * widened(0.1f), 10, widened(0.1f)), fields(rect));

    // Shared edges touch without intersecting.
    Rect a(0, 0, 10, 10);
    EXPECT_FALSE(a.intersects(Rect(10, 0, 5, 5)) || Rect(10, 0, 5, 5).intersects(a));
    EXPECT_TRUE(a.touches(Rect(10, 10, 1, 1)));
    EXPECT_FALSE(a.touches(Rect(10.5, 0, 1, 1)));
    EXPECT_FALSE(a.containsRect(Rect(5, 0, 6, 10)));

    Rect small(0, 0, 1, 1);
    EXPECT_SAME_BITS(Vec4(5, 5, -4, -4), fields(small.intersect(Rect(5, 5, 1, 1))));
    // The empty rectangle pulls the union to the origin.
    Rect away(5, 5, 1, 1);
    EXPECT_SAME_BITS(Vec4(0, 0, 6, 6), fields(away.unite(Rect())));
    away.include(Vec2(2, 8));
    EXPECT_SAME_BITS(Vec4(2, 5, 4, 3), fields(away));
    // d + d is summed in float: it overflows where the double would not.
    EXPECT_EQ(std::numeric_limits<double>::infinity(), fields(a.expand(std::numeric_limits<float>::max())).z);
    double const d = widened(0.1f);
    EXPECT_SAME_BITS(Vec4(-d, -d, 10 + widened(0.1f + 0.1f), 10 + widened(0.1f + 0.1f)), fields(a.expand(0.1f)));
    EXPECT_SAME_BITS(Vec4(5, -5, 0, 20), fields(a.scale(0.5f, 1.5f)));
}

} // namespace
} // namespace Halvane::Quorvex
