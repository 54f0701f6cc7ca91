// Planar trims of straight prisms built directly, against the general split plane after plane:
// an H with root fillets, a welded H, a pipe and an angle, cut square, obliquely up to 80 degrees,
// at both ends, by planes that touch, miss or coincide, by planes that meet an end's plane inside
// the section (a corner of the end), and by planes the direct build leaves to the general split
// (a second corner on one end, along the axis, across the far end).
#include "ndp/NDPBody.h"
#include "ndp/NDPBodyOcct.h"
#include "ndp/NDPBooleanOperate.h"
#include "ndp/NDPPlane.h"
#include "ndp/NDPPolygon.h"
#include "ndp/NDPRef.h"

#include "platform/Loops.h"

#include <gtest/gtest.h>

#include <BRepCheck_Analyzer.hxx>
#include <BRepGProp.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <GProp_GProps.hxx>

#include <cmath>
#include <functional>
#include <memory>
#include <vector>

using namespace ndp;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kLength = 3000.0;
using BodyPtr = CRef<CBody>;

void add(CLoop* loop, CCurve2d* curve) { loop->AddCurve(curve, false); }

// A clockwise quarter arc (a root fillet of an outline running counter-clockwise).
CArc2d* fillet(CPoint2d from, CPoint2d to, double radius) { return new CArc2d(from, to, radius, 2); }

// An H 400 high and 200 wide, web 8, flanges 13, centred on the axis; with root fillets of 16.
std::unique_ptr<CPolygon> hSection(bool fillets) {
    const double r = fillets ? 16.0 : 0.0, w = 4.0, f = 187.0;
    auto* loop = new CLoop;
    auto corner = [&](CPoint2d from, CPoint2d to) {
        if (fillets) add(loop, fillet(from, to, r));
    };
    add(loop, new CLine2d({-100, -200}, {100, -200}));
    add(loop, new CLine2d({100, -200}, {100, -f}));
    add(loop, new CLine2d({100, -f}, {w + r, -f}));
    corner({w + r, -f}, {w, -f + r});
    add(loop, new CLine2d({w, -f + r}, {w, f - r}));
    corner({w, f - r}, {w + r, f});
    add(loop, new CLine2d({w + r, f}, {100, f}));
    add(loop, new CLine2d({100, f}, {100, 200}));
    add(loop, new CLine2d({100, 200}, {-100, 200}));
    add(loop, new CLine2d({-100, 200}, {-100, f}));
    add(loop, new CLine2d({-100, f}, {-w - r, f}));
    corner({-w - r, f}, {-w, f - r});
    add(loop, new CLine2d({-w, f - r}, {-w, -f + r}));
    corner({-w, -f + r}, {-w - r, -f});
    add(loop, new CLine2d({-w - r, -f}, {-100, -f}));
    add(loop, new CLine2d({-100, -f}, {-100, -200}));
    auto polygon = std::make_unique<CPolygon>();
    polygon->AddLoop(loop, true);
    return polygon;
}

std::unique_ptr<CPolygon> pipe() {
    auto polygon = std::make_unique<CPolygon>();
    for (const double radius : {109.5, 101.5}) {
        auto* loop = new CLoop;
        add(loop, new CArc2d({0, 0}, radius, 0.0, 2 * kPi));
        polygon->AddLoop(loop, true);
    }
    return polygon;
}

// An angle 100 x 100 x 10 with a root fillet of 12, its corner on the axis.
std::unique_ptr<CPolygon> angle() {
    auto* loop = new CLoop;
    add(loop, new CLine2d({0, 0}, {100, 0}));
    add(loop, new CLine2d({100, 0}, {100, 10}));
    add(loop, new CLine2d({100, 10}, {22, 10}));
    add(loop, fillet({22, 10}, {10, 22}, 12));
    add(loop, new CLine2d({10, 22}, {10, 100}));
    add(loop, new CLine2d({10, 100}, {0, 100}));
    add(loop, new CLine2d({0, 100}, {0, 0}));
    auto polygon = std::make_unique<CPolygon>();
    polygon->AddLoop(loop, true);
    return polygon;
}

// The section extruded along Z from z = 0 to kLength, as a prism body and as a plain one.
struct Member {
    BodyPtr prism, plain;
    double yMin, yMax;
};

Member extrude(const CPolygon& section) {
    TopoDS_Face face;
    QString error;
    EXPECT_TRUE(CBodyOcct::MakeFace(section, gp_Ax3(), face, &error)) << error.toStdString();
    const gp_Vec extrusion(0, 0, kLength);
    const TopoDS_Shape solid = BRepPrimAPI_MakePrism(face, extrusion).Shape();
    const CBox2d box = section.BoundingBox();
    return {BodyPtr(CBodyOcct::CreatePrism(solid, face, extrusion)), BodyPtr(CBodyOcct::Create(solid)), box.Min().y,
            box.Max().y};
}

CPlane plane(const CVector3& point, const CVector3& normal) {
    CPlane p;
    p.Create(point, normal);
    return p;
}

double radians(double degrees) { return degrees * kPi / 180.0; }

// A plane through z on the axis keeping the side towards the tail (head) or head (tail), tilted
// by degrees about X (about Y with aboutY).
CPlane end(double z, double degrees, bool tail, bool aboutY = false) {
    const double s = std::sin(radians(degrees)), c = std::cos(radians(degrees));
    const CVector3 normal = aboutY ? CVector3{s, 0, c} : CVector3{0, s, c};
    return plane({0, 0, z}, tail ? CVector3{-normal[0], -normal[1], -normal[2]} : normal);
}

struct Measures {
    double volume = 0, area = 0;
    int faces = 0;
};

Measures measure(const CBody& body) {
    const TopoDS_Shape& shape = CBodyOcct::Shape(body);
    GProp_GProps volume, area;
    BRepGProp::VolumeProperties(shape, volume, 1e-12);
    BRepGProp::SurfaceProperties(shape, area, 1e-12);
    return {volume.Mass(), area.Mass(), body.FaceCount()};
}

struct Case {
    const char* name;
    std::function<std::vector<CPlane>(const Member&)> planes;
    bool direct;  // built directly (or answered at once: whole, nothing)
};

const Case kCases[] = {
    {"square at both ends", [](const Member&) { return std::vector<CPlane>{end(300, 0, false), end(2700, 0, true)}; },
     true},
    {"oblique 45 and -30 about X", [](const Member&) { return std::vector<CPlane>{end(500, 45, false), end(2500, -30, true)}; },
     true},
    {"oblique 80 about Y at the head", [](const Member&) { return std::vector<CPlane>{end(800, 80, false, true)}; }, true},
    {"oblique 80 about Y at the tail", [](const Member&) { return std::vector<CPlane>{end(2200, -80, true, true)}; }, true},
    {"two head planes, the second further in",
     [](const Member&) { return std::vector<CPlane>{end(300, 10, false), end(900, -10, false, true)}; }, true},
    {"coincident planes", [](const Member&) { return std::vector<CPlane>{end(400, 20, false), end(400, 20, false)}; },
     true},
    {"a plane that misses", [](const Member&) { return std::vector<CPlane>{end(-100, 0, false), end(2000, 0, true)}; },
     true},
    {"a plane that touches an end from outside",
     [](const Member& m) { return std::vector<CPlane>{plane({0, m.yMin, 0}, {0, std::sin(0.5), std::cos(0.5)})}; }, true},
    {"a plane that touches an end and keeps nothing",
     [](const Member& m) { return std::vector<CPlane>{plane({0, m.yMax, 0}, {0, std::sin(0.5), -std::cos(0.5)})}; },
     true},
    {"through the ends' own planes (part of the section)",
     [](const Member& m) {
         const double y = 0.5 * (m.yMin + m.yMax) + 3, s = std::sin(radians(20)), c = std::cos(radians(20));
         return std::vector<CPlane>{plane({0, y, 0}, {0, s, c}), plane({0, y, kLength}, {0, s, -c})};
     },
     true},
    {"a corner across one flange, then a square tail",
     [](const Member& m) {
         const double s = std::sin(radians(30)), c = std::cos(radians(30));
         return std::vector<CPlane>{plane({0, m.yMax - 7, 0}, {0, s, c}), end(2500, 0, true)};
     },
     true},
    {"mitres through the end points on the axis (through the pipe's seams)",
     [](const Member&) { return std::vector<CPlane>{end(0, 20, false), end(kLength, -15, true)}; }, true},
    {"a corner about Y at the tail", [](const Member&) { return std::vector<CPlane>{end(kLength, -25, true, true)}; },
     true},
    {"two corners at one end",
     [](const Member& m) {
         const double y = 0.5 * (m.yMin + m.yMax), s = std::sin(radians(20)), c = std::cos(radians(20));
         return std::vector<CPlane>{plane({0, y, 0}, {0, s, c}), plane({0, y, 0}, {0, -s, c})};
     },
     false},
    {"along the axis (a notch)",
     [](const Member& m) { return std::vector<CPlane>{plane({0, 0.5 * (m.yMin + m.yMax), 0}, {0, -1, 0})}; }, false},
    {"head plane across the tail",
     [](const Member& m) { return std::vector<CPlane>{plane({0, m.yMax, 2950}, {0, std::sin(radians(60)), 0.5})}; },
     false},
};

struct Section {
    const char* name;
    std::function<std::unique_ptr<CPolygon>()> make;
};

const Section kSections[] = {{"H with fillets", [] { return hSection(true); }},
                             {"welded H", [] { return hSection(false); }},
                             {"pipe", pipe},
                             {"angle", angle}};

TEST(PrismTrim, DirectTrimsEqualTheGeneralSplitPlaneAfterPlane) {
    for (const Section& section : kSections) {
        const Member member = extrude(*section.make());
        ASSERT_TRUE(member.prism && member.plain) << section.name;
        for (const Case& c : kCases) {
            SCOPED_TRACE(std::string(section.name) + ": " + c.name);
            const std::vector<CPlane> planes = c.planes(member);
            CBooleanOperate direct(true, true, true, true);
            const BodyPtr trimmed(direct.TrimPositiveBody(planes, member.prism.get()));
            EXPECT_EQ(direct.LastTrimWasDirect(), c.direct);

            CBooleanOperate general(true, true, true, true);
            const BodyPtr split(general.TrimPositiveBody(planes, member.plain.get()));
            EXPECT_FALSE(general.LastTrimWasDirect());
            ASSERT_TRUE(general.GetLastError().isEmpty()) << general.GetLastError().toStdString();
            ASSERT_TRUE(direct.GetLastError().isEmpty()) << direct.GetLastError().toStdString();
            ASSERT_EQ(bool(trimmed), bool(split));
            if (!split) continue;

            const Measures a = measure(*trimmed), b = measure(*split);
            EXPECT_NEAR(a.volume, b.volume, 1e-9 * b.volume);
            EXPECT_NEAR(a.area, b.area, 1e-9 * b.area);
            EXPECT_EQ(a.faces, b.faces);
            EXPECT_EQ(trimmed->SolidCount(), 1);
            EXPECT_TRUE(BRepCheck_Analyzer(CBodyOcct::Shape(*trimmed)).IsValid());
        }
    }
}

// A trimmed prism is an ordinary body to the general split: cutting it again gives what cutting
// the general split's result gives.
TEST(PrismTrim, DirectResultsSplitLikeGeneralOnes) {
    const Member member = extrude(*hSection(true));
    const std::vector<CPlane> planes{end(600, 40, false), end(2400, -25, true, true)};
    CBooleanOperate op(true, true, true, true);
    const BodyPtr direct(op.TrimPositiveBody(planes, member.prism.get()));
    ASSERT_TRUE(op.LastTrimWasDirect());
    const BodyPtr general(op.TrimPositiveBody(planes, member.plain.get()));
    const CPlane across = plane({0, 50, 1500}, {0, 1, 0.3});
    const BodyPtr a(op.SplitPositiveBody(across, direct.get())), b(op.SplitPositiveBody(across, general.get()));
    ASSERT_TRUE(a && b) << op.GetLastError().toStdString();
    EXPECT_NEAR(a->Volume(), b->Volume(), 1e-9 * b->Volume());
    EXPECT_EQ(a->FaceCount(), b->FaceCount());
}

}  // namespace
