// SKRSectionPolyDBManager: the section database singleton.
#include "section_data/SKRSectionPolyDBManager.h"

#include "ndp/NDPDatabase.h"
#include "vmp/VMPAppInfo.h"
#include "vmp/VMPModelException.h"
#include "vmp/VMPNDDBManager.h"

#include <QCoreApplication>

namespace {
const char kSectionPolyDBName[] = "SKRSectionPolyDB.KDB";
}

SKRSectionPolyDBManager* SKRSectionPolyDBManager::m_pInstance = nullptr;

SKRSectionPolyDBManager::SKRSectionPolyDBManager() { initDB(); }

// Deliberately does not close the database: the database manager keeps it.
SKRSectionPolyDBManager::~SKRSectionPolyDBManager() = default;

SKRSectionPolyDBManager* SKRSectionPolyDBManager::instance() {
    // A constructor that throws leaves m_pInstance null, so the file is tested again next time.
    if (!m_pInstance) m_pInstance = new SKRSectionPolyDBManager;
    return m_pInstance;
}

void SKRSectionPolyDBManager::freeInstance() {
    delete m_pInstance;
    m_pInstance = nullptr;
}

ndp::CDatabase* SKRSectionPolyDBManager::sectionPolyDB() {
    // The database manager may have closed every database since (a host closing all its files
    // without discarding this manager): the pointer is handed out only while the manager still
    // holds that very database, and the file is opened again otherwise. Only pointer values are
    // compared, so a database already freed is never touched.
    if (m_pDatabase && m_pDatabase != VMPNDDBManager::nddbMgr()->openedNDDB(QLatin1String(kSectionPolyDBName))) {
        m_pDatabase = nullptr;
        initDB();
    }
    return m_pDatabase;
}

void SKRSectionPolyDBManager::initDB() {
    if (m_pDatabase) return;
    const QString path = VMPAppInfo::gAppInfo()->appDataPath() + QLatin1Char('/') + QLatin1String(kSectionPolyDBName);
    if (!VMPAppInfo::gAppInfo()->fileExists(path))
        throw VMPModelException(missingFileMessage(path));
    m_pDatabase = VMPNDDBManager::nddbMgr()->getNDDB(QLatin1String(kSectionPolyDBName), false);
}

QString SKRSectionPolyDBManager::missingFileMessage(const QString& path) {
    return QCoreApplication::translate("SKRSysInfo", "[%0]文件不存在").arg(path, 0, QLatin1Char(' '));
}

void SKRSectionPolyDBManager::closeDB() {
    if (!m_pDatabase) return;
    m_pDatabase->Close();
    // The database manager owns the object it opened: it destroys it, so nothing is freed twice.
    VMPNDDBManager::nddbMgr()->closeNDDB(m_pDatabase);
    m_pDatabase = nullptr;
}
