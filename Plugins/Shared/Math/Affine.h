#pragma once

#include "Math/Vec2.h"

namespace Halvane::Quorvex {

// A 2D transform: a 2x3 matrix with the implied last row (0, 0, 1), stored row by row,
// so that x' = s0·x + s1·y + s2 and y' = s3·x + s4·y + s5. Angles are in degrees.
//
// The six-number argument lists run column by column instead: (a, b, c, d, e, f) means
// x' = a·x + c·y + e and y' = b·x + d·y + f, and lands in s0 to s5 as a, c, e, b, d, f.
// Only operator= returns the object.
class Affine
{
public:
    double s0;
    double s1;
    double s2;
    double s3;
    double s4;
    double s5;

    // true: the identity; false: all zeros.
    explicit Affine(bool identity = true);
    Affine(double a, double b, double c, double d, double e, double f);
    Affine(Affine const& other) = default;
    Affine& operator=(Affine const& other) = default;

    void set(double a, double b, double c, double d, double e, double f);
    // T(position)·R(rotation)·S(scale)·T(-anchor): the anchor lands on the position.
    void set(Vec2 anchor, Vec2 position, Vec2 scale, double rotation);
    void setTranslate(double x, double y);
    void setScale(double x, double y);
    void setSkewX(double angle);
    void setSkewY(double angle);
    void setRotate(double angle);

    // this = this·M of the setter of the same name: the new transform acts first, before
    // what the object holds, like premultiply.
    void translate(double x, double y);
    void scale(double x, double y);
    void skewX(double angle);
    void skewY(double angle);
    void rotate(double angle);
    // this = other·this: other acts after the object. other may be the object itself.
    void multiply(Affine const& other);
    // this = this·other: other acts before the object.
    void premultiply(Affine const& other);

    // A determinant strictly within +-1e-6 counts as singular: returns false and leaves
    // result untouched. This is looser than Mat4's exact zero, so tiny scales count too.
    // result may be the object itself.
    bool inverse(Affine& result) const;
    // The inverse, or the identity for a singular transform; use inverse() to tell them apart.
    Affine getInverse() const;
    // The mean length of the two rows, rounded to four decimals through single precision.
    double averageScale() const;
    // Absolute per field at kFloatTolerance, boundary included; a NaN is never equal.
    bool operator==(Affine const& other) const;

    void transform(Vec2& point) const;
    Vec2 getTransform(Vec2 const& point) const;
    void transform(double x, double y, double* resultX, double* resultY) const;
    void transform(double& x, double& y) const;
};

} // namespace Halvane::Quorvex
