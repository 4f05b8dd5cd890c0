#include "Math/BitCompare.h"

#include "Math/Barycentric.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace Halvane::Quorvex {
namespace {

::testing::AssertionResult weightsAre(Barycentric const& b, double u, double v, double w)
{
    if (std::abs(b.u - u) > 1e-12 || std::abs(b.v - v) > 1e-12 || std::abs(b.w - w) > 1e-12) {
        return ::testing::AssertionFailure() << "weights are (" << b.u << ", " << b.v << ", " << b.w << ")";
    }
    return ::testing::AssertionSuccess();
}

Vec2 const kA(0, 0);
Vec2 const kB(1, 0);
Vec2 const kC(0, 1);

TEST(BarycentricWeights, CornersInteriorAndExtrapolationOfAPlaneTriangle)
{
    Barycentric inner(kA, kB, kC, Vec2(0.25, 0.5));
    EXPECT_TRUE(weightsAre(inner, 0.25, 0.25, 0.5) && inner.isInside());
    for (auto [corner, u, v, w] : {std::tuple{kA, 1.0, 0.0, 0.0}, std::tuple{kB, 0.0, 1.0, 0.0},
                                   std::tuple{kC, 0.0, 0.0, 1.0}}) {
        Barycentric atCorner(kA, kB, kC, corner);
        EXPECT_TRUE(weightsAre(atCorner, u, v, w) && atCorner.isInside());
    }
    // The point comes last: exchanging it with a corner changes the weights.
    EXPECT_TRUE(weightsAre(Barycentric(Vec2(0.25, 0.5), kB, kC, kA), 4.0, -1.0, -2.0));

    Barycentric outside(kA, kB, kC, Vec2(2, 2));
    EXPECT_TRUE(weightsAre(outside, -3.0, 2.0, 2.0));
    EXPECT_FALSE(outside.isInside());
    EXPECT_EQ(Vec2(2, 2), outside.interpolate(kA, kB, kC));
}

TEST(BarycentricWeights, DegenerateTrianglesGiveNaNAndAreNeverInside)
{
    Barycentric collinear(Vec2(0, 0), Vec2(1, 0), Vec2(2, 0), Vec2(0.25, 0.5));
    EXPECT_TRUE(std::isnan(collinear.u) && std::isnan(collinear.v) && std::isnan(collinear.w));
    EXPECT_FALSE(collinear.isInside());
    Barycentric coinciding(Color(0, 0, 0, 1), Color(0, 0, 0, 1), Color(1, 0, 0, 1), Color(0.5, 0.5, 0, 1));
    EXPECT_FALSE(std::isfinite(coinciding.u));
    EXPECT_FALSE(coinciding.isInside());

    // Stored weights: all bounds checked but the upper one of w.
    EXPECT_TRUE(Barycentric(0.5, 0.5, 3.0).isInside());
    EXPECT_FALSE(Barycentric(0.5, 1.5, 0.0).isInside());
    EXPECT_FALSE(Barycentric(0.5, 0.5, -1e-300).isInside());
    EXPECT_FALSE(Barycentric(NAN, 0.5, 0.5).isInside());
}

TEST(BarycentricSpaces, PointsOffThePlaneProjectOntoItAndFourComponentsAllCount)
{
    Vec3 const a(0, 0, 0);
    Vec3 const b(4, 0, 0);
    Vec3 const c(0, 4, 0);
    Barycentric above(a, b, c, Vec3(1, 2, 5));
    EXPECT_TRUE(weightsAre(above, 0.25, 0.25, 0.5));
    EXPECT_EQ(Vec3(1, 2, 0), above.interpolate(a, b, c));
    // Any values carried by the corners are blended with the same weights.
    EXPECT_EQ(Vec4(1, 1, 2, 4), above.interpolate(Vec4(4, 0, 0, 0), Vec4(0, 4, 0, 0), Vec4(0, 0, 4, 8)));

    Barycentric weights(Vec4(0, 0, 0, 0), Vec4(0, 0, 0, 2), Vec4(0, 0, 2, 0), Vec4(9, 0, 0.5, 1));
    EXPECT_TRUE(weightsAre(weights, 0.25, 0.5, 0.25));
    // Alpha is a coordinate like the others.
    Barycentric colorWeights(Color(0, 0, 0, 0), Color(0, 0, 0, 1), Color(1, 0, 0, 0), Color(0.25, 0, 0, 0.5));
    EXPECT_TRUE(weightsAre(colorWeights, 0.25, 0.5, 0.25));
    Color const mixed = colorWeights.interpolate(Color(1, 0, 0, 1), Color(0, 1, 0, 1), Color(0, 0, 1, -1));
    EXPECT_TRUE(mixed == Color(0.25, 0.5, 0.25, 0.5));
}

} // namespace
} // namespace Halvane::Quorvex
