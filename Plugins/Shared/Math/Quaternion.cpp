#include "Math/Quaternion.h"

#include "Math/Euler.h"
#include "Math/Float.h"
#include "Math/Mat4.h"

#include <cmath>

namespace Halvane::Quorvex {

namespace {

// Below this sine of the half angle between two rotations, slerp's weights lose their
// precision and the midpoint stands in.
constexpr double kNearParallelSine = 0.001;

} // namespace

Quaternion::Quaternion(double xValue, double yValue, double zValue) : x(xValue), y(yValue), z(zValue) {}

Quaternion::Quaternion(double xValue, double yValue, double zValue, double wValue)
    : x(xValue), y(yValue), z(zValue), w(wValue)
{
}

Quaternion::Quaternion(Vec3 const& axis, double angle)
{
    double const s = std::sin(angle * 0.5);
    set(axis.x * s, axis.y * s, axis.z * s, std::cos(angle * 0.5));
}

Quaternion::Quaternion(Vec3 const& from, Vec3 const& to)
{
    setWithDirection(from, to);
}

void Quaternion::set(double xValue, double yValue, double zValue)
{
    x = xValue;
    y = yValue;
    z = zValue;
}

void Quaternion::set(double xValue, double yValue, double zValue, double wValue)
{
    set(xValue, yValue, zValue);
    w = wValue;
}

void Quaternion::set(Vec3 const& axis, double angle)
{
    Vec3 unit(axis);
    unit.normalize();
    *this = Quaternion(unit, angle);
}

void Quaternion::setWithDirection(Vec3 const& from, Vec3 const& to)
{
    double r = from.dot(to) + 1.0;
    Vec3 axis;
    if (kFloatTolerance > r) {
        r = 0.0;
        if (std::abs(from.x) > std::abs(from.z)) {
            axis.set(-from.y, from.x, 0.0);
        } else {
            axis.set(0.0, -from.z, from.y);
        }
    } else {
        axis = from.cross(to);
    }
    set(axis.x, axis.y, axis.z, r);
    normalize();
}

void Quaternion::setWithMat4(Mat4 const& m)
{
    double const* e = m.elements;
    double const trace = e[0] + e[5] + e[10];
    if (trace > 0.0) {
        double const s = 0.5 / std::sqrt(trace + 1.0);
        set((e[6] - e[9]) * s, (e[8] - e[2]) * s, (e[1] - e[4]) * s, 0.25 / s);
    } else if (e[0] > e[5] && e[0] > e[10]) {
        double const s = 2.0 * std::sqrt(1.0 + e[0] - e[5] - e[10]);
        set(0.25 * s, (e[4] + e[1]) / s, (e[8] + e[2]) / s, (e[6] - e[9]) / s);
    } else if (e[5] > e[10]) {
        double const s = 2.0 * std::sqrt(1.0 + e[5] - e[0] - e[10]);
        set((e[4] + e[1]) / s, 0.25 * s, (e[9] + e[6]) / s, (e[8] - e[2]) / s);
    } else {
        double const s = 2.0 * std::sqrt(1.0 + e[10] - e[0] - e[5]);
        set((e[8] + e[2]) / s, (e[9] + e[6]) / s, 0.25 * s, (e[1] - e[4]) / s);
    }
}

void Quaternion::setWithEuler(Euler const& euler)
{
    // The sines and cosines in double, everything after them in float: the results must
    // match those of the single-precision code that stored rotations were made with.
    float const s1 = static_cast<float>(std::sin(euler.x * 0.5));
    float const c1 = static_cast<float>(std::cos(euler.x * 0.5));
    float const s2 = static_cast<float>(std::sin(euler.y * 0.5));
    float const c2 = static_cast<float>(std::cos(euler.y * 0.5));
    float const s3 = static_cast<float>(std::sin(euler.z * 0.5));
    float const c3 = static_cast<float>(std::cos(euler.z * 0.5));
    float const a = s1 * c2 * c3;
    float const b = c1 * s2 * s3;
    float const c = c1 * s2 * c3;
    float const d = s1 * c2 * s3;
    float const e = c1 * c2 * s3;
    float const f = s1 * s2 * c3;
    float const g = c1 * c2 * c3;
    float const h = s1 * s2 * s3;
    switch (euler.order) {
    case Euler::CurrentOrder:
        set(0.0, 0.0, 0.0, 0.0);
        break;
    case Euler::XYZ:
        set(a + b, c - d, e + f, g - h);
        break;
    case Euler::YZX:
        set(a + b, c + d, e - f, g - h);
        break;
    case Euler::ZXY:
        set(a - b, c + d, e + f, g - h);
        break;
    case Euler::XZY:
        set(a - b, c - d, e + f, g + h);
        break;
    case Euler::YXZ:
        set(a + b, c - d, e - f, g + h);
        break;
    case Euler::ZYX:
        set(a - b, c + d, e - f, g + h);
        break;
    default:
        break;
    }
}

void Quaternion::setWithArray(double const* array, int index)
{
    set(array[index], array[index + 1], array[index + 2], array[index + 3]);
}

void Quaternion::toArray(double* array, int index) const
{
    array[index] = x;
    array[index + 1] = y;
    array[index + 2] = z;
    array[index + 3] = w;
}

bool Quaternion::operator==(Quaternion const& other) const
{
    return x == other.x && y == other.y && z == other.z && w == other.w;
}

bool Quaternion::operator!=(Quaternion const& other) const
{
    return !(*this == other);
}

double Quaternion::dot(Quaternion const& other) const
{
    return x * other.x + y * other.y + z * other.z + w * other.w;
}

double Quaternion::lengthSq() const
{
    return dot(*this);
}

double Quaternion::length() const
{
    return std::sqrt(lengthSq());
}

void Quaternion::normalize()
{
    double const l = length();
    if (l == 0.0) {
        set(0.0, 0.0, 0.0, 1.0);
        return;
    }
    double const scale = 1.0 / l;
    set(x * scale, y * scale, z * scale, w * scale);
}

void Quaternion::conjugate()
{
    set(-x, -y, -z);
}

void Quaternion::setInverse()
{
    conjugate();
    normalize();
}

double Quaternion::getRotationAngle() const
{
    return 2.0 * std::acos(w) * kRadiansToDegrees;
}

Vec3 Quaternion::getRotationAxis() const
{
    double const d = 1.0 - w * w;
    if (kFloatTolerance > d) {
        return {0.0, 0.0, 1.0};
    }
    return Vec3(x, y, z) * (1.0 / std::sqrt(d));
}

Quaternion Quaternion::hamiltonProduct(Quaternion const& a, Quaternion const& b)
{
    return {a.x * b.w + a.w * b.x + a.y * b.z - a.z * b.y, a.y * b.w + a.w * b.y + a.z * b.x - a.x * b.z,
            a.z * b.w + a.w * b.z + a.x * b.y - a.y * b.x, a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}

void Quaternion::multiply(Quaternion const& other)
{
    multiplyQuaternions(*this, other);
}

void Quaternion::premultiply(Quaternion const& other)
{
    multiplyQuaternions(other, *this);
}

void Quaternion::multiplyQuaternions(Quaternion const& a, Quaternion const& b)
{
    *this = hamiltonProduct(a, b);
}

Vec3 Quaternion::quaternionMulVec3(Quaternion const& q, Vec3 const& v)
{
    Vec3 const u(q.x, q.y, q.z);
    Vec3 const t = u.cross(v);
    Vec3 const s = u.cross(t);
    return v + (t * q.w + s) * 2.0;
}

void Quaternion::slerp(Quaternion const& other, double t)
{
    if (t == 1.0) {
        *this = other;
        return;
    }
    if (t == 0.0) {
        return;
    }
    double c = dot(other);
    Quaternion r(other);
    if (c < 0.0) {
        r.set(-other.x, -other.y, -other.z, -other.w);
        c = -c;
    }
    if (c >= 1.0) {
        return;
    }
    double const n = std::sqrt(1.0 - c * c);
    if (std::abs(n) < kNearParallelSine) {
        set((x + r.x) * 0.5, (y + r.y) * 0.5, (z + r.z) * 0.5, (w + r.w) * 0.5);
        return;
    }
    double const h = std::atan2(n, c);
    double const a = std::sin((1.0 - t) * h) / n;
    double const b = std::sin(h * t) / n;
    set(x * a + r.x * b, y * a + r.y * b, z * a + r.z * b, w * a + r.w * b);
}

Quaternion Quaternion::lerp(Quaternion const& a, Quaternion const& b, double t)
{
    if (a == b) {
        return a;
    }
    Quaternion result(a);
    result.slerp(b, t);
    return result;
}

} // namespace Halvane::Quorvex
