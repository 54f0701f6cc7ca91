// The section figures beside the section drawings of the section dialogs.
#include "section_dialog/SKRSectionFiguresPanel.h"

#include "ndp/NDPPolygon.h"
#include "section_geometry/SKROutlineCheck.h"

#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

#include <cmath>

namespace {

// How long typing must pause before the finite-element figures are worked out.
constexpr int kWarpingDelayMs = 400;

// Four significant figures, as steel tables print them, but no exponent for large values.
QString number(double value) {
    const double size = std::fabs(value);
    if (size < 5e-4) return QStringLiteral("0");
    if (size >= 1e3) return QString::number(value, 'f', 0);
    return QString::number(value, 'g', 4);
}

}  // namespace

SKRSectionFiguresPanel::SKRSectionFiguresPanel(QWidget* parent)
    : QWidget(parent), m_pText(new QLabel(this)), m_pTimer(new QTimer(this)) {
    setObjectName(QStringLiteral("sectionFigures"));
    m_pText->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_pText->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pText->setTextFormat(Qt::RichText);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_pText);
    m_pTimer->setSingleShot(true);
    m_pTimer->setInterval(kWarpingDelayMs);
    connect(m_pTimer, &QTimer::timeout, this, &SKRSectionFiguresPanel::computeWarping);
}

SKRSectionFiguresPanel::~SKRSectionFiguresPanel() = default;

void SKRSectionFiguresPanel::showPolygon(const ndp::CPolygon* polygon) {
    m_pTimer->stop();
    m_pPolygon.reset();
    m_bHaveWarping = false;
    m_oFailure.clear();
    QString error;
    if (polygon && !polygon->IsEmpty() && skr::geometry::checkSectionOutline(*polygon, &error)) {
        m_pPolygon.reset(polygon->Clone());
        m_oKey = QStringLiteral("polygon:") + QString::fromLatin1(polygon->ToBytes().toBase64());
        m_oFigures = skr::geometry::SKRSectionFigures();
        // A section seen before is answered from the kept figures; otherwise the exact part now.
        m_bHaveWarping = skr::geometry::KnownSectionFigures(m_oKey, m_oFigures);
        if (!m_bHaveWarping) {
            m_oFigures.exact = skr::geometry::ExactSectionFigures(*m_pPolygon);
            m_pTimer->start();
        }
    }
    render();
}

void SKRSectionFiguresPanel::computeWarping() {
    if (!m_pPolygon) return;
    QString error;
    m_bHaveWarping = skr::geometry::SectionFigures(*m_pPolygon, m_oKey, m_oFigures, &error);
    if (!m_bHaveWarping) m_oFailure = error;
    render();
}

bool SKRSectionFiguresPanel::warpingPending() const { return m_pTimer->isActive(); }

QString SKRSectionFiguresPanel::figuresText() const {
    if (!m_pPolygon) return QString();
    const skr::geometry::SKRExactFigures& e = m_oFigures.exact;
    const skr::geometry::SKRWarpingFigures& w = m_oFigures.warping;
    QStringList lines;
    auto add = [&](const QString& name, double value, const QString& unit) {
        lines << QStringLiteral("%1 %2 %3").arg(name, number(value), unit);
    };
    add(QStringLiteral("A"), e.area / 1e2, QStringLiteral("cm²"));
    add(QStringLiteral("G"), e.massPerMetre, QStringLiteral("kg/m"));
    add(QStringLiteral("U"), e.outerPerimeter / 1e3, QStringLiteral("m²/m"));  // painted surface
    add(QStringLiteral("Ix"), e.ix / 1e4, QStringLiteral("cm⁴"));
    add(QStringLiteral("Iy"), e.iy / 1e4, QStringLiteral("cm⁴"));
    add(QStringLiteral("ix"), e.rx / 10, QStringLiteral("cm"));
    add(QStringLiteral("iy"), e.ry / 10, QStringLiteral("cm"));
    add(QStringLiteral("Wx"), e.wx() / 1e3, QStringLiteral("cm³"));
    add(QStringLiteral("Wy"), e.wy() / 1e3, QStringLiteral("cm³"));
    add(QStringLiteral("Zx"), e.zx / 1e3, QStringLiteral("cm³"));
    add(QStringLiteral("Zy"), e.zy / 1e3, QStringLiteral("cm³"));
    if (e.ixy != 0.0) {
        add(QStringLiteral("I1"), e.i1 / 1e4, QStringLiteral("cm⁴"));
        add(QStringLiteral("I2"), e.i2 / 1e4, QStringLiteral("cm⁴"));
        add(QStringLiteral("α"), e.alpha, QStringLiteral("°"));
    }
    if (m_bHaveWarping) {
        add(QStringLiteral("It"), w.j / 1e4, QStringLiteral("cm⁴"));
        add(QStringLiteral("Iw"), w.iw / 1e6, QStringLiteral("cm⁶"));
        add(QStringLiteral("xs"), w.xs / 10, QStringLiteral("cm"));
        add(QStringLiteral("ys"), w.ys / 10, QStringLiteral("cm"));
        // Monosymmetry, where the section has it (unequal flanges, a T).
        const double depth = e.box.Max().y - e.box.Min().y;
        const double width = e.box.Max().x - e.box.Min().x;
        if (std::fabs(w.betaX) > 1e-3 * depth) add(QStringLiteral("βx"), w.betaX / 10, QStringLiteral("cm"));
        if (std::fabs(w.betaY) > 1e-3 * width) add(QStringLiteral("βy"), w.betaY / 10, QStringLiteral("cm"));
    } else if (!m_oFailure.isEmpty()) {
        lines << m_oFailure;
    } else {
        lines << QStringLiteral("It, Iw…");
    }
    return lines.join(QLatin1Char('\n'));
}

void SKRSectionFiguresPanel::render() {
    const QStringList lines = figuresText().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    // Two columns, so that a panel as low as the catalogue's info row holds them all.
    const int rows = (lines.size() + 1) / 2;
    QString html = QStringLiteral("<table cellspacing=\"0\" cellpadding=\"1\">");
    for (int r = 0; r < rows; ++r) {
        html += QStringLiteral("<tr>");
        for (int c = 0; c < 2; ++c) {
            const int i = c * rows + r;
            const QStringList parts = i < lines.size() ? lines[i].split(QLatin1Char(' ')) : QStringList();
            if (parts.size() == 3)
                html += QStringLiteral("<td><i>%1</i></td><td align=\"right\">&nbsp;%2</td><td>&nbsp;%3&nbsp;&nbsp;</td>")
                            .arg(parts[0].toHtmlEscaped(), parts[1], parts[2]);
            else
                html += QStringLiteral("<td colspan=\"3\">%1</td>").arg(i < lines.size() ? lines[i].toHtmlEscaped() : QString());
        }
        html += QStringLiteral("</tr>");
    }
    m_pText->setText(lines.isEmpty() ? QString() : html + QStringLiteral("</table>"));
    // The drawing beside it gives way; the figures keep their width.
    setMinimumWidth(m_pText->sizeHint().width());
}
