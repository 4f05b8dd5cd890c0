#include "Math/Rect.h"

#include "Math/Float.h"

#include <algorithm>

namespace Halvane::Quorvex {

namespace {

Rect fromEdges(double left, double top, double right, double bottom)
{
    return {left, top, right - left, bottom - top};
}

} // namespace

Rect::Rect(Vec2 point, Vec2 size) : mBounds(point.x, point.y, size.x, size.y) {}

Rect::Rect(double x, double y, double width, double height) : mBounds(x, y, width, height) {}

bool Rect::operator==(Rect const& other) const
{
    return floatEqual(mBounds.x, other.mBounds.x) && floatEqual(mBounds.y, other.mBounds.y)
        && floatEqual(mBounds.z, other.mBounds.z) && floatEqual(mBounds.w, other.mBounds.w);
}

bool Rect::operator!=(Rect const& other) const
{
    return !(*this == other);
}

Vec2 Rect::getPoint() const
{
    return {mBounds.x, mBounds.y};
}

void Rect::setPoint(Vec2 point)
{
    mBounds.x = point.x;
    mBounds.y = point.y;
}

Vec2 Rect::getSize() const
{
    return {mBounds.z, mBounds.w};
}

void Rect::setSize(Vec2 size)
{
    mBounds.z = size.x;
    mBounds.w = size.y;
}

double Rect::getLeft() const
{
    return mBounds.x;
}

void Rect::setLeft(double left)
{
    mBounds.x = left;
}

double Rect::getTop() const
{
    return mBounds.y;
}

void Rect::setTop(double top)
{
    mBounds.y = top;
}

double Rect::getRight() const
{
    return mBounds.x + mBounds.z;
}

void Rect::setRight(double right)
{
    mBounds.z = right - mBounds.x;
}

double Rect::getBottom() const
{
    return mBounds.y + mBounds.w;
}

void Rect::setBottom(float bottom)
{
    mBounds.w = static_cast<double>(bottom) - mBounds.y;
}

double Rect::getCenterX() const
{
    return mBounds.x + 0.5 * mBounds.z;
}

void Rect::setCenterX(double centerX)
{
    mBounds.x = centerX - 0.5 * mBounds.z;
}

double Rect::getCenterY() const
{
    return mBounds.y + 0.5 * mBounds.w;
}

void Rect::setCenterY(double centerY)
{
    mBounds.y = centerY - 0.5 * mBounds.w;
}

Vec2 Rect::getCenter() const
{
    return {getCenterX(), getCenterY()};
}

void Rect::setCenter(Vec2 center)
{
    setCenterX(center.x);
    setCenterY(center.y);
}

Vec2 Rect::getTopLeft() const
{
    return {getLeft(), getTop()};
}

Vec2 Rect::getTopRight() const
{
    return {getRight(), getTop()};
}

Vec2 Rect::getBottomLeft() const
{
    return {getLeft(), getBottom()};
}

Vec2 Rect::getBottomRight() const
{
    return {getRight(), getBottom()};
}

double Rect::getArea() const
{
    return mBounds.z * mBounds.w;
}

bool Rect::isEmpty() const
{
    return mBounds.z == 0.0 && mBounds.w == 0.0;
}

bool Rect::containsRect(Rect other) const
{
    return other.getLeft() >= getLeft() && other.getTop() >= getTop() && getRight() >= other.getRight()
        && getBottom() >= other.getBottom();
}

bool Rect::containsPoint(Vec2 point) const
{
    return point.x >= getLeft() && point.y >= getTop() && getRight() >= point.x && getBottom() >= point.y;
}

bool Rect::intersects(Rect other) const
{
    return other.getRight() > getLeft() && other.getBottom() > getTop() && getRight() > other.getLeft()
        && getBottom() > other.getTop();
}

bool Rect::touches(Rect other) const
{
    return other.getRight() >= getLeft() && other.getBottom() >= getTop() && getRight() >= other.getLeft()
        && getBottom() >= other.getTop();
}

Rect Rect::intersect(Rect other)
{
    return fromEdges(std::max(getLeft(), other.getLeft()), std::max(getTop(), other.getTop()),
                     std::min(getRight(), other.getRight()), std::min(getBottom(), other.getBottom()));
}

Rect Rect::unite(Rect other)
{
    return fromEdges(std::min(getLeft(), other.getLeft()), std::min(getTop(), other.getTop()),
                     std::max(getRight(), other.getRight()), std::max(getBottom(), other.getBottom()));
}

void Rect::include(Vec2 point)
{
    *this = getInclude(point);
}

Rect Rect::getInclude(Vec2 point)
{
    return fromEdges(std::min(getLeft(), point.x), std::min(getTop(), point.y),
                     std::max(getRight(), point.x), std::max(getBottom(), point.y));
}

Rect Rect::expand(Vec2 d)
{
    return {mBounds.x - d.x, mBounds.y - d.y, mBounds.z + 2.0 * d.x, mBounds.w + 2.0 * d.y};
}

Rect Rect::expand(float d)
{
    double const grow = static_cast<double>(d + d);
    double const side = static_cast<double>(d);
    return {mBounds.x - side, mBounds.y - side, mBounds.z + grow, mBounds.w + grow};
}

Rect Rect::scale(float sx, float sy)
{
    double const width = mBounds.z;
    double const height = mBounds.w;
    return expand(Vec2(static_cast<double>(sx) * width - width, static_cast<double>(sy) * height - height));
}

} // namespace Halvane::Quorvex
