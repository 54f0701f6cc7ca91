// SectionRepository: wires the section and project databases to the providers it registers,
// and the library's data-side start-up and shut-down.
#pragma once

#include "plugin/BXQExtendGlobal.h"
#include "section_data/SKRRegistryInstance.h"

class IVMPModel;
namespace ndp {
class CDatabase;
}

namespace skr {
namespace section {

class BXQEXTEND_EXPORT SectionRepository {
public:
    SectionRepository();
    // Destroys and unregisters the providers it registered.
    ~SectionRepository();

    // Registers the catalogue, parameter and scheme providers on the tables the database has.
    void RegSectionPolyDB(ndp::CDatabase* db);
    // Keeps the project database and registers the user catalogue provider on it.
    void RegProjectDB(ndp::CDatabase* db);
    // Accepted and ignored: the slot is kept for hosts that call it.
    void RegAbnormalDB(ndp::CDatabase* db);
    void UnRegProjectDB();
    void UnRegAbnormalDB();
    void UnRegSectionPolyDB();
    ndp::CDatabase* GetProjectDB();

private:
    ndp::CDatabase* m_pSectionPolyDB = nullptr;
    ndp::CDatabase* m_pProjectDB = nullptr;
    ndp::CDatabase* m_pAbnormalDB = nullptr;
};

}  // namespace section

// Opens the section database, takes the model's project database (none for a null model) and
// registers the repository and its providers; does nothing when a repository is registered already.
BXQEXTEND_EXPORT void InitBXQSteelRepository(IVMPModel* model);
// Forgets the repository and its providers without destroying them.
BXQEXTEND_EXPORT void UninitBXQSteelRepository();

}  // namespace skr

template <>
struct skr::util::RegistryKey<skr::section::SectionRepository> {
    static std::string name() { return "class skr::section::SectionRepository"; }
};
