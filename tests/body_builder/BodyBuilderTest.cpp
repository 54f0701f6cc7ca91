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

TEST(ExtrudedMember, FollowsItsFrame) {
    // Member axis along global X from (1000, 0, 0); the section's X along global Y, its Y along Z.
    CCoord3 frame;
    frame.origin = {1000, 0, 0};
    frame.xAxis = {0, 1, 0};
    frame.yAxis = {0, 0, 1};
    frame.zAxis = {1, 0, 0};
    BodyPtr body(SKRBodyBuilder::extrudedMember(rectangle(100, 60), 2500, frame));
    ASSERT_TRUE(body);
    expectBox(*body, {1000, -50, -30}, {3500, 50, 30}, 1e-9);
}

TEST(ExtrudedMember, ARingOfTrueArcsHasTheExactRingArea) {
    BodyPtr pipe(SKRBodyBuilder::extrudedMember(ring(44.5, 40.5), 3000, identity()));
    ASSERT_TRUE(pipe);
    const double area = kPi * (44.5 * 44.5 - 40.5 * 40.5);
    EXPECT_NEAR(pipe->Volume(), area * 3000, 1e-9 * area * 3000);
    expectBox(*pipe, {-44.5, -44.5, 0}, {44.5, 44.5, 3000}, 1e-7);
}

TEST(ExtrudedMember, BadLengthSectionOrFrameIsRefused) {
    const CPolygon section = rectangle(10, 10);
    for (double length : {0.0, -5.0, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        QString error;
        EXPECT_EQ(SKRBodyBuilder::extrudedMember(section, length, identity(), &error), nullptr) << length;
        EXPECT_TRUE(error.contains(QStringLiteral("length"))) << error.toStdString();
    }
    QString error;
    EXPECT_EQ(SKRBodyBuilder::extrudedMember(CPolygon(), 100, identity(), &error), nullptr);
    EXPECT_FALSE(error.isEmpty());
    CCoord3 noAxis;
    noAxis.zAxis = {0, 0, 0};
    error.clear();
    EXPECT_EQ(SKRBodyBuilder::extrudedMember(section, 100, noAxis, &error), nullptr);
    EXPECT_FALSE(error.isEmpty());
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

TEST(SweptMember, BadPathsAreRefusedNamingThePiece) {
    const CPolygon section = rectangle(20, 10);
    QString error;
    EXPECT_EQ(SKRBodyBuilder::sweptMember(section, SKRSweepPath({0, 0, 0}), {0, 0, 1}, &error), nullptr);
    EXPECT_FALSE(error.isEmpty());

    SKRSweepPath standing({0, 0, 0});
    standing.lineTo({100, 0, 0});
    standing.lineTo({100, 0, 0});
    EXPECT_EQ(SKRBodyBuilder::sweptMember(section, standing, {0, 0, 1}, &error), nullptr);
    EXPECT_TRUE(error.contains(QStringLiteral("piece 1"))) << error.toStdString();

    SKRSweepPath straightArc({0, 0, 0});
    straightArc.arcTo({50, 0, 0}, {100, 0, 0});
    EXPECT_EQ(SKRBodyBuilder::sweptMember(section, straightArc, {0, 0, 1}, &error), nullptr);
    EXPECT_TRUE(error.contains(QStringLiteral("piece 0"))) << error.toStdString();

    SKRSweepPath line({0, 0, 0});
    line.lineTo({100, 0, 0});
    EXPECT_EQ(SKRBodyBuilder::sweptMember(section, line, {5, 0, 0}, &error), nullptr);
    EXPECT_TRUE(error.contains(QStringLiteral("parallel"))) << error.toStdString();
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

TEST(SpiralMember, AFlatSectionKeepsItsWidthPointingAwayFromTheAxis) {
    // A 20 x 6 flat wound once: its 20 mm side stays radial all round, so the coil reaches exactly
    // R + 10 from the axis in every direction. Any twist about the helix would tilt the flat and
    // push the coil out further (up to R + 10.4).
    const SKRHelix h = helix(100, 50, 1);
    QString error;
    BodyPtr body(SKRBodyBuilder::spiralMember(rectangle(20, 6), h, &error));
    ASSERT_TRUE(body) << error.toStdString();
    const ndp::CBox3d box = body->BoundingBox();
    for (int axis : {0, 1}) {
        EXPECT_NEAR(box.max[axis], 110, 0.02) << "axis " << axis;
        EXPECT_NEAR(box.min[axis], -110, 0.02) << "axis " << axis;
    }
    const double length = std::hypot(2 * kPi * h.radius, h.pitch);
    EXPECT_NEAR(body->Volume(), 20 * 6 * length, 1e-6 * 20 * 6 * length);
}

TEST(SpiralMember, AHollowSectionKeepsItsHole) {
    const SKRHelix h = helix(200, 80, 1.5);
    QString error;
    BodyPtr body(SKRBodyBuilder::spiralMember(ring(15, 11), h, &error));
    ASSERT_TRUE(body) << error.toStdString();
    const double length = h.turns * std::hypot(2 * kPi * h.radius, h.pitch);
    const double area = kPi * (15 * 15 - 11 * 11);
    EXPECT_NEAR(body->Volume(), area * length, 1e-6 * area * length);
}

TEST(SpiralMember, HelicesThatCannotHoldTheSectionAreRefused) {
    struct Refusal {
        const char* why;
        SKRHelix helix;
    } refusals[] = {
        {"no pitch", helix(100, 0, 2)},
        {"no turns", helix(100, 50, 0)},
        {"negative radius", helix(-100, 50, 2)},
        {"turns closer than the section", helix(100, 15, 2)},
        {"section reaches the axis", helix(8, 50, 2)},
    };
    for (const Refusal& r : refusals) {
        SCOPED_TRACE(r.why);
        QString error;
        EXPECT_EQ(SKRBodyBuilder::spiralMember(ring(10), r.helix, &error), nullptr);
        EXPECT_FALSE(error.isEmpty());
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

TEST(FilletedBody, APlaneAlongTheAxisThroughTheFilletsCutsTheirCurvedFaces) {
    BodyPtr box(CBody::CreateBox(identity(), 100, 60, 1000));
    const double r = 8, x0 = 3;
    BodyPtr rounded(SKRBodyBuilder::filletedBody(box.get(), r, {0, 0, 1}));
    ASSERT_TRUE(rounded);
    ndp::CPlane plane;
    ASSERT_TRUE(plane.Create({x0, 0, 0}, {1, 0, 0}));
    ndp::CBooleanOperate op(true, true, true, true);
    BodyPtr strip(op.SplitNegativeBody(plane, rounded.get()));
    ASSERT_TRUE(strip) << op.GetLastError().toStdString();
    // Left of x0 the section is 60 high less the two corners below the arcs about (r, r) and
    // (r, 60 - r): each corner cut off is r x0 less the integral of sqrt(r^2 - u^2), u = r - x.
    const auto primitive = [r](double u) { return u / 2 * std::sqrt(r * r - u * u) + r * r / 2 * std::asin(u / r); };
    const double underArc = primitive(r) - primitive(r - x0);
    const double area = 60 * x0 - 2 * (r * x0 - underArc);
    EXPECT_NEAR(strip->Volume(), area * 1000, 1e-6 * area * 1000);
    EXPECT_NEAR(strip->BoundingBox().max[0], x0, 1e-6);
}

TEST(FilletedBody, EveryEdgeRoundedGivesTheRoundedBox) {
    // A box with every edge rounded by r is the inner box a', b', c' grown by a ball of radius r.
    const double a = 100, b = 60, c = 40, r = 5;
    BodyPtr box(CBody::CreateBox(identity(), a, b, c));
    QString error;
    BodyPtr rounded(SKRBodyBuilder::filletedBody(box.get(), r, {0, 0, 0}, &error));
    ASSERT_TRUE(rounded) << error.toStdString();
    const double ai = a - 2 * r, bi = b - 2 * r, ci = c - 2 * r;
    const double expected = ai * bi * ci + 2 * r * (ai * bi + bi * ci + ci * ai) + kPi * r * r * (ai + bi + ci) +
                            4.0 / 3.0 * kPi * r * r * r;
    EXPECT_NEAR(rounded->Volume(), expected, 1e-9 * expected);
    EXPECT_TRUE(rounded->IsValid());
}

TEST(FilletedBody, RadiiThatDoNotFitAndEdgesThatAreNotThereAreRefused) {
    BodyPtr box(CBody::CreateBox(identity(), 100, 60, 1000));
    QString error;
    EXPECT_EQ(SKRBodyBuilder::filletedBody(box.get(), 40, {0, 0, 1}, &error), nullptr);
    EXPECT_FALSE(error.isEmpty());
    error.clear();
    EXPECT_EQ(SKRBodyBuilder::filletedBody(box.get(), 5, {1, 1, 0}, &error), nullptr);
    EXPECT_TRUE(error.contains(QStringLiteral("no straight edge"))) << error.toStdString();
    error.clear();
    EXPECT_EQ(SKRBodyBuilder::filletedBody(box.get(), 0, {0, 0, 1}, &error), nullptr);
    EXPECT_FALSE(error.isEmpty());
    error.clear();
    EXPECT_EQ(SKRBodyBuilder::filletedBody(nullptr, 5, {0, 0, 1}, &error), nullptr);
    EXPECT_FALSE(error.isEmpty());
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

TEST(EllipticSolids, EllipsoidIsFourThirdsPiABC) {
    CCoord3 frame;
    frame.origin = {10, 20, 30};
    QString error;
    BodyPtr body(SKRBodyBuilder::ellipsoid(100, 60, 40, frame, &error));
    ASSERT_TRUE(body) << error.toStdString();
    const double expected = 4.0 / 3.0 * kPi * 100 * 60 * 40;
    EXPECT_NEAR(body->Volume(), expected, 1e-9 * expected);
    EXPECT_TRUE(body->IsValid());
    expectBox(*body, {-90, -40, -10}, {110, 80, 70}, 1e-3);
}

TEST(EllipticSolids, SizesThatAreNotPositiveAreRefused) {
    QString error;
    EXPECT_EQ(SKRBodyBuilder::ellipticCylinder(0, 80, 500, identity(), &error), nullptr);
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(SKRBodyBuilder::ellipticCylinder(150, 80, -1, identity(), &error), nullptr);
    EXPECT_EQ(SKRBodyBuilder::ellipsoid(100, std::nan(""), 40, identity(), &error), nullptr);
    EXPECT_EQ(SKRBodyBuilder::ellipsoid(100, 60, 0, identity(), &error), nullptr);
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

TEST(MemberFromSpecification, AnObliqueHeadCutRemovesTheWedgeUnderThePlane) {
    // The head plane through the axis, tilted 20 degrees about the section's X axis, keeps what
    // lies above it: below the axis (y < 0) a wedge of height -y tan 20 is cut off the member.
    const double h = 400, b = 200, tw = 8, t = 13, length = 6000;
    BodyPtr member(SKRBodyBuilder::memberFromSpecification(QStringLiteral("H400*200*8*13"), length, identity()));
    ASSERT_TRUE(member);
    const double angle = 20 * kPi / 180;
    ndp::CPlane head;
    ASSERT_TRUE(head.Create({0, 0, 0}, {0, std::sin(angle), std::cos(angle)}));
    ndp::CBooleanOperate op(true, true, true, true);
    BodyPtr kept(op.SplitPositiveBody(head, member.get()));
    ASSERT_TRUE(kept) << op.GetLastError().toStdString();
    BodyPtr wedge(op.SplitNegativeBody(head, member.get()));
    ASSERT_TRUE(wedge) << op.GetLastError().toStdString();
    // First moment of the lower half of the section about the X axis.
    const double lowerMoment = b * t * (h / 2 - t / 2) + tw * (h / 2 - t) * (h / 2 - t) / 2;
    EXPECT_NEAR(wedge->Volume(), std::tan(angle) * lowerMoment, 1e-6 * wedge->Volume());
    EXPECT_NEAR(kept->Volume(), hArea(h, b, tw, t) * length - std::tan(angle) * lowerMoment, 1e-6 * kept->Volume());
}
