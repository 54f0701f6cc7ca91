// The live section drawing: the outline of the typed figures, a tapered section as both its ends.
#include "section_dialog/SKRSectionPreview.h"

#include "ndp/NDPPolygon.h"
#include "section_geometry/SKRSectionProperties.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPainter.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include <QPainter>

#include <memory>

SKRSectionPreview::SKRSectionPreview(QWidget* parent) : QWidget(parent) {
    setMinimumSize(120, 120);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

namespace {

std::unique_ptr<ndp::CPolygon> polygonOf(int sectionType, const QMap<QString, double>& values, QString* error) {
    skr::geometry::SKROutline outline;
    return skr::geometry::sectionOutline(sectionType, values, outline, error) ? skr::geometry::outlinePolygon(outline)
                                                                              : nullptr;
}

QString areaText(const ndp::CPolygon& polygon) {
    return QString::number(skr::geometry::SectionProperties(polygon).area, 'f', 1);
}

}  // namespace

void SKRSectionPreview::setSection(int sectionType, const QMap<QString, double>& values) {
    QString error;
    const auto polygon = polygonOf(sectionType, values, &error);
    if (!polygon) return showFailure(error);
    // A tapered member is read by its two ends: both are drawn, side by side at one scale, so
    // that the change of depth shows as typed; the figures stay those of the stored outline.
    QMap<QString, double> first, second;
    if (skr::geometry::taperedSectionEnds(sectionType, values, first, second)) {
        const auto firstEnd = polygonOf(sectionType, first, nullptr);
        const auto secondEnd = polygonOf(sectionType, second, nullptr);
        if (firstEnd && secondEnd) {
            m_path = skr::geometry::sectionPicturePath(sectionType, values);
            m_caption = QStringLiteral("A = %1 ~ %2 mm²").arg(areaText(*firstEnd), areaText(*secondEnd));
            update();
            emit polygonChanged(polygon.get());
            return;
        }
    }
    setPolygon(*polygon);
}

void SKRSectionPreview::clear() { setOutline(QString(), QString()); }

void SKRSectionPreview::setOutline(const QString& outline, const QString& failure) {
    if (const auto polygon = outline.isEmpty() ? nullptr : skr::geometry::ParseSectionPolygon(outline))
        return setPolygon(*polygon);
    showFailure(failure);
}

void SKRSectionPreview::showFailure(const QString& failure) {
    m_path = QPainterPath();
    m_caption = failure;
    update();
    emit polygonChanged(nullptr);
}

void SKRSectionPreview::setPolygon(const ndp::CPolygon& polygon) {
    m_path = skr::geometry::sectionPath(polygon);
    m_caption = QStringLiteral("A = %1 mm²").arg(areaText(polygon));
    update();
    emit polygonChanged(&polygon);
}

void SKRSectionPreview::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    const QRectF caption(4, height() - 20, width() - 8, 18);
    if (!m_path.isEmpty())
        skr::geometry::paintSection(painter, m_path, QRectF(12, 12, width() - 24, height() - 40));
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(caption, Qt::AlignCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(m_caption, Qt::ElideRight, static_cast<int>(caption.width())));
}
