// BXQDataSession: the databases one run of a bxq verb works on (the section catalogue, the
// system database, a project) and the section repository registered on them, as the host has
// them; everything is unregistered and closed again when the session ends, unsaved changes
// discarded.
#pragma once

#include <QString>

#include <memory>
#include <vector>

class IVMPModel;
class VMPProjectModel;
namespace ndp {
class CDatabase;
class CDBTable;
}  // namespace ndp
namespace skr {
namespace section {
class SKRHotRollingSectionDBProvider;
struct SKRHotRollingSection;
}  // namespace section
}  // namespace skr

namespace bxq {

class BXQDataSession {
public:
    BXQDataSession();
    ~BXQDataSession();
    BXQDataSession(const BXQDataSession&) = delete;
    BXQDataSession& operator=(const BXQDataSession&) = delete;

    // Opens a project file. With create a missing file is made with the project tables; without,
    // a missing file is an error. False, with a one-line message naming the file, otherwise.
    bool openProject(const QString& path, bool create, QString* error);
    // Opens the section catalogue "SKRSectionPolyDB.KDB" of the application data folder through
    // the section database manager. False, with a one-line message naming the file, when it is
    // missing (the manager's own message) or cannot be read.
    bool openCatalogue(QString* error);
    // Opens a system database of the application data folder by file name ("SysInfo.KDB").
    // Null, with a one-line message naming the file, when it is missing or cannot be read.
    ndp::CDatabase* openSystemDatabase(const QString& fileName, QString* error);
    // Registers the section repository and its providers on the databases there are: the
    // catalogue when its file can be opened, and the project when one is open.
    void registerRepository();
    // Takes the project's write lock before a change is checked and made (waiting while another
    // program holds it); false, with a message naming the file and saying why (busy, no
    // permission), when it cannot be had.
    bool beginProjectChange(QString* error);
    // Commits the project's changes; false, with a message naming the file, when they could not
    // be written (nothing of them is then in the file).
    bool saveProject(QString* error);

    ndp::CDatabase* catalogue() const { return m_catalogue; }
    ndp::CDatabase* projectDB() const;
    VMPProjectModel* project() const { return m_project.get(); }
    const QString& projectPath() const { return m_projectPath; }
    static QString dataFilePath(const QString& fileName);

    // Every row of a hot-rolled table in table order, read by the provider of that table.
    // Throws std::invalid_argument or std::out_of_range for a row that cannot be read, and
    // SKRDatabaseError when the database fails under the read.
    static std::vector<skr::section::SKRHotRollingSection> allSections(
        ndp::CDBTable* table, skr::section::SKRHotRollingSectionDBProvider* reader);

    // The model the repository is registered with: the project's, or one without a project.
    IVMPModel* model();

private:

    std::unique_ptr<IVMPModel> m_noProject;
    std::unique_ptr<VMPProjectModel> m_project;
    QString m_projectPath;
    ndp::CDatabase* m_catalogue = nullptr;
    bool m_registered = false;
};

}  // namespace bxq
