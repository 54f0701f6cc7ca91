// Section outlines drawn with QPainter.
#include "section_geometry/SKRSectionPainter.h"

#include "ndp/NDPGeometry2d.h"
#include "ndp/NDPPolygon.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include <QFontMetricsF>
#include <QLineF>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>
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
    std::vector<QLineF> curves;   // from the start to the end of every curve
    std::vector<bool> arcs;       // whether each curve is an arc
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
        for (int k = 0; k < loop->GetCount(); ++k) {
            const ndp::CCurve2d* curve = loop->GetCurve(k);
            outline.points.push_back(toQt(curve->StartPoint()));
            outline.curves.emplace_back(toQt(curve->StartPoint()), toQt(curve->EndPoint()));
            outline.arcs.push_back(curve->GetType() == ndp::EnCurveType::Arc);
        }
    }
    return true;
}

bool near(const QPointF& a, const QPointF& b, double tolerance) {
    return std::abs(a.x() - b.x()) <= tolerance && std::abs(a.y() - b.y()) <= tolerance;
}

bool stayed(const Outline& base, const QPointF& p, double tolerance) {
    return std::any_of(base.points.begin(), base.points.end(), [&](const QPointF& q) { return near(p, q, tolerance); });
}

// The points of grown that are none of base's: where a parameter acts.
std::vector<QPointF> movedPoints(const Outline& base, const Outline& grown, double tolerance) {
    std::vector<QPointF> moved;
    for (const QPointF& p : grown.points)
        if (!stayed(base, p, tolerance)) moved.push_back(p);
    return moved;
}

// Whether a face of the grown outline lies on the line of a face of base: one that only grew
// longer, as the web does when a flange thickens.
bool onBaseLine(const Outline& base, const QLineF& face, double tolerance) {
    return std::any_of(base.curves.begin(), base.curves.end(), [&](const QLineF& other) {
        if (other.length() <= tolerance || face.length() <= tolerance) return false;
        const QPointF d = other.p2() - other.p1();
        auto off = [&](const QPointF& p) {
            const QPointF v = p - other.p1();
            return std::abs(d.x() * v.y() - d.y() * v.x()) / other.length();
        };
        return off(face.p1()) <= tolerance && off(face.p2()) <= tolerance;
    });
}

double distanceToSegment(const QPointF& p, const QLineF& segment) {
    const QPointF d = segment.p2() - segment.p1();
    const double lengthSquared = d.x() * d.x() + d.y() * d.y();
    const double along = lengthSquared > 0 ? std::clamp(QPointF::dotProduct(p - segment.p1(), d) / lengthSquared, 0.0, 1.0) : 0;
    const QPointF nearest = segment.p1() + along * d;
    return std::hypot(p.x() - nearest.x(), p.y() - nearest.y());
}

// A point to name a parameter at. A plate's thickness moves whole faces off their lines: the
// middle of the face that moved furthest (the lip of a Z moves twice as far as its web when the
// flange widens), of those the longest, preferring the upper right quarter of the section, then
// its right half (a symmetric section moves faces on all sides). Else the mean of the moved
// points, preferring the right half.
QPointF labelPoint(const Outline& base, const Outline& grown, const std::vector<QPointF>& moved, double tolerance) {
    const QPointF centre = base.box.center();
    const double slack = 1e-6 * std::max(base.box.width(), base.box.height());
    auto region = [&](const QPointF& p) {
        if (p.x() < centre.x() - slack) return 2;
        return p.y() > centre.y() + slack ? 0 : 1;
    };
    struct Face {
        QLineF line;
        double shift;
    };
    // Straight faces name a thickness better than the fillets they move along with them.
    std::vector<Face> faces;
    double furthest = 0;
    bool straight = false;
    for (std::size_t i = 0; i < grown.curves.size(); ++i) {
        const QLineF& curve = grown.curves[i];
        if (straight && grown.arcs[i]) continue;
        if (stayed(base, curve.p1(), tolerance) || stayed(base, curve.p2(), tolerance) ||
            onBaseLine(base, curve, tolerance))
            continue;
        double shift = std::numeric_limits<double>::max();
        for (const QLineF& other : base.curves) shift = std::min(shift, distanceToSegment(curve.center(), other));
        if (!straight && !grown.arcs[i]) faces.clear(), furthest = 0, straight = true;
        faces.push_back({curve, shift});
        furthest = std::max(furthest, shift);
    }
    const Face* best = nullptr;
    for (const Face& face : faces) {
        if (face.shift < 0.9 * furthest) continue;
        if (!best) {
            best = &face;
            continue;
        }
        const double longer = face.line.length() - best->line.length();
        if (longer > 0.01 * best->line.length() ||
            (std::abs(longer) <= 0.01 * best->line.length() && region(face.line.center()) < region(best->line.center())))
            best = &face;
    }
    if (best) return best->line.center();
    for (int widest : {1, 2}) {
        QPointF sum;
        int count = 0;
        for (const QPointF& p : moved)
            if (region(p) <= widest) sum += p, ++count;
        if (count > 0) return sum / count;
    }
    return centre;
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
        if (!moved.empty()) found.labels.push_back({code, labelPoint(base, grown, moved, tolerance)});
    }
    return found;
}

// One shape of a picture: the section, or one end of a tapered one, placed at offset.
struct View {
    QMap<QString, double> values;
    QStringList codes;  // the codes this shape names
    Outline outline;
    QPointF offset;
    QRectF box() const { return outline.box.translated(offset); }
};

// The shapes of a type's picture (sectionPicturePath), placed side by side, centred on one axis.
bool buildViews(int sectionType, const QMap<QString, double>& values, const QStringList& codes, std::vector<View>& views,
                QString* error) {
    QMap<QString, double> first, second;
    QStringList secondCodes;
    if (taperedSectionEnds(sectionType, values, first, second, &secondCodes)) {
        QStringList firstCodes, lastCodes;
        for (const QString& code : codes) (secondCodes.contains(code) ? lastCodes : firstCodes) << code;
        views.resize(2);
        views[0].values = first, views[0].codes = firstCodes;
        views[1].values = second, views[1].codes = lastCodes;
    } else {
        views.resize(1);
        views[0].values = values, views[0].codes = codes;
    }
    double height = 0, widest = 0;
    for (View& view : views) {
        if (!buildOutline(sectionType, view.values, view.outline, error)) return false;
        height = std::max(height, view.outline.box.height());
        widest = std::max(widest, view.outline.box.width());
    }
    // The gap leaves the second end room for its dimensions and tags.
    double x = 0;
    for (View& view : views) {
        const QRectF box = view.outline.box;
        view.offset = QPointF(x - box.left(), (height - box.height()) / 2 - box.top());
        x += box.width() + 0.45 * std::max(widest, 0.5 * height);
    }
    return true;
}

QPainterPath viewsPath(const std::vector<View>& views) {
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    for (const View& view : views) path.addPath(sectionPath(*view.outline.polygon).translated(view.offset));
    return path;
}

QRectF viewsBox(const std::vector<View>& views) {
    QRectF box;
    for (const View& view : views) box = box.isNull() ? view.box() : box.united(view.box());
    return box;
}

const QColor kSteelPen(0x1f, 0x3b, 0x5a);
const QColor kSteelFill(0xb8, 0xc7, 0xd9);
const QColor kDimension(0x80, 0x20, 0x20);

// The tag of a code centred at a point.
QRectF tagAt(const QPointF& centre, const QString& code, const QFontMetricsF& metrics) {
    const QSizeF size(metrics.horizontalAdvance(code) + 6, metrics.height());
    return QRectF(centre - QPointF(size.width() / 2, size.height() / 2), size);
}

// A dimension line with end ticks; its tag in the middle.
QRectF drawDimension(QPainter& painter, const QPointF& from, const QPointF& to, const QString& code, bool vertical,
                     QVector<QRectF>& obstacles) {
    painter.drawLine(from, to);
    const QPointF tick = vertical ? QPointF(4, 0) : QPointF(0, 4);
    painter.drawLine(from - tick, from + tick);
    painter.drawLine(to - tick, to + tick);
    obstacles << QRectF(from - tick, to + tick).normalized();
    const QRectF box = tagAt((from + to) / 2, code, QFontMetricsF(painter.font()));
    painter.fillRect(box, Qt::white);
    painter.drawText(box, Qt::AlignCenter, code);
    return box;
}

// The point of a rectangle nearest to p.
QPointF nearestOn(const QRectF& rect, const QPointF& p) {
    return QPointF(std::clamp(p.x(), rect.left(), rect.right()), std::clamp(p.y(), rect.top(), rect.bottom()));
}

// A place for a tag naming anchor: the nearest free spot around it, clear of the steel, of the
// other tags and dimension lines and inside the picture, looking outwards from the section first.
QRectF placeTag(const QPointF& anchor, const QPointF& centre, const QString& code, const QFontMetricsF& metrics,
                const QPainterPath& steel, const QVector<QRectF>& obstacles, const QRectF& picture) {
    const QRectF shape = tagAt(QPointF(), code, metrics);
    QPointF outwards = anchor - centre;
    const double length = std::hypot(outwards.x(), outwards.y());
    const double preferred = length < 1 ? 0 : std::atan2(outwards.y(), outwards.x());
    constexpr int kDirections = 24;
    std::vector<double> angles;
    for (int i = 0; i < kDirections; ++i) angles.push_back(preferred + 2 * 3.14159265358979323846 * i / kDirections);
    std::stable_sort(angles.begin(), angles.end(), [&](double a, double b) {
        return std::abs(std::remainder(a - preferred, 2 * 3.14159265358979323846)) <
               std::abs(std::remainder(b - preferred, 2 * 3.14159265358979323846));
    });
    auto free = [&](const QRectF& tag) {
        if (!picture.contains(tag)) return false;
        if (steel.intersects(tag.adjusted(-2, -2, 2, 2))) return false;
        return std::none_of(obstacles.begin(), obstacles.end(),
                            [&](const QRectF& other) { return other.intersects(tag.adjusted(-1, -1, 1, 1)); });
    };
    for (double distance = 3; distance < picture.width(); distance += 3)
        for (double angle : angles) {
            const QPointF direction(std::cos(angle), std::sin(angle));
            // From the anchor to the tag's nearest edge is about distance.
            const double reach = distance + std::abs(direction.x()) * shape.width() / 2 +
                                 std::abs(direction.y()) * shape.height() / 2;
            const QRectF tag = shape.translated(anchor + direction * reach);
            if (free(tag)) return tag;
        }
    return shape.translated(anchor + QPointF(shape.width(), 0));
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

QPainterPath sectionPicturePath(int sectionType, const QMap<QString, double>& values, QString* error) {
    std::vector<View> views;
    if (!buildViews(sectionType, values, {}, views, error)) return QPainterPath();
    return viewsPath(views);
}

QImage sectionThumbnail(int sectionType, const QMap<QString, double>& values, const QSize& size, QString* error) {
    const QPainterPath path = sectionPicturePath(sectionType, values, error);
    if (path.isEmpty()) return QImage();
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kSteelPen, 1.5));
    painter.setBrush(kSteelFill);
    const double margin = 3;
    painter.drawPath(fitTransform(path.boundingRect(), QRectF(QPointF(margin, margin), QSizeF(size) - QSizeF(2 * margin, 2 * margin))).map(path));
    return image;
}

SKRSectionDrawing drawSection(int sectionType, const QMap<QString, double>& values, const QStringList& codes,
                              const QSize& size, QString* error) {
    SKRSectionDrawing drawing;
    std::vector<View> views;
    if (!buildViews(sectionType, values, codes, views, error)) return drawing;
    drawing.image = QImage(size, QImage::Format_RGB32);
    drawing.image.fill(Qt::white);
    QPainter painter(&drawing.image);
    QFont font = painter.font();
    font.setPixelSize(13);
    painter.setFont(font);
    const QFontMetricsF metrics(painter.font());
    // Room around the shapes for the dimension lines and the tags outside them.
    const double margin = 34;
    const QRectF picture(QPointF(1, 1), QSizeF(size) - QSizeF(2, 2));
    const QTransform transform =
        fitTransform(viewsBox(views), QRectF(QPointF(margin, margin), QSizeF(size) - QSizeF(2 * margin, 2 * margin)));
    drawing.steel = transform.map(viewsPath(views));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kSteelPen, 1.2));
    painter.setBrush(kSteelFill);
    painter.drawPath(drawing.steel);

    painter.setPen(QPen(kDimension, 1));
    painter.setBrush(kDimension);
    QVector<QRectF> obstacles;
    std::vector<std::pair<View*, SectionLabels>> found;
    for (std::size_t i = 0; i < views.size(); ++i) {
        View& view = views[i];
        const SectionLabels labels = labelsOf(view.outline, sectionType, view.values, view.codes);
        const QRectF drawn = transform.mapRect(view.box());
        if (!labels.widthCode.isEmpty()) {
            const QRectF box = drawDimension(painter, QPointF(drawn.left(), drawn.top() - 14),
                                             QPointF(drawn.right(), drawn.top() - 14), labels.widthCode, false, obstacles);
            obstacles << box;
            drawing.labels.push_back({labels.widthCode, box, QPointF(drawn.center().x(), drawn.top())});
        }
        if (!labels.heightCode.isEmpty()) {
            // The first shape's height on its left, a second shape's on its right.
            const double x = i == 0 ? drawn.left() - 14 : drawn.right() + 14;
            const QRectF box = drawDimension(painter, QPointF(x, drawn.top()), QPointF(x, drawn.bottom()),
                                             labels.heightCode, true, obstacles);
            obstacles << box;
            drawing.labels.push_back({labels.heightCode, box, QPointF(i == 0 ? drawn.left() : drawn.right(), drawn.center().y())});
        }
        found.emplace_back(&view, labels);
    }
    for (const auto& [view, labels] : found) {
        const QPointF centre = transform.map(view->box().center());
        for (const SectionLabel& label : labels.labels) {
            const QPointF at = transform.map(label.at + view->offset);
            const QRectF tag = placeTag(at, centre, label.code, metrics, drawing.steel, obstacles, picture);
            obstacles << tag;
            const QPointF end = nearestOn(tag, at);
            if (std::hypot(end.x() - at.x(), end.y() - at.y()) > 4) painter.drawLine(at, end);
            painter.drawEllipse(at, 2, 2);
            painter.fillRect(tag, Qt::white);
            painter.drawText(tag, Qt::AlignCenter, label.code);
            drawing.labels.push_back({label.code, tag, at});
        }
    }
    return drawing;
}

QImage sectionDrawing(int sectionType, const QMap<QString, double>& values, const QStringList& codes,
                      const QSize& size, QString* error) {
    return drawSection(sectionType, values, codes, size, error).image;
}

}  // namespace geometry
}  // namespace skr
