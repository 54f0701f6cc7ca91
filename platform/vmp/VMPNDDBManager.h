// VMPNDDBManager: opens the application's databases by file name, once each per process.
#pragma once

#include "PlatformGlobal.h"

#include <QString>

#include <map>
#include <memory>

namespace ndp {
class CDatabase;
}

class BXQPLATFORM_EXPORT VMPNDDBManager {
public:
    static VMPNDDBManager* nddbMgr();

    // The database file name in the application data folder, opened on first request (read-only
    // when asked); null when it is missing, cannot be opened or is a damaged shipped file, with
    // the reason (naming the file) in lastError().
    ndp::CDatabase* getNDDB(const QString& name, bool readOnly);
    // The database of that file name while it is open here, or null; opens nothing.
    ndp::CDatabase* openedNDDB(const QString& name) const;
    // Why the last getNDDB that failed did; empty after one that succeeded.
    const QString& lastError() const { return m_lastError; }
    // Closes and destroys one database it handed out (unflushed writes are discarded); false when
    // it is not one of its own.
    bool closeNDDB(ndp::CDatabase* database);
    // Closes and forgets every database (unflushed writes are discarded).
    void closeAll();

private:
    VMPNDDBManager();
    ~VMPNDDBManager();
    std::map<QString, std::unique_ptr<ndp::CDatabase>> m_databases;
    QString m_lastError;
};
