#include "Math/Euler.h"

#include "Math/Float.h"
#include "Math/Mat4.h"

#include <algorithm>
#include <cmath>

namespace Halvane::Quorvex {

namespace {

// 0.999999 in single precision, widened: the key element at or beyond it counts as gimbal
// lock, where the outer angles can no longer be told apart.
constexpr double kGimbalLockThreshold = static_cast<double>(0.999999f);

// Rounding can carry a sine just past 1; asin would give NaN.
double clampedSine(double value)
{
    return std::clamp(value, -1.0, 1.0);
}

} // namespace

Euler::Euler(double xValue, double yValue, double zValue, RotationOrder orderValue)
    : x(xValue), y(yValue), z(zValue), order(orderValue)
{
}

void Euler::set(double xValue, double yValue, double zValue, RotationOrder orderValue)
{
    x = xValue;
    y = yValue;
    z = zValue;
    if (orderValue != CurrentOrder) {
        order = orderValue;
    }
}

void Euler::setWithMat4(Mat4 const& m, RotationOrder orderValue)
{
    if (orderValue != CurrentOrder) {
        order = orderValue;
    }
    double const* e = m.elements;
    // The element that holds the sine of the middle angle, for each order.
    static constexpr int kKeyElement[7] = {0, 8, 1, 6, 4, 9, 2};
    if (order < XYZ || order > ZYX) {
        return;
    }
    bool const locked = !(std::abs(e[kKeyElement[order]]) < kGimbalLockThreshold);
    switch (order) {
    case XYZ:
        y = std::asin(clampedSine(e[8]));
        x = locked ? std::atan2(e[6], e[5]) : std::atan2(-e[9], e[10]);
        z = locked ? 0.0 : std::atan2(-e[4], e[0]);
        break;
    case YZX:
        z = std::asin(clampedSine(e[1]));
        x = locked ? 0.0 : std::atan2(-e[9], e[5]);
        y = locked ? std::atan2(e[8], e[10]) : std::atan2(-e[2], e[0]);
        break;
    case ZXY:
        x = std::asin(clampedSine(e[6]));
        y = locked ? 0.0 : std::atan2(-e[2], e[10]);
        z = locked ? std::atan2(e[1], e[0]) : std::atan2(-e[4], e[5]);
        break;
    case XZY:
        z = std::asin(-clampedSine(e[4]));
        x = locked ? std::atan2(-e[9], e[10]) : std::atan2(e[6], e[5]);
        y = locked ? 0.0 : std::atan2(e[8], e[0]);
        break;
    case YXZ:
        x = std::asin(-clampedSine(e[9]));
        y = locked ? std::atan2(-e[2], e[0]) : std::atan2(e[8], e[10]);
        z = locked ? 0.0 : std::atan2(e[1], e[5]);
        break;
    case ZYX:
        y = std::asin(-clampedSine(e[2]));
        x = locked ? 0.0 : std::atan2(e[6], e[10]);
        z = locked ? std::atan2(-e[4], e[5]) : std::atan2(e[1], e[0]);
        break;
    default:
        break;
    }
}

void Euler::setWithQuaternion(Quaternion const& q, RotationOrder orderValue)
{
    Mat4 rotation(true);
    rotation.setWithQuaternion(q);
    setWithMat4(rotation, orderValue);
}

bool Euler::operator==(Euler const& other) const
{
    return floatEqual(x, other.x) && floatEqual(y, other.y) && floatEqual(z, other.z) && order == other.order;
}

} // namespace Halvane::Quorvex
