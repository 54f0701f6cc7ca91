// SKRSectionPolyDBManager: the process-wide opener of the section database for the dialogs.
#pragma once

#include "plugin/BXQExtendGlobal.h"

#include <QString>

namespace ndp {
class CDatabase;
}

class BXQEXTEND_EXPORT SKRSectionPolyDBManager {
public:
    // Creates the manager on first call. Throws VMPModelException "[path]文件不存在" when the
    // section database file is missing; the next call then tests the file again.
    static SKRSectionPolyDBManager* instance();
    // Deletes the manager; the database it opened stays open with the database manager.
    static void freeInstance();
    // The section database; opened again (and may throw as instance() does) when the database
    // manager has closed it since.
    ndp::CDatabase* sectionPolyDB();
    // The translated "[path]文件不存在" of a missing data file.
    static QString missingFileMessage(const QString& path);

private:
    SKRSectionPolyDBManager();
    ~SKRSectionPolyDBManager();
    void initDB();
    void closeDB();

    static SKRSectionPolyDBManager* m_pInstance;
    ndp::CDatabase* m_pDatabase = nullptr;
};
