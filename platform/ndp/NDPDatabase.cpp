// CDatabase on SQLite: schema kept in a field-definition table, writes in a transaction that
// takes the write lock at its start, failures named by what went wrong and with which file.
#include "ndp/NDPDatabase.h"

#include "vmp/VMPCmdLogTool.h"

#include "ndp/NDPDBTable.h"
#include "ndp/NDPSqlText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <sqlite3.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

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

std::atomic<int> g_busyTimeout{5000};

// The programs other than this one that hold a lock on the file, as "name (process N)", from
// the kernel's table of file locks; empty when none is listed there.
QStringList lockHolders(const QString& path) {
    QStringList holders;
    struct stat file {};
    if (::stat(QFile::encodeName(path).constData(), &file) != 0) return holders;
    QFile locks(QStringLiteral("/proc/locks"));
    if (!locks.open(QIODevice::ReadOnly | QIODevice::Text)) return holders;
    // "1: POSIX  ADVISORY  WRITE 1234 08:01:56789 1073741824 1073741825"; waiters carry "->".
    const QString own = QString::number(::getpid());
    for (const QByteArray& line : locks.readAll().split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() < 8 || fields[1] == "->") continue;
        const QList<QByteArray> id = fields[5].split(':');
        bool ok = id.size() == 3;
        const unsigned major = ok ? id[0].toUInt(&ok, 16) : 0;
        const unsigned minor = ok ? id[1].toUInt(&ok, 16) : 0;
        const qulonglong inode = ok ? id[2].toULongLong(&ok) : 0;
        if (!ok || inode != file.st_ino || major != major(file.st_dev) || minor != minor(file.st_dev)) continue;
        const QString pid = QString::fromLatin1(fields[4]);
        if (pid == own || pid.toInt() <= 0) continue;
        QFile comm(QStringLiteral("/proc/%1/comm").arg(pid));
        const QString name = comm.open(QIODevice::ReadOnly) ? QString::fromUtf8(comm.readAll()).trimmed() : QString();
        const QString holder = name.isEmpty() ? QStringLiteral("process %1").arg(pid)
                                              : QStringLiteral("%1 (process %2)").arg(name, pid);
        if (!holders.contains(holder)) holders.append(holder);
    }
    return holders;
}

}  // namespace

void CDatabase::SetBusyTimeout(int milliseconds) { g_busyTimeout = milliseconds < 0 ? 0 : milliseconds; }

int CDatabase::GetBusyTimeout() { return g_busyTimeout; }

CDatabase::CDatabase() = default;

CDatabase::~CDatabase() { Close(); }

void CDatabase::setError(const QString& context) {
    ++m_failures;
    m_busy = false;
    if (!m_db) {
        m_lastError = QStringLiteral("%1 (%2)").arg(context, m_path);
        return;
    }
    QString reason = QString::fromUtf8(sqlite3_errmsg(m_db));
    switch (sqlite3_extended_errcode(m_db) & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED: {
        // Another program's lock outlasted the wait: say so, and who holds it where that is known.
        m_busy = true;
        const QStringList holders = lockHolders(m_path);
        reason = QStringLiteral("the file is busy, locked by %1 (waited %2 ms)")
                     .arg(holders.isEmpty() ? QStringLiteral("another program") : holders.join(QStringLiteral(", ")))
                     .arg(GetBusyTimeout());
        break;
    }
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_CANTOPEN: {
        // A write needs the file and, for its journal, the folder.
        const QFileInfo file(m_path);
        if (file.exists() && !file.isWritable())
            reason = QStringLiteral("no permission to write the file");
        else if (!QFileInfo(file.absolutePath()).isWritable())
            reason = QStringLiteral("no permission to write in its folder %1").arg(QDir::toNativeSeparators(file.absolutePath()));
        break;
    }
    default: break;
    }
    m_lastError = QStringLiteral("%1: %2 (%3)").arg(context, reason, m_path);
}

bool CDatabase::openFile(const QString& path, int flags, bool create) {
    // Before SQLite's first use in the process: no allocation statistics, whose lock every
    // allocation would take (a record read allocates a dozen times).
    static const int noMemoryStatistics = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    Q_UNUSED(noMemoryStatistics)
    Close();
    m_path = path;
    m_lastError.clear();
    m_failures = 0;
    m_busy = false;
    const QByteArray file = QFile::encodeName(path);
    if (sqlite3_open_v2(file.constData(), &m_db, flags, nullptr) != SQLITE_OK) {
        setError(QStringLiteral("cannot open database"));
        sqlite3_close(m_db);
        m_db = nullptr;
        return false;
    }
    sqlite3_extended_result_codes(m_db, 1);
    sqlite3_busy_timeout(m_db, GetBusyTimeout());
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
    committed();
    return true;
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

bool CDatabase::CreateWhole(const QString& path, const std::function<bool(CDatabase&)>& fill, QString* error) {
    const QFileInfo target(path);
    const QString temporary = QStringLiteral("%1/.%2.new-%3").arg(target.absolutePath(), target.fileName()).arg(::getpid());
    const auto removeTemporary = [&temporary] {
        QFile::remove(temporary);
        QFile::remove(temporary + QStringLiteral("-journal"));
    };
    removeTemporary();
    bool built = false;
    {
        CDatabase database;
        built = database.Create(temporary) && fill(database) && database.Flush();
        if (!built) *error = QString(database.GetLastError()).replace(temporary, path);
    }
    if (built) {
        // Put in place only when no file of that name is there: a project created meanwhile by
        // another program is theirs to keep.
        const QByteArray from = QFile::encodeName(temporary);
        const QByteArray to = QFile::encodeName(path);
        int placed = ::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE);
        if (placed != 0 && errno == EINVAL) placed = ::link(from.constData(), to.constData());
        if (placed != 0 && errno != EEXIST) {
            *error = QStringLiteral("cannot create the database: %1 (%2)").arg(QString::fromLocal8Bit(std::strerror(errno)), path);
            built = false;
        }
    }
    removeTemporary();
    return built;
}

bool CDatabase::loadSchema() {
    m_schema.clear();
    const std::string sql = std::string("SELECT tbl, pos, name, kind, iskey FROM ") + kSchemaTable + " ORDER BY tbl, pos";
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(m_db, sql.c_str(), -1, &stmt, nullptr) != SQLITE_OK) {
        const int code = sqlite3_extended_errcode(m_db) & 0xff;
        // Only a file SQLite can read and that lacks our table is a foreign one.
        if (code == SQLITE_ERROR) {
            ++m_failures;
            m_lastError = QStringLiteral("not a database of this program (%1)").arg(m_path);
        } else {
            setError(QStringLiteral("cannot read the table definitions"));
        }
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

bool CDatabase::BeginTransaction() {
    if (!m_db) {
        m_lastError = QStringLiteral("database is not open");
        return false;
    }
    if (m_readOnly) {
        ++m_failures;
        m_busy = false;
        const bool fileWritable = QFileInfo(m_path).isWritable();
        m_lastError = QStringLiteral("cannot write: %1 (%2)")
                          .arg(fileWritable ? QStringLiteral("opened for reading only")
                                            : QStringLiteral("no permission to write the file"),
                               m_path);
        return false;
    }
    if (InTransaction()) return true;
    // The wait as it is set now, also for a connection opened before it was changed.
    sqlite3_busy_timeout(m_db, GetBusyTimeout());
    // IMMEDIATE: the write lock is taken here, where the busy timeout is honoured, and not on
    // the first write after reads, where SQLite refuses at once to avoid a deadlock.
    if (sqlite3_exec(m_db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) != SQLITE_OK) {
        setError(QStringLiteral("cannot write"));
        return false;
    }
    return true;
}

bool CDatabase::InTransaction() const { return m_db && !sqlite3_get_autocommit(m_db); }

void CDatabase::committed() { m_flushedChanges = sqlite3_total_changes(m_db); }

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
    if (m_readOnly || !InTransaction()) return true;
    if (sqlite3_exec(m_db, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) {
        // A failed commit (a full disk) rolls the transaction back as a whole: nothing is half
        // written. A busy one (readers that outlast the wait) keeps it, to be flushed again.
        setError(QStringLiteral("cannot save the database"));
        if (!m_busy && InTransaction()) sqlite3_exec(m_db, "ROLLBACK", nullptr, nullptr, nullptr);
        if (!InTransaction()) committed();
        return false;
    }
    committed();
    return true;
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
    if (!m_db || m_readOnly || name.empty() || m_schema.count(name) || !BeginTransaction()) return nullptr;
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
