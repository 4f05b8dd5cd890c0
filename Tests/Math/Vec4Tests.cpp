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

TEST(Vec4Tests, EqualityIsRadialWithTheBoundaryExcluded)
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

TEST(Vec4Lerp, UnnormalisedEndpointsUnitLengthAndTheShorterWay)
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

    Vec4 const fromZero = Vec4::lerp(Vec4(), Vec4(0, 1, 0, 0), 0.5);
    EXPECT_TRUE(std::isnan(fromZero.x) && std::isnan(fromZero.y));
}

TEST(Vec4Lerp, TrigonometryRunsInSinglePrecision)
{
    // From (1, 0, 0, 0) to b = (bx, by, 0, 0), b not normalised. Each case tells a step in
    // float from the same step in double.
    struct Case
    {
        double bx, by, t;
    };
    for (Case const& c : {Case{3, 4, 0.25}, Case{1, 1, 0.5}, Case{0, 2, 0.25}}) {
        SCOPED_TRACE(::testing::Message() << "b = (" << c.bx << ", " << c.by << "), t = " << c.t);
        auto const mixed = [&c](double k0, double k1) {
            Vec4 const v(k0 + c.bx * k1, c.by * k1, 0.0, 0.0);
            return v * (1.0 / std::sqrt(v.x * v.x + v.y * v.y));
        };
        double const cosine = c.bx / std::sqrt(c.bx * c.bx + c.by * c.by);
        float const theta = std::acos(static_cast<float>(cosine));
        double const inverseSine = widened(1.0f / std::sin(theta));
        Vec4 const inFloat = mixed(widened(std::sin(static_cast<float>((1.0 - c.t) * widened(theta)))) * inverseSine,
                                   widened(std::sin(static_cast<float>(widened(theta) * c.t))) * inverseSine);
        double const angle = std::acos(cosine);
        Vec4 const inDouble = mixed(std::sin((1.0 - c.t) * angle) / std::sin(angle),
                                    std::sin(c.t * angle) / std::sin(angle));

        Vec4 const result = Vec4::lerp(Vec4(1, 0, 0, 0), Vec4(c.bx, c.by, 0, 0), c.t);
        EXPECT_SAME_BITS(inFloat, result);
        EXPECT_TRUE(result.equal(inDouble, 1e-6));
    }
}

TEST(Vec4Lerp, NearParallelThresholdIsTheWidenedFloat)
{
    auto const apart = [](double oneMinusCosine) {
        double const cosine = 1.0 - oneMinusCosine;
        return Vec4(cosine, std::sqrt(1.0 - cosine * cosine), 0.0, 0.0);
    };
    Vec4 const a(1.0, 0.0, 0.0, 0.0);

    // Below the float 0.01 widened: plain linear weights.
    Vec4 const close = apart(0.0099999995);
    Vec4 linear = a * 0.75 + close * 0.25;
    linear.setLength(1.0);
    EXPECT_TRUE(Vec4::lerp(a, close, 0.25).equal(linear, 1e-15));

    // Between the widened float and the double 0.01: already spherical.
    Vec4 const wider = apart(0.0099999999);
    linear = a * 0.75 + wider * 0.25;
    linear.setLength(1.0);
    Vec4 const result = Vec4::lerp(a, wider, 0.25);
    EXPECT_FALSE(result.equal(linear, 1e-6));
    EXPECT_TRUE(result.equal(planar(std::acos(wider.x) * 0.25), 1e-6));
}

} // namespace
} // namespace Halvane::Quorvex
