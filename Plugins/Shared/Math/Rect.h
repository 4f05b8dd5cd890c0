#pragma once

#include "Math/Vec2.h"
#include "Math/Vec4.h"

namespace Halvane::Quorvex {

// An axis-aligned rectangle: left, top, width and height, with y pointing down, so the
// bottom edge is top + height. Sizes are not kept non-negative.
// Only include and the setters change the rectangle; the other derived rectangles are
// returned as new values although those operations are not const.
class Rect
{
public:
    Rect() = default;
    Rect(Vec2 point, Vec2 size);
    Rect(double x, double y, double width, double height);

    // floatEqual on each of the four fields.
    bool operator==(Rect const& other) const;
    bool operator!=(Rect const& other) const;

    Vec2 getPoint() const;
    // Keeps the size.
    void setPoint(Vec2 point);
    Vec2 getSize() const;
    // Keeps the point.
    void setSize(Vec2 size);
    double getLeft() const;
    // Keeps the width: the right edge moves along.
    void setLeft(double left);
    double getTop() const;
    // Keeps the height: the bottom edge moves along.
    void setTop(double top);
    double getRight() const;
    // Keeps the left edge and changes the width.
    void setRight(double right);
    double getBottom() const;
    // Keeps the top edge and changes the height.
    void setBottom(float bottom);
    double getCenterX() const;
    // Keeps the width and moves the rectangle.
    void setCenterX(double centerX);
    double getCenterY() const;
    // Keeps the height and moves the rectangle.
    void setCenterY(double centerY);
    Vec2 getCenter() const;
    void setCenter(Vec2 center);
    Vec2 getTopLeft() const;
    Vec2 getTopRight() const;
    Vec2 getBottomLeft() const;
    Vec2 getBottomRight() const;
    // Signed.
    double getArea() const;
    // Both sides exactly 0; one zero side alone is not empty.
    bool isEmpty() const;

    // Shared edges count as contained.
    bool containsRect(Rect other) const;
    // All four edges belong to the rectangle.
    bool containsPoint(Vec2 point) const;
    // Strict: rectangles that only share an edge do not intersect.
    bool intersects(Rect other) const;
    // A shared edge or corner is enough.
    bool touches(Rect other) const;

    // The overlap, unclamped: disjoint rectangles give a negative width or height.
    Rect intersect(Rect other);
    // The bounding rectangle; an empty rectangle takes part like any other.
    Rect unite(Rect other);
    // In place: grows to cover the point.
    void include(Vec2 point);
    Rect getInclude(Vec2 point);
    // Each side moves out by d.
    Rect expand(Vec2 d);
    // Each side moves out by d; the growth of the size, d + d, is summed in float.
    Rect expand(float d);
    // Each side moves out by (s - 1) times the size, so that the new width is
    // (2s - 1) times the old one and the centre stays.
    Rect scale(float sx, float sy);

private:
    Vec4 mBounds; // x left, y top, z width, w height
};

} // namespace Halvane::Quorvex
