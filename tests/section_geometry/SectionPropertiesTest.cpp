// Section properties of polygons of lines and arcs against the textbook formulas: circles, rings,
// half discs, slots, I sections, circular segments and arcs of every type; far from the origin, with holes of either turning sense, and with arcs too flat for the direct formulas.
#include "ndp/NDPPolygon.h"
#include "section_geometry/SKRSectionProperties.h"

#include "platform/Loops.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace ndp;
using skr::geometry::SectionProperties;
using skr::geometry::SKRSectionProperties;
using skr::geometry::LoopAreaMoments;
using skr::geometry::SKRAreaMoments;

namespace {

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

void expectRelative(double actual, double expected, double tolerance, const char* what) {
    EXPECT_NEAR(actual, expected, tolerance * std::max(1.0, std::abs(expected))) << what;
}

struct Expected {
    double area, cx, cy, ix, iy, ixy;
};

void expectProperties(const SKRSectionProperties& p, const Expected& e, double tolerance = 1e-12) {
    expectRelative(p.area, e.area, tolerance, "area");
    expectRelative(p.centroid.x, e.cx, tolerance, "centroid x");
    expectRelative(p.centroid.y, e.cy, tolerance, "centroid y");
    expectRelative(p.ix, e.ix, tolerance, "ix");
    expectRelative(p.iy, e.iy, tolerance, "iy");
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

TEST(SectionProperties, CircleAndRingHaveTheTextbookMoments) {
    const double R = 44.5, r = 40.5, cx = 1000, cy = -500;
    SKRSectionProperties p = SectionProperties(polygonOf({circle(cx, cy, R)}));
    expectProperties(p, {kPi * R * R, cx, cy, kPi * std::pow(R, 4) / 4, kPi * std::pow(R, 4) / 4, 0});
    EXPECT_NEAR(p.box.Min().x, cx - R, 1e-12);
    EXPECT_NEAR(p.box.Max().y, cy + R, 1e-12);

    // The hole's turning sense does not matter: it is taken away either way.
    for (bool reverseHole : {false, true}) {
        CLoop* hole = circle(cx, cy, r);
        if (reverseHole) hole->Reverse();
        p = SectionProperties(polygonOf({circle(cx, cy, R), hole}));
        const double i = kPi * (std::pow(R, 4) - std::pow(r, 4)) / 4;
        expectProperties(p, {kPi * (R * R - r * r), cx, cy, i, i, 0});
        EXPECT_NEAR(p.perimeter, 2 * kPi * (R + r), 1e-12);
        EXPECT_NEAR(p.outerPerimeter, 2 * kPi * R, 1e-12);
    }
}

TEST(SectionProperties, HalfDiscHasItsCentroidAtFourRByThreePiAndASlotIsARectangleAndTwoOfThem) {
    const double r = 50, L = 200;
    const double half = kPi * r * r / 2, offset = 4 * r / (3 * kPi), r4 = std::pow(r, 4);
    const double halfOwn = kPi * r4 / 8 - half * offset * offset;  // a half disc about its own centroid
    SKRSectionProperties p = SectionProperties(polygonOf({halfDisc(r)}));
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
