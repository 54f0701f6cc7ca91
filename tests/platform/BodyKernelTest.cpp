// The planar and 3D geometry kernels. Planar: lines and the four arc types, loop areas and
// turning senses, polygons with holes and the stored form of a polygon (polygon fields of records:
// DatabaseTest). 3D: planes and their (u, v), polygons with arcs as faces, splitting bodies by
// planes (intersecting, missing, touching, almost touching and barely intersecting), cut faces of
// hollow sections, tessellation and STEP export; and planar trims of straight prisms built
// directly, against the general split plane after plane.
#include "ndp/NDPBody.h"
#include "ndp/NDPBodyExport.h"
#include "ndp/NDPBodyMesh.h"
#include "ndp/NDPBodyOcct.h"
#include "ndp/NDPBooleanOperate.h"
#include "ndp/NDPMeshParameter.h"
#include "ndp/NDPRef.h"
#include "ndp/NDPTolerance.h"

#include "platform/Loops.h"

#include <gtest/gtest.h>

#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepGProp.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <GProp_GProps.hxx>
#include <STEPControl_Reader.hxx>
#include <TopExp_Explorer.hxx>

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

using namespace ndp;

namespace {

using BodyPtr = CRef<CBody>;

void expectVector(const CVector3& actual, const CVector3& expected, double tolerance = 1e-12) {
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << "component " << i;
}

// A box 100 x 60 x 1000 from the origin: the section in X-Y, the member axis along Z.
BodyPtr member() { return BodyPtr(CBody::CreateBox(CCoord3(), 100, 60, 1000)); }
constexpr double kSectionArea = 100.0 * 60.0;
constexpr double kMemberVolume = kSectionArea * 1000.0;

CBooleanOperate operate() { return CBooleanOperate(true, true, true, true); }

// A section extruded along Z from z = 0 to length, as a prism body and as a plain one.
struct Extruded { BodyPtr prism, plain; double yMin, yMax; };

Extruded extrude(const CPolygon& section, double length) {
    TopoDS_Face face;
    QString error;
    EXPECT_TRUE(CBodyOcct::MakeFace(section, gp_Ax3(), face, &error)) << error.toStdString();
    const gp_Vec extrusion(0, 0, length);
    const TopoDS_Shape solid = BRepPrimAPI_MakePrism(face, extrusion).Shape();
    const CBox2d box = section.BoundingBox();
    return {BodyPtr(CBodyOcct::CreatePrism(solid, face, extrusion)), BodyPtr(CBodyOcct::Create(solid)), box.Min().y,
            box.Max().y};
}

int wireCount(const CBody& body) {
    int count = 0;
    for (TopExp_Explorer it(CBodyOcct::Shape(body), TopAbs_WIRE); it.More(); it.Next()) ++count;
    return count;
}

CLoop* segments(std::initializer_list<std::pair<CPoint2d, CPoint2d>> lines) {
    auto* loop = new CLoop;
    for (const auto& line : lines) loop->AddCurve(new CLine2d(line.first, line.second), false);
    return loop;
}

bool finite(const CPoint2d& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

void expectPoint(const CPoint2d& actual, double x, double y, double tolerance = 1e-9) {
    EXPECT_NEAR(actual.x, x, tolerance);
    EXPECT_NEAR(actual.y, y, tolerance);
}

// Outer rectangle with a round and a square hole, and arcs of every type in a further loop.
CPolygon samplePolygon() {
    CPolygon polygon;
    polygon.AddLoop(rectangle(0, 0, 100.125, 50.0 / 3), true);
    polygon.AddLoop(circle(20.1, 8.3, 10.0 / 7), true);
    auto* mixed = new CLoop;
    mixed->AddCurve(new CArc2d({40, 2}, {60.3, 2.7}, 13.7, 1), false);
    mixed->AddCurve(new CArc2d({60.3, 2.7}, {61, 12}, 7.1, 2), false);
    mixed->AddCurve(new CArc2d({61, 12}, {45, 14}, 30, 3), false);
    mixed->AddCurve(new CArc2d({45, 14}, {40, 2}, 0.1, 4), false);
    mixed->AddCurve(new CLine2d({40, 2}, {40, 2}), false);
    polygon.AddLoop(mixed, true);
    return polygon;
}

TEST(LineLoops, LinesArcsLoopsAndPolygonsHaveTheirAreasLengthsBoxesAndTurningSenses) {
    // Lengths, closure and boxes of lines are also those of the slot below and the polygon's box.
    std::unique_ptr<CLoop> loop(rectangle(2, 3, 12, 8));
    EXPECT_DOUBLE_EQ(loop->SignedArea(), 50.0);
    EXPECT_EQ(loop->ClockSign(), 1);
    // Reversed, it turns clockwise; the last side, turned round, comes first.
    loop->Reverse();
    EXPECT_EQ(loop->ClockSign(), -1);
    EXPECT_DOUBLE_EQ(loop->SignedArea(), -50.0);
    EXPECT_EQ(loop->GetCurve(0)->StartPoint(), CPoint2d(2, 3));
    EXPECT_EQ(loop->GetCurve(0)->EndPoint(), CPoint2d(2, 8));

    // Empty and flat loops have no turning sense.
    CLoop empty;
    EXPECT_EQ(empty.ClockSign(), 0);
    EXPECT_FALSE(empty.IsClosed());
    EXPECT_TRUE(empty.BoundingBox().IsEmpty());
    CLoop flat;  // there and back along one line
    flat.AddCurve(new CLine2d({0, 0}, {10, 10}), false);
    flat.AddCurve(new CLine2d({10, 10}, {0, 0}), false);
    EXPECT_EQ(flat.ClockSign(), 0);

    // The four arc types between the same points are the four distinct arcs.
    // Chord from (0,0) to (10,0), radius 13: the centres lie 12 above or below the midpoint.
    const CPoint2d p(0, 0), q(10, 0);
    const double minor = 2 * std::atan2(5.0, 12.0);
    const struct { int type; double centreY, midY, sweep; } rows[] = {
        {1, 12, -1, minor},               // minor, counter-clockwise: bulges right of the chord
        {2, -12, 1, -minor},              // minor, clockwise: bulges left
        {3, -12, -25, 2 * kPi - minor},   // major, counter-clockwise
        {4, 12, 25, -(2 * kPi - minor)},  // major, clockwise
        {7, 12, -1, minor},               // an unknown type is taken as type 1
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const CArc2d arc(p, q, 13.0, row.type);
        EXPECT_EQ(arc.StartPoint(), p);
        EXPECT_EQ(arc.EndPoint(), q);
        EXPECT_DOUBLE_EQ(arc.Radius(), 13.0);
        expectPoint(arc.Centre(), 5, row.centreY);
        expectPoint(arc.PointAt(0.5), 5, row.midY);
        EXPECT_NEAR(arc.Sweep(), row.sweep, 1e-12);
        EXPECT_EQ(arc.IsCounterClockwise(), row.sweep > 0);
        EXPECT_NEAR(arc.Length(), 13.0 * std::fabs(row.sweep), 1e-9);
        // Points along the arc stay on its circle.
        for (double t : {0.1, 0.37, 0.8}) EXPECT_NEAR(arc.PointAt(t).DistanceTo(arc.Centre()), 13.0, 1e-9);
    }
    // A negative value is taken by its size.
    EXPECT_TRUE(CArc2d(p, q, -13.0, 1).IsEqual(CArc2d(p, q, 13.0, 1)));

    // A radius below half the chord gives a half circle, and degenerate inputs stay finite.
    const CPoint2d up(0, 10);  // from p
    for (double value : {0.0, 1.0, 4.999, -3.0, std::numeric_limits<double>::quiet_NaN(),
                         std::numeric_limits<double>::infinity()}) {
        SCOPED_TRACE(value);
        for (int type = 1; type <= 4; ++type) {
            const CArc2d arc(p, up, value, type);
            EXPECT_DOUBLE_EQ(arc.Radius(), 5.0);
            expectPoint(arc.Centre(), 0, 5);
            EXPECT_NEAR(std::fabs(arc.Sweep()), kPi, 1e-12);
            EXPECT_TRUE(finite(arc.PointAt(0.5)));
            EXPECT_TRUE(std::isfinite(arc.SignedArea()));
        }
    }
    const CArc2d coincident(CPoint2d(3, 4), CPoint2d(3, 4), 10.0, 3);
    EXPECT_EQ(coincident.StartPoint(), CPoint2d(3, 4));
    EXPECT_EQ(coincident.EndPoint(), CPoint2d(3, 4));
    EXPECT_EQ(coincident.Length(), 0.0);
    EXPECT_TRUE(finite(coincident.PointAt(0.5)));

    const CArc2d huge(CPoint2d(0, 0), CPoint2d(1, 0), 1e200, 1);  // practically a straight line
    EXPECT_TRUE(finite(huge.Centre()));
    EXPECT_NEAR(huge.Length(), 1.0, 1e-12);
    expectPoint(huge.PointAt(0.5), 0.5, 0.0);
    EXPECT_TRUE(std::isfinite(huge.SignedArea()));

    // A full circle starts at its start angle; its area, length, box and closure are those of the
    // circle outlines (SectionOutlineTest).
    expectPoint(CArc2d(CPoint2d(10, 20), 5.0, 0.0, 2 * kPi).StartPoint(), 15, 20, 0);

    loop.reset(slot(40, 6, 6));
    EXPECT_TRUE(loop->IsClosed());
    EXPECT_NEAR(loop->SignedArea(), 40 * 12 + kPi * 36, 1e-9);
    EXPECT_NEAR(loop->Length(), 80 + 2 * kPi * 6, 1e-9);
    expectPoint(loop->BoundingBox().Min(), -6, 0, 1e-9);
    expectPoint(loop->BoundingBox().Max(), 46, 12, 1e-9);

    // A polygon's area is its outer loop's less its holes', whatever their turning sense.
    CPolygon polygon;
    EXPECT_EQ(polygon.Area(), 0.0);
    polygon.AddLoop(rectangle(0, 0, 100, 50), true);
    polygon.AddLoop(circle(20, 20, 10), true);
    CLoop* square = rectangle(60, 10, 70, 20);
    square->Reverse();
    polygon.AddLoop(square, true);
    EXPECT_EQ(polygon.GetLoop(2), square);
    EXPECT_EQ(polygon.GetLoop(3), nullptr);
    EXPECT_NEAR(polygon.Area(), 5000 - kPi * 100 - 100, 1e-9);
    EXPECT_EQ(polygon.BoundingBox().Min(), CPoint2d(0, 0));
    EXPECT_EQ(polygon.BoundingBox().Max(), CPoint2d(100, 50));
    // A clockwise outer loop gives the same area.
    polygon.GetLoop(0)->Reverse();
    EXPECT_NEAR(polygon.Area(), 5000 - kPi * 100 - 100, 1e-9);
}

// A polygon read back is identical, arcs included; truncated bytes are refused and leave the target alone.
TEST(PolygonsAndPlanes, BytesReadBackExactlyPlanePointsRoundTripAndFacesKeepTheirArcsOrAreRefused) {
    const CPolygon sample = samplePolygon();
    const QByteArray bytes = sample.ToBytes();
    CPolygon read;
    QString error;
    ASSERT_TRUE(CPolygon::FromBytes(bytes, read, &error)) << qPrintable(error);
    EXPECT_EQ(read, sample);  // every curve, arcs with their centres, radii and angles
    EXPECT_EQ(read.ToBytes(), bytes);  // every double bit for bit
    for (int size = 0; size < bytes.size(); ++size) {
        CPolygon target = sample;
        error.clear();
        EXPECT_FALSE(CPolygon::FromBytes(bytes.left(size), target, &error)) << size;
        EXPECT_FALSE(error.isEmpty()) << size;
        EXPECT_EQ(target, sample) << size;
    }

    // A plane's U is global X projected; U, V and the normal are right-handed, and points round-trip.
    const CVector3 normal{0.3, -0.5, 0.8};
    const CPlane p = plane({10, 20, 30}, normal);
    const CVector3 n = Normalized(normal);
    expectVector(p.GetNormal(), n);
    expectVector(p.GetUDirection(), Normalized(CVector3{1, 0, 0} - n[0] * n));
    expectVector(Cross(p.GetUDirection(), p.GetVDirection()), p.GetNormal());  // so V is unit and across U

    // The foot of a point lies on the plane and the point straight above it along the normal.
    const CVector3 point{-40, 75, 12};
    double u = 0, v = 0;
    ASSERT_TRUE(p.GetNearestUV(point, u, v, g_DistEpsilon));
    const CVector3 foot = p.GetPoint(u, v);
    EXPECT_NEAR(p.SignedDistance(foot), 0.0, 1e-12);
    expectVector(point - foot, p.SignedDistance(point) * p.GetNormal(), 1e-12);
    // And parameters taken to a point come back as they were.
    ASSERT_TRUE(p.GetNearestUV(p.GetPoint(17.5, -3.25), u, v, 0.0));
    EXPECT_NEAR(u, 17.5, 1e-12);
    EXPECT_NEAR(v, -3.25, 1e-12);
    expectVector(p.GetPoint(0, 0), {10, 20, 30});

    // A polygon with arcs as a face: arcs are true circles and the area is the polygon's.
    // A slot (two half circles joined by lines) with a round hole and a square hole.
    CPolygon polygon;
    polygon.AddLoop(slot(300, 50, 50), true);
    polygon.AddLoop(circle(60, 50, 20), true);
    polygon.AddLoop(rectangle(150, 30, 250, 70), true);

    BodyPtr face(CBody::CreateFace(polygon, CCoord3(), &error));
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

    // Open, empty and flat loops are refused, saying where.
    CPolygon empty, open, flat;
    open.AddLoop(segments({{{0, 0}, {10, 0}}, {{10, 0}, {10, 10}}, {{10, 10}, {0, 9}}, {{0, 10}, {0, 0}}}), true);
    flat.AddLoop(segments({{{0, 0}, {10, 0}}, {{10, 0}, {0, 0}}}), true);
    const struct {
        const CPolygon* polygon;
        QStringList where;
    } refusals[] = {{&empty, {}}, {&open, {"loop 0", "curve 3"}}, {&flat, {"no area"}}};
    for (const auto& r : refusals) {
        SCOPED_TRACE(r.where.join(", ").toStdString());
        QString error;
        EXPECT_EQ(CBody::CreateFace(*r.polygon, CCoord3(), &error), nullptr);
        EXPECT_FALSE(error.isEmpty());
        for (const QString& part : r.where) EXPECT_TRUE(error.contains(part)) << error.toStdString();
    }
}

// ---------------------------------------------------------------------------------------------
// Splitting bodies by a plane; tessellation and STEP export

// A member fused from two halves has its side faces split at the joint; the unified side of a
// cut has one face per surface again, as a member made whole does, and a plain one keeps the joint.
TEST(KernelSplit, AUnifiedSideHasOneFacePerSurfaceBadBodiesAreRefusedAndMeshAndStepKeepTheGeometry) {
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

    // Null and face-only bodies are refused with a reason.
    CBooleanOperate op = operate();
    const CPlane unset;
    EXPECT_EQ(op.SplitPositiveBody(unset, nullptr), nullptr);
    EXPECT_FALSE(op.GetLastError().isEmpty());
    EXPECT_EQ(op.SplitNegativeBody(unset, nullptr), nullptr);
    EXPECT_FALSE(op.GetLastError().isEmpty());

    CPolygon square;
    square.AddLoop(rectangle(-1, -1, 1, 1), true);
    BodyPtr face(CBody::CreateFace(square, CCoord3()));
    ASSERT_TRUE(face);
    EXPECT_EQ(op.SplitPositiveBody(unset, face.get()), nullptr);
    EXPECT_TRUE(op.GetLastError().contains(QStringLiteral("no solid"))) << op.GetLastError().toStdString();

    BodyPtr stale = member();
    CBody *positive = stale.get(), *negative = stale.get(), *cut = stale.get();
    EXPECT_FALSE(op.SplitBody(unset, nullptr, positive, negative, cut));
    EXPECT_TRUE(!positive && !negative && !cut);  // no stale body left in any of them

    // Tessellation: a box is twelve outward triangles with face normals.
    BodyPtr box = member();
    CBodyMesh mesh;
    QString error;
    ASSERT_TRUE(mesh.Build(box.get(), CMeshParameter(0.5, 0.5), &error)) << error.toStdString();
    EXPECT_EQ(mesh.GetTriangleCount(), 12);
    EXPECT_EQ(mesh.GetVertexCount(), 24);
    const auto& v = mesh.GetVertices();
    const auto at = [&v](size_t i) { return CVector3{v[3 * i], v[3 * i + 1], v[3 * i + 2]}; };
    // The enclosed volume (divergence theorem) is positive only when every triangle runs
    // counter-clockwise seen from outside.
    const auto& idx = mesh.GetIndices();
    double sum = 0;
    for (size_t t = 0; t < idx.size(); t += 3) sum += Dot(at(idx[t]), Cross(at(idx[t + 1]), at(idx[t + 2])));
    EXPECT_NEAR(sum / 6.0, kMemberVolume, 1e-6 * kMemberVolume);
    const CVector3 centre{50, 30, 500};
    for (int i = 0; i < mesh.GetVertexCount(); ++i) {
        const CVector3 n{mesh.GetNormals()[3 * i], mesh.GetNormals()[3 * i + 1], mesh.GetNormals()[3 * i + 2]};
        EXPECT_NEAR(Length(n), 1.0, 1e-9);
        EXPECT_GT(Dot(n, at(i) - centre), 0.0) << "vertex " << i;
    }

    // STEP export keeps the exact geometry.
    QTemporaryDir dir;
    CPolygon disc;
    disc.AddLoop(circle(0, 0, 20), true);
    const BodyPtr bar = extrude(disc, 100).plain;
    const QString path = dir.filePath(QStringLiteral("bar.step"));
    ASSERT_TRUE(ExportBodyStep(bar.get(), path, &error)) << error.toStdString();
    STEPControl_Reader reader;
    ASSERT_EQ(reader.ReadFile(QFile::encodeName(path).constData()), IFSelect_RetDone);
    ASSERT_GT(reader.TransferRoots(), 0);
    BodyPtr back(CBodyOcct::Create(reader.OneShape()));
    EXPECT_NEAR(back->Volume(), bar->Volume(), 1e-6 * bar->Volume());
}

TEST(KernelSplit, AHollowSectionsCutFaceKeepsItsHoleAndEachSideKeepsWhatLiesBeyondThePlane) {
    // A box tube 200 x 100 with 6 mm walls, cut at 45 degrees to its axis.
    CPolygon tube;
    tube.AddLoop(rectangle(0, 0, 100, 200), true);
    tube.AddLoop(rectangle(6, 6, 94, 194), true);
    const double area = 100 * 200 - 88 * 188;
    const BodyPtr body = extrude(tube, 2000).plain;
    ASSERT_NEAR(body->Volume(), area * 2000, 1e-6 * area * 2000);

    const CPlane p = plane({50, 100, 1000}, {1, 0, 1});
    CBooleanOperate op = operate();
    CBody *positive = nullptr, *negative = nullptr, *cut = nullptr;
    ASSERT_TRUE(op.SplitBody(p, body.get(), positive, negative, cut)) << op.GetLastError().toStdString();
    BodyPtr keepPositive(positive), keepNegative(negative), keepCut(cut);
    ASSERT_TRUE(cut && positive && negative);
    EXPECT_NEAR(cut->SurfaceArea(), area / std::cos(kPi / 4), 1e-6 * area);
    EXPECT_EQ(cut->FaceCount(), 1);
    EXPECT_EQ(wireCount(*cut), 2);  // the outer boundary and the hole, nothing filling it
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

    // Planes that cut the member, and planes with normal +Z through z0 that miss, touch, almost touch
    // or barely cut it: SplitPositiveBody keeps what lies on the normal's side, SplitNegativeBody the
    // rest (0: nothing), and the input body stays as it was and the caller's alone.
    const double kBarely = 1e-3, e = g_DistEpsilon;
    // Normal (1, 2, 10) through (20, 10, 300): at the section's centroid (50, 30) it is at z = 293.
    const double zAtCentroid = 300 - (1 * 30 + 2 * 20) / 10.0;
    const auto at = [](double z0) { return plane({0, 0, z0}, {0, 0, 1}); };
    const struct { const char* name; CPlane plane; double positiveVolume, negativeVolume; } cases[] = {
        {"oblique", plane({20, 10, 300}, {1, 2, 10}), kSectionArea * (1000 - zAtCentroid), kSectionArea * zAtCentroid},
        {"mid-span", at(400), kSectionArea * 600, kSectionArea * 400},
        {"misses beyond the tail", at(1500), 0, kMemberVolume},
        {"misses before the head", at(-500), kMemberVolume, 0},
        {"on the tail face", at(1000), 0, kMemberVolume},
        {"on the head face", at(0), kMemberVolume, 0},
        {"just inside the tail within tolerance", at(1000 - 0.5 * e), 0, kMemberVolume},
        {"just outside the tail within tolerance", at(1000 + 0.5 * e), 0, kMemberVolume},
        {"just inside the head within tolerance", at(0.5 * e), kMemberVolume, 0},
        {"just beyond the tolerance into the tail", at(1000 - 3 * e), kSectionArea * 3 * e, kSectionArea * (1000 - 3 * e)},
        {"barely into the tail", at(1000 - kBarely), kSectionArea * kBarely, kSectionArea * (1000 - kBarely)},
        {"barely into the head", at(kBarely), kSectionArea * (1000 - kBarely), kSectionArea * kBarely},
    };
    BodyPtr box = member();
    for (const auto& c : cases) {
        CBooleanOperate op = operate();
        for (bool positiveSide : {true, false}) {
            SCOPED_TRACE(std::string(c.name) + (positiveSide ? ", positive side" : ", negative side"));
            const double expected = positiveSide ? c.positiveVolume : c.negativeVolume;
            BodyPtr part(positiveSide ? op.SplitPositiveBody(c.plane, box.get()) : op.SplitNegativeBody(c.plane, box.get()));
            EXPECT_TRUE(op.GetLastError().isEmpty()) << op.GetLastError().toStdString();
            EXPECT_NEAR(box->Volume(), kMemberVolume, 1e-6);
            EXPECT_EQ(box->GetRefCount(), 1);
            if (expected == 0.0) {
                EXPECT_FALSE(part) << "volume " << part->Volume();
                continue;
            }
            ASSERT_TRUE(part);
            EXPECT_NE(part.get(), box.get());
            EXPECT_NEAR(part->Volume(), expected, 1e-6 * expected);
            EXPECT_TRUE(part->IsValid());
            EXPECT_EQ(part->SolidCount(), 1);
        }
    }
}

// ---------------------------------------------------------------------------------------------
// Planar trims of straight prisms built directly: an H with root fillets, a welded H, a pipe and
// an angle, cut square, obliquely up to 80 degrees, at both ends, by planes that touch, miss or
// coincide, by planes that meet an end's plane inside the section (a corner of the end), and by
// planes the direct build leaves to the general split (a second corner on one end, along the
// axis, across the far end).

constexpr double kLength = 3000.0;

// The closed outline through corners, each rounded one with a root fillet of radius r: a clockwise
// quarter arc, as an outline running counter-clockwise has at its inner corners.
std::unique_ptr<CPolygon> outline(const std::vector<CPoint2d>& corners, const std::vector<int>& rounded, double r) {
    auto* loop = new CLoop;
    const size_t n = corners.size();
    CPoint2d from = corners[0];
    for (size_t i = 1; i <= n; ++i) {
        const CPoint2d p = corners[i % n], next = corners[(i + 1) % n];
        if (std::count(rounded.begin(), rounded.end(), int(i % n)) == 0) {
            loop->AddCurve(new CLine2d(from, p), false);
            from = p;
            continue;
        }
        const double in = from.DistanceTo(p), out = p.DistanceTo(next);
        const CPoint2d start{p.x - r * (p.x - from.x) / in, p.y - r * (p.y - from.y) / in};
        const CPoint2d end{p.x + r * (next.x - p.x) / out, p.y + r * (next.y - p.y) / out};
        loop->AddCurve(new CLine2d(from, start), false);
        loop->AddCurve(new CArc2d(start, end, r, 2), false);
        from = end;
    }
    auto polygon = std::make_unique<CPolygon>();
    polygon->AddLoop(loop, true);
    return polygon;
}

// An H 400 high and 200 wide, web 8, flanges 13, centred on the axis; with root fillets of 16.
std::unique_ptr<CPolygon> hSection(bool fillets) {
    const double w = 4.0, f = 187.0;
    return outline({{-100, -200}, {100, -200}, {100, -f}, {w, -f}, {w, f}, {100, f}, {100, 200}, {-100, 200}, {-100, f},
                    {-w, f}, {-w, -f}, {-100, -f}},
                   fillets ? std::vector<int>{3, 4, 9, 10} : std::vector<int>{}, 16);
}

std::unique_ptr<CPolygon> pipe() {
    auto polygon = std::make_unique<CPolygon>();
    polygon->AddLoop(circle(0, 0, 109.5), true);
    polygon->AddLoop(circle(0, 0, 101.5), true);
    return polygon;
}

// An angle 100 x 100 x 10 with a root fillet of 12, its corner on the axis.
std::unique_ptr<CPolygon> angle() { return outline({{0, 0}, {100, 0}, {100, 10}, {10, 10}, {10, 100}, {0, 100}}, {3}, 12); }

double radians(double degrees) { return degrees * kPi / 180.0; }

// A plane through z on the axis keeping the side towards the tail (head) or head (tail), tilted
// by degrees about X (about Y with aboutY).
CPlane end(double z, double degrees, bool tail, bool aboutY = false) {
    const double s = std::sin(radians(degrees)), c = std::cos(radians(degrees));
    const CVector3 normal = aboutY ? CVector3{s, 0, c} : CVector3{0, s, c};
    return plane({0, 0, z}, tail ? CVector3{-normal[0], -normal[1], -normal[2]} : normal);
}

// A plane through (0, y, z), its normal tilted by degrees from +Z (-Z with zSign -1) towards +Y.
CPlane across(double y, double z, double degrees, double zSign = 1) {
    return plane({0, y, z}, {0, std::sin(radians(degrees)), zSign * std::cos(radians(degrees))});
}

struct Measures { double volume = 0, area = 0; int faces = 0; };

Measures measure(const CBody& body) {
    const TopoDS_Shape& shape = CBodyOcct::Shape(body);
    GProp_GProps volume, area;
    BRepGProp::VolumeProperties(shape, volume, 1e-12);
    BRepGProp::SurfaceProperties(shape, area, 1e-12);
    return {volume.Mass(), area.Mass(), body.FaceCount()};
}

using Planes = std::vector<CPlane>;

const struct {
    const char* name;
    std::function<Planes(const Extruded&)> planes;
    bool direct;  // built directly (or answered at once: whole, nothing)
} kTrims[] = {
    {"square at both ends", [](const Extruded&) { return Planes{end(300, 0, false), end(2700, 0, true)}; }, true},
    {"oblique 45 and -30 about X", [](const Extruded&) { return Planes{end(500, 45, false), end(2500, -30, true)}; }, true},
    {"oblique 80 about Y at the head", [](const Extruded&) { return Planes{end(800, 80, false, true)}; }, true},
    {"oblique 80 about Y at the tail", [](const Extruded&) { return Planes{end(2200, -80, true, true)}; }, true},
    {"two head planes, the second further in",
     [](const Extruded&) { return Planes{end(300, 10, false), end(900, -10, false, true)}; }, true},
    {"coincident planes", [](const Extruded&) { return Planes{end(400, 20, false), end(400, 20, false)}; }, true},
    {"a plane that misses", [](const Extruded&) { return Planes{end(-100, 0, false), end(2000, 0, true)}; }, true},
    {"a plane that touches an end from outside",
     [](const Extruded& m) { return Planes{plane({0, m.yMin, 0}, {0, std::sin(0.5), std::cos(0.5)})}; }, true},
    {"a plane that touches an end and keeps nothing",
     [](const Extruded& m) { return Planes{plane({0, m.yMax, 0}, {0, std::sin(0.5), -std::cos(0.5)})}; }, true},
    {"through the ends' own planes (part of the section)",
     [](const Extruded& m) {
         const double y = 0.5 * (m.yMin + m.yMax) + 3;
         return Planes{across(y, 0, 20), across(y, kLength, 20, -1)};
     },
     true},
    {"a corner across one flange, then a square tail",
     [](const Extruded& m) { return Planes{across(m.yMax - 7, 0, 30), end(2500, 0, true)}; }, true},
    {"mitres through the end points on the axis (through the pipe's seams)",
     [](const Extruded&) { return Planes{end(0, 20, false), end(kLength, -15, true)}; }, true},
    {"a corner about Y at the tail", [](const Extruded&) { return Planes{end(kLength, -25, true, true)}; }, true},
    {"two corners at one end",
     [](const Extruded& m) {
         const double y = 0.5 * (m.yMin + m.yMax);
         return Planes{across(y, 0, 20), across(y, 0, -20)};
     },
     false},
    {"along the axis (a notch)",
     [](const Extruded& m) { return Planes{plane({0, 0.5 * (m.yMin + m.yMax), 0}, {0, -1, 0})}; }, false},
    {"head plane across the tail",
     [](const Extruded& m) { return Planes{plane({0, m.yMax, 2950}, {0, std::sin(radians(60)), 0.5})}; }, false},
};

const struct {
    const char* name;
    std::function<std::unique_ptr<CPolygon>()> make;
} kSections[] = {{"H with fillets", [] { return hSection(true); }},
                 {"welded H", [] { return hSection(false); }},
                 {"pipe", pipe},
                 {"angle", angle}};

}  // namespace

TEST(PrismTrim, DirectTrimsEqualTheGeneralSplitAndTheirResultsSplitLikeItsOnes) {
    for (const auto& section : kSections) {
        const Extruded member = extrude(*section.make(), kLength);
        ASSERT_TRUE(member.prism && member.plain) << section.name;
        for (const auto& c : kTrims) {
            SCOPED_TRACE(std::string(section.name) + ": " + c.name);
            const Planes planes = c.planes(member);
            CBooleanOperate direct = operate();
            const BodyPtr trimmed(direct.TrimPositiveBody(planes, member.prism.get()));
            EXPECT_EQ(direct.LastTrimWasDirect(), c.direct);
            CBooleanOperate general = operate();
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

    // A trimmed prism is an ordinary body to the general split: cutting it again gives what cutting
    // the general split's result gives.
    const Extruded member = extrude(*hSection(true), kLength);
    const Planes planes{end(600, 40, false), end(2400, -25, true, true)};
    CBooleanOperate op = operate();
    const BodyPtr direct(op.TrimPositiveBody(planes, member.prism.get()));
    ASSERT_TRUE(op.LastTrimWasDirect());
    const BodyPtr general(op.TrimPositiveBody(planes, member.plain.get()));
    const CPlane cut = plane({0, 50, 1500}, {0, 1, 0.3});
    const BodyPtr a(op.SplitPositiveBody(cut, direct.get())), b(op.SplitPositiveBody(cut, general.get()));
    ASSERT_TRUE(a && b) << op.GetLastError().toStdString();
    EXPECT_NEAR(a->Volume(), b->Volume(), 1e-9 * b->Volume());
    EXPECT_EQ(a->FaceCount(), b->FaceCount());
}
