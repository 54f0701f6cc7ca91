// The hot-rolled providers on a database that fails under them: a damaged row is an error
// naming the file for every look-up that reaches it, never a row not found or a shorter list,
// and a change to a project that cannot be written says so instead of finding nothing.
#include "section_data/SKRDatabaseError.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"

#include "support/CatalogueTables.h"
#include "support/DamagedDatabase.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <functional>

using namespace skr::section;

namespace {

void addRow(ndp::CDBTable* table, int type, const std::wstring& name, const QString& height) {
    ndp::CDBRecord* record = table->CreateRecord();
    record->SetInt(0, type);
    record->SetInt(1, 1);
    record->SetString(2, name);
    record->SetString(5, height.toStdWString());
    for (int field = 6; field < 9; ++field) record->SetString(field, L"10");
    ASSERT_NE(table->AddRecord(record), ndp::kNullAddress);
    record->Release();
}

void expectFailureNamingFile(const std::function<void()>& lookUp, const QString& path, const char* reason) {
    try {
        lookUp();
        ADD_FAILURE() << "no failure";
    } catch (const SKRDatabaseError& e) {
        EXPECT_TRUE(QString::fromUtf8(e.what()).contains(path)) << e.what();
        EXPECT_TRUE(QString::fromUtf8(e.what()).contains(reason)) << e.what();
    }
}

}  // namespace

TEST(ProviderFaults, EveryLookUpReachingADamagedRowFailsNamingTheFile) {
    QTemporaryDir dir;
    const QString path = dir.filePath("SKRSectionPolyDB.KDB");
    {
        ndp::CDatabase db;
        ASSERT_TRUE(db.Create(path));
        ndp::CDBTable* table = db.CreateTable(L"SectionPolyInfor", bxqtest::systemCatalogueFields());
        addRow(table, 1, L"I20a", "200");
        addRow(table, 1, L"I20b", bxqtest::longNumberText("200"));
        addRow(table, 2, L"[20a", "200");
        ASSERT_TRUE(db.Flush());
    }
    ASSERT_TRUE(bxqtest::damageLongRow(path));
    ndp::CDatabase db;
    ASSERT_TRUE(db.Open(path, true));
    SKRHotRollingSectionDBProvider provider(db.GetTable(L"SectionPolyInfor"));

    EXPECT_TRUE(provider.findByName(L"I20a").first);
    EXPECT_EQ(provider.listByType(2).size(), 1u);
    const std::pair<const char*, std::function<void()>> lookUps[] = {
        {"findByName", [&] { provider.findByName(L"I20b"); }},
        {"listByType", [&] { provider.listByType(1); }},
        {"listAll", [&] { provider.listAll(); }},
    };
    for (const auto& lookUp : lookUps) {
        SCOPED_TRACE(lookUp.first);
        expectFailureNamingFile(lookUp.second, path, "malformed");
    }
}

TEST(ProviderFaults, AChangeToAProjectThatCannotBeWrittenSaysSo) {
    QTemporaryDir dir;
    const QString path = dir.filePath("project.KDB");
    SKRHotRollingSection section;
    section.sectionType = 9;
    section.subId = 1;
    section.standardName = L"Z270*80*8*3(ZDY)";
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
    SKRHotRollingSection other = section;
    other.standardName = L"Z300*80*8*3(ZDY)";
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"addSection", [&] { provider.addSection(other); }},
        {"updateSection", [&] { provider.updateSection(section); }},
        {"removeSection", [&] { provider.removeSection(9, 1); }},
    };
    for (const auto& change : changes) {
        SCOPED_TRACE(change.first);
        expectFailureNamingFile(change.second, path, "cannot write");
    }
    EXPECT_EQ(provider.listAll().size(), 1u);
}
