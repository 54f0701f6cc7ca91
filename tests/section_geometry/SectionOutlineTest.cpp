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
#include <functional>

using namespace skr::geometry;

namespace {

using Params = QMap<QString, double>;

using Figure = std::function<double(Params&)>;

struct OutlineCase {
    const char* name;
    int type;
    Params params;
    Figure area;                      // mm2, from the dimensions
    double width, height;             // of the bounding box
    Figure outerPerimeter = nullptr;  // mm, where the case checks it
    int arcs = -1;                    // where the case checks them
};

double ring(double d, double t) { return M_PI / 4 * (d * d - (d - 2 * t) * (d - 2 * t)); }
double hArea(double h, double bt, double bb, double tw, double tt, double tb) { return bt * tt + bb * tb + (h - tt - tb) * tw; }

// What a fillet of radius r that turns the outline through theta adds (concave corner) or takes
// off (convex corner) in area, and what it takes off the perimeter.
double filletArea(double r, double theta = M_PI / 2) { return r * r * (std::tan(theta / 2) - theta / 2); }
double filletCut(double r, double theta = M_PI / 2) { return 2 * r * std::tan(theta / 2) - r * theta; }

// Sloped flanges: the turn at the root and at the toe, and the tip and root thicknesses of a
// flange whose thickness t is measured halfway along the outstand.
double slopeTurn(double slope) { return M_PI / 2 - std::atan(slope); }

double iArea(Params& p) {
    const double turn = slopeTurn(1.0 / 6);
    return p["h"] * p["d"] + 2 * p["t"] * (p["b"] - p["d"]) + 4 * filletArea(p["r"], turn) - 4 * filletArea(p["r1"], turn);
}
double iPerimeter(Params& p) {
    const double slope = 1.0 / 6, outstand = (p["b"] - p["d"]) / 2, turn = slopeTurn(slope);
    const double tip = p["t"] - slope * outstand / 2, root = p["t"] + slope * outstand / 2;
    return 2 * p["b"] + 4 * outstand * std::hypot(1, slope) + 4 * tip + 2 * (p["h"] - 2 * root) -
           4 * filletCut(p["r"], turn) - 4 * filletCut(p["r1"], turn);
}
double channelArea(Params& p) {
    const double turn = slopeTurn(0.1);
    return p["h"] * p["d"] + 2 * p["t"] * (p["b"] - p["d"]) + 2 * filletArea(p["r"], turn) - 2 * filletArea(p["r1"], turn);
}
double channelPerimeter(Params& p) {
    const double slope = 0.1, outstand = p["b"] - p["d"], turn = slopeTurn(slope);
    const double tip = p["t"] - slope * outstand / 2, root = p["t"] + slope * outstand / 2;
    return p["h"] + 2 * p["b"] + 2 * tip + 2 * outstand * std::hypot(1, slope) + (p["h"] - 2 * root) -
           2 * filletCut(p["r"], turn) - 2 * filletCut(p["r1"], turn);
}
// Cold-formed lipped C and Z: t times the centre line, whose four bends (inner radius r) are
// shorter than sharp corners.
double coldFormedCentreLine(Params& p, double r) {
    return p["h"] + 2 * p["b"] + 2 * p["c"] - 4 * p["t"] - 4 * (2 - M_PI / 2) * (r + p["t"] / 2);
}
// A hollow section of outer corner radius R.
double hollowArea(double h, double b, double t, double R) {
    return h * b - (h - 2 * t) * (b - 2 * t) - (4 - M_PI) * (R * R - (R - t) * (R - t));
}

std::vector<OutlineCase> cases() {
    return {
        {"I", 1, {{"h", 200}, {"b", 100}, {"d", 7}, {"t", 11.4}, {"r", 9}, {"r1", 4.5}}, iArea, 100, 200, iPerimeter, 8},
        {"IWithoutRadii", 1, {{"h", 200}, {"b", 100}, {"d", 7}, {"t", 11.4}}, iArea, 100, 200, iPerimeter},
        {"Channel", 2, {{"h", 200}, {"b", 73}, {"d", 7}, {"t", 11}, {"r", 11}, {"r1", 5.5}}, channelArea, 73, 200,
         channelPerimeter, 4},
        {"EqualAngle", 3, {{"b", 100}, {"d", 10}, {"r", 12}},
         [](Params& p) { return p["d"] * (2 * p["b"] - p["d"]) + filletArea(p["r"]) - 2 * filletArea(p["d"] / 3); },
         100, 100, [](Params& p) { return 4 * p["b"] - filletCut(p["r"]) - 2 * filletCut(p["d"] / 3); }, 3},
        {"UnequalAngleWithoutRootRadius", 4, {{"B", 100}, {"b", 80}, {"d", 10}},
         [](Params& p) { return p["d"] * (p["B"] + p["b"] - p["d"]) - 2 * filletArea(p["d"] / 3); }, 80, 100,
         [](Params& p) { return 2 * (p["B"] + p["b"]) - 2 * filletCut(p["d"] / 3); }},
        {"Pipe", 5, {{"D", 89}, {"t", 4}}, [](Params& p) { return ring(p["D"], p["t"]); }, 89, 89,
         [](Params& p) { return M_PI * p["D"]; }},
        {"Bar", 6, {{"d", 20}}, [](Params& p) { return M_PI / 4 * p["d"] * p["d"]; }, 20, 20},
        {"HotRolledH", 7, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t", 13}, {"r", 13}},
         [](Params& p) { return hArea(p["h"], p["b"], p["b"], p["tw"], p["t"], p["t"]) + 4 * filletArea(p["r"]); },
         200, 400, [](Params& p) { return 2 * p["h"] + 4 * p["b"] - 2 * p["tw"] - 4 * filletCut(p["r"]); }, 4},
        {"LippedCWithItsUsualBends", 8, {{"h", 200}, {"b", 70}, {"c", 20}, {"t", 3}},
         [](Params& p) { return p["t"] * coldFormedCentreLine(p, 2 * p["t"]); }, 70, 200,
         [](Params& p) { return 2 * coldFormedCentreLine(p, 2 * p["t"]) + 2 * p["t"]; }, 8},
        {"LippedCWithAGivenBend", 8, {{"h", 60}, {"b", 30}, {"c", 10}, {"t", 3}, {"r", 5.2}},
         [](Params& p) { return p["t"] * coldFormedCentreLine(p, p["r"]); }, 30, 60,
         [](Params& p) { return 2 * coldFormedCentreLine(p, p["r"]) + 2 * p["t"]; }},
        {"LippedZ", 9, {{"h", 250}, {"b", 75}, {"c", 25}, {"t", 3}},
         [](Params& p) { return p["t"] * coldFormedCentreLine(p, 2 * p["t"]); }, 2 * 75 - 3, 250,
         [](Params& p) { return 2 * coldFormedCentreLine(p, 2 * p["t"]) + 2 * p["t"]; }, 8},
        {"HotRolledT", 10, {{"h", 200}, {"b", 200}, {"tw", 8}, {"t", 13}, {"r", 13}},
         [](Params& p) { return p["b"] * p["t"] + (p["h"] - p["t"]) * p["tw"] + 2 * filletArea(p["r"]); }, 200, 200,
         [](Params& p) { return 2 * p["h"] + 2 * p["b"] - 2 * filletCut(p["r"]); }, 2},
        {"WeldedH", 11, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t1", 13}, {"t2", 16}},
         [](Params& p) { return hArea(p["h"], p["b"], p["b"], p["tw"], p["t1"], p["t2"]); }, 200, 400,
         [](Params& p) { return 2 * p["h"] + 4 * p["b"] - 2 * p["tw"]; }, 0},
        {"WeldedHUnequal", 12, {{"h", 400}, {"b1", 200}, {"b2", 250}, {"tw", 8}, {"t1", 13}, {"t2", 16}},
         [](Params& p) { return hArea(p["h"], p["b1"], p["b2"], p["tw"], p["t1"], p["t2"]); }, 250, 400},
        {"WeldedBox", 13, {{"b1", 400}, {"b2", 300}, {"t1", 10}, {"t2", 12}},
         [](Params& p) { return p["b1"] * p["b2"] - (p["b2"] - 2 * p["t1"]) * (p["b1"] - 2 * p["t2"]); }, 300, 400,
         nullptr, 0},
        {"WeldedPipe", 14, {{"d", 325}, {"t", 10}}, [](Params& p) { return ring(p["d"], p["t"]); }, 325, 325},
        {"WeldedCross", 15, {{"h1", 400}, {"b1", 200}, {"tw1", 8}, {"t1", 13}, {"t2", 14}, {"h2", 500}, {"b2", 180},
                             {"tw2", 10}, {"t3", 15}, {"t4", 16}},
         [](Params& p) {
             return hArea(p["h1"], p["b1"], p["b1"], p["tw1"], p["t1"], p["t2"]) +
                    hArea(p["h2"], p["b2"], p["b2"], p["tw2"], p["t3"], p["t4"]) - p["tw1"] * p["tw2"];
         }, 500, 400},
        {"WeldedT", 16, {{"h", 200}, {"b", 200}, {"t1", 8}, {"t2", 13}},
         [](Params& p) { return p["b"] * p["t2"] + (p["h"] - p["t2"]) * p["t1"]; }, 200, 200},
        {"TaperedHAtItsDeepEnd", 17, {{"h1", 400}, {"h2", 600}, {"b", 200}, {"tw", 8}, {"t1", 12}, {"t2", 14}},
         [](Params& p) { return hArea(p["h2"], p["b"], p["b"], p["tw"], p["t1"], p["t2"]); }, 200, 600},
        {"TaperedTubeAtItsLargeEnd", 18, {{"R1", 400}, {"R2", 600}, {"t", 10}},
         [](Params& p) { return ring(p["R2"], p["t"]); }, 600, 600},
        {"TaperedBoxAtItsLargeEnd", 19, {{"B1", 600}, {"B2", 400}, {"b1", 400}, {"b2", 300}, {"t1", 12}, {"t2", 14}},
         [](Params& p) { return p["B1"] * p["B2"] - (p["B2"] - 2 * p["t1"]) * (p["B1"] - 2 * p["t2"]); }, 400, 600},
        {"TwoDepthH", 20, {{"h1", 600}, {"h2", 400}, {"b", 200}, {"tw", 8}, {"t1", 12}, {"t2", 12}},
         [](Params& p) { return hArea(p["h1"], p["b"], p["b"], p["tw"], p["t1"], p["t2"]); }, 200, 600},
        // Four-arc ovals with the axes and areas of the ellipses.
        {"EllipticTube", 21, {{"R1", 600}, {"R2", 400}, {"r1", 400}, {"r2", 300}, {"t", 10}},
         [](Params& p) { return M_PI / 4 * (p["R1"] * p["R2"] - (p["R1"] - 2 * p["t"]) * (p["R2"] - 2 * p["t"])); },
         600, 400},
        {"UprightEllipticTubeAtItsLargeEnd", 21, {{"R1", 200}, {"R2", 300}, {"r1", 300}, {"r2", 500}, {"t", 8}},
         [](Params& p) { return M_PI / 4 * (p["r1"] * p["r2"] - (p["r1"] - 2 * p["t"]) * (p["r2"] - 2 * p["t"])); },
         300, 500},
        {"BoxTubeOfThinWall", 1011, {{"h", 200}, {"b", 100}, {"t", 6}},
         [](Params& p) { return hollowArea(p["h"], p["b"], p["t"], 2 * p["t"]); }, 100, 200,
         [](Params& p) { return 2 * (p["h"] + p["b"]) - 4 * filletCut(2 * p["t"]); }, 8},
        {"BoxTubeOfMiddleWall", 1011, {{"h", 200}, {"b", 200}, {"t", 8}},
         [](Params& p) { return hollowArea(p["h"], p["b"], p["t"], 2.5 * p["t"]); }, 200, 200,
         [](Params& p) { return 2 * (p["h"] + p["b"]) - 4 * filletCut(2.5 * p["t"]); }},
        {"BoxTubeOfThickWall", 1011, {{"h", 400}, {"b", 300}, {"t", 12}},
         [](Params& p) { return hollowArea(p["h"], p["b"], p["t"], 3 * p["t"]); }, 300, 400,
         [](Params& p) { return 2 * (p["h"] + p["b"]) - 4 * filletCut(3 * p["t"]); }},
        {"BoxTubeWithAGivenInnerRadius", 1011, {{"h", 200}, {"b", 100}, {"t", 8}, {"r", 8}},
         [](Params& p) { return hollowArea(p["h"], p["b"], p["t"], 2 * p["t"]); }, 100, 200},
        {"BoltBall", 1012, {{"D", 100}}, [](Params& p) { return M_PI / 4 * p["D"] * p["D"]; }, 100, 100},
        {"WeldBall", 1013, {{"D", 300}, {"t", 8}}, [](Params& p) { return ring(p["D"], p["t"]); }, 300, 300},
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
    for (OutlineCase c : cases()) {
        SCOPED_TRACE(c.name);
        QString text, error;
        ASSERT_TRUE(sectionOutlineText(c.type, c.params, text, &error)) << error.toStdString();
        const auto polygon = ParseSectionPolygon(text);
        ASSERT_TRUE(polygon);
        const double expected = c.area(c.params);
        EXPECT_NEAR(polygon->Area(), expected, expected * 1e-9);
        if (c.outerPerimeter) {
            const double perimeter = c.outerPerimeter(c.params);
            EXPECT_NEAR(polygon->GetLoop(0)->Length(), perimeter, perimeter * 1e-9);
        }
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
