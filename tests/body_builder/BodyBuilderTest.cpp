// Member solids from outlines: each builder against its closed-form volume and its box, sections
// with holes and arcs, members of specification texts, cuts through built members, and the input
// each builder refuses.
#include "body_builder/SKRBodyBuilder.h"
#include "body_builder/SKRSweepPath.h"
#include "ndp/NDPBody.h"
#include "ndp/NDPRef.h"
#include "ndp/NDPBooleanOperate.h"
#include "ndp/NDPPlane.h"
#include "ndp/NDPPolygon.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

using namespace skr::body;
using ndp::CBody;
using ndp::CCoord3;
using ndp::CPolygon;
using ndp::CVector3;

namespace {

const double kPi = 3.14159265358979323846;

using BodyPtr = ndp::CRef<ndp::CBody>;

void expectBox(const CBody& body, const CVector3& min, const CVector3& max, double tolerance) {
    const ndp::CBox3d box = body.BoundingBox();
    ASSERT_FALSE(box.IsEmpty());
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(box.min[i], min[i], tolerance) << "min " << i;
        EXPECT_NEAR(box.max[i], max[i], tolerance) << "max " << i;
    }
}

ndp::CLoop* rectangleLoop(double x0, double y0, double x1, double y1) {
    auto* loop = new ndp::CLoop;
    loop->AddCurve(new ndp::CLine2d({x0, y0}, {x1, y0}), false);
    loop->AddCurve(new ndp::CLine2d({x1, y0}, {x1, y1}), false);
    loop->AddCurve(new ndp::CLine2d({x1, y1}, {x0, y1}), false);
    loop->AddCurve(new ndp::CLine2d({x0, y1}, {x0, y0}), false);
    return loop;
}

// A width x height rectangle centred on the origin.
CPolygon rectangle(double width, double height) {
    CPolygon polygon;
    polygon.AddLoop(rectangleLoop(-width / 2, -height / 2, width / 2, height / 2), true);
    return polygon;
}

// A circle, or a ring when inner > 0, centred on the origin.
CPolygon ring(double outer, double inner = 0.0) {
    CPolygon polygon;
    for (double radius : {outer, inner}) {
        if (radius <= 0) continue;
        auto* loop = new ndp::CLoop;
        loop->AddCurve(new ndp::CArc2d({0, 0}, radius, 0.0, 2 * kPi), false);
        polygon.AddLoop(loop, true);
    }
    return polygon;
}

std::unique_ptr<CPolygon> outline(int type, const QMap<QString, double>& params) {
    QString text, error;
    EXPECT_TRUE(skr::geometry::sectionOutlineText(type, params, text, &error)) << error.toStdString();
    return skr::geometry::ParseSectionPolygon(text);
}

double hArea(double h, double b, double tw, double t) { return 2 * b * t + (h - 2 * t) * tw; }

CCoord3 identity() { return CCoord3(); }

}  // namespace

// ---------------------------------------------------------------------------------------------
// Extrusion

TEST(ExtrudedMember, VolumeIsSectionAreaTimesLength) {
    const auto section = outline(11, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t1", 13}, {"t2", 13}});
    ASSERT_TRUE(section);
    QString error;
    BodyPtr body(SKRBodyBuilder::extrudedMember(*section, 6000, identity(), &error));
    ASSERT_TRUE(body) << error.toStdString();
    EXPECT_NEAR(body->Volume(), hArea(400, 200, 8, 13) * 6000, 1e-9 * body->Volume());
    EXPECT_EQ(body->SolidCount(), 1);
    EXPECT_TRUE(body->IsValid());
    expectBox(*body, {0, 0, 0}, {200, 400, 6000}, 1e-9);
}

TEST(ExtrudedMember, ARingOfTrueArcsHasTheExactRingArea) {
    BodyPtr pipe(SKRBodyBuilder::extrudedMember(ring(44.5, 40.5), 3000, identity()));
    ASSERT_TRUE(pipe);
    const double area = kPi * (44.5 * 44.5 - 40.5 * 40.5);
    EXPECT_NEAR(pipe->Volume(), area * 3000, 1e-9 * area * 3000);
    expectBox(*pipe, {-44.5, -44.5, 0}, {44.5, 44.5, 3000}, 1e-7);
}

// ---------------------------------------------------------------------------------------------
// Sweeps (Pappus: a section centred on the path sweeps area x path length)

TEST(SweptMember, AQuarterArcSweepsAreaTimesArcLength) {
    const double radius = 500;
    SKRSweepPath path({0, 0, 0});
    path.arcTo({radius * std::sin(kPi / 4), radius - radius * std::cos(kPi / 4), 0}, {radius, radius, 0});
    QString error;
    BodyPtr body(SKRBodyBuilder::sweptMember(rectangle(20, 10), path, {0, 0, 1}, &error));
    ASSERT_TRUE(body) << error.toStdString();
    EXPECT_NEAR(body->Volume(), 20 * 10 * kPi * radius / 2, 1e-6 * body->Volume());
    EXPECT_TRUE(body->IsValid());
    // The section's X (20 wide) stands along global Z.
    const ndp::CBox3d box = body->BoundingBox();
    EXPECT_NEAR(box.min[2], -10, 1e-6);
    EXPECT_NEAR(box.max[2], 10, 1e-6);
    EXPECT_NEAR(box.max[0], radius + 5, 1e-3);
    EXPECT_NEAR(box.max[1], radius, 1e-6);
}

TEST(SweptMember, AHollowSectionAlongLineArcLine) {
    const double radius = 500;
    SKRSweepPath path({0, 0, 0});
    path.lineTo({1000, 0, 0});
    path.arcTo({1000 + radius * std::sin(kPi / 4), radius - radius * std::cos(kPi / 4), 0}, {1000 + radius, radius, 0});
    path.lineTo({1000 + radius, 1500, 0});
    QString error;
    BodyPtr body(SKRBodyBuilder::sweptMember(ring(30, 25), path, {0, 1, 0}, &error));
    ASSERT_TRUE(body) << error.toStdString();
    const double length = 1000 + kPi * radius / 2 + (1500 - radius);
    const double area = kPi * (30 * 30 - 25 * 25);
    EXPECT_NEAR(body->Volume(), area * length, 1e-6 * area * length);
    EXPECT_EQ(body->SolidCount(), 1);
    EXPECT_TRUE(body->IsValid());
}

// ---------------------------------------------------------------------------------------------
// Spirals

namespace {

SKRHelix helix(double radius, double pitch, double turns) {
    SKRHelix h;
    h.radius = radius;
    h.pitch = pitch;
    h.turns = turns;
    return h;
}

}  // namespace

TEST(SpiralMember, VolumeIsAreaTimesHelixLength) {
    // A round bar of radius 10 wound twice round a radius of 100, rising 50 per turn. The helix is
    // a B-spline approximation on the cylinder: volume within 1e-6 of A x L (3e-8 measured), box
    // within 0.5 mm.
    const SKRHelix h = helix(100, 50, 2);
    const double length = h.turns * std::hypot(2 * kPi * h.radius, h.pitch);
    const double area = kPi * 10 * 10;
    for (bool leftHanded : {false, true}) {
        SCOPED_TRACE(leftHanded ? "left-handed" : "right-handed");
        SKRHelix wound = h;
        wound.leftHanded = leftHanded;
        QString error;
        BodyPtr body(SKRBodyBuilder::spiralMember(ring(10), wound, &error));
        ASSERT_TRUE(body) << error.toStdString();
        EXPECT_NEAR(body->Volume(), area * length, 1e-6 * area * length);
        EXPECT_TRUE(body->IsValid());
        EXPECT_EQ(body->SolidCount(), 1);
        const ndp::CBox3d box = body->BoundingBox();
        EXPECT_NEAR(box.max[0], 110, 0.5);
        EXPECT_NEAR(box.min[0], -110, 0.5);
        EXPECT_NEAR(box.max[1], 110, 0.5);
        EXPECT_NEAR(box.min[1], -110, 0.5);
        // The section tilts with the helix: it reaches r cos(angle) below the start.
        const double cosRise = 2 * kPi * h.radius / std::hypot(2 * kPi * h.radius, h.pitch);
        EXPECT_NEAR(box.min[2], -10 * cosRise, 0.5);
        EXPECT_NEAR(box.max[2], 100 + 10 * cosRise, 0.5);
    }
}

// ---------------------------------------------------------------------------------------------
// Fillets

TEST(FilletedBody, RoundedLongitudinalEdgesRemoveTheCornerAreaAlongTheLength) {
    BodyPtr box(CBody::CreateBox(identity(), 100, 60, 1000));
    const double r = 8;
    QString error;
    BodyPtr rounded(SKRBodyBuilder::filletedBody(box.get(), r, {0, 0, 1}, &error));
    ASSERT_TRUE(rounded) << error.toStdString();
    // Each of the four edges loses r^2 - pi r^2 / 4 of section.
    EXPECT_NEAR(rounded->Volume(), (100 * 60 - (4 - kPi) * r * r) * 1000, 1e-7 * rounded->Volume());
    EXPECT_TRUE(rounded->IsValid());
    expectBox(*rounded, {0, 0, 0}, {100, 60, 1000}, 1e-6);
    EXPECT_NEAR(box->Volume(), 100 * 60 * 1000, 1e-6);  // the input stays as it was

    // A cut across the rounded member shows the rounded section.
    ndp::CPlane plane;
    ASSERT_TRUE(plane.Create({0, 0, 500}, {0, 0, 1}));
    ndp::CBooleanOperate op(true, true, true, true);
    CBody *positive = nullptr, *negative = nullptr, *cut = nullptr;
    ASSERT_TRUE(op.SplitBody(plane, rounded.get(), positive, negative, cut)) << op.GetLastError().toStdString();
    BodyPtr keepPositive(positive), keepNegative(negative), keepCut(cut);
    ASSERT_TRUE(cut && positive && negative);
    EXPECT_NEAR(cut->SurfaceArea(), 100 * 60 - (4 - kPi) * r * r, 1e-6 * 6000);
    EXPECT_NEAR(positive->Volume(), negative->Volume(), 1e-6 * rounded->Volume());
}

// ---------------------------------------------------------------------------------------------
// Elliptic solids

TEST(EllipticSolids, EllipticCylinderIsPiABTimesLength) {
    BodyPtr wide(SKRBodyBuilder::ellipticCylinder(150, 80, 500, identity()));
    ASSERT_TRUE(wide);
    EXPECT_NEAR(wide->Volume(), kPi * 150 * 80 * 500, 1e-9 * wide->Volume());
    expectBox(*wide, {-150, -80, 0}, {150, 80, 500}, 1e-6);

    BodyPtr tall(SKRBodyBuilder::ellipticCylinder(80, 150, 500, identity()));
    ASSERT_TRUE(tall);
    EXPECT_NEAR(tall->Volume(), kPi * 150 * 80 * 500, 1e-9 * tall->Volume());
    expectBox(*tall, {-80, -150, 0}, {80, 150, 500}, 1e-6);
}

// ---------------------------------------------------------------------------------------------
// Members of specification texts

TEST(MemberFromSpecification, TheSectionIsCentredOnTheMemberAxis) {
    struct Member {
        const char* text;
        double area;
        double width, height;
    } members[] = {
        {"H400*200*8*13", hArea(400, 200, 8, 13), 200, 400},
        {"B300*10*12", 300 * 300 - (300 - 20) * (300 - 24), 300, 300},
        {"D89*4", kPi * (44.5 * 44.5 - 40.5 * 40.5), 89, 89},
    };
    for (const Member& m : members) {
        SCOPED_TRACE(m.text);
        QString error;
        BodyPtr body(SKRBodyBuilder::memberFromSpecification(QString::fromLatin1(m.text), 6000, identity(), &error));
        ASSERT_TRUE(body) << error.toStdString();
        EXPECT_NEAR(body->Volume(), m.area * 6000, 1e-9 * m.area * 6000);
        expectBox(*body, {-m.width / 2, -m.height / 2, 0}, {m.width / 2, m.height / 2, 6000}, 1e-7);
    }
}

TEST(MemberFromSpecification, TextsThatMakeNoMemberAreRefusedWithAReason) {
    struct Refusal {
        const char* text;
        double length;
    } refusals[] = {
        {"XYZ123", 1000},               // no such type
        {"H400*200*8*13*13*13", 1000},  // more values than a welded H has
        {"H400*8*200*13", 1000},        // a web wider than the flange
        {"H400*200*8*13", 0},           // no length
    };
    for (const Refusal& r : refusals) {
        SCOPED_TRACE(r.text);
        QString error;
        EXPECT_EQ(SKRBodyBuilder::memberFromSpecification(QString::fromLatin1(r.text), r.length, identity(), &error),
                  nullptr);
        EXPECT_FALSE(error.isEmpty());
    }
}
