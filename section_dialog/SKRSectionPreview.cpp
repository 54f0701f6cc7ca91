// The live section drawing.
#include "section_dialog/SKRSectionPreview.h"

#include "ndp/NDPPolygon.h"
#include "section_geometry/SKRSectionProperties.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPainter.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include <QPainter>

SKRSectionPreview::SKRSectionPreview(QWidget* parent) : QWidget(parent) {
    setMinimumSize(120, 120);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void SKRSectionPreview::setSection(int sectionType, const QMap<QString, double>& values) {
    skr::geometry::SKROutline outline;
    QString error;
    const auto polygon = skr::geometry::sectionOutline(sectionType, values, outline, &error)
                             ? skr::geometry::outlinePolygon(outline)
                             : nullptr;
    if (polygon) return setPolygon(*polygon);
    showFailure(error);
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
    m_caption = QStringLiteral("A = %1 mm²").arg(skr::geometry::SectionProperties(polygon).area, 0, 'f', 1);
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
