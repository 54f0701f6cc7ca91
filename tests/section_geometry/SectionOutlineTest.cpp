// Outlines of the section types: each type's drawing has the plate area and the bounding box of
// its dimensions, runs counter-clockwise outside and clockwise round its holes, and values that
// make no section are refused.
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include "ndp/NDPPolygon.h"

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
    double relativeTolerance = 1e-12;
};

double ring(double d, double t) { return M_PI / 4 * (d * d - (d - 2 * t) * (d - 2 * t)); }
double hArea(double h, double bt, double bb, double tw, double tt, double tb) { return bt * tt + bb * tb + (h - tt - tb) * tw; }

std::vector<OutlineCase> cases() {
    return {
        {"I", 1, {{"h", 200}, {"b", 100}, {"d", 7}, {"t", 11.4}, {"r", 9}, {"r1", 4.5}},
         [](Params& p) { return hArea(p["h"], p["b"], p["b"], p["d"], p["t"], p["t"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); }},
        {"Channel", 2, {{"h", 200}, {"b", 73}, {"d", 7}, {"t", 11}},
         [](Params& p) { return 2 * p["b"] * p["t"] + (p["h"] - 2 * p["t"]) * p["d"]; },
         [](Params& p) { return qMakePair(p["b"], p["h"]); }},
        {"EqualAngle", 3, {{"b", 100}, {"d", 10}, {"r", 12}},
         [](Params& p) { return p["d"] * (2 * p["b"] - p["d"]); }, [](Params& p) { return qMakePair(p["b"], p["b"]); }},
        {"UnequalAngle", 4, {{"B", 100}, {"b", 80}, {"d", 10}},
         [](Params& p) { return p["d"] * (p["B"] + p["b"] - p["d"]); },
         [](Params& p) { return qMakePair(p["b"], p["B"]); }},
        {"Pipe", 5, {{"D", 89}, {"t", 4}}, [](Params& p) { return ring(p["D"], p["t"]); },
         [](Params& p) { return qMakePair(p["D"], p["D"]); }},
        {"Bar", 6, {{"d", 20}}, [](Params& p) { return M_PI / 4 * p["d"] * p["d"]; },
         [](Params& p) { return qMakePair(p["d"], p["d"]); }},
        {"HotRolledH", 7, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t", 13}, {"r", 13}},
         [](Params& p) { return hArea(p["h"], p["b"], p["b"], p["tw"], p["t"], p["t"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); }},
        {"LippedC", 8, {{"h", 200}, {"b", 70}, {"c", 20}, {"t", 3}},
         [](Params& p) { return p["t"] * (p["h"] + 2 * p["b"] + 2 * p["c"] - 4 * p["t"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); }},
        {"LippedZ", 9, {{"h", 250}, {"b", 75}, {"c", 25}, {"t", 3}},
         [](Params& p) { return p["t"] * (p["h"] + 2 * p["b"] + 2 * p["c"] - 4 * p["t"]); },
         [](Params& p) { return qMakePair(2 * p["b"] - p["t"], p["h"]); }},
        {"HotRolledT", 10, {{"h", 200}, {"b", 200}, {"tw", 8}, {"t", 13}},
         [](Params& p) { return p["b"] * p["t"] + (p["h"] - p["t"]) * p["tw"]; },
         [](Params& p) { return qMakePair(p["b"], p["h"]); }},
        {"WeldedH", 11, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t1", 13}, {"t2", 16}},
         [](Params& p) { return hArea(p["h"], p["b"], p["b"], p["tw"], p["t1"], p["t2"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); }},
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
        {"TaperedHAtItsDeepEnd", 17, {{"h1", 600}, {"h2", 400}, {"b", 200}, {"tw", 8}, {"t1", 12}, {"t2", 14}},
         [](Params& p) { return hArea(p["h1"], p["b"], p["b"], p["tw"], p["t1"], p["t2"]); },
         [](Params& p) { return qMakePair(p["b"], p["h1"]); }},
        {"TaperedTube", 18, {{"R1", 600}, {"R2", 400}, {"t", 10}}, [](Params& p) { return ring(p["R1"], p["t"]); },
         [](Params& p) { return qMakePair(p["R1"], p["R1"]); }},
        {"TaperedBox", 19, {{"B1", 600}, {"B2", 400}, {"b1", 400}, {"b2", 300}, {"t1", 12}, {"t2", 14}},
         [](Params& p) { return p["B1"] * p["B2"] - (p["B2"] - 2 * p["t1"]) * (p["B1"] - 2 * p["t2"]); },
         [](Params& p) { return qMakePair(p["B2"], p["B1"]); }},
        {"TwoDepthH", 20, {{"h1", 600}, {"h2", 400}, {"b", 200}, {"tw", 8}, {"t1", 12}, {"t2", 12}},
         [](Params& p) { return hArea(p["h1"], p["b"], p["b"], p["tw"], p["t1"], p["t2"]); },
         [](Params& p) { return qMakePair(p["b"], p["h1"]); }},
        // Drawn as a polygon of 72 sides: 0.13 % short of the true ellipse.
        {"EllipticTube", 21, {{"R1", 600}, {"R2", 400}, {"r1", 400}, {"r2", 300}, {"t", 10}},
         [](Params& p) { return M_PI / 4 * (p["R1"] * p["R2"] - (p["R1"] - 2 * p["t"]) * (p["R2"] - 2 * p["t"])); },
         [](Params& p) { return qMakePair(p["R1"], p["R2"]); }, 0.002},
        {"BoxTube", 1011, {{"h", 200}, {"b", 100}, {"t", 6}},
         [](Params& p) { return p["h"] * p["b"] - (p["h"] - 2 * p["t"]) * (p["b"] - 2 * p["t"]); },
         [](Params& p) { return qMakePair(p["b"], p["h"]); }},
        {"BoltBall", 1012, {{"D", 100}}, [](Params& p) { return M_PI / 4 * p["D"] * p["D"]; },
         [](Params& p) { return qMakePair(p["D"], p["D"]); }},
        {"WeldBall", 1013, {{"D", 300}, {"t", 8}}, [](Params& p) { return ring(p["D"], p["t"]); },
         [](Params& p) { return qMakePair(p["D"], p["D"]); }},
    };
}

}  // namespace

TEST(SectionOutline, EveryTypeHasTheAreaAndBoxOfItsDimensions) {
    for (OutlineCase c : cases()) {
        SCOPED_TRACE(c.name);
        QString text, error;
        ASSERT_TRUE(sectionOutlineText(c.type, c.params, text, &error)) << error.toStdString();
        const auto polygon = ParseSectionPolygon(text);
        ASSERT_TRUE(polygon);
        const double expected = c.area(c.params);
        EXPECT_NEAR(polygon->Area(), expected, expected * c.relativeTolerance);
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

TEST(SectionOutline, ValuesThatMakeNoSectionAreRefusedWithAReason) {
    QString text = QStringLiteral("unchanged"), error;
    EXPECT_FALSE(sectionOutlineText(11, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t1", 13}}, text, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("t2"))) << error.toStdString();
    EXPECT_FALSE(sectionOutlineText(11, {{"h", 400}, {"b", 8}, {"tw", 8}, {"t1", 13}, {"t2", 13}}, text, &error));
    EXPECT_FALSE(sectionOutlineText(11, {{"h", 20}, {"b", 200}, {"tw", 8}, {"t1", 13}, {"t2", 13}}, text, &error));
    EXPECT_FALSE(sectionOutlineText(5, {{"D", 8}, {"t", 4}}, text, &error));
    EXPECT_FALSE(sectionOutlineText(5, {{"D", 89}, {"t", -4}}, text, &error));
    EXPECT_FALSE(sectionOutlineText(6, {{"d", std::nan("")}}, text, &error));
    EXPECT_FALSE(sectionOutlineText(999, {{"h", 1}}, text, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("999")));
    EXPECT_EQ(text, QStringLiteral("unchanged"));
}
