// The IFC export at model scale.
// BM_ExportIfc: a 10,000-member project (ten sections by ten lengths, a head and a tail cut on every
// tenth member) written as IFC4 once per iteration; the file size (MB) is a counter. Its floor
// BM_ExportIfcFloor reads the members and their cutting planes alone, which every export must.
#include "exchange/SKRIfcProjectExport.h"

#include "body_builder/SKRMemberSolidShape.h"
#include "solid_split/SKRCuttingPlaneStore.h"
#include "vmp/VMPMembers.h"
#include "vmp/VMPProjectModel.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

constexpr int kMembers = 10000;

bool writeFrame(const QString& path) {
    VMPProjectModel model;
    if (!model.open(path)) return false;
    const QString sections[] = {"H400*200*8*13", "H300*150*6*9", "H500*250*10*16", "H250*125*6*9", "D219*8",
                                "H350*175*7*11", "C160*60*20*2.5", "D325*10", "H600*300*12*20", "C200*70*20*2"};
    for (int i = 0; i < kMembers; ++i) {
        VMPMember member;
        member.section = sections[i % 10];
        const double length = 3000.0 + 500.0 * ((i / 10) % 10);
        member.start = {2000.0 * (i % 100), 2000.0 * (i / 100), 0};
        member.end = member.start;
        member.end[0] += length;
        if (!VMPAddMember(model.getProjectDB(), member, nullptr)) return false;
        if (i % 10 != 0) continue;
        for (const bool tail : {false, true}) {
            skr::split::CuttingPlaneRecord plane;
            plane.elementId = member.id;
            plane.isTail = tail;
            plane.local = ndp::MakeFrame({0, 0, tail ? -300.0 : 300.0}, {1, 0, 0}, {0, tail ? -1.0 : 1.0, 0},
                                         {0, 0, tail ? -1.0 : 1.0});
            if (!skr::split::AddCuttingPlaneRecord(model.getProjectDB(), plane, nullptr)) return false;
        }
    }
    return model.save();
}

struct Frame {
    QTemporaryDir dir;
    VMPProjectModel model;
    bool ready = false;
    Frame() {
        if (!writeFrame(dir.filePath("frame.KDB")) || !model.open(dir.filePath("frame.KDB"))) return;
        model.setSolidShapeFactory([](const QString& section, double length, const ndp::CoordinateSystem3& head) {
            return std::unique_ptr<IVMPSolidShape>(new skr::body::SKRMemberSolidShape(section, length, head));
        });
        ready = true;
    }
};

void BM_ExportIfc(benchmark::State& state) {
    Frame frame;
    if (!frame.ready) return state.SkipWithError("cannot write the project");
    const QString path = frame.dir.filePath("frame.ifc");
    for (auto _ : state) {
        QString error;
        if (!skr::exchange::exportProjectIfc(&frame.model, path, {}, nullptr, &error))
            return state.SkipWithError(error.toUtf8().constData());
    }
    state.counters["members"] = kMembers;
    state.counters["file_MB"] = QFileInfo(path).size() / 1e6;
}
BENCHMARK(BM_ExportIfc)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ExportIfcFloor(benchmark::State& state) {
    Frame frame;
    if (!frame.ready) return state.SkipWithError("cannot write the project");
    for (auto _ : state) {
        std::vector<VMPMember> members;
        std::vector<skr::split::CuttingPlaneRecord> planes;
        if (!VMPReadMembers(frame.model.getProjectDB(), members, nullptr) ||
            !skr::split::ReadCuttingPlaneRecords(frame.model.getProjectDB(), -1, planes, nullptr))
            return state.SkipWithError("cannot read the project");
        benchmark::DoNotOptimize(members.data());
    }
    state.counters["members"] = kMembers;
}
BENCHMARK(BM_ExportIfcFloor)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
