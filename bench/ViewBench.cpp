// The 3D view at model scale.
// BM_BuildDisplayNodes: the cutting-plane display of 1,000 welded H members 6 m long with a head
// and a tail cut each, every node built (the cut face found by the kernel's split of the member);
// its floor BM_DisplayNodeSplitsFloor is the 2,000 bare kernel cut faces alone.
// BM_OpenFrameRender: a 10,000-member project (ten sections by ten lengths, so 100 shared
// tessellations) opened, built into the scene and rendered offscreen at 800x600 once; its floor
// BM_RenderOnlyFloor renders the same built scene again. Peak memory (MB) is a counter.
#include "app/view/BXQModelScene.h"
#include "bench/ModelProject.h"
#include "app/view/BXQOffscreenRenderer.h"

#include "body_builder/SKRMemberSolidShape.h"
#include "ndp/NDPBody.h"
#include "ndp/NDPBooleanOperate.h"
#include "ndp/NDPPlane.h"
#include "ndp/NDPRef.h"
#include "scene/VMPViewerManager.h"
#include "solid_split/SKRCuttingPlaneStore.h"
#include "vmp/VMPMembers.h"
#include "vmp/VMPProjectModel.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <memory>

namespace {

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024.0;
}

using bxq::bench::useMemberSolids;

// A project of members on a grid 2 m apart; with cuts, every member an H400 of 6 m cut 300 mm in
// at both ends.
bool writeProject(const QString& path, int count, bool withCuts) {
    return bxq::bench::writeModelProject(path, count, withCuts ? 1 : 0, withCuts);
}

void BM_BuildDisplayNodes(benchmark::State& state) {
    QTemporaryDir dir;
    const int count = static_cast<int>(state.range(0));
    if (!writeProject(dir.filePath("cuts.KDB"), count, true)) return state.SkipWithError("cannot write the project");
    VMPProjectModel model;
    model.open(dir.filePath("cuts.KDB"));
    useMemberSolids(model);
    for (auto _ : state) {
        VMPViewerManager viewer;
        skr::split::SKRSplitPlaneDisplayManager planes(&model, &viewer);
        for (int id = 1; id <= count; ++id) planes.BuildDisplayNodes(id);
        if (viewer.getTempNodeCount() != 2 * count) return state.SkipWithError("planes missing");
    }
    state.counters["planes"] = 2.0 * count;
}
BENCHMARK(BM_BuildDisplayNodes)->Arg(1000)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_DisplayNodeSplitsFloor(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    skr::body::SKRMemberSolidShape shape(QStringLiteral("H400*200*8*13"), 6000.0, ndp::CoordinateSystem3());
    for (auto _ : state) {
        for (int i = 0; i < count; ++i) {
            const ndp::CRef<ndp::CBody> body(shape.createBody());
            for (const double z : {300.0, 5700.0}) {
                ndp::CPlane plane;
                plane.Create({0, 0, z}, {0, 0, 1});
                ndp::CBooleanOperate splitter(true, true, true, true);
                ndp::CBody* cut = nullptr;
                splitter.CutFace(plane, body.get(), cut);
                if (cut) cut->Release();
            }
        }
    }
}
BENCHMARK(BM_DisplayNodeSplitsFloor)->Arg(1000)->Iterations(1)->Unit(benchmark::kMillisecond);

struct LargeProject {
    QTemporaryDir dir;
    bool written = false;
    static LargeProject& instance() {
        static LargeProject project;
        if (!project.written) project.written = writeProject(project.dir.filePath("large.KDB"), 10000, false);
        return project;
    }
};

void BM_OpenFrameRender(benchmark::State& state) {
    LargeProject& project = LargeProject::instance();
    if (!project.written) return state.SkipWithError("cannot write the project");
    int shared = 0;
    for (auto _ : state) {
        VMPProjectModel model;
        model.open(project.dir.filePath("large.KDB"));
        useMemberSolids(model);
        VMPViewerManager viewer;
        bxq::BXQModelScene scene(&model, &viewer);
        QString error;
        QImage image;
        if (!scene.build(&error) || !bxq::renderOffscreen(viewer.getSceneRoot(), bxq::BXQStandardView::Iso, 800, 600,
                                                          &image, &error))
            return state.SkipWithError(error.toUtf8().constData());
        shared = scene.tessellationCount();
    }
    state.counters["members"] = 10000;
    state.counters["tessellations"] = shared;
    state.counters["peakMB"] = peakMegabytes();
}
BENCHMARK(BM_OpenFrameRender)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_RenderOnlyFloor(benchmark::State& state) {
    LargeProject& project = LargeProject::instance();
    VMPProjectModel model;
    model.open(project.dir.filePath("large.KDB"));
    useMemberSolids(model);
    VMPViewerManager viewer;
    bxq::BXQModelScene scene(&model, &viewer);
    QString error;
    if (!scene.build(&error)) return state.SkipWithError(error.toUtf8().constData());
    for (auto _ : state) {
        QImage image;
        if (!bxq::renderOffscreen(viewer.getSceneRoot(), bxq::BXQStandardView::Iso, 800, 600, &image, &error))
            return state.SkipWithError(error.toUtf8().constData());
    }
}
BENCHMARK(BM_RenderOnlyFloor)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace
