// Planar curves of the geometry kernel: points, boxes, line segments and circular arcs, each with
// the length, bounding box and signed-area share that loops of them need.
//
// Arcs. An arc keeps its exact start and end points, its centre, its radius, its start and end
// angles (radians, measured at the centre from the +x axis) and its sweep, which is kept on its
// own so that very flat arcs keep it exactly: EndAngle = StartAngle + Sweep up to rounding. The
// sweep is positive for a counter-clockwise arc, negative for a clockwise one, at most 2*pi in
// size.
//
// CArc2d(start, end, value, arcType) builds one of the four arcs of radius |value| through two
// points:
//   arcType 1: the minor arc (sweep at most pi), counter-clockwise from start to end
//   arcType 2: the minor arc, clockwise
//   arcType 3: the major arc (sweep at least pi), counter-clockwise
//   arcType 4: the major arc, clockwise
// Walking from start to end, a counter-clockwise arc bulges to the right of the chord and a
// clockwise one to the left; the centre of a minor arc lies on the bulge's opposite side, that of
// a major arc on the bulge's side. A radius below half the chord (zero, negative values are taken
// by size, not-a-number and infinity included) is raised to half the chord, which gives a half
// circle. Two coincident points give a zero-length arc; an arc type outside 1..4 is taken as 1.
//
// CArc2d(centre, radius, startAngle, endAngle) is counter-clockwise from startAngle to endAngle;
// the start angle is kept in [0, 2*pi), an end angle at or below the start goes round once more,
// and a difference of 2*pi or more is a full circle (e.g. 0 to 2*pi), whose end point is its start
// point exactly.
//
// Signed area. SignedArea() of a curve is its share of the area of a closed loop by Green's
// theorem, (1/2) * integral of (x dy - y dx) along the curve; the shares of the curves of a closed
// loop add up to the loop's area, positive when it runs counter-clockwise.
#pragma once

#include "PlatformGlobal.h"

namespace ndp {

struct BXQPLATFORM_EXPORT CPoint2d {
    double x = 0.0;
    double y = 0.0;

    CPoint2d() = default;
    CPoint2d(double px, double py) : x(px), y(py) {}
    bool operator==(const CPoint2d& o) const { return x == o.x && y == o.y; }
    bool operator!=(const CPoint2d& o) const { return !(*this == o); }
    double DistanceTo(const CPoint2d& o) const;
};

// An axis-aligned box; empty until the first point is added.
class BXQPLATFORM_EXPORT CBox2d {
public:
    bool IsEmpty() const { return m_empty; }
    const CPoint2d& Min() const { return m_min; }
    const CPoint2d& Max() const { return m_max; }
    void Add(const CPoint2d& point);
    void Add(const CBox2d& box);

private:
    CPoint2d m_min;
    CPoint2d m_max;
    bool m_empty = true;
};

enum class EnCurveType : int {
    Line = 1,
    Arc = 2,
};

class BXQPLATFORM_EXPORT CCurve2d {
public:
    virtual ~CCurve2d();

    virtual EnCurveType GetType() const = 0;
    virtual CCurve2d* Clone() const = 0;
    virtual CPoint2d StartPoint() const = 0;
    virtual CPoint2d EndPoint() const = 0;
    // The point at t, from 0 (start) to 1 (end), evenly spaced along the curve.
    virtual CPoint2d PointAt(double t) const = 0;
    virtual double Length() const = 0;
    // This curve's share of a closed loop's signed area (see the file comment).
    virtual double SignedArea() const = 0;
    // Runs the curve the other way: start and end swap.
    virtual void Reverse() = 0;
    virtual void ExtendBox(CBox2d& box) const = 0;
    // Same type and the same numbers, exactly.
    virtual bool IsEqual(const CCurve2d& other) const = 0;

    CBox2d BoundingBox() const;

protected:
    CCurve2d() = default;
    CCurve2d(const CCurve2d&) = default;
    CCurve2d& operator=(const CCurve2d&) = default;
};

class BXQPLATFORM_EXPORT CLine2d : public CCurve2d {
public:
    CLine2d(const CPoint2d& start, const CPoint2d& end);

    EnCurveType GetType() const override { return EnCurveType::Line; }
    CCurve2d* Clone() const override;
    CPoint2d StartPoint() const override { return m_start; }
    CPoint2d EndPoint() const override { return m_end; }
    CPoint2d PointAt(double t) const override;
    double Length() const override;
    double SignedArea() const override;
    void Reverse() override;
    void ExtendBox(CBox2d& box) const override;
    bool IsEqual(const CCurve2d& other) const override;

private:
    CPoint2d m_start;
    CPoint2d m_end;
};

class BXQPLATFORM_EXPORT CArc2d : public CCurve2d {
public:
    // One of the four arcs through two points (see the file comment).
    CArc2d(const CPoint2d& start, const CPoint2d& end, double value, int arcType);
    // Counter-clockwise about centre from startAngle to endAngle (radians).
    CArc2d(const CPoint2d& centre, double radius, double startAngle, double endAngle);

    // An arc from its stored numbers, exactly as they stand (reading a stored polygon); null
    // when they do not describe an arc: not finite, a negative radius, a sweep beyond a full
    // circle, or end points that are not on the circle at their angles.
    static CArc2d* FromStored(const CPoint2d& start, const CPoint2d& end, const CPoint2d& centre, double radius,
                              double startAngle, double endAngle, double sweep);

    EnCurveType GetType() const override { return EnCurveType::Arc; }
    CCurve2d* Clone() const override;
    CPoint2d StartPoint() const override { return m_start; }
    CPoint2d EndPoint() const override { return m_end; }
    CPoint2d PointAt(double t) const override;
    double Length() const override;
    double SignedArea() const override;
    void Reverse() override;
    void ExtendBox(CBox2d& box) const override;
    bool IsEqual(const CCurve2d& other) const override;

    const CPoint2d& Centre() const { return m_centre; }
    double Radius() const { return m_radius; }
    double StartAngle() const { return m_startAngle; }
    double EndAngle() const { return m_endAngle; }
    // Positive counter-clockwise, negative clockwise.
    double Sweep() const { return m_sweep; }
    bool IsCounterClockwise() const { return m_sweep > 0.0; }
    bool IsFullCircle() const;

private:
    CArc2d() = default;

    CPoint2d m_start;
    CPoint2d m_end;
    CPoint2d m_centre;
    double m_radius = 0.0;
    double m_startAngle = 0.0;
    double m_endAngle = 0.0;
    double m_sweep = 0.0;
};

}  // namespace ndp
