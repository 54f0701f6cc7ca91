// CDBTable on SQLite: one SQL table per host table, the record address being its row id.
#include "ndp/NDPDBTable.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPQueryExpression.h"
#include "ndp/NDPSqlText.h"

#include <QVarLengthArray>

#include <sqlite3.h>

namespace ndp {
namespace {

QVariant columnValue(sqlite3_stmt* stmt, int column, EnDBFieldKind kind) {
    switch (sqlite3_column_type(stmt, column)) {
    case SQLITE_NULL: return QVariant();
    default: break;
    }
    switch (kind) {
    case EnDBFieldKind::Int32: return QVariant(sqlite3_column_int(stmt, column));
    case EnDBFieldKind::Int64: return QVariant(static_cast<qlonglong>(sqlite3_column_int64(stmt, column)));
    case EnDBFieldKind::Bool: return QVariant(sqlite3_column_int(stmt, column) != 0);
    case EnDBFieldKind::Double: return QVariant(sqlite3_column_double(stmt, column));
    case EnDBFieldKind::Text:
        return QVariant(QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(stmt, column)),
                                          sqlite3_column_bytes(stmt, column)));
    default: {
        const void* blob = sqlite3_column_blob(stmt, column);
        return QVariant(QByteArray(static_cast<const char*>(blob), sqlite3_column_bytes(stmt, column)));
    }
    }
}

void bindValue(sqlite3_stmt* stmt, int index, const QVariant& value, EnDBFieldKind kind) {
    if (!value.isValid()) {
        sqlite3_bind_null(stmt, index);
        return;
    }
    switch (kind) {
    case EnDBFieldKind::Int32:
    case EnDBFieldKind::Int64:
    case EnDBFieldKind::Bool: sqlite3_bind_int64(stmt, index, value.toLongLong()); break;
    case EnDBFieldKind::Double: sqlite3_bind_double(stmt, index, value.toDouble()); break;
    case EnDBFieldKind::Text: {
        const QByteArray utf8 = value.toString().toUtf8();
        sqlite3_bind_text(stmt, index, utf8.constData(), utf8.size(), SQLITE_TRANSIENT);
        break;
    }
    default: {
        const QByteArray bytes = value.toByteArray();
        sqlite3_bind_blob(stmt, index, bytes.constData(), bytes.size(), SQLITE_TRANSIENT);
        break;
    }
    }
}

// Resets a reused statement however the function using it returns.
struct StatementUse {
    sqlite3_stmt* stmt;
    ~StatementUse() {
        if (stmt) {
            sqlite3_reset(stmt);
            sqlite3_clear_bindings(stmt);
        }
    }
};

}  // namespace

CDBTable::CDBTable(CDatabase* database, std::wstring name, std::vector<CDBField> fields)
    : m_database(database), m_name(std::move(name)), m_fields(std::move(fields)), m_columns(sqlColumns(m_fields)),
      m_quotedTable(sqlIdentifier(m_name)) {
    // Built once: a look-up reads a record each time, and the text is the statement cache's key.
    m_recordSql = "SELECT ";
    for (size_t i = 0; i < m_fields.size(); ++i) m_recordSql += (i ? ", " : "") + m_columns[i];
    if (m_fields.empty()) m_recordSql += "kdb_addr";
    m_recordSql += " FROM " + m_quotedTable + " WHERE kdb_addr = ?1";
}

CDBTable::~CDBTable() {
    for (auto& entry : m_statements) sqlite3_finalize(entry.second);
}

std::wstring CDBTable::GetFieldName(int index) const {
    return index >= 0 && index < GetFieldCount() ? m_fields[static_cast<size_t>(index)].GetName() : std::wstring();
}

int CDBTable::FindField(const std::wstring& name) const {
    for (size_t i = 0; i < m_fields.size(); ++i)
        if (m_fields[i].GetName() == name) return static_cast<int>(i);
    return -1;
}

sqlite3_stmt* CDBTable::statement(const std::string& sql) {
    const auto found = m_statements.find(sql);
    if (found != m_statements.end()) return found->second;
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v3(m_database->handle(), sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &stmt, nullptr) !=
        SQLITE_OK) {
        m_database->setError(QStringLiteral("cannot prepare a statement on table %1").arg(QString::fromStdWString(m_name)));
        return nullptr;
    }
    m_statements[sql] = stmt;
    return stmt;
}

// The list receives exactly the records found, whatever it held before.
bool CDBTable::listAddresses(sqlite3_stmt* stmt, CFileAddressList& addresses) {
    addresses.RemoveAll();
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) addresses.Add(sqlite3_column_int64(stmt, 0));
    if (rc != SQLITE_DONE) {
        m_database->setError(QStringLiteral("cannot read table %1").arg(QString::fromStdWString(m_name)));
        return false;
    }
    return true;
}

CDBRecord* CDBTable::CreateRecord() {
    return new CDBRecord(this, kNullAddress, std::vector<QVariant>(m_fields.size()));
}

CFileAddress CDBTable::AddRecord(CDBRecord* record, bool) {
    if (!record || record->GetTable() != this || !m_database->BeginTransaction()) return kNullAddress;
    std::string sql = "INSERT INTO " + quotedTable() + " (";
    std::string values;
    for (size_t i = 0; i < m_fields.size(); ++i) {
        sql += (i ? ", " : "") + m_columns[i];
        values += (i ? ", ?" : "?") + std::to_string(i + 1);
    }
    sql = m_fields.empty() ? "INSERT INTO " + quotedTable() + " DEFAULT VALUES" : sql + ") VALUES (" + values + ")";
    sqlite3_stmt* stmt = statement(sql);
    if (!stmt) return kNullAddress;
    StatementUse use{stmt};
    for (size_t i = 0; i < m_fields.size(); ++i)
        bindValue(stmt, static_cast<int>(i + 1), record->m_values[i], m_fields[i].GetKind());
    if (sqlite3_step(stmt) != SQLITE_DONE) {
        m_database->setError(QStringLiteral("cannot add a record to %1").arg(QString::fromStdWString(m_name)));
        return kNullAddress;
    }
    record->m_address = sqlite3_last_insert_rowid(m_database->handle());
    return record->m_address;
}

bool CDBTable::ModifyRecord(CDBRecord* record) {
    if (!record || record->GetTable() != this || record->GetAddress() == kNullAddress || m_fields.empty() ||
        !m_database->BeginTransaction())
        return false;
    std::string sql = "UPDATE " + quotedTable() + " SET ";
    for (size_t i = 0; i < m_fields.size(); ++i)
        sql += (i ? ", " : "") + m_columns[i] + " = ?" + std::to_string(i + 1);
    sql += " WHERE kdb_addr = ?" + std::to_string(m_fields.size() + 1);
    sqlite3_stmt* stmt = statement(sql);
    if (!stmt) return false;
    StatementUse use{stmt};
    for (size_t i = 0; i < m_fields.size(); ++i)
        bindValue(stmt, static_cast<int>(i + 1), record->m_values[i], m_fields[i].GetKind());
    sqlite3_bind_int64(stmt, static_cast<int>(m_fields.size() + 1), record->GetAddress());
    if (sqlite3_step(stmt) != SQLITE_DONE) {
        m_database->setError(QStringLiteral("cannot write a record of %1").arg(QString::fromStdWString(m_name)));
        return false;
    }
    return sqlite3_changes(m_database->handle()) == 1;
}

bool CDBTable::DeleteRecord(CFileAddress address) {
    if (!m_database->BeginTransaction()) return false;
    sqlite3_stmt* stmt = statement("DELETE FROM " + quotedTable() + " WHERE kdb_addr = ?1");
    if (!stmt) return false;
    StatementUse use{stmt};
    sqlite3_bind_int64(stmt, 1, address);
    if (sqlite3_step(stmt) != SQLITE_DONE) {
        m_database->setError(QStringLiteral("cannot delete a record of %1").arg(QString::fromStdWString(m_name)));
        return false;
    }
    return sqlite3_changes(m_database->handle()) == 1;
}

CDBRecord* CDBTable::GetRecord(CFileAddress address) {
    sqlite3_stmt* stmt = statement(m_recordSql);
    if (!stmt) return nullptr;
    StatementUse use{stmt};
    sqlite3_bind_int64(stmt, 1, address);
    const int rc = sqlite3_step(stmt);
    if (rc != SQLITE_ROW) {
        // No row at that address finds nothing; anything else is a failed read.
        if (rc != SQLITE_DONE)
            m_database->setError(QStringLiteral("cannot read a record of %1").arg(QString::fromStdWString(m_name)));
        return nullptr;
    }
    std::vector<QVariant> values(m_fields.size());
    for (size_t i = 0; i < m_fields.size(); ++i)
        values[i] = columnValue(stmt, static_cast<int>(i), m_fields[i].GetKind());
    return new CDBRecord(this, address, std::move(values));
}

bool CDBTable::GetMaxInt64(int field, std::int64_t& max) {
    if (field < 0 || field >= GetFieldCount()) return false;
    sqlite3_stmt* stmt = statement("SELECT COALESCE(MAX(" + m_columns[static_cast<size_t>(field)] + "), 0) FROM " + quotedTable());
    if (!stmt) return false;
    StatementUse use{stmt};
    if (sqlite3_step(stmt) != SQLITE_ROW) {
        m_database->setError(QStringLiteral("cannot read table %1").arg(QString::fromStdWString(m_name)));
        return false;
    }
    max = sqlite3_column_int64(stmt, 0);
    return true;
}

bool CDBTable::ListAll(CFileAddressList& addresses) {
    sqlite3_stmt* stmt = statement("SELECT kdb_addr FROM " + quotedTable() + " ORDER BY kdb_addr");
    if (!stmt) return false;
    StatementUse use{stmt};
    return listAddresses(stmt, addresses);
}

bool CDBTable::searchKey(int field, std::int64_t key, CFileAddressList& addresses, bool firstOnly) {
    if (field < 0 || field >= GetFieldCount()) return false;
    sqlite3_stmt* stmt = statement("SELECT kdb_addr FROM " + quotedTable() + " WHERE " +
                                   m_columns[static_cast<size_t>(field)] +
                                   " = ?1 ORDER BY kdb_addr" + (firstOnly ? " LIMIT 1" : ""));
    if (!stmt) return false;
    StatementUse use{stmt};
    sqlite3_bind_int64(stmt, 1, key);
    return listAddresses(stmt, addresses) && addresses.GetCount() > 0;
}

bool CDBTable::Find(int field, std::int64_t key, CFileAddress& address, bool) {
    CFileAddressList found;
    if (!searchKey(field, key, found, true)) return false;
    address = found.GetItem(0);
    return true;
}

bool CDBTable::Search(int field, std::int64_t key, CFileAddressList& addresses, bool) {
    return searchKey(field, key, addresses, false);
}

bool CDBTable::Query(const std::wstring& expression, CFileAddressList& addresses, bool) {
    std::vector<NDPQueryTerm> terms;
    if (!parseQueryExpression(expression, *this, terms)) return false;
    // Appended in place: the text is built on every query as the statement cache's key.
    std::string sql;
    sql.reserve(96 + m_quotedTable.size());
    sql.append("SELECT kdb_addr FROM ").append(m_quotedTable).append(" WHERE ");
    for (size_t i = 0; i < terms.size(); ++i) {
        if (i) sql.append(" AND ");
        sql.append(m_columns[static_cast<size_t>(terms[i].field)]).append(" = ?").append(std::to_string(i + 1));
    }
    sql.append(" ORDER BY kdb_addr");
    sqlite3_stmt* stmt = statement(sql);
    if (!stmt) return false;
    // Bound without a copy: the texts outlive the statement's run and its reset.
    QVarLengthArray<QByteArray, 4> texts(static_cast<int>(terms.size()));
    StatementUse use{stmt};
    for (size_t i = 0; i < terms.size(); ++i) {
        if (terms[i].isText) {
            texts[static_cast<int>(i)] = terms[i].text.toUtf8();
            const QByteArray& utf8 = texts[static_cast<int>(i)];
            sqlite3_bind_text(stmt, static_cast<int>(i + 1), utf8.constData(), utf8.size(), SQLITE_STATIC);
        } else {
            sqlite3_bind_int64(stmt, static_cast<int>(i + 1), terms[i].number);
        }
    }
    return listAddresses(stmt, addresses);
}

}  // namespace ndp
