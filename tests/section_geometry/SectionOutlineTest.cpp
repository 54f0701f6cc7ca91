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

struct OutlineCase {
    const char* name;
    int type;
    Params params;
    std::function<double(Params&)> area;   // mm2, from the dimensions
    std::function<QPair<double, double>(Params&)> size;  // bounding box width, height
    std::function<double(Params&)> outerPerimeter = nullptr;  // mm, where the case checks it
    double relativeTolerance = 1e-9;
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
        {"I", 1, {{"h", 200}, {"b", 100}, {"d", 7}, {"t", 11.4}, {"r", 9}, {"r1", 4.5}}, iArea,
         [](Params& p) { return qMakePair(p["b"], p["h"]); }, iPerimeter},
        {"IWithoutRadii", 1, {{"h", 200}, {"b", 100}, {"d", 7}, {"t", 11.4}}, iArea,
         [](Params& p) { return qMakePair(p["b"], p["h"]); }, iPerimeter},
        {"Channel", 2, {{"h", 200}, {"b", 73}, {"d", 7}, {"t", 11}, {"r", 11}, {"r1", 5.5}}, channelArea,
         [](Params& p) { return qMakePair(p["b"], p["h"]); }, channelPerimeter},
        {"EqualAngle", 3, {{"b", 100}, {"d", 10}, {"r", 12}},
         [](Params& p) { return p["d"] * (2 * p["b"] - p["d"]) + filletArea(p["r"]) - 2 * filletArea(p["d"] / 3); },
         [](Params& p) { return qMakePair(p["b"], p["b"]); },
         [](Params& p) { return 4 * p["b"] - filletCut(p["r"]) - 2 * filletCut(p["d"] / 3); }},
        {"UnequalAngleWithoutRootRadius", 4, {{"B", 100}, {"b", 80}, {"d", 10}},
         [](Params& p) { return p["d"] * (p["B"] + p["b"] - p["d"]) - 2 * filletArea(p["d"] / 3); },
         [](Params& p) { return qMakePair(p["b"], p["B"]); },
         [](Params& p) { return 2 * (p["B"] + p["b"]) - 2 * filletCut(p["d"] / 3); }},
        {"Pipe", 5, {{"D", 89}, {"t", 4}}, [](Params& p) { return ring(p["D"], p["t"]); },
         [](Params& p) { return qMakePair(p["D"], p["D"]); }, [](Params& p) { return M_PI * p["D"]; }},
        {"Bar", 6, {{"d", 20}}, [](Params& p) { return M_PI / 4 * p["d"] * p["d"]; },
         [](Params& p) { return qMakePair(p["d"], p["d"]); }},
        {"HotRolledH", 7, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t", 13}, {"r", 13}},
         [](Params& p) { return hArea(p["h"], p["b"], p["b"], p["tw"], p["t"], p["t"]) + 4 * filletArea(p["r"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); },
         [](Params& p) { return 2 * p["h"] + 4 * p["b"] - 2 * p["tw"] - 4 * filletCut(p["r"]); }},
        {"LippedCWithItsUsualBends", 8, {{"h", 200}, {"b", 70}, {"c", 20}, {"t", 3}},
         [](Params& p) { return p["t"] * coldFormedCentreLine(p, 2 * p["t"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); },
         [](Params& p) { return 2 * coldFormedCentreLine(p, 2 * p["t"]) + 2 * p["t"]; }},
        {"LippedCWithAGivenBend", 8, {{"h", 60}, {"b", 30}, {"c", 10}, {"t", 3}, {"r", 5.2}},
         [](Params& p) { return p["t"] * coldFormedCentreLine(p, p["r"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); },
         [](Params& p) { return 2 * coldFormedCentreLine(p, p["r"]) + 2 * p["t"]; }},
        {"LippedZ", 9, {{"h", 250}, {"b", 75}, {"c", 25}, {"t", 3}},
         [](Params& p) { return p["t"] * coldFormedCentreLine(p, 2 * p["t"]); },
         [](Params& p) { return qMakePair(2 * p["b"] - p["t"], p["h"]); },
         [](Params& p) { return 2 * coldFormedCentreLine(p, 2 * p["t"]) + 2 * p["t"]; }},
        {"HotRolledT", 10, {{"h", 200}, {"b", 200}, {"tw", 8}, {"t", 13}, {"r", 13}},
         [](Params& p) { return p["b"] * p["t"] + (p["h"] - p["t"]) * p["tw"] + 2 * filletArea(p["r"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); },
         [](Params& p) { return 2 * p["h"] + 2 * p["b"] - 2 * filletCut(p["r"]); }},
        {"WeldedH", 11, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t1", 13}, {"t2", 16}},
         [](Params& p) { return hArea(p["h"], p["b"], p["b"], p["tw"], p["t1"], p["t2"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); },
         [](Params& p) { return 2 * p["h"] + 4 * p["b"] - 2 * p["tw"]; }},
        {"WeldedHUnequal", 12, {{"h", 400}, {"b1", 200}, {"b2", 250}, {"tw", 8}, {"t1", 13}, {"t2", 16}},
         [](Params& p) { return hArea(p["h"], p["b1"], p["b2"], p["tw"], p["t1"], p["t2"]); },
         [](Params& p) { return qMakePair(p["b2"], p["h"]); }},
        {"WeldedBox", 13, {{"b1", 400}, {"b2", 300}, {"t1", 10}, {"t2", 12}},
         [](Params& p) { return p["b1"] * p["b2"] - (p["b2"] - 2 * p["t1"]) * (p["b1"] - 2 * p["t2"]); },
         [](Params& p) { return qMakePair(p["b2"], p["b1"]); }},
        {"WeldedPipe", 14, {{"d", 325}, {"t", 10}}, [](Params& p) { return ring(p["d"], p["t"]); },
         [](Params& p) { return qMakePair(p["d"], p["d"]); }},
        {"WeldedCross", 15,
         {{"h1", 400}, {"b1", 200}, {"tw1", 8}, {"t1", 13}, {"t2", 14}, {"h2", 500}, {"b2", 180}, {"tw2", 10},
          {"t3", 15}, {"t4", 16}},
         [](Params& p) {
             return hArea(p["h1"], p["b1"], p["b1"], p["tw1"], p["t1"], p["t2"]) +
                    hArea(p["h2"], p["b2"], p["b2"], p["tw2"], p["t3"], p["t4"]) - p["tw1"] * p["tw2"];
         },
         [](Params& p) { return qMakePair(p["h2"], p["h1"]); }},
        {"WeldedT", 16, {{"h", 200}, {"b", 200}, {"t1", 8}, {"t2", 13}},
         [](Params& p) { return p["b"] * p["t2"] + (p["h"] - p["t2"]) * p["t1"]; },
         [](Params& p) { return qMakePair(p["b"], p["h"]); }},
        {"TaperedHAtItsDeepEnd", 17, {{"h1", 400}, {"h2", 600}, {"b", 200}, {"tw", 8}, {"t1", 12}, {"t2", 14}},
         [](Params& p) { return hArea(p["h2"], p["b"], p["b"], p["tw"], p["t1"], p["t2"]); },
         [](Params& p) { return qMakePair(p["b"], p["h2"]); }},
        {"TaperedTubeAtItsLargeEnd", 18, {{"R1", 400}, {"R2", 600}, {"t", 10}}, [](Params& p) { return ring(p["R2"], p["t"]); },
         [](Params& p) { return qMakePair(p["R2"], p["R2"]); }},
        {"TaperedBoxAtItsLargeEnd", 19, {{"B1", 600}, {"B2", 400}, {"b1", 400}, {"b2", 300}, {"t1", 12}, {"t2", 14}},
         [](Params& p) { return p["B1"] * p["B2"] - (p["B2"] - 2 * p["t1"]) * (p["B1"] - 2 * p["t2"]); },
         [](Params& p) { return qMakePair(p["B2"], p["B1"]); }},
        {"TwoDepthH", 20, {{"h1", 600}, {"h2", 400}, {"b", 200}, {"tw", 8}, {"t1", 12}, {"t2", 12}},
         [](Params& p) { return hArea(p["h1"], p["b"], p["b"], p["tw"], p["t1"], p["t2"]); },
         [](Params& p) { return qMakePair(p["b"], p["h1"]); }},
        // Four-arc ovals with the axes and areas of the ellipses.
        {"EllipticTube", 21, {{"R1", 600}, {"R2", 400}, {"r1", 400}, {"r2", 300}, {"t", 10}},
         [](Params& p) { return M_PI / 4 * (p["R1"] * p["R2"] - (p["R1"] - 2 * p["t"]) * (p["R2"] - 2 * p["t"])); },
         [](Params& p) { return qMakePair(p["R1"], p["R2"]); }},
        {"UprightEllipticTubeAtItsLargeEnd", 21, {{"R1", 200}, {"R2", 300}, {"r1", 300}, {"r2", 500}, {"t", 8}},
         [](Params& p) { return M_PI / 4 * (p["r1"] * p["r2"] - (p["r1"] - 2 * p["t"]) * (p["r2"] - 2 * p["t"])); },
         [](Params& p) { return qMakePair(p["r1"], p["r2"]); }},
        {"BoxTubeOfThinWall", 1011, {{"h", 200}, {"b", 100}, {"t", 6}},
         [](Params& p) { return hollowArea(p["h"], p["b"], p["t"], 2 * p["t"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); },
         [](Params& p) { return 2 * (p["h"] + p["b"]) - 4 * filletCut(2 * p["t"]); }},
        {"BoxTubeOfMiddleWall", 1011, {{"h", 200}, {"b", 200}, {"t", 8}},
         [](Params& p) { return hollowArea(p["h"], p["b"], p["t"], 2.5 * p["t"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); },
         [](Params& p) { return 2 * (p["h"] + p["b"]) - 4 * filletCut(2.5 * p["t"]); }},
        {"BoxTubeOfThickWall", 1011, {{"h", 400}, {"b", 300}, {"t", 12}},
         [](Params& p) { return hollowArea(p["h"], p["b"], p["t"], 3 * p["t"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); },
         [](Params& p) { return 2 * (p["h"] + p["b"]) - 4 * filletCut(3 * p["t"]); }},
        {"BoxTubeWithAGivenInnerRadius", 1011, {{"h", 200}, {"b", 100}, {"t", 8}, {"r", 8}},
         [](Params& p) { return hollowArea(p["h"], p["b"], p["t"], 2 * p["t"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); }},
        {"BoltBall", 1012, {{"D", 100}}, [](Params& p) { return M_PI / 4 * p["D"] * p["D"]; },
         [](Params& p) { return qMakePair(p["D"], p["D"]); }},
        {"WeldBall", 1013, {{"D", 300}, {"t", 8}}, [](Params& p) { return ring(p["D"], p["t"]); },
         [](Params& p) { return qMakePair(p["D"], p["D"]); }},
    };
}

int arcCount(const ndp::CPolygon& polygon) {
    int arcs = 0;
    for (int i = 0; i < polygon.GetLoopCount(); ++i)
        for (int k = 0; k < polygon.GetLoop(i)->GetCount(); ++k)
            arcs += polygon.GetLoop(i)->GetCurve(k)->GetType() == ndp::EnCurveType::Arc;
    return arcs;
}

}  // namespace

TEST(SectionOutline, EveryTypeHasTheAreaPerimeterAndBoxOfItsDimensions) {
    for (OutlineCase c : cases()) {
        SCOPED_TRACE(c.name);
        QString text, error;
        ASSERT_TRUE(sectionOutlineText(c.type, c.params, text, &error)) << error.toStdString();
        const auto polygon = ParseSectionPolygon(text);
        ASSERT_TRUE(polygon);
        const double expected = c.area(c.params);
        EXPECT_NEAR(polygon->Area(), expected, expected * c.relativeTolerance);
        if (c.outerPerimeter) {
            const double perimeter = c.outerPerimeter(c.params);
            EXPECT_NEAR(polygon->GetLoop(0)->Length(), perimeter, perimeter * c.relativeTolerance);
        }
        const ndp::CBox2d box = polygon->BoundingBox();
        const auto size = c.size(c.params);
        EXPECT_NEAR(box.Min().x, 0.0, 1e-9);
        EXPECT_NEAR(box.Min().y, 0.0, 1e-9);
        EXPECT_NEAR(box.Max().x, size.first, 1e-9);
        EXPECT_NEAR(box.Max().y, size.second, 1e-9);
        EXPECT_EQ(polygon->GetLoop(0)->ClockSign(), 1);
        for (int i = 1; i < polygon->GetLoopCount(); ++i) EXPECT_EQ(polygon->GetLoop(i)->ClockSign(), -1);
        for (int i = 0; i < polygon->GetLoopCount(); ++i) EXPECT_TRUE(polygon->GetLoop(i)->IsClosed());
    }
}

TEST(SectionOutline, RolledAndColdFormedShapesCarryTheirArcsAndWeldedPlatesNone) {
    const struct {
        int type;
        Params params;
        int arcs;
    } shapes[] = {
        {1, {{"h", 200}, {"b", 100}, {"d", 7}, {"t", 11.4}, {"r", 9}, {"r1", 4.5}}, 8},
        {2, {{"h", 200}, {"b", 73}, {"d", 7}, {"t", 11}, {"r", 11}, {"r1", 5.5}}, 4},
        {3, {{"b", 100}, {"d", 10}, {"r", 12}}, 3},
        {7, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t", 13}, {"r", 13}}, 4},
        {8, {{"h", 200}, {"b", 70}, {"c", 20}, {"t", 3}}, 8},
        {9, {{"h", 250}, {"b", 75}, {"c", 25}, {"t", 3}}, 8},
        {10, {{"h", 200}, {"b", 200}, {"tw", 8}, {"t", 13}, {"r", 13}}, 2},
        {1011, {{"h", 200}, {"b", 100}, {"t", 6}}, 8},
        {11, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t1", 13}, {"t2", 13}}, 0},
        {13, {{"b1", 400}, {"b2", 300}, {"t1", 10}, {"t2", 12}}, 0},
    };
    for (const auto& shape : shapes) {
        SCOPED_TRACE(shape.type);
        QString text;
        ASSERT_TRUE(sectionOutlineText(shape.type, shape.params, text));
        const auto polygon = ParseSectionPolygon(text);
        ASSERT_TRUE(polygon);
        EXPECT_EQ(arcCount(*polygon), shape.arcs);
    }
}

TEST(SectionOutline, TheSectionIsSymmetricWhereItsShapeIs) {
    // An I-beam about both axes, a channel about its horizontal axis, an equal angle about its
    // diagonal (equal second moments), a Z about its centre (product of inertia not zero).
    QString text;
    ASSERT_TRUE(sectionOutlineText(1, {{"h", 200}, {"b", 100}, {"d", 7}, {"t", 11.4}, {"r", 9}, {"r1", 4.5}}, text));
    auto p = skr::geometry::SectionProperties(*ParseSectionPolygon(text));
    EXPECT_NEAR(p.centroid.x, 50, 1e-9);
    EXPECT_NEAR(p.centroid.y, 100, 1e-9);
    EXPECT_NEAR(p.ixy, 0, 1e-6);
    ASSERT_TRUE(sectionOutlineText(2, {{"h", 200}, {"b", 73}, {"d", 7}, {"t", 11}, {"r", 11}, {"r1", 5.5}}, text));
    p = skr::geometry::SectionProperties(*ParseSectionPolygon(text));
    EXPECT_NEAR(p.centroid.y, 100, 1e-9);
    EXPECT_GT(p.centroid.x, 7);  // the flanges pull it off the web
    ASSERT_TRUE(sectionOutlineText(3, {{"b", 100}, {"d", 10}, {"r", 12}}, text));
    p = skr::geometry::SectionProperties(*ParseSectionPolygon(text));
    EXPECT_NEAR(p.centroid.x, p.centroid.y, 1e-9);
    EXPECT_NEAR(p.ix, p.iy, 1e-9 * p.ix);
    ASSERT_TRUE(sectionOutlineText(9, {{"h", 250}, {"b", 75}, {"c", 25}, {"t", 3}}, text));
    p = skr::geometry::SectionProperties(*ParseSectionPolygon(text));
    EXPECT_NEAR(p.centroid.x, (2 * 75 - 3) / 2.0, 1e-9);
    EXPECT_NEAR(p.centroid.y, 125, 1e-9);
    EXPECT_GT(std::abs(p.ixy), 1e5);
}

TEST(SectionOutline, TheColdFormedBendRadiusIsTheOneTheAreaNeeds) {
    const Params c{{"h", 60}, {"b", 30}, {"c", 10}, {"t", 3}, {"r", 5.2}};
    QString text;
    ASSERT_TRUE(sectionOutlineText(8, c, text));
    const double area = ParseSectionPolygon(text)->Area();
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

TEST(SectionOutline, ValuesThatMakeNoSectionAreRefusedWithAReason) {
    QString text = QStringLiteral("unchanged"), error;
    EXPECT_FALSE(sectionOutlineText(11, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t1", 13}}, text, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("t2"))) << error.toStdString();
    EXPECT_FALSE(sectionOutlineText(11, {{"h", 400}, {"b", 8}, {"tw", 8}, {"t1", 13}, {"t2", 13}}, text, &error));
    EXPECT_FALSE(sectionOutlineText(11, {{"h", 20}, {"b", 200}, {"tw", 8}, {"t1", 13}, {"t2", 13}}, text, &error));
    EXPECT_FALSE(sectionOutlineText(5, {{"D", 8}, {"t", 4}}, text, &error));
    EXPECT_FALSE(sectionOutlineText(5, {{"D", 89}, {"t", -4}}, text, &error));
    EXPECT_FALSE(sectionOutlineText(6, {{"d", std::nan("")}}, text, &error));
    // A flange so steep that its tip has no thickness.
    EXPECT_FALSE(sectionOutlineText(1, {{"h", 200}, {"b", 400}, {"d", 7}, {"t", 5}}, text, &error));
    EXPECT_FALSE(sectionOutlineText(999, {{"h", 1}}, text, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("999")));
    EXPECT_EQ(text, QStringLiteral("unchanged"));
}

TEST(SectionOutline, RadiiThatDoNotFitOrAreNotSizesAreRefusedWithAReason) {
    QString text = QStringLiteral("unchanged"), error;
    // A root radius wider than the flange outstand.
    EXPECT_FALSE(sectionOutlineText(7, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t", 13}, {"r", 120}}, text, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("do not fit"))) << error.toStdString();
    EXPECT_TRUE(error.contains(QStringLiteral("type 7"))) << error.toStdString();
    // Bends that need more than the lip has.
    EXPECT_FALSE(sectionOutlineText(8, {{"h", 200}, {"b", 70}, {"c", 8}, {"t", 3}, {"r", 9}}, text, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("do not fit"))) << error.toStdString();
    EXPECT_FALSE(sectionOutlineText(3, {{"b", 100}, {"d", 10}, {"r", -1}}, text, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("radius r "))) << error.toStdString();
    EXPECT_EQ(text, QStringLiteral("unchanged"));
}
