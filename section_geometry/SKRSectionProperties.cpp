// Section properties of polygons of lines and arcs, by Green's theorem with exact arc segments.
#include "section_geometry/SKRSectionProperties.h"

#include "ndp/NDPPolygon.h"

#include <cmath>

namespace skr {
namespace geometry {

using namespace ndp;

namespace {

// Below this half-angle the segment's moments come from their power series; above it the closed
// forms lose at most about eps / alpha^6 of their size, some 1e-14.
constexpr double kSeriesHalfAngle = 0.5;

// Power series of the circular segment's moments for a unit radius, in the half-angle alpha,
// each a leading power of alpha times a series in alpha^2 (coefficients of alpha^(lead + 2k)).
constexpr double kArea[] = {0.66666666666666663,     -0.13333333333333333,    0.012698412698412698,
                            -0.00070546737213403885, 2.5653358986692322e-05,  -6.5777843555621328e-07,
                            1.2529113058213587e-08,  -1.8425166262078804e-10, 2.1549902060910882e-12,
                            -2.0523716248486557e-14, 1.6224281619356961e-16,  -1.0816187746237974e-18};
constexpr double kFirstU[] = {0.13333333333333333,     -0.034920634920634921,   0.0044973544973544973,
                              -0.00036956870290203624, 2.133411855634078e-05,   -9.1439277947214458e-07,
                              3.0255958321629034e-08,  -7.9621048175786515e-10, 1.7061655999029194e-11,
                              -3.0346819589512514e-13, 4.5520229497735098e-15,  -5.8359268604472552e-17};
constexpr double kSecondUU[] = {0.038095238095238099,   -0.012698412698412698,   0.0020779220779220779,
                                -0.00022101355434688767, 1.7027064646112266e-05,  -1.004908567933778e-06,
                                4.7058521130411093e-08,  -1.7931981360627673e-09, 5.670629790189548e-11,
                                -1.5122003926137848e-12, 3.4466309195867245e-14,  -6.7914019041372835e-16};
constexpr double kSecondVV[] = {0.13333333333333333,     -0.063492063492063489,   0.014814814814814815,
                                -0.0021805355138688472,  0.00022430244652466876,  -1.7102239324461548e-05,
                                1.0061983295721235e-06,  -4.7075761052059827e-08, 1.7933828495090037e-09,
                                -5.6707920330057419e-11, 1.5122122904203058e-12,  -3.4466383152706538e-14};

template <size_t N>
double series(const double (&coefficients)[N], double alpha, int lead) {
    const double a2 = alpha * alpha;
    double sum = 0.0;
    for (size_t k = N; k-- > 0;) sum = sum * a2 + coefficients[k];
    return sum * std::pow(alpha, lead);
}

// The circular segment of unit radius and half-angle alpha (0 to pi) between its chord and its
// arc, about the chord's midpoint, u pointing from the chord to the arc's midpoint and v along
// the chord: area, integral of u, of u^2 and of v^2 (those of v and u v vanish).
struct SegmentMoments {
    double area, u, uu, vv;
};

SegmentMoments unitSegment(double alpha) {
    if (alpha < kSeriesHalfAngle)
        return {series(kArea, alpha, 3), series(kFirstU, alpha, 5), series(kSecondUU, alpha, 7),
                series(kSecondVV, alpha, 5)};
    const double s = std::sin(alpha);
    const double c = std::cos(alpha);
    const double area = alpha - s * c;  // sector less the triangle at the centre
    // About the centre, then moved to the chord, which lies c from it.
    const double u = 2.0 / 3.0 * s * s * s - c * area;
    const double uu = (alpha + s * c) / 4 - s * c * c * c / 2 - 4.0 / 3.0 * c * s * s * s + c * c * area;
    const double vv = area / 4 - s * s * s * c / 6;
    return {area, u, uu, vv};
}

// The triangle (origin, p, q), signed: the share of a straight edge from p to q.
SKRAreaMoments edgeMoments(const CPoint2d& p, const CPoint2d& q) {
    const double cross = p.x * q.y - q.x * p.y;
    SKRAreaMoments m;
    m.a = cross / 2;
    m.sx = cross * (p.x + q.x) / 6;
    m.sy = cross * (p.y + q.y) / 6;
    m.sxx = cross * (p.x * p.x + p.x * q.x + q.x * q.x) / 12;
    m.syy = cross * (p.y * p.y + p.y * q.y + q.y * q.y) / 12;
    m.sxy = cross * (p.x * q.y + 2 * p.x * p.y + 2 * q.x * q.y + q.x * p.y) / 24;
    return m;
}

// The circular segment of an arc, placed in the plane (coordinates from the origin), signed
// positive for a counter-clockwise arc: what the arc adds to the loop beyond its chord.
SKRAreaMoments segmentMoments(const CArc2d& arc, const CPoint2d& start, const CPoint2d& end) {
    const double r = arc.Radius();
    const double sweep = arc.Sweep();
    const SegmentMoments unit = unitSegment(0.5 * std::fabs(sweep));
    const double r2 = r * r;
    const double area = r2 * unit.area;
    const double qu = r2 * r * unit.u;
    const double quu = r2 * r2 * unit.uu;
    const double qvv = r2 * r2 * unit.vv;

    const double mx = 0.5 * (start.x + end.x);
    const double my = 0.5 * (start.y + end.y);
    const double middle = arc.StartAngle() + 0.5 * sweep;
    const double ux = std::cos(middle);
    const double uy = std::sin(middle);

    SKRAreaMoments m;
    m.a = area;
    m.sx = mx * area + ux * qu;
    m.sy = my * area + uy * qu;
    m.sxx = mx * mx * area + 2 * mx * ux * qu + ux * ux * quu + uy * uy * qvv;
    m.syy = my * my * area + 2 * my * uy * qu + uy * uy * quu + ux * ux * qvv;
    m.sxy = mx * my * area + (mx * uy + my * ux) * qu + ux * uy * (quu - qvv);
    return sweep < 0.0 ? -m : m;
}

CPoint2d relative(const CPoint2d& p, const CPoint2d& origin) { return {p.x - origin.x, p.y - origin.y}; }

}  // namespace

SKRAreaMoments& SKRAreaMoments::operator+=(const SKRAreaMoments& o) {
    a += o.a;
    sx += o.sx;
    sy += o.sy;
    sxx += o.sxx;
    syy += o.syy;
    sxy += o.sxy;
    return *this;
}

SKRAreaMoments& SKRAreaMoments::operator-=(const SKRAreaMoments& o) { return *this += -o; }

SKRAreaMoments SKRAreaMoments::operator-() const { return {-a, -sx, -sy, -sxx, -syy, -sxy}; }

SKRAreaMoments LoopAreaMoments(const CCoedgeList& loop, const CPoint2d& origin) {
    SKRAreaMoments total;
    for (int i = 0; i < loop.GetCount(); ++i) {
        const CCurve2d* curve = loop.GetCurve(i);
        const CPoint2d start = relative(curve->StartPoint(), origin);
        const CPoint2d end = relative(curve->EndPoint(), origin);
        total += edgeMoments(start, end);
        if (curve->GetType() == EnCurveType::Arc)
            total += segmentMoments(static_cast<const CArc2d&>(*curve), start, end);
    }
    return total;
}

SKRSectionProperties SectionProperties(const CPolygon& polygon) {
    SKRSectionProperties p;
    p.box = polygon.BoundingBox();
    if (p.box.IsEmpty()) return p;
    const CPoint2d origin{0.5 * (p.box.Min().x + p.box.Max().x), 0.5 * (p.box.Min().y + p.box.Max().y)};
    p.centroid = origin;

    SKRAreaMoments m;
    for (int i = 0; i < polygon.GetLoopCount(); ++i) {
        const CLoop* loop = polygon.GetLoop(i);
        const double length = loop->Length();
        p.perimeter += length;
        if (i == 0) p.outerPerimeter = length;
        SKRAreaMoments ofLoop = LoopAreaMoments(*loop, origin);
        if (ofLoop.a < 0.0) ofLoop = -ofLoop;
        if (i == 0)
            m += ofLoop;
        else
            m -= ofLoop;
    }
    if (!(m.a > 0.0)) return p;

    p.area = m.a;
    const double xc = m.sx / m.a;
    const double yc = m.sy / m.a;
    p.centroid = {origin.x + xc, origin.y + yc};
    p.ix = m.syy - m.a * yc * yc;
    p.iy = m.sxx - m.a * xc * xc;
    p.ixy = m.sxy - m.a * xc * yc;
    return p;
}

}  // namespace geometry
}  // namespace skr
