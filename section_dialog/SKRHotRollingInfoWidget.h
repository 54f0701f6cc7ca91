// SKRHotRollingInfoWidget: the figures of the hot-rolled section chosen in the section dialog's
// list (dimensions, kg/m, m2/m) with its live drawing and its section figures; it announces a section added or edited
// through the custom-section dialog so that the list can show it.
#pragma once

#include "section_data/SKRHotRollingSection.h"

#include <QWidget>

class QLabel;
class SKRSectionFiguresPanel;
class SKRSectionPreview;

class SKRHotRollingInfoWidget : public QWidget {
    Q_OBJECT
public:
    explicit SKRHotRollingInfoWidget(QWidget* parent = nullptr);

    // Shows the section; null clears the figures and the drawing.
    void showSection(const skr::section::SKRHotRollingSection* section);

public slots:
    // A section was saved by the custom-section dialog: initTableView passes it on.
    void sectionSaved(const skr::section::SKRHotRollingSection& section);

signals:
    void initTableView(const skr::section::SKRHotRollingSection& section);

private:
    QLabel* m_pFigures;
    SKRSectionPreview* m_pPreview;
    SKRSectionFiguresPanel* m_pSectionFigures;
};
