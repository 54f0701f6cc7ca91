// BXQDataSession: opening the databases of a bxq run and registering the section repository.
#include "app/BXQDataSession.h"

#include "body_builder/SKRMemberSolidShape.h"

#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SKRSectionPolyDBManager.h"
#include "section_data/SectionRepository.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPRef.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/IVMPModel.h"
#include "vmp/VMPAppInfo.h"
#include "vmp/VMPModelException.h"
#include "vmp/VMPNDDBManager.h"
#include "vmp/VMPProjectModel.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace bxq {
namespace {

const char kCatalogueFile[] = "SKRSectionPolyDB.KDB";

// The model of a run without a project: the repository gets the catalogue only.
class NoProjectModel : public IVMPModel {
public:
    ndp::CDatabase* getProjectDB() override { return nullptr; }
    bool isAutoCalculate() const override { return false; }
};

// "cannot ACTION PATH: REASON", the platform's reason without the file it names at its end.
QString fileMessage(const QString& action, const QString& path, const QString& reason) {
    QString why = reason.isEmpty() ? QStringLiteral("not a database of this program") : reason;
    const QString namedFile = QStringLiteral(" (%1)").arg(path);
    if (why.endsWith(namedFile)) why.chop(namedFile.size());
    return QStringLiteral("cannot %1 %2: %3").arg(action, path, why);
}

QString unreadableMessage(const QString& path, const QString& reason) {
    return fileMessage(QStringLiteral("open"), path, reason);
}

// A missing shipped database: the platform's message and the folders that were searched.
QString missingMessage(const QString& message) {
    return QStringLiteral("%1 (looked in %2)")
        .arg(message, VMPAppInfo::gAppInfo()->searchedDataPaths().join(QStringLiteral(", ")));
}

}  // namespace

BXQDataSession::BXQDataSession() : m_noProject(new NoProjectModel) {}

BXQDataSession::~BXQDataSession() {
    if (m_registered) {
        // Destroying the repository destroys and unregisters its providers.
        skr::util::UnRegisterInstance<skr::section::SectionRepository>(true);
    }
    SKRSectionPolyDBManager::freeInstance();
    VMPNDDBManager::nddbMgr()->closeAll();
}

QString BXQDataSession::dataFilePath(const QString& fileName) {
    return VMPAppInfo::gAppInfo()->appDataPath() + QLatin1Char('/') + fileName;
}

bool BXQDataSession::openProject(const QString& path, bool create, QString* error) {
    m_projectPath = path;
    const QFileInfo file(path);
    if (path.isEmpty()) {
        *error = QStringLiteral("--project needs a file name");
        return false;
    }
    if (file.exists() && !file.isFile()) {
        *error = QStringLiteral("cannot open project %1: not a file").arg(path);
        return false;
    }
    if (!create && !file.exists()) {
        *error = QStringLiteral("project %1 does not exist").arg(path);
        return false;
    }
    auto project = std::make_unique<VMPProjectModel>();
    if (!project->open(path)) {
        const QString reason = project->lastError();
        *error = unreadableMessage(path, reason.isEmpty() ? QStringLiteral("not a project database") : reason);
        return false;
    }
    // Members' solids: their section's outline extruded along the member.
    project->setSolidShapeFactory([](const QString& section, double length, const ndp::CoordinateSystem3& head) {
        return std::unique_ptr<IVMPSolidShape>(new skr::body::SKRMemberSolidShape(section, length, head));
    });
    m_project = std::move(project);
    return true;
}

bool BXQDataSession::openCatalogue(QString* error) {
    if (m_catalogue) return true;
    const QString path = dataFilePath(QLatin1String(kCatalogueFile));
    try {
        m_catalogue = SKRSectionPolyDBManager::instance()->sectionPolyDB();
    } catch (const VMPModelException& e) {
        *error = missingMessage(e.message());
        return false;
    }
    if (!m_catalogue) *error = unreadableMessage(path, VMPNDDBManager::nddbMgr()->lastError());
    return m_catalogue != nullptr;
}

ndp::CDatabase* BXQDataSession::openSystemDatabase(const QString& fileName, QString* error) {
    const QString path = dataFilePath(fileName);
    if (!VMPAppInfo::gAppInfo()->fileExists(path)) {
        *error = missingMessage(SKRSectionPolyDBManager::missingFileMessage(path));
        return nullptr;
    }
    ndp::CDatabase* database = VMPNDDBManager::nddbMgr()->getNDDB(fileName, false);
    if (!database) *error = unreadableMessage(path, VMPNDDBManager::nddbMgr()->lastError());
    return database;
}

void BXQDataSession::registerRepository() {
    if (m_registered) return;
    // The start-up opens the catalogue by name itself and leaves it out when it cannot.
    skr::InitBXQSteelRepository(model());
    m_registered = true;
}

bool BXQDataSession::saveProject(QString* error) {
    if (m_project && m_project->save()) return true;
    *error = QStringLiteral("cannot save project %1: %2")
                 .arg(m_projectPath, m_project ? m_project->lastError() : QStringLiteral("not open"));
    return false;
}

bool BXQDataSession::beginProjectChange(QString* error) {
    ndp::CDatabase* project = projectDB();
    if (project && project->BeginTransaction()) return true;
    *error = fileMessage(QStringLiteral("change"), m_projectPath,
                         project ? project->GetLastError() : QStringLiteral("not open"));
    return false;
}

ndp::CDatabase* BXQDataSession::projectDB() const { return m_project ? m_project->getProjectDB() : nullptr; }

IVMPModel* BXQDataSession::model() {
    if (m_project) return m_project.get();
    return m_noProject.get();
}

std::vector<skr::section::SKRHotRollingSection> BXQDataSession::allSections(
    ndp::CDBTable* table, skr::section::SKRHotRollingSectionDBProvider* reader) {
    if (!table || !reader || reader->table() != table) return {};
    return reader->listAll();
}

}  // namespace bxq
