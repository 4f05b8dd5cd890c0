#pragma once

#include "Math/Vec3.h"

namespace Halvane::Quorvex {

class Euler;
class Mat4;

// A rotation as x, y, z, w, the real part last, acting on column vectors like Mat4:
// in a·b, b acts first. Nothing keeps it at unit length; each operation says whether it
// normalises. Angles go in as radians; getRotationAngle alone answers in degrees.
// Only operator= returns the object.
class Quaternion
{
public:
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double w = 1.0;

    // The identity.
    Quaternion() = default;
    // w = 1; not normalised.
    Quaternion(double xValue, double yValue, double zValue);
    Quaternion(double xValue, double yValue, double zValue, double wValue);
    // The axis is taken as it is, so its length scales x, y and z; set() normalises it.
    Quaternion(Vec3 const& axis, double angle);
    // As setWithDirection.
    Quaternion(Vec3 const& from, Vec3 const& to);
    Quaternion(Quaternion const& other) = default;
    Quaternion& operator=(Quaternion const& other) = default;

    // w stays.
    void set(double xValue, double yValue, double zValue);
    void set(double xValue, double yValue, double zValue, double wValue);
    // A normalised copy of the axis, so a zero axis rotates about x.
    void set(Vec3 const& axis, double angle);
    // The shortest rotation between two directions that the caller has made unit length.
    // Opposite directions take an axis perpendicular to the first.
    void setWithDirection(Vec3 const& from, Vec3 const& to);
    // The rotation of the upper left 3x3 block, which must be a pure rotation; neither the
    // block nor the result is normalised.
    void setWithMat4(Mat4 const& m);
    // In single precision, about seven digits. Order CurrentOrder gives (0, 0, 0, 0);
    // an order value beyond the six leaves the quaternion as it was.
    void setWithEuler(Euler const& euler);
    // Four doubles from array[index] on; nothing is checked.
    void setWithArray(double const* array, int index);
    void toArray(double* array, int index) const;

    // Exact, field by field; a NaN is never equal.
    bool operator==(Quaternion const& other) const;
    bool operator!=(Quaternion const& other) const;
    double dot(Quaternion const& other) const;
    double lengthSq() const;
    double length() const;
    // A zero quaternion becomes the identity.
    void normalize();
    // Not normalised.
    void conjugate();
    void setInverse();
    // In degrees; a w outside -1..1 gives NaN.
    double getRotationAngle() const;
    // (0, 0, 1) when w is within rounding of +-1, whatever x, y and z hold.
    Vec3 getRotationAxis() const;

    // this = this·other.
    void multiply(Quaternion const& other);
    // this = other·this.
    void premultiply(Quaternion const& other);
    // this = a·b; either may be the object itself.
    void multiplyQuaternions(Quaternion const& a, Quaternion const& b);
    // v rotated by q, without normalising q.
    static Vec3 quaternionMulVec3(Quaternion const& q, Vec3 const& v);

    // Spherical interpolation towards other along the shorter way, in place. t is not
    // clamped. t of exactly 1 takes other as it is, sign included; nearly parallel
    // rotations give the plain midpoint whatever t is. The result is not normalised.
    void slerp(Quaternion const& other, double t);
    // Spherical in spite of its name: slerp on a copy of a.
    static Quaternion lerp(Quaternion const& a, Quaternion const& b, double t);

private:
    static Quaternion hamiltonProduct(Quaternion const& a, Quaternion const& b);
};

} // namespace Halvane::Quorvex
