// The planar geometry kernel: lines and the four arc types, loop areas and turning senses,
// polygons with holes and the stored form of a polygon (polygon fields of records: DatabaseTest).
#include "platform/Loops.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

using namespace ndp;

namespace {

bool finite(const CPoint2d& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

void expectPoint(const CPoint2d& actual, double x, double y, double tolerance = 1e-9) {
    EXPECT_NEAR(actual.x, x, tolerance);
    EXPECT_NEAR(actual.y, y, tolerance);
}

// Outer rectangle with a round and a square hole, and arcs of every type in a further loop.
CPolygon samplePolygon() {
    CPolygon polygon;
    polygon.AddLoop(rectangle(0, 0, 100.125, 50.0 / 3), true);
    polygon.AddLoop(circle(20.1, 8.3, 10.0 / 7), true);
    auto* mixed = new CLoop;
    mixed->AddCurve(new CArc2d({40, 2}, {60.3, 2.7}, 13.7, 1), false);
    mixed->AddCurve(new CArc2d({60.3, 2.7}, {61, 12}, 7.1, 2), false);
    mixed->AddCurve(new CArc2d({61, 12}, {45, 14}, 30, 3), false);
    mixed->AddCurve(new CArc2d({45, 14}, {40, 2}, 0.1, 4), false);
    mixed->AddCurve(new CLine2d({40, 2}, {40, 2}), false);
    polygon.AddLoop(mixed, true);
    return polygon;
}

}  // namespace

TEST(LineLoops, AreaLengthBoxAndTurningSenseFollowTheSides) {
    // Lengths, closure and boxes of lines are also those of the slot below and the polygon's box.
    std::unique_ptr<CLoop> loop(rectangle(2, 3, 12, 8));
    EXPECT_DOUBLE_EQ(loop->SignedArea(), 50.0);
    EXPECT_EQ(loop->ClockSign(), 1);
    // Reversed, it turns clockwise; the last side, turned round, comes first.
    loop->Reverse();
    EXPECT_EQ(loop->ClockSign(), -1);
    EXPECT_DOUBLE_EQ(loop->SignedArea(), -50.0);
    EXPECT_EQ(loop->GetCurve(0)->StartPoint(), CPoint2d(2, 3));
    EXPECT_EQ(loop->GetCurve(0)->EndPoint(), CPoint2d(2, 8));

    // Empty and flat loops have no turning sense.
    CLoop empty;
    EXPECT_EQ(empty.ClockSign(), 0);
    EXPECT_FALSE(empty.IsClosed());
    EXPECT_TRUE(empty.BoundingBox().IsEmpty());
    CLoop flat;  // there and back along one line
    flat.AddCurve(new CLine2d({0, 0}, {10, 10}), false);
    flat.AddCurve(new CLine2d({10, 10}, {0, 0}), false);
    EXPECT_EQ(flat.ClockSign(), 0);
}

TEST(ArcTypes, FourTypesBetweenTheSamePointsAreTheFourDistinctArcs) {
    // Chord from (0,0) to (10,0), radius 13: the centres lie 12 above or below the midpoint.
    const CPoint2d p(0, 0), q(10, 0);
    const double minor = 2 * std::atan2(5.0, 12.0);
    const struct {
        int type;
        double centreY, midY, sweep;
    } rows[] = {
        {1, 12, -1, minor},               // minor, counter-clockwise: bulges right of the chord
        {2, -12, 1, -minor},              // minor, clockwise: bulges left
        {3, -12, -25, 2 * kPi - minor},   // major, counter-clockwise
        {4, 12, 25, -(2 * kPi - minor)},  // major, clockwise
        {7, 12, -1, minor},               // an unknown type is taken as type 1
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const CArc2d arc(p, q, 13.0, row.type);
        EXPECT_EQ(arc.StartPoint(), p);
        EXPECT_EQ(arc.EndPoint(), q);
        EXPECT_DOUBLE_EQ(arc.Radius(), 13.0);
        expectPoint(arc.Centre(), 5, row.centreY);
        expectPoint(arc.PointAt(0.5), 5, row.midY);
        EXPECT_NEAR(arc.Sweep(), row.sweep, 1e-12);
        EXPECT_EQ(arc.IsCounterClockwise(), row.sweep > 0);
        EXPECT_NEAR(arc.Length(), 13.0 * std::fabs(row.sweep), 1e-9);
        // Points along the arc stay on its circle.
        for (double t : {0.1, 0.37, 0.8}) EXPECT_NEAR(arc.PointAt(t).DistanceTo(arc.Centre()), 13.0, 1e-9);
    }
    // A negative value is taken by its size.
    EXPECT_TRUE(CArc2d(p, q, -13.0, 1).IsEqual(CArc2d(p, q, 13.0, 1)));
}

TEST(ArcTypes, RadiusBelowHalfTheChordGivesAHalfCircleAndDegenerateInputsStayFinite) {
    const CPoint2d p(0, 0), q(0, 10);
    for (double value : {0.0, 1.0, 4.999, -3.0, std::numeric_limits<double>::quiet_NaN(),
                         std::numeric_limits<double>::infinity()}) {
        SCOPED_TRACE(value);
        for (int type = 1; type <= 4; ++type) {
            const CArc2d arc(p, q, value, type);
            EXPECT_DOUBLE_EQ(arc.Radius(), 5.0);
            expectPoint(arc.Centre(), 0, 5);
            EXPECT_NEAR(std::fabs(arc.Sweep()), kPi, 1e-12);
            EXPECT_TRUE(finite(arc.PointAt(0.5)));
            EXPECT_TRUE(std::isfinite(arc.SignedArea()));
        }
    }
    const CArc2d coincident(CPoint2d(3, 4), CPoint2d(3, 4), 10.0, 3);
    EXPECT_EQ(coincident.StartPoint(), CPoint2d(3, 4));
    EXPECT_EQ(coincident.EndPoint(), CPoint2d(3, 4));
    EXPECT_EQ(coincident.Length(), 0.0);
    EXPECT_TRUE(finite(coincident.PointAt(0.5)));

    const CArc2d huge(CPoint2d(0, 0), CPoint2d(1, 0), 1e200, 1);  // practically a straight line
    EXPECT_TRUE(finite(huge.Centre()));
    EXPECT_NEAR(huge.Length(), 1.0, 1e-12);
    expectPoint(huge.PointAt(0.5), 0.5, 0.0);
    EXPECT_TRUE(std::isfinite(huge.SignedArea()));
}

TEST(ArcLoops, CirclesAndSlotsHaveTheirExactAreasLengthsAndBoxes) {
    // A full circle starts at its start angle; its area, length, box and closure are those of the
    // circle outlines (SectionPolygonTextTest, SectionOutlineTest, SectionPropertiesTest).
    expectPoint(CArc2d(CPoint2d(10, 20), 5.0, 0.0, 2 * kPi).StartPoint(), 15, 20, 0);

    std::unique_ptr<CLoop> loop(slot(40, 6, 6));
    EXPECT_TRUE(loop->IsClosed());
    EXPECT_NEAR(loop->SignedArea(), 40 * 12 + kPi * 36, 1e-9);
    EXPECT_NEAR(loop->Length(), 80 + 2 * kPi * 6, 1e-9);
    expectPoint(loop->BoundingBox().Min(), -6, 0, 1e-9);
    expectPoint(loop->BoundingBox().Max(), 46, 12, 1e-9);
}

TEST(Polygons, AreaIsTheOuterLoopLessItsHolesWhateverTheirSense) {
    CPolygon polygon;
    EXPECT_EQ(polygon.Area(), 0.0);
    polygon.AddLoop(rectangle(0, 0, 100, 50), true);
    polygon.AddLoop(circle(20, 20, 10), true);
    CLoop* square = rectangle(60, 10, 70, 20);
    square->Reverse();
    polygon.AddLoop(square, true);
    EXPECT_EQ(polygon.GetLoop(2), square);
    EXPECT_EQ(polygon.GetLoop(3), nullptr);
    EXPECT_NEAR(polygon.Area(), 5000 - kPi * 100 - 100, 1e-9);
    EXPECT_EQ(polygon.BoundingBox().Min(), CPoint2d(0, 0));
    EXPECT_EQ(polygon.BoundingBox().Max(), CPoint2d(100, 50));
    // A clockwise outer loop gives the same area.
    polygon.GetLoop(0)->Reverse();
    EXPECT_NEAR(polygon.Area(), 5000 - kPi * 100 - 100, 1e-9);
}

// Truncated bytes are refused and leave the target alone.
TEST(PolygonBytes, PolygonReadBackIsIdenticalArcsIncludedAndTruncatedBytesAreRefused) {
    const CPolygon polygon = samplePolygon();
    const QByteArray bytes = polygon.ToBytes();
    CPolygon read;
    QString error;
    ASSERT_TRUE(CPolygon::FromBytes(bytes, read, &error)) << qPrintable(error);
    EXPECT_EQ(read, polygon);  // every curve, arcs with their centres, radii and angles
    EXPECT_EQ(read.ToBytes(), bytes);  // every double bit for bit
    for (int size = 0; size < bytes.size(); ++size) {
        CPolygon target = polygon;
        error.clear();
        EXPECT_FALSE(CPolygon::FromBytes(bytes.left(size), target, &error)) << size;
        EXPECT_FALSE(error.isEmpty()) << size;
        EXPECT_EQ(target, polygon) << size;
    }
}
