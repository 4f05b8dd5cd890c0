#include "Math/Mat4.h"

#include "Math/Float.h"
#include "Math/Quaternion.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace Halvane::Quorvex {

namespace {

// 0.0001 in single precision: the smallest nudge that moves the view direction off a
// parallel up vector in the float code that look-at matrices were first built with.
constexpr double kLookAtNudge = static_cast<double>(0.0001f);

// The scale decompose reports, and divides by, instead of a zero one.
constexpr double kZeroScaleStandIn = 1e-06;

} // namespace

Mat4::Mat4(bool identity) : elements{}
{
    if (identity) {
        setIdentity();
    }
}

Mat4::Mat4(double a0, double a1, double a2, double a3, double a4, double a5, double a6, double a7, double a8,
           double a9, double a10, double a11, double a12, double a13, double a14, double a15, bool columnMajor)
{
    double const values[16] = {a0, a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12, a13, a14, a15};
    *this = Mat4(values, columnMajor);
}

Mat4::Mat4(double const* values, bool columnMajor)
{
    for (int k = 0; k < 16; ++k) {
        // Argument k of a row-by-row list is row k / 4, column k % 4.
        elements[columnMajor ? k : 4 * (k % 4) + k / 4] = values[k];
    }
}

Mat4::Mat4(Vec4 const& v0, Vec4 const& v1, Vec4 const& v2, Vec4 const& v3, bool asRows)
{
    Vec4 const* vectors[4] = {&v0, &v1, &v2, &v3};
    for (int k = 0; k < 4; ++k) {
        if (asRows) {
            setRow(k, *vectors[k]);
        } else {
            setColumn(k, *vectors[k]);
        }
    }
}

void Mat4::set(double a0, double a1, double a2, double a3, double a4, double a5, double a6, double a7, double a8,
               double a9, double a10, double a11, double a12, double a13, double a14, double a15)
{
    *this = Mat4(a0, a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12, a13, a14, a15, false);
}

void Mat4::setRow(int row, Vec4 const& values)
{
    elements[row] = values.x;
    elements[row + 4] = values.y;
    elements[row + 8] = values.z;
    elements[row + 12] = values.w;
}

void Mat4::setColumn(int column, Vec4 const& values)
{
    double* target = elements + 4 * column;
    target[0] = values.x;
    target[1] = values.y;
    target[2] = values.z;
    target[3] = values.w;
}

Vec4 Mat4::getRow(int row) const
{
    return {elements[row], elements[row + 4], elements[row + 8], elements[row + 12]};
}

Vec4 Mat4::getColumn(int column) const
{
    double const* source = elements + 4 * column;
    return {source[0], source[1], source[2], source[3]};
}

void Mat4::setIdentity()
{
    setZero();
    elements[0] = elements[5] = elements[10] = elements[15] = 1.0;
}

void Mat4::setZero()
{
    std::fill(std::begin(elements), std::end(elements), 0.0);
}

Mat4 Mat4::identity()
{
    return Mat4(true);
}

Mat4 Mat4::operator+(Mat4 const& other) const
{
    Mat4 result(false);
    add(*this, other, result);
    return result;
}

Mat4 Mat4::operator-(Mat4 const& other) const
{
    Mat4 result(false);
    subtract(*this, other, result);
    return result;
}

Mat4 Mat4::operator*(double factor) const
{
    Mat4 result(*this);
    for (double& element : result.elements) {
        element *= factor;
    }
    return result;
}

Mat4 Mat4::operator*(Mat4 const& other) const
{
    Mat4 result(false);
    mult(*this, other, result);
    return result;
}

Vec4 Mat4::operator*(Vec4 const& v) const
{
    return mult(v);
}

Vec3 Mat4::operator*(Vec3 const& v) const
{
    return mult(v);
}

void Mat4::add(Mat4 const& other)
{
    add(*this, other, *this);
}

void Mat4::subtract(Mat4 const& other)
{
    subtract(*this, other, *this);
}

void Mat4::add(Mat4 const& a, Mat4 const& b, Mat4& result)
{
    for (int k = 0; k < 16; ++k) {
        result.elements[k] = a.elements[k] + b.elements[k];
    }
}

void Mat4::subtract(Mat4 const& a, Mat4 const& b, Mat4& result)
{
    for (int k = 0; k < 16; ++k) {
        result.elements[k] = a.elements[k] - b.elements[k];
    }
}

void Mat4::mult(Mat4 const& other)
{
    mult(*this, other, *this);
}

void Mat4::mult(Mat4 const& a, Mat4 const& b, Mat4& result)
{
    // Into a local first: callers pass the object as operand and output alike.
    double product[16];
    for (int column = 0; column < 4; ++column) {
        for (int row = 0; row < 4; ++row) {
            double sum = 0.0;
            for (int k = 0; k < 4; ++k) {
                sum += a.elements[4 * k + row] * b.elements[4 * column + k];
            }
            product[4 * column + row] = sum;
        }
    }
    std::copy(std::begin(product), std::end(product), result.elements);
}

Vec4 Mat4::mult(Vec4 const& v) const
{
    double const* e = elements;
    return {e[0] * v.x + e[4] * v.y + e[8] * v.z + e[12] * v.w, e[1] * v.x + e[5] * v.y + e[9] * v.z + e[13] * v.w,
            e[2] * v.x + e[6] * v.y + e[10] * v.z + e[14] * v.w, e[3] * v.x + e[7] * v.y + e[11] * v.z + e[15] * v.w};
}

Vec3 Mat4::mult(Vec3 const& v) const
{
    return mult(Vec4(v, 1.0)).getVec3();
}

void Mat4::setTranspose()
{
    transpose(*this);
}

void Mat4::transpose(Mat4& result) const
{
    Mat4 const source(*this);
    for (int k = 0; k < 16; ++k) {
        result.elements[4 * (k % 4) + k / 4] = source.elements[k];
    }
}

void Mat4::cofactors(double (&result)[16]) const
{
    auto at = [this](int row, int column) { return elements[4 * column + row]; };
    // 2x2 minors of two rows i < j: of columns 0 and 1 (left) and of columns 2 and 3 (right).
    double left[4][4] = {};
    double right[4][4] = {};
    for (int i = 0; i < 4; ++i) {
        for (int j = i + 1; j < 4; ++j) {
            left[i][j] = at(i, 0) * at(j, 1) - at(j, 0) * at(i, 1);
            right[i][j] = at(i, 2) * at(j, 3) - at(j, 2) * at(i, 3);
        }
    }
    for (int row = 0; row < 4; ++row) {
        int others[3];
        for (int k = 0, n = 0; k < 4; ++k) {
            if (k != row) {
                others[n++] = k;
            }
        }
        int const p = others[0];
        int const q = others[1];
        int const s = others[2];
        // The 3x3 minor without this row, made of one column and a pair of columns whose
        // 2x2 minors are given, expanded along that one column.
        auto minor = [&](int column, double const (&pairs)[4][4]) {
            return at(p, column) * pairs[q][s] - at(q, column) * pairs[p][s] + at(s, column) * pairs[p][q];
        };
        double const sign = row % 2 == 0 ? 1.0 : -1.0;
        result[row] = sign * minor(1, right);
        result[4 + row] = -sign * minor(0, right);
        result[8 + row] = sign * minor(3, left);
        result[12 + row] = -sign * minor(2, left);
    }
}

bool Mat4::getInverse(Mat4& result) const
{
    double cofactor[16];
    cofactors(cofactor);
    double const det =
        elements[0] * cofactor[0] + elements[1] * cofactor[1] + elements[2] * cofactor[2] + elements[3] * cofactor[3];
    if (det == 0.0) {
        result.setIdentity();
        return false;
    }
    double const scale = 1.0 / det;
    // The adjugate is the transposed cofactor matrix.
    for (int k = 0; k < 16; ++k) {
        result.elements[4 * (k % 4) + k / 4] = cofactor[k] * scale;
    }
    return true;
}

double Mat4::determinant() const
{
    double cofactor[16];
    cofactors(cofactor);
    return elements[0] * cofactor[0] + elements[1] * cofactor[1] + elements[2] * cofactor[2]
        + elements[3] * cofactor[3];
}

bool Mat4::operator==(Mat4 const& other) const
{
    for (int k = 0; k < 16; ++k) {
        if (!floatEqual(elements[k], other.elements[k])) {
            return false;
        }
    }
    return true;
}

void Mat4::setWithQuaternion(Quaternion const& q)
{
    double const x2 = 2.0 * q.x;
    double const y2 = 2.0 * q.y;
    double const z2 = 2.0 * q.z;
    double const xx = q.x * x2;
    double const yy = q.y * y2;
    double const zz = q.z * z2;
    double const xy = q.x * y2;
    double const xz = q.x * z2;
    double const yz = q.y * z2;
    double const xw = q.w * x2;
    double const yw = q.w * y2;
    double const zw = q.w * z2;
    set(1.0 - (yy + zz), xy - zw, xz + yw, 0.0, //
        xy + zw, 1.0 - (zz + xx), yz - xw, 0.0, //
        xz - yw, yz + xw, 1.0 - (yy + xx), 0.0, //
        0.0, 0.0, 0.0, 1.0);
}

void Mat4::setTranslate(Vec3 const& offset)
{
    setTranslate(offset.x, offset.y, offset.z);
}

void Mat4::setTranslate(double x, double y, double z)
{
    setIdentity();
    position(Vec3(x, y, z));
}

void Mat4::setScale(Vec3 const& factors)
{
    setScale(factors.x, factors.y, factors.z);
}

void Mat4::setScale(double x, double y, double z)
{
    setZero();
    elements[0] = x;
    elements[5] = y;
    elements[10] = z;
    elements[15] = 1.0;
}

void Mat4::setRotation(double angle, Vec3 const& axis)
{
    Vec3 unit(axis);
    unit.normalize();
    double const s = std::sin(angle);
    double const c = std::cos(angle);
    double const t = 1.0 - c;
    double const x = unit.x;
    double const y = unit.y;
    double const z = unit.z;
    set(t * x * x + c, t * x * y - s * z, t * x * z + s * y, 0.0, //
        t * x * y + s * z, t * y * y + c, t * y * z - s * x, 0.0, //
        t * x * z - s * y, t * y * z + s * x, t * z * z + c, 0.0, //
        0.0, 0.0, 0.0, 1.0);
}

void Mat4::setRotation(double angle, double x, double y, double z)
{
    setRotation(angle, Vec3(x, y, z));
}

void Mat4::setXRotation(double angle)
{
    setPlaneRotation(1, 2, angle);
}

void Mat4::setYRotation(double angle)
{
    setPlaneRotation(2, 0, angle);
}

void Mat4::setZRotation(double angle)
{
    setPlaneRotation(0, 1, angle);
}

void Mat4::setPlaneRotation(int from, int to, double angle)
{
    double const s = std::sin(angle);
    double const c = std::cos(angle);
    setIdentity();
    elements[5 * from] = c;
    elements[4 * from + to] = s;
    elements[4 * to + from] = -s;
    elements[5 * to] = c;
}

void Mat4::setPerspective(double fov, double aspect, double near, double far)
{
    double const f = 1.0 / std::tan(fov * 0.5);
    setZero();
    elements[0] = f / aspect;
    elements[5] = f;
    elements[10] = (near + far) / (near - far);
    elements[11] = -1.0;
    elements[14] = 2.0 * far * near / (near - far);
}

void Mat4::setFrustum(double left, double right, double bottom, double top, double near, double far)
{
    setZero();
    elements[0] = 2.0 * near / (right - left);
    elements[5] = 2.0 * near / (top - bottom);
    elements[8] = (left + right) / (right - left);
    elements[9] = (bottom + top) / (top - bottom);
    elements[10] = -(near + far) / (far - near);
    elements[11] = -1.0;
    elements[14] = -2.0 * far * near / (far - near);
}

void Mat4::setOrtho(double left, double right, double top, double bottom, double near, double far)
{
    setZero();
    elements[0] = 2.0 / (right - left);
    elements[5] = 2.0 / (top - bottom);
    elements[10] = -2.0 / (far - near);
    elements[12] = -(right + left) / (right - left);
    elements[13] = -(top + bottom) / (top - bottom);
    elements[14] = -(near + far) / (far - near);
    elements[15] = 1.0;
}

void Mat4::setWithAffine(Affine const& affine)
{
    setIdentity();
    elements[0] = affine.s0;
    elements[4] = affine.s1;
    elements[12] = affine.s2;
    elements[1] = affine.s3;
    elements[5] = affine.s4;
    elements[13] = affine.s5;
}

void Mat4::compose(Vec3 const& position, Quaternion const& rotation, Vec3 const& scale)
{
    setWithQuaternion(rotation);
    this->scale(scale);
    this->position(position);
}

void Mat4::compose(Vec3 const& anchor, Vec3 const& position, Quaternion const& rotation, Vec3 const& scale)
{
    Vec3 const scaledAnchor = anchor * scale;
    setWithQuaternion(rotation);
    Mat4 toPosition(true);
    toPosition.setTranslate(position);
    mult(toPosition, *this, *this);
    translate(scaledAnchor.negate());
    // Scaling the block after the translation keeps the column of the anchor's offset,
    // which the scaled anchor already accounts for.
    for (int row = 0; row < 3; ++row) {
        elements[row] *= scale.x;
        elements[4 + row] *= scale.y;
        elements[8 + row] *= scale.z;
    }
}

void Mat4::setLookAt(Vec3 eye, Vec3 target, Vec3 up)
{
    // normalize() turns a zero vector into (1, 0, 0), so these fallbacks act only where
    // the squared length overflows and normalising scales by 0.
    Vec3 z = eye - target;
    z.normalize();
    if (z.lengthSquare() == 0.0) {
        z.z = 1.0;
    }
    Vec3 x = up.cross(z);
    x.normalize();
    if (x.lengthSquare() == 0.0) {
        z.z += kLookAtNudge;
        x = up.cross(z);
        x.normalize();
    }
    Vec3 const y = z.cross(x);
    Vec3 const axes[3] = {x, y, z};
    for (int column = 0; column < 3; ++column) {
        elements[4 * column] = axes[column].x;
        elements[4 * column + 1] = axes[column].y;
        elements[4 * column + 2] = axes[column].z;
    }
}

void Mat4::setLookAt(double eyeX, double eyeY, double eyeZ, double targetX, double targetY, double targetZ,
                     double upX, double upY, double upZ)
{
    setLookAt(Vec3(eyeX, eyeY, eyeZ), Vec3(targetX, targetY, targetZ), Vec3(upX, upY, upZ));
}

void Mat4::position(Vec3 const& offset)
{
    elements[12] = offset.x;
    elements[13] = offset.y;
    elements[14] = offset.z;
}

void Mat4::translate(double x, double y, double z)
{
    for (int row = 0; row < 4; ++row) {
        elements[12 + row] += x * elements[row] + y * elements[4 + row] + z * elements[8 + row];
    }
}

void Mat4::translate(Vec3 const& offset)
{
    translate(offset.x, offset.y, offset.z);
}

void Mat4::translate(Vec4 const& offset)
{
    translate(offset.x, offset.y, offset.z);
}

void Mat4::scale(double x, double y, double z)
{
    for (int row = 0; row < 4; ++row) {
        elements[row] *= x;
        elements[4 + row] *= y;
        elements[8 + row] *= z;
    }
}

void Mat4::scale(Vec3 const& factors)
{
    scale(factors.x, factors.y, factors.z);
}

void Mat4::scale(Vec4 const& factors)
{
    scale(factors.x, factors.y, factors.z);
}

void Mat4::rotate(double angle, double x, double y, double z)
{
    rotate(angle, Vec3(x, y, z));
}

void Mat4::rotate(double angle, Vec3 const& axis)
{
    Mat4 rotation(true);
    rotation.setRotation(angle, axis);
    mult(rotation);
}

void Mat4::rotate(double angle, Vec4 const& axis)
{
    rotate(angle, axis.getVec3());
}

void Mat4::rotateX(double angle)
{
    Mat4 rotation(true);
    rotation.setXRotation(angle);
    mult(rotation);
}

void Mat4::rotateY(double angle)
{
    Mat4 rotation(true);
    rotation.setYRotation(angle);
    mult(rotation);
}

void Mat4::rotateZ(double angle)
{
    Mat4 rotation(true);
    rotation.setZRotation(angle);
    mult(rotation);
}

Vec3 Mat4::multWithoutTranslate(Vec3 const& v) const
{
    return mult(Vec4(v, 0.0)).getVec3();
}

Vec3 Mat4::multAndProject(Vec3 const& v) const
{
    Vec4 const product = mult(Vec4(v, 1.0));
    return product.getVec3() * (1.0 / product.w);
}

Affine Mat4::getAffine() const
{
    return Affine(elements[0], elements[1], elements[4], elements[5], elements[12], elements[13]);
}

double Mat4::getMaxScaleOnAxis() const
{
    double const x = getColumn(0).getVec3().lengthSquare();
    double const y = getColumn(1).getVec3().lengthSquare();
    double const z = getColumn(2).getVec3().lengthSquare();
    return std::sqrt(std::max(std::max(x, y), z));
}

void Mat4::decompose(Vec3& position, Quaternion& rotation, Vec3& scale) const
{
    double sx = getColumn(0).getVec3().length();
    double const sy = getColumn(1).getVec3().length();
    double const sz = getColumn(2).getVec3().length();
    if (determinant() < 0.0) {
        sx = -sx;
    }
    position.set(elements[12], elements[13], elements[14]);

    auto const standIn = [](double factor) { return factor == 0.0 ? kZeroScaleStandIn : factor; };
    scale.set(standIn(sx), standIn(sy), standIn(sz));
    Mat4 unscaled(*this);
    for (int row = 0; row < 3; ++row) {
        unscaled.elements[row] *= 1.0 / scale.x;
        unscaled.elements[4 + row] *= 1.0 / scale.y;
        unscaled.elements[8 + row] *= 1.0 / scale.z;
    }
    rotation.setWithMat4(unscaled);
}

void Mat4::decompose(Vec3 const& anchor, Vec3& position, Quaternion& rotation, Vec3& scale) const
{
    // Read before decompose writes: the anchor may be one of the outputs.
    Vec3 const anchorOffset = multWithoutTranslate(anchor);
    decompose(position, rotation, scale);
    position += anchorOffset;
}

Mat4 Mat4::getAEToGLConversionMatrix(double width, double height)
{
    return Mat4(1.0, 0.0, 0.0, width * -0.5, //
                0.0, -1.0, 0.0, height * 0.5, //
                0.0, 0.0, -1.0, 0.0, //
                0.0, 0.0, 0.0, 1.0, false);
}

} // namespace Halvane::Quorvex
