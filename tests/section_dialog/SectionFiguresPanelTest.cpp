// The section figures beside the dialogs' drawings: exact figures at once in table units, the
// finite-element ones once typing pauses, both following the values as they change.
#include "section_dialog/SKRHotRollingInfoWidget.h"
#include "section_dialog/SKRSectionFiguresPanel.h"
#include "section_dialog/SKRSectionPreview.h"

#include "support/Screens.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

namespace {

QMap<QString, double> weldedH(double b) {
    return {{QStringLiteral("h"), 400}, {QStringLiteral("b"), b}, {QStringLiteral("tw"), 8},
            {QStringLiteral("t1"), 13}, {QStringLiteral("t2"), 13}};
}

QString line(const QString& text, const QString& name) {
    for (const QString& l : text.split(QLatin1Char('\n')))
        if (l.startsWith(name + QLatin1Char(' '))) return l;
    return QString();
}

TEST(SectionFiguresPanel, FollowsTheDrawnSectionInTableUnits) {
    SKRSectionPreview preview;
    SKRSectionFiguresPanel panel;
    QObject::connect(&preview, &SKRSectionPreview::polygonChanged, &panel, &SKRSectionFiguresPanel::showPolygon);

    preview.setSection(11, weldedH(200));
    EXPECT_EQ(line(panel.figuresText(), "A"), QStringLiteral("A 81.92 cm²"));
    EXPECT_EQ(line(panel.figuresText(), "Ix"), QStringLiteral("Ix 22965 cm⁴"));
    EXPECT_TRUE(panel.warpingPending());
    EXPECT_TRUE(line(panel.figuresText(), "It").isEmpty());
    // J of H400*200*8*13 is 35.07 cm4 and Iw 648687 cm6 (0.05 % from If h^2 / 2).
    QTRY_VERIFY_WITH_TIMEOUT(!panel.warpingPending(), 5000);
    EXPECT_EQ(line(panel.figuresText(), "It"), QStringLiteral("It 35.07 cm⁴"));
    EXPECT_EQ(line(panel.figuresText(), "Iw"), QStringLiteral("Iw 648687 cm⁶"));

    // A value typed anew: the exact figures change at once, the others wait again.
    preview.setSection(11, weldedH(300));
    EXPECT_EQ(line(panel.figuresText(), "A"), QStringLiteral("A 107.9 cm²"));
    EXPECT_TRUE(panel.warpingPending());

    // Values that make no section clear the figures.
    preview.setSection(11, weldedH(4));
    EXPECT_TRUE(panel.figuresText().isEmpty());
}

// The catalogue's info row, as low as the dialog makes it, holds the figures beside the drawing.
TEST(SectionFiguresPanel, CatalogueInfoRowShowsTheRowsFigures) {
    skr::section::SKRHotRollingSection row;
    row.sectionType = 7;
    row.standardName = L"HN400*200*8*13";
    row.weightMeter = 65.4;
    row.area = 1.56;
    row.params = {{L"h", 400}, {L"b", 200}, {L"tw", 8}, {L"t", 13}, {L"r", 13}};
    SKRHotRollingInfoWidget info;
    info.resize(650, 190);
    info.showSection(&row);
    auto* panel = info.findChild<SKRSectionFiguresPanel*>(QStringLiteral("sectionFigures"));
    ASSERT_NE(panel, nullptr);
    // The published row: A 83.37 cm2, Ix 23500 cm4.
    EXPECT_EQ(line(panel->figuresText(), "A"), QStringLiteral("A 83.37 cm²"));
    QTRY_VERIFY_WITH_TIMEOUT(!panel->warpingPending(), 5000);
    info.show();
    EXPECT_TRUE(saveScreen(info, QStringLiteral("section_figures_catalogue")));
}

}  // namespace
