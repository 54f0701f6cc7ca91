// VMPNDDBManager: the application's databases by file name.
#include "vmp/VMPNDDBManager.h"

#include "ndp/NDPContentSeal.h"
#include "ndp/NDPDatabase.h"
#include "vmp/VMPAppInfo.h"


VMPNDDBManager::VMPNDDBManager() = default;
VMPNDDBManager::~VMPNDDBManager() = default;

VMPNDDBManager* VMPNDDBManager::nddbMgr() {
    static VMPNDDBManager manager;
    return &manager;
}

ndp::CDatabase* VMPNDDBManager::getNDDB(const QString& name, bool readOnly) {
    const auto open = m_databases.find(name);
    if (open != m_databases.end()) return open->second.get();
    auto database = std::make_unique<ndp::CDatabase>();
    const QString path = VMPAppInfo::gAppInfo()->appDataPath() + QLatin1Char('/') + name;
    m_lastError.clear();
    if (!database->Open(path, readOnly)) {
        m_lastError = database->GetLastError();
        return nullptr;
    }
    // A shipped file is read as it was made or not at all.
    if (!ndp::CheckDatabaseSeal(*database, &m_lastError)) return nullptr;
    if (ndp::IsDatabaseSealed(*database)) ndp::HoldReadLock(*database);
    ndp::CDatabase* result = database.get();
    m_databases.emplace(name, std::move(database));
    return result;
}

ndp::CDatabase* VMPNDDBManager::openedNDDB(const QString& name) const {
    const auto open = m_databases.find(name);
    return open == m_databases.end() ? nullptr : open->second.get();
}

bool VMPNDDBManager::closeNDDB(ndp::CDatabase* database) {
    for (auto it = m_databases.begin(); it != m_databases.end(); ++it) {
        if (it->second.get() != database) continue;
        m_databases.erase(it);
        return true;
    }
    return false;
}

void VMPNDDBManager::closeAll() { m_databases.clear(); }
