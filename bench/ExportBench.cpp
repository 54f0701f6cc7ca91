// The IFC export at model scale.
// BM_ExportIfc: a 10,000-member project (ten sections by ten lengths, a head and a tail cut on every
// tenth member) written as IFC4 once per iteration; the file size (MB) is a counter. Its floor
// BM_ExportIfcFloor reads the members and their cutting planes alone, which every export must.
#include "exchange/SKRIfcProjectExport.h"

#include "bench/ModelProject.h"

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

bool writeFrame(const QString& path) { return bxq::bench::writeModelProject(path, kMembers, 10, false); }

struct Frame {
    QTemporaryDir dir;
    VMPProjectModel model;
    bool ready = false;
    Frame() {
        if (!writeFrame(dir.filePath("frame.KDB")) || !model.open(dir.filePath("frame.KDB"))) return;
        bxq::bench::useMemberSolids(model);
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
