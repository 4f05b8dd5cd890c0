#include "Math/BitCompare.h"
#include "Math/TransformTesting.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Halvane::Quorvex {
namespace {

TEST(Mat4Construction, FlagsReadStorageOrderRowsAndColumns)
{
    double values[16];
    for (int k = 0; k < 16; ++k) {
        values[k] = k;
    }
    Mat4 const rowByRow(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, false);
    Mat4 viaSet(false);
    viaSet.set(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    for (int k = 0; k < 16; ++k) {
        EXPECT_EQ(k, Mat4(values, true).elements[k]);
        EXPECT_EQ(4 * (k % 4) + k / 4, rowByRow.elements[k]) << "element " << k;
        EXPECT_EQ(rowByRow.elements[k], viaSet.elements[k]);
        EXPECT_EQ(k % 5 == 0 ? 1.0 : 0.0, Mat4(true).elements[k]);
    }
    EXPECT_TRUE(Mat4(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, true) == Mat4(values, true));
    EXPECT_SAME_BITS(Vec4(4, 5, 6, 7), rowByRow.getRow(1));
    // The vector form reads its flag the other way round.
    EXPECT_EQ(1.0, Mat4(Vec4(0, 1, 2, 3), Vec4(), Vec4(), Vec4(), true).elements[4]);
    EXPECT_EQ(1.0, Mat4(Vec4(0, 1, 2, 3), Vec4(), Vec4(), Vec4(), false).elements[1]);
}

TEST(Mat4Algebra, EqualityProductsAndVectors)
{
    Mat4 other(true);
    other.elements[7] = 1e-12;
    EXPECT_TRUE(Mat4(true) == other);
    other.elements[7] = std::nextafter(1e-12, 1.0);
    EXPECT_FALSE(Mat4(true) == other);
    other.elements[7] = NAN;
    EXPECT_FALSE(other == other);

    Mat4 translation(true);
    translation.setTranslate(1, 0, 0);
    Mat4 scaling(true);
    scaling.setScale(2, 2, 2);
    EXPECT_SAME_BITS(Vec3(3, 0, 0), (translation * scaling) * Vec3(1, 0, 0));
    EXPECT_SAME_BITS(Vec3(4, 0, 0), (scaling * translation) * Vec3(1, 0, 0));
    EXPECT_EQ(2.0, (Mat4(true) * 2.0).elements[15]);

    Mat4 projective(true);
    projective.setRow(3, Vec4(0, 0, 1, 2));
    EXPECT_SAME_BITS(Vec3(1, 2, 3), projective.mult(Vec3(1, 2, 3)));
    // Times the reciprocal of w: 3 · 0.2, which is not 3 / 5.
    EXPECT_SAME_BITS(Vec3(0.2, 0.4, 3 * 0.2), projective.multAndProject(Vec3(1, 2, 3)));
}

TEST(Mat4Algebra, InversesAndAliasedOutputs)
{
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
        Mat4 inverse(false);
        ASSERT_TRUE(a.getInverse(inverse));
        Mat4 inPlace(a);
        ASSERT_TRUE(inPlace.getInverse(inPlace));
        Mat4 transposed(a);
        transposed.transpose(transposed);
        for (int k = 0; k < 16; ++k) {
            EXPECT_SAME_BITS(product.elements[k], intoFirst.elements[k]);
            EXPECT_SAME_BITS(product.elements[k], intoSecond.elements[k]);
            EXPECT_SAME_BITS(inverse.elements[k], inPlace.elements[k]);
            EXPECT_SAME_BITS(a.elements[k], transposed.elements[4 * (k % 4) + k / 4]);
        }
        EXPECT_TRUE(Testing::nearMatrix(Mat4(true), inverse * a, 1e-13));
        EXPECT_NEAR(1.0, a.determinant() * inverse.determinant(), 1e-13);
    }
}

TEST(Mat4Algebra, OnlyAnExactZeroDeterminantIsSingular)
{
    Mat4 result(false);
    EXPECT_FALSE(Mat4(false).getInverse(result));
    EXPECT_TRUE(result == Mat4(true));
    Mat4 const proportionalRows(1, 2, 3, 4, 2, 4, 6, 8, 0, 1, 5, 2, 3, 0, 1, 1, false);
    EXPECT_EQ(0.0, proportionalRows.determinant());
    result.setZero();
    EXPECT_FALSE(proportionalRows.getInverse(result));
    EXPECT_TRUE(result == Mat4(true));

    Mat4 tiny(true);
    tiny.setScale(1e-100, 1e-100, 1e-100);
    EXPECT_TRUE(tiny.getInverse(result));
    EXPECT_DOUBLE_EQ(1e100, result.elements[0]);
}

} // namespace
} // namespace Halvane::Quorvex
