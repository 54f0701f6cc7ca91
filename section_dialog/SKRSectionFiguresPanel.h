// SKRSectionFiguresPanel: the steel-table figures of the section chosen in the section dialogs,
// in the units of the published tables (cm, cm2, cm3, cm4, cm6, kg/m), beside its drawing. The
// exact figures show at once; the torsion and warping ones, which need a finite-element
// solution, follow when typing pauses (at once when that section's figures are already known).
#pragma once

#include "section_geometry/SKRSectionFigures.h"

#include <QWidget>

#include <memory>

class QLabel;
class QTimer;
namespace ndp {
class CPolygon;
}

class SKRSectionFiguresPanel : public QWidget {
    Q_OBJECT
public:
    explicit SKRSectionFiguresPanel(QWidget* parent = nullptr);
    ~SKRSectionFiguresPanel() override;

    // The figures as shown, one "name value unit" a line (empty when there is no section).
    QString figuresText() const;
    // Whether the torsion and warping figures are still to come.
    bool warpingPending() const;

public slots:
    // The section drawn now; null clears the figures.
    void showPolygon(const ndp::CPolygon* polygon);

private:
    void computeWarping();
    void render();

    QLabel* m_pText;
    QTimer* m_pTimer;
    std::unique_ptr<ndp::CPolygon> m_pPolygon;
    QString m_oKey;
    skr::geometry::SKRSectionFigures m_oFigures;
    bool m_bHaveWarping = false;
    QString m_oFailure;
};
