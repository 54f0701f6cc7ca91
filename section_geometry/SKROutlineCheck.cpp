// The outline check on the loops as polylines: arcs are followed by points along them, finely
// enough that a crossing of curves shows as a crossing of their chords.
#include "section_geometry/SKROutlineCheck.h"

#include "ndp/NDPPolygon.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace skr {
namespace geometry {
namespace {

using ndp::CPoint2d;
using Polyline = std::vector<CPoint2d>;

constexpr int kArcPoints = 24;

QString near(const CPoint2d& p) {
    return QStringLiteral("(%1, %2)").arg(p.x, 0, 'g', 10).arg(p.y, 0, 'g', 10);
}

// The loop's corners, arcs followed by points along them, repeated points dropped.
Polyline polyline(const ndp::CLoop& loop) {
    Polyline points;
    const auto add = [&points](const CPoint2d& p) {
        if (points.empty() || points.back() != p) points.push_back(p);
    };
    for (int i = 0; i < loop.GetCount(); ++i) {
        const ndp::CCurve2d* curve = loop.GetCurve(i);
        add(curve->StartPoint());
        if (curve->GetType() != ndp::EnCurveType::Line)
            for (int k = 1; k < kArcPoints; ++k) add(curve->PointAt(static_cast<double>(k) / kArcPoints));
    }
    while (points.size() > 1 && points.front() == points.back()) points.pop_back();
    return points;
}

double cross(const CPoint2d& o, const CPoint2d& a, const CPoint2d& b) {
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

bool onSegment(const CPoint2d& p, const CPoint2d& a, const CPoint2d& b, double tolerance) {
    return std::abs(cross(a, b, p)) <= tolerance * std::max(a.DistanceTo(b), tolerance) &&
           p.x >= std::min(a.x, b.x) - tolerance && p.x <= std::max(a.x, b.x) + tolerance &&
           p.y >= std::min(a.y, b.y) - tolerance && p.y <= std::max(a.y, b.y) + tolerance;
}

// Whether segments ab and cd meet (touching counts), and a point where they do.
bool meet(const CPoint2d& a, const CPoint2d& b, const CPoint2d& c, const CPoint2d& d, double tolerance, CPoint2d* at) {
    const double d1 = cross(c, d, a), d2 = cross(c, d, b), d3 = cross(a, b, c), d4 = cross(a, b, d);
    if (((d1 > 0 && d2 < 0) || (d1 < 0 && d2 > 0)) && ((d3 > 0 && d4 < 0) || (d3 < 0 && d4 > 0))) {
        const double t = d1 / (d1 - d2);
        *at = CPoint2d(a.x + t * (b.x - a.x), a.y + t * (b.y - a.y));
        return true;
    }
    for (const auto& [p, s, e] : {std::make_tuple(a, c, d), std::make_tuple(b, c, d), std::make_tuple(c, a, b),
                                  std::make_tuple(d, a, b)})
        if (onSegment(p, s, e, tolerance)) {
            *at = p;
            return true;
        }
    return false;
}

// Adjacent segments ab and bc meet at b; they overlap when c turns straight back along ab.
bool foldsBack(const CPoint2d& a, const CPoint2d& b, const CPoint2d& c, double tolerance) {
    return onSegment(c, a, b, tolerance) || onSegment(a, b, c, tolerance);
}

bool crossesItself(const Polyline& loop, double tolerance, CPoint2d* at) {
    const size_t n = loop.size();
    for (size_t i = 0; i < n; ++i) {
        const CPoint2d& a = loop[i];
        const CPoint2d& b = loop[(i + 1) % n];
        if (foldsBack(a, b, loop[(i + 2) % n], tolerance)) {
            *at = b;
            return true;
        }
        for (size_t j = i + 2; j < n; ++j) {
            if (i == 0 && j == n - 1) continue;  // the closing segment meets the first at the start
            if (meet(a, b, loop[j], loop[(j + 1) % n], tolerance, at)) return true;
        }
    }
    return false;
}

bool loopsMeet(const Polyline& first, const Polyline& second, double tolerance, CPoint2d* at) {
    for (size_t i = 0; i < first.size(); ++i)
        for (size_t j = 0; j < second.size(); ++j)
            if (meet(first[i], first[(i + 1) % first.size()], second[j], second[(j + 1) % second.size()], tolerance, at))
                return true;
    return false;
}

bool inside(const CPoint2d& p, const Polyline& loop) {
    bool in = false;
    for (size_t i = 0, j = loop.size() - 1; i < loop.size(); j = i++)
        if ((loop[i].y > p.y) != (loop[j].y > p.y) &&
            p.x < (loop[j].x - loop[i].x) * (p.y - loop[i].y) / (loop[j].y - loop[i].y) + loop[i].x)
            in = !in;
    return in;
}

}  // namespace

bool checkSectionOutline(const ndp::CPolygon& polygon, QString* where) {
    const auto refuse = [where](const QString& what) {
        if (where) *where = what;
        return false;
    };
    if (polygon.IsEmpty()) return refuse(QStringLiteral("the outline has no loop"));
    std::vector<Polyline> loops;
    double size = 0.0;
    for (int i = 0; i < polygon.GetLoopCount(); ++i) {
        const ndp::CLoop& loop = *polygon.GetLoop(i);
        loops.push_back(polyline(loop));
        for (const CPoint2d& p : loops.back()) {
            if (!std::isfinite(p.x) || !std::isfinite(p.y) || std::abs(p.x) > kMaxOutlineCoordinate ||
                std::abs(p.y) > kMaxOutlineCoordinate)
                return refuse(QStringLiteral("loop %1 of the outline reaches beyond %2 mm near %3")
                                  .arg(i + 1)
                                  .arg(kMaxOutlineCoordinate, 0, 'f', 0)
                                  .arg(near(p)));
            size = std::max({size, std::abs(p.x), std::abs(p.y)});
        }
        // An arc's figures come from its centre and radius: a radius past the bound (an arc all
        // but straight) would make them overflow although its points stay near.
        for (int c = 0; c < loop.GetCount(); ++c) {
            const auto* arc = dynamic_cast<const ndp::CArc2d*>(loop.GetCurve(c));
            if (!arc) continue;
            const CPoint2d& centre = arc->Centre();
            if (!std::isfinite(arc->Radius()) || arc->Radius() > kMaxOutlineCoordinate || !std::isfinite(centre.x) ||
                !std::isfinite(centre.y) || std::abs(centre.x) > kMaxOutlineCoordinate ||
                std::abs(centre.y) > kMaxOutlineCoordinate)
                return refuse(QStringLiteral("loop %1 of the outline has an arc of radius beyond %2 mm near %3")
                                  .arg(i + 1)
                                  .arg(kMaxOutlineCoordinate, 0, 'f', 0)
                                  .arg(near(arc->StartPoint())));
        }
    }
    const double tolerance = 1e-9 * std::max(size, 1.0);
    CPoint2d at;
    for (size_t i = 0; i < loops.size(); ++i) {
        const ndp::CLoop& loop = *polygon.GetLoop(static_cast<int>(i));
        const bool closed = loops[i].size() >= 3 && loop.IsClosed();
        if (closed && crossesItself(loops[i], tolerance, &at))
            return refuse(QStringLiteral("loop %1 of the outline crosses itself near %2").arg(i + 1).arg(near(at)));
        if (!closed || loop.ClockSign() == 0)
            return refuse(QStringLiteral("loop %1 of the outline does not close round an area near %2")
                              .arg(i + 1)
                              .arg(near(loop.GetCount() ? loop.GetCurve(0)->StartPoint() : CPoint2d())));
    }
    for (size_t i = 1; i < loops.size(); ++i) {
        if (loopsMeet(loops[0], loops[i], tolerance, &at))
            return refuse(QStringLiteral("hole (loop %1) of the outline crosses the outer loop near %2").arg(i + 1).arg(near(at)));
        if (!inside(loops[i].front(), loops[0]))
            return refuse(QStringLiteral("hole (loop %1) of the outline lies outside the outer loop near %2")
                              .arg(i + 1)
                              .arg(near(loops[i].front())));
        for (size_t j = 1; j < i; ++j) {
            if (loopsMeet(loops[j], loops[i], tolerance, &at))
                return refuse(QStringLiteral("holes (loops %1 and %2) of the outline cross near %3").arg(j + 1).arg(i + 1).arg(near(at)));
            for (const auto& [inner, outer] : {std::make_pair(i, j), std::make_pair(j, i)})
                if (inside(loops[inner].front(), loops[outer]))
                    return refuse(QStringLiteral("hole (loop %1) of the outline lies inside hole (loop %2) near %3")
                                      .arg(inner + 1)
                                      .arg(outer + 1)
                                      .arg(near(loops[inner].front())));
        }
    }
    return true;
}

}  // namespace geometry
}  // namespace skr
