// Outline texts to polygons: separators, circles, arcs, gaps, orientation, and the texts that give
// no polygon at all; unreadable texts refused naming the loop, record and field; and the outline
// check, which refuses every outline that does not enclose one finite region, naming the loop
// and a point near the fault.
#include "section_geometry/SKROutlineCheck.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include "ndp/NDPPolygon.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace skr::geometry;
using ndp::CPoint2d;

// Loops, curves of the first loop, area, whether the first loop closes, and the turning sense of
// the first and the last loop: outer loops counter-clockwise, holes clockwise, whatever the text.
TEST(SectionPolygonText, TextsGiveTheirLoopsCurvesAreaAndTurningSenses) {
    const QString clockwiseSquare = QStringLiteral("0,0,0,0;0,100,0,0;100,100,0,0;100,0,0,0");
    const QString counterClockwiseHole = QStringLiteral("25,25,0,0;75,25,0,0;75,75,0,0;25,75,0,0");
    const struct {
        QString text;
        int loops;  // 0: no polygon
        int curves;
        double area;  // NaN: not checked
        bool closed;
        int lastSign;
    } cases[] = {
        {"0,0,0,0;100,0,0,0;100,50,0,0;0,50,0,0", 1, 4, 5000, true, 1},
        // Kind 50 is a full circle and the rest of its loop is ignored.
        {"10,20,5,50", 1, 1, M_PI * 25, true, 1},
        {"10,20,5,50;99,99,0,0;7,7,7,7", 1, 1, M_PI * 25, true, 1},
        {clockwiseSquare + "|||" + counterClockwiseHole, 2, 4, 7500, true, -1},
        {"|||" + clockwiseSquare + "||||||" + counterClockwiseHole + "|||", 2, 4, 7500, true, -1},
        {"0,0,10,50|||0,0,6,50", 2, 1, M_PI * 64, true, -1},  // a circle hole is turned clockwise
        // Arc kinds draw arcs of the record's value: half circles bulging out of a square.
        {"0,0,0,0;100,0,50,1;100,100,0,0;0,100,50,1", 1, 4, 10000 + M_PI * 2500, true, 1},
        // An unknown kind leaves a gap; empty records are skipped and bad numbers read as zero.
        {"0,0,0,0;10,0,0,7;10,10,0,0;0,10,0,0", 1, 3, std::nan(""), false, 0},
        {"0,0,0,0;;100,0,0,0;;100,x,0,0;0,100,0,zz", 1, 4, 5000, true, 0},
        // One non-empty part is parsed whole, separators included: (0,0) to (0,0) and back.
        {"a;b|||", 1, 2, 0, true, 0},
        {"", 0, 0, 0, false, 0}, {";10,0,0,0", 0, 0, 0, false, 0}, {"|||;1,1,0,0|||;2,2,0,0", 0, 0, 0, false, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        const auto polygon = ParseSectionPolygon(c.text);
        ASSERT_EQ(polygon != nullptr, c.loops > 0);
        if (!polygon) continue;
        ASSERT_EQ(polygon->GetLoopCount(), c.loops);
        const ndp::CLoop& loop = *polygon->GetLoop(0);
        EXPECT_EQ(loop.GetCount(), c.curves);
        if (!std::isnan(c.area)) {
            EXPECT_NEAR(polygon->Area(), c.area, 1e-6);
        }
        EXPECT_EQ(loop.IsClosed(), c.closed);
        if (c.lastSign != 0) {
            EXPECT_EQ(loop.ClockSign(), 1);
            EXPECT_EQ(polygon->GetLoop(c.loops - 1)->ClockSign(), c.lastSign);
        }
    }
}

TEST(SectionPolygonText, CurvesHaveTheKindsAndPointsOfTheirRecords) {
    auto loopOf = [](const char* text) { return ParseSectionPolygon(QString::fromLatin1(text)); };
    const auto circle = loopOf("10,20,5,50;99,99,0,0");
    const auto* arc = dynamic_cast<const ndp::CArc2d*>(circle->GetLoop(0)->GetCurve(0));
    ASSERT_NE(arc, nullptr);
    EXPECT_EQ(arc->Centre(), CPoint2d(10, 20));
    EXPECT_EQ(arc->Radius(), 5.0);
    EXPECT_TRUE(arc->IsFullCircle());

    // The point of an unknown kind starts the next segment.
    EXPECT_EQ(loopOf("0,0,0,0;10,0,0,7;10,10,0,0;0,10,0,0")->GetLoop(0)->GetCurve(1)->StartPoint(), CPoint2d(10, 10));

    EXPECT_FALSE(ParseLoop(QStringLiteral(";"), true));
    // A loop of one record has a start but no segment.
    const auto single = ParseLoop(QStringLiteral("5,5,0,0"), true);
    ASSERT_TRUE(single);
    EXPECT_EQ(single->GetCount(), 0);
}

// A text that reads gives an outline whose text is the same and whose loops draw the polygon the
// text draws.
TEST(SectionPolygonText, UnreadableTextsNameTheLoopRecordAndFieldAndReadOnesComeBackAsTheyWere) {
    const struct { const char* text; const char* reason; } cases[] = {  // reason empty: read
        {"0,0,0,0;10,0,0,0;10,10,0,0", ""}, {"5,5,5,50|||5,5,2,50", ""},
        {"0,0,0,0;20,0,0,0;20,10,5,1;10,10,0,0|||5,5,2,50", ""},
        {"0,0,0,0;10,0,0,0;10,10,0,0|||1,1,0,0;2,x,0,0", "loop 2, record 2: 'x' is not a number"},
        {"0,0,0,0;10,0,0,7;10,10,0,0", "loop 1, record 2: '7' is no segment kind"},
        {"0,0,0,0;10,0,0,50;10,10,0,0", "loop 1, record 2: '50' is no segment kind"},
        {"0,0,0;10,0,0,0", "loop 1, record 1: '' is no segment kind"},
        {"", "loop 1, the loop is empty"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        SKROutline outline;
        QString error;
        EXPECT_EQ(parseOutlineText(QString::fromLatin1(c.text), outline, &error), !*c.reason);
        EXPECT_EQ(error, QString::fromLatin1(c.reason));
        if (*c.reason) continue;
        EXPECT_EQ(outlineText(outline), QString::fromLatin1(c.text));
        const auto fromText = ParseSectionPolygon(QString::fromLatin1(c.text));
        const auto fromLoops = outlinePolygon(outline);
        ASSERT_TRUE(fromText && fromLoops);
        ASSERT_EQ(fromLoops->GetLoopCount(), fromText->GetLoopCount());
        EXPECT_NEAR(fromLoops->Area(), fromText->Area(), 1e-12);
    }
}

TEST(OutlineCheck, RefusesEveryOutlineThatIsNotOneFiniteRegion) {
    const QString rectangle = QStringLiteral("0,0,0,0;100,0,0,0;100,50,0,0;0,50,0,0");
    const struct {
        QString text;
        const char* refusal;  // empty for a valid outline
    } cases[] = {
        {rectangle, ""},
        {rectangle + "|||50,25,10,50", ""},                                        // a round hole
        {rectangle + "|||10,10,0,0;30,10,0,0;30,30,0,0;10,30,0,0|||60,10,0,0;80,10,0,0;80,30,0,0", ""},
        {"0,0,10,1;20,0,0,0;20,20,0,0;0,20,0,0", ""},                              // an arc edge
        {"0,0,1e200,50", "loop 1 of the outline reaches beyond 1000000 mm"},
        {"0,0,0,0;1e7,0,0,0;1e7,50,0,0", "loop 1 of the outline reaches beyond"},
        {"0,0,0,0;100,0,0,0", "loop 1 of the outline does not close round an area"},
        {"0,0,0,0;100,0,0,0;0,50,0,0;100,50,0,0", "loop 1 of the outline crosses itself near (50, 25)"},
        {"71,0,190,0,00,0;79,0,0,0;79,190,0,0;9,0,0,0;79,190,0,0;150,;0,200,0,0;0,190,0,0;71,190,0,0",
         "loop 1 of the outline crosses itself"},
        {"0,0,0,0;100,0,0,0;100,50,0,0;100,0,0,0;0,50,0,0", "loop 1 of the outline crosses itself"},  // folds back
        {rectangle + "|||200,10,0,0;210,10,0,0;210,20,0,0", "hole (loop 2) of the outline lies outside the outer loop near (200, 10)"},
        {rectangle + "|||90,10,0,0;110,10,0,0;110,20,0,0", "hole (loop 2) of the outline crosses the outer loop"},
        {rectangle + "|||10,10,0,0;30,10,0,0;30,30,0,0;10,30,0,0|||20,20,0,0;40,20,0,0;40,40,0,0;20,40,0,0",
         "holes (loops 2 and 3) of the outline cross"},
        {rectangle + "|||10,5,0,0;60,5,0,0;60,45,0,0;10,45,0,0|||20,20,0,0;30,20,0,0;30,30,0,0",
         "hole (loop 3) of the outline lies inside hole (loop 2) near (20, 20)"},
    };
    for (const auto& outline : cases) {
        SCOPED_TRACE(outline.text.toStdString());
        const auto polygon = ParseSectionPolygon(outline.text);
        ASSERT_NE(polygon, nullptr);
        QString where;
        const bool valid = checkSectionOutline(*polygon, &where);
        EXPECT_EQ(valid, *outline.refusal == '\0') << qPrintable(where);
        if (!valid) {
            EXPECT_TRUE(where.startsWith(outline.refusal)) << qPrintable(where);
        }
    }
}
