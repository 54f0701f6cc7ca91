// The hot-rolled providers on real tables: look-ups by name, keys (cached) and type, user sections
// added, updated and removed, the parser and the per-metre figures resolving names through the
// registry, names written to break the look-up's query, catalogue numbers read exactly as the C
// library reads them; and when things fail under them: a damaged row is an error naming the file
// for every look-up that reaches it, a change to a project that cannot be written says so, a user
// section saved just before the process is killed survives and an unsaved one is gone.
#include "section_data/SKRDatabaseError.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SKRPerMetreLookup.h"
#include "section_data/SKRProjectSchema.h"
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/VMPProjectModel.h"

#include "support/CatalogueTables.h"
#include "support/DamagedDatabase.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cwchar>
#include <functional>
#include <random>
#include <stdexcept>

using namespace skr::section;
using ndp::EnDBFieldKind;

namespace {

using Params = std::vector<std::pair<std::wstring, double>>;

const Params kUserParams{{L"h", 270}, {L"b", 80.25}};

SKRHotRollingSection userSection(const std::wstring& name, int type, int sub, double weight = 12.5) {
    SKRHotRollingSection section;
    section.sectionType = type;
    section.subId = sub;
    section.standardName = name;
    section.weightMeter = weight;
    section.area = 0.5;
    section.params = kUserParams;
    return section;
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

}  // namespace

TEST_F(HotRollingProvider, FindsListsAndCachesKeyLookUpsOfSystemRowsWithParametersInFieldOrder) {
    SKRHotRollingSectionDBProvider provider(m_system);
    const SKRHotRollingLookup found = provider.findByName(L"I20a");
    ASSERT_TRUE(found.first);
    EXPECT_EQ(found.second.sectionType, 1);
    EXPECT_EQ(found.second.weightMeter, 27.9);
    EXPECT_EQ(found.second.area, 0.742);
    EXPECT_EQ(found.second.params, (Params{{L"h", 200}, {L"b", 100}, {L"d", 7}, {L"t", 11.4}}));
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
}

TEST_F(HotRollingProvider, UserSectionsAreAddedOnceUpdatedAndRemoved) {
    SKRUserHotRollingSectionDBProvider user(m_user);
    const std::wstring name = L"Z270*80*8*3(ZDY)";
    ASSERT_TRUE(user.addSection(userSection(name, 9, 1)));
    EXPECT_FALSE(user.addSection(userSection(name, 9, 2)));
    EXPECT_EQ(rowCount(m_user), 1);
    SKRHotRollingLookup found = user.findByName(name);
    ASSERT_TRUE(found.first);
    EXPECT_EQ(found.second.sectionType, 9);
    EXPECT_EQ(found.second.params, kUserParams);  // stored as "h=270;b=80.25;", trailing separator and all
    EXPECT_EQ(user.findByKeys(9, 1).second.standardName, name);

    SKRHotRollingSection changed = userSection(name, 1, 7, 99);
    changed.area = 2;
    changed.params.clear();
    EXPECT_TRUE(user.updateSection(changed));
    found = user.findByName(name);  // the new weight shows in the per-metre figures
    EXPECT_EQ(found.second.area, 2);
    EXPECT_EQ(found.second.sectionType, 9);  // keys and parameters stay
    EXPECT_EQ(found.second.params, kUserParams);
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

TEST(ProviderFaults, EveryLookUpReachingADamagedRowFailsNamingTheFile) {
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
}

TEST(ProviderFaults, AChangeToAProjectThatCannotBeWrittenSaysSo) {
    QTemporaryDir dir;
    const QString path = dir.filePath("project.KDB");
    const SKRHotRollingSection section = userSection(kSaved, 9, 1);
    {
        ndp::CDatabase db;
        ASSERT_TRUE(db.Create(path));
        SKRUserHotRollingSectionDBProvider provider(db.CreateTable(L"CustomHotRolledSection", bxqtest::userCatalogueFields()));
        ASSERT_TRUE(provider.addSection(section));
        ASSERT_TRUE(db.Flush());
    }
    ndp::CDatabase db;
    ASSERT_TRUE(db.Open(path, true));
    SKRUserHotRollingSectionDBProvider provider(db.GetTable(L"CustomHotRolledSection"));
    expectFailuresNamingFile({{"addSection", [&] { provider.addSection(userSection(kUnsaved, 9, 2)); }},
                              {"updateSection", [&] { provider.updateSection(section); }},
                              {"removeSection", [&] { provider.removeSection(9, 1); }}},
                             path, "cannot write");
    EXPECT_EQ(provider.listAll().size(), 1u);
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
    EXPECT_EQ(saved.second.weightMeter, 12.5);
    EXPECT_EQ(saved.second.params, kUserParams);
    EXPECT_FALSE(user.findByName(kUnsaved).first);
    EXPECT_EQ(rowCount(table), 1);
}
