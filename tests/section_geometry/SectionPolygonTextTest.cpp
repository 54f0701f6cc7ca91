// Outline texts to polygons: separators, circles, arcs, gaps, orientation, and the texts that give
// no polygon at all.
#include "section_geometry/SKRSectionPolygonParser.h"

#include "ndp/NDPPolygon.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace skr::geometry;
using ndp::CPoint2d;

namespace {

CPoint2d startOf(const ndp::CLoop& loop, int curve) { return loop.GetCurve(curve)->StartPoint(); }

}  // namespace

TEST(SectionPolygonText, RectangleIsFourLinesClosedBackToTheStart) {
    const auto polygon = ParseSectionPolygon(QStringLiteral("0,0,0,0;100,0,0,0;100,50,0,0;0,50,0,0"));
    ASSERT_TRUE(polygon);
    ASSERT_EQ(polygon->GetLoopCount(), 1);
    const ndp::CLoop& loop = *polygon->GetLoop(0);
    ASSERT_EQ(loop.GetCount(), 4);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(loop.GetCurve(i)->GetType(), ndp::EnCurveType::Line);
    EXPECT_EQ(startOf(loop, 3), CPoint2d(0, 50));
    EXPECT_EQ(loop.GetCurve(3)->EndPoint(), CPoint2d(0, 0));
    EXPECT_TRUE(loop.IsClosed());
    EXPECT_DOUBLE_EQ(polygon->Area(), 5000.0);
    EXPECT_EQ(loop.ClockSign(), 1);
}

TEST(SectionPolygonText, KindFiftyIsAFullCircleAndIgnoresTheRestOfItsLoop) {
    for (const char* text : {"10,20,5,50", "10,20,5,50;99,99,0,0;7,7,7,7"}) {
        SCOPED_TRACE(text);
        const auto polygon = ParseSectionPolygon(QString::fromLatin1(text));
        ASSERT_TRUE(polygon);
        const ndp::CLoop& loop = *polygon->GetLoop(0);
        ASSERT_EQ(loop.GetCount(), 1);
        const auto* arc = dynamic_cast<const ndp::CArc2d*>(loop.GetCurve(0));
        ASSERT_NE(arc, nullptr);
        EXPECT_EQ(arc->Centre(), CPoint2d(10, 20));
        EXPECT_EQ(arc->Radius(), 5.0);
        EXPECT_TRUE(arc->IsFullCircle());
        EXPECT_NEAR(polygon->Area(), M_PI * 25, 1e-9);
    }
}

TEST(SectionPolygonText, OuterAndInnerLoopsEndWithOppositeSensesWhateverTheTextUsed) {
    const QString clockwiseSquare = QStringLiteral("0,0,0,0;0,100,0,0;100,100,0,0;100,0,0,0");
    const QString counterClockwiseHole = QStringLiteral("25,25,0,0;75,25,0,0;75,75,0,0;25,75,0,0");
    for (const QString& text : {clockwiseSquare + "|||" + counterClockwiseHole,
                                QStringLiteral("|||") + clockwiseSquare + "||||||" + counterClockwiseHole + "|||"}) {
        const auto polygon = ParseSectionPolygon(text);
        ASSERT_TRUE(polygon);
        ASSERT_EQ(polygon->GetLoopCount(), 2);
        EXPECT_EQ(polygon->GetLoop(0)->ClockSign(), 1);
        EXPECT_EQ(polygon->GetLoop(1)->ClockSign(), -1);
        EXPECT_DOUBLE_EQ(polygon->Area(), 10000.0 - 2500.0);
    }
    // A hole written clockwise already stays as written; a circle hole is turned clockwise.
    const auto ring = ParseSectionPolygon(QStringLiteral("0,0,10,50|||0,0,6,50"));
    ASSERT_TRUE(ring);
    EXPECT_EQ(ring->GetLoop(1)->ClockSign(), -1);
    EXPECT_NEAR(ring->Area(), M_PI * (100 - 36), 1e-9);
}

TEST(SectionPolygonText, ArcKindsDrawArcsOfTheRecordsValue) {
    // A 100 x 100 square whose right and left sides are half circles bulging outwards.
    const auto polygon = ParseSectionPolygon(QStringLiteral("0,0,0,0;100,0,50,1;100,100,0,0;0,100,50,1"));
    ASSERT_TRUE(polygon);
    const ndp::CLoop& loop = *polygon->GetLoop(0);
    ASSERT_EQ(loop.GetCount(), 4);
    EXPECT_EQ(loop.GetCurve(1)->GetType(), ndp::EnCurveType::Arc);
    EXPECT_EQ(loop.GetCurve(3)->GetType(), ndp::EnCurveType::Arc);
    EXPECT_NEAR(polygon->Area(), 10000 + M_PI * 2500, 1e-6);
}

TEST(SectionPolygonText, UnknownKindLeavesAGapButItsPointStartsTheNextSegment) {
    const auto polygon = ParseSectionPolygon(QStringLiteral("0,0,0,0;10,0,0,7;10,10,0,0;0,10,0,0"));
    ASSERT_TRUE(polygon);
    const ndp::CLoop& loop = *polygon->GetLoop(0);
    ASSERT_EQ(loop.GetCount(), 3);
    EXPECT_EQ(startOf(loop, 1), CPoint2d(10, 10));
    EXPECT_FALSE(loop.IsClosed());
}

TEST(SectionPolygonText, EmptyRecordsAreSkippedAndBadNumbersReadAsZero) {
    const auto polygon = ParseSectionPolygon(QStringLiteral("0,0,0,0;;100,0,0,0;;100,x,0,0;0,100,0,zz"));
    ASSERT_TRUE(polygon);
    const ndp::CLoop& loop = *polygon->GetLoop(0);
    ASSERT_EQ(loop.GetCount(), 4);
    EXPECT_EQ(startOf(loop, 2), CPoint2d(100, 0));  // "100,x" is (100, 0)
    EXPECT_EQ(loop.GetCurve(3)->GetType(), ndp::EnCurveType::Line);  // kind "zz" reads as a line
}

TEST(SectionPolygonText, OneNonEmptyPartIsParsedWholeSeparatorsIncluded) {
    const auto polygon = ParseSectionPolygon(QStringLiteral("a;b|||"));
    ASSERT_TRUE(polygon);
    ASSERT_EQ(polygon->GetLoopCount(), 1);
    EXPECT_EQ(polygon->GetLoop(0)->GetCount(), 2);  // (0,0) to (0,0) and back
    EXPECT_EQ(polygon->Area(), 0.0);
}

TEST(SectionPolygonText, TextsWithoutALoopGiveNoPolygon) {
    EXPECT_FALSE(ParseSectionPolygon(QString()));
    EXPECT_FALSE(ParseSectionPolygon(QStringLiteral(";10,0,0,0")));
    EXPECT_FALSE(ParseSectionPolygon(QStringLiteral("|||;1,1,0,0|||;2,2,0,0")));
    EXPECT_FALSE(ParseLoop(QStringLiteral(";"), true));
    // A loop of one record has a start but no segment.
    const auto single = ParseLoop(QStringLiteral("5,5,0,0"), true);
    ASSERT_TRUE(single);
    EXPECT_EQ(single->GetCount(), 0);
}

// What a text that is not an outline is refused for: the loop, the record and the field.
TEST(SectionPolygonText, UnreadableTextsNameTheLoopRecordAndField) {
    const struct {
        const char* text;
        const char* reason;  // empty: read
    } cases[] = {
        {"0,0,0,0;10,0,0,0;10,10,0,0", ""}, {"5,5,5,50|||5,5,2,50", ""},
        {"0,0,0,0;10,0,0,0;10,10,0,0|||1,1,0,0;2,x,0,0", "loop 2, record 2: 'x' is not a number"},
        {"0,0,0,0;10,0,0,7;10,10,0,0", "loop 1, record 2: '7' is no segment kind"},
        {"0,0,0,0;10,0,0,50;10,10,0,0", "loop 1, record 2: '50' is no segment kind"},
        {"0,0,0;10,0,0,0", "loop 1, record 1: '' is no segment kind"}, {"", "loop 1, the loop is empty"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        SKROutline outline;
        QString error;
        EXPECT_EQ(parseOutlineText(QString::fromLatin1(c.text), outline, &error), !*c.reason);
        EXPECT_EQ(error, QString::fromLatin1(c.reason));
    }
}

// An outline passed as loops draws the polygon its text draws.
TEST(SectionPolygonText, OutlineAndItsTextGiveTheSamePolygon) {
    const QString text = QStringLiteral("0,0,0,0;20,0,0,0;20,10,5,1;10,10,0,0|||5,5,2,50");
    SKROutline outline;
    ASSERT_TRUE(parseOutlineText(text, outline));
    EXPECT_EQ(outlineText(outline), text);
    const auto fromText = ParseSectionPolygon(text);
    const auto fromLoops = outlinePolygon(outline);
    ASSERT_TRUE(fromText && fromLoops);
    ASSERT_EQ(fromLoops->GetLoopCount(), 2);
    EXPECT_NEAR(fromLoops->Area(), fromText->Area(), 1e-12);
}
