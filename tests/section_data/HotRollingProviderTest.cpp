// The hot-rolled providers on real tables: look-ups by name, keys (cached) and type, user sections
// added, updated and removed, the parser and the per-metre figures resolving names through the
// registry, names written to break the look-up's query, catalogue numbers read exactly as the C
// library reads them; and when things fail under them: a damaged row is an error naming the file
// for every look-up that reaches it, a change to a project that cannot be written says so, a user
// section saved just before the process is killed survives and an unsaved one is gone.
// The object registry and its typed layer (keys, collisions, ownership); start-up and shut-down of
// the section repository, its providers per table, and the scheme and parameter providers, on
// databases made in a temporary data folder.
// The custom polygon store on a real project file: IDs and type rows of new polygons, what
// survives closing and reopening the project (flushed or not), updates, removals and refusals.
#include "section_data/SKRDatabaseError.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SKRObjectRegistry.h"
#include "section_data/SKRPerMetreLookup.h"
#include "section_data/SKRProjectSchema.h"
#include "section_data/SKRSectionDbOperation.h"
#include "section_data/SKRSectionPolyDBManager.h"
#include "section_data/SectionRepository.h"
#include "section_data/SectionSchemeProvider.h"
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPPolygon.h"
#include "vmp/VMPModelException.h"
#include "vmp/VMPNDDBManager.h"
#include "vmp/VMPProjectModel.h"

#include "support/CatalogueTables.h"
#include "support/DamagedDatabase.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cwchar>
#include <functional>
#include <memory>
#include <random>
#include <stdexcept>
#include <tuple>

using namespace skr::section;
using namespace skr::util;
using ndp::CArc2d;
using ndp::CLine2d;
using ndp::CLoop;
using ndp::CPolygon;
using ndp::EnDBFieldKind;

namespace {

using Params = std::vector<std::pair<std::wstring, double>>;

const Params kUserParams{{L"h", 270}, {L"b", 80.25}};

SKRHotRollingSection userSection(const std::wstring& name, int type, int sub, double weight = 12.5) {
    return {type, sub, name, weight, 0.5, kUserParams};
}

int rowCount(ndp::CDBTable* table) {
    ndp::CFileAddressList all;
    table->ListAll(all);
    return all.GetCount();
}

// A system row: the keys, name, weight and area, then the parameter texts in field order.
void addRow(ndp::CDBTable* table, int type, int sub, const std::wstring& name, double weight, double area,
            const std::vector<std::wstring>& params) {
    ndp::CDBRecord* record = table->CreateRecord();
    record->SetInt(0, type);
    record->SetInt(1, sub);
    record->SetString(2, name);
    record->SetDouble(3, weight);
    record->SetDouble(4, area);
    for (size_t i = 0; i < params.size(); ++i) record->SetString(static_cast<int>(5 + i), params[i]);
    ASSERT_NE(table->AddRecord(record), ndp::kNullAddress);
    record->Release();
}

// Every field of a catalogue row, to compare rows whole.
std::tuple<int, int, std::wstring, double, double, Params> fieldsOf(const SKRHotRollingSection& s) {
    return {s.sectionType, s.subId, s.standardName, s.weightMeter, s.area, s.params};
}

// What the call threw as E, "nothing thrown" when it returned.
template <typename E, typename F>
std::string thrown(F&& call) {
    try {
        call();
    } catch (const E& e) {
        return e.what();
    }
    return "nothing thrown";
}

// A system table holding I20a, I20b and D114*4, an empty user table, and providers on them.
class HotRollingProvider : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_db.Create(m_dir.filePath("sections.KDB")));
        m_system = m_db.CreateTable(L"SectionPolyInfor", bxqtest::systemCatalogueFields());
        m_user = m_db.CreateTable(L"CustomHotRolledSection", bxqtest::userCatalogueFields());
        ASSERT_TRUE(m_system && m_user);
        addRow(m_system, 1, 1, L"I20a", 27.9, 0.742, {L"200", L"100", L"7", L"11.4"});
        addRow(m_system, 1, 1, L"I20b", 31.1, 0.746, {L"200", L"102", L"9", L"11.4"});
        addRow(m_system, 5, 1, L"D114*4", 10.85, 0.358, {L"114", L"0", L"0", L"4"});
    }
    void TearDown() override {
        skr::util::UnRegisterInstance<SKRUserHotRollingSectionDBProvider>(true);
        skr::util::UnRegisterInstance<SKRHotRollingSectionDBProvider>(true);
    }
    // Registers providers on both tables (the user one only when asked), as the repository does.
    void registerProviders(bool user = true) {
        m_systemProvider = new SKRHotRollingSectionDBProvider(m_system);
        ASSERT_TRUE(skr::util::RegisterInstance(m_systemProvider));
        if (!user) return;
        m_userProvider = new SKRUserHotRollingSectionDBProvider(m_user);
        ASSERT_TRUE(skr::util::RegisterInstance(m_userProvider));
    }

    QTemporaryDir m_dir;
    ndp::CDatabase m_db;
    ndp::CDBTable* m_system = nullptr;
    ndp::CDBTable* m_user = nullptr;
    SKRHotRollingSectionDBProvider* m_systemProvider = nullptr;
    SKRUserHotRollingSectionDBProvider* m_userProvider = nullptr;
};

using Calls = std::vector<std::pair<const char*, std::function<void()>>>;

void expectFailuresNamingFile(const Calls& calls, const QString& path, const char* reason) {
    for (const auto& call : calls) {
        SCOPED_TRACE(call.first);
        const QString what = QString::fromStdString(thrown<SKRDatabaseError>(call.second));
        EXPECT_TRUE(what.contains(path)) << what.toStdString();
        EXPECT_TRUE(what.contains(reason)) << what.toStdString();
    }
}

const wchar_t kSaved[] = L"Z270*80*8*3(ZDY)", kUnsaved[] = L"Z300*80*8*3(ZDY)";

// The child half of the kill test: saves one user section, adds a second without saving,
// reports, then waits to be killed.
int runSavedSectionChild(const QString& path) {
    VMPProjectModel model;
    if (!model.open(path)) return 3;
    SKRUserHotRollingSectionDBProvider user(model.getProjectDB()->GetTable(schema::user_section::table));
    if (!user.addSection(userSection(kSaved, 9, 1)) || !model.save()) return 4;
    if (!user.addSection(userSection(kUnsaved, 9, 2, 14.0))) return 5;
    std::printf("saved\n");
    std::fflush(stdout);
    for (;;) QThread::sleep(1);
}

// Runs before the tests: the kill test starts this executable again as its child.
const int savedSectionChild = [] {
    const QByteArray path = qgetenv("BXQ_SAVED_SECTION_CHILD");
    if (!path.isEmpty()) std::exit(runSavedSectionChild(QString::fromLocal8Bit(path)));
    return 0;
}();

void addParam(ndp::CDBTable* table, int polyId, int subClass, const wchar_t* code) {
    ndp::CDBRecord* record = table->CreateRecord();
    record->SetInt(table->FindField(L"PolyID"), polyId);
    record->SetInt(table->FindField(L"SubClassID"), subClass);
    record->SetString(table->FindField(L"ParamCode"), code);
    record->SetString(table->FindField(L"ValidExpr"), L"(%1 >= 1) And ( %1 <=10000)");
    table->AddRecord(record);
    record->Release();
}

// A section database with the given tables, in a data folder that BXQ_DATA_DIR points at.
class SectionRepositoryTest : public ::testing::Test {
protected:
    void SetUp() override {
        skr::UninitBXQSteelRepository();
        VMPNDDBManager::nddbMgr()->closeAll();
        qputenv("BXQ_DATA_DIR", m_dir.path().toUtf8());
        ASSERT_TRUE(m_project.open(m_dir.filePath("project.KDB")));
    }
    void TearDown() override {
        delete FetchInstance<SectionRepository>();
        skr::UninitBXQSteelRepository();
        VMPNDDBManager::nddbMgr()->closeAll();
        qunsetenv("BXQ_DATA_DIR");
    }

    void makeSectionDb(bool withScheme) {
        ndp::CDatabase db;
        ASSERT_TRUE(db.Create(m_dir.filePath("SKRSectionPolyDB.KDB")));
        db.CreateTable(L"SectionPolyInfor", bxqtest::systemCatalogueFields());
        ndp::CDBTable* params = db.CreateTable(
            L"SectionPolyParam",
            {{L"PolyID", EnDBFieldKind::Int32, true}, {L"SubClassID", EnDBFieldKind::Int32},
             {L"ParamID", EnDBFieldKind::Int32}, {L"ParamCode", EnDBFieldKind::Text},
             {L"DataType", EnDBFieldKind::Int32}, {L"EditorPtX", EnDBFieldKind::Int32},
             {L"EditorPtY", EnDBFieldKind::Int32}, {L"DefVal", EnDBFieldKind::Text},
             {L"Unit", EnDBFieldKind::Text}, {L"ValidExpr", EnDBFieldKind::Text}, {L"InvalidMsg", EnDBFieldKind::Text}});
        const std::tuple<int, int, const wchar_t*> rows[] = {{11, 1, L"h"}, {12, 1, L"h"}, {11, 2, L"b"}, {11, 1, L"tw"}};
        for (const auto& [polyId, subClass, code] : rows) addParam(params, polyId, subClass, code);
        if (withScheme) {
            ndp::CDBTable* schemes = db.CreateTable(L"SectionPoly", {{L"PolyID", EnDBFieldKind::Int32, true},
                                                                     {L"GroupID", EnDBFieldKind::Int32},
                                                                     {L"PolyName", EnDBFieldKind::Text}});
            ndp::CDBRecord* record = schemes->CreateRecord();
            record->SetInt(0, 11);
            record->SetInt(1, 2);
            record->SetString(2, L"焊接H型钢");
            schemes->AddRecord(record);
            record->Release();
        }
        ASSERT_TRUE(db.Flush());
    }

    // Which providers are registered: catalogue, parameters, schemes, user sections.
    static void expectProviders(bool catalogue, bool params, bool schemes, bool user) {
        EXPECT_EQ(FetchInstance<SKRHotRollingSectionDBProvider>() != nullptr, catalogue);
        EXPECT_EQ(FetchInstance<SectionParamProvider>() != nullptr, params);
        EXPECT_EQ(FetchInstance<SectionSchemeProvider>() != nullptr, schemes);
        EXPECT_EQ(FetchInstance<SKRUserHotRollingSectionDBProvider>() != nullptr, user);
    }

    QTemporaryDir m_dir;
    VMPProjectModel m_project;
};

const char kCannotAccept[] = "cannot accept:DB is nullptr ;CustomPoly doesn't exist;CustomPolyType doesn't exist";

// A plate with rounded ends and a bolt hole.
CPolygon plate(double width) {
    CPolygon polygon;
    auto* outer = new CLoop;
    outer->AddCurve(new CLine2d({0, 0}, {width, 0}), false);
    outer->AddCurve(new CArc2d({width, 0}, {width, 30}, 15, 1), false);
    outer->AddCurve(new CLine2d({width, 30}, {0, 30}), false);
    outer->AddCurve(new CArc2d({0, 30}, {0, 0}, 20, 3), false);
    polygon.AddLoop(outer, true);
    auto* hole = new CLoop;
    hole->AddCurve(new CArc2d({width / 3, 15}, 4.5, 0.0, 6.283185307179586), false);
    polygon.AddLoop(hole, true);
    return polygon;
}

QByteArray drawingBytes() {
    QByteArray bytes;
    for (int i = 0; i < 512; ++i) bytes.append(static_cast<char>(i % 256));
    bytes.append(QByteArray(16, '\0'));
    return bytes;
}

// What opening a store on the database threw, "nothing thrown" when it opened.
std::string thrownBy(ndp::CDatabase* db) {
    return thrown<std::invalid_argument>([db] { SKRSectionDbOperation store(db); });
}

class CustomPolyStoreTest : public ::testing::Test {
protected:
    void SetUp() override { reopen(); }

    // Closes the project, discarding whatever was not flushed, and opens it again.
    void reopen() {
        m_store.reset();
        m_project.reset();
        m_project = std::make_unique<VMPProjectModel>();
        ASSERT_TRUE(m_project->open(m_dir.filePath("project.KDB"))) << qPrintable(m_project->lastError());
        m_store = std::make_unique<SKRSectionDbOperation>(db());
    }

    ndp::CDatabase* db() { return m_project->getProjectDB(); }
    ndp::CDBTable* table(const wchar_t* name) { return db()->GetTable(name); }

    SKRCustomPolyInfo added(CPolygon* polygon) {
        SKRCustomPolyInfo info{0, {}, polygon, 12.5, -7.25, QStringLiteral("100"), QStringLiteral("50"), drawingBytes()};
        EXPECT_TRUE(m_store->addCustomPoly(info));
        return info;
    }

    // (ID, Description) of every "CustomPolyType" row, in table order.
    std::vector<std::pair<int, std::wstring>> typeRows() {
        std::vector<std::pair<int, std::wstring>> rows;
        ndp::CDBTable* types = table(L"CustomPolyType");
        ndp::CFileAddressList all;
        types->ListAll(all);
        for (int i = 0; i < all.GetCount(); ++i) {
            ndp::CDBRecord* record = types->GetRecord(all.GetItem(i));
            rows.emplace_back(record->GetInt(types->FindField(L"ID"), -99),
                              record->GetString(types->FindField(L"Description")));
            record->Release();
        }
        return rows;
    }

    int polyRowCount() { return rowCount(table(L"CustomPoly")); }

    // A field of the "CustomPoly" row with that ID, read straight from the table.
    template <typename Read>
    auto polyField(int id, const wchar_t* field, Read read) {
        ndp::CDBTable* polys = table(L"CustomPoly");
        ndp::CFileAddress address = ndp::kNullAddress;
        EXPECT_TRUE(polys->Find(polys->FindField(L"ID"), id, address));
        ndp::CDBRecord* record = polys->GetRecord(address);
        auto value = read(record, polys->FindField(field));
        record->Release();
        return value;
    }

    QTemporaryDir m_dir;
    std::unique_ptr<VMPProjectModel> m_project;
    std::unique_ptr<SKRSectionDbOperation> m_store;
};

auto readInt = [](ndp::CDBRecord* r, int f) { return r->GetInt(f, -99); };
auto readText = [](ndp::CDBRecord* r, int f) { return r->GetString(f); };

// An object that counts its destructions, registered under a key of its own.
struct Probe {
    static inline int destroyed = 0;
    virtual ~Probe() { ++destroyed; }
};

}  // namespace

TEST_F(HotRollingProvider, FindsListsAndCachesSystemRowsWithParametersInFieldOrderAndKeepsUserSections) {
    SKRHotRollingSectionDBProvider provider(m_system);
    SKRHotRollingLookup found = provider.findByName(L"I20a");
    ASSERT_TRUE(found.first);
    EXPECT_EQ(fieldsOf(found.second),
              fieldsOf({1, 1, L"I20a", 27.9, 0.742, {{L"h", 200}, {L"b", 100}, {L"d", 7}, {L"t", 11.4}}}));
    EXPECT_FALSE(provider.findByName(L"i20a").first);  // names are compared as they stand

    const auto beams = provider.listByType(1);
    ASSERT_EQ(beams.size(), 2u);
    EXPECT_EQ(beams[0].standardName, L"I20a");
    EXPECT_EQ(beams[1].standardName, L"I20b");
    EXPECT_TRUE(provider.listByType(42).empty());
    EXPECT_TRUE(SKRHotRollingSectionDBProvider(nullptr).listByType(1).empty());
    EXPECT_FALSE(SKRHotRollingSectionDBProvider(nullptr).findByName(L"I20a").first);

    // Key look-ups are cached only when found.
    ASSERT_TRUE(provider.findByKeys(5, 1).first);

    // Once found, the answer comes from the cache: the row is gone but still found.
    ndp::CFileAddressList pipes;
    ASSERT_TRUE(m_system->Search(0, 5, pipes));
    ASSERT_TRUE(m_system->DeleteRecord(pipes.GetItem(0)));
    const SKRHotRollingLookup cached = provider.findByKeys(5, 1);
    ASSERT_TRUE(cached.first);
    EXPECT_EQ(cached.second.standardName, L"D114*4");

    // A miss is not cached: a row inserted later is seen.
    EXPECT_FALSE(provider.findByKeys(6, 1).first);
    addRow(m_system, 6, 1, L"D20", 2.47, 0.063, {L"20", L"0", L"0", L"0"});
    EXPECT_TRUE(provider.findByKeys(6, 1).first);

    ndp::CDBTable* noName = m_db.CreateTable(L"NoName", {{L"PolyID", EnDBFieldKind::Int32, true}});
    ndp::CDBRecord* row = noName->CreateRecord();
    row->SetInt(0, 1);
    noName->AddRecord(row);
    row->Release();
    EXPECT_EQ(thrown<std::invalid_argument>([&] { SKRHotRollingSectionDBProvider(noName).listByType(1); }),
              "Invalid Field Name!");

    // User sections are added once, updated and removed.
    SKRUserHotRollingSectionDBProvider user(m_user);
    const std::wstring name = L"Z270*80*8*3(ZDY)";
    ASSERT_TRUE(user.addSection(userSection(name, 9, 1)));
    EXPECT_FALSE(user.addSection(userSection(name, 9, 2)));
    EXPECT_EQ(rowCount(m_user), 1);
    found = user.findByName(name);
    ASSERT_TRUE(found.first);
    EXPECT_EQ(fieldsOf(found.second), fieldsOf(userSection(name, 9, 1)));  // "h=270;b=80.25;" read back whole
    EXPECT_EQ(user.findByKeys(9, 1).second.standardName, name);

    const SKRHotRollingSection changed{1, 7, name, 99, 2, {}};
    EXPECT_TRUE(user.updateSection(changed));
    // The new weight and area are stored; keys and parameters stay.
    EXPECT_EQ(fieldsOf(user.findByName(name).second), fieldsOf({9, 1, name, 99, 2, kUserParams}));
    EXPECT_FALSE(user.updateSection(userSection(L"nobody", 1, 1)));

    EXPECT_FALSE(user.removeSection(9, 2));
    EXPECT_TRUE(user.removeSection(9, 1));  // the per-metre figures show it gone
}

TEST_F(HotRollingProvider, PerMetreFiguresComeFromTheUserCatalogueFirst) {
    registerProviders(false);
    EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("I20a"), 27.9);
    EXPECT_EQ(SKRPerMetreLookup::surfacePerMetre("I20a"), 0.742);

    auto* user = new SKRUserHotRollingSectionDBProvider(m_user);
    ASSERT_TRUE(skr::util::RegisterInstance(user));
    SKRHotRollingSection shadow = userSection(L"I20a", 1, 1);
    ASSERT_TRUE(user->addSection(shadow));
    EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("I20a"), 12.5);
    EXPECT_EQ(SKRPerMetreLookup::surfacePerMetre("I20a"), 0.5);
    EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("I20b"), 31.1);
    EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("I99"), 0.0);
    EXPECT_EQ(SKRPerMetreLookup::surfacePerMetre("I99"), 0.0);

    // The figures follow the user's changes at once: an update, a removal, a row added by a
    // second provider on the same table.
    shadow.weightMeter = 13.5;
    ASSERT_TRUE(user->updateSection(shadow));
    EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("I20a"), 13.5);
    ASSERT_TRUE(user->removeSection(1, 1));
    EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("I20a"), 27.9);
    SKRUserHotRollingSectionDBProvider other(m_user);
    ASSERT_TRUE(other.addSection(userSection(L"I99", 1, 2)));
    EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("I99"), 12.5);

    skr::util::UnRegisterInstance<SKRUserHotRollingSectionDBProvider>(true);
    skr::util::UnRegisterInstance<SKRHotRollingSectionDBProvider>(true);
    EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("I20b"), 0.0);
}

// Names that would break a look-up that pasted them into a query (quotes, parentheses, separators,
// SQL comments and statements, wildcards, the query form itself) and names merely absent or
// empty.
TEST_F(HotRollingProvider, HostileNamesFindNothingAndChangeNothingAndTheParserResolvesNamesThroughTheRegistry) {
    registerProviders();
    ASSERT_TRUE(m_userProvider->addSection(userSection(L"Z270*80*8*3(ZDY)", 9, 1)));
    for (const wchar_t* name :
         {L"I20a\") OR 1=1 --", L"x'; DROP TABLE SectionPolyInfor; --", L"a\"b", L"(ZDY)", L";", L"I20a\"", L"\"",
          L"\")", L"I20a' OR '1'='1", L"%", L"I2_a", L"I20a\"); DELETE FROM \"CustomHotRolledSection\"; --",
          L"SameString(StandardName,\"I20a\")", L"I20a\\", L"\" || 1==1 || \"", L"I20c", L""}) {
        const QString norm = QString::fromStdWString(name);
        SCOPED_TRACE(norm.toStdString());
        for (SKRHotRollingSectionDBProvider* provider : {m_systemProvider, static_cast<SKRHotRollingSectionDBProvider*>(m_userProvider)}) {
            const SKRHotRollingLookup none = provider->findByName(name);
            EXPECT_FALSE(none.first);
            EXPECT_EQ(none.second.sectionType, -1);
            EXPECT_TRUE(none.second.params.empty());
        }
        EXPECT_EQ(SKRPerMetreLookup::weightPerMetre(norm), 0.0);
        EXPECT_EQ(SKRPerMetreLookup::surfacePerMetre(norm), 0.0);
        SKRSectionPolyInfoParser parser;
        parser.parser(norm);
        // An I-beam text takes its dimensions from the catalogue only for a catalogue name.
        if (parser.sectionPolyInfo().sectionType == stI) {
            EXPECT_TRUE(parser.sectionPolyInfo().params.isEmpty());
        }
        // Updating a section of that name finds none to update.
        try {
            EXPECT_FALSE(m_userProvider->updateSection(userSection(name, 9, 1, 99.0)));
        } catch (const std::invalid_argument& e) {
            EXPECT_STREQ(e.what(), "Invalid Query String!");
        }
    }
    ASSERT_NE(m_db.GetTable(L"SectionPolyInfor"), nullptr);
    ASSERT_NE(m_db.GetTable(L"CustomHotRolledSection"), nullptr);
    EXPECT_EQ(rowCount(m_system), 3);
    EXPECT_EQ(rowCount(m_user), 1);
    EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("I20a"), 27.9);
    EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("I20b"), 31.1);
    EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("Z270*80*8*3(ZDY)"), 12.5);

    // The parser resolves catalogue and user names through the registry.
    SKRSectionPolyInfoParser parser;
    parser.parser("i20a");
    EXPECT_EQ(parser.sectionPolyInfo().params, (QVector<double>{200, 100, 7, 11.4}));
    parser.parser("[20a");  // a channel name absent from this catalogue
    EXPECT_TRUE(parser.sectionPolyInfo().params.isEmpty());
    parser.parser("Z270*80*8*3(ZDY)");
    EXPECT_EQ(parser.sectionPolyInfo().sectionType, 9);
    EXPECT_EQ(parser.sectionPolyInfo().groupType, sgStandard);
    parser.parser("Z270*80*8*4(ZDY)");
    EXPECT_EQ(parser.sectionPolyInfo().sectionType, stInvalid);

    EXPECT_TRUE(skr::util::UnRegisterInstance<SKRUserHotRollingSectionDBProvider>(true));
    EXPECT_TRUE(skr::util::UnRegisterInstance<SKRHotRollingSectionDBProvider>(true));
    parser.parser("I20a");
    EXPECT_TRUE(parser.sectionPolyInfo().params.isEmpty());
}

// Catalogue parameters are numbers written as text; each reads as std::wcstod reads it, a text
// that is no number or out of range fails the row.
TEST_F(HotRollingProvider, CatalogueNumbersReadAsTheCLibraryReadsThem) {
    std::vector<std::wstring> texts{L"0",      L"-0",     L"200",   L"11.4",    L".5",      L"5.",     L"1E3",
                                    L"1e-5",   L"007.50", L" 12",   L"+3",      L"0x1p4",   L"20x",    L"1e",
                                    L"1-2",    L"inf",    L"nan",   L"abc",     L"",        L"-",      L"e5",
                                    L"1e999",  L"1e-400", L"4.9e-324", L"1e-310", L"2.2250738585072014e-308",
                                    L"1.7976931348623157e308", L"123456789012345678901234567890"};
    std::mt19937_64 random(20240611);
    for (int i = 0; i < 2000; ++i) {
        const double magnitude = std::pow(10.0, std::uniform_int_distribution<int>(-30, 30)(random));
        const double value = std::uniform_real_distribution<double>(-1.0, 1.0)(random) * magnitude;
        const int digits = std::uniform_int_distribution<int>(1, 17)(random);
        const char format = "gef"[i % 3];
        texts.push_back(QString::number(value, format, format == 'f' ? digits % 8 : digits).toStdWString());
    }
    std::vector<ndp::CDBField> fields = bxqtest::systemCatalogueFields();
    fields.resize(6);  // the one parameter h
    ndp::CDBTable* table = m_db.CreateTable(L"Numbers", fields);
    ASSERT_NE(table, nullptr);
    for (size_t i = 0; i < texts.size(); ++i) addRow(table, 0, 0, L"N" + std::to_wstring(i), 0, 0, {texts[i]});
    SKRHotRollingSectionDBProvider provider(table);
    for (size_t i = 0; i < texts.size(); ++i) {
        SCOPED_TRACE(QString::fromStdWString(texts[i]).toStdString());
        const wchar_t* begin = texts[i].c_str();
        wchar_t* end = nullptr;
        errno = 0;
        const double expected = std::wcstod(begin, &end);
        const bool invalid = end == begin;
        const bool outOfRange = !invalid && errno == ERANGE;
        try {
            const SKRHotRollingLookup found = provider.findByName(L"N" + std::to_wstring(i));
            ASSERT_TRUE(found.first);
            ASSERT_EQ(found.second.params.size(), 1u);
            const double read = found.second.params[0].second;
            EXPECT_FALSE(invalid || outOfRange);
            if (std::isnan(expected)) {
                EXPECT_TRUE(std::isnan(read));
            } else {
                EXPECT_EQ(read, expected);
                EXPECT_EQ(std::signbit(read), std::signbit(expected));
            }
        } catch (const std::out_of_range& e) {
            EXPECT_TRUE(outOfRange);
            EXPECT_STREQ(e.what(), "stod argument out of range");
        } catch (const std::invalid_argument& e) {
            EXPECT_TRUE(invalid);
            EXPECT_STREQ(e.what(), "invalid stod argument");
        }
    }
}

TEST(ProviderFaults, LookUpsReachingADamagedRowAndChangesToAProjectThatCannotBeWrittenFailNamingTheFile) {
    QTemporaryDir dir;
    const QString path = dir.filePath("SKRSectionPolyDB.KDB");
    {
        ndp::CDatabase db;
        ASSERT_TRUE(db.Create(path));
        ndp::CDBTable* table = db.CreateTable(L"SectionPolyInfor", bxqtest::systemCatalogueFields());
        addRow(table, 1, 1, L"I20a", 0, 0, {L"200", L"10", L"10", L"10"});
        addRow(table, 1, 1, L"I20b", 0, 0, {bxqtest::longNumberText("200").toStdWString(), L"10", L"10", L"10"});
        addRow(table, 2, 1, L"[20a", 0, 0, {L"200", L"10", L"10", L"10"});
        ASSERT_TRUE(db.Flush());
    }
    ASSERT_TRUE(bxqtest::damageLongRow(path));
    ndp::CDatabase db;
    ASSERT_TRUE(db.Open(path, true));
    SKRHotRollingSectionDBProvider provider(db.GetTable(L"SectionPolyInfor"));
    EXPECT_TRUE(provider.findByName(L"I20a").first);
    EXPECT_EQ(provider.listByType(2).size(), 1u);
    expectFailuresNamingFile({{"findByName", [&] { provider.findByName(L"I20b"); }},
                              {"listByType", [&] { provider.listByType(1); }},
                              {"listAll", [&] { provider.listAll(); }}},
                             path, "malformed");

    // A change to a project that cannot be written says so.
    const QString project = dir.filePath("project.KDB");
    const SKRHotRollingSection section = userSection(kSaved, 9, 1);
    {
        ndp::CDatabase created;
        ASSERT_TRUE(created.Create(project));
        SKRUserHotRollingSectionDBProvider user(created.CreateTable(L"CustomHotRolledSection", bxqtest::userCatalogueFields()));
        ASSERT_TRUE(user.addSection(section));
        ASSERT_TRUE(created.Flush());
    }
    ndp::CDatabase readOnly;
    ASSERT_TRUE(readOnly.Open(project, true));
    SKRUserHotRollingSectionDBProvider user(readOnly.GetTable(L"CustomHotRolledSection"));
    expectFailuresNamingFile({{"addSection", [&] { user.addSection(userSection(kUnsaved, 9, 2)); }},
                              {"updateSection", [&] { user.updateSection(section); }},
                              {"removeSection", [&] { user.removeSection(9, 1); }}},
                             project, "cannot write");
    EXPECT_EQ(user.listAll().size(), 1u);
}

TEST(ProviderFaults, SavedSectionSurvivesTheProcessBeingKilledAndAnUnsavedOneIsGone) {
    QTemporaryDir dir;
    const QString path = dir.filePath("project.KDB");
    {
        VMPProjectModel created;
        ASSERT_TRUE(created.open(path)) << qPrintable(created.lastError());
    }
    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("BXQ_SAVED_SECTION_CHILD", path);
    child.setProcessEnvironment(env);
    child.start(QCoreApplication::applicationFilePath(), QStringList());
    ASSERT_TRUE(child.waitForReadyRead(30000)) << child.readAllStandardError().constData();
    EXPECT_EQ(child.readLine().trimmed(), "saved");
    ::kill(static_cast<pid_t>(child.processId()), SIGKILL);
    child.waitForFinished();
    EXPECT_EQ(child.exitStatus(), QProcess::CrashExit);

    VMPProjectModel reopened;
    ASSERT_TRUE(reopened.open(path)) << qPrintable(reopened.lastError());
    ndp::CDBTable* table = reopened.getProjectDB()->GetTable(schema::user_section::table);
    SKRUserHotRollingSectionDBProvider user(table);
    const SKRHotRollingLookup saved = user.findByName(kSaved);
    ASSERT_TRUE(saved.first);
    EXPECT_EQ(fieldsOf(saved.second), fieldsOf(userSection(kSaved, 9, 1)));
    EXPECT_FALSE(user.findByName(kUnsaved).first);
    EXPECT_EQ(rowCount(table), 1);
}

// Which providers start-up registers: one per table the section database has, and the user
// one always; a second start-up changes none of them.
struct StartUpCase { const char* name; bool database, schemes; };
class SectionRepositoryStartUp : public SectionRepositoryTest, public ::testing::WithParamInterface<StartUpCase> {};

TEST_P(SectionRepositoryStartUp, RegistersAProviderForEachTableThereIsOnce) {
    const StartUpCase c = GetParam();
    if (c.database) makeSectionDb(c.schemes);
    skr::InitBXQSteelRepository(&m_project);
    SectionRepository* repository = FetchInstance<SectionRepository>();
    ASSERT_NE(repository, nullptr);
    EXPECT_EQ(repository->GetProjectDB(), m_project.getProjectDB());
    const auto providers = [] {
        return std::make_tuple(FetchInstance<SKRHotRollingSectionDBProvider>(), FetchInstance<SectionParamProvider>(),
                               FetchInstance<SectionSchemeProvider>(), FetchInstance<SKRUserHotRollingSectionDBProvider>());
    };
    const auto first = providers();
    expectProviders(c.database, c.database, c.schemes, true);
    skr::InitBXQSteelRepository(&m_project);
    EXPECT_EQ(FetchInstance<SectionRepository>(), repository);
    EXPECT_EQ(providers(), first);
}

INSTANTIATE_TEST_SUITE_P(Databases, SectionRepositoryStartUp,
                         ::testing::Values(StartUpCase{"Full", true, true}, StartUpCase{"WithoutSchemes", true, false},
                                           StartUpCase{"Missing", false, false}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(SectionRepositoryTest, ShutDownForgetsWithoutDestroyingAndAFreshStartServesSchemesAndParameters) {
    makeSectionDb(true);
    skr::InitBXQSteelRepository(&m_project);
    SectionRepository* repository = FetchInstance<SectionRepository>();
    SKRUserHotRollingSectionDBProvider* user = FetchInstance<SKRUserHotRollingSectionDBProvider>();
    SectionSchemeProvider* scheme = FetchInstance<SectionSchemeProvider>();
    skr::UninitBXQSteelRepository();
    EXPECT_EQ(FetchInstance<SectionRepository>(), nullptr);
    expectProviders(false, false, false, false);
    // Still alive (a destroyed object would be a use after free here, caught under ASan).
    EXPECT_FALSE(user->findByName(L"none").first);
    EXPECT_TRUE(scheme->findScheme(11).first);

    // A second start-up makes fresh objects; the old ones are the caller's to delete.
    skr::InitBXQSteelRepository(&m_project);
    SectionRepository* fresh = FetchInstance<SectionRepository>();
    EXPECT_NE(fresh, repository);
    skr::util::UnRegisterInstance<SectionRepository>(false);
    delete fresh;       // destroys and unregisters the fresh providers
    delete repository;  // nothing of its own is registered any more
    delete user;
    delete scheme;

    // Started again: scheme and parameter rows come in search order, and unregistering the section
    // database keeps the user provider.
    skr::InitBXQSteelRepository(&m_project);
    const SectionParamProvider* params = FetchInstance<SectionParamProvider>();
    const auto all = params->paramsOf(11);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0].paramCode, "h");
    EXPECT_EQ(all[1].paramCode, "b");
    EXPECT_EQ(all[2].paramCode, "tw");
    EXPECT_EQ(all[0].validExpr, "(%1 >= 1) And ( %1 <=10000)");
    const auto second = params->paramsOf(11, 2);
    ASSERT_EQ(second.size(), 1u);
    EXPECT_EQ(second[0].paramCode, "b");
    EXPECT_TRUE(params->paramsOf(99).empty());

    const SectionSchemeProvider* schemes = FetchInstance<SectionSchemeProvider>();
    const auto welded = schemes->findScheme(11);
    ASSERT_TRUE(welded.first);
    EXPECT_EQ(welded.second.groupId, 2);
    EXPECT_EQ(welded.second.polyName, QStringLiteral("焊接H型钢"));
    EXPECT_FALSE(schemes->findScheme(12).first);
    EXPECT_EQ(schemes->allSchemes().size(), 1u);

    repository = FetchInstance<SectionRepository>();
    repository->UnRegSectionPolyDB();
    expectProviders(false, false, false, true);
    repository->UnRegProjectDB();
    EXPECT_EQ(repository->GetProjectDB(), nullptr);
    expectProviders(false, false, false, false);
    repository->RegAbnormalDB(m_project.getProjectDB());
    repository->RegSectionPolyDB(nullptr);
    expectProviders(false, false, false, false);
}

TEST_F(SectionRepositoryTest, DatabaseManagerReportsAMissingFileWithItsFullPathAndRetries) {
    SKRSectionPolyDBManager::freeInstance();
    const QString path = m_dir.filePath("SKRSectionPolyDB.KDB");
    EXPECT_EQ(thrown<VMPModelException>([] { SKRSectionPolyDBManager::instance(); }),
              QStringLiteral("[%1]文件不存在").arg(path).toStdString());
    makeSectionDb(true);  // the failed call left no instance behind, so the file is tested again
    SKRSectionPolyDBManager* manager = SKRSectionPolyDBManager::instance();
    ASSERT_NE(manager->sectionPolyDB(), nullptr);
    EXPECT_EQ(SKRSectionPolyDBManager::instance(), manager);
    EXPECT_NE(manager->sectionPolyDB()->GetTable(L"SectionPoly"), nullptr);
    // A host that closes every database but keeps this manager gets the file opened again.
    VMPNDDBManager::nddbMgr()->closeAll();
    ASSERT_NE(manager->sectionPolyDB(), nullptr);
    EXPECT_EQ(manager->sectionPolyDB(), VMPNDDBManager::nddbMgr()->openedNDDB(QStringLiteral("SKRSectionPolyDB.KDB")));
    EXPECT_NE(manager->sectionPolyDB()->GetTable(L"SectionPoly"), nullptr);
    SKRSectionPolyDBManager::freeInstance();
    SKRSectionPolyDBManager::freeInstance();  // none left: nothing happens
}

template <>
struct skr::util::RegistryKey<Probe> {
    static std::string name() { return "class test::Probe"; }
};

TEST(ObjectRegistry, KeyIsNameAndGroupConcatenatedTheFirstRegistrationStaysAndOnlyAskedDestroys) {
    int first = 1, second = 2;
    EXPECT_TRUE(RegisterObject("reg.ab", &first, "c"));
    EXPECT_EQ(FetchObject("reg.ab", "c"), &first);
    EXPECT_EQ(FetchObject("reg.ab", ""), nullptr);
    EXPECT_FALSE(RegisterObject("reg.a", &second, "bc"));  // the same key
    EXPECT_EQ(FetchObject("reg.a", "bc"), &first);
    EXPECT_TRUE(UnRegisterObject("reg.a", "bc"));
    EXPECT_EQ(FetchObject("reg.ab", "c"), nullptr);
    EXPECT_FALSE(UnRegisterObject("reg.ab", "c"));
    EXPECT_EQ(FetchObject("reg.never", ""), nullptr);

    // A null object is stored and occupies its key.
    ASSERT_TRUE(RegisterObject("reg.null", nullptr, ""));
    EXPECT_FALSE(RegisterObject("reg.null", &first, ""));
    EXPECT_EQ(FetchObject("reg.null", ""), nullptr);
    EXPECT_TRUE(UnRegisterObject("reg.null", ""));

    // The typed layer uses the literal key and destroys only when asked.
    Probe::destroyed = 0;
    auto* probe = new Probe;
    ASSERT_TRUE(RegisterInstance(probe));
    EXPECT_EQ(FetchObject("class test::Probe", ""), probe);
    EXPECT_EQ(FetchInstance<Probe>(), probe);
    EXPECT_FALSE(RegisterInstance(probe));
    EXPECT_TRUE(UnRegisterInstance<Probe>(false));
    EXPECT_EQ(FetchInstance<Probe>(), nullptr);
    EXPECT_EQ(Probe::destroyed, 0);

    ASSERT_TRUE(RegisterInstance(probe));
    EXPECT_TRUE(UnRegisterInstance<Probe>(true));
    EXPECT_EQ(Probe::destroyed, 1);
    EXPECT_EQ(FetchInstance<Probe>(), nullptr);
    // Nothing registered: nothing destroyed, and the unregistration reports the absence.
    EXPECT_FALSE(UnRegisterInstance<Probe>(true));
    EXPECT_EQ(Probe::destroyed, 1);
}

TEST_F(CustomPolyStoreTest, FirstPolygonsGetConsecutiveIdsAndATypeRowEachAndARemovalIsNotFlushed) {
    CPolygon polygon = plate(80);
    const SKRCustomPolyInfo first = added(&polygon);
    EXPECT_EQ(first.id, 1);
    EXPECT_EQ(first.description, QStringLiteral("自定义截面1"));
    EXPECT_EQ(typeRows(), (std::vector<std::pair<int, std::wstring>>{{1, L"自定义截面类型"}}));
    EXPECT_EQ(polyField(1, L"CustomPolyTypeID", readInt), 1);
    EXPECT_EQ(polyField(1, L"TypeName", readText), L"自定义截面类型");
    EXPECT_EQ(polyField(1, L"Description", readText), L"自定义截面1");

    const SKRCustomPolyInfo second = added(&polygon);
    EXPECT_EQ(second.id, 2);
    EXPECT_EQ(second.description, QStringLiteral("自定义截面2"));
    EXPECT_EQ(typeRows(), (std::vector<std::pair<int, std::wstring>>{{1, L"自定义截面类型"}, {2, L"自定义截面类型"}}));
    EXPECT_EQ(polyField(2, L"CustomPolyTypeID", readInt), 2);

    // A removal holds for the session but is not flushed.
    EXPECT_TRUE(m_store->removeCustomPoly(1));
    EXPECT_FALSE(m_store->removeCustomPoly(1));
    EXPECT_FALSE(m_store->removeCustomPoly(9));

    SKRCustomPolyInfo got;
    CPolygon read;
    QString error;
    EXPECT_FALSE(m_store->readCustomPoly(1, got, read, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(m_store->readCustomPoly(2, got, read));
    EXPECT_EQ(polyRowCount(), 1);

    reopen();  // nothing flushed the removal
    EXPECT_EQ(polyRowCount(), 2);
    EXPECT_TRUE(m_store->readCustomPoly(1, got, read));
    EXPECT_EQ(got.description, QStringLiteral("自定义截面1"));
}

TEST_F(CustomPolyStoreTest, NewIdsFollowTheIdOfTheLastRowNotTheRowCountAndTheStoreNeedsBothTables) {
    ndp::CDBTable* polys = table(L"CustomPoly");
    ndp::CDBRecord* record = polys->CreateRecord();
    record->SetInt(polys->FindField(L"ID"), 41);
    polys->AddRecord(record);
    record->Release();
    ndp::CDBTable* types = table(L"CustomPolyType");
    record = types->CreateRecord();  // a type row without an ID counts as -1
    types->AddRecord(record);
    record->Release();

    CPolygon polygon = plate(60);
    const SKRCustomPolyInfo info = added(&polygon);
    EXPECT_EQ(info.id, 42);
    EXPECT_EQ(info.description, QStringLiteral("自定义截面42"));
    EXPECT_EQ(typeRows().back().first, 0);
    EXPECT_EQ(polyField(42, L"CustomPolyTypeID", readInt), 0);

    // The store needs a database with both tables.
    EXPECT_EQ(thrownBy(nullptr), kCannotAccept);
    QTemporaryDir dir;
    for (const wchar_t* only : {L"CustomPoly", L"CustomPolyType"}) {
        ndp::CDatabase db;
        ASSERT_TRUE(db.Create(dir.filePath(QString::fromWCharArray(only) + ".KDB")));
        db.CreateTable(only, {{L"ID", EnDBFieldKind::Int32, true}});
        EXPECT_EQ(thrownBy(&db), kCannotAccept) << only;
    }
    ndp::CDatabase both;
    ASSERT_TRUE(both.Create(dir.filePath("both.KDB")));
    ASSERT_TRUE(VMPProjectModel::createProjectTables(&both));
    EXPECT_EQ(thrownBy(&both), "nothing thrown");
}

TEST_F(CustomPolyStoreTest, AddedAndUpdatedPolygonsAreFlushedAndReadBackIdentical) {
    CPolygon polygon = plate(120.3);
    SKRCustomPolyInfo info = added(&polygon);
    reopen();
    CPolygon read;
    SKRCustomPolyInfo got;
    QString error;
    ASSERT_TRUE(m_store->readCustomPolyWithDrawing(info.id, got, read, &error)) << qPrintable(error);
    // Every field of a record but its outline, which is compared on its own.
    const auto fields = [](const SKRCustomPolyInfo& i) {
        return std::make_tuple(i.id, i.description.toStdString(), i.insertPointX, i.insertPointY,
                               i.horzSpace.toStdString(), i.vertSpace.toStdString(), i.vectorDrawingInfo);
    };
    EXPECT_EQ(fields(got), fields(info));
    EXPECT_EQ(got.polygon, &read);
    EXPECT_EQ(read, polygon);
    EXPECT_EQ(read.ToBytes(), polygon.ToBytes());
    // The reader without the drawing leaves it out.
    SKRCustomPolyInfo plain;
    plain.vectorDrawingInfo = QByteArray("stale");
    CPolygon outline;
    ASSERT_TRUE(m_store->readCustomPoly(info.id, plain, outline));
    EXPECT_EQ(outline, polygon);
    EXPECT_EQ(plain.polygon, &outline);
    EXPECT_EQ(plain.horzSpace, QStringLiteral("100"));
    EXPECT_TRUE(plain.vectorDrawingInfo.isEmpty());

    // An update of an ID there is not changes nothing.
    CPolygon changed = plate(95);
    changed.GetLoop(1)->Reverse();
    info = {info.id, QStringLiteral("底板"), &changed, 1.0 / 3, 2e-9, QStringLiteral("150"), QStringLiteral("75"),
            QByteArray(3, '\0')};
    for (int missing : {5, -1}) {
        SKRCustomPolyInfo other = info;
        other.id = missing;
        EXPECT_FALSE(m_store->updateCustomPoly(other));
    }
    EXPECT_EQ(polyField(1, L"Description", readText), L"自定义截面1");
    ASSERT_TRUE(m_store->updateCustomPoly(info));
    reopen();  // without saving: the update flushed
    ASSERT_TRUE(m_store->readCustomPolyWithDrawing(info.id, got, read));
    EXPECT_EQ(fields(got), fields(info));
    EXPECT_EQ(read, changed);
    // Identity and type stay.
    EXPECT_EQ(polyField(info.id, L"CustomPolyTypeID", readInt), 1);
    EXPECT_EQ(polyField(info.id, L"TypeName", readText), L"自定义截面类型");
    EXPECT_EQ(polyRowCount(), 1);
}
