#include "Math/BitCompare.h"
#include "Math/TransformTesting.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Halvane::Quorvex {
namespace {

using Testing::nearMatrix;
using Testing::sameRotation;

::testing::AssertionResult sameElements(Mat4 const& expected, Mat4 const& actual)
{
    for (int k = 0; k < 16; ++k) {
        if (auto result = Testing::sameBits(expected.elements[k], actual.elements[k]); !result) {
            return result << " in element " << k;
        }
    }
    return ::testing::AssertionSuccess();
}

Vec3 axis(Mat4 const& m, int column)
{
    return m.getColumn(column).getVec3();
}

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
        EXPECT_EQ(k % 5 == 0 ? 1.0 : 0.0, Mat4(true).elements[k]);
    }
    EXPECT_TRUE(sameElements(rowByRow, viaSet));
    EXPECT_TRUE(sameElements(Mat4(values, true), Mat4(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, true)));
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
        EXPECT_TRUE(sameElements(product, intoFirst) && sameElements(product, intoSecond));

        Mat4 inverse(false);
        ASSERT_TRUE(a.getInverse(inverse));
        Mat4 inPlace(a);
        ASSERT_TRUE(inPlace.getInverse(inPlace));
        EXPECT_TRUE(sameElements(inverse, inPlace));
        EXPECT_TRUE(nearMatrix(Mat4(true), inverse * a, 1e-13));
        EXPECT_NEAR(1.0, a.determinant() * inverse.determinant(), 1e-13);

        Mat4 transposed(a);
        transposed.transpose(transposed);
        for (int k = 0; k < 16; ++k) {
            EXPECT_SAME_BITS(a.elements[k], transposed.elements[4 * (k % 4) + k / 4]);
        }
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

TEST(Mat4Transforms, ProjectionsMapTheirPlanesOntoTheUnitCube)
{
    // Near corner to (1, 1, -1), far corner to (-1, -1, 1); element 15 tells the kinds apart.
    auto const expectCube = [](Mat4 const& m, Vec3 near, Vec3 far, double corner) {
        EXPECT_TRUE(m.multAndProject(near) == Vec3(1, 1, -1) && m.multAndProject(far) == Vec3(-1, -1, 1));
        EXPECT_EQ(corner, m.elements[15]);
    };
    Mat4 m(true);
    m.setPerspective(M_PI / 2.0, 2.0, 1.0, 10.0);
    expectCube(m, Vec3(2, 1, -1), Vec3(-20, -10, -10), 0.0);
    m.setFrustum(-1.0, 3.0, -2.0, 4.0, 2.0, 8.0);
    expectCube(m, Vec3(3, 4, -2), Vec3(-4, -8, -8), 0.0);
    m.setOrtho(-1.0, 3.0, 4.0, -2.0, 2.0, 8.0); // top before bottom
    expectCube(m, Vec3(3, 4, -2), Vec3(-1, -2, -8), 1.0);
}

TEST(Mat4Transforms, LookAtWritesTheCameraAxesAndNothingElse)
{
    Mat4 m(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, false);
    m.setLookAt(Vec3(1, 2, 8), Vec3(1, 2, 3), Vec3(0, 1, 0));
    EXPECT_TRUE(m == Mat4(1, 0, 0, 4, 0, 1, 0, 8, 0, 0, 1, 12, 13, 14, 15, 16, false));

    // The eye on the target, and up along the view: both zero vectors normalise to x.
    m.setLookAt(0, 0, 0, 0, 0, 0, 0, 1, 0);
    EXPECT_TRUE(axis(m, 0) == Vec3(0, 0, -1) && axis(m, 1) == Vec3(0, 1, 0) && axis(m, 2) == Vec3(1, 0, 0));
    m.setLookAt(0, 5, 0, 0, 0, 0, 0, 1, 0);
    EXPECT_TRUE(axis(m, 0) == Vec3(1, 0, 0) && axis(m, 1) == Vec3(0, 0, -1) && axis(m, 2) == Vec3(0, 1, 0));

    // Squared lengths that overflow normalise to zero: z falls back to +z, then is nudged
    // by 0.0001 in single precision for x.
    m.setLookAt(Vec3(1e200, 0, 0), Vec3(), Vec3(0, 1e200, 0));
    EXPECT_SAME_BITS(Vec3(0, 0, 1.0 + Testing::widened(0.0001f)), axis(m, 2));
    EXPECT_SAME_BITS(Vec3(), axis(m, 0));
}

TEST(Mat4Compose, DecomposeGivesBackPositionRotationAndScale)
{
    Testing::SeededRandom random;
    for (int i = 0; i < 200; ++i) {
        Vec3 const position = random.vec3(-100.0, 100.0);
        Vec3 const anchor = random.vec3(-50.0, 50.0);
        Quaternion const rotation = random.unitQuaternion();
        Vec3 const scale = random.vec3(0.1, 10.0);
        Mat4 m(false);
        m.compose(position, rotation, scale);
        Vec3 p;
        Quaternion q;
        Vec3 s;
        m.decompose(p, q, s);
        EXPECT_TRUE(p == position && s.equal(scale, 1e-13));
        EXPECT_TRUE(sameRotation(rotation, q, 1e-13));

        Mat4 anchored(false);
        anchored.compose(Vec3(), position, rotation, scale);
        EXPECT_TRUE(sameElements(m, anchored));
        // The anchor lands on the position and comes back out as it.
        anchored.compose(anchor, position, rotation, scale);
        EXPECT_TRUE(anchored.mult(anchor).equal(position, 1e-11));
        anchored.decompose(anchor, p, q, s);
        EXPECT_TRUE(p.equal(position, 1e-11));
        EXPECT_TRUE(sameRotation(rotation, q, 1e-13));
    }
}

TEST(Mat4Compose, ReflectionsGoToTheFirstAxis)
{
    Quaternion const rotation(Vec3(0.6, 0, 0.8), 1.1);
    Vec3 p;
    Quaternion q;
    Vec3 s;
    Mat4 m(true);
    m.compose(Vec3(1, 2, 3), rotation, Vec3(-2, 3, 4));
    m.decompose(p, q, s);
    EXPECT_TRUE(sameRotation(rotation, q, 1e-13));
    EXPECT_TRUE(s == Vec3(-2, 3, 4));

    Mat4 flippedY(true);
    flippedY.compose(Vec3(1, 2, 3), rotation, Vec3(2, -3, 4));
    flippedY.decompose(p, q, s);
    EXPECT_TRUE(s == Vec3(-2, 3, 4));
    EXPECT_FALSE(sameRotation(rotation, q, 0.1));
    m.compose(p, q, s);
    EXPECT_TRUE(m == flippedY);

    // A zero first column reports the stand-in scale, and the rotation comes out short.
    m.setColumn(0, Vec4());
    m.decompose(p, q, s);
    EXPECT_EQ(1e-06, s.x);
    EXPECT_LT(q.length(), 0.99);
}

TEST(Mat4Conversions, AffineEmbeddingHostToGLAndScale)
{
    Affine const affine(1.5, -2.0, 0.25, 3.0, 7.0, -9.0);
    Mat4 m(false);
    m.setWithAffine(affine);
    Affine const back = m.getAffine();
    EXPECT_TRUE(Testing::sameComponents({affine.s0, affine.s1, affine.s2, affine.s3, affine.s4, affine.s5},
                                        {back.s0, back.s1, back.s2, back.s3, back.s4, back.s5}, "012345"));
    EXPECT_SAME_BITS(Vec3(affine.getTransform(Vec2(2, -3)), 5.0), m.mult(Vec3(2, -3, 5)));

    Mat4 const hostToGL = Mat4::getAEToGLConversionMatrix(640, 480);
    EXPECT_SAME_BITS(Vec3(-320, 240, 0), hostToGL.mult(Vec3(0, 0, 0)));
    EXPECT_SAME_BITS(Vec3(320, -240, -2), hostToGL.mult(Vec3(640, 480, 2)));

    m.compose(Vec3(7, 7, 7), Quaternion(Vec3(0, 1, 0), 0.3), Vec3(2, -5, 3));
    EXPECT_DOUBLE_EQ(5.0, m.getMaxScaleOnAxis());
}

} // namespace
} // namespace Halvane::Quorvex
