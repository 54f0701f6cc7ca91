// Catalogue benchmarks: weight-per-metre look-ups over a take-off of catalogue names against a
// plain hash map of the same figures, and the start-up that opens the section database and
// registers its providers. They run on the shipped database when the application data folder
// has one, else on a generated catalogue of the shipped size and layout in a temporary folder.
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SKRPerMetreLookup.h"
#include "section_data/SectionRepository.h"

#include "ndp/NDPContentSeal.h"
#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/VMPAppInfo.h"
#include "vmp/VMPNDDBManager.h"
#include "vmp/VMPProjectModel.h"

#include <benchmark/benchmark.h>

#include <QHash>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>
#include <random>
#include <vector>

namespace {

using ndp::EnDBFieldKind;
using skr::section::SKRHotRollingSectionDBProvider;
using skr::section::SectionRepository;

constexpr int kTakeOffSize = 100000;
constexpr std::uint32_t kSeed = 20240611;
const wchar_t* const kParamFields[] = {L"h", L"b", L"d", L"t", L"r", L"r1", L"B", L"tw", L"c", L"D"};

struct Row {
    int polyId;
    int subClass;
    QString name;
    double weight;
    double area;
};

QString n(double value) { return QString::number(value, 'g', 10); }

// About 1300 names in the families and proportions of the shipped catalogue.
std::vector<Row> generatedRows() {
    std::vector<Row> rows;
    auto add = [&rows](int polyId, int sub, const QString& name) {
        const double weight = 1.0 + static_cast<double>(rows.size() % 997) * 0.173;
        rows.push_back({polyId, sub, name, weight, 0.05 + weight / 400.0});
    };
    const char* const letters[] = {"a", "b", "c"};
    for (int h = 10; h <= 63 && rows.size() < 45; h += 2)
        for (const char* s : letters) add(1, 1, "I" + QString::number(h) + s);
    for (int h = 5; h <= 40 && rows.size() < 86; h += 2)
        for (const char* s : letters) add(2, 1, "[" + QString::number(h) + s);
    for (int b = 20; rows.size() < 201; b += 5)
        for (int d = 3; d <= 12 && rows.size() < 201; d += 2) add(3, 1, "L" + n(b) + "*" + n(d));
    for (int b = 25; rows.size() < 272; b += 10)
        for (int d = 3; d <= 14 && rows.size() < 272; d += 3) add(4, 1, "L" + n(b) + "*" + n(b * 0.64) + "*" + n(d));
    const char* const hSeries[] = {"HW", "HM", "HN", "HT"};
    for (int h = 100; rows.size() < 402; h += 25)
        for (int s = 0; s < 4 && rows.size() < 402; ++s)
            add(7, s + 1, hSeries[s] + n(h) + "*" + n(h / (s + 1.0)) + "*" + n(6 + s * 0.5) + "*" + n(8 + s));
    const char* const tSeries[] = {"TW", "TM", "TN"};
    for (int h = 50; rows.size() < 482; h += 12)
        for (int s = 0; s < 3 && rows.size() < 482; ++s)
            add(10, s + 1, tSeries[s] + n(h) + "*" + n(h * 2.0 / (s + 1)) + "*" + n(6 + s) + "*" + n(9 + s));
    for (int h = 80; rows.size() < 521; h += 20) add(8, 1, "C" + n(h) + "*" + n(h / 2.5) + "*20*" + n(2 + h % 3));
    for (int h = 100; rows.size() < 542; h += 20) add(9, 1, "Z" + n(h) + "*" + n(h / 2.5) + "*20*" + n(2 + h % 3));
    for (int h = 20; rows.size() < 833; h += 10)
        for (int t = 2; t <= 12 && rows.size() < 833; t += 2) add(1011, 1, QString(QChar(0x25A1)) + n(h) + "*" + n(h) + "*" + n(t));
    for (int d = 21; rows.size() < 1257; d += 3)
        for (int t = 2; t <= 14 && rows.size() < 1257; t += 2) add(5, 1 + d % 2, "D" + n(d) + "*" + n(t * 0.5 + 1));
    for (int d = 10; rows.size() < 1281; d += 5) add(6, 1, "D" + n(d));
    return rows;
}

// The section database's catalogue table as shipped: keys, name, figures, then ten parameter
// texts; the name is not a key field. The scheme tables are there, empty, for the start-up.
bool writeCatalogue(const QString& path) {
    ndp::CDatabase db;
    if (!db.Create(path)) return false;
    std::vector<ndp::CDBField> fields{{L"PolyID", EnDBFieldKind::Int32, true},
                                      {L"SubClassID", EnDBFieldKind::Int32, true},
                                      {L"StandardName", EnDBFieldKind::Text, true},
                                      {L"WeightMeter", EnDBFieldKind::Double},
                                      {L"AreaVal", EnDBFieldKind::Double}};
    for (const wchar_t* param : kParamFields) fields.emplace_back(param, EnDBFieldKind::Text);
    ndp::CDBTable* table = db.CreateTable(L"SectionPolyInfor", fields);
    if (!table) return false;
    db.CreateTable(L"SectionPolyParam", {{L"PolyID", EnDBFieldKind::Int32, true}, {L"ParamCode", EnDBFieldKind::Text}});
    db.CreateTable(L"SectionPoly", {{L"PolyID", EnDBFieldKind::Int32, true}, {L"PolyName", EnDBFieldKind::Text}});
    for (const Row& row : generatedRows()) {
        ndp::CDBRecord* record = table->CreateRecord();
        record->SetInt(0, row.polyId);
        record->SetInt(1, row.subClass);
        record->SetString(2, row.name.toStdWString());
        record->SetDouble(3, row.weight);
        record->SetDouble(4, row.area);
        for (int i = 0; i < 10; ++i) record->SetString(5 + i, i % 3 ? L"0" : L"12.5");
        table->AddRecord(record);
        record->Release();
    }
    return db.Flush();
}

// The data folder the benchmarks run on, a project for the user catalogue (empty, as the host
// always has one to ask first), and the catalogue's names and weights read once.
class CatalogueSetup {
public:
    static CatalogueSetup& get() {
        static CatalogueSetup setup;
        return setup;
    }

    bool ok() const { return m_ok; }
    IVMPModel* model() { return &m_project; }
    const std::vector<std::pair<QString, double>>& rows() const { return m_rows; }

    // Catalogue names drawn with repetition, as the members of a take-off repeat them.
    const QStringList& takeOff() {
        if (m_takeOff.isEmpty() && !m_rows.empty()) {
            std::mt19937 random(kSeed);
            std::uniform_int_distribution<std::size_t> pick(0, m_rows.size() - 1);
            for (int i = 0; i < kTakeOffSize; ++i) m_takeOff << m_rows[pick(random)].first;
        }
        return m_takeOff;
    }

private:
    CatalogueSetup() {
        const QString shipped = VMPAppInfo::gAppInfo()->appDataPath() + QStringLiteral("/SKRSectionPolyDB.KDB");
        if (VMPAppInfo::gAppInfo()->fileExists(shipped)) {
            std::fprintf(stderr, "catalogue: %s\n", qUtf8Printable(shipped));
        } else {
            qputenv("BXQ_DATA_DIR", m_dir.path().toUtf8());
            if (!writeCatalogue(m_dir.filePath(QStringLiteral("SKRSectionPolyDB.KDB")))) return;
            std::fprintf(stderr, "catalogue: generated (%s)\n", qUtf8Printable(m_dir.path()));
        }
        if (!m_project.open(m_dir.filePath(QStringLiteral("project.KDB")))) return;
        ndp::CDatabase* db = VMPNDDBManager::nddbMgr()->getNDDB(QStringLiteral("SKRSectionPolyDB.KDB"), false);
        ndp::CDBTable* table = db ? db->GetTable(L"SectionPolyInfor") : nullptr;
        ndp::CFileAddressList all;
        if (!table || !table->ListAll(all)) return;
        SKRHotRollingSectionDBProvider reader(table);
        for (int i = 0; i < all.GetCount(); ++i) {
            ndp::CDBRecord* record = table->GetRecord(all.GetItem(i));
            const auto row = reader.fromRecord(record);
            record->Release();
            m_rows.emplace_back(QString::fromStdWString(row.standardName), row.weightMeter);
        }
        std::fprintf(stderr, "catalogue: %d rows\n", static_cast<int>(m_rows.size()));
        m_ok = !m_rows.empty();
    }

    QTemporaryDir m_dir;
    VMPProjectModel m_project;
    std::vector<std::pair<QString, double>> m_rows;
    QStringList m_takeOff;
    bool m_ok = false;
};

// Items per second, and the time of one look-up (printed with its unit, e.g. "lookup=4.3us").
void reportPerLookup(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations());
    state.counters["lookup"] = benchmark::Counter(static_cast<double>(state.iterations()),
                                                  benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// One member's weight per metre per iteration, through the registered providers.
void BM_WpmLookup(benchmark::State& state) {
    CatalogueSetup& setup = CatalogueSetup::get();
    if (!setup.ok()) {
        state.SkipWithError("no catalogue");
        return;
    }
    skr::InitBXQSteelRepository(setup.model());
    const QStringList& names = setup.takeOff();
    double total = 0.0;
    int i = 0;
    for (auto _ : state) {
        total += skr::section::SKRPerMetreLookup::weightPerMetre(names[i]);
        if (++i == names.size()) i = 0;
    }
    benchmark::DoNotOptimize(total);
    skr::util::UnRegisterInstance<SectionRepository>(true);
    if (total <= 0.0) state.SkipWithError("no name was found");
    reportPerLookup(state);
}
BENCHMARK(BM_WpmLookup);

// The same look-ups in a hash map from name to weight: the least any look-up can cost.
void BM_WpmFloor(benchmark::State& state) {
    CatalogueSetup& setup = CatalogueSetup::get();
    if (!setup.ok()) {
        state.SkipWithError("no catalogue");
        return;
    }
    QHash<QString, double> weights;
    for (const auto& row : setup.rows()) weights.insert(row.first, row.second);
    const QStringList& names = setup.takeOff();
    double total = 0.0;
    int i = 0;
    for (auto _ : state) {
        total += weights.value(names[i]);
        if (++i == names.size()) i = 0;
    }
    benchmark::DoNotOptimize(total);
    reportPerLookup(state);
}
BENCHMARK(BM_WpmFloor);

// Start-up on a database not yet open: the manager opens the file, the repository registers
// its providers. Shutting down and closing again is not timed.
void BM_InitRepository(benchmark::State& state) {
    CatalogueSetup& setup = CatalogueSetup::get();
    if (!setup.ok()) {
        state.SkipWithError("no catalogue");
        return;
    }
    VMPNDDBManager::nddbMgr()->closeAll();
    for (auto _ : state) {
        skr::InitBXQSteelRepository(setup.model());
        state.PauseTiming();
        const bool registered = skr::util::FetchInstance<SKRHotRollingSectionDBProvider>() != nullptr;
        skr::util::UnRegisterInstance<SectionRepository>(true);
        VMPNDDBManager::nddbMgr()->closeAll();
        if (!registered) state.SkipWithError("the catalogue provider was not registered");
        state.ResumeTiming();
    }
    state.counters["start-up"] = benchmark::Counter(static_cast<double>(state.iterations()),
                                                    benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_InitRepository)->Unit(benchmark::kMillisecond);

// Opening the shipped catalogue with its seal checked (content digest and SQLite's integrity
// check), against the floor of opening it alone.
void BM_CatalogueOpenSealed(benchmark::State& state) {
    const QString path = VMPAppInfo::gAppInfo()->appDataPath() + QStringLiteral("/SKRSectionPolyDB.KDB");
    for (auto _ : state) {
        ndp::CDatabase database;
        QString error;
        if (!database.Open(path, true) || !ndp::CheckDatabaseSeal(database, &error))
            return state.SkipWithError("the shipped catalogue cannot be opened or is damaged");
    }
}
BENCHMARK(BM_CatalogueOpenSealed)->Unit(benchmark::kMillisecond);

void BM_CatalogueOpenFloor(benchmark::State& state) {
    const QString path = VMPAppInfo::gAppInfo()->appDataPath() + QStringLiteral("/SKRSectionPolyDB.KDB");
    for (auto _ : state) {
        ndp::CDatabase database;
        if (!database.Open(path, true)) return state.SkipWithError("the shipped catalogue cannot be opened");
    }
}
BENCHMARK(BM_CatalogueOpenFloor)->Unit(benchmark::kMillisecond);

}  // namespace
