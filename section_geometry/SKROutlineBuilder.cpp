// Outline loops from corner points with fillets, and their outline text.
#include "section_geometry/SKROutlineBuilder.h"

#include <QStringList>

#include <cmath>

namespace skr {
namespace geometry {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kLineKind = 0;
constexpr int kCounterClockwiseMinorArc = 1;
constexpr int kClockwiseMinorArc = 2;
// Points closer than this (mm) are one point; an edge may be overdrawn by this much.
constexpr double kSamePoint = 1e-9;
// Turns smaller than this (radians) leave the outline straight.
constexpr double kStraightOn = 1e-12;
// Turns closer than this to a half turn fold the outline back on itself.
constexpr double kFoldBack = 1e-9;

QString number(double value) {
    if (std::abs(value) < 1e-9) return QStringLiteral("0");
    return QString::number(value, 'g', 12);
}

QString where(int index, const SKROutlineCorner& corner) {
    return QStringLiteral("corner %1 (%2, %3)").arg(index).arg(number(corner.x), number(corner.y));
}

bool fail(QString* error, const QString& reason) {
    if (error) *error = reason;
    return false;
}

// A vertex that coincides with the one before replaces it: the segment between them has no length.
void append(QVector<SKROutlineVertex>& loop, const SKROutlineVertex& vertex) {
    if (!loop.isEmpty() && std::hypot(vertex.x - loop.last().x, vertex.y - loop.last().y) <= kSamePoint) {
        loop.last().kind = vertex.kind;
        loop.last().value = vertex.value;
        return;
    }
    loop.append(vertex);
}

}  // namespace

bool filletCorners(const QVector<SKROutlineCorner>& corners, QVector<SKROutlineVertex>& loop, QString* error) {
    const int n = corners.size();
    if (n < 3) return fail(error, QStringLiteral("an outline loop needs at least three corners, not %1").arg(n));

    // Per edge i (corner i to corner i + 1): its length and direction.
    QVector<double> length(n), dx(n), dy(n);
    for (int i = 0; i < n; ++i) {
        const SKROutlineCorner& a = corners[i];
        const SKROutlineCorner& b = corners[(i + 1) % n];
        if (!std::isfinite(a.x) || !std::isfinite(a.y))
            return fail(error, QStringLiteral("corner %1 is not a finite point").arg(i));
        length[i] = std::hypot(b.x - a.x, b.y - a.y);
        if (!(length[i] > kSamePoint)) return fail(error, where(i, a) + QStringLiteral(" lies on the next corner"));
        dx[i] = (b.x - a.x) / length[i];
        dy[i] = (b.y - a.y) / length[i];
    }

    // Per corner: how far its fillet cuts back each edge, and which way its arc turns.
    QVector<double> trim(n, 0.0);
    QVector<int> arcKind(n, kLineKind);
    for (int i = 0; i < n; ++i) {
        const double radius = corners[i].radius;
        if (!std::isfinite(radius) || radius < 0)
            return fail(error, where(i, corners[i]) + QStringLiteral(" has a fillet radius that is not a size (%1)")
                                                          .arg(number(radius)));
        if (radius == 0) continue;
        const int in = (i + n - 1) % n;
        const double cross = dx[in] * dy[i] - dy[in] * dx[i];
        const double dot = dx[in] * dx[i] + dy[in] * dy[i];
        const double turn = std::atan2(std::abs(cross), dot);
        if (turn < kStraightOn) continue;
        if (turn > kPi - kFoldBack)
            return fail(error, where(i, corners[i]) + QStringLiteral(" folds the outline back; it cannot be rounded"));
        trim[i] = radius * std::tan(turn / 2);
        arcKind[i] = cross > 0 ? kCounterClockwiseMinorArc : kClockwiseMinorArc;
    }
    for (int i = 0; i < n; ++i) {
        const int next = (i + 1) % n;
        if (trim[i] + trim[next] > length[i] + kSamePoint)
            return fail(error, QStringLiteral("the fillets at %1 (radius %2) and %3 (radius %4) do not fit: they need "
                                              "%5 mm of an edge %6 mm long")
                                   .arg(where(i, corners[i]), number(corners[i].radius), where(next, corners[next]),
                                        number(corners[next].radius), number(trim[i] + trim[next]),
                                        number(length[i])));
    }

    QVector<SKROutlineVertex> out;
    out.reserve(2 * n);
    for (int i = 0; i < n; ++i) {
        const SKROutlineCorner& c = corners[i];
        if (arcKind[i] == kLineKind) {
            append(out, {c.x, c.y, 0.0, kLineKind});
            continue;
        }
        const int in = (i + n - 1) % n;
        append(out, {c.x - trim[i] * dx[in], c.y - trim[i] * dy[in], c.radius, arcKind[i]});
        append(out, {c.x + trim[i] * dx[i], c.y + trim[i] * dy[i], 0.0, kLineKind});
    }
    // The closing segment has no length when the last vertex is the first: drop the last.
    if (out.size() > 1 && std::hypot(out.last().x - out.first().x, out.last().y - out.first().y) <= kSamePoint)
        out.removeLast();
    loop = out;
    return true;
}

SKROutlineLoop outlineCircle(double centreX, double centreY, double radius) {
    return {{centreX, centreY, radius, kOutlineCircleKind}};
}

QString outlineLoopText(const SKROutlineLoop& loop) {
    QStringList records;
    records.reserve(loop.size());
    for (const SKROutlineVertex& v : loop)
        records << number(v.x) + QLatin1Char(',') + number(v.y) + QLatin1Char(',') + number(v.value) +
                       QLatin1Char(',') + QString::number(v.kind);
    return records.join(QLatin1Char(';'));
}

QString outlineCircleText(double centreX, double centreY, double radius) {
    return outlineLoopText(outlineCircle(centreX, centreY, radius));
}

QString outlineText(const SKROutline& outline) {
    QStringList loops;
    loops.reserve(outline.loops.size());
    for (const SKROutlineLoop& loop : outline.loops) loops << outlineLoopText(loop);
    return loops.join(QLatin1String(kOutlineLoopSeparator));
}

}  // namespace geometry
}  // namespace skr
