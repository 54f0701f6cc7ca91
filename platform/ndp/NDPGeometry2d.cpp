// Planar curves of the geometry kernel: line segments and circular arcs.
#include "ndp/NDPGeometry2d.h"

#include <algorithm>
#include <cmath>

namespace ndp {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2.0 * kPi;
constexpr double kHalfPi = 0.5 * kPi;

// s - sin(s), without the cancellation of the direct difference for small s.
double sweepMinusSine(double s) {
    if (std::fabs(s) < 0.1) {
        const double s2 = s * s;
        return s * s2 * (1.0 / 6 - s2 * (1.0 / 120 - s2 * (1.0 / 5040 - s2 / 362880)));
    }
    return s - std::sin(s);
}

CPoint2d onCircle(const CPoint2d& centre, double radius, double angle) {
    return {centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)};
}

}  // namespace

double CPoint2d::DistanceTo(const CPoint2d& o) const { return std::hypot(o.x - x, o.y - y); }

void CBox2d::Add(const CPoint2d& point) {
    if (m_empty) {
        m_min = m_max = point;
        m_empty = false;
        return;
    }
    m_min = {std::min(m_min.x, point.x), std::min(m_min.y, point.y)};
    m_max = {std::max(m_max.x, point.x), std::max(m_max.y, point.y)};
}

void CBox2d::Add(const CBox2d& box) {
    if (box.IsEmpty()) return;
    Add(box.Min());
    Add(box.Max());
}

CCurve2d::~CCurve2d() = default;

CBox2d CCurve2d::BoundingBox() const {
    CBox2d box;
    ExtendBox(box);
    return box;
}

CLine2d::CLine2d(const CPoint2d& start, const CPoint2d& end) : m_start(start), m_end(end) {}

CCurve2d* CLine2d::Clone() const { return new CLine2d(*this); }

CPoint2d CLine2d::PointAt(double t) const {
    if (t <= 0.0) return m_start;
    if (t >= 1.0) return m_end;
    return {m_start.x + t * (m_end.x - m_start.x), m_start.y + t * (m_end.y - m_start.y)};
}

double CLine2d::Length() const { return m_start.DistanceTo(m_end); }

double CLine2d::SignedArea() const { return 0.5 * (m_start.x * m_end.y - m_end.x * m_start.y); }

void CLine2d::Reverse() { std::swap(m_start, m_end); }

void CLine2d::ExtendBox(CBox2d& box) const {
    box.Add(m_start);
    box.Add(m_end);
}

bool CLine2d::IsEqual(const CCurve2d& other) const {
    if (other.GetType() != EnCurveType::Line) return false;
    const auto& line = static_cast<const CLine2d&>(other);
    return m_start == line.m_start && m_end == line.m_end;
}

CArc2d::CArc2d(const CPoint2d& start, const CPoint2d& end, double value, int arcType) : m_start(start), m_end(end) {
    const double chord = start.DistanceTo(end);
    if (!(chord > 0.0) || !std::isfinite(chord)) {
        // Coincident (or unusable) points: a zero-length arc sitting on the start point.
        m_end = m_start;
        m_centre = m_start;
        return;
    }
    const double half = 0.5 * chord;
    double radius = std::fabs(value);
    if (!std::isfinite(radius) || !(radius >= half)) radius = half;

    if (arcType < 1 || arcType > 4) arcType = 1;
    const bool counterClockwise = arcType == 1 || arcType == 3;
    const bool major = arcType == 3 || arcType == 4;

    // Distance from the chord's midpoint to the centre; the product form keeps its precision
    // near a half circle and cannot overflow for huge radii.
    const double rise = std::sqrt(radius - half) * std::sqrt(radius + half);
    const double ux = (end.x - start.x) / chord;
    const double uy = (end.y - start.y) / chord;
    // The centre lies left of the chord for a counter-clockwise minor or a clockwise major arc.
    const double side = counterClockwise != major ? 1.0 : -1.0;
    m_centre = {0.5 * (start.x + end.x) - side * rise * uy, 0.5 * (start.y + end.y) + side * rise * ux};
    m_radius = radius;

    const double minorSweep = 2.0 * std::atan2(half, rise);
    const double sweep = major ? kTwoPi - minorSweep : minorSweep;
    m_sweep = counterClockwise ? sweep : -sweep;
    m_startAngle = std::atan2(start.y - m_centre.y, start.x - m_centre.x);
    m_endAngle = m_startAngle + m_sweep;
}

CArc2d::CArc2d(const CPoint2d& centre, double radius, double startAngle, double endAngle) : m_centre(centre) {
    m_radius = std::isfinite(radius) ? std::fabs(radius) : 0.0;
    double sweep = endAngle - startAngle;
    if (!std::isfinite(sweep)) sweep = kTwoPi;
    if (sweep <= 0.0) sweep = std::fmod(sweep, kTwoPi) + kTwoPi;
    if (sweep > kTwoPi - 1e-12) sweep = kTwoPi;

    double start = std::isfinite(startAngle) ? std::fmod(startAngle, kTwoPi) : 0.0;
    if (start < 0.0) start += kTwoPi;
    if (start >= kTwoPi) start = 0.0;
    m_startAngle = start;
    m_endAngle = start + sweep;
    m_sweep = sweep;
    m_start = onCircle(m_centre, m_radius, m_startAngle);
    m_end = sweep == kTwoPi ? m_start : onCircle(m_centre, m_radius, m_endAngle);
}

CArc2d* CArc2d::FromStored(const CPoint2d& start, const CPoint2d& end, const CPoint2d& centre, double radius,
                           double startAngle, double endAngle, double sweep) {
    for (double v : {start.x, start.y, end.x, end.y, centre.x, centre.y, radius, startAngle, endAngle, sweep})
        if (!std::isfinite(v)) return nullptr;
    // Arcs made here keep their angles within [-pi, 4*pi]; anything far outside is not ours.
    if (radius < 0.0 || std::fabs(startAngle) > 5 * kPi || std::fabs(endAngle) > 5 * kPi ||
        std::fabs(sweep) > kTwoPi + 1e-9 || std::fabs(startAngle + sweep - endAngle) > 1e-9)
        return nullptr;
    // The stored end points carry the exact input; the angles and centre were derived from them,
    // so they agree up to rounding relative to the coordinates' size.
    const double tolerance = 1e-9 * (1.0 + radius + std::fabs(centre.x) + std::fabs(centre.y));
    if (onCircle(centre, radius, startAngle).DistanceTo(start) > tolerance ||
        onCircle(centre, radius, endAngle).DistanceTo(end) > tolerance)
        return nullptr;
    auto* arc = new CArc2d;
    arc->m_start = start;
    arc->m_end = end;
    arc->m_centre = centre;
    arc->m_radius = radius;
    arc->m_startAngle = startAngle;
    arc->m_endAngle = endAngle;
    arc->m_sweep = sweep;
    return arc;
}

CCurve2d* CArc2d::Clone() const { return new CArc2d(*this); }

bool CArc2d::IsFullCircle() const { return std::fabs(Sweep()) >= kTwoPi - 1e-9; }

CPoint2d CArc2d::PointAt(double t) const {
    if (t <= 0.0) return m_start;
    if (t >= 1.0) return m_end;
    // Turning the start point about the centre stays accurate for very flat arcs, where the
    // angle itself cannot resolve the step.
    const double angle = t * Sweep();
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double dx = m_start.x - m_centre.x;
    const double dy = m_start.y - m_centre.y;
    return {m_centre.x + dx * c - dy * s, m_centre.y + dx * s + dy * c};
}

double CArc2d::Length() const { return m_radius * std::fabs(Sweep()); }

double CArc2d::SignedArea() const {
    // The chord's share plus the circular segment between chord and arc, signed by the sweep.
    const double chord = 0.5 * (m_start.x * m_end.y - m_end.x * m_start.y);
    return chord + 0.5 * m_radius * (m_radius * sweepMinusSine(Sweep()));
}

void CArc2d::Reverse() {
    std::swap(m_start, m_end);
    std::swap(m_startAngle, m_endAngle);
    m_sweep = -m_sweep;
}

void CArc2d::ExtendBox(CBox2d& box) const {
    box.Add(m_start);
    box.Add(m_end);
    // The circle's extreme points at multiples of pi/2 that the arc passes.
    const double lo = std::min(m_startAngle, m_endAngle);
    const double hi = std::max(m_startAngle, m_endAngle);
    const long long first = static_cast<long long>(std::ceil(lo / kHalfPi));
    const long long last = std::min(static_cast<long long>(std::floor(hi / kHalfPi)), first + 4);
    static const double kCos[] = {1, 0, -1, 0};
    static const double kSin[] = {0, 1, 0, -1};
    for (long long k = first; k <= last; ++k) {
        const int quarter = static_cast<int>(((k % 4) + 4) % 4);
        box.Add({m_centre.x + m_radius * kCos[quarter], m_centre.y + m_radius * kSin[quarter]});
    }
}

bool CArc2d::IsEqual(const CCurve2d& other) const {
    if (other.GetType() != EnCurveType::Arc) return false;
    const auto& arc = static_cast<const CArc2d&>(other);
    return m_start == arc.m_start && m_end == arc.m_end && m_centre == arc.m_centre && m_radius == arc.m_radius &&
           m_startAngle == arc.m_startAngle && m_endAngle == arc.m_endAngle && m_sweep == arc.m_sweep;
}

}  // namespace ndp
