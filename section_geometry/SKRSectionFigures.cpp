// Steel-table figures of an outline: closed forms over lines and arc sectors for the exact ones,
// the warping solver on refined meshes for the rest, and the cache keyed by outline text.
#include "section_geometry/SKRSectionFigures.h"

#include "section_geometry/SKROutlineCheck.h"
#include "section_geometry/SKRSectionMesh.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPolygonParser.h"
#include "section_geometry/SKRSectionProperties.h"
#include "section_geometry/SKRWarpingSolver.h"

#include "ndp/NDPPolygon.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <mutex>

namespace skr {
namespace geometry {

using namespace ndp;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2 * kPi;

// The angle from an arc's start, in its own sense of turning, at which it reaches angle theta:
// in [0, 2 pi).
double angleAlong(const CArc2d& arc, double theta) {
    double delta = arc.Sweep() > 0.0 ? theta - arc.StartAngle() : arc.StartAngle() - theta;
    delta = std::fmod(delta, kTwoPi);
    return delta < 0.0 ? delta + kTwoPi : delta;
}

CPoint2d pointAtAngle(const CArc2d& arc, double theta) {
    return {arc.Centre().x + arc.Radius() * std::cos(theta), arc.Centre().y + arc.Radius() * std::sin(theta)};
}

// The farthest reach of the outline from origin along the unit direction (dx, dy): the largest
// projection of a boundary point, arcs' extreme points included.
double reach(const CPolygon& polygon, const CPoint2d& origin, double dx, double dy) {
    double best = -std::numeric_limits<double>::infinity();
    auto take = [&](const CPoint2d& p) { best = std::max(best, (p.x - origin.x) * dx + (p.y - origin.y) * dy); };
    const double direction = std::atan2(dy, dx);
    for (int i = 0; i < polygon.GetLoopCount(); ++i) {
        const CLoop* loop = polygon.GetLoop(i);
        for (int k = 0; k < loop->GetCount(); ++k) {
            const CCurve2d* curve = loop->GetCurve(k);
            take(curve->StartPoint());
            take(curve->EndPoint());
            if (curve->GetType() != EnCurveType::Arc) continue;
            const auto& arc = static_cast<const CArc2d&>(*curve);
            if (angleAlong(arc, direction) <= std::fabs(arc.Sweep())) take(pointAtAngle(arc, direction));
        }
    }
    return best;
}

// A piece of an arc between two of its angles, in the arc's own sense.
CCurve2d* subArc(const CArc2d& arc, double from, double to) {
    if (arc.Sweep() > 0.0) {
        const double start = std::fmod(from, kTwoPi) + (from < 0.0 ? kTwoPi : 0.0);
        return new CArc2d(arc.Centre(), arc.Radius(), start, start + (to - from));
    }
    const double start = std::fmod(to, kTwoPi) + (to < 0.0 ? kTwoPi : 0.0);
    auto* piece = new CArc2d(arc.Centre(), arc.Radius(), start, start + (from - to));
    piece->Reverse();
    return piece;
}

// The part of a closed loop on the side (x dx + y dy) <= cut, as a chain closed along the cut
// line: the pieces of the curves on that side, in order, joined by straight runs of the cut line
// where the loop leaves that side and comes back. Whatever the loop's shape, the chain encloses
// that part of its region with the loop's turning sense, which is all its area moments need.
CCoedgeList belowCut(const CCoedgeList& loop, double dx, double dy, double cut) {
    std::vector<std::unique_ptr<CCurve2d>> kept;
    auto level = [&](const CPoint2d& p) { return p.x * dx + p.y * dy - cut; };
    auto keep = [&](CCurve2d* piece) {
        if (level(piece->PointAt(0.5)) <= 0.0)
            kept.emplace_back(piece);
        else
            delete piece;
    };
    for (int k = 0; k < loop.GetCount(); ++k) {
        const CCurve2d* curve = loop.GetCurve(k);
        const CPoint2d s = curve->StartPoint();
        const CPoint2d e = curve->EndPoint();
        if (curve->GetType() != EnCurveType::Arc) {
            const double u0 = level(s);
            const double u1 = level(e);
            if ((u0 < 0.0 && u1 > 0.0) || (u0 > 0.0 && u1 < 0.0)) {
                const double t = u0 / (u0 - u1);
                const CPoint2d m{s.x + t * (e.x - s.x), s.y + t * (e.y - s.y)};
                keep(new CLine2d(s, m));
                keep(new CLine2d(m, e));
            } else {
                keep(curve->Clone());
            }
            continue;
        }
        const auto& arc = static_cast<const CArc2d&>(*curve);
        const double sweep = std::fabs(arc.Sweep());
        std::vector<double> along{0.0};
        const double k2 = (cut - (arc.Centre().x * dx + arc.Centre().y * dy)) / arc.Radius();
        if (std::fabs(k2) < 1.0) {
            const double direction = std::atan2(dy, dx);
            const double half = std::acos(k2);
            for (double theta : {direction + half, direction - half}) {
                const double a = angleAlong(arc, theta);
                if (a > 1e-12 * sweep && a < sweep * (1 - 1e-12)) along.push_back(a);
            }
        }
        std::sort(along.begin(), along.end());
        along.push_back(sweep);
        if (along.size() == 2) {
            keep(curve->Clone());
            continue;
        }
        const double sense = arc.Sweep() > 0.0 ? 1.0 : -1.0;
        for (size_t i = 0; i + 1 < along.size(); ++i)
            keep(subArc(arc, arc.StartAngle() + sense * along[i], arc.StartAngle() + sense * along[i + 1]));
    }
    CCoedgeList chain;
    if (kept.empty()) return chain;
    const CPoint2d first = kept.front()->StartPoint();
    for (size_t i = 0; i < kept.size(); ++i) {
        const CPoint2d end = kept[i]->EndPoint();
        const CPoint2d next = i + 1 < kept.size() ? kept[i + 1]->StartPoint() : first;
        chain.AddCurve(kept[i].release());
        if (end != next) chain.AddCurve(new CLine2d(end, next));
    }
    return chain;
}

// The area moments of the section's part on the side (x dx + y dy) <= cut, about origin.
SKRAreaMoments momentsBelow(const CPolygon& polygon, const std::vector<double>& senses, const CPoint2d& origin,
                            double dx, double dy, double cut) {
    SKRAreaMoments total;
    for (int i = 0; i < polygon.GetLoopCount(); ++i) {
        const SKRAreaMoments part = LoopAreaMoments(belowCut(*polygon.GetLoop(i), dx, dy, cut), origin);
        total += senses[i] > 0.0 ? part : -part;
    }
    return total;
}

// The plastic modulus about the line (x dx + y dy) = cut that halves the area, found by
// bisection on the exact area of the part below it; *position receives that cut.
double plasticModulus(const CPolygon& polygon, const std::vector<double>& senses, const CPoint2d& origin,
                      double area, double dx, double dy, double* position) {
    double lo = -reach(polygon, origin, -dx, -dy);
    double hi = reach(polygon, origin, dx, dy);
    auto below = [&](double c) {
        return momentsBelow(polygon, senses, origin, dx, dy, c + origin.x * dx + origin.y * dy);
    };
    const double span = hi - lo;
    for (int i = 0; i < 200 && hi - lo > 1e-14 * span; ++i) {
        const double mid = 0.5 * (lo + hi);
        (below(mid).a < 0.5 * area ? lo : hi) = mid;
    }
    const double c = 0.5 * (lo + hi);
    const SKRAreaMoments m = below(c);
    const double firstBelow = m.sx * dx + m.sy * dy;  // about origin, which is the centroid
    // Above: the whole section's first moment about the centroid is zero.
    const double firstAbove = -firstBelow;
    const double areaAbove = area - m.a;
    *position = c;
    return (firstAbove - c * areaAbove) + (c * m.a - firstBelow);
}

}  // namespace

SKRExactFigures ExactSectionFigures(const CPolygon& polygon) {
    SKRExactFigures f;
    const SKRSectionProperties p = SectionProperties(polygon);
    f.area = p.area;
    f.perimeter = p.perimeter;
    f.outerPerimeter = p.outerPerimeter;
    f.massPerMetre = kSteelKgPerMetrePerMm2 * p.area;
    f.xc = p.centroid.x;
    f.yc = p.centroid.y;
    f.box = p.box;
    f.ix = p.ix;
    f.iy = p.iy;
    // A product of inertia that is rounding noise next to ix and iy is what it stands for, zero.
    f.ixy = std::fabs(p.ixy) <= 1e-12 * std::sqrt(p.ix * p.iy) ? 0.0 : p.ixy;
    if (!(p.area > 0.0)) return f;

    const double mean = 0.5 * (f.ix + f.iy);
    const double half = 0.5 * (f.ix - f.iy);
    const double radius = std::hypot(half, f.ixy);
    f.i1 = mean + radius;
    f.i2 = mean - radius;
    // In (-90, 90]: a section stiffer about y than about x has its axis 1 at +90 degrees.
    double angle = radius > 1e-12 * mean ? 0.5 * std::atan2(-f.ixy, half) : 0.0;
    if (angle <= -0.5 * kPi * (1 - 1e-12)) angle += kPi;
    angle += 0.0;  // no -0
    f.alpha = angle * 180.0 / kPi;
    f.rx = std::sqrt(f.ix / f.area);
    f.ry = std::sqrt(f.iy / f.area);
    f.r1 = std::sqrt(f.i1 / f.area);
    f.r2 = std::sqrt(std::max(0.0, f.i2) / f.area);

    const CPoint2d centroid{f.xc, f.yc};
    f.wxTop = f.ix / reach(polygon, centroid, 0.0, 1.0);
    f.wxBottom = f.ix / reach(polygon, centroid, 0.0, -1.0);
    f.wyRight = f.iy / reach(polygon, centroid, 1.0, 0.0);
    f.wyLeft = f.iy / reach(polygon, centroid, -1.0, 0.0);
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    // Axis 1 runs along (c, s): its fibres lie across it, along (-s, c); those of axis 2 along it.
    f.w1 = f.i1 / std::max(reach(polygon, centroid, -s, c), reach(polygon, centroid, s, -c));
    f.w2 = f.i2 / std::max(reach(polygon, centroid, c, s), reach(polygon, centroid, -c, -s));

    std::vector<double> senses;
    for (int i = 0; i < polygon.GetLoopCount(); ++i) {
        const double sense = polygon.GetLoop(i)->SignedArea() < 0.0 ? -1.0 : 1.0;
        senses.push_back(i == 0 ? sense : -sense);
    }
    double cut = 0.0;
    f.zx = plasticModulus(polygon, senses, centroid, f.area, 0.0, 1.0, &cut);
    f.plasticY = f.yc + cut;
    f.zy = plasticModulus(polygon, senses, centroid, f.area, 1.0, 0.0, &cut);
    f.plasticX = f.xc + cut;
    f.shapeFactorX = f.zx / f.wx();
    f.shapeFactorY = f.zy / f.wy();
    return f;
}

bool WarpingSectionFigures(const CPolygon& polygon, SKRWarpingFigures& out, QString* error) {
    const SKRSectionProperties p = SectionProperties(polygon);
    if (!(p.area > 0.0) || !(p.perimeter > 0.0)) {
        if (error) *error = QStringLiteral("the outline encloses no area");
        return false;
    }
    // The first mesh: two elements across a wall of the section's mean thickness (2A / perimeter),
    // and at least some eight along the side of a compact one.
    double size = std::min(p.area / p.perimeter, std::sqrt(p.area) / 8.0);
    // Very slender outlines (a plate of 1000 to 1) would need millions of elements of that size:
    // the meshes stay within kMaxWarpingElements, and figures that did not converge say so.
    size = std::max(size, std::sqrt(p.area / (0.43 * kMaxWarpingElements)));
    const double polar = p.ix + p.iy;
    const double width = std::max(p.box.Max().x - p.box.Min().x, p.box.Max().y - p.box.Min().y);
    SKRWarpingFigures previous;
    SKRWarpingFigures result;
    bool havePrevious = false;
    for (int level = 0; level < 6; ++level, size *= 0.6) {
        SKRSectionMesh mesh;
        if (!MeshSection(polygon, size, mesh, error)) return false;
        SKRWarpingFigures current;
        double meshArea = 0.0;
        if (!SolveWarping(mesh, kSteelPoissonRatio, current, error, &meshArea)) return false;
        // The mesh must cover the outline: a triangle kept outside it or lost inside shows here.
        if (std::fabs(meshArea - p.area) > 1e-3 * p.area) {
            if (error)
                *error = QStringLiteral("the mesh of %1 mm covers %2 mm2 of the section's %3 mm2")
                             .arg(size, 0, 'g', 3)
                             .arg(meshArea, 0, 'g', 6)
                             .arg(p.area, 0, 'g', 6);
            return false;
        }
        current.meshSize = size;
        current.elements = static_cast<int>(mesh.elements.size());
        current.nodes = static_cast<int>(mesh.nodes.size());
        if (havePrevious) {
            auto close = [](double a, double b, double floor) {
                return std::fabs(a - b) <= kWarpingTolerance * std::max(std::fabs(a), std::fabs(b)) + floor;
            };
            // Floors keep figures that are zero by symmetry (iw of a circle, the shear centre of
            // an H) from chasing rounding noise.
            const bool agree = close(current.j, previous.j, 0.0) &&
                               close(current.iw, previous.iw, 1e-7 * polar * p.area) &&
                               close(current.xs, previous.xs, 1e-4 * width) &&
                               close(current.ys, previous.ys, 1e-4 * width) &&
                               close(current.asx, previous.asx, 0.0) && close(current.asy, previous.asy, 0.0);
            if (agree) {
                current.converged = true;
                result = current;
                break;
            }
        }
        previous = current;
        havePrevious = true;
        if (current.elements / 0.36 > kMaxWarpingElements) break;
    }
    if (!result.converged) result = previous;
    // The mesh is not symmetric where the section is: offsets far below what it resolves are
    // those of a symmetric section, zero.
    for (double* offset : {&result.xs, &result.ys, &result.betaX, &result.betaY})
        if (std::fabs(*offset) < 1e-5 * width) *offset = 0.0;
    out = result;
    return true;
}

namespace {

struct FiguresCache {
    std::mutex mutex;
    QHash<QString, SKRSectionFigures> entries;
};

FiguresCache& cache() {
    static FiguresCache instance;
    return instance;
}

// Enough for a catalogue family and a session's custom sections; the oldest are not tracked,
// the whole cache is simply emptied when it is full.
constexpr int kCacheLimit = 1024;

}  // namespace

namespace {

bool cachedFigures(const QString& key, SKRSectionFigures& out) {
    std::lock_guard<std::mutex> lock(cache().mutex);
    const auto found = cache().entries.constFind(key);
    if (found == cache().entries.constEnd()) return false;
    out = found.value();
    return true;
}

bool computeAndKeep(const CPolygon& polygon, const QString& key, SKRSectionFigures& out, QString* error) {
    if (!checkSectionOutline(polygon, error)) return false;
    SKRSectionFigures figures;
    figures.exact = ExactSectionFigures(polygon);
    if (!WarpingSectionFigures(polygon, figures.warping, error)) return false;
    std::lock_guard<std::mutex> lock(cache().mutex);
    if (cache().entries.size() >= kCacheLimit) cache().entries.clear();
    cache().entries.insert(key, figures);
    out = figures;
    return true;
}

}  // namespace

bool SectionFigures(const QString& outlineText, SKRSectionFigures& out, QString* error) {
    if (cachedFigures(outlineText, out)) return true;
    const std::unique_ptr<CPolygon> polygon =
        outlineText.trimmed().isEmpty() ? nullptr : ParseSectionPolygon(outlineText);
    if (!polygon || polygon->IsEmpty()) {
        if (error) *error = QStringLiteral("the outline text has no loop");
        return false;
    }
    return computeAndKeep(*polygon, outlineText, out, error);
}

bool SectionFigures(const CPolygon& polygon, const QString& key, SKRSectionFigures& out, QString* error) {
    if (cachedFigures(key, out)) return true;
    if (polygon.IsEmpty()) {
        if (error) *error = QStringLiteral("the outline has no loop");
        return false;
    }
    return computeAndKeep(polygon, key, out, error);
}

bool KnownSectionFigures(const QString& key, SKRSectionFigures& out) { return cachedFigures(key, out); }

void ClearSectionFiguresCache() {
    std::lock_guard<std::mutex> lock(cache().mutex);
    cache().entries.clear();
}

}  // namespace geometry
}  // namespace skr
