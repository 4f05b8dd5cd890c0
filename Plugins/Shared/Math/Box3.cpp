#include "Math/Box3.h"

#include <limits>

namespace Halvane::Quorvex {

namespace {

constexpr double kEmptyMin = std::numeric_limits<double>::max();
constexpr double kEmptyMax = std::numeric_limits<double>::min(); // smallest positive normal

} // namespace

Box3::Box3() : min(kEmptyMin), max(kEmptyMax) {}

Box3::Box3(Vec3 minValue, Vec3 maxValue) : min(minValue), max(maxValue) {}

bool Box3::operator==(Box3 const& other)
{
    return min == other.min && max == other.max;
}

void Box3::set(Vec3 minValue, Vec3 maxValue)
{
    min = minValue;
    max = maxValue;
}

void Box3::setFromArray(float* values, int count)
{
    auto const lower = [](double& bound, double value) {
        if (value < bound) {
            bound = value;
        }
    };
    auto const raise = [](double& bound, double value) {
        if (value > bound) {
            bound = value;
        }
    };
    Vec3 low(kEmptyMin);
    Vec3 high(kEmptyMax);
    for (int i = 0; i < count; i += 3) {
        double const px = values[i];
        double const py = values[i + 1];
        double const pz = values[i + 2];
        lower(low.x, px);
        lower(low.y, py);
        lower(low.z, pz);
        raise(high.x, px);
        raise(high.y, py);
        raise(high.z, pz);
    }
    set(low, high);
}

void Box3::setFromPoints(Vec3* points, int count)
{
    makeEmpty();
    if (points == nullptr || count == 0) {
        return;
    }
    min = points[0];
    max = points[0];
    for (int i = 1; i < count; ++i) {
        expandByPoint(points[i]);
    }
}

void Box3::setFromCenterAndSize(Vec3 center, Vec3 size)
{
    Vec3 const half = size * 0.5;
    min = center - half;
    max = center + half;
}

void Box3::makeEmpty()
{
    min = Vec3(kEmptyMin);
    max = Vec3(kEmptyMax);
}

void Box3::expandByPoint(Vec3 point)
{
    min.getMin(point);
    max.getMax(point);
}

void Box3::expandByVector(Vec3 v)
{
    min -= v;
    max += v;
}

void Box3::expandByScalar(float s)
{
    double const amount = static_cast<double>(s);
    min += -amount;
    max += amount;
}

void Box3::translate(Vec3 v)
{
    min += v;
    max += v;
}

void Box3::unionBox(Box3 other)
{
    min.getMin(other.min);
    max.getMax(other.max);
}

void Box3::intersects(Box3 other)
{
    min.getMax(other.min);
    max.getMin(other.max);
    if (isEmpty()) {
        makeEmpty();
    }
}

bool Box3::isEmpty() const
{
    return min.x > max.x || min.y > max.y || min.z > max.z || (min.isZero() && max.isZero());
}

Vec3 Box3::getCenter() const
{
    return (min + max) * 0.5;
}

Vec3 Box3::getSize() const
{
    return max - min;
}

bool Box3::containsPoint(Vec3 const& point) const
{
    return !(point.x < min.x || point.x > max.x || point.y < min.y || point.y > max.y || point.z < min.z
             || point.z > max.z);
}

bool Box3::containsBox(Box3 const& other) const
{
    return other.min.x >= min.x && other.min.y >= min.y && other.min.z >= min.z && max.x >= other.max.x
        && max.y >= other.max.y && max.z >= other.max.z;
}

bool Box3::intersectsBox(Box3 const& other) const
{
    return !(min.x > other.max.x || min.y > other.max.y || min.z > other.max.z || other.min.x > max.x
             || other.min.y > max.y || other.min.z > max.z);
}

Vec3 Box3::getParameter(Vec3 const& point) const
{
    return (point - min) / (max - min);
}

Vec3 Box3::clampPoint(Vec3 point) const
{
    point.clamp(min, max);
    return point;
}

double Box3::distanceToPoint(Vec3 point)
{
    return (clampPoint(point) - point).length();
}

} // namespace Halvane::Quorvex
