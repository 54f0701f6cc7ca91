// CDatabase on SQLite: schema kept in a field-definition table, writes in an open transaction.
#include "ndp/NDPDatabase.h"

#include "vmp/VMPCmdLogTool.h"

#include "ndp/NDPDBTable.h"
#include "ndp/NDPSqlText.h"

#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

namespace ndp {
namespace {

// Field order and kinds, which SQLite's own schema does not keep in a form we can trust.
const char kSchemaTable[] = "kdb_fields";

const char* sqlType(EnDBFieldKind kind) {
    switch (kind) {
    case EnDBFieldKind::Int32:
    case EnDBFieldKind::Int64:
    case EnDBFieldKind::Bool: return "INTEGER";
    case EnDBFieldKind::Double: return "REAL";
    case EnDBFieldKind::Text: return "TEXT";
    default: return "BLOB";
    }
}

bool validKind(int kind) { return kind >= static_cast<int>(EnDBFieldKind::Int32) && kind <= static_cast<int>(EnDBFieldKind::Stream); }

}  // namespace

CDatabase::CDatabase() = default;

CDatabase::~CDatabase() { Close(); }

void CDatabase::setError(const QString& context) {
    m_lastError = m_db ? QStringLiteral("%1: %2 (%3)").arg(context, QString::fromUtf8(sqlite3_errmsg(m_db)), m_path)
                       : QStringLiteral("%1 (%2)").arg(context, m_path);
}

bool CDatabase::openFile(const QString& path, int flags, bool create) {
    // Before SQLite's first use in the process: no allocation statistics, whose lock every
    // allocation would take (a record read allocates a dozen times).
    static const int noMemoryStatistics = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    Q_UNUSED(noMemoryStatistics)
    Close();
    m_path = path;
    m_lastError.clear();
    const QByteArray file = QFile::encodeName(path);
    if (sqlite3_open_v2(file.constData(), &m_db, flags, nullptr) != SQLITE_OK) {
        setError(QStringLiteral("cannot open database"));
        sqlite3_close(m_db);
        m_db = nullptr;
        return false;
    }
    sqlite3_extended_result_codes(m_db, 1);
    sqlite3_busy_timeout(m_db, 2000);
    // A flushed write must survive the process being killed right after the flush.
    sqlite3_exec(m_db, "PRAGMA synchronous=FULL", nullptr, nullptr, nullptr);
    if (create) {
        const std::string sql = std::string("CREATE TABLE ") + kSchemaTable +
                                " (tbl TEXT NOT NULL, pos INTEGER NOT NULL, name TEXT NOT NULL,"
                                " kind INTEGER NOT NULL, iskey INTEGER NOT NULL, PRIMARY KEY (tbl, pos))";
        if (sqlite3_exec(m_db, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
            setError(QStringLiteral("cannot create database"));
            Close();
            return false;
        }
    }
    if (!loadSchema()) {
        Close();
        return false;
    }
    return m_readOnly || begin();
}

bool CDatabase::Open(const QString& path, bool readOnly) {
    if (!QFileInfo::exists(path)) {
        Close();
        m_path = path;
        m_lastError = QStringLiteral("database file does not exist (%1)").arg(path);
        return false;
    }
    m_readOnly = readOnly || !QFileInfo(path).isWritable();
    return openFile(path, m_readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE, false);
}

bool CDatabase::Create(const QString& path) {
    if (QFileInfo::exists(path)) {
        m_path = path;
        m_lastError = QStringLiteral("database file exists already (%1)").arg(path);
        return false;
    }
    m_readOnly = false;
    return openFile(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, true);
}

bool CDatabase::loadSchema() {
    m_schema.clear();
    const std::string sql = std::string("SELECT tbl, pos, name, kind, iskey FROM ") + kSchemaTable + " ORDER BY tbl, pos";
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(m_db, sql.c_str(), -1, &stmt, nullptr) != SQLITE_OK) {
        setError(QStringLiteral("not a database of this program"));
        return false;
    }
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        const auto text = [stmt](int column) {
            return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(stmt, column))).toStdWString();
        };
        const int kind = sqlite3_column_int(stmt, 3);
        if (!validKind(kind)) {
            rc = SQLITE_CORRUPT;
            break;
        }
        m_schema[text(0)].emplace_back(text(2), static_cast<EnDBFieldKind>(kind), sqlite3_column_int(stmt, 4) != 0);
    }
    sqlite3_finalize(stmt);
    if (rc != SQLITE_DONE) {
        setError(QStringLiteral("cannot read the table definitions"));
        return false;
    }
    return true;
}

bool CDatabase::begin() {
    if (sqlite3_exec(m_db, "BEGIN", nullptr, nullptr, nullptr) != SQLITE_OK) {
        setError(QStringLiteral("cannot start a transaction"));
        return false;
    }
    m_flushedChanges = sqlite3_total_changes(m_db);
    return true;
}

bool CDatabase::HasUnflushedChanges() const {
    return m_db && !m_readOnly && sqlite3_total_changes(m_db) != m_flushedChanges;
}

void CDatabase::Close() {
    // The command log records changes through a session on the connection, which must go first.
    if (VMPCmdLogTool::getInstance()->database() == this) VMPCmdLogTool::getInstance()->setDatabase(nullptr);
    m_tables.clear();  // finalises the prepared statements first
    m_schema.clear();
    if (m_db) {
        if (!sqlite3_get_autocommit(m_db)) sqlite3_exec(m_db, "ROLLBACK", nullptr, nullptr, nullptr);
        sqlite3_close(m_db);
        m_db = nullptr;
    }
}

bool CDatabase::Flush() {
    if (!m_db) {
        m_lastError = QStringLiteral("database is not open");
        return false;
    }
    if (m_readOnly) return true;
    if (sqlite3_exec(m_db, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) {
        // A failed commit (a full disk) rolls the transaction back as a whole: nothing is half written.
        setError(QStringLiteral("cannot save the database"));
        if (!sqlite3_get_autocommit(m_db)) sqlite3_exec(m_db, "ROLLBACK", nullptr, nullptr, nullptr);
        begin();
        return false;
    }
    return begin();
}

CDBTable* CDatabase::GetTable(const std::wstring& name) {
    if (!m_db) return nullptr;
    const auto existing = m_tables.find(name);
    if (existing != m_tables.end()) return existing->second.get();
    const auto schema = m_schema.find(name);
    if (schema == m_schema.end()) return nullptr;
    CDBTable* table = new CDBTable(this, name, schema->second);
    m_tables[name].reset(table);
    return table;
}

std::vector<std::wstring> CDatabase::GetTableNames() const {
    std::vector<std::wstring> names;
    for (const auto& entry : m_schema) names.push_back(entry.first);
    return names;
}

CDBTable* CDatabase::CreateTable(const std::wstring& name, const std::vector<CDBField>& fields) {
    if (!m_db || m_readOnly || name.empty() || m_schema.count(name)) return nullptr;
    std::string create = "CREATE TABLE " + sqlIdentifier(name) + " (kdb_addr INTEGER PRIMARY KEY AUTOINCREMENT";
    std::vector<std::string> statements;
    const std::vector<std::string> columns = sqlColumns(fields);
    for (size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].GetName().empty()) return nullptr;
        for (size_t j = 0; j < i; ++j)
            if (fields[j].GetName() == fields[i].GetName()) return nullptr;
        create += ", " + columns[i] + " " + sqlType(fields[i].GetKind());
        if (fields[i].IsKey()) {
            const std::wstring index = L"kdb_index_" + name + L"_" + std::to_wstring(i);
            statements.push_back("CREATE INDEX " + sqlIdentifier(index) + " ON " + sqlIdentifier(name) + " (" +
                                 columns[i] + ")");
        }
    }
    statements.insert(statements.begin(), create + ")");
    sqlite3_exec(m_db, "SAVEPOINT kdb_create", nullptr, nullptr, nullptr);
    bool ok = true;
    for (const std::string& sql : statements)
        ok = ok && sqlite3_exec(m_db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_stmt* insert = nullptr;
    const std::string sql = std::string("INSERT INTO ") + kSchemaTable + " VALUES (?1, ?2, ?3, ?4, ?5)";
    ok = ok && sqlite3_prepare_v2(m_db, sql.c_str(), -1, &insert, nullptr) == SQLITE_OK;
    for (size_t i = 0; ok && i < fields.size(); ++i) {
        const QByteArray table = QString::fromStdWString(name).toUtf8();
        const QByteArray field = QString::fromStdWString(fields[i].GetName()).toUtf8();
        sqlite3_bind_text(insert, 1, table.constData(), table.size(), SQLITE_TRANSIENT);
        sqlite3_bind_int(insert, 2, static_cast<int>(i));
        sqlite3_bind_text(insert, 3, field.constData(), field.size(), SQLITE_TRANSIENT);
        sqlite3_bind_int(insert, 4, static_cast<int>(fields[i].GetKind()));
        sqlite3_bind_int(insert, 5, fields[i].IsKey() ? 1 : 0);
        ok = sqlite3_step(insert) == SQLITE_DONE;
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    if (!ok) {
        setError(QStringLiteral("cannot create table"));
        sqlite3_exec(m_db, "ROLLBACK TO kdb_create", nullptr, nullptr, nullptr);
        sqlite3_exec(m_db, "RELEASE kdb_create", nullptr, nullptr, nullptr);
        return nullptr;
    }
    sqlite3_exec(m_db, "RELEASE kdb_create", nullptr, nullptr, nullptr);
    m_schema[name] = fields;
    return GetTable(name);
}

}  // namespace ndp
