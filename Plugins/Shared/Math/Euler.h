#pragma once

#include <cstdint>

namespace Halvane::Quorvex {

class Mat4;
class Quaternion;

// A rotation as three angles in radians and the order they combine in.
class Euler
{
public:
    // The letters name the factors of the rotation matrix from left to right, with Rx, Ry
    // and Rz those of Mat4::setXRotation and its sisters: XZY is Rx·Rz·Ry, so the last
    // letter acts first on a point. CurrentOrder has no rotation of its own: passed to a
    // setter it keeps the order the object holds.
    enum RotationOrder : std::int32_t
    {
        CurrentOrder = 0,
        XYZ = 1,
        YZX = 2,
        ZXY = 3,
        XZY = 4,
        YXZ = 5,
        ZYX = 6,
    };

    // The order Euler() holds.
    static constexpr RotationOrder mDefaultOrder = XYZ;

    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    RotationOrder order = mDefaultOrder;

    Euler() = default;
    // Stores the order whatever it is, CurrentOrder included.
    Euler(double xValue, double yValue, double zValue, RotationOrder orderValue = mDefaultOrder);
    Euler(Euler const& other) = default;
    Euler& operator=(Euler const& other) = default;

    void set(double xValue, double yValue, double zValue, RotationOrder orderValue = CurrentOrder);
    // The angles of the upper left 3x3 block, which must be a pure rotation: take the scale
    // out first. The order is stored; with one outside the six the angles stay as they are.
    // At gimbal lock one outer angle is set to 0.0 and the other takes the whole rotation.
    void setWithMat4(Mat4 const& m, RotationOrder orderValue = CurrentOrder);
    void setWithQuaternion(Quaternion const& q, RotationOrder orderValue = CurrentOrder);

    // Angles absolutely at kFloatTolerance, boundary included, and the same order.
    bool operator==(Euler const& other) const;
};

} // namespace Halvane::Quorvex
