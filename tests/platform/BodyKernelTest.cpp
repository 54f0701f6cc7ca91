// The 3D geometry kernel: planes and their (u, v), bodies and their measures, splitting bodies by
// planes (intersecting, missing, touching, almost touching and barely intersecting), cut faces of
// hollow sections, polygons with arcs as faces, tessellation and STL/STEP export.
#include "ndp/NDPBody.h"
#include "ndp/NDPRef.h"
#include "ndp/NDPBodyExport.h"
#include "ndp/NDPBodyMesh.h"
#include "ndp/NDPBodyOcct.h"
#include "ndp/NDPBooleanOperate.h"
#include "ndp/NDPMeshParameter.h"
#include "ndp/NDPPlane.h"
#include "ndp/NDPPolygon.h"
#include "ndp/NDPTolerance.h"

#include "platform/Loops.h"

#include <gtest/gtest.h>

#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <STEPControl_Reader.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cmath>
#include <limits>
#include <memory>

using namespace ndp;

namespace {

const double kPi = 3.14159265358979323846;

using BodyPtr = ndp::CRef<ndp::CBody>;

void expectVector(const CVector3& actual, const CVector3& expected, double tolerance = 1e-12) {
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << "component " << i;
}

CCoord3 identity() { return CCoord3(); }

// A box 100 x 60 x 1000 from the origin: the section in X-Y, the member axis along Z.
BodyPtr member() { return BodyPtr(CBody::CreateBox(identity(), 100, 60, 1000)); }
constexpr double kSectionArea = 100.0 * 60.0;
constexpr double kMemberVolume = kSectionArea * 1000.0;

CPlane plane(const CVector3& point, const CVector3& normal) {
    CPlane p;
    EXPECT_TRUE(p.Create(point, normal));
    return p;
}

CBooleanOperate operate() { return CBooleanOperate(true, true, true, true); }

// A prism of polygon along Z, made directly on the kernel; null when the face cannot be made.
BodyPtr prism(const CPolygon& polygon, double length) {
    gp_Ax3 placement;
    TopoDS_Face face;
    QString error;
    if (!CBodyOcct::ToAx3(identity(), placement, &error) || !CBodyOcct::MakeFace(polygon, placement, face, &error)) {
        ADD_FAILURE() << error.toStdString();
        return nullptr;
    }
    return BodyPtr(CBodyOcct::Create(BRepPrimAPI_MakePrism(face, gp_Vec(0, 0, length)).Shape()));
}

int wireCount(const CBody& body) {
    int count = 0;
    for (TopExp_Explorer it(CBodyOcct::Shape(body), TopAbs_WIRE); it.More(); it.Next()) ++count;
    return count;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Planes

TEST(KernelPlane, UIsGlobalXProjectedAndUVNormalAreRightHanded) {
    const CVector3 normal{1, 2, 3};
    const CPlane p = plane({5, -4, 2}, normal);
    const CVector3 n = Normalized(normal);
    expectVector(p.GetNormal(), n);
    expectVector(p.GetUDirection(), Normalized(CVector3{1, 0, 0} - n[0] * n));
    expectVector(Cross(p.GetUDirection(), p.GetVDirection()), p.GetNormal());
    EXPECT_NEAR(Dot(p.GetUDirection(), p.GetVDirection()), 0.0, 1e-15);
    EXPECT_NEAR(Length(p.GetVDirection()), 1.0, 1e-15);
}

TEST(KernelPlane, NearestUVAndGetPointRoundTrip) {
    const CPlane p = plane({10, 20, 30}, {0.3, -0.5, 0.8});
    const CVector3 point{-40, 75, 12};
    double u = 0, v = 0;
    ASSERT_TRUE(p.GetNearestUV(point, u, v, g_DistEpsilon));
    const CVector3 foot = p.GetPoint(u, v);
    // The foot lies on the plane and the point is straight above it along the normal.
    EXPECT_NEAR(p.SignedDistance(foot), 0.0, 1e-12);
    expectVector(point - foot, p.SignedDistance(point) * p.GetNormal(), 1e-12);
    // And parameters taken to a point come back as they were.
    double u2 = 0, v2 = 0;
    ASSERT_TRUE(p.GetNearestUV(p.GetPoint(17.5, -3.25), u2, v2, 0.0));
    EXPECT_NEAR(u2, 17.5, 1e-12);
    EXPECT_NEAR(v2, -3.25, 1e-12);
    expectVector(p.GetPoint(0, 0), {10, 20, 30});
}

// ---------------------------------------------------------------------------------------------
// Bodies

TEST(KernelBody, BoxHasItsVolumeBoxAndTopology) {
    BodyPtr box = member();
    ASSERT_TRUE(box);
    EXPECT_EQ(box->GetRefCount(), 1);
    EXPECT_NEAR(box->Volume(), kMemberVolume, 1e-6);
    EXPECT_NEAR(box->SurfaceArea(), 2 * (100 * 60 + 100 * 1000 + 60 * 1000), 1e-6);
    EXPECT_EQ(box->SolidCount(), 1);
    EXPECT_EQ(box->FaceCount(), 6);
    EXPECT_FALSE(box->IsEmpty());
    EXPECT_TRUE(box->IsValid());
    const CBox3d bounds = box->BoundingBox();
    ASSERT_FALSE(bounds.IsEmpty());
    expectVector(bounds.min, {0, 0, 0}, 1e-9);
    expectVector(bounds.max, {100, 60, 1000}, 1e-9);
}

// ---------------------------------------------------------------------------------------------
// Polygons as faces

TEST(KernelPolygonFace, ArcsAreTrueCirclesAndTheAreaIsThePolygons) {
    // A slot (two half circles joined by lines) with a round hole and a square hole.
    CPolygon polygon;
    auto* outer = new CLoop;
    outer->AddCurve(new CLine2d({0, 0}, {300, 0}), false);
    outer->AddCurve(new CArc2d({300, 0}, {300, 100}, 50, 1), false);
    outer->AddCurve(new CLine2d({300, 100}, {0, 100}), false);
    outer->AddCurve(new CArc2d({0, 100}, {0, 0}, 50, 1), false);
    polygon.AddLoop(outer, true);
    auto* round = new CLoop;
    round->AddCurve(new CArc2d({60, 50}, 20, 0.0, 2 * kPi), false);
    polygon.AddLoop(round, true);
    polygon.AddLoop(rectangle(150, 30, 250, 70), true);

    QString error;
    BodyPtr face(CBody::CreateFace(polygon, identity(), &error));
    ASSERT_TRUE(face) << error.toStdString();
    const double expected = 300 * 100 + kPi * 50 * 50 - kPi * 20 * 20 - 100 * 40;
    EXPECT_NEAR(polygon.Area(), expected, 1e-9);
    EXPECT_NEAR(face->SurfaceArea(), polygon.Area(), 1e-9 * expected);
    EXPECT_TRUE(face->IsEmpty());
    EXPECT_EQ(face->FaceCount(), 1);
    EXPECT_EQ(wireCount(*face), 3);
    // The half circles bulge out to x = -50 and x = 350.
    const CBox3d bounds = face->BoundingBox();
    EXPECT_NEAR(bounds.min[0], -50, 1e-9);
    EXPECT_NEAR(bounds.max[0], 350, 1e-9);
}

TEST(KernelPolygonFace, OpenEmptyAndFlatLoopsAreRefusedWithWhere) {
    QString error;
    EXPECT_EQ(CBody::CreateFace(CPolygon(), identity(), &error), nullptr);
    EXPECT_FALSE(error.isEmpty());

    CPolygon open;
    auto* loop = new CLoop;
    loop->AddCurve(new CLine2d({0, 0}, {10, 0}), false);
    loop->AddCurve(new CLine2d({10, 0}, {10, 10}), false);
    loop->AddCurve(new CLine2d({10, 10}, {0, 9}), false);
    loop->AddCurve(new CLine2d({0, 10}, {0, 0}), false);
    open.AddLoop(loop, true);
    error.clear();
    EXPECT_EQ(CBody::CreateFace(open, identity(), &error), nullptr);
    EXPECT_TRUE(error.contains(QStringLiteral("loop 0"))) << error.toStdString();
    EXPECT_TRUE(error.contains(QStringLiteral("curve 3"))) << error.toStdString();

    CPolygon flat;
    auto* there = new CLoop;
    there->AddCurve(new CLine2d({0, 0}, {10, 0}), false);
    there->AddCurve(new CLine2d({10, 0}, {0, 0}), false);
    flat.AddLoop(there, true);
    error.clear();
    EXPECT_EQ(CBody::CreateFace(flat, identity(), &error), nullptr);
    EXPECT_TRUE(error.contains(QStringLiteral("no area"))) << error.toStdString();
}

// ---------------------------------------------------------------------------------------------
// Splitting: an oblique plane through the member

TEST(KernelSplit, ObliquePlaneSidesHaveTheirClosedFormVolumes) {
    BodyPtr body = member();
    // Normal (1, 2, 10) through (20, 10, 300): over the section the plane stays between z = 280
    // and z = 305, and at the section's centroid (50, 30) it is at z = 293.
    const CPlane p = plane({20, 10, 300}, {1, 2, 10});
    const double zAtCentroid = 300 - (1 * 30 + 2 * 20) / 10.0;
    CBooleanOperate op = operate();
    BodyPtr positive(op.SplitPositiveBody(p, body.get()));
    ASSERT_TRUE(positive) << op.GetLastError().toStdString();
    BodyPtr negative(op.SplitNegativeBody(p, body.get()));
    ASSERT_TRUE(negative) << op.GetLastError().toStdString();

    EXPECT_NEAR(positive->Volume(), kSectionArea * (1000 - zAtCentroid), 1e-6 * kMemberVolume);
    EXPECT_NEAR(negative->Volume(), kSectionArea * zAtCentroid, 1e-6 * kMemberVolume);
    EXPECT_NEAR(positive->Volume() + negative->Volume(), kMemberVolume, 1e-6 * kMemberVolume);
    EXPECT_TRUE(positive->IsValid());
    EXPECT_TRUE(negative->IsValid());
    EXPECT_EQ(positive->SolidCount(), 1);

    // The kept side of each lies beyond the plane's lowest and highest points over the section.
    const double zLow = 300 - (1 * 80 + 2 * 50) / 10.0, zHigh = 300 - (1 * -20 + 2 * -10) / 10.0;
    EXPECT_NEAR(positive->BoundingBox().min[2], zLow, 1e-6);
    EXPECT_NEAR(positive->BoundingBox().max[2], 1000, 1e-6);
    EXPECT_NEAR(negative->BoundingBox().min[2], 0, 1e-6);
    EXPECT_NEAR(negative->BoundingBox().max[2], zHigh, 1e-6);

    // The input body is untouched and still the caller's alone.
    EXPECT_NEAR(body->Volume(), kMemberVolume, 1e-6);
    EXPECT_EQ(body->GetRefCount(), 1);
}

// A member fused from two halves has its side faces split at the joint; the unified side of a
// cut has one face per surface again, as a member made whole does, and a plain one keeps the joint.
TEST(KernelSplit, AUnifiedSideHasOneFacePerSurface) {
    const TopoDS_Shape halves = BRepAlgoAPI_Fuse(BRepPrimAPI_MakeBox(gp_Pnt(0, 0, 0), 100, 60, 500).Shape(),
                                                 BRepPrimAPI_MakeBox(gp_Pnt(0, 0, 500), 100, 60, 500).Shape()).Shape();
    BodyPtr joined(CBodyOcct::Create(halves));
    ASSERT_EQ(joined->FaceCount(), 10);
    const CPlane p = plane({20, 10, 300}, {1, 2, 10});
    CBooleanOperate plain(true, true, false, true);
    CBooleanOperate unified = operate();
    BodyPtr kept(plain.SplitPositiveBody(p, joined.get()));
    BodyPtr merged(unified.SplitPositiveBody(p, joined.get()));
    BodyPtr whole(unified.SplitPositiveBody(p, member().get()));
    ASSERT_TRUE(kept && merged && whole) << plain.GetLastError().toStdString() << unified.GetLastError().toStdString();
    EXPECT_EQ(whole->FaceCount(), 6);
    EXPECT_EQ(merged->FaceCount(), whole->FaceCount());
    EXPECT_EQ(kept->FaceCount(), 10);
    EXPECT_NEAR(merged->Volume(), whole->Volume(), 1e-9 * kMemberVolume);
    EXPECT_TRUE(merged->IsValid());
}

TEST(KernelSplit, AHollowSectionsCutFaceKeepsItsHole) {
    // A box tube 200 x 100 with 6 mm walls, cut at 45 degrees to its axis.
    CPolygon tube;
    tube.AddLoop(rectangle(0, 0, 100, 200), true);
    tube.AddLoop(rectangle(6, 6, 94, 194), true);
    const double area = 100 * 200 - 88 * 188;
    BodyPtr body = prism(tube, 2000);
    ASSERT_TRUE(body);
    ASSERT_NEAR(body->Volume(), area * 2000, 1e-6 * area * 2000);

    const CPlane p = plane({50, 100, 1000}, {1, 0, 1});
    CBooleanOperate op = operate();
    CBody *positive = nullptr, *negative = nullptr, *cut = nullptr;
    ASSERT_TRUE(op.SplitBody(p, body.get(), positive, negative, cut)) << op.GetLastError().toStdString();
    BodyPtr keepPositive(positive), keepNegative(negative), keepCut(cut);
    ASSERT_TRUE(cut);
    EXPECT_NEAR(cut->SurfaceArea(), area / std::cos(kPi / 4), 1e-6 * area);
    EXPECT_EQ(cut->FaceCount(), 1);
    EXPECT_EQ(wireCount(*cut), 2);  // the outer boundary and the hole, nothing filling it
    ASSERT_TRUE(positive && negative);
    EXPECT_NEAR(positive->Volume(), area * 1000, 1e-6 * area * 2000);
    EXPECT_NEAR(negative->Volume(), area * 1000, 1e-6 * area * 2000);

    // The cut face alone is the same face; a plane past the end cuts none.
    CBody* alone = nullptr;
    ASSERT_TRUE(op.CutFace(p, body.get(), alone)) << op.GetLastError().toStdString();
    BodyPtr keepAlone(alone);
    ASSERT_TRUE(alone);
    EXPECT_NEAR(alone->SurfaceArea(), cut->SurfaceArea(), 1e-9 * area);
    EXPECT_EQ(wireCount(*alone), 2);
    CBody* none = body.get();
    EXPECT_TRUE(op.CutFace(plane({50, 100, 3000}, {0, 0, 1}), body.get(), none));
    EXPECT_EQ(none, nullptr);
    EXPECT_FALSE(op.CutFace(p, nullptr, none));
}

// ---------------------------------------------------------------------------------------------
// Splitting: planes that miss, touch, almost touch or barely cut the member (normal +Z, through
// z0). SplitPositiveBody keeps what is above z0, SplitNegativeBody what is below.

struct SideCase {
    const char* name;
    double z0;
    double positiveVolume;  // 0: null expected
    double negativeVolume;
};

void PrintTo(const SideCase& c, std::ostream* out) { *out << c.name; }

class KernelSplitCases : public ::testing::TestWithParam<SideCase> {};

TEST_P(KernelSplitCases, EachSideKeepsWhatLiesBeyondThePlane) {
    const SideCase c = GetParam();
    BodyPtr body = member();
    const CPlane p = plane({0, 0, c.z0}, {0, 0, 1});
    CBooleanOperate op = operate();
    for (bool positiveSide : {true, false}) {
        SCOPED_TRACE(positiveSide ? "positive side" : "negative side");
        const double expected = positiveSide ? c.positiveVolume : c.negativeVolume;
        BodyPtr part(positiveSide ? op.SplitPositiveBody(p, body.get()) : op.SplitNegativeBody(p, body.get()));
        EXPECT_TRUE(op.GetLastError().isEmpty()) << op.GetLastError().toStdString();
        if (expected == 0.0) {
            EXPECT_FALSE(part) << "volume " << part->Volume();
            continue;
        }
        ASSERT_TRUE(part);
        EXPECT_NE(part.get(), body.get());
        EXPECT_NEAR(part->Volume(), expected, 1e-6 * expected);
        EXPECT_TRUE(part->IsValid());
    }
}

const double kBarely = 1e-3;
INSTANTIATE_TEST_SUITE_P(
    Matrix, KernelSplitCases,
    ::testing::Values(
        SideCase{"MidSpan", 400, kSectionArea * 600, kSectionArea * 400},
        SideCase{"MissesBeyondTheTail", 1500, 0, kMemberVolume},
        SideCase{"MissesBeforeTheHead", -500, kMemberVolume, 0},
        SideCase{"OnTheTailFace", 1000, 0, kMemberVolume},
        SideCase{"OnTheHeadFace", 0, kMemberVolume, 0},
        SideCase{"JustInsideTheTailWithinTolerance", 1000 - 0.5 * g_DistEpsilon, 0, kMemberVolume},
        SideCase{"JustOutsideTheTailWithinTolerance", 1000 + 0.5 * g_DistEpsilon, 0, kMemberVolume},
        SideCase{"JustInsideTheHeadWithinTolerance", 0.5 * g_DistEpsilon, kMemberVolume, 0},
        SideCase{"JustBeyondTheToleranceIntoTheTail", 1000 - 3 * g_DistEpsilon, kSectionArea * 3 * g_DistEpsilon,
                 kSectionArea * (1000 - 3 * g_DistEpsilon)},
        SideCase{"BarelyIntoTheTail", 1000 - kBarely, kSectionArea * kBarely, kSectionArea * (1000 - kBarely)},
        SideCase{"BarelyIntoTheHead", kBarely, kSectionArea * (1000 - kBarely), kSectionArea * kBarely}),
    [](const ::testing::TestParamInfo<SideCase>& info) { return std::string(info.param.name); });

TEST(KernelSplit, NullAndFaceOnlyBodiesAreRefusedWithAReason) {
    CBooleanOperate op = operate();
    const CPlane p;
    EXPECT_EQ(op.SplitPositiveBody(p, nullptr), nullptr);
    EXPECT_FALSE(op.GetLastError().isEmpty());
    EXPECT_EQ(op.SplitNegativeBody(p, nullptr), nullptr);
    EXPECT_FALSE(op.GetLastError().isEmpty());

    CPolygon square;
    square.AddLoop(rectangle(-1, -1, 1, 1), true);
    BodyPtr face(CBody::CreateFace(square, identity()));
    ASSERT_TRUE(face);
    EXPECT_EQ(op.SplitPositiveBody(p, face.get()), nullptr);
    EXPECT_TRUE(op.GetLastError().contains(QStringLiteral("no solid"))) << op.GetLastError().toStdString();

    BodyPtr stale = member();
    CBody* positive = stale.get();
    CBody* negative = stale.get();
    CBody* cut = stale.get();
    EXPECT_FALSE(op.SplitBody(p, nullptr, positive, negative, cut));
    EXPECT_EQ(positive, nullptr);
    EXPECT_EQ(negative, nullptr);
    EXPECT_EQ(cut, nullptr);
}

// ---------------------------------------------------------------------------------------------
// Tessellation and export

namespace {

// The volume enclosed by a closed triangle mesh (divergence theorem): positive only when every
// triangle runs counter-clockwise seen from outside.
double meshVolume(const CBodyMesh& mesh) {
    const auto& v = mesh.GetVertices();
    const auto& idx = mesh.GetIndices();
    double sum = 0;
    for (size_t t = 0; t < idx.size(); t += 3) {
        const CVector3 a{v[3 * idx[t]], v[3 * idx[t] + 1], v[3 * idx[t] + 2]};
        const CVector3 b{v[3 * idx[t + 1]], v[3 * idx[t + 1] + 1], v[3 * idx[t + 1] + 2]};
        const CVector3 c{v[3 * idx[t + 2]], v[3 * idx[t + 2] + 1], v[3 * idx[t + 2] + 2]};
        sum += Dot(a, Cross(b, c));
    }
    return sum / 6.0;
}

BodyPtr roundBar(double radius, double length) {
    CPolygon disc;
    auto* loop = new CLoop;
    loop->AddCurve(new CArc2d({0, 0}, radius, 0.0, 2 * kPi), false);
    disc.AddLoop(loop, true);
    return prism(disc, length);
}

}  // namespace

TEST(KernelMesh, ABoxIsTwelveOutwardTrianglesWithFaceNormals) {
    BodyPtr box = member();
    CBodyMesh mesh;
    QString error;
    ASSERT_TRUE(mesh.Build(box.get(), CMeshParameter(0.5, 0.5), &error)) << error.toStdString();
    EXPECT_EQ(mesh.GetTriangleCount(), 12);
    EXPECT_EQ(mesh.GetVertexCount(), 24);
    EXPECT_NEAR(meshVolume(mesh), kMemberVolume, 1e-6 * kMemberVolume);
    const CVector3 centre{50, 30, 500};
    for (int i = 0; i < mesh.GetVertexCount(); ++i) {
        const CVector3 p{mesh.GetVertices()[3 * i], mesh.GetVertices()[3 * i + 1], mesh.GetVertices()[3 * i + 2]};
        const CVector3 n{mesh.GetNormals()[3 * i], mesh.GetNormals()[3 * i + 1], mesh.GetNormals()[3 * i + 2]};
        EXPECT_NEAR(Length(n), 1.0, 1e-9);
        EXPECT_GT(Dot(n, p - centre), 0.0) << "vertex " << i;
    }
}

TEST(KernelExport, StepKeepsTheExactGeometry) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    BodyPtr bar = roundBar(20, 100);
    ASSERT_TRUE(bar);
    const QString path = dir.filePath(QStringLiteral("bar.step"));
    QString error;
    ASSERT_TRUE(ExportBodyStep(bar.get(), path, &error)) << error.toStdString();

    STEPControl_Reader reader;
    ASSERT_EQ(reader.ReadFile(QFile::encodeName(path).constData()), IFSelect_RetDone);
    ASSERT_GT(reader.TransferRoots(), 0);
    BodyPtr back(CBodyOcct::Create(reader.OneShape()));
    EXPECT_NEAR(back->Volume(), bar->Volume(), 1e-6 * bar->Volume());
}
