#pragma once

namespace Halvane::Quorvex {

// How two lines meet in Vec2::intersect.
enum class IntersectResult : int
{
    Parallel = 0,      // parallel and apart
    Intersecting = 1,  // the crossing lies on both segments
    Coincident = 2,    // the lines coincide
    OutsideFirst = 3,  // the crossing lies off the first segment only
    OutsideSecond = 4, // the crossing lies off the second segment only
    OutsideBoth = 5,   // the crossing lies off both segments
};

// A point, a direction or a size (width in x, height in y). Angles are in degrees.
// Which operations change the vector does not follow from their names; see each comment.
class Vec2
{
public:
    double x = 0.0;
    double y = 0.0;

    Vec2() = default;
    Vec2(double xValue, double yValue) : x(xValue), y(yValue) {}

    void set(double xValue, double yValue);
    void set(Vec2& other);
    void setZero();
    // x = array[offset], y = array[offset + 1]; a null array leaves the vector as it is.
    void fromArray(double* array, int offset);

    // In place.
    void add(Vec2 const& other);
    void add(double value);
    void sub(Vec2 const& other);
    void sub(double value);
    void mult(Vec2 const& other);
    void mult(double value);
    void divide(Vec2 const& other);
    void divide(double value);

    void operator+=(Vec2 const& other);
    void operator+=(double value);
    void operator-=(Vec2 const& other);
    void operator-=(double value);
    void operator*=(Vec2 const& other);
    void operator*=(double value);
    void operator/=(Vec2 const& other);
    void operator/=(double value);

    Vec2 operator+(Vec2 const& other) const;
    Vec2 operator+(double value) const;
    Vec2 operator-(Vec2 const& other) const;
    Vec2 operator-(double value) const;
    Vec2 operator*(Vec2 const& other) const;
    Vec2 operator*(double value) const;
    Vec2 operator/(Vec2 const& other) const;
    Vec2 operator/(double value) const;

    // Component-wise fmod.
    Vec2 modulo(Vec2 const& other) const;
    Vec2 operator%(Vec2 const& other) const;
    // Component-wise product, not a scalar: the same as operator*.
    Vec2 dotProduction(Vec2 const& other) const;
    // Flips the sign bits, so 0 becomes -0.
    Vec2 negate() const;

    // Absolute per component at kFloatTolerance, boundary included.
    bool operator==(Vec2 const& other) const;
    bool operator!=(Vec2 const& other);
    bool equal(Vec2 const& other, double tolerance) const;
    bool isZero() const;
    // Radial: squared distance strictly below tolerance squared.
    static bool equalWithTolerance(double x1, double y1, double x2, double y2, double tolerance);
    static bool equalWithTolerance(Vec2 a, Vec2 b, double tolerance);
    // Relative to both lengths, so the zero vector is collinear with every vector.
    bool isCollinear(Vec2 const& other) const;
    // Compares |x*ox - y*oy| (not the dot product) with the bound of isCollinear.
    bool isOrthogonal(Vec2 const& other) const;
    bool negligible() const;
    static bool negligible(double value);
    bool nonNegligible() const;
    static bool isDuplicate(Vec2 const& a, Vec2 const& b);

    double length() const;
    double lengthSquare() const;
    double distance(Vec2 const& other) const;
    static double distanceSquared(Vec2 const& a, Vec2 const& b);
    double dot(Vec2 const& other) const;
    double cross(Vec2 const& other) const;
    // p*s - q*r
    static double cross(double p, double q, double r, double s);
    // The zero vector becomes (length, 0).
    void setLength(double length);
    // The zero vector becomes (1, 0).
    void normalize();
    // Scales *x and *y to unit length only when their length exceeds kFloatTolerance.
    static void normalize(double* xValue, double* yValue);
    double slope() const;

    Vec2 normal() const;
    Vec2 perpindicularLeft() const;
    Vec2 perpindicularRight() const;
    // In place: (x, y) becomes (-y, x).
    void prepen();
    // In place, counter-clockwise with y up.
    void rotate(double degrees);
    // A rotated copy about centre; the vector stays.
    Vec2 rotateRound(double degrees, Vec2 const& centre) const;
    // In place about centre.
    void rotateAround(double degrees, Vec2 const& centre);
    double getAngle() const;
    void setAngle(double degrees);
    // Signed degrees from this vector to the other.
    double angleBetween(Vec2 const& other) const;
    int getQuadrant() const;
    Vec2 project(Vec2 const& other) const;

    // Not clamped.
    static Vec2 lerp(Vec2 a, Vec2 b, double t);
    // In place, per component.
    void getMin(Vec2 const& other);
    void getMax(Vec2 const& other);
    void clamp(Vec2 const& low, Vec2 const& high);
    // Negates each component whose "is positive" differs from the other's.
    void followSigns(Vec2 const& other);

    // Against the unbounded line through p and q; the vector stays unchanged.
    double distanceToLine(Vec2 const& p, Vec2 const& q);
    // Unsigned distance from p to the foot of the vector on the line through p and q.
    double lineProjectionLength(Vec2 const& p, Vec2 const& q);

    // From centre-relative with y up to top-left-relative with y down within an area of size.
    static Vec2 centerToTopLefetPoint(Vec2 const& point, Vec2 const& size);
    static Vec2 topLeftToCenterPoint(Vec2 const& point, Vec2 const& size);
    // Twice the signed area; positive when a, b, c run counter-clockwise with y up.
    static double signedArea(Vec2 const& a, Vec2 const& b, Vec2 const& c);
    // Whether c and d lie on different sides of the unbounded line through a and b.
    static bool intersecting(Vec2 const& a, Vec2 const& b, Vec2 const& c, Vec2 const& d);
    static bool oppositeQuadrant(Vec2 const& a, Vec2 const& b);

    // Whether direction a points from c towards b; a is not changed.
    static bool anchorOutwardD(Vec2& a, Vec2 const& b, Vec2 const& c);
    // Negates a and answers true when its outwardness equals inward.
    static bool anchorOutward(Vec2& a, Vec2 const& b, Vec2 const& c, bool inward = false);
    static bool anchorInward(Vec2& a, Vec2 const& b, Vec2 const& c);

    // Crosses the line through a, b with the line through c, d. The parameters on
    // each segment go through t1 and t2 when those are not null; they are left
    // untouched for parallel and coincident lines.
    static IntersectResult intersect(Vec2 const& a, Vec2 const& b, Vec2 const& c, Vec2 const& d,
                                     Vec2& out, double* t1 = nullptr, double* t2 = nullptr);
};

} // namespace Halvane::Quorvex
