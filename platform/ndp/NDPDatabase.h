// CDatabase: a host database file (".KDB"), kept as an SQLite database. Reads run on their own;
// the first write takes the file's write lock and opens a transaction that Flush commits, so
// other programs read and write the file between flushes; closing without a flush discards it.
#pragma once

#include "PlatformGlobal.h"
#include "ndp/NDPDBField.h"

#include <QString>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct sqlite3;

namespace ndp {

class CDBTable;

class BXQPLATFORM_EXPORT CDatabase {
public:
    CDatabase();
    ~CDatabase();  // closes without flushing
    CDatabase(const CDatabase&) = delete;
    CDatabase& operator=(const CDatabase&) = delete;

    // Opens an existing database file. False, with GetLastError() saying why, for a missing,
    // unreadable or corrupt file or one that is not a database of ours.
    bool Open(const QString& path, bool readOnly);
    // Creates a new, empty database file; false when the file exists or cannot be written.
    bool Create(const QString& path);
    // Creates a database file whole or not at all: it is built and filled under a temporary
    // name beside path and put in place only when complete, so that a failure (a full disk, a
    // folder without write permission) leaves nothing behind. When another program put a file
    // there meanwhile, that one is kept and the result is true too. False, with error saying
    // why and naming path, otherwise.
    static bool CreateWhole(const QString& path, const std::function<bool(CDatabase&)>& fill, QString* error);
    // Discards unflushed writes and closes the file. Tables handed out become invalid.
    void Close();
    // Commits every write since the last flush, durably.
    bool Flush();
    // Takes the file's write lock now, waiting up to the busy timeout while another program
    // holds it, so that what is read from here on stays true until the next Flush. A write
    // takes it itself when it is not held. False, with GetLastError() saying why, when the
    // file stays busy or cannot be written.
    bool BeginTransaction();
    bool InTransaction() const;
    // Whether rows were written since the file was opened or last flushed (even when a later
    // write restored them).
    bool HasUnflushedChanges() const;

    bool IsOpen() const { return m_db != nullptr; }
    bool IsReadOnly() const { return m_readOnly; }
    const QString& GetPath() const { return m_path; }
    const QString& GetLastError() const { return m_lastError; }
    // How many operations on this file have failed since it was opened. A reader compares the
    // count before and after a look-up to tell a failed read from one that found nothing.
    unsigned GetFailureCount() const { return m_failures; }
    // Whether the last failure was another program holding the file past the busy timeout.
    bool IsBusy() const { return m_busy; }

    // How long a connection waits for another program's lock before it reports the file busy,
    // for the connections opened from now on (milliseconds; 5000 unless set).
    static void SetBusyTimeout(int milliseconds);
    static int GetBusyTimeout();

    // The table of that name (owned by the database), or null.
    CDBTable* GetTable(const std::wstring& name);
    std::vector<std::wstring> GetTableNames() const;
    // Creates a table with fields in the given order; null when it exists or is invalid.
    CDBTable* CreateTable(const std::wstring& name, const std::vector<CDBField>& fields);

    // Internal to the engine: the SQLite connection and error reporting.
    sqlite3* handle() const { return m_db; }
    void setError(const QString& context);

private:
    bool openFile(const QString& path, int flags, bool create);
    bool loadSchema();
    void committed();

    sqlite3* m_db = nullptr;
    QString m_path;
    QString m_lastError;
    bool m_readOnly = false;
    bool m_busy = false;
    unsigned m_failures = 0;
    int m_flushedChanges = 0;
    std::map<std::wstring, std::vector<CDBField>> m_schema;
    std::map<std::wstring, std::unique_ptr<CDBTable>> m_tables;
};

}  // namespace ndp
