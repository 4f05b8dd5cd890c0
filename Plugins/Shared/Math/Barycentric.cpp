#include "Math/Barycentric.h"

namespace Halvane::Quorvex {

namespace {

double dotOf(Vec2 const& a, Vec2 const& b)
{
    return a.dot(b);
}

double dotOf(Vec3 const& a, Vec3 const& b)
{
    return a.dot(b);
}

double dotOf(Vec4 const& a, Vec4 const& b)
{
    return a.dot(b);
}

double dotOf(Color const& a, Color const& b)
{
    return a.r() * b.r() + a.g() * b.g() + a.b() * b.b() + a.a() * b.a();
}

// The normal equations of p - c = u*(a - c) + v*(b - c), with c as the origin.
template <typename Value>
Barycentric fromTriangle(Value const& a, Value const& b, Value const& c, Value const& p)
{
    Value const e0 = b - c;
    Value const e1 = a - c;
    Value const q = p - c;
    double const d00 = dotOf(e0, e0);
    double const d11 = dotOf(e1, e1);
    double const d01 = dotOf(e0, e1);
    double const d0q = dotOf(e0, q);
    double const d1q = dotOf(e1, q);
    double const det = d00 * d11 - d01 * d01;
    double const u = (d00 * d1q - d01 * d0q) / det;
    double const v = (d11 * d0q - d01 * d1q) / det;
    return {u, v, (1.0 - u) - v};
}

template <typename Value>
Value blend(Value const& a, Value const& b, Value const& c, double u, double v, double w)
{
    return (a * u + b * v) + c * w;
}

} // namespace

Barycentric::Barycentric(double uValue, double vValue, double wValue) : u(uValue), v(vValue), w(wValue) {}

Barycentric::Barycentric(Vec2 const& a, Vec2 const& b, Vec2 const& c, Vec2 const& p)
    : Barycentric(fromTriangle(a, b, c, p))
{
}

Barycentric::Barycentric(Vec3 const& a, Vec3 const& b, Vec3 const& c, Vec3 const& p)
    : Barycentric(fromTriangle(a, b, c, p))
{
}

Barycentric::Barycentric(Vec4 const& a, Vec4 const& b, Vec4 const& c, Vec4 const& p)
    : Barycentric(fromTriangle(a, b, c, p))
{
}

Barycentric::Barycentric(Color const& a, Color const& b, Color const& c, Color const& p)
    : Barycentric(fromTriangle(a, b, c, p))
{
}

bool Barycentric::isInside()
{
    return u >= 0.0 && u <= 1.0 && v >= 0.0 && v <= 1.0 && w >= 0.0;
}

Vec2 Barycentric::interpolate(Vec2 const& a, Vec2 const& b, Vec2 const& c)
{
    return blend(a, b, c, u, v, w);
}

Vec3 Barycentric::interpolate(Vec3 const& a, Vec3 const& b, Vec3 const& c)
{
    return blend(a, b, c, u, v, w);
}

Vec4 Barycentric::interpolate(Vec4 const& a, Vec4 const& b, Vec4 const& c)
{
    return blend(a, b, c, u, v, w);
}

Color Barycentric::interpolate(Color const& a, Color const& b, Color const& c)
{
    return blend(a, b, c, u, v, w);
}

} // namespace Halvane::Quorvex
