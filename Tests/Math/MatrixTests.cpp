#include "Math/MathTesting.h"

#include "Math/Affine.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Halvane::Quorvex {
namespace {

using Testing::nearMatrix;

constexpr double kSameBits = -1.0;

TEST(Mat4Construction, FlagsReadStorageOrderRowsAndColumns)
{
    double values[16];
    for (int k = 0; k < 16; ++k) {
        values[k] = k;
    }
    Mat4 const rowByRow(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, false);
    for (int k = 0; k < 16; ++k) {
        EXPECT_EQ(k, Mat4(values, true).elements[k]);
        EXPECT_EQ(4 * (k % 4) + k / 4, rowByRow.elements[k]) << "element " << k;
        EXPECT_EQ(k % 5 == 0 ? 1.0 : 0.0, Mat4(true).elements[k]);
    }
    EXPECT_SAME_BITS(Vec4(4, 5, 6, 7), rowByRow.getRow(1));
    // The vector form reads its flag the other way round.
    EXPECT_EQ(1.0, Mat4(Vec4(0, 1, 2, 3), Vec4(), Vec4(), Vec4(), true).elements[4]);
    EXPECT_EQ(1.0, Mat4(Vec4(0, 1, 2, 3), Vec4(), Vec4(), Vec4(), false).elements[1]);
}

TEST(Mat4Algebra, ProductsInversesTranspositionAndAliasedOutputs)
{
    Mat4 translation(true);
    translation.setTranslate(1, 0, 0);
    Mat4 scaling(true);
    scaling.setScale(2, 2, 2);
    EXPECT_SAME_BITS(Vec3(3, 0, 0), (translation * scaling) * Vec3(1, 0, 0));
    EXPECT_SAME_BITS(Vec3(4, 0, 0), (scaling * translation) * Vec3(1, 0, 0));
    Mat4 projective(true);
    projective.setRow(3, Vec4(0, 0, 1, 2));
    // Times the reciprocal of w: 3 · 0.2, which is not 3 / 5.
    EXPECT_SAME_BITS(Vec3(0.2, 0.4, 3 * 0.2), projective.multAndProject(Vec3(1, 2, 3)));

    Testing::SeededRandom random;
    for (int i = 0; i < 200; ++i) {
        Mat4 const a = random.invertibleMatrix();
        Mat4 const b = random.invertibleMatrix();
        Mat4 product(false);
        Mat4::mult(a, b, product);
        Mat4 intoFirst(a);
        Mat4::mult(intoFirst, b, intoFirst);
        Mat4 intoSecond(b);
        Mat4::mult(a, intoSecond, intoSecond);
        EXPECT_TRUE(nearMatrix(product, intoFirst, kSameBits) && nearMatrix(product, intoSecond, kSameBits));

        Mat4 inverse(false);
        ASSERT_TRUE(a.getInverse(inverse));
        Mat4 inPlace(a);
        ASSERT_TRUE(inPlace.getInverse(inPlace));
        EXPECT_TRUE(nearMatrix(inverse, inPlace, kSameBits));
        EXPECT_TRUE(nearMatrix(Mat4(true), inverse * a, 1e-13));
        EXPECT_NEAR(1.0, a.determinant() * inverse.determinant(), 1e-13);

        Mat4 transposed(a);
        transposed.transpose(transposed);
        for (int k = 0; k < 16; ++k) {
            EXPECT_SAME_BITS(a.elements[k], transposed.elements[4 * (k % 4) + k / 4]);
        }
    }

    // Only an exact zero determinant is singular, and the result is then the identity.
    Mat4 result(false);
    Mat4 const proportionalRows(1, 2, 3, 4, 2, 4, 6, 8, 0, 1, 5, 2, 3, 0, 1, 1, false);
    EXPECT_FALSE(proportionalRows.getInverse(result));
    EXPECT_TRUE(result == Mat4(true));
    Mat4 tiny(true);
    tiny.setScale(1e-100, 1e-100, 1e-100);
    EXPECT_TRUE(tiny.getInverse(result));
    EXPECT_DOUBLE_EQ(1e100, result.elements[0]);
}

TEST(Mat4Transforms, ChainedOperationsActBeforeWhatTheMatrixHolds)
{
    Testing::SeededRandom random;
    for (int i = 0; i < 50; ++i) {
        Mat4 const m = random.invertibleMatrix();
        Vec3 const v = random.vec3(-3.0, 3.0);
        double const angle = random.uniform(-M_PI, M_PI);
        auto const expectSame = [&m](auto build, auto chain) {
            Mat4 builder(true);
            build(builder);
            Mat4 chained(m);
            chain(chained);
            EXPECT_TRUE(m * builder == chained);
        };
        // The w of a Vec4 argument is ignored.
        expectSame([&](Mat4& b) { b.setTranslate(v); }, [&](Mat4& c) { c.translate(Vec4(v, 9.0)); });
        expectSame([&](Mat4& b) { b.setScale(v); }, [&](Mat4& c) { c.scale(Vec4(v, 9.0)); });
        expectSame([&](Mat4& b) { b.setRotation(angle, v); }, [&](Mat4& c) { c.rotate(angle, Vec4(v, 9.0)); });
        expectSame([&](Mat4& b) { b.setRotation(angle, 1, 0, 0); }, [&](Mat4& c) { c.rotateX(angle); });
        expectSame([&](Mat4& b) { b.setRotation(angle, 0, 1, 0); }, [&](Mat4& c) { c.rotateY(angle); });
        expectSame([&](Mat4& b) { b.setRotation(angle, 0, 0, 1); }, [&](Mat4& c) { c.rotateZ(angle); });
        // A zero axis normalises to x.
        expectSame([&](Mat4& b) { b.rotateX(angle); }, [&](Mat4& c) { c.rotate(angle, Vec3()); });
    }
}

::testing::AssertionResult holds(std::initializer_list<double> fields, Affine const& a)
{
    return Testing::sameComponents(fields, {a.s0, a.s1, a.s2, a.s3, a.s4, a.s5}, "012345");
}

TEST(AffineTests, ArgumentsRunByColumnNewTransformsActFirstAndTheInverseIsThatOfMat4)
{
    Affine a(1, 2, 3, 4, 5, 6);
    EXPECT_TRUE(holds({1, 3, 5, 2, 4, 6}, a));
    Mat4 embedded(false);
    embedded.setWithAffine(a);
    EXPECT_TRUE(holds({1, 3, 5, 2, 4, 6}, embedded.getAffine()));
    EXPECT_SAME_BITS(Vec3(a.getTransform(Vec2(2, -3)), 5.0), embedded.mult(Vec3(2, -3, 5)));
    // The in-place form works both results out before it stores either.
    double x = 1;
    double y = 0;
    a.transform(x, y);
    EXPECT_SAME_BITS(Vec2(6, 8), Vec2(x, y));

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
    Affine turn;
    turn.setRotate(30);
    EXPECT_SAME_BITS(std::sin(30 * 0.017453292519943), turn.s3);
    Vec2 turned(3, 4);
    turned.rotate(30);
    EXPECT_EQ(turn.getTransform(Vec2(3, 4)), turned);

    // From its parts: the anchor lands on the position, as with T·R·S·T(-anchor).
    Affine parts;
    parts.set(Vec2(3, 4), Vec2(10, 20), Vec2(2, 0.5), 30);
    Affine chain;
    chain.setTranslate(10, 20);
    chain.rotate(30);
    chain.scale(2, 0.5);
    chain.translate(-3, -4);
    EXPECT_TRUE(chain == parts);

    // The inverse agrees with that of the embedding matrix.
    Testing::SeededRandom random;
    for (int i = 0; i < 200; ++i) {
        a.set(random.vec3(-50, 50).getVec2(), random.vec3(-50, 50).getVec2(), random.vec3(0.1, 5).getVec2(),
              random.uniform(-360, 360));
        a.skewY(random.uniform(-40, 40));
        embedded.setWithAffine(a);
        Mat4 matrixInverse(false);
        ASSERT_TRUE(embedded.getInverse(matrixInverse));
        Mat4 affineInverse(false);
        affineInverse.setWithAffine(a.getInverse());
        EXPECT_TRUE(nearMatrix(matrixInverse, affineInverse, 1e-12));
    }
}

} // namespace
} // namespace Halvane::Quorvex
