#include "Math/Vec2.h"

#include "Math/Float.h"

#include <cmath>

namespace Halvane::Quorvex {

namespace {

int signOf(double value)
{
    if (value > 0.0) {
        return 1;
    }
    return value < 0.0 ? -1 : 0; // NaN counts as 0
}

bool offSegment(double t)
{
    return t < 0.0 || t > 1.0;
}

// The foot of v on the unbounded line through p and q; the parameter is not clamped.
Vec2 footOnLine(Vec2 const& v, Vec2 const& p, Vec2 const& q)
{
    Vec2 const d = q - p;
    double const t = (v - p).dot(d) / d.dot(d);
    return p + d * t;
}

} // namespace

void Vec2::set(double xValue, double yValue)
{
    x = xValue;
    y = yValue;
}

void Vec2::set(Vec2& other)
{
    x = other.x;
    y = other.y;
}

void Vec2::setZero()
{
    set(0.0, 0.0);
}

void Vec2::fromArray(double* array, int offset)
{
    if (array == nullptr) {
        return;
    }
    x = array[offset];
    y = array[offset + 1];
}

void Vec2::add(Vec2 const& other)
{
    *this = *this + other;
}

void Vec2::add(double value)
{
    *this = *this + value;
}

void Vec2::sub(Vec2 const& other)
{
    *this = *this - other;
}

void Vec2::sub(double value)
{
    *this = *this - value;
}

void Vec2::mult(Vec2 const& other)
{
    *this = *this * other;
}

void Vec2::mult(double value)
{
    *this = *this * value;
}

void Vec2::divide(Vec2 const& other)
{
    *this = *this / other;
}

void Vec2::divide(double value)
{
    *this = *this / value;
}

void Vec2::operator+=(Vec2 const& other) { add(other); }
void Vec2::operator+=(double value) { add(value); }
void Vec2::operator-=(Vec2 const& other) { sub(other); }
void Vec2::operator-=(double value) { sub(value); }
void Vec2::operator*=(Vec2 const& other) { mult(other); }
void Vec2::operator*=(double value) { mult(value); }
void Vec2::operator/=(Vec2 const& other) { divide(other); }
void Vec2::operator/=(double value) { divide(value); }

Vec2 Vec2::operator+(Vec2 const& other) const { return {x + other.x, y + other.y}; }
Vec2 Vec2::operator+(double value) const { return {x + value, y + value}; }
Vec2 Vec2::operator-(Vec2 const& other) const { return {x - other.x, y - other.y}; }
Vec2 Vec2::operator-(double value) const { return {x - value, y - value}; }
Vec2 Vec2::operator*(Vec2 const& other) const { return {x * other.x, y * other.y}; }
Vec2 Vec2::operator*(double value) const { return {x * value, y * value}; }
Vec2 Vec2::operator/(Vec2 const& other) const { return {x / other.x, y / other.y}; }
Vec2 Vec2::operator/(double value) const { return {x / value, y / value}; }

Vec2 Vec2::modulo(Vec2 const& other) const
{
    return {std::fmod(x, other.x), std::fmod(y, other.y)};
}

Vec2 Vec2::operator%(Vec2 const& other) const
{
    return modulo(other);
}

Vec2 Vec2::dotProduction(Vec2 const& other) const
{
    return *this * other;
}

Vec2 Vec2::negate() const
{
    return {-x, -y};
}

bool Vec2::operator==(Vec2 const& other) const
{
    return equal(other, kFloatTolerance);
}

bool Vec2::operator!=(Vec2 const& other)
{
    return !(*this == other);
}

bool Vec2::equal(Vec2 const& other, double tolerance) const
{
    return std::abs(other.x - x) <= tolerance && std::abs(other.y - y) <= tolerance;
}

bool Vec2::isZero() const
{
    return x == 0.0 && y == 0.0;
}

bool Vec2::equalWithTolerance(double x1, double y1, double x2, double y2, double tolerance)
{
    double const dx = x2 - x1;
    double const dy = y2 - y1;
    return dx * dx + dy * dy < tolerance * tolerance;
}

bool Vec2::equalWithTolerance(Vec2 a, Vec2 b, double tolerance)
{
    return equalWithTolerance(a.x, a.y, b.x, b.y, tolerance);
}

bool Vec2::isCollinear(Vec2 const& other) const
{
    return std::abs(cross(other)) <= kFloatTolerance * std::sqrt(lengthSquare() * other.lengthSquare());
}

bool Vec2::isOrthogonal(Vec2 const& other) const
{
    return std::abs(x * other.x - y * other.y)
        <= kFloatTolerance * std::sqrt(lengthSquare() * other.lengthSquare());
}

bool Vec2::negligible() const
{
    return negligible(x) && negligible(y);
}

bool Vec2::negligible(double value)
{
    return -kFloatTolerance < value && value < kFloatTolerance;
}

bool Vec2::nonNegligible() const
{
    return !negligible();
}

bool Vec2::isDuplicate(Vec2 const& a, Vec2 const& b)
{
    return std::abs(b.x - a.x) < kDuplicateDistance && std::abs(b.y - a.y) < kDuplicateDistance;
}

double Vec2::length() const
{
    return std::sqrt(lengthSquare());
}

double Vec2::lengthSquare() const
{
    return x * x + y * y;
}

double Vec2::distance(Vec2 const& other) const
{
    return std::sqrt(distanceSquared(*this, other));
}

double Vec2::distanceSquared(Vec2 const& a, Vec2 const& b)
{
    double const dx = a.x - b.x;
    double const dy = a.y - b.y;
    return dx * dx + dy * dy;
}

double Vec2::dot(Vec2 const& other) const
{
    return x * other.x + y * other.y;
}

double Vec2::cross(Vec2 const& other) const
{
    return cross(x, y, other.x, other.y);
}

double Vec2::cross(double p, double q, double r, double s)
{
    return p * s - q * r;
}

void Vec2::setLength(double length)
{
    if (isZero()) {
        x = length;
        return;
    }
    mult(length / std::sqrt(x * x + y * y));
}

void Vec2::normalize()
{
    if (isZero()) {
        set(1.0, 0.0);
        return;
    }
    mult(1.0 / std::sqrt(x * x + y * y));
}

void Vec2::normalize(double* xValue, double* yValue)
{
    double const len = std::sqrt(*xValue * *xValue + *yValue * *yValue);
    if (len > kFloatTolerance) {
        double const inverse = 1.0 / len;
        *xValue *= inverse;
        *yValue *= inverse;
    }
}

double Vec2::slope() const
{
    return y / x;
}

Vec2 Vec2::normal() const
{
    return {-y, x};
}

Vec2 Vec2::perpindicularLeft() const
{
    return normal();
}

Vec2 Vec2::perpindicularRight() const
{
    return {y, -x};
}

void Vec2::prepen()
{
    *this = normal();
}

void Vec2::rotate(double degrees)
{
    // An exact zero hands back the exact input: the products with cos 0 and sin 0
    // would turn -0 into 0 and an infinity into NaN.
    if (degrees == 0.0) {
        return;
    }
    double const theta = degrees * kDegreesToRadians;
    double const c = std::cos(theta);
    double const s = std::sin(theta);
    set(c * x - s * y, c * y + s * x);
}

Vec2 Vec2::rotateRound(double degrees, Vec2 const& centre) const
{
    Vec2 rotated = *this;
    rotated.rotateAround(degrees, centre);
    return rotated;
}

void Vec2::rotateAround(double degrees, Vec2 const& centre)
{
    if (degrees == 0.0) {
        return;
    }
    double const theta = degrees * kDegreesToRadians;
    double const c = std::cos(theta);
    double const s = std::sin(theta);
    Vec2 const d = *this - centre;
    set(c * d.x - s * d.y + centre.x, s * d.x + c * d.y + centre.y);
}

double Vec2::getAngle() const
{
    // atan2 would give +-180 for a zero vector with x = -0.
    if (isZero()) {
        return 0.0;
    }
    return std::atan2(y, x) * kRadiansToDegrees;
}

void Vec2::setAngle(double degrees)
{
    if (isZero()) {
        return;
    }
    double const len = length();
    double const theta = degrees * kDegreesToRadians;
    set(len * std::cos(theta), len * std::sin(theta));
}

double Vec2::angleBetween(Vec2 const& other) const
{
    return std::atan2(cross(other), dot(other)) * kRadiansToDegrees;
}

int Vec2::getQuadrant() const
{
    if (y >= 0.0) {
        return x >= 0.0 ? 1 : 2;
    }
    return x >= 0.0 ? 4 : 3;
}

Vec2 Vec2::project(Vec2 const& other) const
{
    if (other.isZero()) {
        return {};
    }
    return other * (dot(other) / other.lengthSquare());
}

Vec2 Vec2::lerp(Vec2 a, Vec2 b, double t)
{
    return a * (1.0 - t) + b * t;
}

void Vec2::getMin(Vec2 const& other)
{
    if (other.x < x) {
        x = other.x;
    }
    if (other.y < y) {
        y = other.y;
    }
}

void Vec2::getMax(Vec2 const& other)
{
    // Own is kept only when strictly greater: an own NaN gives way, another's NaN is taken.
    x = x > other.x ? x : other.x;
    y = y > other.y ? y : other.y;
}

void Vec2::clamp(Vec2 const& low, Vec2 const& high)
{
    x = x < low.x ? low.x : (high.x < x ? high.x : x);
    y = y < low.y ? low.y : (high.y < y ? high.y : y);
}

void Vec2::followSigns(Vec2 const& other)
{
    if ((x > 0.0) != (other.x > 0.0)) {
        x = -x;
    }
    if ((y > 0.0) != (other.y > 0.0)) {
        y = -y;
    }
}

double Vec2::distanceToLine(Vec2 const& p, Vec2 const& q)
{
    return (*this - footOnLine(*this, p, q)).length();
}

double Vec2::lineProjectionLength(Vec2 const& p, Vec2 const& q)
{
    return (p - footOnLine(*this, p, q)).length();
}

Vec2 Vec2::centerToTopLefetPoint(Vec2 const& point, Vec2 const& size)
{
    return {point.x + size.x * 0.5, size.y * 0.5 - point.y};
}

Vec2 Vec2::topLeftToCenterPoint(Vec2 const& point, Vec2 const& size)
{
    return {point.x - size.x * 0.5, size.y * 0.5 - point.y};
}

double Vec2::signedArea(Vec2 const& a, Vec2 const& b, Vec2 const& c)
{
    return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
}

bool Vec2::intersecting(Vec2 const& a, Vec2 const& b, Vec2 const& c, Vec2 const& d)
{
    Vec2 const u = b - a;
    return (u.cross(c - a) > 0.0) != (u.cross(d - a) > 0.0);
}

bool Vec2::oppositeQuadrant(Vec2 const& a, Vec2 const& b)
{
    int const ax = signOf(a.x);
    int const ay = signOf(a.y);
    int const bx = signOf(b.x);
    int const by = signOf(b.y);
    bool const xDiffers = ax != bx;
    bool const yDiffers = ay != by;
    return (xDiffers && yDiffers) || (xDiffers && ay == 0 && by == 0) || (yDiffers && ax == 0 && bx == 0);
}

bool Vec2::anchorOutwardD(Vec2& a, Vec2 const& b, Vec2 const& c)
{
    // dot(a, b - c), expanded in this order so that results match to the last bit.
    double const d = ((b.x * a.x - c.x * a.x) + b.y * a.y) - c.y * a.y;
    return d > 0.0;
}

bool Vec2::anchorOutward(Vec2& a, Vec2 const& b, Vec2 const& c, bool inward)
{
    if (anchorOutwardD(a, b, c) == inward) {
        a = a.negate();
        return true;
    }
    return false;
}

bool Vec2::anchorInward(Vec2& a, Vec2 const& b, Vec2 const& c)
{
    return anchorOutward(a, b, c, true);
}

IntersectResult Vec2::intersect(Vec2 const& a, Vec2 const& b, Vec2 const& c, Vec2 const& d,
                                Vec2& out, double* t1, double* t2)
{
    double const denom = (b.x - a.x) * (d.y - c.y) - (b.y - a.y) * (d.x - c.x);
    double const numA = (a.y - c.y) * (d.x - c.x) - (a.x - c.x) * (d.y - c.y);
    double const numB = (a.y - c.y) * (b.x - a.x) - (a.x - c.x) * (b.y - a.y);

    if (negligible(numA) && negligible(numB) && negligible(denom)) {
        out = (a + b) * 0.5;
        return IntersectResult::Coincident;
    }
    if (negligible(denom)) {
        out.setZero();
        return IntersectResult::Parallel;
    }

    double const ua = numA / denom;
    double const ub = numB / denom;
    if (t1 != nullptr) {
        *t1 = ua;
    }
    if (t2 != nullptr) {
        *t2 = ub;
    }
    out.set((b.x - a.x) * ua + a.x, (b.y - a.y) * ua + a.y);

    bool const offFirst = offSegment(ua);
    bool const offSecond = offSegment(ub);
    if (offFirst && offSecond) {
        return IntersectResult::OutsideBoth;
    }
    if (offFirst) {
        return IntersectResult::OutsideFirst;
    }
    return offSecond ? IntersectResult::OutsideSecond : IntersectResult::Intersecting;
}

} // namespace Halvane::Quorvex
