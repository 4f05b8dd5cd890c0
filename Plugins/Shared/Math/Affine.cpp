#include "Math/Affine.h"

#include "Math/Float.h"

#include <cmath>

namespace Halvane::Quorvex {

namespace {

// Determinants strictly inside +-kSingularDeterminant count as singular.
constexpr double kSingularDeterminant = 1e-6;

// averageScale keeps this many steps per unit.
constexpr double kScaleSteps = 10000.0;

} // namespace

Affine::Affine(bool identity)
{
    double const one = identity ? 1.0 : 0.0;
    s0 = one;
    s1 = 0.0;
    s2 = 0.0;
    s3 = 0.0;
    s4 = one;
    s5 = 0.0;
}

Affine::Affine(double a, double b, double c, double d, double e, double f)
{
    set(a, b, c, d, e, f);
}

void Affine::set(double a, double b, double c, double d, double e, double f)
{
    s0 = a;
    s1 = c;
    s2 = e;
    s3 = b;
    s4 = d;
    s5 = f;
}

void Affine::set(Vec2 anchor, Vec2 position, Vec2 scale, double rotation)
{
    double const radians = rotation * kDegreesToRadians;
    double const sn = std::sin(radians);
    double const cs = std::cos(radians);
    s0 = scale.x * cs;
    s1 = -sn * scale.y;
    s2 = position.x;
    s3 = scale.x * sn;
    s4 = cs * scale.y;
    s5 = position.y;
    Affine fromAnchor;
    fromAnchor.setTranslate(-anchor.x, -anchor.y);
    premultiply(fromAnchor);
}

void Affine::setTranslate(double x, double y)
{
    *this = Affine(true);
    s2 = x;
    s5 = y;
}

void Affine::setScale(double x, double y)
{
    *this = Affine(false);
    s0 = x;
    s4 = y;
}

void Affine::setSkewX(double angle)
{
    *this = Affine(true);
    s1 = std::tan(angle * kDegreesToRadians);
}

void Affine::setSkewY(double angle)
{
    *this = Affine(true);
    s3 = std::tan(angle * kDegreesToRadians);
}

void Affine::setRotate(double angle)
{
    double const radians = angle * kDegreesToRadians;
    double const sn = std::sin(radians);
    double const cs = std::cos(radians);
    s0 = cs;
    s1 = -sn;
    s2 = 0.0;
    s3 = sn;
    s4 = cs;
    s5 = 0.0;
}

void Affine::translate(double x, double y)
{
    Affine m;
    m.setTranslate(x, y);
    premultiply(m);
}

void Affine::scale(double x, double y)
{
    Affine m;
    m.setScale(x, y);
    premultiply(m);
}

void Affine::skewX(double angle)
{
    Affine m;
    m.setSkewX(angle);
    premultiply(m);
}

void Affine::skewY(double angle)
{
    Affine m;
    m.setSkewY(angle);
    premultiply(m);
}

void Affine::rotate(double angle)
{
    Affine m;
    m.setRotate(angle);
    premultiply(m);
}

void Affine::multiply(Affine const& other)
{
    // All of both operands is read before the first store, so other may be the object.
    double const t0 = s0, t1 = s1, t2 = s2, t3 = s3, t4 = s4, t5 = s5;
    double const o0 = other.s0, o1 = other.s1, o2 = other.s2, o3 = other.s3, o4 = other.s4, o5 = other.s5;
    s0 = t0 * o0 + t3 * o1;
    s1 = t1 * o0 + t4 * o1;
    s2 = t2 * o0 + t5 * o1 + o2;
    s3 = t0 * o3 + t3 * o4;
    s4 = t1 * o3 + t4 * o4;
    s5 = t2 * o3 + t5 * o4 + o5;
}

void Affine::premultiply(Affine const& other)
{
    Affine product(other);
    product.multiply(*this);
    *this = product;
}

bool Affine::inverse(Affine& result) const
{
    double const d = s0 * s4 - s1 * s3;
    if (d > -kSingularDeterminant && d < kSingularDeterminant) {
        return false;
    }
    double const i = 1.0 / d;
    Affine const source(*this);
    result.s0 = source.s4 * i;
    result.s1 = -source.s1 * i;
    result.s2 = (source.s1 * source.s5 - source.s4 * source.s2) * i;
    result.s3 = -source.s3 * i;
    result.s4 = source.s0 * i;
    result.s5 = (source.s3 * source.s2 - source.s0 * source.s5) * i;
    return true;
}

Affine Affine::getInverse() const
{
    Affine result(true);
    inverse(result);
    return result;
}

double Affine::averageScale() const
{
    double const p = std::sqrt(s0 * s0 + s1 * s1);
    double const q = std::sqrt(s3 * s3 + s4 * s4);
    double const steps = (p + q) * 0.5 * kScaleSteps;
    return static_cast<double>(std::roundf(static_cast<float>(steps)) / static_cast<float>(kScaleSteps));
}

bool Affine::operator==(Affine const& other) const
{
    return floatEqual(s0, other.s0) && floatEqual(s1, other.s1) && floatEqual(s2, other.s2)
        && floatEqual(s3, other.s3) && floatEqual(s4, other.s4) && floatEqual(s5, other.s5);
}

void Affine::transform(Vec2& point) const
{
    transform(point.x, point.y);
}

Vec2 Affine::getTransform(Vec2 const& point) const
{
    Vec2 result(point);
    transform(result);
    return result;
}

void Affine::transform(double x, double y, double* resultX, double* resultY) const
{
    *resultX = s0 * x + s1 * y + s2;
    *resultY = s3 * x + s4 * y + s5;
}

void Affine::transform(double& x, double& y) const
{
    transform(x, y, &x, &y);
}

} // namespace Halvane::Quorvex
