#include "Math/MathTesting.h"

#include "Math/Affine.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Halvane::Quorvex {
namespace {

using Testing::nearMatrix;
using Testing::sameRotation;

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

TEST(Mat4Transforms, ProjectionsLookAtAndTheHostToGLConversion)
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

    // Only the camera axes are written.
    m.set(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
    m.setLookAt(Vec3(1, 2, 8), Vec3(1, 2, 3), Vec3(0, 1, 0));
    EXPECT_TRUE(m == Mat4(1, 0, 0, 4, 0, 1, 0, 8, 0, 0, 1, 12, 13, 14, 15, 16, false));
    // Up along the view: x is zero, so z is nudged by 0.0001 in single precision.
    m.setLookAt(Vec3(1e200, 0, 0), Vec3(), Vec3(0, 1e200, 0));
    EXPECT_SAME_BITS(Vec3(0, 0, 1.0 + Testing::widened(0.0001f)), m.getColumn(2).getVec3());

    Mat4 const hostToGL = Mat4::getAEToGLConversionMatrix(640, 480);
    EXPECT_SAME_BITS(Vec3(-320, 240, 0), hostToGL.mult(Vec3(0, 0, 0)));
    EXPECT_SAME_BITS(Vec3(320, -240, -2), hostToGL.mult(Vec3(640, 480, 2)));
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
        // The anchor lands on the position and comes back out as it.
        m.compose(anchor, position, rotation, scale);
        EXPECT_TRUE(m.mult(anchor).equal(position, 1e-11));
        m.decompose(anchor, p, q, s);
        EXPECT_TRUE(p.equal(position, 1e-11));
        EXPECT_TRUE(sameRotation(rotation, q, 1e-13));
    }

    // A reflection goes to the first axis.
    Quaternion const rotation(Vec3(0.6, 0, 0.8), 1.1);
    Vec3 p;
    Quaternion q;
    Vec3 s;
    Mat4 flippedY(true);
    flippedY.compose(Vec3(1, 2, 3), rotation, Vec3(2, -3, 4));
    flippedY.decompose(p, q, s);
    EXPECT_TRUE(s == Vec3(-2, 3, 4));
    Mat4 m(true);
    m.compose(p, q, s);
    EXPECT_TRUE(m == flippedY);
    EXPECT_DOUBLE_EQ(4.0, m.getMaxScaleOnAxis());
    // A zero first column reports the stand-in scale.
    m.setColumn(0, Vec4());
    m.decompose(p, q, s);
    EXPECT_EQ(1e-06, s.x);
}

::testing::AssertionResult holds(std::initializer_list<double> fields, Affine const& a)
{
    return Testing::sameComponents(fields, {a.s0, a.s1, a.s2, a.s3, a.s4, a.s5}, "012345");
}

TEST(AffineTests, ArgumentsRunColumnByColumnAndNewTransformsActFirstExceptInMultiply)
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

    // From its parts: the anchor lands on the position, as with T·R·S·T(-anchor).
    Affine parts;
    parts.set(Vec2(3, 4), Vec2(10, 20), Vec2(2, 0.5), 30);
    Affine chain;
    chain.setTranslate(10, 20);
    chain.rotate(30);
    chain.scale(2, 0.5);
    chain.translate(-3, -4);
    EXPECT_TRUE(chain == parts);
}

TEST(AffineTests, SingularWithinOneMillionthAndOtherwiseTheInverseOfMat4)
{
    Affine const marker(9, 9, 9, 9, 9, 9);
    Affine result(marker);
    Affine a;
    a.setScale(1e-6, 1.0);
    EXPECT_TRUE(a.inverse(result));
    EXPECT_EQ(1e6, result.s0);
    result = marker;
    a.setScale(-9.9e-7, 1.0);
    EXPECT_FALSE(a.inverse(result));
    EXPECT_TRUE(result == marker && a.getInverse() == Affine(true));

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
        EXPECT_TRUE(nearMatrix(matrixInverse, affineInverse, 1e-12));
    }

    // The average scale rounds to four decimals in single precision.
    a.setScale(1.23456789, 1.23456789);
    EXPECT_EQ(1.2345999479293823, a.averageScale());
    a.setRotate(123.0);
    EXPECT_NEAR(1.0, a.averageScale(), 1e-7);
}

} // namespace
} // namespace Halvane::Quorvex
