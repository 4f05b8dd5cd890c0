#include "Math/Vec4.h"

#include <cmath>

namespace Halvane::Quorvex {

void Vec4::set(double xValue, double yValue, double zValue, double wValue)
{
    x = xValue;
    y = yValue;
    z = zValue;
    w = wValue;
}

void Vec4::setZero()
{
    set(0.0, 0.0, 0.0, 0.0);
}

Vec3 Vec4::getVec3() const
{
    return {x, y, z};
}

void Vec4::add(Vec4 const& other)
{
    *this = *this + other;
}

void Vec4::add(double value)
{
    *this = *this + value;
}

void Vec4::sub(Vec4 const& other)
{
    *this = *this - other;
}

void Vec4::sub(double value)
{
    *this = *this - value;
}

void Vec4::mult(Vec4 const& other)
{
    *this = *this * other;
}

void Vec4::mult(double value)
{
    *this = *this * value;
}

void Vec4::divide(Vec4 const& other)
{
    *this = *this / other;
}

void Vec4::divide(double value)
{
    *this = *this / value;
}

void Vec4::operator+=(Vec4 const& other) { add(other); }
void Vec4::operator+=(double value) { add(value); }
void Vec4::operator-=(Vec4 const& other) { sub(other); }
void Vec4::operator-=(double value) { sub(value); }
void Vec4::operator*=(Vec4 const& other) { mult(other); }
void Vec4::operator*=(double value) { mult(value); }
void Vec4::operator/=(Vec4 const& other) { divide(other); }
void Vec4::operator/=(double value) { divide(value); }

Vec4 Vec4::operator+(Vec4 const& other) const
{
    return {x + other.x, y + other.y, z + other.z, w + other.w};
}

Vec4 Vec4::operator+(double value) const
{
    return {x + value, y + value, z + value, w + value};
}

Vec4 Vec4::operator-(Vec4 const& other) const
{
    return {x - other.x, y - other.y, z - other.z, w - other.w};
}

Vec4 Vec4::operator-(double value) const
{
    return {x - value, y - value, z - value, w - value};
}

Vec4 Vec4::operator*(Vec4 const& other) const
{
    return {x * other.x, y * other.y, z * other.z, w * other.w};
}

Vec4 Vec4::operator*(double value) const
{
    return {x * value, y * value, z * value, w * value};
}

Vec4 Vec4::operator/(Vec4 const& other) const
{
    return {x / other.x, y / other.y, z / other.z, w / other.w};
}

Vec4 Vec4::operator/(double value) const
{
    return {x / value, y / value, z / value, w / value};
}

double Vec4::squaredDistance(Vec4 const& other) const
{
    double const dx = other.x - x;
    double const dy = other.y - y;
    double const dz = other.z - z;
    double const dw = other.w - w;
    return dx * dx + dy * dy + dz * dz + dw * dw;
}

bool Vec4::operator==(Vec4 const& other) const
{
    return squaredDistance(other) < kSquaredTolerance;
}

bool Vec4::operator!=(Vec4 const& other) const
{
    return !(*this == other);
}

bool Vec4::equal(Vec4 const& other, double tolerance) const
{
    return squaredDistance(other) < tolerance * tolerance;
}

bool Vec4::isZero() const
{
    return x == 0.0 && y == 0.0 && z == 0.0 && w == 0.0;
}

double Vec4::length() const
{
    return std::sqrt(lengthSquare());
}

double Vec4::lengthSquare() const
{
    return x * x + y * y + z * z + w * w;
}

double Vec4::lengthManhattan() const
{
    return std::abs(x) + std::abs(y) + std::abs(z) + std::abs(w);
}

double Vec4::distance(Vec4 const& other) const
{
    return std::sqrt(squaredDistance(other));
}

double Vec4::dot(Vec4 const& other) const
{
    return x * other.x + y * other.y + z * other.z + w * other.w;
}

Vec4 Vec4::negate() const
{
    return {-x, -y, -z, -w};
}

Vec4 Vec4::invert() const
{
    return {1.0 / x, 1.0 / y, 1.0 / z, 1.0 / w};
}

void Vec4::setLength(double length)
{
    if (isZero()) {
        x = length;
        return;
    }
    mult(length / std::sqrt(x * x + y * y + z * z + w * w));
}

void Vec4::normalize()
{
    setLength(1.0);
}

Vec4 Vec4::lerp(Vec4 a, Vec4 b, double t)
{
    if (t == 0.0) {
        return a;
    }
    if (t == 1.0) {
        return b;
    }

    double const cosine = a.dot(b) / (a.length() * b.length());
    if (cosine < 0.0) {
        return lerp(a, b.negate(), t);
    }

    double k0 = 0.0;
    double k1 = 0.0;
    if (1.0 - cosine < kNearParallelThreshold) {
        k0 = 1.0 - t;
        k1 = t;
    } else {
        // Single precision on purpose: results must match the float trigonometry to the
        // last bit. This branch also carries a NaN cosine through to the result.
        float const theta = std::acos(static_cast<float>(cosine));
        double const inverseSine = static_cast<double>(1.0f / std::sin(theta));
        double const angle = static_cast<double>(theta);
        k0 = static_cast<double>(std::sin(static_cast<float>((1.0 - t) * angle))) * inverseSine;
        k1 = static_cast<double>(std::sin(static_cast<float>(angle * t))) * inverseSine;
    }

    Vec4 result = a * k0 + b * k1;
    result.setLength(1.0);
    return result;
}

} // namespace Halvane::Quorvex
