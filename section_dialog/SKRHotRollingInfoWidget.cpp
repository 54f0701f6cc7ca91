// The hot-rolled section's figures and drawing.
#include "section_dialog/SKRHotRollingInfoWidget.h"

#include "section_dialog/SKRSectionFiguresPanel.h"
#include "section_dialog/SKRSectionPreview.h"
#include "section_geometry/SKRSectionOutline.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>

namespace {
QString text(const char* source) { return QCoreApplication::translate("SKRSectionPolyDlg", source); }
}  // namespace

SKRHotRollingInfoWidget::SKRHotRollingInfoWidget(QWidget* parent)
    : QWidget(parent),
      m_pFigures(new QLabel(this)),
      m_pPreview(new SKRSectionPreview(this)),
      m_pSectionFigures(new SKRSectionFiguresPanel(this)) {
    m_pFigures->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_pFigures->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pFigures->setMinimumWidth(150);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_pFigures);
    layout->addWidget(m_pPreview, 1);
    layout->addWidget(m_pSectionFigures);
    connect(m_pPreview, &SKRSectionPreview::polygonChanged, m_pSectionFigures, &SKRSectionFiguresPanel::showPolygon);
}

void SKRHotRollingInfoWidget::showSection(const skr::section::SKRHotRollingSection* section) {
    if (!section) {
        m_pFigures->clear();
        m_pPreview->clear();
        return;
    }
    QStringList lines{QString::fromStdWString(section->standardName)};
    QMap<QString, double> dimensions;
    for (const auto& param : section->params) {
        if (param.second == 0) continue;  // a dimension the family does not have
        const QString code = QString::fromStdWString(param.first);
        dimensions.insert(code, param.second);
        lines << QStringLiteral("%1 = %2 mm").arg(code, QString::number(param.second, 'g', 6));
    }
    lines << text("延米重(kg/m):") + QLatin1Char(' ') + QString::number(section->weightMeter, 'f', 3)
          << text("表面积(m2/m):") + QLatin1Char(' ') + QString::number(section->area, 'f', 4);
    m_pFigures->setText(lines.join(QLatin1Char('\n')));
    m_pPreview->setSection(section->sectionType, skr::geometry::catalogueOutlineParams(section->sectionType, dimensions,
                                                                                       section->weightMeter));
}

void SKRHotRollingInfoWidget::sectionSaved(const skr::section::SKRHotRollingSection& section) {
    emit initTableView(section);
}
