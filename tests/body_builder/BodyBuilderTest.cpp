// Member solids from outlines: each builder (extruded, elliptic, of section texts, swept, spiral)
// against its closed-form volume and its box, sections with holes and arcs, the texts that make no
// member, and a cut through a filleted member.
#include "body_builder/SKRBodyBuilder.h"
#include "body_builder/SKRSweepPath.h"
#include "ndp/NDPBody.h"
#include "ndp/NDPBooleanOperate.h"
#include "ndp/NDPRef.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include "platform/Loops.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>

using namespace skr::body;
using ndp::CBody;
using ndp::CCoord3;
using ndp::CPolygon;
using ndp::CVector3;

namespace {

using BodyPtr = ndp::CRef<ndp::CBody>;

void expectBox(const CBody& body, const CVector3& min, const CVector3& max, double tolerance) {
    const ndp::CBox3d box = body.BoundingBox();
    ASSERT_FALSE(box.IsEmpty());
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(box.min[i], min[i], tolerance) << "min " << i;
        EXPECT_NEAR(box.max[i], max[i], tolerance) << "max " << i;
    }
}

// A circle, or a ring when inner > 0, centred on the origin.
CPolygon ring(double outer, double inner = 0.0) {
    CPolygon polygon;
    polygon.AddLoop(circle(0, 0, outer), true);
    if (inner > 0) polygon.AddLoop(circle(0, 0, inner), true);
    return polygon;
}

double hArea(double h, double b, double tw, double t) { return 2 * b * t + (h - 2 * t) * tw; }

}  // namespace

// Straight members, and sweeps by Pappus (a section centred on the path sweeps area x path length):
// a rectangle along a quarter arc, a hollow section along line, quarter arc, line, and a round bar
// wound twice round a radius of 100, rising 50 per turn. The helix is a B-spline approximation on
// the cylinder: volume within 1e-6 of A x L (3e-8 measured), box within 0.5 mm.
TEST(Member, VolumeIsSectionAreaTimesPathLengthTheBoxIsTheSectionsAlongThePathAndFilletsTakeTheCorners) {
    QString text, error;
    ASSERT_TRUE(skr::geometry::sectionOutlineText(11, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t1", 13}, {"t2", 13}}, text,
                                                  &error)) << error.toStdString();
    const std::unique_ptr<CPolygon> weldedH = skr::geometry::ParseSectionPolygon(text);
    ASSERT_TRUE(weldedH);
    using Make = std::function<CBody*(QString*)>;
    const auto extruded = [](const CPolygon& section, double length) -> Make {
        return [section, length](QString* e) { return SKRBodyBuilder::extrudedMember(section, length, CCoord3(), e); };
    };
    const auto elliptic = [](double rx, double ry) -> Make {
        return [rx, ry](QString* e) { return SKRBodyBuilder::ellipticCylinder(rx, ry, 500, CCoord3(), e); };
    };
    // Members of section texts have the section centred on the member axis.
    const auto specified = [](const char* text) -> Make {
        return [text](QString* e) { return SKRBodyBuilder::memberFromSpecification(text, 6000, CCoord3(), e); };
    };
    const auto swept = [](const CPolygon& section, const SKRSweepPath& path, const CVector3& sectionX) -> Make {
        return [=](QString* e) { return SKRBodyBuilder::sweptMember(section, path, sectionX, e); };
    };
    const auto spiral = [](bool leftHanded) -> Make {
        return [leftHanded](QString* e) { return SKRBodyBuilder::spiralMember(ring(10), {{}, 100, 50, 2, leftHanded}, e); };
    };
    const double radius = 500, chord = radius * std::sin(kPi / 4), rise = radius - radius * std::cos(kPi / 4);
    SKRSweepPath quarter, lineArcLine;
    quarter.arcTo({chord, rise, 0}, {radius, radius, 0});
    lineArcLine.lineTo({1000, 0, 0});
    lineArcLine.arcTo({1000 + chord, rise, 0}, {1000 + radius, radius, 0});
    lineArcLine.lineTo({1000 + radius, 1500, 0});
    CPolygon rectangle20x10;  // centred on the path
    rectangle20x10.AddLoop(rectangle(-10, -5, 10, 5), true);
    const double pathLength = 1000 + kPi * radius / 2 + (1500 - radius);
    const double helix = 2 * std::hypot(2 * kPi * 100, 50), bar = kPi * 10 * 10;
    // The bar's section tilts with the helix: it reaches r cos(angle) below the start.
    const double tilt = 10 * 2 * kPi * 100 / std::hypot(2 * kPi * 100, 50);
    const double ringArea = kPi * (44.5 * 44.5 - 40.5 * 40.5);
    const struct { const char* name; Make make; double volume; CVector3 min, max; double tolerance, volumeTolerance = 1e-9;
    } members[] = {
        {"welded H from its outline", extruded(*weldedH, 6000), hArea(400, 200, 8, 13) * 6000, {0, 0, 0}, {200, 400, 6000}, 1e-9},
        {"a ring of true arcs", extruded(ring(44.5, 40.5), 3000), ringArea * 3000, {-44.5, -44.5, 0}, {44.5, 44.5, 3000}, 1e-7},
        {"elliptic cylinder wide", elliptic(150, 80), kPi * 150 * 80 * 500, {-150, -80, 0}, {150, 80, 500}, 1e-6},
        {"elliptic cylinder tall", elliptic(80, 150), kPi * 150 * 80 * 500, {-80, -150, 0}, {80, 150, 500}, 1e-6},
        {"H400*200*8*13", specified("H400*200*8*13"), hArea(400, 200, 8, 13) * 6000, {-100, -200, 0}, {100, 200, 6000}, 1e-7},
        {"B300*10*12", specified("B300*10*12"), (300.0 * 300 - 280 * 276) * 6000, {-150, -150, 0}, {150, 150, 6000}, 1e-7},
        {"D89*4", specified("D89*4"), ringArea * 6000, {-44.5, -44.5, 0}, {44.5, 44.5, 6000}, 1e-7},
        // The section's X (20 wide) stands along global Z.
        {"rectangle along a quarter arc", swept(rectangle20x10, quarter, {0, 0, 1}), 20 * 10 * kPi * radius / 2, {0, -5, -10},
         {radius + 5, radius, 10}, 1e-3, 1e-6},
        {"ring along line, arc, line", swept(ring(30, 25), lineArcLine, {0, 1, 0}), kPi * (30 * 30 - 25 * 25) * pathLength,
         {0, -30, -30}, {1530, 1500, 30}, 1e-3, 1e-6},
        {"right-handed helix", spiral(false), bar * helix, {-110, -110, -tilt}, {110, 110, 100 + tilt}, 0.5, 1e-6},
        {"left-handed helix", spiral(true), bar * helix, {-110, -110, -tilt}, {110, 110, 100 + tilt}, 0.5, 1e-6},
    };
    for (const auto& m : members) {
        SCOPED_TRACE(m.name);
        BodyPtr body(m.make(&error));
        ASSERT_TRUE(body) << error.toStdString();
        EXPECT_NEAR(body->Volume(), m.volume, m.volumeTolerance * m.volume);
        EXPECT_EQ(body->SolidCount(), 1);
        EXPECT_TRUE(body->IsValid());
        expectBox(*body, m.min, m.max, m.tolerance);
    }
    // Texts that make no member are refused with a reason: no such type, more values than a welded
    // H has, a web wider than the flange, no length.
    for (const auto& [text, length] : {std::pair<const char*, double>{"XYZ123", 1000}, {"H400*200*8*13*13*13", 1000},
                                       {"H400*8*200*13", 1000}, {"H400*200*8*13", 0}}) {
        SCOPED_TRACE(text);
        error.clear();
        EXPECT_EQ(SKRBodyBuilder::memberFromSpecification(QString::fromLatin1(text), length, CCoord3(), &error), nullptr);
        EXPECT_FALSE(error.isEmpty());
    }

    // A filleted body: rounded longitudinal edges remove the corner area along the length.
    BodyPtr box(CBody::CreateBox(CCoord3(), 100, 60, 1000));
    const double r = 8;
    BodyPtr rounded(SKRBodyBuilder::filletedBody(box.get(), r, {0, 0, 1}, &error));
    ASSERT_TRUE(rounded) << error.toStdString();
    // Each of the four edges loses r^2 - pi r^2 / 4 of section.
    EXPECT_NEAR(rounded->Volume(), (100 * 60 - (4 - kPi) * r * r) * 1000, 1e-7 * rounded->Volume());
    EXPECT_TRUE(rounded->IsValid());
    expectBox(*rounded, {0, 0, 0}, {100, 60, 1000}, 1e-6);
    EXPECT_NEAR(box->Volume(), 100 * 60 * 1000, 1e-6);  // the input stays as it was

    // A cut across the rounded member shows the rounded section.
    ndp::CBooleanOperate op(true, true, true, true);
    CBody *positive = nullptr, *negative = nullptr, *cut = nullptr;
    ASSERT_TRUE(op.SplitBody(plane({0, 0, 500}, {0, 0, 1}), rounded.get(), positive, negative, cut))
        << op.GetLastError().toStdString();
    BodyPtr keepPositive(positive), keepNegative(negative), keepCut(cut);
    ASSERT_TRUE(cut && positive && negative);
    EXPECT_NEAR(cut->SurfaceArea(), 100 * 60 - (4 - kPi) * r * r, 1e-6 * 6000);
    EXPECT_NEAR(positive->Volume(), negative->Volume(), 1e-6 * rounded->Volume());
}
