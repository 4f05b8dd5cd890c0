#include "Math/Vec3.h"

#include "Math/Float.h"
#include "Math/Mat4.h"
#include "Math/Quaternion.h"

#include <cmath>

namespace Halvane::Quorvex {

double cyclicDifference(double a, double b, double cycle)
{
    double const half = 0.5 * cycle;
    double const d = a - b;
    if (d > half) {
        return d - cycle;
    }
    if (d < -half) {
        return d + cycle;
    }
    return d;
}

void Vec3::set(Vec2 xy, double zValue)
{
    set(xy.x, xy.y, zValue);
}

void Vec3::set(double xValue, double yValue, double zValue)
{
    x = xValue;
    y = yValue;
    z = zValue;
}

void Vec3::set(int index, double value)
{
    switch (index) {
    case 0:
        x = value;
        break;
    case 1:
        y = value;
        break;
    default:
        z = value;
        break;
    }
}

void Vec3::setZero()
{
    set(0.0, 0.0, 0.0);
}

void Vec3::fromArray(double const* array, int offset)
{
    set(array[offset], array[offset + 1], array[offset + 2]);
}

void Vec3::toArray(double* array, int offset)
{
    array[offset] = x;
    array[offset + 1] = y;
    array[offset + 2] = z;
}

Vec2 Vec3::getVec2() const
{
    return {x, y};
}

void Vec3::add(Vec3 const& other)
{
    *this = *this + other;
}

void Vec3::add(double value)
{
    *this = *this + value;
}

void Vec3::sub(Vec3 const& other)
{
    *this = *this - other;
}

void Vec3::sub(double value)
{
    *this = *this - value;
}

void Vec3::mult(Vec3 const& other)
{
    *this = *this * other;
}

void Vec3::mult(double value)
{
    *this = *this * value;
}

void Vec3::divide(Vec3 const& other)
{
    *this = *this / other;
}

void Vec3::divide(double value)
{
    *this = *this / value;
}

void Vec3::operator+=(Vec3 const& other) { add(other); }
void Vec3::operator+=(double value) { add(value); }
void Vec3::operator-=(Vec3 const& other) { sub(other); }
void Vec3::operator-=(double value) { sub(value); }
void Vec3::operator*=(Vec3 const& other) { mult(other); }
void Vec3::operator*=(double value) { mult(value); }
void Vec3::operator/=(Vec3 const& other) { divide(other); }
void Vec3::operator/=(double value) { divide(value); }

Vec3 Vec3::operator+(Vec3 const& other) const { return {x + other.x, y + other.y, z + other.z}; }
Vec3 Vec3::operator+(double value) const { return {x + value, y + value, z + value}; }
Vec3 Vec3::operator-(Vec3 const& other) const { return {x - other.x, y - other.y, z - other.z}; }
Vec3 Vec3::operator-(double value) const { return {x - value, y - value, z - value}; }
Vec3 Vec3::operator*(Vec3 const& other) const { return {x * other.x, y * other.y, z * other.z}; }
Vec3 Vec3::operator*(double value) const { return {x * value, y * value, z * value}; }
Vec3 Vec3::operator/(Vec3 const& other) const { return {x / other.x, y / other.y, z / other.z}; }
Vec3 Vec3::operator/(double value) const { return {x / value, y / value, z / value}; }

bool Vec3::operator==(Vec3 const& other) const
{
    return equal(other, kFloatTolerance);
}

bool Vec3::operator!=(Vec3 const& other) const
{
    return !(*this == other);
}

bool Vec3::equal(Vec3 const& other, double tolerance) const
{
    return std::abs(other.x - x) <= tolerance && std::abs(other.y - y) <= tolerance
        && std::abs(other.z - z) <= tolerance;
}

bool Vec3::isZero() const
{
    return x == 0.0 && y == 0.0 && z == 0.0;
}

int Vec3::largestAbsComponent() const
{
    double const ax = std::abs(x);
    double const ay = std::abs(y);
    double const az = std::abs(z);
    if (ax > ay) {
        return ax > az ? 0 : 2;
    }
    return ay > az ? 1 : 2;
}

double Vec3::dot(Vec3 const& other) const
{
    return x * other.x + y * other.y + z * other.z;
}

Vec3 Vec3::cross(Vec3 const& other) const
{
    return {y * other.z - z * other.y, z * other.x - x * other.z, x * other.y - y * other.x};
}

double Vec3::angleBetween(Vec3 const& other) const
{
    return std::acos(dot(other) / (length() * other.length()));
}

double Vec3::length() const
{
    return std::sqrt(lengthSquare());
}

double Vec3::lengthSquare() const
{
    return x * x + y * y + z * z;
}

double Vec3::distance(Vec3 const& other) const
{
    return (*this - other).length();
}

double Vec3::distanceSquare(Vec3 const& other) const
{
    return (*this - other).lengthSquare();
}

void Vec3::setLength(double length)
{
    if (isZero()) {
        x = length;
        return;
    }
    mult(length / std::sqrt(x * x + y * y + z * z));
}

void Vec3::normalize()
{
    setLength(1.0);
}

void Vec3::setNegate()
{
    *this = negate();
}

Vec3 Vec3::negate() const
{
    return {-x, -y, -z};
}

void Vec3::setInvert()
{
    *this = invert();
}

Vec3 Vec3::invert() const
{
    return {1.0 / x, 1.0 / y, 1.0 / z};
}

Vec3 Vec3::lerp(Vec3 a, Vec3 b, double t)
{
    return a * (1.0 - t) + b * t;
}

void Vec3::getMin(Vec3 other)
{
    if (other.x < x) {
        x = other.x;
    }
    if (other.y < y) {
        y = other.y;
    }
    if (other.z < z) {
        z = other.z;
    }
}

void Vec3::getMax(Vec3 other)
{
    // Own is kept only when strictly greater: an own NaN gives way, another's NaN is taken.
    x = x > other.x ? x : other.x;
    y = y > other.y ? y : other.y;
    z = z > other.z ? z : other.z;
}

void Vec3::clamp(Vec3 low, Vec3 high)
{
    x = x < low.x ? low.x : (high.x < x ? high.x : x);
    y = y < low.y ? low.y : (high.y < y ? high.y : y);
    z = z < low.z ? low.z : (high.z < z ? high.z : z);
}

Vec3 Vec3::floor()
{
    return {std::floor(x), std::floor(y), std::floor(z)};
}

Vec3 Vec3::rotationalDifference(Vec3 const& other) const
{
    return {cyclicDifference(x, other.x, 0.0), cyclicDifference(y, other.y, 0.0),
            cyclicDifference(z, other.z, 0.0)};
}

void Vec3::ortho(Vec3 const& v)
{
    int const k = largestAbsComponent();
    setZero();
    set(k == 0 ? 2 : k - 1, 1.0);
    // v is read only now, after the axis overwrote this vector, so that v aliasing
    // this vector crosses the axis with itself.
    Vec3 const axis = *this;
    *this = v.cross(axis);
    setLength(1.0);
}

void Vec3::applyMatrix4(Mat4 const& m)
{
    double const* e = m.elements;
    set(e[0] * x + e[4] * y + e[8] * z + e[12], e[1] * x + e[5] * y + e[9] * z + e[13],
        e[2] * x + e[6] * y + e[10] * z + e[14]);
}

void Vec3::applyProjection(Mat4 const& m)
{
    double const* e = m.elements;
    double const d = 1.0 / (e[3] * x + e[7] * y + e[11] * z + e[15]);
    applyMatrix4(m);
    mult(d);
}

void Vec3::transformDirection(Mat4 const& m)
{
    double const* e = m.elements;
    set(e[0] * x + e[4] * y + e[8] * z, e[1] * x + e[5] * y + e[9] * z, e[2] * x + e[6] * y + e[10] * z);
    setLength(1.0);
}

void Vec3::applyQuaternion(Quaternion const& q)
{
    double const ix = x * q.w + z * q.y - y * q.z;
    double const iy = y * q.w + x * q.z - z * q.x;
    double const iz = z * q.w + y * q.x - x * q.y;
    double const iw = -x * q.x - y * q.y - z * q.z;
    set(ix * q.w - iw * q.x - iy * q.z + iz * q.y, iy * q.w - iw * q.y - iz * q.x + ix * q.z,
        iz * q.w - iw * q.z - ix * q.y + iy * q.x);
}

void Vec3::setFromMatrixPosition(Mat4 const& m)
{
    fromArray(m.elements, 12);
}

void Vec3::setFromMatrixColumn(Mat4 const& m, int column)
{
    fromArray(m.elements, 4 * column);
}

} // namespace Halvane::Quorvex
