// Section outlines drawn with QPainter.
#include "section_geometry/SKRSectionPainter.h"

#include "ndp/NDPGeometry2d.h"
#include "ndp/NDPPolygon.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

namespace skr {
namespace geometry {

namespace {

constexpr double kDegrees = 180.0 / 3.14159265358979323846;

QPointF toQt(const ndp::CPoint2d& p) { return QPointF(p.x, p.y); }

// Qt measures arc angles clockwise when y points up, so the outline's angles change sign.
void addArc(QPainterPath& path, const ndp::CArc2d& arc) {
    const double r = arc.Radius();
    const QRectF square(arc.Centre().x - r, arc.Centre().y - r, 2 * r, 2 * r);
    path.arcTo(square, -arc.StartAngle() * kDegrees, -arc.Sweep() * kDegrees);
}

// Where one parameter is written on a drawing: its code at the model point (mm, y up) it moves.
struct SectionLabel {
    QString code;
    QPointF at;
};
struct SectionLabels {
    QString widthCode;   // the parameter that is the overall width, empty when none is
    QString heightCode;  // the parameter that is the overall height, empty when none is
    QVector<SectionLabel> labels;  // the other parameters
};

struct Outline {
    std::unique_ptr<ndp::CPolygon> polygon;
    QRectF box;
    std::vector<QPointF> points;  // the start point of every curve
};

bool buildOutline(int sectionType, const QMap<QString, double>& values, Outline& outline, QString* error) {
    SKROutline drawn;
    if (!sectionOutline(sectionType, values, drawn, error)) return false;
    outline.polygon = outlinePolygon(drawn);
    if (!outline.polygon) {
        if (error) *error = QStringLiteral("the outline has no loop");
        return false;
    }
    const ndp::CBox2d box = outline.polygon->BoundingBox();
    outline.box = QRectF(toQt(box.Min()), toQt(box.Max()));
    for (int i = 0; i < outline.polygon->GetLoopCount(); ++i) {
        const ndp::CLoop* loop = outline.polygon->GetLoop(i);
        for (int k = 0; k < loop->GetCount(); ++k) outline.points.push_back(toQt(loop->GetCurve(k)->StartPoint()));
    }
    return true;
}

bool near(const QPointF& a, const QPointF& b, double tolerance) {
    return std::abs(a.x() - b.x()) <= tolerance && std::abs(a.y() - b.y()) <= tolerance;
}

// The points of grown that are none of base's: where a parameter acts.
std::vector<QPointF> movedPoints(const Outline& base, const Outline& grown, double tolerance) {
    std::vector<QPointF> moved;
    for (const QPointF& p : grown.points) {
        const bool stayed =
            std::any_of(base.points.begin(), base.points.end(), [&](const QPointF& q) { return near(p, q, tolerance); });
        if (!stayed) moved.push_back(p);
    }
    return moved;
}

// A point to write a code at: the mean of the moved points in the upper right quarter of the
// section when there are any there (a symmetric section moves points on all sides), else of all.
QPointF labelPoint(const std::vector<QPointF>& moved, const QPointF& centre) {
    QPointF sum;
    int count = 0;
    for (const QPointF& p : moved)
        if (p.x() >= centre.x() - 1e-9 && p.y() >= centre.y() - 1e-9) sum += p, ++count;
    if (count == 0)
        for (const QPointF& p : moved) sum += p, ++count;
    return sum / count;
}

void drawDimension(QPainter& painter, const QPointF& from, const QPointF& to, const QString& code, bool vertical) {
    painter.drawLine(from, to);
    const QPointF tick = vertical ? QPointF(4, 0) : QPointF(0, 4);
    painter.drawLine(from - tick, from + tick);
    painter.drawLine(to - tick, to + tick);
    const QFontMetricsF metrics(painter.font());
    const QPointF middle = (from + to) / 2;
    const QSizeF size(metrics.horizontalAdvance(code) + 4, metrics.height());
    const QRectF box(middle - QPointF(size.width() / 2, size.height() / 2), size);
    painter.fillRect(box, Qt::white);
    painter.drawText(box, Qt::AlignCenter, code);
}

// The labels of the outline base, made of values.
SectionLabels labelsOf(const Outline& base, int sectionType, const QMap<QString, double>& values,
                       const QStringList& codes) {
    const double size = std::max(base.box.width(), base.box.height());
    SectionLabels found;
    for (const QString& code : codes) {
        const double value = values.value(code);
        if (value <= 0) continue;
        const double step = std::max(0.1 * value, 0.02 * size);
        Outline grown;
        double delta = step;
        QMap<QString, double> changed = values;
        changed[code] = value + step;
        if (!buildOutline(sectionType, changed, grown, nullptr)) {
            delta = -std::min(step, 0.5 * value);
            changed[code] = value + delta;
            if (!buildOutline(sectionType, changed, grown, nullptr)) continue;
        }
        const double tolerance = 1e-6 * size;
        const bool spansWidth = std::abs(grown.box.width() - base.box.width() - delta) <= 0.02 * std::abs(delta);
        const bool spansHeight = std::abs(grown.box.height() - base.box.height() - delta) <= 0.02 * std::abs(delta);
        if (spansWidth && found.widthCode.isEmpty()) found.widthCode = code;
        if (spansHeight && found.heightCode.isEmpty()) found.heightCode = code;
        if (found.widthCode == code || found.heightCode == code) continue;
        const std::vector<QPointF> moved = movedPoints(base, grown, tolerance);
        if (!moved.empty()) found.labels.push_back({code, labelPoint(moved, base.box.center())});
    }
    return found;
}

}  // namespace

QPainterPath sectionPath(const ndp::CPolygon& polygon) {
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    for (int i = 0; i < polygon.GetLoopCount(); ++i) {
        const ndp::CLoop* loop = polygon.GetLoop(i);
        for (int k = 0; k < loop->GetCount(); ++k) {
            const ndp::CCurve2d* curve = loop->GetCurve(k);
            if (k == 0) path.moveTo(toQt(curve->StartPoint()));
            if (curve->GetType() == ndp::EnCurveType::Arc)
                addArc(path, *static_cast<const ndp::CArc2d*>(curve));
            else
                path.lineTo(toQt(curve->EndPoint()));
        }
        path.closeSubpath();
    }
    return path;
}

QTransform fitTransform(const QRectF& box, const QRectF& target) {
    const double width = std::max(box.width(), 1e-9);
    const double height = std::max(box.height(), 1e-9);
    const double scale = std::min(target.width() / width, target.height() / height);
    QTransform transform;
    transform.translate(target.center().x(), target.center().y());
    transform.scale(scale, -scale);
    transform.translate(-box.center().x(), -box.center().y());
    return transform;
}

void paintSection(QPainter& painter, const QPainterPath& path, const QRectF& target) {
    const QTransform transform = fitTransform(path.boundingRect(), target);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x1f, 0x3b, 0x5a), 1.2));
    painter.setBrush(QColor(0xb8, 0xc7, 0xd9));
    painter.drawPath(transform.map(path));
    painter.restore();
}

QImage sectionDrawing(int sectionType, const QMap<QString, double>& values, const QStringList& codes,
                      const QSize& size, QString* error) {
    Outline outline;
    if (!buildOutline(sectionType, values, outline, error)) return QImage();
    const SectionLabels labels = labelsOf(outline, sectionType, values, codes);
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font = painter.font();
    font.setPixelSize(13);
    painter.setFont(font);
    const double margin = 30;
    const QRectF target(margin, margin, size.width() - 2 * margin + 10, size.height() - 2 * margin + 10);
    const QTransform transform = fitTransform(outline.box, target);
    paintSection(painter, sectionPath(*outline.polygon), target);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x80, 0x20, 0x20), 1));
    const QRectF drawn = transform.mapRect(outline.box);
    if (!labels.widthCode.isEmpty())
        drawDimension(painter, QPointF(drawn.left(), drawn.top() - 14), QPointF(drawn.right(), drawn.top() - 14),
                      labels.widthCode, false);
    if (!labels.heightCode.isEmpty())
        drawDimension(painter, QPointF(drawn.left() - 14, drawn.top()), QPointF(drawn.left() - 14, drawn.bottom()),
                      labels.heightCode, true);
    // Codes go on small white tags at their points, moved down when they would cover one another.
    const QFontMetricsF metrics(painter.font());
    QVector<QRectF> placed;
    for (const SectionLabel& label : labels.labels) {
        const QPointF at = transform.map(label.at);
        QRectF tag(at + QPointF(3, -metrics.height() / 2), QSizeF(metrics.horizontalAdvance(label.code) + 4, metrics.height()));
        tag.moveRight(std::min(tag.right(), size.width() - 1.0));
        for (int tries = 0; tries < 8 && std::any_of(placed.begin(), placed.end(),
                                                       [&](const QRectF& other) { return other.intersects(tag); });
             ++tries)
            tag.translate(0, metrics.height());
        placed << tag;
        painter.setBrush(QColor(0x80, 0x20, 0x20));
        painter.drawEllipse(at, 2, 2);
        painter.fillRect(tag, QColor(255, 255, 255, 220));
        painter.drawText(tag, Qt::AlignCenter, label.code);
    }
    return image;
}

}  // namespace geometry
}  // namespace skr
