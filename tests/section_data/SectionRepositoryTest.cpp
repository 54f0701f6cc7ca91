// The object registry and its typed layer (keys, collisions, ownership); start-up and shut-down of
// the section repository, its providers per table, and the scheme and parameter providers, on
// databases made in a temporary data folder.
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SKRObjectRegistry.h"
#include "section_data/SectionRepository.h"
#include "section_data/SKRSectionPolyDBManager.h"
#include "section_data/SectionSchemeProvider.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/VMPModelException.h"
#include "vmp/VMPNDDBManager.h"
#include "vmp/VMPProjectModel.h"

#include "support/CatalogueTables.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

using namespace skr::section;
using ndp::EnDBFieldKind;
using namespace skr::util;

namespace {

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
        addParam(params, 11, 1, L"h");
        addParam(params, 12, 1, L"h");
        addParam(params, 11, 2, L"b");
        addParam(params, 11, 1, L"tw");
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

}  // namespace

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

TEST_F(SectionRepositoryTest, ShutDownForgetsWithoutDestroying) {
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
}

TEST_F(SectionRepositoryTest, SchemeAndParameterRowsComeInSearchOrderAndUnregisteringKeepsTheUserProvider) {
    makeSectionDb(true);
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

    // Unregistering the section database keeps the user provider.
    SectionRepository* repository = FetchInstance<SectionRepository>();
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
    try {
        SKRSectionPolyDBManager::instance();
        FAIL() << "no exception";
    } catch (const VMPModelException& e) {
        EXPECT_EQ(e.message(), QStringLiteral("[%1]文件不存在").arg(path));
    }
    makeSectionDb(true);  // the failed call left no instance behind, so the file is tested again
    SKRSectionPolyDBManager* manager = SKRSectionPolyDBManager::instance();
    ASSERT_NE(manager->sectionPolyDB(), nullptr);
    EXPECT_EQ(SKRSectionPolyDBManager::instance(), manager);
    EXPECT_NE(manager->sectionPolyDB()->GetTable(L"SectionPoly"), nullptr);
    SKRSectionPolyDBManager::freeInstance();
    SKRSectionPolyDBManager::freeInstance();  // none left: nothing happens
}

namespace {

struct Probe {
    static int destroyed;
    virtual ~Probe() { ++destroyed; }
};
int Probe::destroyed = 0;

}  // namespace

template <>
struct skr::util::RegistryKey<Probe> {
    static std::string name() { return "class test::Probe"; }
};

TEST(ObjectRegistry, KeyIsNameAndGroupConcatenatedAndTheFirstRegistrationStays) {
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
}

TEST(RegistryInstance, TypedLayerUsesTheLiteralKeyAndDestroysOnlyWhenAsked) {
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
