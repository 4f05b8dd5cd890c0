#pragma once

#include "Math/Color.h"
#include "Math/Vec2.h"
#include "Math/Vec3.h"
#include "Math/Vec4.h"

namespace Halvane::Quorvex {

// The weights of a point with respect to the corners a, b, c of a triangle in any of
// the library's value spaces. Built from a triangle, they sum to 1; off the triangle's
// plane they are those of the point's orthogonal projection. A degenerate triangle gives
// NaN or infinite weights, which isInside reports as outside.
class Barycentric
{
public:
    double u; // weight of a
    double v; // weight of b
    double w; // weight of c

    // Stored as given, without any check.
    Barycentric(double uValue, double vValue, double wValue);
    // From the corners a, b, c and the point p, in that order.
    Barycentric(Vec2 const& a, Vec2 const& b, Vec2 const& c, Vec2 const& p);
    Barycentric(Vec3 const& a, Vec3 const& b, Vec3 const& c, Vec3 const& p);
    Barycentric(Vec4 const& a, Vec4 const& b, Vec4 const& c, Vec4 const& p);
    // Alpha counts as a fourth coordinate.
    Barycentric(Color const& a, Color const& b, Color const& c, Color const& p);

    // u, v and w at least 0, u and v at most 1, boundaries included; w has no upper
    // bound. False for a NaN weight. Leaves the weights unchanged.
    bool isInside();

    // (a*u + b*v) + c*w from the values at the corners, unclamped, so weights outside
    // 0..1 extrapolate. Leave the weights unchanged.
    Vec2 interpolate(Vec2 const& a, Vec2 const& b, Vec2 const& c);
    Vec3 interpolate(Vec3 const& a, Vec3 const& b, Vec3 const& c);
    Vec4 interpolate(Vec4 const& a, Vec4 const& b, Vec4 const& c);
    // A nil result is not looked at.
    Color interpolate(Color const& a, Color const& b, Color const& c);
};

} // namespace Halvane::Quorvex
