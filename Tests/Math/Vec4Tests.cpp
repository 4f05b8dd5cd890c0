#include "Math/BitCompare.h"

#include "Math/Vec4.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Halvane::Quorvex {
namespace {

using Testing::widened;

// Unit vector at the given angle in the x-y plane.
Vec4 planar(double radians)
{
    return {std::cos(radians), std::sin(radians), 0.0, 0.0};
}

TEST(Vec4Equality, IsRadialWithTheBoundaryExcluded)
{
    Vec4 const origin;
    // Each difference lies below 1e-12, the squared distance is 1.44e-24.
    EXPECT_FALSE(origin == Vec4(0.6e-12, 0.6e-12, 0.6e-12, 0.6e-12));
    EXPECT_TRUE(origin != Vec4(0.6e-12, 0.6e-12, 0.6e-12, 0.6e-12));
    EXPECT_TRUE(origin == Vec4(0.0, 0.0, 0.9e-12, 0.0));
    // The squared distance then equals the bound exactly.
    EXPECT_FALSE(origin == Vec4(0.0, 0.0, 0.0, 1e-12));
    EXPECT_FALSE(Vec4(1, 1, 1, 1).equal(Vec4(1.5, 1, 1, 1), 0.5));
    Vec4 const withNaN(NAN, 0, 0, 0);
    EXPECT_FALSE(withNaN == withNaN);
}

TEST(Vec4Tests, SignedZerosAndZeroVectorFallback)
{
    EXPECT_SAME_BITS(Vec4(-0.0, 0.0, -2.0, 4.0), Vec4(0.0, -0.0, 2.0, -4.0).negate());
    EXPECT_SAME_BITS(Vec4(1.0, -0.5, HUGE_VAL, -HUGE_VAL), Vec4(1.0, -2.0, 0.0, -0.0).invert());
    Vec4 zero;
    zero.normalize();
    EXPECT_SAME_BITS(Vec4(1.0, 0.0, 0.0, 0.0), zero);
}

TEST(Vec4Lerp, EndpointsAreReturnedUnnormalised)
{
    Vec4 const a(2.0, 0.0, 0.0, 0.0);
    Vec4 const b(0.0, 3.0, 0.0, 0.0);
    EXPECT_SAME_BITS(a, Vec4::lerp(a, b, 0.0));
    EXPECT_SAME_BITS(b, Vec4::lerp(a, b, 1.0));
}

TEST(Vec4Lerp, ResultsHaveUnitLengthAndTakeTheShorterWay)
{
    Vec4 const half = Vec4::lerp(Vec4(2, 0, 0, 0), Vec4(0, 2, 0, 0), 0.5);
    EXPECT_TRUE(half.equal(Vec4(M_SQRT1_2, M_SQRT1_2, 0, 0), 1e-12));

    // b is negated, the cosine becomes 1 and the linear weights give a itself.
    EXPECT_EQ(Vec4(1, 0, 0, 0), Vec4::lerp(Vec4(1, 0, 0, 0), Vec4(-1, 0, 0, 0), 0.25));
    // Past 90 degrees the result lies between a and -b.
    Vec4 const wide = Vec4::lerp(planar(0.0), planar(M_PI * 0.75), 0.5);
    EXPECT_TRUE(wide.equal(planar(-M_PI / 8.0), 1e-6));
}

// The interpolation from (1, 0, 0, 0) to (bx, by, 0, 0) with its trigonometry in float
// and in double, both without normalising b.
Vec4 planarSlerp(double bx, double by, double t, bool inFloat)
{
    double const cosine = bx / std::sqrt(bx * bx + by * by);
    double k0 = 0.0;
    double k1 = 0.0;
    if (inFloat) {
        float const theta = std::acos(static_cast<float>(cosine));
        double const inverseSine = widened(1.0f / std::sin(theta));
        k0 = widened(std::sin(static_cast<float>((1.0 - t) * widened(theta)))) * inverseSine;
        k1 = widened(std::sin(static_cast<float>(widened(theta) * t))) * inverseSine;
    } else {
        double const theta = std::acos(cosine);
        k0 = std::sin((1.0 - t) * theta) / std::sin(theta);
        k1 = std::sin(t * theta) / std::sin(theta);
    }
    double const x = 1.0 * k0 + bx * k1;
    double const y = 0.0 * k0 + by * k1;
    double const scale = 1.0 / std::sqrt(x * x + y * y);
    return {x * scale, y * scale, 0.0, 0.0};
}

TEST(Vec4Lerp, TrigonometryRunsInSinglePrecision)
{
    // Each case tells a different step in float from the same step in double.
    struct Case
    {
        double bx, by, t;
    };
    for (Case const& c : {Case{3, 4, 0.25}, Case{1, 1, 0.5}, Case{0, 2, 0.25}}) {
        SCOPED_TRACE(::testing::Message() << "b = (" << c.bx << ", " << c.by << "), t = " << c.t);
        Vec4 const result = Vec4::lerp(Vec4(1, 0, 0, 0), Vec4(c.bx, c.by, 0, 0), c.t);
        EXPECT_SAME_BITS(planarSlerp(c.bx, c.by, c.t, true), result);
        EXPECT_TRUE(result.equal(planarSlerp(c.bx, c.by, c.t, false), 1e-6));
    }
    // In double the result would differ by far more than rounding.
    EXPECT_FALSE(Vec4::lerp(Vec4(1, 0, 0, 0), Vec4(3, 4, 0, 0), 0.25).equal(planarSlerp(3, 4, 0.25, false), 1e-12));
}

TEST(Vec4Lerp, NearParallelThresholdIsTheWidenedFloat)
{
    auto const apart = [](double oneMinusCosine) {
        double const cosine = 1.0 - oneMinusCosine;
        return Vec4(cosine, std::sqrt(1.0 - cosine * cosine), 0.0, 0.0);
    };
    auto const linear = [](Vec4 const& a, Vec4 const& b, double t) {
        Vec4 mixed = a * (1.0 - t) + b * t;
        mixed.setLength(1.0);
        return mixed;
    };
    Vec4 const a(1.0, 0.0, 0.0, 0.0);

    // Below the float 0.01 widened: plain linear weights.
    Vec4 const close = apart(0.0099999995);
    EXPECT_TRUE(Vec4::lerp(a, close, 0.25).equal(linear(a, close, 0.25), 1e-15));

    // Between the widened float and the double 0.01: already spherical.
    Vec4 const wider = apart(0.0099999999);
    Vec4 const result = Vec4::lerp(a, wider, 0.25);
    EXPECT_FALSE(result.equal(linear(a, wider, 0.25), 1e-6));
    EXPECT_TRUE(result.equal(planar(std::acos(wider.x) * 0.25), 1e-6));
}

TEST(Vec4Lerp, ZeroVectorGivesNaN)
{
    Vec4 const result = Vec4::lerp(Vec4(), Vec4(0, 1, 0, 0), 0.5);
    EXPECT_TRUE(std::isnan(result.x));
    EXPECT_TRUE(std::isnan(result.y));
}

} // namespace
} // namespace Halvane::Quorvex
