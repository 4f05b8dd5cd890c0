#include "Math/BitCompare.h"
#include "Math/TransformTesting.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Halvane::Quorvex {
namespace {

::testing::AssertionResult holds(std::initializer_list<double> fields, Affine const& a)
{
    return Testing::sameComponents(fields, {a.s0, a.s1, a.s2, a.s3, a.s4, a.s5}, "012345");
}

TEST(AffineConstruction, ArgumentsRunColumnByColumn)
{
    Affine a(false);
    EXPECT_TRUE(holds({0, 0, 0, 0, 0, 0}, a));
    a.set(1, 2, 3, 4, 5, 6);
    EXPECT_TRUE(holds({1, 3, 5, 2, 4, 6}, a) && holds({1, 3, 5, 2, 4, 6}, Affine(1, 2, 3, 4, 5, 6)));
    EXPECT_SAME_BITS(Vec2(5, 6), a.getTransform(Vec2(0, 0)));
    // The in-place form works both results out before it stores either.
    double x = 1;
    double y = 0;
    a.transform(x, y);
    EXPECT_SAME_BITS(Vec2(6, 8), Vec2(x, y));
}

TEST(AffineChaining, NewTransformsActFirstExceptInMultiply)
{
    Affine scaled;
    scaled.setScale(2, 2);
    Affine shift;
    shift.setTranslate(10, 0);
    Affine chained(scaled);
    chained.translate(10, 0);
    Affine before(scaled);
    before.premultiply(shift);
    Affine after(scaled);
    after.multiply(shift);
    EXPECT_EQ(20.0, chained.s2);
    EXPECT_EQ(20.0, before.s2);
    EXPECT_EQ(10.0, after.s2);

    // Rotations commute, so both products agree; the sine is of 30 · 0.017453292519943.
    Affine turn;
    turn.setRotate(30);
    EXPECT_SAME_BITS(std::sin(30 * 0.017453292519943), turn.s3);
    Affine sixty;
    sixty.setRotate(60);
    before = turn;
    before.rotate(30);
    turn.multiply(turn);
    EXPECT_TRUE(turn == sixty && before == sixty);

    // From its parts: the anchor lands on the position, as with T·R·S·T(-anchor).
    Affine parts;
    parts.set(Vec2(3, 4), Vec2(10, 20), Vec2(2, 0.5), 30);
    EXPECT_TRUE(parts.getTransform(Vec2(3, 4)) == Vec2(10, 20));
    Affine chain;
    chain.setTranslate(10, 20);
    chain.rotate(30);
    chain.scale(2, 0.5);
    chain.translate(-3, -4);
    EXPECT_TRUE(chain == parts);
}

TEST(AffineInverse, SingularWithinOneMillionthAndAgreesWithMat4)
{
    Affine const marker(9, 9, 9, 9, 9, 9);
    Affine result(marker);
    Affine a;
    a.setScale(1e-6, 1.0);
    EXPECT_TRUE(a.inverse(result));
    EXPECT_EQ(1e6, result.s0);
    for (double factor : {9.9e-7, -9.9e-7}) {
        result = marker;
        a.setScale(factor, 1.0);
        EXPECT_FALSE(a.inverse(result));
        EXPECT_TRUE(result == marker && a.getInverse() == Affine(true));
    }
    // A determinant of 1e-08: invertible, but taken for singular.
    a.setScale(0.0001, 0.0001);
    EXPECT_TRUE(a.getInverse() == Affine(true));

    Testing::SeededRandom random;
    for (int i = 0; i < 200; ++i) {
        a.set(random.vec3(-50, 50).getVec2(), random.vec3(-50, 50).getVec2(), random.vec3(0.1, 5).getVec2(),
              random.uniform(-360, 360));
        a.skewY(random.uniform(-40, 40));
        Mat4 embedded(false);
        embedded.setWithAffine(a);
        Mat4 matrixInverse(false);
        ASSERT_TRUE(embedded.getInverse(matrixInverse));
        Mat4 affineInverse(false);
        affineInverse.setWithAffine(a.getInverse());
        EXPECT_TRUE(Testing::nearMatrix(matrixInverse, affineInverse, 1e-12));
        EXPECT_TRUE(Testing::nearMatrix(Mat4(true), affineInverse * embedded, 1e-12));
    }
}

TEST(AffineAverageScale, RoundsToFourDecimalsInSinglePrecision)
{
    Affine a;
    a.setScale(1.23456789, 1.23456789);
    EXPECT_EQ(1.2345999479293823, a.averageScale());
    a.setScale(2.0, 2.0);
    EXPECT_EQ(2.0, a.averageScale());
    a.setScale(0.00004, 0.00004);
    EXPECT_EQ(0.0, a.averageScale());
    for (double degrees : {17.0, 45.0, 123.0, -270.0}) {
        a.setRotate(degrees);
        EXPECT_NEAR(1.0, a.averageScale(), 1e-7) << degrees;
    }
}

} // namespace
} // namespace Halvane::Quorvex
