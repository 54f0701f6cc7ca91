// CDatabase: a host database file (".KDB"), kept as an SQLite database. Writes happen inside a
// transaction that Flush commits; closing without a flush discards them.
#pragma once

#include "PlatformGlobal.h"
#include "ndp/NDPDBField.h"

#include <QString>

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
    // Discards unflushed writes and closes the file. Tables handed out become invalid.
    void Close();
    // Commits every write since the last flush, durably.
    bool Flush();
    // Whether rows were written since the file was opened or last flushed (even when a later
    // write restored them).
    bool HasUnflushedChanges() const;

    bool IsOpen() const { return m_db != nullptr; }
    bool IsReadOnly() const { return m_readOnly; }
    const QString& GetPath() const { return m_path; }
    const QString& GetLastError() const { return m_lastError; }

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
    bool begin();

    sqlite3* m_db = nullptr;
    QString m_path;
    QString m_lastError;
    bool m_readOnly = false;
    int m_flushedChanges = 0;
    std::map<std::wstring, std::vector<CDBField>> m_schema;
    std::map<std::wstring, std::unique_ptr<CDBTable>> m_tables;
};

}  // namespace ndp
