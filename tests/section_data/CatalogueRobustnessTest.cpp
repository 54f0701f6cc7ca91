// The hot-rolled catalogues under stress: a user section saved just before the process is
// killed, names written to break the look-up's query, and catalogue numbers read exactly as the
// C library reads them.
#include "section_data/SKRProjectSchema.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SKRPerMetreLookup.h"
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/VMPProjectModel.h"

#include "support/CatalogueTables.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cwchar>
#include <random>
#include <stdexcept>

using namespace skr::section;
using ndp::EnDBFieldKind;

namespace {

SKRHotRollingSection userSection(const std::wstring& name, int type, int sub, double weight) {
    SKRHotRollingSection section;
    section.sectionType = type;
    section.subId = sub;
    section.standardName = name;
    section.weightMeter = weight;
    section.area = 0.5;
    section.params = {{L"h", 270}, {L"b", 80}};
    return section;
}

int rowCount(ndp::CDBTable* table) {
    ndp::CFileAddressList all;
    table->ListAll(all);
    return all.GetCount();
}

}  // namespace

// The child half of the kill test: saves one user section, adds a second without saving,
// reports, then waits to be killed.
static int runSavedSectionChild(const QString& path) {
    VMPProjectModel model;
    if (!model.open(path)) return 3;
    SKRUserHotRollingSectionDBProvider user(model.getProjectDB()->GetTable(skr::section::schema::user_section::table));
    if (!user.addSection(userSection(L"Z270*80*8*3(ZDY)", 9, 1, 12.5)) || !model.save()) return 4;
    if (!user.addSection(userSection(L"Z300*80*8*3(ZDY)", 9, 2, 14.0))) return 5;
    std::printf("saved\n");
    std::fflush(stdout);
    for (;;) QThread::sleep(1);
}

// Runs before the tests: the kill test starts this executable again as its child.
static const int savedSectionChild = [] {
    const QByteArray path = qgetenv("BXQ_SAVED_SECTION_CHILD");
    if (!path.isEmpty()) std::exit(runSavedSectionChild(QString::fromLocal8Bit(path)));
    return 0;
}();

TEST(UserSectionDurability, SavedSectionSurvivesTheProcessBeingKilledAndAnUnsavedOneIsGone) {
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
    ndp::CDBTable* table = reopened.getProjectDB()->GetTable(skr::section::schema::user_section::table);
    SKRUserHotRollingSectionDBProvider user(table);
    const SKRHotRollingLookup saved = user.findByName(L"Z270*80*8*3(ZDY)");
    ASSERT_TRUE(saved.first);
    EXPECT_EQ(saved.second.weightMeter, 12.5);
    const std::vector<std::pair<std::wstring, double>> params{{L"h", 270}, {L"b", 80}};
    EXPECT_EQ(saved.second.params, params);
    EXPECT_FALSE(user.findByName(L"Z300*80*8*3(ZDY)").first);
    EXPECT_EQ(rowCount(table), 1);
}

namespace {

// Names that would break a look-up that pasted them into a query: quotes, parentheses,
// separators, SQL comments and statements, wildcards, and the query form itself.
const std::vector<std::wstring> kHostileNames{
    L"I20a\") OR 1=1 --",
    L"x'; DROP TABLE SectionPolyInfor; --",
    L"a\"b",
    L"(ZDY)",
    L";",
    L"I20a\"",
    L"\"",
    L"\")",
    L"I20a' OR '1'='1",
    L"%",
    L"I2_a",
    L"I20a\"); DELETE FROM \"CustomHotRolledSection\"; --",
    L"SameString(StandardName,\"I20a\")",
    L"I20a\\",
};

class HostileNameTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_db.Create(m_dir.filePath("sections.KDB")));
        m_system = m_db.CreateTable(L"SectionPolyInfor", bxqtest::systemCatalogueFields());
        m_user = m_db.CreateTable(L"CustomHotRolledSection", bxqtest::userCatalogueFields());
        ASSERT_TRUE(m_system && m_user);
        for (const auto& row : {std::make_pair(L"I20a", 27.929), std::make_pair(L"I20b", 31.069)}) {
            ndp::CDBRecord* record = m_system->CreateRecord();
            record->SetInt(0, 1);
            record->SetInt(1, 1);
            record->SetString(2, row.first);
            record->SetDouble(3, row.second);
            record->SetDouble(4, 0.742);
            for (int i = 5; i < 9; ++i) record->SetString(i, L"100");
            ASSERT_NE(m_system->AddRecord(record), ndp::kNullAddress);
            record->Release();
        }
        m_systemProvider = new SKRHotRollingSectionDBProvider(m_system);
        m_userProvider = new SKRUserHotRollingSectionDBProvider(m_user);
        ASSERT_TRUE(skr::util::RegisterInstance(m_systemProvider));
        ASSERT_TRUE(skr::util::RegisterInstance(m_userProvider));
        ASSERT_TRUE(m_userProvider->addSection(userSection(L"Z270*80*8*3(ZDY)", 9, 1, 12.5)));
    }
    void TearDown() override {
        skr::util::UnRegisterInstance<SKRUserHotRollingSectionDBProvider>(true);
        skr::util::UnRegisterInstance<SKRHotRollingSectionDBProvider>(true);
    }
    void expectCataloguesIntact(int userRows) {
        ASSERT_NE(m_db.GetTable(L"SectionPolyInfor"), nullptr);
        ASSERT_NE(m_db.GetTable(skr::section::schema::user_section::table), nullptr);
        EXPECT_EQ(rowCount(m_system), 2);
        EXPECT_EQ(rowCount(m_user), userRows);
        EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("I20a"), 27.929);
        EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("I20b"), 31.069);
        EXPECT_EQ(SKRPerMetreLookup::weightPerMetre("Z270*80*8*3(ZDY)"), 12.5);
    }

    QTemporaryDir m_dir;
    ndp::CDatabase m_db;
    ndp::CDBTable* m_system = nullptr;
    ndp::CDBTable* m_user = nullptr;
    SKRHotRollingSectionDBProvider* m_systemProvider = nullptr;
    SKRUserHotRollingSectionDBProvider* m_userProvider = nullptr;
};

}  // namespace

TEST_F(HostileNameTest, LookUpsFindNothingAndChangeNothing) {
    for (const std::wstring& name : kHostileNames) {
        SCOPED_TRACE(QString::fromStdWString(name).toStdString());
        EXPECT_FALSE(m_systemProvider->findByName(name).first);
        EXPECT_FALSE(m_userProvider->findByName(name).first);
        const QString norm = QString::fromStdWString(name);
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
    expectCataloguesIntact(1);
    EXPECT_EQ(m_userProvider->findByName(L"Z270*80*8*3(ZDY)").second.weightMeter, 12.5);
}

// Catalogue parameters are numbers written as text; each reads as std::wcstod reads it, a
// text that is no number or out of range fails the row.
TEST(CatalogueNumbers, ReadAsTheCLibraryReadsThem) {
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

    QTemporaryDir dir;
    ndp::CDatabase db;
    ASSERT_TRUE(db.Create(dir.filePath("numbers.KDB")));
    ndp::CDBTable* table = db.CreateTable(L"SectionPolyInfor", {{L"PolyID", EnDBFieldKind::Int32, true},
                                                                {L"SubClassID", EnDBFieldKind::Int32, true},
                                                                {L"StandardName", EnDBFieldKind::Text, true},
                                                                {L"WeightMeter", EnDBFieldKind::Double},
                                                                {L"AreaVal", EnDBFieldKind::Double},
                                                                {L"h", EnDBFieldKind::Text}});
    ASSERT_NE(table, nullptr);
    for (size_t i = 0; i < texts.size(); ++i) {
        ndp::CDBRecord* record = table->CreateRecord();
        record->SetString(2, L"N" + std::to_wstring(i));
        record->SetString(5, texts[i]);
        table->AddRecord(record);
        record->Release();
    }
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
