// Content digests of database files.
#include "ndp/NDPContentSeal.h"

#include "ndp/NDPDatabase.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QString>

#include <sqlite3.h>

#include <cstring>
#include <vector>

namespace ndp {
namespace {

constexpr int kSealedId = 0x42585153;  // "BXQS"
const char kSealTable[] = "bxq_seal";

struct Statement {
    sqlite3_stmt* stmt = nullptr;
    Statement(sqlite3* db, const std::string& sql) { sqlite3_prepare_v2(db, sql.c_str(), -1, &stmt, nullptr); }
    ~Statement() { sqlite3_finalize(stmt); }
};

std::string quoted(const std::string& name) {
    std::string out = "\"";
    for (char c : name) out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out + "\"";
}

// Every table but the seal, by name; every row by rowid; every value with its type.
bool digestOf(sqlite3* db, QByteArray& digest) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    std::vector<std::string> tables;
    {
        Statement list(db, std::string("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite_%' "
                                       "AND name <> '") + kSealTable + "' ORDER BY name");
        if (!list.stmt) return false;
        int rc;
        while ((rc = sqlite3_step(list.stmt)) == SQLITE_ROW)
            tables.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(list.stmt, 0)));
        if (rc != SQLITE_DONE) return false;
    }
    for (const std::string& table : tables) {
        hash.addData(table.c_str(), static_cast<int>(table.size() + 1));
        Statement rows(db, "SELECT * FROM " + quoted(table) + " ORDER BY rowid");
        if (!rows.stmt) return false;
        const int columns = sqlite3_column_count(rows.stmt);
        int rc;
        while ((rc = sqlite3_step(rows.stmt)) == SQLITE_ROW) {
            for (int c = 0; c < columns; ++c) {
                const char type = static_cast<char>(sqlite3_column_type(rows.stmt, c));
                hash.addData(&type, 1);
                if (type == SQLITE_INTEGER) {
                    const sqlite3_int64 v = sqlite3_column_int64(rows.stmt, c);
                    hash.addData(reinterpret_cast<const char*>(&v), sizeof v);
                } else if (type == SQLITE_FLOAT) {
                    const double v = sqlite3_column_double(rows.stmt, c);
                    hash.addData(reinterpret_cast<const char*>(&v), sizeof v);
                } else if (type != SQLITE_NULL) {
                    const void* bytes = sqlite3_column_blob(rows.stmt, c);
                    const int size = sqlite3_column_bytes(rows.stmt, c);
                    hash.addData(reinterpret_cast<const char*>(&size), sizeof size);
                    if (bytes) hash.addData(static_cast<const char*>(bytes), size);
                }
            }
        }
        if (rc != SQLITE_DONE) return false;
    }
    digest = hash.result().toHex();
    return true;
}

int applicationId(sqlite3* db) {
    Statement id(db, "PRAGMA application_id");
    return id.stmt && sqlite3_step(id.stmt) == SQLITE_ROW ? sqlite3_column_int(id.stmt, 0) : 0;
}

bool indexesIntact(sqlite3* db) {
    Statement check(db, "PRAGMA integrity_check(1)");
    return check.stmt && sqlite3_step(check.stmt) == SQLITE_ROW &&
           std::strcmp(reinterpret_cast<const char*>(sqlite3_column_text(check.stmt, 0)), "ok") == 0;
}

}  // namespace

bool SealDatabase(CDatabase& database, QString* error) {
    sqlite3* db = database.handle();
    QByteArray digest;
    if (!db || !digestOf(db, digest)) {
        if (error) *error = QStringLiteral("cannot read %1 to seal it").arg(database.GetPath());
        return false;
    }
    const std::string sql = std::string("DROP TABLE IF EXISTS ") + kSealTable + "; CREATE TABLE " + kSealTable +
                            "(digest TEXT NOT NULL); INSERT INTO " + kSealTable + " VALUES('" +
                            digest.toStdString() + "'); PRAGMA application_id = " + std::to_string(kSealedId) + ";";
    if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        if (error) *error = QStringLiteral("cannot seal %1: %2").arg(database.GetPath(), QString::fromUtf8(sqlite3_errmsg(db)));
        return false;
    }
    return true;
}

bool IsDatabaseSealed(CDatabase& database) { return database.handle() && applicationId(database.handle()) == kSealedId; }

void HoldReadLock(CDatabase& database) {
    if (database.handle()) sqlite3_exec(database.handle(), "PRAGMA locking_mode = EXCLUSIVE", nullptr, nullptr, nullptr);
}

bool CheckDatabaseSeal(CDatabase& database, QString* error) {
    sqlite3* db = database.handle();
    if (!db || applicationId(db) != kSealedId) return true;
    QByteArray stored, actual;
    {
        Statement seal(db, std::string("SELECT digest FROM ") + kSealTable);
        if (seal.stmt && sqlite3_step(seal.stmt) == SQLITE_ROW)
            stored = QByteArray(reinterpret_cast<const char*>(sqlite3_column_text(seal.stmt, 0)));
    }
    // The digest covers the rows; SQLite's own check covers the indexes that look-ups go through.
    if (!stored.isEmpty() && digestOf(db, actual) && actual == stored && indexesIntact(db)) return true;
    if (error) *error = QStringLiteral("damaged: its content does not match the seal it was shipped with (%1)").arg(database.GetPath());
    return false;
}

}  // namespace ndp
