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

// The drawing of typed figures has the area those figures give by hand, plate by plate.
TEST(SectionPreview, DrawsTheAreaTheTypedFiguresGive) {
    const double pi = 3.14159265358979323846;
    const struct { int type; QMap<QString, double> values; double area; } cases[] = {
        {11, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t1", 13}, {"t2", 16}}, 200 * 29 + 371 * 8},
        {12, {{"h", 500}, {"b1", 250}, {"b2", 300}, {"tw", 10}, {"t1", 14}, {"t2", 18}}, 250 * 14 + 300 * 18 + 468 * 10},
        {13, {{"b1", 400}, {"b2", 300}, {"t1", 10}, {"t2", 12}}, 400 * 300 - 280 * 376},
        {14, {{"d", 325}, {"t", 10}}, pi / 4 * (325 * 325 - 305 * 305)},
        {16, {{"h", 300}, {"b", 200}, {"t1", 8}, {"t2", 12}}, 200 * 12 + 288 * 8},
        {15, {{"h1", 600}, {"b1", 250}, {"tw1", 10}, {"t1", 16}, {"t2", 16}, {"h2", 500}, {"b2", 200}, {"tw2", 8}, {"t3", 14}, {"t4", 14}},
         250 * 32 + 568 * 10 + 200 * 28 + 472 * 8 - 10 * 8},
    };
    for (const auto& c : cases) {
        SKRSectionPreview preview;
        double drawn = -1;
        QObject::connect(&preview, &SKRSectionPreview::polygonChanged, [&drawn](const ndp::CPolygon* polygon) {
            drawn = polygon ? polygon->Area() : 0.0;
        });
        preview.setSection(c.type, c.values);
        EXPECT_NEAR(drawn, c.area, 1e-9 * c.area) << "type " << c.type;
    }
}
