#pragma once

#include "Math/Float.h"
#include "Math/Vec3.h"

namespace Halvane::Quorvex {

// A four-component vector: homogeneous coordinate, matrix row or column, rectangle storage.
// Unlike Vec2 and Vec3 it compares radially, and its lerp is spherical.
class Vec4
{
public:
    // Bound on the squared distance of operator==: kFloatTolerance squared.
    static constexpr double kSquaredTolerance = kFloatTolerance * kFloatTolerance;
    // Below this 1 - cos(angle), lerp falls back to linear weights. The float 0.01
    // widened, not the double 0.01.
    static constexpr double kNearParallelThreshold = static_cast<double>(0.01f);

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double w = 0.0;

    Vec4() = default;
    Vec4(double xValue, double yValue, double zValue, double wValue)
        : x(xValue), y(yValue), z(zValue), w(wValue)
    {
    }
    Vec4(Vec3 const& xyz, double wValue) : x(xyz.x), y(xyz.y), z(xyz.z), w(wValue) {}

    void set(double xValue, double yValue, double zValue, double wValue);
    void setZero();
    // Drops w without dividing by it.
    Vec3 getVec3() const;

    // In place.
    void add(Vec4 const& other);
    void add(double value);
    void sub(Vec4 const& other);
    void sub(double value);
    void mult(Vec4 const& other);
    void mult(double value);
    void divide(Vec4 const& other);
    void divide(double value);

    void operator+=(Vec4 const& other);
    void operator+=(double value);
    void operator-=(Vec4 const& other);
    void operator-=(double value);
    void operator*=(Vec4 const& other);
    void operator*=(double value);
    void operator/=(Vec4 const& other);
    void operator/=(double value);

    Vec4 operator+(Vec4 const& other) const;
    Vec4 operator+(double value) const;
    Vec4 operator-(Vec4 const& other) const;
    Vec4 operator-(double value) const;
    Vec4 operator*(Vec4 const& other) const;
    Vec4 operator*(double value) const;
    Vec4 operator/(Vec4 const& other) const;
    Vec4 operator/(double value) const;

    // Squared distance strictly below kSquaredTolerance.
    bool operator==(Vec4 const& other) const;
    bool operator!=(Vec4 const& other) const;
    // Squared distance strictly below tolerance squared.
    bool equal(Vec4 const& other, double tolerance) const;
    bool isZero() const;
    double length() const;
    double lengthSquare() const;
    double lengthManhattan() const;
    double distance(Vec4 const& other) const;
    double dot(Vec4 const& other) const;
    // Flips the sign bits, so 0 becomes -0.
    Vec4 negate() const;
    // Reciprocals, unguarded.
    Vec4 invert() const;
    // The zero vector becomes (length, 0, 0, 0).
    void setLength(double length);
    // The zero vector becomes (1, 0, 0, 0).
    void normalize();

    // Spherical interpolation along the shorter way, in single precision, returning a
    // unit vector. t of exactly 0 or 1 returns a or b unchanged and not normalised.
    static Vec4 lerp(Vec4 a, Vec4 b, double t);

private:
    double squaredDistance(Vec4 const& other) const;
};

} // namespace Halvane::Quorvex
