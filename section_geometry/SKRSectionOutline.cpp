// Section outlines: the profile of every section type as corner points with their fillet radii,
// rounded into lines and arcs in one place (filletCorners), plus full circles and ovals.
#include "section_geometry/SKRSectionOutline.h"

#include "section_geometry/SKROutlineBuilder.h"
#include "section_spec/EnSKRSectionType.h"

#include <QStringList>
#include <QPair>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace skr {
namespace geometry {
namespace {

constexpr double kPi = 3.14159265358979323846;
// What the four 90-degree bends of a cold-formed C or Z take off its centre line, per unit of
// the centre-line radius: 4 * (2 - pi / 2).
constexpr double kFourBendsShortening = 4 * (2 - kPi / 2);

using Corners = QVector<SKROutlineCorner>;

struct Circle {
    double x, y, radius;
};

// One outline being drawn: the outer loop first, then the holes. Corner loops may run either
// way; they are turned counter-clockwise (outer) or clockwise (holes) when written.
struct Outline {
    QVector<Corners> loops;
    QVector<QVector<SKROutlineVertex>> curvedLoops;  // drawn directly as lines and arcs (ovals)
    QVector<Circle> circles;                          // the first is outer when there are no loops
};

class Values {
public:
    explicit Values(const QMap<QString, double>& params) : m_params(params) {}
    // A dimension that must be there and positive.
    double operator()(const QString& code) {
        const auto found = m_params.constFind(code);
        if (found == m_params.constEnd() || !std::isfinite(*found) || *found <= 0) {
            if (m_missing.isEmpty()) m_missing = code;
            return 0;
        }
        return *found;
    }
    // A radius that may be left out (fallback then); zero or more when given.
    double optional(const QString& code, double fallback) {
        const auto found = m_params.constFind(code);
        if (found == m_params.constEnd()) return fallback;
        if (!std::isfinite(*found) || *found < 0) {
            if (m_bad.isEmpty()) m_bad = code;
            return 0;
        }
        return *found == 0 ? fallback : *found;
    }
    const QString& missing() const { return m_missing; }
    const QString& bad() const { return m_bad; }

private:
    const QMap<QString, double>& m_params;
    QString m_missing;
    QString m_bad;
};

Corners rectangle(double x0, double y0, double x1, double y1, double radius = 0) {
    return {{x0, y0, radius}, {x1, y0, radius}, {x1, y1, radius}, {x0, y1, radius}};
}

// I and H shapes with parallel flanges: a web of thickness tw between a top flange (width bt,
// thickness tt) and a bottom flange (width bb, thickness tb), centred on the wider flange; root
// radius r where web and flanges meet.
Corners doubleFlanged(double h, double bt, double bb, double tw, double tt, double tb, double r = 0) {
    const double c = std::max(bt, bb) / 2;
    return {{c - bb / 2, 0},     {c + bb / 2, 0},        {c + bb / 2, tb},        {c + tw / 2, tb, r},
            {c + tw / 2, h - tt, r}, {c + bt / 2, h - tt}, {c + bt / 2, h},      {c - bt / 2, h},
            {c - bt / 2, h - tt},  {c - tw / 2, h - tt, r}, {c - tw / 2, tb, r}, {c - bb / 2, tb}};
}

// Hot-rolled I-beam: flanges whose inner faces slope, thinner at the tips (tTip) than at the web
// (tRoot); root radius r at the web, toe radius r1 at the flange tips.
Corners slopedI(double h, double b, double d, double tTip, double tRoot, double r, double r1) {
    const double c = b / 2;
    return {{0, 0},
            {b, 0},
            {b, tTip, r1},
            {c + d / 2, tRoot, r},
            {c + d / 2, h - tRoot, r},
            {b, h - tTip, r1},
            {b, h},
            {0, h},
            {0, h - tTip, r1},
            {c - d / 2, h - tRoot, r},
            {c - d / 2, tRoot, r},
            {0, tTip, r1}};
}

// Hot-rolled channel, web on the left, flanges sloped like the I-beam's.
Corners slopedChannel(double h, double b, double d, double tTip, double tRoot, double r, double r1) {
    return {{0, 0}, {b, 0}, {b, tTip, r1}, {d, tRoot, r}, {d, h - tRoot, r}, {b, h - tTip, r1}, {b, h}, {0, h}};
}

// T: flange of width b and thickness t on top, web of thickness tw below, root radius r.
Corners tee(double h, double b, double tw, double t, double r = 0) {
    const double c = b / 2;
    return {{c - tw / 2, 0}, {c + tw / 2, 0}, {c + tw / 2, h - t, r}, {b, h - t},
            {b, h},          {0, h},          {0, h - t},             {c - tw / 2, h - t, r}};
}

// Angle with the vertical leg legY, the horizontal one legX, both of thickness d: root radius r
// inside the heel, toe radius r1 at the inner edge of both leg ends.
Corners angle(double legY, double legX, double d, double r, double r1) {
    return {{0, 0}, {legX, 0}, {legX, d, r1}, {d, d, r}, {d, legY, r1}, {0, legY}};
}

// Lipped channel opening to the right; bends of inner radius ri and outer radius ro.
Corners lippedChannel(double h, double b, double c, double t, double ri, double ro) {
    return {{0, 0, ro},         {b, 0, ro},         {b, c},         {b - t, c},
            {b - t, t, ri},     {t, t, ri},         {t, h - t, ri}, {b - t, h - t, ri},
            {b - t, h - c},     {b, h - c},         {b, h, ro},     {0, h, ro}};
}

// Lipped Z: the bottom flange runs left of the web, the top flange right of it.
Corners lippedZ(double h, double b, double c, double t, double ri, double ro) {
    return {{0, 0, ro},
            {b, 0, ro},
            {b, h - t, ri},
            {2 * b - 2 * t, h - t, ri},
            {2 * b - 2 * t, h - c},
            {2 * b - t, h - c},
            {2 * b - t, h, ro},
            {b - t, h, ro},
            {b - t, t, ri},
            {t, t, ri},
            {t, c},
            {0, c}};
}

// Two H sections crossed: the first upright, the second turned through a right angle.
Corners cross(double h1, double b1, double tw1, double t1, double t2, double h2, double b2, double tw2, double t3,
              double t4) {
    const Corners around = {{-b1 / 2, -h1 / 2},       {b1 / 2, -h1 / 2},       {b1 / 2, -h1 / 2 + t2},
                            {tw1 / 2, -h1 / 2 + t2},  {tw1 / 2, -tw2 / 2},     {h2 / 2 - t4, -tw2 / 2},
                            {h2 / 2 - t4, -b2 / 2},   {h2 / 2, -b2 / 2},       {h2 / 2, b2 / 2},
                            {h2 / 2 - t4, b2 / 2},    {h2 / 2 - t4, tw2 / 2},  {tw1 / 2, tw2 / 2},
                            {tw1 / 2, h1 / 2 - t1},   {b1 / 2, h1 / 2 - t1},   {b1 / 2, h1 / 2},
                            {-b1 / 2, h1 / 2},        {-b1 / 2, h1 / 2 - t1},  {-tw1 / 2, h1 / 2 - t1},
                            {-tw1 / 2, tw2 / 2},      {-h2 / 2 + t3, tw2 / 2}, {-h2 / 2 + t3, b2 / 2},
                            {-h2 / 2, b2 / 2},        {-h2 / 2, -b2 / 2},      {-h2 / 2 + t3, -b2 / 2},
                            {-h2 / 2 + t3, -tw2 / 2}, {-tw1 / 2, -tw2 / 2},    {-tw1 / 2, -h1 / 2 + t2},
                            {-b1 / 2, -h1 / 2 + t2}};
    const double sx = std::max(b1, h2) / 2, sy = std::max(h1, b2) / 2;
    Corners shifted;
    for (const SKROutlineCorner& p : around) shifted.append({p.x + sx, p.y + sy, 0});
    return shifted;
}

// The four-arc oval through the ends of the semi-axes a (along x, the longer) and b about the
// origin, tangent where its arcs meet: arcs of radius r1 at the ends of the long axis and r2 at
// the ends of the short one. Its area for a given r1 (< b).
struct Oval {
    double r1, r2, phi;  // phi: half the angle the end arcs span
};

Oval ovalOf(double a, double b, double r1) {
    const double r2 = (a * a + b * b - 2 * a * r1) / (2 * (b - r1));
    return {r1, r2, std::atan2(r2 - b, a - r1)};
}

double ovalArea(double a, double b, const Oval& o) {
    return 2 * o.r2 * o.r2 * (kPi / 2 - o.phi) + 2 * o.r1 * o.r1 * o.phi - 2 * (a - o.r1) * (o.r2 - b);
}

// The oval of semi-axes a, b about (cx, cy) whose area is that of the ellipse, pi a b,
// counter-clockwise. The area grows with r1 from the pointed lens (r1 = 0, less than the
// ellipse) to the stadium (r1 = b, more), so r1 is found by halving that interval.
QVector<SKROutlineVertex> equalAreaOval(double cx, double cy, double a, double b) {
    const bool upright = b > a;
    if (upright) std::swap(a, b);
    double lo = 0, hi = b;
    for (int i = 0; i < 200 && hi - lo > 1e-15 * b; ++i) {
        const double mid = 0.5 * (lo + hi);
        (ovalArea(a, b, ovalOf(a, b, mid)) < kPi * a * b ? lo : hi) = mid;
    }
    const Oval o = ovalOf(a, b, 0.5 * (lo + hi));
    // The four points where the arcs meet, on the lines through the centres of adjacent arcs.
    const double jx = (a - o.r1) + o.r1 * std::cos(o.phi);
    const double jy = o.r1 * std::sin(o.phi);
    const double points[4][2] = {{jx, jy}, {-jx, jy}, {-jx, -jy}, {jx, -jy}};
    const double radii[4] = {o.r2, o.r1, o.r2, o.r1};  // the arc that starts at each point
    QVector<SKROutlineVertex> loop;
    for (int i = 0; i < 4; ++i) {
        const double x = upright ? -points[i][1] : points[i][0];
        const double y = upright ? points[i][0] : points[i][1];
        loop.append({cx + x, cy + y, radii[i], 1});
    }
    return loop;
}

QVector<SKROutlineVertex> reversedLoop(const QVector<SKROutlineVertex>& loop) {
    // Each segment now starts at the vertex where it used to end; arcs keep their radius and run
    // the other way (type 1 <-> 2).
    QVector<SKROutlineVertex> out;
    const int n = loop.size();
    for (int i = n - 1; i >= 0; --i) {
        SKROutlineVertex v = loop[(i + 1) % n];
        const SKROutlineVertex& segment = loop[i];
        v.value = segment.value;
        v.kind = segment.kind == 1 ? 2 : segment.kind == 2 ? 1 : segment.kind;
        out.append(v);
    }
    return out;
}

// Signed area of the corner polygon: which way it runs.
double cornerArea(const Corners& corners) {
    double twice = 0;
    for (int i = 0; i < corners.size(); ++i) {
        const SKROutlineCorner& p = corners[i];
        const SKROutlineCorner& q = corners[(i + 1) % corners.size()];
        twice += p.x * q.y - q.x * p.y;
    }
    return twice / 2;
}

void ring(Outline& out, double diameter, double wall) {
    out.circles.append({diameter / 2, diameter / 2, diameter / 2});
    if (wall > 0) out.circles.append({diameter / 2, diameter / 2, diameter / 2 - wall});
}

// A rectangular tube: outer corners of radius outer, inner corners of radius outer - wall.
void hollowRectangle(Outline& out, double width, double height, double wallX, double wallY, double outer = 0) {
    out.loops << rectangle(0, 0, width, height, outer)
              << rectangle(wallX, wallY, width - wallX, height - wallY, std::max(0.0, outer - std::min(wallX, wallY)));
}


bool fail(QString* error, const QString& reason) {
    if (error) *error = reason;
    return false;
}

// Each part of the section must keep a positive size, e.g. a web thinner than its flange.
bool positive(std::initializer_list<double> sizes) {
    return std::all_of(sizes.begin(), sizes.end(), [](double s) { return s > 1e-9; });
}

// The outline's loops: circles, then corner loops, then curved loops; the outer one
// counter-clockwise and the holes clockwise.
bool writeOutline(const Outline& out, SKROutline& outline, QString* error) {
    SKROutline written;
    for (const Circle& circle : out.circles) written.loops << outlineCircle(circle.x, circle.y, circle.radius);
    for (int i = 0; i < out.loops.size(); ++i) {
        const bool outer = i == 0 && out.circles.isEmpty();
        Corners corners = out.loops[i];
        if ((cornerArea(corners) > 0) != outer) std::reverse(corners.begin(), corners.end());
        SKROutlineLoop loop;
        if (!filletCorners(corners, loop, error)) return false;
        written.loops << loop;
    }
    for (int i = 0; i < out.curvedLoops.size(); ++i) {
        const bool outer = i == 0 && out.circles.isEmpty() && out.loops.isEmpty();
        written.loops << (outer ? out.curvedLoops[i] : reversedLoop(out.curvedLoops[i]));
    }
    outline = written;
    return true;
}

}  // namespace

bool sectionOutlineText(int sectionType, const QMap<QString, double>& params, QString& text, QString* error) {
    SKROutline outline;
    if (!sectionOutline(sectionType, params, outline, error)) return false;
    text = outlineText(outline);
    return true;
}

bool sectionOutline(int sectionType, const QMap<QString, double>& params, SKROutline& outline, QString* error) {
    Values v(params);
    Outline out;
    bool sound = true;
    switch (static_cast<EnSKRSectionType>(sectionType)) {
    case stI: {
        const double h = v("h"), b = v("b"), d = v("d"), t = v("t");
        const double r = v.optional("r", 0), r1 = v.optional("r1", 0);
        // t is the thickness halfway along the outstand (b - d) / 2.
        const double change = kIBeamFlangeSlope * (b - d) / 4;
        sound = positive({b - d, t - change, h - 2 * (t + change)});
        out.loops << slopedI(h, b, d, t - change, t + change, r, r1);
        break;
    }
    case stChannel: {
        const double h = v("h"), b = v("b"), d = v("d"), t = v("t");
        const double r = v.optional("r", 0), r1 = v.optional("r1", 0);
        const double change = kChannelFlangeSlope * (b - d) / 2;
        sound = positive({b - d, t - change, h - 2 * (t + change)});
        out.loops << slopedChannel(h, b, d, t - change, t + change, r, r1);
        break;
    }
    case stEqualAngle:
    case stUnequalAngle: {
        const double b = v("b"), d = v("d");
        const double legY = sectionType == stEqualAngle ? b : v("B");
        sound = positive({b - d, legY - d});
        out.loops << angle(legY, b, d, v.optional("r", 0), d / 3);
        break;
    }
    case stHotRolledH:
    case stWeldedH:
    case stWeldedTaperedH:
    case stWeldedHVariant: {
        const bool welded = sectionType != stHotRolledH;
        // Tapered and two-depth H: the deeper end.
        const double h = sectionType == stWeldedTaperedH || sectionType == stWeldedHVariant ? std::max(v("h1"), v("h2")) : v("h");
        const double b = v("b"), tw = v("tw");
        const double tt = welded ? v("t1") : v("t");
        const double tb = welded ? v("t2") : tt;
        const double r = welded ? 0 : v.optional("r", 0);
        sound = positive({b - tw, h - tt - tb});
        out.loops << doubleFlanged(h, b, b, tw, tt, tb, r);
        break;
    }
    case stWeldedHUnequal: {
        const double h = v("h"), b1 = v("b1"), b2 = v("b2"), tw = v("tw"), t1 = v("t1"), t2 = v("t2");
        sound = positive({b1 - tw, b2 - tw, h - t1 - t2});
        out.loops << doubleFlanged(h, b1, b2, tw, t1, t2);
        break;
    }
    case stPipe:
    case stWeldedPipe: {
        const double d = sectionType == stPipe ? v("D") : v("d"), t = v("t");
        sound = positive({d - 2 * t});
        ring(out, d, t);
        break;
    }
    case stRoundBar: ring(out, v("d"), 0); break;
    case stBoltBall: ring(out, v("D"), 0); break;
    case stWeldBall: {
        const double d = v("D"), t = v("t");
        sound = positive({d - 2 * t});
        ring(out, d, t);
        break;
    }
    case stWeldedD: {
        const double d = std::max(v("R1"), v("R2")), t = v("t");
        sound = positive({d - 2 * t});
        ring(out, d, t);
        break;
    }
    case stCSection:
    case stZSection: {
        const double h = v("h"), b = v("b"), c = v("c"), t = v("t");
        const double ri = v.optional("r", 2 * t), ro = ri + t;
        sound = positive({b - 2 * t, c - t, h - 2 * c});
        out.loops << (sectionType == stCSection ? lippedChannel(h, b, c, t, ri, ro) : lippedZ(h, b, c, t, ri, ro));
        break;
    }
    case stHotRolledT:
    case stWeldedT: {
        const double h = v("h"), b = v("b");
        const double tw = sectionType == stHotRolledT ? v("tw") : v("t1");
        const double t = sectionType == stHotRolledT ? v("t") : v("t2");
        sound = positive({b - tw, h - t});
        out.loops << tee(h, b, tw, t, sectionType == stHotRolledT ? v.optional("r", 0) : 0);
        break;
    }
    case stWeldedBox: {
        const double height = v("b1"), width = v("b2"), web = v("t1"), flange = v("t2");
        sound = positive({width - 2 * web, height - 2 * flange});
        hollowRectangle(out, width, height, web, flange);
        break;
    }
    case stWeldedBB: {
        // The larger of the two ends: B1 x B2 or b1 x b2.
        double height = v("B1"), width = v("B2");
        const double otherHeight = v("b1"), otherWidth = v("b2");
        if (otherHeight * otherWidth > height * width) height = otherHeight, width = otherWidth;
        const double web = v("t1"), flange = v("t2");
        sound = positive({width - 2 * web, height - 2 * flange});
        hollowRectangle(out, width, height, web, flange);
        break;
    }
    case stBoxTube: {
        const double h = v("h"), b = v("b"), t = v("t");
        const double outer = v.optional("r", hollowCornerRadius(t) - t) + t;
        sound = positive({b - 2 * t, h - 2 * t});
        hollowRectangle(out, b, h, t, t, outer);
        break;
    }
    case stWeldedCross: {
        const double h1 = v("h1"), b1 = v("b1"), tw1 = v("tw1"), t1 = v("t1"), t2 = v("t2");
        const double h2 = v("h2"), b2 = v("b2"), tw2 = v("tw2"), t3 = v("t3"), t4 = v("t4");
        sound = positive({b1 - tw1, b2 - tw2, h1 / 2 - std::max(t1, t2) - b2 / 2, h2 / 2 - std::max(t3, t4) - b1 / 2,
                          b2 / 2 - tw2 / 2, b1 / 2 - tw1 / 2});
        out.loops << cross(h1, b1, tw1, t1, t2, h2, b2, tw2, t3, t4);
        break;
    }
    case stWeldedTY: {
        // The larger of the two ends: R1 x R2 or r1 x r2 (full axes).
        double width = v("R1"), height = v("R2");
        const double otherWidth = v("r1"), otherHeight = v("r2");
        if (otherWidth * otherHeight > width * height) width = otherWidth, height = otherHeight;
        const double t = v("t");
        sound = positive({width - 2 * t, height - 2 * t});
        if (!sound) break;
        const double cx = width / 2, cy = height / 2;
        if (std::abs(width - height) <= 1e-9 * width) {
            out.circles << Circle{cx, cy, width / 2} << Circle{cx, cy, width / 2 - t};
        } else {
            out.curvedLoops << equalAreaOval(cx, cy, width / 2, height / 2)
                            << equalAreaOval(cx, cy, width / 2 - t, height / 2 - t);
        }
        break;
    }
    default: return fail(error, QStringLiteral("section type %1 has no outline").arg(sectionType));
    }
    if (!v.missing().isEmpty())
        return fail(error, QStringLiteral("section type %1 needs a positive value of %2").arg(sectionType).arg(v.missing()));
    if (!v.bad().isEmpty())
        return fail(error, QStringLiteral("section type %1: the radius %2 must be zero or more").arg(sectionType).arg(v.bad()));
    if (!sound) return fail(error, QStringLiteral("the values do not make a section of type %1").arg(sectionType));

    SKROutline written;
    QString reason;
    if (!writeOutline(out, written, &reason))
        return fail(error, QStringLiteral("section type %1: %2").arg(sectionType).arg(reason));
    outline = written;
    return true;
}

bool taperedSectionEnds(int sectionType, const QMap<QString, double>& params, QMap<QString, double>& first,
                        QMap<QString, double>& second, QStringList* secondCodes) {
    // The parameters that differ between the ends, first end's code then second end's; the
    // outline draws the larger end, so giving both codes one end's value draws that end.
    static const QMap<int, QVector<QPair<QString, QString>>> pairs = {
        {stWeldedTaperedH, {{"h1", "h2"}}},
        {stWeldedD, {{"R1", "R2"}}},
        {stWeldedBB, {{"B1", "b1"}, {"B2", "b2"}}},
        {stWeldedHVariant, {{"h1", "h2"}}},
        {stWeldedTY, {{"R1", "r1"}, {"R2", "r2"}}},
    };
    const auto found = pairs.constFind(sectionType);
    if (found == pairs.constEnd()) return false;
    first = second = params;
    if (secondCodes) secondCodes->clear();
    for (const auto& pair : *found) {
        first[pair.second] = params.value(pair.first);
        second[pair.first] = params.value(pair.second);
        if (secondCodes) *secondCodes << pair.second;
    }
    return true;
}

bool coldFormedBendRadius(double h, double b, double c, double t, double area, double* radius) {
    if (!(t > 0) || !std::isfinite(area)) return false;
    const double sharpCentreLine = (h - t) + 2 * (b - t) + 2 * (c - t / 2);
    const double r = (sharpCentreLine - area / t) / kFourBendsShortening - t / 2;
    if (!(r >= 0) || !std::isfinite(r)) return false;
    *radius = r;
    return true;
}

QMap<QString, double> catalogueOutlineParams(int sectionType, const QMap<QString, double>& dimensions,
                                             double weightPerMetre) {
    QMap<QString, double> params;
    for (auto it = dimensions.constBegin(); it != dimensions.constEnd(); ++it)
        if (it.value() != 0) params.insert(it.key(), it.value());
    if (sectionType == stCSection || sectionType == stZSection) {
        const double t = params.value(QStringLiteral("t"));
        double r = 0;
        if (coldFormedBendRadius(params.value(QStringLiteral("h")), params.value(QStringLiteral("b")),
                                 params.value(QStringLiteral("c")), t, weightPerMetre / kSteelKgPerMetrePerMm2, &r) &&
            r >= 1.4 * t && r <= 2.6 * t)
            params.insert(QStringLiteral("r"), r);
    }
    return params;
}

}  // namespace geometry
}  // namespace skr
