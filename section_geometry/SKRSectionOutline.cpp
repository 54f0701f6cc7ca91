// Section outlines: the profile of every section type drawn with straight segments (fillets and
// toe radii are left out) and full circles, written as outline text.
#include "section_geometry/SKRSectionOutline.h"

#include <QPointF>
#include <QStringList>
#include <QVector>

#include <algorithm>
#include <cmath>

namespace skr {
namespace geometry {
namespace {

constexpr int kCircleKind = 50;
constexpr int kEllipseSegments = 72;

using Loop = QVector<QPointF>;

struct Circle {
    QPointF centre;
    double radius;
};

// One outline being drawn: polygon loops and circles, each either the outer boundary or a hole.
struct Outline {
    QVector<Loop> loops;
    QVector<Circle> circles;
};

class Values {
public:
    explicit Values(const QMap<QString, double>& params) : m_params(params) {}
    double operator()(const QString& code) {
        const auto found = m_params.constFind(code);
        if (found == m_params.constEnd() || !std::isfinite(*found) || *found <= 0) {
            if (m_missing.isEmpty()) m_missing = code;
            return 0;
        }
        return *found;
    }
    const QString& missing() const { return m_missing; }

private:
    const QMap<QString, double>& m_params;
    QString m_missing;
};

Loop rectangle(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

// I and H shapes: a web of thickness tw between a top flange (width bt, thickness tt) and a bottom
// flange (width bb, thickness tb), centred on the wider flange.
Loop doubleFlanged(double h, double bt, double bb, double tw, double tt, double tb) {
    const double c = std::max(bt, bb) / 2;
    return {{c - bb / 2, 0},      {c + bb / 2, 0},      {c + bb / 2, tb},     {c + tw / 2, tb},
            {c + tw / 2, h - tt}, {c + bt / 2, h - tt}, {c + bt / 2, h},      {c - bt / 2, h},
            {c - bt / 2, h - tt}, {c - tw / 2, h - tt}, {c - tw / 2, tb},     {c - bb / 2, tb}};
}

// T: flange of width b and thickness t on top, web of thickness tw below.
Loop tee(double h, double b, double tw, double t) {
    const double c = b / 2;
    return {{c - tw / 2, 0}, {c + tw / 2, 0}, {c + tw / 2, h - t}, {b, h - t},
            {b, h},          {0, h},          {0, h - t},          {c - tw / 2, h - t}};
}

Loop channel(double h, double b, double d, double t) {
    return {{0, 0}, {b, 0}, {b, t}, {d, t}, {d, h - t}, {b, h - t}, {b, h}, {0, h}};
}

// Angle with the vertical leg of length legY, the horizontal one legX, both of thickness d.
Loop angle(double legY, double legX, double d) { return {{0, 0}, {legX, 0}, {legX, d}, {d, d}, {d, legY}, {0, legY}}; }

// Lipped channel opening to the right.
Loop lippedChannel(double h, double b, double c, double t) {
    return {{0, 0},         {b, 0},     {b, c},     {b - t, c}, {b - t, t}, {t, t},
            {t, h - t},     {b - t, h - t}, {b - t, h - c}, {b, h - c}, {b, h}, {0, h}};
}

// Lipped Z: the bottom flange runs left of the web, the top flange right of it.
Loop lippedZ(double h, double b, double c, double t) {
    return {{0, 0},     {b, 0},             {b, h - t},         {2 * b - 2 * t, h - t}, {2 * b - 2 * t, h - c},
            {2 * b - t, h - c}, {2 * b - t, h}, {b - t, h},         {b - t, t},             {t, t},
            {t, c},     {0, c}};
}

// Two H sections crossed: the first upright, the second turned through a right angle.
Loop cross(double h1, double b1, double tw1, double t1, double t2, double h2, double b2, double tw2, double t3,
           double t4) {
    const Loop around = {{-b1 / 2, -h1 / 2},      {b1 / 2, -h1 / 2},       {b1 / 2, -h1 / 2 + t2},
                         {tw1 / 2, -h1 / 2 + t2}, {tw1 / 2, -tw2 / 2},     {h2 / 2 - t4, -tw2 / 2},
                         {h2 / 2 - t4, -b2 / 2},  {h2 / 2, -b2 / 2},       {h2 / 2, b2 / 2},
                         {h2 / 2 - t4, b2 / 2},   {h2 / 2 - t4, tw2 / 2},  {tw1 / 2, tw2 / 2},
                         {tw1 / 2, h1 / 2 - t1},  {b1 / 2, h1 / 2 - t1},   {b1 / 2, h1 / 2},
                         {-b1 / 2, h1 / 2},       {-b1 / 2, h1 / 2 - t1},  {-tw1 / 2, h1 / 2 - t1},
                         {-tw1 / 2, tw2 / 2},     {-h2 / 2 + t3, tw2 / 2}, {-h2 / 2 + t3, b2 / 2},
                         {-h2 / 2, b2 / 2},       {-h2 / 2, -b2 / 2},      {-h2 / 2 + t3, -b2 / 2},
                         {-h2 / 2 + t3, -tw2 / 2}, {-tw1 / 2, -tw2 / 2},   {-tw1 / 2, -h1 / 2 + t2},
                         {-b1 / 2, -h1 / 2 + t2}};
    const QPointF shift(std::max(b1, h2) / 2, std::max(h1, b2) / 2);
    Loop shifted;
    for (const QPointF& p : around) shifted << p + shift;
    return shifted;
}

Loop ellipse(QPointF centre, double a, double b) {
    Loop loop;
    for (int i = 0; i < kEllipseSegments; ++i) {
        const double angle = 2 * M_PI * i / kEllipseSegments;
        loop << centre + QPointF(a * std::cos(angle), b * std::sin(angle));
    }
    return loop;
}

Loop reversed(Loop loop) {
    std::reverse(loop.begin(), loop.end());
    return loop;
}

void hollowRectangle(Outline& out, double width, double height, double wallX, double wallY) {
    out.loops << rectangle(0, 0, width, height) << reversed(rectangle(wallX, wallY, width - wallX, height - wallY));
}

void ring(Outline& out, double diameter, double wall) {
    const QPointF centre(diameter / 2, diameter / 2);
    out.circles << Circle{centre, diameter / 2};
    if (wall > 0) out.circles << Circle{centre, diameter / 2 - wall};
}

QString number(double value) {
    if (std::abs(value) < 1e-9) return QStringLiteral("0");
    return QString::number(value, 'g', 12);
}

QString loopText(const Loop& loop) {
    QStringList records;
    for (const QPointF& p : loop) records << number(p.x()) + QLatin1Char(',') + number(p.y()) + QStringLiteral(",0,0");
    return records.join(QLatin1Char(';'));
}

QString circleText(const Circle& circle) {
    return number(circle.centre.x()) + QLatin1Char(',') + number(circle.centre.y()) + QLatin1Char(',') +
           number(circle.radius) + QLatin1Char(',') + QString::number(kCircleKind);
}

bool fail(QString* error, const QString& reason) {
    if (error) *error = reason;
    return false;
}

// Each part of the section must keep a positive size, e.g. a web thinner than its flange.
bool positive(std::initializer_list<double> sizes) {
    return std::all_of(sizes.begin(), sizes.end(), [](double s) { return s > 1e-9; });
}

}  // namespace

bool sectionOutlineText(int sectionType, const QMap<QString, double>& params, QString& text, QString* error) {
    Values v(params);
    Outline out;
    bool sound = true;
    switch (sectionType) {
    case 1:
    case 7:
    case 11:
    case 17:
    case 20: {
        const bool welded = sectionType >= 11;
        const double h = sectionType >= 17 ? v("h1") : v("h");
        const double b = v("b");
        const double tw = sectionType == 1 ? v("d") : v("tw");
        const double tt = welded ? v("t1") : v("t");
        const double tb = welded ? v("t2") : tt;
        sound = positive({b - tw, h - tt - tb});
        out.loops << doubleFlanged(h, b, b, tw, tt, tb);
        break;
    }
    case 12: {
        const double h = v("h"), b1 = v("b1"), b2 = v("b2"), tw = v("tw"), t1 = v("t1"), t2 = v("t2");
        sound = positive({b1 - tw, b2 - tw, h - t1 - t2});
        out.loops << doubleFlanged(h, b1, b2, tw, t1, t2);
        break;
    }
    case 2: {
        const double h = v("h"), b = v("b"), d = v("d"), t = v("t");
        sound = positive({b - d, h - 2 * t});
        out.loops << channel(h, b, d, t);
        break;
    }
    case 3:
    case 4: {
        const double b = v("b"), d = v("d");
        const double legY = sectionType == 3 ? b : v("B");
        sound = positive({b - d, legY - d});
        out.loops << angle(legY, b, d);
        break;
    }
    case 5:
    case 14: {
        const double d = sectionType == 5 ? v("D") : v("d"), t = v("t");
        sound = positive({d - 2 * t});
        ring(out, d, t);
        break;
    }
    case 6: ring(out, v("d"), 0); break;
    case 1012: ring(out, v("D"), 0); break;
    case 1013: {
        const double d = v("D"), t = v("t");
        sound = positive({d - 2 * t});
        ring(out, d, t);
        break;
    }
    case 18: {
        const double d = v("R1"), t = v("t");
        sound = positive({d - 2 * t});
        ring(out, d, t);
        break;
    }
    case 8:
    case 9: {
        const double h = v("h"), b = v("b"), c = v("c"), t = v("t");
        sound = positive({b - 2 * t, c - t, h - 2 * c});
        out.loops << (sectionType == 8 ? lippedChannel(h, b, c, t) : lippedZ(h, b, c, t));
        break;
    }
    case 10:
    case 16: {
        const double h = v("h"), b = v("b");
        const double tw = sectionType == 10 ? v("tw") : v("t1");
        const double t = sectionType == 10 ? v("t") : v("t2");
        sound = positive({b - tw, h - t});
        out.loops << tee(h, b, tw, t);
        break;
    }
    case 13: {
        const double height = v("b1"), width = v("b2"), web = v("t1"), flange = v("t2");
        sound = positive({width - 2 * web, height - 2 * flange});
        hollowRectangle(out, width, height, web, flange);
        break;
    }
    case 19: {
        const double height = v("B1"), width = v("B2"), web = v("t1"), flange = v("t2");
        sound = positive({width - 2 * web, height - 2 * flange});
        hollowRectangle(out, width, height, web, flange);
        break;
    }
    case 1011: {
        const double h = v("h"), b = v("b"), t = v("t");
        sound = positive({b - 2 * t, h - 2 * t});
        hollowRectangle(out, b, h, t, t);
        break;
    }
    case 15: {
        const double h1 = v("h1"), b1 = v("b1"), tw1 = v("tw1"), t1 = v("t1"), t2 = v("t2");
        const double h2 = v("h2"), b2 = v("b2"), tw2 = v("tw2"), t3 = v("t3"), t4 = v("t4");
        sound = positive({b1 - tw1, b2 - tw2, h1 / 2 - std::max(t1, t2) - b2 / 2, h2 / 2 - std::max(t3, t4) - b1 / 2,
                          b2 / 2 - tw2 / 2, b1 / 2 - tw1 / 2});
        out.loops << cross(h1, b1, tw1, t1, t2, h2, b2, tw2, t3, t4);
        break;
    }
    case 21: {
        const double width = v("R1"), height = v("R2"), t = v("t");
        sound = positive({width - 2 * t, height - 2 * t});
        const QPointF centre(width / 2, height / 2);
        out.loops << ellipse(centre, width / 2, height / 2) << reversed(ellipse(centre, width / 2 - t, height / 2 - t));
        break;
    }
    default: return fail(error, QStringLiteral("section type %1 has no outline").arg(sectionType));
    }
    if (!v.missing().isEmpty())
        return fail(error, QStringLiteral("section type %1 needs a positive value of %2").arg(sectionType).arg(v.missing()));
    if (!sound) return fail(error, QStringLiteral("the values do not make a section of type %1").arg(sectionType));

    QStringList loops;
    for (const Circle& circle : out.circles) loops << circleText(circle);
    for (const Loop& loop : out.loops) loops << loopText(loop);
    text = loops.join(QStringLiteral("|||"));
    return true;
}

}  // namespace geometry
}  // namespace skr
