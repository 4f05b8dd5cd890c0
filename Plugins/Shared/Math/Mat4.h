#pragma once

#include "Math/Affine.h"
#include "Math/Vec3.h"
#include "Math/Vec4.h"

namespace Halvane::Quorvex {

class Quaternion;

// A 4x4 transform in double precision, column-major as OpenGL takes it untransposed.
// Points are column vectors on the right (M·p), so in A·B the matrix B acts first; the
// translation lies in elements 12, 13 and 14. Angles are in radians.
//
// Element 4c + r is row r, column c. The array is open because Vec3, Quaternion and
// Euler read the elements directly.
//
// Every matrix product goes through the static mult, which reads all of its input before
// it stores anything: its output may be either operand. Only operator= returns the object.
class Mat4
{
public:
    double elements[16];

    // true: the identity; false: all zeros.
    explicit Mat4(bool identity = true);
    // columnMajor true: the arguments in storage order, the first four being column 0.
    // false: row by row, the first four being row 0, as written in source and as set().
    Mat4(double a0, double a1, double a2, double a3, double a4, double a5, double a6, double a7, double a8,
         double a9, double a10, double a11, double a12, double a13, double a14, double a15,
         bool columnMajor = false);
    // Sixteen doubles, with the flag read as above; the default takes a GL-ordered array.
    explicit Mat4(double const* values, bool columnMajor = true);
    // The opposite sense: asRows true makes vector k row k, false makes it column k.
    Mat4(Vec4 const& v0, Vec4 const& v1, Vec4 const& v2, Vec4 const& v3, bool asRows = true);
    Mat4(Mat4 const& other) = default;
    Mat4& operator=(Mat4 const& other) = default;

    // Always row by row.
    void set(double a0, double a1, double a2, double a3, double a4, double a5, double a6, double a7, double a8,
             double a9, double a10, double a11, double a12, double a13, double a14, double a15);

    // Indices must lie in 0 to 3; they are not checked.
    void setRow(int row, Vec4 const& values);
    void setColumn(int column, Vec4 const& values);
    Vec4 getRow(int row) const;
    Vec4 getColumn(int column) const;
    void setIdentity();
    void setZero();
    static Mat4 identity();

    // New values; the object stays. Scaling covers all sixteen elements, element 15 included.
    Mat4 operator+(Mat4 const& other) const;
    Mat4 operator-(Mat4 const& other) const;
    Mat4 operator*(double factor) const;
    Mat4 operator*(Mat4 const& other) const;
    Vec4 operator*(Vec4 const& v) const;
    Vec3 operator*(Vec3 const& v) const;

    // In place, element by element.
    void add(Mat4 const& other);
    void subtract(Mat4 const& other);
    static void add(Mat4 const& a, Mat4 const& b, Mat4& result);
    static void subtract(Mat4 const& a, Mat4 const& b, Mat4& result);

    // this = this·other.
    void mult(Mat4 const& other);
    // result = a·b; result may be a or b.
    static void mult(Mat4 const& a, Mat4 const& b, Mat4& result);
    Vec4 mult(Vec4 const& v) const;
    // M·(x, y, z, 1) with the fourth component dropped, not divided by; see multAndProject.
    Vec3 mult(Vec3 const& v) const;

    void setTranspose();
    // result may be the object itself.
    void transpose(Mat4& result) const;
    // Adjugate over determinant. A determinant of exactly 0.0 writes the identity and
    // returns false; there is no tolerance. result may be the object itself.
    bool getInverse(Mat4& result) const;
    double determinant() const;
    // Absolute per element at kFloatTolerance, boundary included; a NaN is never equal.
    bool operator==(Mat4 const& other) const;

    // Builders that overwrite the whole matrix. The quaternion is not normalised.
    void setWithQuaternion(Quaternion const& q);
    void setTranslate(Vec3 const& offset);
    void setTranslate(double x, double y, double z);
    void setScale(Vec3 const& factors);
    void setScale(double x, double y, double z);
    // The axis goes through Vec3::normalize, so a zero axis means x.
    void setRotation(double angle, Vec3 const& axis);
    void setRotation(double angle, double x, double y, double z);
    void setXRotation(double angle);
    void setYRotation(double angle);
    void setZRotation(double angle);
    // OpenGL's right-handed projections: the eye looks down -z, depth maps to -1..1.
    // fov is the full vertical angle. Nothing is checked; equal planes give inf or NaN.
    void setPerspective(double fov, double aspect, double near, double far);
    void setFrustum(double left, double right, double bottom, double top, double near, double far);
    // Note top before bottom, the reverse of setFrustum.
    void setOrtho(double left, double right, double top, double bottom, double near, double far);
    // The 2D transform embedded in the identity.
    void setWithAffine(Affine const& affine);
    // T(position)·R(rotation)·S(scale).
    void compose(Vec3 const& position, Quaternion const& rotation, Vec3 const& scale);
    // T(position)·R(rotation)·S(scale)·T(-anchor): the anchor lands on the position.
    void compose(Vec3 const& anchor, Vec3 const& position, Quaternion const& rotation, Vec3 const& scale);

    // The camera's orientation, z pointing from the target to the eye. It is no view
    // matrix: only the 3x3 block is written; translation and bottom row stay.
    void setLookAt(Vec3 eye, Vec3 target, Vec3 up);
    void setLookAt(double eyeX, double eyeY, double eyeZ, double targetX, double targetY, double targetZ,
                   double upX, double upY, double upZ);
    // Writes elements 12, 13 and 14 only.
    void position(Vec3 const& offset);

    // this = this·T: the new transform acts on a point before what the matrix holds.
    // The w of a Vec4 argument is ignored.
    void translate(double x, double y, double z);
    void translate(Vec3 const& offset);
    void translate(Vec4 const& offset);
    void scale(double x, double y, double z);
    void scale(Vec3 const& factors);
    void scale(Vec4 const& factors);
    void rotate(double angle, double x, double y, double z);
    void rotate(double angle, Vec3 const& axis);
    void rotate(double angle, Vec4 const& axis);
    void rotateX(double angle);
    void rotateY(double angle);
    void rotateZ(double angle);

    // M·(x, y, z, 0): a direction, untranslated.
    Vec3 multWithoutTranslate(Vec3 const& v) const;
    // M·(x, y, z, 1) divided by its w; a w of 0 is unguarded.
    Vec3 multAndProject(Vec3 const& v) const;
    // Elements 0, 1, 4, 5, 12 and 13; the rest is ignored.
    Affine getAffine() const;
    // Length of the longest of the first three columns (rows 0 to 2).
    double getMaxScaleOnAxis() const;
    // Undo compose; the object stays. A reflection puts its sign on the x scale alone, a zero
    // scale is reported as 1e-06, and skew goes into the rotation unremoved.
    void decompose(Vec3& position, Quaternion& rotation, Vec3& scale) const;
    void decompose(Vec3 const& anchor, Vec3& position, Quaternion& rotation, Vec3& scale) const;

    // From host coordinates (origin top left, y down, z into the picture) to OpenGL's
    // (origin in the centre, y up, z towards the viewer).
    static Mat4 getAEToGLConversionMatrix(double width, double height);

private:
    // Identity but for the plane of two axes, turned from the first towards the second.
    void setPlaneRotation(int from, int to, double angle);
    // Cofactor k belongs to element k; the first four are those of column 0.
    void cofactors(double (&result)[16]) const;
};

} // namespace Halvane::Quorvex
