#include "Math/MathTesting.h"

#include "Math/Float.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Halvane::Quorvex {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(VectorEquality, PerComponentWithTheBoundaryIncludedButVec4IsRadialWithItExcluded)
{
    double const justAbove = std::nextafter(kFloatTolerance, 1.0);
    EXPECT_TRUE(floatEqual(0.0, kFloatTolerance));
    EXPECT_FALSE(floatEqual(0.0, justAbove));
    EXPECT_TRUE(Vec2(1e-12, -1e-12) == Vec2());
    EXPECT_TRUE(Vec2() != Vec2(0.0, justAbove));
    EXPECT_TRUE(Vec3() == Vec3(1e-12, -1e-12, 1e-12));
    EXPECT_TRUE(Vec3() != Vec3(0.0, 0.0, justAbove));
    Vec2 withNaN(NAN, 0.0);
    EXPECT_TRUE(!(withNaN == withNaN) && withNaN != withNaN);
    // Each component lies within the tolerance, the distance does not.
    EXPECT_FALSE(Vec2::equalWithTolerance(0.0, 0.0, 0.4, 0.4, 0.5));
    EXPECT_FALSE(Vec4() == Vec4(0.6e-12, 0.6e-12, 0.6e-12, 0.6e-12));
    EXPECT_TRUE(Vec4() == Vec4(0.0, 0.0, 0.9e-12, 0.0));
    EXPECT_FALSE(Vec4() == Vec4(0.0, 0.0, 0.0, 1e-12));
}

TEST(VectorZeros, ZeroVectorsFallBackToXAndSignedZerosFlip)
{
    Vec2 v2;
    v2.normalize();
    EXPECT_SAME_BITS(Vec2(1.0, 0.0), v2);
    v2.setZero();
    v2.setLength(5.0);
    EXPECT_SAME_BITS(Vec2(5.0, 0.0), v2);
    Vec3 v3;
    v3.normalize();
    EXPECT_SAME_BITS(Vec3(1.0, 0.0, 0.0), v3);
    Vec4 v4;
    v4.normalize();
    EXPECT_SAME_BITS(Vec4(1.0, 0.0, 0.0, 0.0), v4);
    // Only the member falls back; the static form leaves short vectors alone.
    double x = 1e-13;
    double y = 0.0;
    Vec2::normalize(&x, &y);
    EXPECT_SAME_BITS(1e-13, x);
    EXPECT_SAME_BITS(Vec2(0.0, 0.0), Vec2(2.0, 3.0).project(Vec2(0.0, 0.0)));
    EXPECT_TRUE(std::isnan(Vec3().angleBetween(Vec3(0, 1, 0))));

    EXPECT_SAME_BITS(Vec2(-0.0, 0.0), Vec2(0.0, -0.0).negate());
    EXPECT_SAME_BITS(Vec4(1.0, -0.5, kInf, -kInf), Vec4(1.0, -2.0, 0.0, -0.0).invert());
    v3.set(0.0, -0.0, 2.0);
    v3.setInvert();
    EXPECT_SAME_BITS(Vec3(kInf, -kInf, 0.5), v3);
    Vec3 fractional(1.5, -1.5, -0.0);
    EXPECT_SAME_BITS(Vec3(1.0, -2.0, -0.0), fractional.floor());
    v2.set(3.0, 0.0);
    v2.followSigns(Vec2(0.0, 5.0));
    EXPECT_SAME_BITS(Vec2(-3.0, -0.0), v2);
}

TEST(Vec2Lines, IntersectionsDistancesAndSides)
{
    constexpr double kUntouched = -99.0;
    struct Case
    {
        Vec2 a, b, c, d;
        IntersectResult result;
        Vec2 out;
        double t1, t2;
    };
    Case const cases[] = {
        {{0, 0}, {2, 2}, {0, 2}, {2, 0}, IntersectResult::Intersecting, {1, 1}, 0.5, 0.5},
        // Parameters of exactly 0 and 1 lie on their segments.
        {{0, 0}, {1, 0}, {1, 0}, {1, 1}, IntersectResult::Intersecting, {1, 0}, 1.0, 0.0},
        {{0, 0}, {1, 1}, {3, 0}, {3, 5}, IntersectResult::OutsideFirst, {3, 3}, 3.0, 0.6},
        {{0, 0}, {2, 0}, {1, 1}, {1, 3}, IntersectResult::OutsideSecond, {1, 0}, 0.5, -0.5},
        {{0, 0}, {1, 0}, {3, 1}, {3, 2}, IntersectResult::OutsideBoth, {3, 0}, 3.0, -1.0},
        // Neither writes the parameters.
        {{0, 0}, {2, 0}, {1, 0}, {3, 0}, IntersectResult::Coincident, {1, 0}, kUntouched, kUntouched},
        {{0, 0}, {1, 0}, {0, 1}, {1, 1}, IntersectResult::Parallel, {0, 0}, kUntouched, kUntouched},
    };
    for (Case const& expected : cases) {
        SCOPED_TRACE(::testing::Message() << "case " << &expected - cases);
        Vec2 out(kUntouched, kUntouched);
        double t1 = kUntouched;
        double t2 = kUntouched;
        EXPECT_EQ(expected.result, Vec2::intersect(expected.a, expected.b, expected.c, expected.d, out, &t1, &t2));
        EXPECT_EQ(expected.out, out);
        EXPECT_DOUBLE_EQ(expected.t1, t1);
        EXPECT_DOUBLE_EQ(expected.t2, t2);
    }

    EXPECT_DOUBLE_EQ(2.0, Vec2(5.0, 2.0).distanceToLine({0, 0}, {1, 0}));
    // Behind p the projection length stays unsigned.
    EXPECT_DOUBLE_EQ(3.0, Vec2(-3.0, 1.0).lineProjectionLength({0, 0}, {2, 0}));
    EXPECT_SAME_BITS(Vec2(60.0, 22.0), Vec2::centerToTopLefetPoint({10, 3}, {100, 50}));
    EXPECT_SAME_BITS(Vec2(10.0, 3.0), Vec2::topLeftToCenterPoint({60, 22}, {100, 50}));
    EXPECT_EQ(-1.0, Vec2::signedArea({0, 0}, {0, 1}, {1, 0}));
    // Only c and d against the line through a and b: the segments themselves need not meet.
    EXPECT_TRUE(Vec2::intersecting({0, 0}, {1, 0}, {5, 1}, {5, -1}));
    EXPECT_FALSE(Vec2::intersecting({0, 0}, {1, 0}, {5, 1}, {6, 2}));
    EXPECT_FALSE(Vec2::intersecting({0, 0}, {1, 0}, {5, 0}, {5, -1}));
    EXPECT_TRUE(Vec2::intersecting({0, 0}, {1, 0}, {5, 0}, {5, 1}));
}

TEST(Vec3Transforms, AgreeWithTheMatrixAndQuaternionForms)
{
    Testing::SeededRandom random;
    for (int i = 0; i < 100; ++i) {
        Mat4 const m = random.invertibleMatrix();
        Quaternion const q = random.unitQuaternion();
        Vec3 const v = random.vec3(-10, 10);
        Vec3 point(v);
        point.applyMatrix4(m);
        EXPECT_SAME_BITS(m.mult(v), point);
        point = v;
        point.applyProjection(m);
        EXPECT_TRUE(point.equal(m.multAndProject(v), 1e-13));
        point = v;
        point.applyQuaternion(q);
        EXPECT_TRUE(point.equal(Quaternion::quaternionMulVec3(q, v), 1e-13));
        // Unnormalised, the length scales by the squared length of q.
        point = v;
        point.applyQuaternion(Quaternion(q.x * 2, q.y * 2, q.z * 2, q.w * 2));
        EXPECT_NEAR(4.0 * v.length(), point.length(), 1e-12);
    }

    Mat4 const m(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, false);
    Vec3 v;
    v.setFromMatrixPosition(m);
    EXPECT_SAME_BITS(Vec3(4, 8, 12), v);
    v.setFromMatrixColumn(m, 1);
    EXPECT_SAME_BITS(Vec3(2, 6, 10), v);
    v.transformDirection(m); // untranslated, then unit length
    EXPECT_TRUE(v == Vec3(44, 116, 188) * (1.0 / Vec3(44, 116, 188).length()));
}

// Unit vector at the given angle in the x-y plane.
Vec4 planar(double radians)
{
    return {std::cos(radians), std::sin(radians), 0.0, 0.0};
}

TEST(Vec4Lerp, UnitLengthTheShorterWayAndSinglePrecision)
{
    Vec4 const a(2.0, 0.0, 0.0, 0.0);
    Vec4 const b(0.0, 2.0, 0.0, 0.0);
    EXPECT_SAME_BITS(a, Vec4::lerp(a, b, 0.0));
    EXPECT_SAME_BITS(b, Vec4::lerp(a, b, 1.0));
    EXPECT_TRUE(Vec4::lerp(a, b, 0.5).equal(Vec4(M_SQRT1_2, M_SQRT1_2, 0, 0), 1e-12));
    // b is negated, the cosine becomes 1 and the linear weights give a itself.
    EXPECT_EQ(Vec4(1, 0, 0, 0), Vec4::lerp(Vec4(1, 0, 0, 0), Vec4(-1, 0, 0, 0), 0.25));
    // Past 90 degrees the result lies between a and -b.
    EXPECT_TRUE(Vec4::lerp(planar(0.0), planar(M_PI * 0.75), 0.5).equal(planar(-M_PI / 8.0), 1e-6));

    // Single-precision trigonometry lands near the double result, but not on it.
    double const angle = std::acos(0.6);
    Vec4 inDouble = Vec4(1, 0, 0, 0) * (std::sin(0.75 * angle) / std::sin(angle))
                    + Vec4(3, 4, 0, 0) * (std::sin(0.25 * angle) / std::sin(angle));
    inDouble.setLength(1.0);
    EXPECT_TRUE(Vec4::lerp(Vec4(1, 0, 0, 0), Vec4(3, 4, 0, 0), 0.25).equal(inDouble, 1e-6));
    EXPECT_FALSE(Vec4::lerp(Vec4(1, 0, 0, 0), Vec4(3, 4, 0, 0), 0.25).equal(inDouble, 1e-12));

    // Below the float 0.01 widened the weights are linear; between it and the double 0.01, spherical.
    for (double oneMinusCosine : {0.0099999995, 0.0099999999}) {
        double const cosine = 1.0 - oneMinusCosine;
        Vec4 const apart(cosine, std::sqrt(1.0 - cosine * cosine), 0.0, 0.0);
        Vec4 linear = Vec4(1, 0, 0, 0) * 0.75 + apart * 0.25;
        linear.setLength(1.0);
        bool const linearWeights = oneMinusCosine < 0.00999999978;
        Vec4 const expected = linearWeights ? linear : planar(std::acos(cosine) * 0.25);
        EXPECT_TRUE(Vec4::lerp(Vec4(1, 0, 0, 0), apart, 0.25).equal(expected, linearWeights ? 1e-15 : 1e-6));
    }
}

} // namespace
} // namespace Halvane::Quorvex
