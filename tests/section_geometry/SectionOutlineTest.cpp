// Outlines of the section types: each type's drawing has the area, the outer perimeter and the
// bounding box of its dimensions, fillets, bends and sloped flanges included, runs
// counter-clockwise outside and clockwise round its holes, and values that make no section or
// radii that do not fit are refused.
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include "ndp/NDPPolygon.h"
#include "section_geometry/SKRSectionProperties.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace skr::geometry;

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

}  // namespace

// Rolled and cold-formed shapes carry their arcs, welded plates none.
TEST(SectionOutline, EveryTypeHasTheAreaPerimeterBoxAndArcsOfItsDimensions) {
    for (const OutlineCase& c : cases()) {
        SCOPED_TRACE(c.name);
        QString text, error;
        ASSERT_TRUE(sectionOutlineText(c.type, c.params, text, &error)) << error.toStdString();
        const auto polygon = ParseSectionPolygon(text);
        ASSERT_TRUE(polygon);
        EXPECT_NEAR(polygon->Area(), c.area, c.area * 1e-9);
        if (c.outerPerimeter > 0)
            EXPECT_NEAR(polygon->GetLoop(0)->Length(), c.outerPerimeter, c.outerPerimeter * 1e-9);
        if (c.arcs >= 0) EXPECT_EQ(arcCount(*polygon), c.arcs);
        const ndp::CBox2d box = polygon->BoundingBox();
        EXPECT_NEAR(box.Min().x, 0.0, 1e-9);
        EXPECT_NEAR(box.Min().y, 0.0, 1e-9);
        EXPECT_NEAR(box.Max().x, c.width, 1e-9);
        EXPECT_NEAR(box.Max().y, c.height, 1e-9);
        EXPECT_EQ(polygon->GetLoop(0)->ClockSign(), 1);
        for (int i = 1; i < polygon->GetLoopCount(); ++i) EXPECT_EQ(polygon->GetLoop(i)->ClockSign(), -1);
        for (int i = 0; i < polygon->GetLoopCount(); ++i) EXPECT_TRUE(polygon->GetLoop(i)->IsClosed());
    }
}

TEST(SectionOutline, TheSectionIsSymmetricWhereItsShapeIs) {
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
}

TEST(SectionOutline, TheColdFormedBendRadiusIsTheOneTheAreaNeeds) {
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
}

TEST(SectionOutline, ValuesThatMakeNoSectionOrRadiiThatDoNotFitAreRefusedWithAReason) {
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
}
