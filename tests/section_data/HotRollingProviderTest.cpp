// The hot-rolled providers on real tables: look-ups by name, keys (cached) and type, row reading,
// user sections added, updated and removed, and the parser resolving names through the registry.
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SKRPerMetreLookup.h"
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"

#include "support/CatalogueTables.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <stdexcept>

using namespace skr::section;
using ndp::EnDBFieldKind;

namespace {

class HotRollingProviderTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_db.Create(m_dir.filePath("sections.KDB")));
        m_system = m_db.CreateTable(L"SectionPolyInfor", bxqtest::systemCatalogueFields());
        m_user = m_db.CreateTable(L"CustomHotRolledSection", bxqtest::userCatalogueFields());
        ASSERT_TRUE(m_system && m_user);
        addSystem(1, 1, L"I20a", 27.9, 0.742, {L"200", L"100", L"7", L"11.4"});
        addSystem(1, 1, L"I20b", 31.1, 0.746, {L"200", L"102", L"9", L"11.4"});
        addSystem(5, 1, L"D114*4", 10.85, 0.358, {L"114", L"0", L"0", L"4"});
    }

    void addSystem(int type, int sub, const std::wstring& name, double weight, double area,
                   const std::vector<std::wstring>& params) {
        ndp::CDBRecord* record = m_system->CreateRecord();
        record->SetInt(0, type);
        record->SetInt(1, sub);
        record->SetString(2, name);
        record->SetDouble(3, weight);
        record->SetDouble(4, area);
        for (size_t i = 0; i < params.size(); ++i) record->SetString(static_cast<int>(5 + i), params[i]);
        ASSERT_NE(m_system->AddRecord(record), ndp::kNullAddress);
        record->Release();
    }

    int rowCount(ndp::CDBTable* table) {
        ndp::CFileAddressList all;
        table->ListAll(all);
        return all.GetCount();
    }

    QTemporaryDir m_dir;
    ndp::CDatabase m_db;
    ndp::CDBTable* m_system = nullptr;
    ndp::CDBTable* m_user = nullptr;
};

SKRHotRollingSection userSection(const std::wstring& name, int type, int sub) {
    SKRHotRollingSection section;
    section.sectionType = type;
    section.subId = sub;
    section.standardName = name;
    section.weightMeter = 12.5;
    section.area = 0.5;
    section.params = {{L"h", 200}, {L"b", 100.25}};
    return section;
}

}  // namespace

TEST_F(HotRollingProviderTest, FindsSystemRowsByNameWithParametersInFieldOrder) {
    SKRHotRollingSectionDBProvider provider(m_system);
    const SKRHotRollingLookup found = provider.findByName(L"I20a");
    ASSERT_TRUE(found.first);
    EXPECT_EQ(found.second.sectionType, 1);
    EXPECT_EQ(found.second.weightMeter, 27.9);
    EXPECT_EQ(found.second.area, 0.742);
    const std::vector<std::pair<std::wstring, double>> expected{{L"h", 200}, {L"b", 100}, {L"d", 7}, {L"t", 11.4}};
    EXPECT_EQ(found.second.params, expected);

    for (const wchar_t* missing : {L"I20c", L"i20a", L"I20a\")", L"\" || 1==1 || \"", L""}) {
        const SKRHotRollingLookup none = provider.findByName(missing);
        EXPECT_FALSE(none.first);
        EXPECT_EQ(none.second.sectionType, -1);
        EXPECT_TRUE(none.second.params.empty());
    }
}

TEST_F(HotRollingProviderTest, KeyLookupsAreCachedOnlyWhenFound) {
    SKRHotRollingSectionDBProvider provider(m_system);
    EXPECT_EQ(provider.keyQuery(5, 1), L"PolyID == 5 && SubClassID == 1");
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
    addSystem(6, 1, L"D20", 2.47, 0.063, {L"20", L"0", L"0", L"0"});
    EXPECT_TRUE(provider.findByKeys(6, 1).first);
}

TEST_F(HotRollingProviderTest, ListsByTypeInTableOrder) {
    SKRHotRollingSectionDBProvider provider(m_system);
    const auto beams = provider.listByType(1);
    ASSERT_EQ(beams.size(), 2u);
    EXPECT_EQ(beams[0].standardName, L"I20a");
    EXPECT_EQ(beams[1].standardName, L"I20b");
    EXPECT_TRUE(provider.listByType(42).empty());
    EXPECT_TRUE(SKRHotRollingSectionDBProvider(nullptr).listByType(1).empty());
    EXPECT_FALSE(SKRHotRollingSectionDBProvider(nullptr).findByName(L"I20a").first);
}

TEST_F(HotRollingProviderTest, MalformedRowsFailTheWholeRead) {
    addSystem(2, 1, L"bad", 1, 1, {L"20x", L"abc", L"0", L"0"});
    addSystem(2, 2, L"huge", 1, 1, {L"1e999", L"0", L"0", L"0"});
    SKRHotRollingSectionDBProvider provider(m_system);
    // "20x" reads as 20 like any leading number; "abc" is no number at all.
    try {
        provider.findByName(L"bad");
        FAIL() << "no exception";
    } catch (const std::invalid_argument& e) {
        EXPECT_STREQ(e.what(), "invalid stod argument");
    }
    try {
        provider.findByName(L"huge");
        FAIL() << "no exception";
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ(e.what(), "stod argument out of range");
    }
}

TEST_F(HotRollingProviderTest, RowsWithoutFieldsAfterAreaValHaveNoParameters) {
    ndp::CDBTable* bare = m_db.CreateTable(L"Bare", {{L"PolyID", EnDBFieldKind::Int32},
                                                     {L"SubClassID", EnDBFieldKind::Int32},
                                                     {L"StandardName", EnDBFieldKind::Text},
                                                     {L"WeightMeter", EnDBFieldKind::Double},
                                                     {L"AreaVal", EnDBFieldKind::Double}});
    ndp::CDBRecord* record = bare->CreateRecord();
    record->SetString(2, L"X1");
    bare->AddRecord(record);
    record->Release();
    SKRHotRollingSectionDBProvider provider(bare);
    const SKRHotRollingLookup found = provider.findByName(L"X1");
    ASSERT_TRUE(found.first);
    EXPECT_TRUE(found.second.params.empty());

    ndp::CDBTable* noName = m_db.CreateTable(L"NoName", {{L"PolyID", EnDBFieldKind::Int32, true}});
    ndp::CDBRecord* row = noName->CreateRecord();
    row->SetInt(0, 1);
    noName->AddRecord(row);
    row->Release();
    try {
        SKRHotRollingSectionDBProvider(noName).listByType(1);
        FAIL() << "no exception";
    } catch (const std::invalid_argument& e) {
        EXPECT_STREQ(e.what(), "Invalid Field Name!");
    }
}

TEST_F(HotRollingProviderTest, UserSectionsAreAddedOnceUpdatedAndRemoved) {
    SKRUserHotRollingSectionDBProvider user(m_user);
    ASSERT_TRUE(user.addSection(userSection(L"Z270*80*8*3(ZDY)", 9, 1)));
    EXPECT_FALSE(user.addSection(userSection(L"Z270*80*8*3(ZDY)", 9, 2)));
    EXPECT_EQ(rowCount(m_user), 1);

    SKRHotRollingLookup found = user.findByName(L"Z270*80*8*3(ZDY)");
    ASSERT_TRUE(found.first);
    EXPECT_EQ(found.second.sectionType, 9);
    const std::vector<std::pair<std::wstring, double>> params{{L"h", 200}, {L"b", 100.25}};
    EXPECT_EQ(found.second.params, params);

    SKRHotRollingSection changed = userSection(L"Z270*80*8*3(ZDY)", 1, 7);
    changed.weightMeter = 99;
    changed.area = 2;
    changed.params.clear();
    EXPECT_TRUE(user.updateSection(changed));
    found = user.findByName(L"Z270*80*8*3(ZDY)");
    EXPECT_EQ(found.second.weightMeter, 99);
    EXPECT_EQ(found.second.area, 2);
    EXPECT_EQ(found.second.sectionType, 9);  // keys and parameters stay
    EXPECT_EQ(found.second.params, params);
    EXPECT_FALSE(user.updateSection(userSection(L"nobody", 1, 1)));

    EXPECT_FALSE(user.removeSection(9, 2));
    EXPECT_TRUE(user.removeSection(9, 1));
    EXPECT_EQ(rowCount(m_user), 0);
}

TEST_F(HotRollingProviderTest, UserParameterTextAcceptsATrailingSeparator) {
    ndp::CDBRecord* record = m_user->CreateRecord();
    record->SetInt(0, 3);
    record->SetInt(1, 2);
    record->SetString(2, L"L100*10(ZDY)");
    record->SetString(5, L"h=200;b=100;");
    m_user->AddRecord(record);
    record->Release();
    SKRUserHotRollingSectionDBProvider user(m_user);
    EXPECT_EQ(user.keyQuery(3, 2), L"SectionType == 3 && SubID == 2");
    const SKRHotRollingLookup found = user.findByKeys(3, 2);
    ASSERT_TRUE(found.first);
    const std::vector<std::pair<std::wstring, double>> params{{L"h", 200}, {L"b", 100}};
    EXPECT_EQ(found.second.params, params);
}

TEST_F(HotRollingProviderTest, ParserResolvesCatalogueAndUserNamesThroughTheRegistry) {
    auto* system = new SKRHotRollingSectionDBProvider(m_system);
    auto* user = new SKRUserHotRollingSectionDBProvider(m_user);
    ASSERT_TRUE(skr::util::RegisterInstance(system));
    ASSERT_TRUE(skr::util::RegisterInstance(user));
    user->addSection(userSection(L"Z270*80*8*3(ZDY)", 9, 1));

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

TEST_F(HotRollingProviderTest, PerMetreFiguresComeFromTheUserCatalogueFirst) {
    auto* system = new SKRHotRollingSectionDBProvider(m_system);
    ASSERT_TRUE(skr::util::RegisterInstance(system));
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
