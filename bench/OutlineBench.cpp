// Outline benchmark: the longest outline text of the shipped catalogue (every row drawn with its
// radii) parsed into a polygon of lines and arcs.
#include "section_data/SKRHotRollingSectionDBProvider.h"
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
    const QString path = VMPAppInfo::gAppInfo()->appDataPath() + QStringLiteral("/SKRSectionPolyDB.KDB");
    if (!VMPAppInfo::gAppInfo()->fileExists(path)) return longest;
    ndp::CDatabase* db = VMPNDDBManager::nddbMgr()->getNDDB(QStringLiteral("SKRSectionPolyDB.KDB"), false);
    ndp::CDBTable* table = db ? db->GetTable(L"SectionPolyInfor") : nullptr;
    ndp::CFileAddressList all;
    if (!table || !table->ListAll(all)) return longest;
    skr::section::SKRHotRollingSectionDBProvider reader(table);
    for (int i = 0; i < all.GetCount(); ++i) {
        ndp::CDBRecord* record = table->GetRecord(all.GetItem(i));
        if (!record) continue;
        const skr::section::SKRHotRollingSection row = reader.fromRecord(record);
        record->Release();
        QMap<QString, double> dimensions;
        for (const auto& param : row.params) dimensions.insert(QString::fromStdWString(param.first), param.second);
        QString text;
        if (!skr::geometry::sectionOutlineText(
                row.sectionType, skr::geometry::catalogueOutlineParams(row.sectionType, dimensions, row.weightMeter),
                text))
            continue;
        ++longest.drawn;
        if (text.size() > longest.text.size()) longest = {QString::fromStdWString(row.standardName), text, longest.drawn};
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
