// Section properties of a polygon of lines and arcs, in closed form: area, perimeters, centroid,
// second moments of area and bounding box.
//
// Each loop is integrated by Green's theorem as the polygon of its chords (every line, and the
// chord of every arc) plus, for each arc, the circular segment between chord and arc, added when
// the arc bulges out of the loop and taken away when it bulges in. The segment's moments are
// evaluated about the chord's midpoint from closed forms, and from their power series when the
// arc is flat, so that an arc of huge radius over a short chord loses no digits. Everything is
// measured from a reference point near the polygon, which keeps far-off coordinates accurate.
#pragma once

#include "ndp/NDPGeometry2d.h"

namespace ndp {
class CCoedgeList;
class CPolygon;
}  // namespace ndp

namespace skr {
namespace geometry {

// Area integrals of a region about a point: A = integral of dA, Sx = of x dA, Sy = of y dA,
// Sxx = of x^2 dA, Syy = of y^2 dA, Sxy = of x y dA (x, y measured from that point).
struct SKRAreaMoments {
    double a = 0.0;
    double sx = 0.0;
    double sy = 0.0;
    double sxx = 0.0;
    double syy = 0.0;
    double sxy = 0.0;

    SKRAreaMoments& operator+=(const SKRAreaMoments& o);
    SKRAreaMoments& operator-=(const SKRAreaMoments& o);
    SKRAreaMoments operator-() const;
};

// The signed area moments of the region a closed loop encloses, about origin: positive when the
// loop runs counter-clockwise. The loop is taken as closed (its last curve back to its first).
SKRAreaMoments LoopAreaMoments(const ndp::CCoedgeList& loop, const ndp::CPoint2d& origin);

struct SKRSectionProperties {
    double area = 0.0;            // outer loop less the holes, whatever their turning senses
    double perimeter = 0.0;       // every loop
    double outerPerimeter = 0.0;  // the outer loop only
    ndp::CPoint2d centroid;
    // Second moments about axes through the centroid parallel to x and y: ix = integral of
    // (y - yc)^2 dA, iy = integral of (x - xc)^2 dA, ixy = integral of (x - xc)(y - yc) dA.
    double ix = 0.0;
    double iy = 0.0;
    double ixy = 0.0;
    ndp::CBox2d box;
};

// The properties of a polygon (outer loop first, then its holes). A polygon of no area keeps its
// perimeters and box, with zero area and moments and the centroid at the box's centre (at the
// origin when it is empty).
SKRSectionProperties SectionProperties(const ndp::CPolygon& polygon);

}  // namespace geometry
}  // namespace skr
