// Outline benchmark: the longest outline text of the shipped catalogue (every row drawn with its
// radii) parsed into a polygon of lines and arcs.
#include "bench/CatalogueOutlines.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPPolygon.h"
#include "vmp/VMPAppInfo.h"
#include "vmp/VMPNDDBManager.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>

namespace {

struct LongestOutline {
    QString name;
    QString text;
    int drawn = 0;
};

// Every row of the shipped catalogue table drawn; the longest text kept.
LongestOutline longestCatalogueOutline() {
    LongestOutline longest;
    for (const bxq::bench::CatalogueOutline& outline : bxq::bench::catalogueOutlines()) {
        ++longest.drawn;
        if (outline.text.size() > longest.text.size()) longest = {outline.name, outline.text, longest.drawn};
    }
    std::fprintf(stderr, "outlines: %d catalogue rows drawn, longest %s (%d characters)\n", longest.drawn,
                 qUtf8Printable(longest.name), static_cast<int>(longest.text.size()));
    return longest;
}

void BM_ParseSectionPolygon(benchmark::State& state) {
    static const LongestOutline longest = longestCatalogueOutline();
    if (longest.text.isEmpty()) {
        state.SkipWithError("no shipped catalogue in the application data folder");
        return;
    }
    for (auto _ : state) {
        std::unique_ptr<ndp::CPolygon> polygon = skr::geometry::ParseSectionPolygon(longest.text);
        benchmark::DoNotOptimize(polygon);
    }
    state.SetItemsProcessed(state.iterations());
    state.SetLabel(QStringLiteral("%1, %2 characters").arg(longest.name).arg(longest.text.size()).toStdString());
}
BENCHMARK(BM_ParseSectionPolygon)->Unit(benchmark::kMicrosecond);

}  // namespace
