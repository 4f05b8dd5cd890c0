#pragma once

#include "Math/Vec3.h"

namespace Halvane::Quorvex {

// An axis-aligned box held as two corners. Nothing keeps min below max.
//
// The empty value has min at the largest finite double and max at the smallest positive
// normal double (not at the lowest double): growing an empty box around negative
// coordinates therefore leaves max just above 0 on those axes.
//
// Note the names: intersects replaces the box by the overlap, intersectsBox is the test.
class Box3
{
public:
    Vec3 min;
    Vec3 max;

    // The empty value.
    Box3();
    Box3(Vec3 minValue, Vec3 maxValue);

    // Vec3 equality on both corners.
    bool operator==(Box3 const& other);

    void set(Vec3 minValue, Vec3 maxValue);
    // From count floats read as whole (x, y, z) triples; max is not seeded from the
    // first point, so an axis with only negative values keeps the empty max.
    void setFromArray(float* values, int count);
    // From the first count points; null or a count of 0 gives the empty value.
    void setFromPoints(Vec3* points, int count);
    void setFromCenterAndSize(Vec3 center, Vec3 size);
    void makeEmpty();
    void expandByPoint(Vec3 point);
    void expandByVector(Vec3 v);
    void expandByScalar(float s);
    void translate(Vec3 v);
    void unionBox(Box3 other);
    // Replaces the box by the overlap; no overlap leaves the empty value.
    void intersects(Box3 other);

    // min above max on any axis, or both corners exactly at the origin.
    bool isEmpty() const;
    Vec3 getCenter() const;
    Vec3 getSize() const;
    // The faces belong to the box.
    bool containsPoint(Vec3 const& point) const;
    // Shared faces count as contained.
    bool containsBox(Box3 const& other) const;
    // Boxes that only touch intersect.
    bool intersectsBox(Box3 const& other) const;
    // 0 at min and 1 at max per axis, not clamped; a flat axis gives an infinity or NaN.
    Vec3 getParameter(Vec3 const& point) const;
    Vec3 clampPoint(Vec3 point) const;
    // 0 inside the box. Leaves the box unchanged.
    double distanceToPoint(Vec3 point);
};

} // namespace Halvane::Quorvex
