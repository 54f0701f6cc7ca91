// Corners rounded into lines and arcs: convex and concave fillets, tight fits that leave no
// straight piece, either turning sense, and radii that do not fit refused with where and why.
#include "section_geometry/SKROutlineBuilder.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include "ndp/NDPPolygon.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

using namespace skr::geometry;

namespace {

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

}  // namespace

TEST(OutlineFillet, ARectangleWithFourRoundedCornersLosesFourCornerPieces) {
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
}

TEST(OutlineFillet, ConcaveCornersGainWhatConvexCornersLose) {
    // An L of legs 100 and thickness 10: the inner corner is concave.
    const Corners sharp{{0, 0}, {100, 0}, {100, 10}, {10, 10}, {10, 100}, {0, 100}};
    Corners filleted = sharp;
    filleted[3].radius = 12;  // root, concave
    filleted[2].radius = 4;   // toe, convex
    const auto polygon = rounded(filleted);
    ASSERT_TRUE(polygon);
    EXPECT_NEAR(polygon->Area(), 1900 + quarterCut(12) - quarterCut(4), 1e-9);
    // The concave fillet turns the other way from the convex one.
    QVector<SKROutlineVertex> loop;
    ASSERT_TRUE(filletCorners(filleted, loop));
    QVector<int> arcKinds;
    for (const SKROutlineVertex& v : loop)
        if (v.kind != 0) arcKinds << v.kind;
    EXPECT_EQ(arcKinds, (QVector<int>{1, 2}));
}

TEST(OutlineFillet, CornersOfAnyAngleAreCutBackByRTanHalfTheTurn) {
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
}

TEST(OutlineFillet, RadiiThatDoNotFitAreRefusedNamingTheCorners) {
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
