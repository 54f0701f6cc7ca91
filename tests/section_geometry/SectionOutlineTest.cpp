// Section outlines and their figures. Outline texts to polygons: separators, circles, arcs, gaps,
// orientation, and the texts that give no polygon at all; unreadable texts refused naming the loop,
// record and field; and the outline check, which refuses every outline that does not enclose one
// finite region, naming the loop and a point near the fault. Outlines of the section types: each
// type's drawing has the area, the outer perimeter and the bounding box of its dimensions, fillets,
// bends and sloped flanges included, runs counter-clockwise outside and clockwise round its holes,
// and values that make no section or radii that do not fit are refused. Corners rounded into lines
// and arcs: convex and concave fillets, tight fits that leave no straight piece, either turning
// sense, and radii that do not fit refused with where and why. Steel-table figures against closed
// forms: exact moduli (elastic and plastic) of rectangles, I, T, circle and ring; torsion, warping,
// shear centre, monosymmetry and shear areas from the finite-element solution against the series
// and thin-walled solutions they must approach.
// Section properties of polygons of lines and arcs against the textbook formulas: circles,
// rings, half discs, slots, I sections, circular segments and arcs of every type; far from the
// origin, with holes of either turning sense, and with arcs too flat for the direct formulas.
#include "section_geometry/SKROutlineBuilder.h"
#include "section_geometry/SKROutlineCheck.h"
#include "section_geometry/SKRSectionFigures.h"
#include "section_geometry/SKRSectionMesh.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPolygonParser.h"
#include "section_geometry/SKRSectionProperties.h"
#include "section_geometry/SKRWarpingSolver.h"

#include "ndp/NDPPolygon.h"
#include "platform/Loops.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

using namespace skr::geometry;
using namespace ndp;

namespace {

using Params = QMap<QString, double>;

struct OutlineCase {
    const char* name;
    int type;
    Params params;
    double area;                // mm2, from the dimensions
    double width, height;       // of the bounding box
    double outerPerimeter = 0;  // mm, where the case checks it
    int arcs = -1;              // where the case checks them
};

double ring(double d, double t) { return M_PI / 4 * (d * d - (d - 2 * t) * (d - 2 * t)); }
double hArea(double h, double bt, double bb, double tw, double tt, double tb) { return bt * tt + bb * tb + (h - tt - tb) * tw; }

// What a fillet of radius r that turns the outline through theta adds (concave corner) or takes
// off (convex corner) in area, and what it takes off the perimeter.
double filletArea(double r, double theta = M_PI / 2) { return r * r * (std::tan(theta / 2) - theta / 2); }
double filletCut(double r, double theta = M_PI / 2) { return 2 * r * std::tan(theta / 2) - r * theta; }

// Sloped flanges (1:6 on an I, 1:10 on a channel): the turn at the root and at the toe, and the
// tip and root thicknesses of a flange whose thickness t is measured halfway along the outstand.
double slopeTurn(double slope) { return M_PI / 2 - std::atan(slope); }

double iArea(double h, double b, double d, double t, double r, double r1) {
    const double turn = slopeTurn(1.0 / 6);
    return h * d + 2 * t * (b - d) + 4 * filletArea(r, turn) - 4 * filletArea(r1, turn);
}
double iPerimeter(double h, double b, double d, double t, double r, double r1) {
    const double slope = 1.0 / 6, outstand = (b - d) / 2, turn = slopeTurn(slope);
    const double tip = t - slope * outstand / 2, root = t + slope * outstand / 2;
    return 2 * b + 4 * outstand * std::hypot(1, slope) + 4 * tip + 2 * (h - 2 * root) - 4 * filletCut(r, turn) -
           4 * filletCut(r1, turn);
}
double channelArea(double h, double b, double d, double t, double r, double r1) {
    const double turn = slopeTurn(0.1);
    return h * d + 2 * t * (b - d) + 2 * filletArea(r, turn) - 2 * filletArea(r1, turn);
}
double channelPerimeter(double h, double b, double d, double t, double r, double r1) {
    const double slope = 0.1, outstand = b - d, turn = slopeTurn(slope);
    const double tip = t - slope * outstand / 2, root = t + slope * outstand / 2;
    return h + 2 * b + 2 * tip + 2 * outstand * std::hypot(1, slope) + (h - 2 * root) - 2 * filletCut(r, turn) -
           2 * filletCut(r1, turn);
}
// Cold-formed lipped C and Z: t times the centre line, whose four bends (inner radius r) are
// shorter than sharp corners; the outer perimeter runs twice along it and across both lip ends.
double coldFormedCentreLine(double h, double b, double c, double t, double r) {
    return h + 2 * b + 2 * c - 4 * t - 4 * (2 - M_PI / 2) * (r + t / 2);
}
// A hollow section of outer corner radius R.
double hollowArea(double h, double b, double t, double R) {
    return h * b - (h - 2 * t) * (b - 2 * t) - (4 - M_PI) * (R * R - (R - t) * (R - t));
}

std::vector<OutlineCase> cases() {
    const double cC = coldFormedCentreLine(200, 70, 20, 3, 6), cGiven = coldFormedCentreLine(60, 30, 10, 3, 5.2);
    const double cZ = coldFormedCentreLine(250, 75, 25, 3, 6);
    return {
        {"I", 1, {{"h", 200}, {"b", 100}, {"d", 7}, {"t", 11.4}, {"r", 9}, {"r1", 4.5}}, iArea(200, 100, 7, 11.4, 9, 4.5),
         100, 200, iPerimeter(200, 100, 7, 11.4, 9, 4.5), 8},
        {"IWithoutRadii", 1, {{"h", 200}, {"b", 100}, {"d", 7}, {"t", 11.4}}, iArea(200, 100, 7, 11.4, 0, 0), 100, 200,
         iPerimeter(200, 100, 7, 11.4, 0, 0)},
        {"Channel", 2, {{"h", 200}, {"b", 73}, {"d", 7}, {"t", 11}, {"r", 11}, {"r1", 5.5}},
         channelArea(200, 73, 7, 11, 11, 5.5), 73, 200, channelPerimeter(200, 73, 7, 11, 11, 5.5), 4},
        {"EqualAngle", 3, {{"b", 100}, {"d", 10}, {"r", 12}}, 10 * (200 - 10) + filletArea(12) - 2 * filletArea(10 / 3.),
         100, 100, 400 - filletCut(12) - 2 * filletCut(10 / 3.), 3},
        {"UnequalAngleWithoutRootRadius", 4, {{"B", 100}, {"b", 80}, {"d", 10}},
         10 * (100 + 80 - 10) - 2 * filletArea(10 / 3.), 80, 100, 2 * (100 + 80) - 2 * filletCut(10 / 3.)},
        {"Pipe", 5, {{"D", 89}, {"t", 4}}, ring(89, 4), 89, 89, M_PI * 89},
        {"Bar", 6, {{"d", 20}}, M_PI / 4 * 20 * 20, 20, 20},
        {"HotRolledH", 7, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t", 13}, {"r", 13}},
         hArea(400, 200, 200, 8, 13, 13) + 4 * filletArea(13), 200, 400, 2 * 400 + 4 * 200 - 2 * 8 - 4 * filletCut(13), 4},
        {"LippedCWithItsUsualBends", 8, {{"h", 200}, {"b", 70}, {"c", 20}, {"t", 3}}, 3 * cC, 70, 200, 2 * cC + 6, 8},
        {"LippedCWithAGivenBend", 8, {{"h", 60}, {"b", 30}, {"c", 10}, {"t", 3}, {"r", 5.2}}, 3 * cGiven, 30, 60,
         2 * cGiven + 6},
        {"LippedZ", 9, {{"h", 250}, {"b", 75}, {"c", 25}, {"t", 3}}, 3 * cZ, 2 * 75 - 3, 250, 2 * cZ + 6, 8},
        {"HotRolledT", 10, {{"h", 200}, {"b", 200}, {"tw", 8}, {"t", 13}, {"r", 13}},
         200 * 13 + (200 - 13) * 8 + 2 * filletArea(13), 200, 200, 2 * 200 + 2 * 200 - 2 * filletCut(13), 2},
        {"WeldedH", 11, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t1", 13}, {"t2", 16}}, hArea(400, 200, 200, 8, 13, 16), 200,
         400, 2 * 400 + 4 * 200 - 2 * 8, 0},
        {"WeldedHUnequal", 12, {{"h", 400}, {"b1", 200}, {"b2", 250}, {"tw", 8}, {"t1", 13}, {"t2", 16}},
         hArea(400, 200, 250, 8, 13, 16), 250, 400},
        {"WeldedBox", 13, {{"b1", 400}, {"b2", 300}, {"t1", 10}, {"t2", 12}}, 400 * 300 - (300 - 20) * (400 - 24), 300,
         400, 0, 0},
        {"WeldedPipe", 14, {{"d", 325}, {"t", 10}}, ring(325, 10), 325, 325},
        {"WeldedCross", 15, {{"h1", 400}, {"b1", 200}, {"tw1", 8}, {"t1", 13}, {"t2", 14}, {"h2", 500}, {"b2", 180},
                             {"tw2", 10}, {"t3", 15}, {"t4", 16}},
         hArea(400, 200, 200, 8, 13, 14) + hArea(500, 180, 180, 10, 15, 16) - 8 * 10, 500, 400},
        {"WeldedT", 16, {{"h", 200}, {"b", 200}, {"t1", 8}, {"t2", 13}}, 200 * 13 + (200 - 13) * 8, 200, 200},
        {"TaperedHAtItsDeepEnd", 17, {{"h1", 400}, {"h2", 600}, {"b", 200}, {"tw", 8}, {"t1", 12}, {"t2", 14}},
         hArea(600, 200, 200, 8, 12, 14), 200, 600},
        {"TaperedTubeAtItsLargeEnd", 18, {{"R1", 400}, {"R2", 600}, {"t", 10}}, ring(600, 10), 600, 600},
        {"TaperedBoxAtItsLargeEnd", 19, {{"B1", 600}, {"B2", 400}, {"b1", 400}, {"b2", 300}, {"t1", 12}, {"t2", 14}},
         600 * 400 - (400 - 24) * (600 - 28), 400, 600},
        {"TwoDepthH", 20, {{"h1", 600}, {"h2", 400}, {"b", 200}, {"tw", 8}, {"t1", 12}, {"t2", 12}},
         hArea(600, 200, 200, 8, 12, 12), 200, 600},
        // Four-arc ovals with the axes and areas of the ellipses.
        {"EllipticTube", 21, {{"R1", 600}, {"R2", 400}, {"r1", 400}, {"r2", 300}, {"t", 10}},
         M_PI / 4 * (600 * 400 - 580 * 380), 600, 400},
        {"UprightEllipticTubeAtItsLargeEnd", 21, {{"R1", 200}, {"R2", 300}, {"r1", 300}, {"r2", 500}, {"t", 8}},
         M_PI / 4 * (300 * 500 - 284 * 484), 300, 500},
        // Hollow sections: the outer corner radius is 2, 2.5 or 3 times the wall by its thickness.
        {"BoxTubeOfThinWall", 1011, {{"h", 200}, {"b", 100}, {"t", 6}}, hollowArea(200, 100, 6, 12), 100, 200,
         2 * (200 + 100) - 4 * filletCut(12), 8},
        {"BoxTubeOfMiddleWall", 1011, {{"h", 200}, {"b", 200}, {"t", 8}}, hollowArea(200, 200, 8, 20), 200, 200,
         2 * (200 + 200) - 4 * filletCut(20)},
        {"BoxTubeOfThickWall", 1011, {{"h", 400}, {"b", 300}, {"t", 12}}, hollowArea(400, 300, 12, 36), 300, 400,
         2 * (400 + 300) - 4 * filletCut(36)},
        {"BoxTubeWithAGivenInnerRadius", 1011, {{"h", 200}, {"b", 100}, {"t", 8}, {"r", 8}}, hollowArea(200, 100, 8, 16),
         100, 200},
        {"BoltBall", 1012, {{"D", 100}}, M_PI / 4 * 100 * 100, 100, 100},
        {"WeldBall", 1013, {{"D", 300}, {"t", 8}}, ring(300, 8), 300, 300},
    };
}

int arcCount(const ndp::CPolygon& polygon) {
    int arcs = 0;
    for (int i = 0; i < polygon.GetLoopCount(); ++i)
        for (int k = 0; k < polygon.GetLoop(i)->GetCount(); ++k)
            arcs += polygon.GetLoop(i)->GetCurve(k)->GetType() == ndp::EnCurveType::Arc;
    return arcs;
}

SKRSectionProperties propertiesOf(int type, const Params& params) {
    QString text;
    EXPECT_TRUE(sectionOutlineText(type, params, text));
    const auto polygon = ParseSectionPolygon(text);
    return polygon ? SectionProperties(*polygon) : SKRSectionProperties{};
}

// Rolled and cold-formed shapes carry their arcs, welded plates none.
TEST(SectionOutline, TextsAndTypesGiveTheirOutlinesAndBadOnesAreRefusedWithWhereAndWhy) {
    for (const OutlineCase& c : cases()) {
        SCOPED_TRACE(c.name);
        QString text, error;
        ASSERT_TRUE(sectionOutlineText(c.type, c.params, text, &error)) << error.toStdString();
        const auto polygon = ParseSectionPolygon(text);
        ASSERT_TRUE(polygon);
        EXPECT_NEAR(polygon->Area(), c.area, c.area * 1e-9);
        if (c.outerPerimeter > 0) {
            EXPECT_NEAR(polygon->GetLoop(0)->Length(), c.outerPerimeter, c.outerPerimeter * 1e-9);
        }
        if (c.arcs >= 0) {
            EXPECT_EQ(arcCount(*polygon), c.arcs);
        }
        const ndp::CBox2d box = polygon->BoundingBox();
        EXPECT_NEAR(box.Min().x, 0.0, 1e-9);
        EXPECT_NEAR(box.Min().y, 0.0, 1e-9);
        EXPECT_NEAR(box.Max().x, c.width, 1e-9);
        EXPECT_NEAR(box.Max().y, c.height, 1e-9);
        EXPECT_EQ(polygon->GetLoop(0)->ClockSign(), 1);
        for (int i = 1; i < polygon->GetLoopCount(); ++i) EXPECT_EQ(polygon->GetLoop(i)->ClockSign(), -1);
        for (int i = 0; i < polygon->GetLoopCount(); ++i) EXPECT_TRUE(polygon->GetLoop(i)->IsClosed());
    }

    // An I-beam about both axes, a channel about its horizontal axis, an equal angle about its
    // diagonal (equal second moments), a Z about its centre (product of inertia not zero).
    auto p = propertiesOf(1, {{"h", 200}, {"b", 100}, {"d", 7}, {"t", 11.4}, {"r", 9}, {"r1", 4.5}});
    EXPECT_NEAR(p.centroid.x, 50, 1e-9);
    EXPECT_NEAR(p.centroid.y, 100, 1e-9);
    EXPECT_NEAR(p.ixy, 0, 1e-6);
    p = propertiesOf(2, {{"h", 200}, {"b", 73}, {"d", 7}, {"t", 11}, {"r", 11}, {"r1", 5.5}});
    EXPECT_NEAR(p.centroid.y, 100, 1e-9);
    EXPECT_GT(p.centroid.x, 7);  // the flanges pull it off the web
    p = propertiesOf(3, {{"b", 100}, {"d", 10}, {"r", 12}});
    EXPECT_NEAR(p.centroid.x, p.centroid.y, 1e-9);
    EXPECT_NEAR(p.ix, p.iy, 1e-9 * p.ix);
    p = propertiesOf(9, {{"h", 250}, {"b", 75}, {"c", 25}, {"t", 3}});
    EXPECT_NEAR(p.centroid.x, (2 * 75 - 3) / 2.0, 1e-9);
    EXPECT_NEAR(p.centroid.y, 125, 1e-9);
    EXPECT_GT(std::abs(p.ixy), 1e5);

    // The cold-formed bend radius is the one the area needs.
    const double area = propertiesOf(8, {{"h", 60}, {"b", 30}, {"c", 10}, {"t", 3}, {"r", 5.2}}).area;
    double radius = 0;
    ASSERT_TRUE(coldFormedBendRadius(60, 30, 10, 3, area, &radius));
    EXPECT_NEAR(radius, 5.2, 1e-9);
    // An area beyond the sharp-cornered one needs a negative radius.
    EXPECT_FALSE(coldFormedBendRadius(60, 30, 10, 3, 3 * (60 + 60 + 20 - 12) + 1, &radius));

    // A catalogue row: the zero dimensions of other families go, the weight gives the bend.
    const Params row{{"h", 60}, {"b", 30}, {"c", 10}, {"t", 3}, {"d", 0}, {"r", 0}, {"D", 0}};
    const Params drawn = catalogueOutlineParams(8, row, area * kSteelKgPerMetrePerMm2);
    EXPECT_EQ(drawn.keys(), (QStringList{"b", "c", "h", "r", "t"}));
    EXPECT_NEAR(drawn.value("r"), 5.2, 1e-9);
    // A weight that would need an unusual bend keeps the usual one.
    EXPECT_FALSE(catalogueOutlineParams(8, row, 1.05 * area * kSteelKgPerMetrePerMm2).contains("r"));
    EXPECT_FALSE(catalogueOutlineParams(1, {{"h", 200}, {"r", 9}, {"D", 0}}, 27.9).contains("D"));

    // Values that make no section, or radii that do not fit, are refused with a reason.
    const struct {
        int type;
        Params params;
        const char* reason;  // a part of the refusal, where the case checks it
    } refusals[] = {
        {11, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t1", 13}}, "t2"},
        {11, {{"h", 400}, {"b", 8}, {"tw", 8}, {"t1", 13}, {"t2", 13}}, ""},
        {11, {{"h", 20}, {"b", 200}, {"tw", 8}, {"t1", 13}, {"t2", 13}}, ""}, {5, {{"D", 8}, {"t", 4}}, ""},
        {5, {{"D", 89}, {"t", -4}}, ""}, {6, {{"d", std::nan("")}}, ""},
        {1, {{"h", 200}, {"b", 400}, {"d", 7}, {"t", 5}}, ""},  // a flange so steep its tip has no thickness
        {999, {{"h", 1}}, "999"},
        {7, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t", 13}, {"r", 120}}, "type 7"},  // root radius past the outstand
        {7, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t", 13}, {"r", 120}}, "do not fit"},
        {8, {{"h", 200}, {"b", 70}, {"c", 8}, {"t", 3}, {"r", 9}}, "do not fit"},  // bends need more than the lip
        {3, {{"b", 100}, {"d", 10}, {"r", -1}}, "radius r "},
    };
    for (const auto& r : refusals) {
        SCOPED_TRACE(r.type);
        QString text = QStringLiteral("unchanged"), error;
        EXPECT_FALSE(sectionOutlineText(r.type, r.params, text, &error));
        EXPECT_TRUE(error.contains(QLatin1String(r.reason))) << error.toStdString();
        EXPECT_EQ(text, QStringLiteral("unchanged"));
    }

    // Outline texts: loops, curves of the first loop, area, whether the first loop closes, and the turning
    // sense of the first and the last loop; outer loops counter-clockwise, holes clockwise, whatever the
    // text.
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

    // Curves have the kinds and points of their records.
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

    // Unreadable texts name the loop, record and field, and read ones come back as they were.
    // A text that reads gives an outline whose text is the same and whose loops draw the polygon the
    // text draws.
    const struct { const char* text; const char* reason; } texts[] = {  // reason empty: read
        {"0,0,0,0;10,0,0,0;10,10,0,0", ""}, {"5,5,5,50|||5,5,2,50", ""},
        {"0,0,0,0;20,0,0,0;20,10,5,1;10,10,0,0|||5,5,2,50", ""},
        {"0,0,0,0;10,0,0,0;10,10,0,0|||1,1,0,0;2,x,0,0", "loop 2, record 2: 'x' is not a number"},
        {"0,0,0,0;10,0,0,7;10,10,0,0", "loop 1, record 2: '7' is no segment kind"},
        {"0,0,0,0;10,0,0,50;10,10,0,0", "loop 1, record 2: '50' is no segment kind"},
        {"0,0,0;10,0,0,0", "loop 1, record 1: '' is no segment kind"},
        {"", "loop 1, the loop is empty"},
    };
    for (const auto& c : texts) {
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

    // The outline check refuses every outline that is not one finite region.
    const QString rectangle = QStringLiteral("0,0,0,0;100,0,0,0;100,50,0,0;0,50,0,0");
    const struct { QString text; const char* refusal; } outlines[] = {  // refusal: empty for a valid outline
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
    for (const auto& outline : outlines) {
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

using Corners = QVector<SKROutlineCorner>;

std::unique_ptr<ndp::CPolygon> rounded(const Corners& corners) {
    QVector<SKROutlineVertex> loop;
    QString error;
    EXPECT_TRUE(filletCorners(corners, loop, &error)) << error.toStdString();
    return ParseSectionPolygon(outlineLoopText(loop));
}

int count(const ndp::CLoop& loop, ndp::EnCurveType type) {
    int n = 0;
    for (int i = 0; i < loop.GetCount(); ++i) n += loop.GetCurve(i)->GetType() == type;
    return n;
}

// What a 90-degree fillet of radius r cuts off a corner.
double quarterCut(double r) { return (1 - M_PI / 4) * r * r; }

TEST(OutlineFillet, ARectanglesRoundedCornersLoseFourPiecesAndConcaveCornersGainWhatConvexOnesLose) {
    const double w = 120, h = 80, r = 15;
    const auto polygon = rounded({{0, 0, r}, {w, 0, r}, {w, h, r}, {0, h, r}});
    ASSERT_TRUE(polygon);
    const ndp::CLoop& loop = *polygon->GetLoop(0);
    EXPECT_NEAR(polygon->Area(), w * h - (4 - M_PI) * r * r, 1e-9);
    EXPECT_NEAR(loop.Length(), 2 * (w + h) - (8 - 2 * M_PI) * r, 1e-9);
    EXPECT_EQ(count(loop, ndp::EnCurveType::Arc), 4);
    EXPECT_EQ(count(loop, ndp::EnCurveType::Line), 4);
    EXPECT_TRUE(loop.IsClosed());
    const ndp::CBox2d box = polygon->BoundingBox();
    EXPECT_NEAR(box.Max().x - box.Min().x, w, 1e-9);
    EXPECT_NEAR(box.Max().y - box.Min().y, h, 1e-9);
    for (int i = 0; i < loop.GetCount(); ++i) {
        const auto* arc = dynamic_cast<const ndp::CArc2d*>(loop.GetCurve(i));
        if (!arc) continue;
        EXPECT_NEAR(arc->Radius(), r, 1e-9);
        EXPECT_NEAR(arc->Sweep(), M_PI / 2, 1e-9);  // a left turn of a counter-clockwise loop
    }

    // Concave corners gain what convex corners lose: an L of legs 100 and thickness 10, its toe
    // (corner 2) convex with a radius of 4, its inner corner, the root (corner 3), concave with 12.
    const Corners filleted{{0, 0}, {100, 0}, {100, 10, 4}, {10, 10, 12}, {10, 100}, {0, 100}};
    const auto lShape = rounded(filleted);
    ASSERT_TRUE(lShape);
    EXPECT_NEAR(lShape->Area(), 1900 + quarterCut(12) - quarterCut(4), 1e-9);
    // The concave fillet turns the other way from the convex one.
    QVector<SKROutlineVertex> vertices;
    ASSERT_TRUE(filletCorners(filleted, vertices));
    QVector<int> arcKinds;
    for (const SKROutlineVertex& v : vertices)
        if (v.kind != 0) arcKinds << v.kind;
    EXPECT_EQ(arcKinds, (QVector<int>{1, 2}));
}

TEST(OutlineFillet, CornersOfAnyAngleAreCutBackByRTanHalfTheTurnAndRadiiThatDoNotFitAreRefused) {
    // An equilateral triangle turns through 120 degrees at each corner.
    const double s = 100, r = 10, turn = 2 * M_PI / 3;
    const auto polygon = rounded({{0, 0, r}, {s, 0, r}, {s / 2, s * std::sqrt(3) / 2, r}});
    ASSERT_TRUE(polygon);
    // The corner (s / 2, s sqrt(3) / 2) is written with twelve digits.
    EXPECT_NEAR(polygon->Area(), std::sqrt(3) / 4 * s * s - 3 * r * r * (std::tan(turn / 2) - turn / 2), 1e-8);
    EXPECT_NEAR(polygon->GetLoop(0)->Length(), 3 * s - 3 * (2 * r * std::tan(turn / 2) - r * turn), 1e-9);
    // A corner on a straight run needs no arc, whatever its radius.
    const auto straight = rounded({{0, 0}, {50, 0, 30}, {100, 0}, {100, 20}, {0, 20}});
    ASSERT_TRUE(straight);
    EXPECT_EQ(count(*straight->GetLoop(0), ndp::EnCurveType::Arc), 0);
    EXPECT_NEAR(straight->Area(), 2000, 1e-9);

    // Radii that do not fit are refused naming the corners.
    QVector<SKROutlineVertex> loop{{1, 2, 0, 0}};
    const QVector<SKROutlineVertex> before = loop;
    QString error;
    // Two fillets of 30 on an edge 50 long.
    EXPECT_FALSE(filletCorners({{0, 0, 30}, {50, 0, 30}, {50, 100}, {0, 100}}, loop, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("corner 0 (0, 0)"))) << error.toStdString();
    EXPECT_TRUE(error.contains(QStringLiteral("corner 1 (50, 0)"))) << error.toStdString();
    EXPECT_TRUE(error.contains(QStringLiteral("do not fit"))) << error.toStdString();
    // Just fitting is accepted.
    EXPECT_TRUE(filletCorners({{0, 0, 25}, {50, 0, 25}, {50, 100}, {0, 100}}, loop, &error));
    loop = before;

    const struct { const char* why; QVector<SKROutlineCorner> corners; const char* reason; } refused[] = {
        {"negative radius", {{0, 0}, {10, 0, -1}, {10, 10}}, "corner 1"},
        {"radius not a number", {{0, 0}, {10, 0, std::nan("")}, {10, 10}}, "corner 1"},
        {"two corners on one point", {{0, 0}, {10, 0}, {10, 0}, {0, 10}}, "corner 1"},
        {"folding back", {{0, 0}, {10, 0, 1}, {0, 0.0}, {0, 10}}, "corner 1"},
        {"too few corners", {{0, 0}, {10, 0}}, "three corners"},
        {"x not finite", {{std::nan(""), 0}, {10, 0}, {10, 10}}, "corner 0 is not a finite point"},
        {"y not finite", {{0, HUGE_VAL}, {10, 0}, {10, 10}}, "corner 0 is not a finite point"},
    };
    for (const auto& c : refused) {
        SCOPED_TRACE(c.why);
        error.clear();
        EXPECT_FALSE(filletCorners(c.corners, loop, &error));
        EXPECT_TRUE(error.contains(QLatin1String(c.reason))) << error.toStdString();
        EXPECT_EQ(loop.size(), before.size());
        EXPECT_EQ(loop.first().x, before.first().x);
    }
}

QString polygonText(std::initializer_list<std::pair<double, double>> points) {
    QStringList records;
    for (const auto& p : points) records << QStringLiteral("%1,%2,0,0").arg(p.first, 0, 'g', 17).arg(p.second, 0, 'g', 17);
    return records.join(QLatin1Char(';'));
}

QString rectangleText(double b, double h) { return polygonText({{0, 0}, {b, 0}, {b, h}, {0, h}}); }

// A doubly symmetric I of depth h, flange width b, web tw and flange tf, sharp-cornered.
QString iText(double h, double b, double tw, double tf) {
    const double l = (b - tw) / 2;
    return polygonText({{0, 0}, {b, 0}, {b, tf}, {l + tw, tf}, {l + tw, h - tf}, {b, h - tf}, {b, h}, {0, h},
                        {0, h - tf}, {l, h - tf}, {l, tf}, {0, tf}});
}

// A channel of depth h, flange width b and thickness t throughout, web on the left.
QString channelText(double h, double b, double t) {
    return polygonText({{0, 0}, {b, 0}, {b, t}, {t, t}, {t, h - t}, {b, h - t}, {b, h}, {0, h}});
}

QString circleText(double r) { return QStringLiteral("%1,%1,%1,50").arg(r); }
QString ringText(double r, double t) { return QStringLiteral("%1,%1,%1,50|||%1,%1,%2,50").arg(r).arg(r - t); }

SKRSectionFigures figuresOf(const QString& text) {
    SKRSectionFigures f;
    QString error;
    EXPECT_TRUE(SectionFigures(text, f, &error)) << error.toStdString();
    return f;
}

void expectRelative(double actual, double expected, double tolerance, const std::string& what) {
    EXPECT_NEAR(actual, expected, tolerance * std::fabs(expected)) << what;
}

struct ExactCase { const char* name; QString text; double area, ix, iy, wx, wy, zx, zy; };

TEST(SectionFigures, ModuliAreExactAnEqualAngleTurnsFortyFiveDegreesAndChannelAndIWarpingMatchThinWalledTheory) {
    const double r = 50, ro = 60, ri = 50, cI = kPi * std::pow(r, 4) / 4;
    const double ringI = kPi * (std::pow(ro, 4) - std::pow(ri, 4)) / 4;
    const double ringZ = 4 * (std::pow(ro, 3) - std::pow(ri, 3)) / 3;
    // T: flange 100 x 10 on a stem 10 x 90; the plastic axis lies 0.5 into the flange.
    const double tArea = 1900, tYc = (1000 * 95 + 900 * 45) / 1900.0;
    const double tIx = 100 * 1000 / 12.0 + 1000 * std::pow(95 - tYc, 2) + 10 * std::pow(90, 3) / 12 +
                       900 * std::pow(45 - tYc, 2);
    const double tIy = 10 * std::pow(100, 3) / 12 + 90 * 1000 / 12.0;
    const double iIx = (200 * std::pow(400, 3) - 192 * std::pow(374, 3)) / 12;
    const double iIy = 2 * 13 * std::pow(200, 3) / 12 + 374 * std::pow(8, 3) / 12;
    const ExactCase cases[] = {
        {"rectangle", rectangleText(100, 40), 4000, 100 * 64000 / 12.0, 40 * 1e6 / 12, 100 * 1600 / 6.0,
         40 * 1e4 / 6, 100 * 1600 / 4.0, 40 * 1e4 / 4},
        {"I", iText(400, 200, 8, 13), 8192, iIx, iIy, iIx / 200, iIy / 100, 200 * 13 * 387 + 8 * 374 * 374 / 4.0,
         2 * 13 * 40000 / 4.0 + 374 * 64 / 4.0},
        {"T", polygonText({{45, 0}, {55, 0}, {55, 90}, {100, 90}, {100, 100}, {0, 100}, {0, 90}, {45, 90}}), tArea,
         tIx, tIy, tIx / tYc, tIy / 50, 900 * 45.5 + 100 * 0.5 * 0.25 + 100 * 9.5 * 4.75, 27250},
        {"circle", circleText(r), kPi * r * r, cI, cI, cI / r, cI / r, 4 * std::pow(r, 3) / 3, 4 * std::pow(r, 3) / 3},
        {"ring", QStringLiteral("60,60,60,50|||60,60,50,50"), kPi * (ro * ro - ri * ri), ringI, ringI, ringI / ro,
         ringI / ro, ringZ, ringZ},
    };
    for (const ExactCase& c : cases) {
        SCOPED_TRACE(c.name);
        const skr::geometry::SKRExactFigures f = figuresOf(c.text).exact;
        expectRelative(f.area, c.area, 1e-12, "A");
        expectRelative(f.ix, c.ix, 1e-12, "Ix");
        expectRelative(f.iy, c.iy, 1e-12, "Iy");
        expectRelative(f.wx(), c.wx, 1e-12, "Wx");
        expectRelative(f.wy(), c.wy, 1e-12, "Wy");
        expectRelative(f.zx, c.zx, 1e-10, "Zx");
        expectRelative(f.zy, c.zy, 1e-10, "Zy");
        expectRelative(f.massPerMetre, 0.00785 * c.area, 1e-12, "mass");
    }

    // The principal axes of an equal angle lie at forty-five degrees.
    const skr::geometry::SKRExactFigures f =
        figuresOf(polygonText({{0, 0}, {100, 0}, {100, 10}, {10, 10}, {10, 100}, {0, 100}})).exact;
    EXPECT_NEAR(f.alpha, 45.0, 1e-9);
    // About the symmetry axis and across it; their sum is the polar moment.
    expectRelative(f.i1, f.ix - f.ixy, 1e-12, "I1");
    expectRelative(f.i2, f.ix + f.ixy, 1e-12, "I2");
    EXPECT_LT(f.ixy, 0.0);
    // Axis 1 runs along the symmetry line; the farthest fibres from it are the leg ends' outer
    // corners, 100 / sqrt(2) away.
    expectRelative(f.w1, f.i1 / (100 / std::sqrt(2.0)), 1e-12, "W1");

    // Channel: the shear centre lies e = 3 b^2 / (6 b + h) behind the web's mid-line (centre-line
    // dimensions b and h, one thickness throughout).
    const double h = 200, b = 75, t = 3;
    const SKRSectionFigures c = figuresOf(channelText(h, b, t));
    const double bc = b - t / 2, hc = h - t;
    const double e = 3 * bc * bc / (6 * bc + hc);
    expectRelative(c.exact.xc + c.warping.xs, t / 2 - e, 0.02, "channel shear centre x");
    EXPECT_NEAR(c.warping.ys, 0.0, 1e-4 * h);
    // Its warping constant about that shear centre: Iw = t b^3 h^2 / 12 (3 b + 2 h) / (6 b + h).
    expectRelative(c.warping.iw, t * bc * bc * bc * hc * hc / 12 * (3 * bc + 2 * hc) / (6 * bc + hc), 0.02,
                   "channel warping constant");

    // I: Iw = If h^2 / 2, If a flange's second moment about the web, h between flange mid-lines.
    const SKRSectionFigures i = figuresOf(iText(400, 200, 8, 13));
    const double flange = 13 * std::pow(200, 3) / 12;
    expectRelative(i.warping.iw, flange * 387 * 387 / 2, 0.02, "I warping constant");
    // The mesh is not symmetric, so these are zero to the discretisation only.
    EXPECT_NEAR(i.warping.xs, 0.0, 1e-4 * 400);
    EXPECT_NEAR(i.warping.ys, 0.0, 1e-4 * 400);
    EXPECT_NEAR(i.warping.betaX, 0.0, 1e-4 * 400) << "no monosymmetry in a symmetric I";
}

// The torsion constant of a b x t rectangle by its series (Timoshenko).
double rectangleTorsion(double b, double t) {
    double sum = 0;
    for (int n = 1; n < 200; n += 2) sum += std::tanh(n * kPi * b / (2 * t)) / std::pow(n, 5);
    return b * std::pow(t, 3) / 3 * (1 - 192 / std::pow(kPi, 5) * t / b * sum);
}

// Rolled I flanges slope 1:6, thick at the root and thin at the toe: a warping constant from
// an even flange of the mean thickness (as tables figure it) is some 20 % high. Thin-walled
// theory along the sloped mid-line of the flanges, with their varying thickness, gives it.
TEST(SectionFigures, WarpingOfASlopedIFollowsItsMidLineShearAreasAreFiveSixthsAndBadOutlinesAreRefused) {
    const double h = 200, b = 100, d = 7, t = 11.4;  // I20a without its radii
    const double rise = (b - d) / 2 / 6 / 2;
    const double tip = t - rise, root = t + rise, l = (b - d) / 2;
    const SKRSectionFigures i = figuresOf(polygonText({{0, 0}, {b, 0}, {b, tip}, {l + d, root}, {l + d, h - root},
                                                       {b, h - tip}, {b, h}, {0, h}, {0, h - tip}, {l, h - root},
                                                       {l, root}, {0, tip}}));
    // Sectorial coordinate about the centre along a flange's mid-line y(x) = -h/2 + thickness/2
    // (x from the web): d omega = (x dy/dx - y) dx; Iw = 4 * integral of omega^2 thickness dx.
    auto thickness = [&](double x) { return x < d / 2 ? root : root - (root - tip) * (x - d / 2) / l; };
    const double slope = -(root - tip) / l / 2;  // dy/dx of the mid-line beyond the web
    const int steps = 20000;
    const double dx = b / 2 / steps;
    double omega = 0, thinWalled = 0;
    for (int k = 0; k < steps; ++k) {
        const double x = (k + 0.5) * dx;
        const double y = -h / 2 + thickness(x) / 2;
        omega += (x * (x < d / 2 ? 0.0 : slope) - y) * dx;
        thinWalled += 4 * omega * omega * thickness(x) * dx;
    }
    expectRelative(i.warping.iw, thinWalled, 0.02, "Iw of a sloped-flange I");
    const double even = t * b * b * b / 12 * (h - t) * (h - t) / 2;
    EXPECT_LT(i.warping.iw, 0.85 * even) << "an even flange of the mean thickness overstates it";

    // The shear area of a rectangle without Poisson's effect is five sixths of it.
    const std::unique_ptr<ndp::CPolygon> polygon = skr::geometry::ParseSectionPolygon(rectangleText(60, 20));
    skr::geometry::SKRSectionMesh mesh;
    ASSERT_TRUE(skr::geometry::MeshSection(*polygon, 2.0, mesh));
    skr::geometry::SKRWarpingFigures w;
    double area = 0;
    ASSERT_TRUE(skr::geometry::SolveWarping(mesh, 0.0, w, nullptr, &area));
    expectRelative(area, 1200, 1e-9, "mesh area");
    expectRelative(w.asx, 1200 * 5.0 / 6, 0.005, "Asx");
    expectRelative(w.asy, 1200 * 5.0 / 6, 0.005, "Asy");

    // Bad outlines are refused with the reason.
    SKRSectionFigures f;
    QString error;
    EXPECT_FALSE(SectionFigures(QString(), f, &error));
    EXPECT_FALSE(error.isEmpty());
    error.clear();
    EXPECT_FALSE(SectionFigures(polygonText({{0, 0}, {10, 10}, {10, 0}, {0, 10}}), f, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("crosses itself"))) << error.toStdString();
}

// Monosymmetry of an I with unequal flanges: beta_x = (1/Ix) integral of y (x^2 + y^2) dA - 2 ys,
// the integral exact over the three plates, the shear centre where thin-walled theory puts it
// (between the flanges' mid-lines in the ratio of their second moments).
TEST(SectionFigures, MonosymmetryOfAnUnequalIAndTorsionOfRectanglesCirclesAndTubes) {
    const double h = 400, b1 = 250, t1 = 16, b2 = 150, t2 = 12, tw = 8;  // wide flange on top
    const double l1 = (b1 - tw) / 2, l2 = (b2 - tw) / 2, o2 = (b1 - b2) / 2;
    const SKRSectionFigures f = figuresOf(polygonText({{o2, 0}, {o2 + b2, 0}, {o2 + b2, t2}, {o2 + l2 + tw, t2},
                                                       {l1 + tw, h - t1}, {b1, h - t1}, {b1, h}, {0, h},
                                                       {0, h - t1}, {l1, h - t1}, {o2 + l2, t2}, {o2, t2}}));
    const double xc = f.exact.xc, yc = f.exact.yc;
    // Integral of y (x^2 + y^2) over a plate [x0, x1] x [y0, y1], x and y from the centroid.
    auto plate = [&](double x0, double x1, double y0, double y1) {
        x0 -= xc, x1 -= xc, y0 -= yc, y1 -= yc;
        return (std::pow(x1, 3) - std::pow(x0, 3)) / 3 * (y1 * y1 - y0 * y0) / 2 +
               (x1 - x0) * (std::pow(y1, 4) - std::pow(y0, 4)) / 4;
    };
    const double cubic = plate(0, b1, h - t1, h) + plate(o2, o2 + b2, 0, t2) + plate(l1, l1 + tw, t2, h - t1);
    const double top = t1 * std::pow(b1, 3) / 12, bottom = t2 * std::pow(b2, 3) / 12;
    const double hf = h - t1 / 2 - t2 / 2;
    const double ys = h - t1 / 2 - hf * bottom / (top + bottom) - yc;
    EXPECT_NEAR(f.warping.ys, ys, 0.01 * hf) << "shear centre";
    expectRelative(f.warping.betaX, cubic / f.exact.ix - 2 * ys, 0.02, "beta_x");
    EXPECT_NEAR(f.warping.betaY, 0.0, 1e-4 * h) << "symmetric about y";

    // Torsion of rectangles, circles and thin tubes matches the elasticity solution.
    for (double ratio : {1.0, 2.0, 4.0, 10.0}) {
        SCOPED_TRACE(ratio);
        const SKRSectionFigures f = figuresOf(rectangleText(10 * ratio, 10));
        expectRelative(f.warping.j, rectangleTorsion(10 * ratio, 10), 0.005, "J");
        EXPECT_NEAR(f.warping.xs, 0.0, 1e-6 * ratio * 10) << "shear centre at the centroid";
        EXPECT_NEAR(f.warping.ys, 0.0, 1e-6 * ratio * 10) << "shear centre at the centroid";
        EXPECT_TRUE(f.warping.converged);
    }
    const double r = 20;
    const SKRSectionFigures circle = figuresOf(circleText(r));
    expectRelative(circle.warping.j, kPi * std::pow(r, 4) / 2, 0.005, "J of a circle");
    EXPECT_NEAR(circle.warping.iw, 0.0, 1e-6 * circle.warping.j * r * r) << "a circle does not warp";
    // A thin tube follows Bredt.
    const double t = 2, rm = 50 - t / 2, enclosed = kPi * rm * rm;
    expectRelative(figuresOf(ringText(50, t)).warping.j, 4 * enclosed * enclosed * t / (2 * kPi * rm), 0.01, "J");
}

CLoop* polyline(std::initializer_list<CPoint2d> points) {
    auto* loop = new CLoop;
    const std::vector<CPoint2d> p(points);
    for (size_t i = 0; i < p.size(); ++i) loop->AddCurve(new CLine2d(p[i], p[(i + 1) % p.size()]));
    return loop;
}

CPolygon polygonOf(std::initializer_list<CLoop*> loops) {
    CPolygon polygon;
    for (CLoop* loop : loops) polygon.AddLoop(loop, true);
    return polygon;
}

void expectClose(double actual, double expected, double tolerance, const char* what) {
    EXPECT_NEAR(actual, expected, tolerance * std::max(1.0, std::abs(expected))) << what;
}

struct Expected { double area, cx, cy, ix, iy, ixy; };

void expectProperties(const SKRSectionProperties& p, const Expected& e, double tolerance = 1e-12) {
    expectClose(p.area, e.area, tolerance, "area");
    expectClose(p.centroid.x, e.cx, tolerance, "centroid x");
    expectClose(p.centroid.y, e.cy, tolerance, "centroid y");
    expectClose(p.ix, e.ix, tolerance, "ix");
    expectClose(p.iy, e.iy, tolerance, "iy");
    EXPECT_NEAR(p.ixy, e.ixy, tolerance * std::max(1.0, std::sqrt(e.ix * e.iy))) << "ixy";
}

// A half disc of radius r on the diameter from (-r, 0) to (r, 0), bulging upwards.
CLoop* halfDisc(double r) {
    auto* loop = new CLoop;
    loop->AddCurve(new CLine2d({-r, 0}, {r, 0}));
    loop->AddCurve(new CArc2d({r, 0}, {-r, 0}, r, 1));
    return loop;
}

}  // namespace

TEST(SectionProperties, CirclesRingsHalfDiscsAndSlotsHaveTheTextbookMoments) {
    const double R = 44.5, ri = 40.5, cx = 1000, cy = -500;
    SKRSectionProperties p = SectionProperties(polygonOf({circle(cx, cy, R)}));
    expectProperties(p, {kPi * R * R, cx, cy, kPi * std::pow(R, 4) / 4, kPi * std::pow(R, 4) / 4, 0});
    EXPECT_NEAR(p.box.Min().x, cx - R, 1e-12);
    EXPECT_NEAR(p.box.Max().y, cy + R, 1e-12);

    // The hole's turning sense does not matter: it is taken away either way.
    for (bool reverseHole : {false, true}) {
        CLoop* hole = circle(cx, cy, ri);
        if (reverseHole) hole->Reverse();
        p = SectionProperties(polygonOf({circle(cx, cy, R), hole}));
        const double i = kPi * (std::pow(R, 4) - std::pow(ri, 4)) / 4;
        expectProperties(p, {kPi * (R * R - ri * ri), cx, cy, i, i, 0});
        EXPECT_NEAR(p.perimeter, 2 * kPi * (R + ri), 1e-12);
        EXPECT_NEAR(p.outerPerimeter, 2 * kPi * R, 1e-12);
    }

    // A half disc has its centroid at 4r / 3 pi, and a slot is a rectangle and two of them.
    const double r = 50, L = 200;
    const double half = kPi * r * r / 2, offset = 4 * r / (3 * kPi), r4 = std::pow(r, 4);
    const double halfOwn = kPi * r4 / 8 - half * offset * offset;  // a half disc about its own centroid
    p = SectionProperties(polygonOf({halfDisc(r)}));
    expectProperties(p, {half, 0, offset, halfOwn, kPi * r4 / 8, 0});
    EXPECT_NEAR(p.perimeter, 2 * r + kPi * r, 1e-12);
    EXPECT_NEAR(p.box.Max().y, r, 1e-12);

    // A slot: straight sides of length L, half-circle ends of radius r, its centre at (L / 2, r).
    p = SectionProperties(polygonOf({slot(L, r, r)}));
    const double iy = 2 * r * L * L * L / 12 + 2 * (halfOwn + half * std::pow(L / 2 + offset, 2));
    expectProperties(p, {2 * r * L + kPi * r * r, L / 2, r, L * std::pow(2 * r, 3) / 12 + kPi * r4 / 4, iy, 0});
    EXPECT_NEAR(p.perimeter, 2 * L + 2 * kPi * r, 1e-12);
}

TEST(SectionProperties, ISectionAndVeryFlatArcsAgreeWithTheirPlatesAndSegmentsWhereverTheyAre) {
    const double h = 400, b = 200, tw = 8, t = 13;
    const double ix = (b * h * h * h - (b - tw) * std::pow(h - 2 * t, 3)) / 12;
    const double iy = (2 * t * b * b * b + (h - 2 * t) * tw * tw * tw) / 12;
    const double area = 2 * b * t + (h - 2 * t) * tw;
    for (double shift : {0.0, 1e6}) {
        SCOPED_TRACE(shift);
        const double x = shift, y = -shift, c = b / 2;
        const SKRSectionProperties p = SectionProperties(polygonOf({polyline(
            {{x, y}, {x + b, y}, {x + b, y + t}, {x + c + tw / 2, y + t}, {x + c + tw / 2, y + h - t},
             {x + b, y + h - t}, {x + b, y + h}, {x, y + h}, {x, y + h - t}, {x + c - tw / 2, y + h - t},
             {x + c - tw / 2, y + t}, {x, y + t}})}));
        expectProperties(p, {area, x + c, y + h / 2, ix, iy, 0}, 1e-10);
    }

    // Very flat arcs keep their small segment.
    // A 100 x 20 plate whose top edge is an arc of radius 1e7 (it rises 0.000125 mm): the segment
    // over the chord is nearly a parabolic one, area 4/3 w s and second moment 4/15 s w^3 about
    // the vertical axis, w the half chord and s the rise; the next terms are 1e-11 smaller.
    const double w = 50, R = 1e7, s = w * w / (R + std::sqrt(R * R - w * w));
    for (int arcType : {1, 2}) {
        SCOPED_TRACE(arcType);
        // Running right to left over the top, a counter-clockwise arc bulges out, a clockwise one in.
        const double sign = arcType == 1 ? 1 : -1;
        for (double shift : {0.0, 5e4}) {
            auto* loop = new CLoop;
            loop->AddCurve(new CLine2d({shift, shift}, {shift + 100, shift}));
            loop->AddCurve(new CLine2d({shift + 100, shift}, {shift + 100, shift + 20}));
            loop->AddCurve(new CArc2d({shift + 100, shift + 20}, {shift, shift + 20}, R, arcType));
            loop->AddCurve(new CLine2d({shift, shift + 20}, {shift, shift}));
            const SKRSectionProperties p = SectionProperties(polygonOf({loop}));
            const double segment = 4.0 / 3 * w * s;
            EXPECT_NEAR(p.area - 2000, sign * segment, 1e-9 * segment);
            EXPECT_NEAR(p.centroid.x - shift, 50, 1e-9);
            EXPECT_NEAR(p.iy - 20 * 1e6 / 12, sign * 4.0 / 15 * s * w * w * w, 1e-6 * 4.0 / 15 * s * w * w * w);
            // The segment lies above the chord's line or below it; its first moment about that
            // line, 8/15 w s^2, adds either way.
            const double yc = (2000 * 10 + sign * segment * 20 + 8.0 / 15 * w * s * s) / p.area;
            EXPECT_NEAR(p.centroid.y - shift, yc, 1e-9);
        }
    }
}

TEST(SectionProperties, CircularSegmentsAndArcsOfEveryTypeHaveTheirClosedFormMoments) {
    // The segment of half-angle alpha over a horizontal chord, circle centred on the origin:
    // sector less the triangle at the centre. Openings on both sides of the flat-arc threshold
    // and a segment larger than a half disc. The expected figures are worked out in extended
    // precision: for small openings the closed forms cancel most of their digits.
    const long double r = 80;
    for (long double alpha : {0.2L, 0.45L, 0.55L, 1.2L, 2.5L}) {
        SCOPED_TRACE(static_cast<double>(alpha));
        const long double s = std::sin(alpha), c = std::cos(alpha);
        const CPoint2d left{static_cast<double>(-r * s), static_cast<double>(r * c)};
        const CPoint2d right{static_cast<double>(r * s), static_cast<double>(r * c)};
        auto* loop = new CLoop;
        loop->AddCurve(new CLine2d(left, right));
        loop->AddCurve(new CArc2d(right, left, static_cast<double>(r), alpha < kPi / 2 ? 1 : 3));
        const SKRSectionProperties p = SectionProperties(polygonOf({loop}));
        const long double area = r * r * (alpha - s * c);
        const long double yc = 2.0L / 3 * r * r * r * s * s * s / area;
        const long double yy = r * r * r * r * ((alpha + s * c) / 4 - s * c * c * c / 2);
        const long double xx = r * r * r * r * ((alpha - s * c) / 4 - s * s * s * c / 6);
        expectProperties(p, {static_cast<double>(area), 0, static_cast<double>(yc),
                             static_cast<double>(yy - area * yc * yc), static_cast<double>(xx), 0},
                         1e-11);
    }

    // Major arcs and arcs of every type add up to their circle.
    // A circle of radius 10 about the origin split at two points into a minor and a major arc,
    // written with the four arc types in both directions: 1 and 3 counter-clockwise, 2 and 4 clockwise.
    const CPoint2d a{10, 0}, b{0, 10};
    for (const bool clockwise : {false, true}) {
        auto* loop = new CLoop;
        loop->AddCurve(new CArc2d(clockwise ? b : a, clockwise ? a : b, 10, clockwise ? 2 : 1));  // minor
        loop->AddCurve(new CArc2d(clockwise ? a : b, clockwise ? b : a, 10, clockwise ? 4 : 3));  // major
        const double i = kPi * 1e4 / 4;
        expectProperties(SectionProperties(polygonOf({loop})), {kPi * 100, 0, 0, i, i, 0});
    }
}
