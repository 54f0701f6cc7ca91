// Section figures benchmarks: the steel-table figures of H400*200*8*13, the exact part and the
// finite-element part apart, beside the floor of the area and second moments alone; and every row
// of the shipped catalogue drawn with its radii and given all its figures.
#include "bench/CatalogueOutlines.h"
#include "section_geometry/SKRSectionFigures.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPolygonParser.h"
#include "section_geometry/SKRSectionProperties.h"
#include "section_geometry/SKRSpecificationOutline.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPPolygon.h"
#include "vmp/VMPAppInfo.h"
#include "vmp/VMPNDDBManager.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>

namespace {

std::unique_ptr<ndp::CPolygon> h400() {
    QString outline;
    if (!skr::geometry::specificationOutline(QStringLiteral("H400*200*8*13"), outline, nullptr)) return nullptr;
    return skr::geometry::ParseSectionPolygon(outline);
}

// Floor: area, centroid and second moments of the same outline.
void BM_SectionFiguresFloor(benchmark::State& state) {
    const std::unique_ptr<ndp::CPolygon> polygon = h400();
    for (auto _ : state) benchmark::DoNotOptimize(skr::geometry::SectionProperties(*polygon));
}
BENCHMARK(BM_SectionFiguresFloor)->Unit(benchmark::kMicrosecond);

// Every exact figure: principal axes, extreme fibres, plastic moduli by bisection.
void BM_SectionFiguresExact(benchmark::State& state) {
    const std::unique_ptr<ndp::CPolygon> polygon = h400();
    for (auto _ : state) benchmark::DoNotOptimize(skr::geometry::ExactSectionFigures(*polygon));
}
BENCHMARK(BM_SectionFiguresExact)->Unit(benchmark::kMicrosecond);

// J, Iw, shear centre and shear areas: the meshes and solves until two meshes agree to 0.5 %.
void BM_SectionFiguresWarping(benchmark::State& state) {
    const std::unique_ptr<ndp::CPolygon> polygon = h400();
    skr::geometry::SKRWarpingFigures w;
    for (auto _ : state) {
        if (!skr::geometry::WarpingSectionFigures(*polygon, w)) state.SkipWithError("no warping figures");
    }
    state.SetLabel(QStringLiteral("mesh %1 mm, %2 elements, %3 nodes, J %4 mm4, Iw %5 mm6")
                       .arg(w.meshSize, 0, 'g', 3)
                       .arg(w.elements)
                       .arg(w.nodes)
                       .arg(w.j, 0, 'g', 6)
                       .arg(w.iw, 0, 'g', 6)
                       .toStdString());
}
BENCHMARK(BM_SectionFiguresWarping)->Unit(benchmark::kMillisecond);

// The outline texts of every catalogue row that can be drawn.
QStringList catalogueOutlines() {
    QStringList outlines;
    for (const bxq::bench::CatalogueOutline& outline : bxq::bench::catalogueOutlines()) outlines << outline.text;
    return outlines;
}

// The whole catalogue afresh (the cache emptied first): every figure of every row.
void BM_CatalogueSectionFigures(benchmark::State& state) {
    static const QStringList outlines = catalogueOutlines();
    if (outlines.isEmpty()) {
        state.SkipWithError("no shipped catalogue in the application data folder");
        return;
    }
    int failed = 0;
    int unconverged = 0;
    std::vector<double> sizes;
    for (auto _ : state) {
        skr::geometry::ClearSectionFiguresCache();
        failed = unconverged = 0;
        sizes.clear();
        for (const QString& outline : outlines) {
            skr::geometry::SKRSectionFigures f;
            if (!skr::geometry::SectionFigures(outline, f)) {
                ++failed;
                continue;
            }
            if (!f.warping.converged) ++unconverged;
            sizes.push_back(f.warping.meshSize);
        }
    }
    std::sort(sizes.begin(), sizes.end());
    state.SetItemsProcessed(state.iterations() * outlines.size());
    state.SetLabel(QStringLiteral("%1 rows, %2 failed, %3 not converged, mesh %4 to %5 mm (median %6)")
                       .arg(outlines.size())
                       .arg(failed)
                       .arg(unconverged)
                       .arg(sizes.empty() ? 0.0 : sizes.front(), 0, 'g', 3)
                       .arg(sizes.empty() ? 0.0 : sizes.back(), 0, 'g', 3)
                       .arg(sizes.empty() ? 0.0 : sizes[sizes.size() / 2], 0, 'g', 3)
                       .toStdString());
}
BENCHMARK(BM_CatalogueSectionFigures)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
