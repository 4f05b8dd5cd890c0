#pragma once

#include "Math/Vec2.h"

namespace Halvane::Quorvex {

class Mat4;
class Quaternion;

// a - b, moved by one cycle towards zero when it lies beyond half a cycle either way.
// Exactly half a cycle stays, only one cycle is ever taken off, and a cycle of 0 wraps nothing.
double cyclicDifference(double a, double b, double cycle);

// A point, a direction or a scale. angleBetween answers in radians.
// Which operations change the vector does not follow from their names; see each comment.
class Vec3
{
public:
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    Vec3() = default;
    explicit Vec3(double value) : x(value), y(value), z(value) {}
    Vec3(Vec2 xy, double zValue) : x(xy.x), y(xy.y), z(zValue) {}
    Vec3(double xValue, double yValue, double zValue) : x(xValue), y(yValue), z(zValue) {}

    void set(Vec2 xy, double zValue);
    void set(double xValue, double yValue, double zValue);
    // Index 0 sets x, 1 sets y, any other index sets z.
    void set(int index, double value);
    void setZero();
    // Reads array[offset] and the two elements after it; the array must not be null.
    void fromArray(double const* array, int offset);
    // Writes x, y, z to array[offset] and the two elements after it.
    void toArray(double* array, int offset);
    Vec2 getVec2() const;

    // In place.
    void add(Vec3 const& other);
    void add(double value);
    void sub(Vec3 const& other);
    void sub(double value);
    void mult(Vec3 const& other);
    void mult(double value);
    void divide(Vec3 const& other);
    void divide(double value);

    void operator+=(Vec3 const& other);
    void operator+=(double value);
    void operator-=(Vec3 const& other);
    void operator-=(double value);
    void operator*=(Vec3 const& other);
    void operator*=(double value);
    void operator/=(Vec3 const& other);
    void operator/=(double value);

    Vec3 operator+(Vec3 const& other) const;
    Vec3 operator+(double value) const;
    Vec3 operator-(Vec3 const& other) const;
    Vec3 operator-(double value) const;
    Vec3 operator*(Vec3 const& other) const;
    Vec3 operator*(double value) const;
    Vec3 operator/(Vec3 const& other) const;
    Vec3 operator/(double value) const;

    // Absolute per component at kFloatTolerance, boundary included.
    bool operator==(Vec3 const& other) const;
    bool operator!=(Vec3 const& other) const;
    bool equal(Vec3 const& other, double tolerance) const;
    bool isZero() const;
    // Index of the component of largest magnitude; a tie goes to the later index.
    int largestAbsComponent() const;

    double dot(Vec3 const& other) const;
    Vec3 cross(Vec3 const& other) const;
    // Unsigned radians from 0 to pi; the cosine is not clamped.
    double angleBetween(Vec3 const& other) const;
    double length() const;
    double lengthSquare() const;
    double distance(Vec3 const& other) const;
    double distanceSquare(Vec3 const& other) const;
    // The zero vector becomes (length, 0, 0).
    void setLength(double length);
    // The zero vector becomes (1, 0, 0).
    void normalize();

    // Sign flips keep signed zeros: 0 becomes -0.
    void setNegate();
    Vec3 negate() const;
    // Reciprocals, unguarded.
    void setInvert();
    Vec3 invert() const;

    // Plain linear, t not clamped.
    static Vec3 lerp(Vec3 a, Vec3 b, double t);
    // In place, per component.
    void getMin(Vec3 other);
    void getMax(Vec3 other);
    void clamp(Vec3 low, Vec3 high);
    // A rounded-down copy; the vector stays.
    Vec3 floor();
    // Per component cyclicDifference with a cycle of 0, which equals *this - other.
    Vec3 rotationalDifference(Vec3 const& other) const;
    // In place: a unit vector perpendicular to v, chosen from this vector's own largest
    // component. v may be this vector itself, which then yields (1, 0, 0).
    void ortho(Vec3 const& v);

    // In place, reading the matrix's elements directly.
    // M·(x, y, z, 1) without the divide by w.
    void applyMatrix4(Mat4 const& m);
    // M·(x, y, z, 1) divided by its w; a w of 0 is unguarded.
    void applyProjection(Mat4 const& m);
    // M·(x, y, z, 0), then setLength(1.0), so a direction mapped to zero becomes (1, 0, 0).
    void transformDirection(Mat4 const& m);
    // q·v·conjugate(q) without normalising q: a quaternion of length L scales by L squared.
    void applyQuaternion(Quaternion const& q);
    // The translation, elements 12 to 14.
    void setFromMatrixPosition(Mat4 const& m);
    // Rows 0 to 2 of the column; the index must lie in 0 to 3 and is not checked.
    void setFromMatrixColumn(Mat4 const& m, int column);
};

} // namespace Halvane::Quorvex
