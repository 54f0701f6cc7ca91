// Cutting a member by its head and tail planes: an HN400*200*8*13 member 6 m long, its head cut
// at 20 degrees and its tail at -15 degrees to the section plane, one member per iteration.
// BM_RawSplits is the floor: the two keep-one-side operations of OpenCASCADE alone (a half-space
// on a bounded face, then the common part). BM_KernelSplits is the same through the kernel's
// CBooleanOperate with its four flags on (input check, non-destructive, unified result, parallel).
// BM_ApplyCuttingPlanes is the library's whole trimming of an element: reading its two
// "CuttingPlane" records from a project and cutting the member the solid shape hands out. Its
// planes run through the member's end points, so each meets the end's plane inside the section
// (the direct build with a corner at each end); BM_ApplyCuttingPlanesGeneral is the same on a
// body that does not know it is a prism, which takes the general split. BM_ApplyCuttingPlanesCrossing
// and its General twin move the two planes 150 mm into the member, where each crosses it whole.
// BM_TrimModel trims a project of 10,000 members with a head and a tail cut each (ten sections,
// ten lengths, five head angles: 500 distinct solids), reading members and planes included;
// BM_TrimModel/10000/1 gives every member a length of its own (10,000 distinct solids).
#include "body_builder/SKRBodyBuilder.h"
#include "ndp/NDPBody.h"
#include "ndp/NDPRef.h"
#include "ndp/NDPBodyOcct.h"
#include "ndp/NDPBooleanOperate.h"
#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPPlane.h"
#include "body_builder/SKRMemberSolidShape.h"
#include "solid_split/SKRCuttingPlaneStore.h"
#include "solid_split/SKRModelTrim.h"
#include "solid_split/SKRSolidSplit.h"
#include "vmp/VMPElementDrawObj.h"
#include "vmp/VMPMembers.h"
#include "vmp/VMPProjectModel.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <BRepAlgoAPI_Common.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepPrimAPI_MakeHalfSpace.hxx>
#include <Bnd_Box.hxx>
#include <TopExp_Explorer.hxx>

#include <sys/resource.h>

#include <cmath>
#include <memory>

namespace {

// The vector operators live in ndp, which argument lookup on std::array does not search.
using ndp::operator+;
using ndp::operator*;

constexpr double kLength = 6000.0;
constexpr double kPi = 3.14159265358979323846;

using BodyPtr = ndp::CRef<ndp::CBody>;

BodyPtr member(QString& error) {
    return BodyPtr(skr::body::SKRBodyBuilder::memberFromSpecification(QStringLiteral("HN400*200*8*13"), kLength,
                                                                       ndp::CCoord3(), &error));
}

// Head plane through the start, tilted 20 degrees about the section's X axis, normal into the
// member; tail plane through the end, tilted -15 degrees, normal back towards the head.
ndp::CPlane headPlane() {
    ndp::CPlane plane;
    const double angle = 20 * kPi / 180;
    plane.Create({0, 0, 0}, {0, std::sin(angle), std::cos(angle)});
    return plane;
}

ndp::CPlane tailPlane() {
    ndp::CPlane plane;
    const double angle = -15 * kPi / 180;
    plane.Create({0, 0, kLength}, {0, -std::sin(angle), -std::cos(angle)});
    return plane;
}

// The part of shape on the side of plane its normal points into.
TopoDS_Shape keepPositive(const TopoDS_Shape& shape, const ndp::CPlane& plane) {
    Bnd_Box box;
    BRepBndLib::Add(shape, box);
    const double size = std::sqrt(box.SquareExtent());
    const TopoDS_Face face = BRepBuilderAPI_MakeFace(ndp::CBodyOcct::ToPln(plane), -size, size, -size, size).Face();
    const ndp::CVector3 reference = plane.GetOrigin() + size * plane.GetNormal();
    const TopoDS_Solid halfSpace = BRepPrimAPI_MakeHalfSpace(face, ndp::CBodyOcct::ToPnt(reference)).Solid();
    return BRepAlgoAPI_Common(shape, halfSpace).Shape();
}

bool hasSolid(const TopoDS_Shape& shape) { return TopExp_Explorer(shape, TopAbs_SOLID).More(); }

void BM_RawSplits(benchmark::State& state) {
    QString error;
    const BodyPtr body = member(error);
    if (!body) {
        state.SkipWithError(error.toStdString().c_str());
        return;
    }
    const TopoDS_Shape shape = ndp::CBodyOcct::Shape(*body);
    const ndp::CPlane head = headPlane(), tail = tailPlane();
    for (auto _ : state) {
        const TopoDS_Shape cut = keepPositive(keepPositive(shape, head), tail);
        if (!hasSolid(cut)) state.SkipWithError("the member vanished");
        benchmark::DoNotOptimize(cut);
    }
    state.SetItemsProcessed(state.iterations());
    state.SetLabel("ms per member");
}
BENCHMARK(BM_RawSplits)->Unit(benchmark::kMillisecond);

void BM_KernelSplits(benchmark::State& state) {
    QString error;
    const BodyPtr body = member(error);
    if (!body) {
        state.SkipWithError(error.toStdString().c_str());
        return;
    }
    const ndp::CPlane head = headPlane(), tail = tailPlane();
    for (auto _ : state) {
        ndp::CBooleanOperate op(true, true, true, true);
        BodyPtr headCut(op.SplitPositiveBody(head, body.get()));
        BodyPtr cut(headCut ? op.SplitPositiveBody(tail, headCut.get()) : nullptr);
        if (!cut) state.SkipWithError("the member vanished");
        benchmark::DoNotOptimize(cut.get());
    }
    state.SetItemsProcessed(state.iterations());
    state.SetLabel("ms per member");
}
BENCHMARK(BM_KernelSplits)->Unit(benchmark::kMillisecond);

// A solid shape that hands out new handles on one prebuilt member, so that building the member
// is not timed (the raw splits above start from a built member too).
class PrebuiltShape : public IVMPSolidShape {
public:
    explicit PrebuiltShape(const ndp::CBody* body) : m_body(body) {}
    ndp::CBody* createBody() override { return m_body->Copy(); }

private:
    const ndp::CBody* m_body;
};

void addCuttingPlane(ndp::CDBTable* table, bool isTail, const ndp::CPlane& plane, const ndp::CVector3& localOrigin) {
    ndp::CCoord3 local = plane.GetFrame();
    local.origin = localOrigin;
    ndp::CDBRecord* record = table->CreateRecord();
    record->SetInt64(table->FindField(L"EDOID"), 1);
    record->SetBool(table->FindField(L"IsTail"), isTail);
    record->SetCoord3(table->FindField(L"LocalCoordinate"), local);
    table->AddRecord(record);
    record->Release();
}

// Trims the member by its head and tail planes moved inset into it; prism: the solid shape hands
// out the body builder's prism, else a body of the same shape that is no prism.
void applyCuttingPlanes(benchmark::State& state, bool prism, double inset) {
    QString error;
    const BodyPtr built = member(error);
    QTemporaryDir dir;
    VMPProjectModel model;
    if (!built || !model.open(dir.filePath("project.KDB"))) {
        state.SkipWithError("no member or no project");
        return;
    }
    const BodyPtr body(prism ? built->Copy() : ndp::CBodyOcct::Create(ndp::CBodyOcct::Shape(*built)));
    // The head frame is the global frame, so the planes' frames are their own local coordinates;
    // the tail plane's origin is the tail frame's origin.
    ndp::CDBTable* table = model.getProjectDB()->GetTable(L"CuttingPlane");
    addCuttingPlane(table, false, headPlane(), {0, 0, inset});
    addCuttingPlane(table, true, tailPlane(), {0, 0, -inset});
    const VMPElementDrawObj element(1, &model, ndp::CCoord3(), kLength);
    PrebuiltShape shape(body.get());
    const double uncut = body->Volume();
    for (auto _ : state) {
        BodyPtr cut(skr::split::ApplyCuttingPlanes(element, shape));
        if (!cut) state.SkipWithError("no body");
        benchmark::DoNotOptimize(cut.get());
        state.PauseTiming();
        if (cut && !(cut->Volume() < uncut)) state.SkipWithError("the planes did not cut");
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations());
    state.SetLabel("ms per member");
}

void BM_ApplyCuttingPlanes(benchmark::State& state) { applyCuttingPlanes(state, true, 0.0); }
BENCHMARK(BM_ApplyCuttingPlanes)->Unit(benchmark::kMillisecond);

void BM_ApplyCuttingPlanesGeneral(benchmark::State& state) { applyCuttingPlanes(state, false, 0.0); }
BENCHMARK(BM_ApplyCuttingPlanesGeneral)->Unit(benchmark::kMillisecond);

void BM_ApplyCuttingPlanesCrossing(benchmark::State& state) { applyCuttingPlanes(state, true, 150.0); }
BENCHMARK(BM_ApplyCuttingPlanesCrossing)->Unit(benchmark::kMillisecond);

void BM_ApplyCuttingPlanesCrossingGeneral(benchmark::State& state) { applyCuttingPlanes(state, false, 150.0); }
BENCHMARK(BM_ApplyCuttingPlanesCrossingGeneral)->Unit(benchmark::kMillisecond);

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024.0;
}

// count members on a grid 2 m apart: ten sections by ten lengths (or, distinct, a length each), a
// head plane 400 mm in tilted by one of five angles about the section's X axis, and a square tail
// plane 400 mm in.
bool writeModel(const QString& path, int count, bool distinct) {
    VMPProjectModel model;
    if (!model.open(path)) return false;
    const QString sections[] = {"H400*200*8*13", "H300*150*6*9", "H500*250*10*16", "H250*125*6*9", "D219*8",
                                "H350*175*7*11", "C160*60*20*2.5", "D325*10", "H600*300*12*20", "C200*70*20*2"};
    const double angles[] = {0, 10, 20, 30, 45};
    ndp::CDatabase* db = model.getProjectDB();
    for (int i = 0; i < count; ++i) {
        VMPMember m;
        m.section = sections[i % 10];
        const double length = distinct ? 3000.0 + 0.5 * i : 3000.0 + 500.0 * ((i / 10) % 10);
        m.start = {2000.0 * (i % 100), 2000.0 * (i / 100), 0};
        m.end = m.start;
        m.end[0] += length;
        if (!VMPAddMember(db, m, nullptr)) return false;
        const double a = angles[(i / 100) % 5] * kPi / 180;
        skr::split::CuttingPlaneRecord head, tail;
        head.elementId = tail.elementId = m.id;
        head.local = ndp::MakeFrame({0, 0, 400}, {1, 0, 0}, {0, std::cos(a), -std::sin(a)}, {0, std::sin(a), std::cos(a)});
        tail.isTail = true;
        tail.local = ndp::MakeFrame({0, 0, -400}, {1, 0, 0}, {0, -1, 0}, {0, 0, -1});
        if (!skr::split::AddCuttingPlaneRecord(db, head, nullptr) || !skr::split::AddCuttingPlaneRecord(db, tail, nullptr))
            return false;
    }
    return model.save();
}

void BM_TrimModel(benchmark::State& state) {
    QTemporaryDir dir;
    const int count = static_cast<int>(state.range(0));
    if (!writeModel(dir.filePath("model.KDB"), count, state.range(1) != 0)) return state.SkipWithError("cannot write the model");
    VMPProjectModel model;
    if (!model.open(dir.filePath("model.KDB"))) return state.SkipWithError("cannot open the model");
    const VMPSolidShapeFactory factory = [](const QString& section, double length, const ndp::CoordinateSystem3& head) {
        return std::unique_ptr<IVMPSolidShape>(new skr::body::SKRMemberSolidShape(section, length, head));
    };
    int solids = 0;
    for (auto _ : state) {
        skr::split::SKRModelTrim trim;
        QString error;
        if (!skr::split::TrimModelMembers(model.getProjectDB(), factory, trim, &error))
            return state.SkipWithError(error.toStdString().c_str());
        if (static_cast<int>(trim.members.size()) != count) return state.SkipWithError("members missing");
        solids = static_cast<int>(trim.solids.size());
        benchmark::DoNotOptimize(trim.solids.data());
    }
    state.counters["solids"] = solids;
    state.counters["peak_MB"] = peakMegabytes();
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(BM_TrimModel)->Args({10000, 0})->Args({10000, 1})->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
