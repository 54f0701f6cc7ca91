// SectionRepository and the data-side start-up and shut-down.
#include "section_data/SectionRepository.h"
#include "section_data/SKRProjectSchema.h"

#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SectionSchemeProvider.h"

#include "ndp/NDPDatabase.h"
#include "vmp/IVMPModel.h"
#include "vmp/VMPNDDBManager.h"

namespace skr {
namespace section {

using util::RegisterInstance;
using util::UnRegisterInstance;

SectionRepository::SectionRepository() = default;

SectionRepository::~SectionRepository() {
    m_pProjectDB = nullptr;
    UnRegisterInstance<SKRUserHotRollingSectionDBProvider>(true);
    m_pAbnormalDB = nullptr;
    UnRegSectionPolyDB();
}

void SectionRepository::RegSectionPolyDB(ndp::CDatabase* db) {
    if (!db) return;
    // The database itself is not kept: only its tables, through the providers.
    if (ndp::CDBTable* table = db->GetTable(L"SectionPolyInfor")) {
        auto* provider = new SKRHotRollingSectionDBProvider(table);
        if (!RegisterInstance(provider)) delete provider;
    }
    if (ndp::CDBTable* table = db->GetTable(L"SectionPolyParam")) {
        auto* provider = new SectionParamProvider(table);
        if (!RegisterInstance(provider)) delete provider;
    }
    if (ndp::CDBTable* table = db->GetTable(L"SectionPoly")) {
        auto* provider = new SectionSchemeProvider(table);
        if (!RegisterInstance(provider)) delete provider;
    }
}

void SectionRepository::RegProjectDB(ndp::CDatabase* db) {
    if (!db) return;
    m_pProjectDB = db;
    if (ndp::CDBTable* table = db->GetTable(schema::user_section::table)) {
        auto* provider = new SKRUserHotRollingSectionDBProvider(table);
        if (!RegisterInstance(provider)) delete provider;
    }
}

void SectionRepository::RegAbnormalDB(ndp::CDatabase*) {}

ndp::CDatabase* SectionRepository::GetProjectDB() { return m_pProjectDB; }

void SectionRepository::UnRegProjectDB() {
    m_pProjectDB = nullptr;
    UnRegisterInstance<SKRUserHotRollingSectionDBProvider>(true);
}

void SectionRepository::UnRegAbnormalDB() { m_pAbnormalDB = nullptr; }

void SectionRepository::UnRegSectionPolyDB() {
    m_pSectionPolyDB = nullptr;
    UnRegisterInstance<SKRHotRollingSectionDBProvider>(true);
    UnRegisterInstance<SectionParamProvider>(true);
    UnRegisterInstance<SectionSchemeProvider>(true);
}

}  // namespace section

void InitBXQSteelRepository(IVMPModel* model) {
    using section::SectionRepository;
    if (util::FetchInstance<SectionRepository>()) return;
    ndp::CDatabase* sectionPolyDb = VMPNDDBManager::nddbMgr()->getNDDB(QStringLiteral("SKRSectionPolyDB.KDB"), false);
    auto* repository = new SectionRepository;
    util::RegisterInstance(repository);
    repository->RegSectionPolyDB(sectionPolyDb);
    if (model) repository->RegProjectDB(model->getProjectDB());
}

void UninitBXQSteelRepository() {
    // Forgotten, not destroyed: the objects stay allocated until the process ends.
    util::UnRegisterInstance<section::SKRUserHotRollingSectionDBProvider>(false);
    util::UnRegisterInstance<section::SectionSchemeProvider>(false);
    util::UnRegisterInstance<section::SectionParamProvider>(false);
    util::UnRegisterInstance<section::SKRHotRollingSectionDBProvider>(false);
    util::UnRegisterInstance<section::SectionRepository>(false);
}

}  // namespace skr
