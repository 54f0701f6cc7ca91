// The undoable command log on SQLite sessions: a session attached to every table records the
// rows a command changes; undo applies the inverted changeset, redo the changeset itself.
#include "vmp/VMPCmdLogTool.h"

#include "ndp/NDPDatabase.h"

#ifndef SQLITE_ENABLE_SESSION
#define SQLITE_ENABLE_SESSION
#endif
#ifndef SQLITE_ENABLE_PREUPDATE_HOOK
#define SQLITE_ENABLE_PREUPDATE_HOOK
#endif
#include <sqlite3.h>

namespace {

// Any conflict means the database is not as the command left it: stop, applying nothing.
int abortOnConflict(void*, int, sqlite3_changeset_iter*) { return SQLITE_CHANGESET_ABORT; }

}  // namespace

VMPCmdLogTool* VMPCmdLogTool::getInstance() {
    static VMPCmdLogTool tool;
    return &tool;
}

VMPCmdLogTool::~VMPCmdLogTool() { dropSession(); }

void VMPCmdLogTool::dropSession() {
    if (m_session) sqlite3session_delete(m_session);
    m_session = nullptr;
    m_depth = 0;
}

void VMPCmdLogTool::setDatabase(ndp::CDatabase* database) {
    if (database == m_database) return;
    dropSession();
    clear();
    m_database = database;
}

void VMPCmdLogTool::clear() {
    m_done.clear();
    m_undone.clear();
}

bool VMPCmdLogTool::beginCommandLog() {
    if (!m_database || !m_database->handle() || m_database->IsReadOnly()) return false;
    if (m_depth++ > 0) return true;
    if (sqlite3session_create(m_database->handle(), "main", &m_session) != SQLITE_OK ||
        sqlite3session_attach(m_session, nullptr) != SQLITE_OK) {
        dropSession();
        return false;
    }
    return true;
}

bool VMPCmdLogTool::endCommandLog(const QString& undoText, const QString& redoText) {
    if (m_depth == 0) return false;
    if (--m_depth > 0) return true;
    int size = 0;
    void* bytes = nullptr;
    const bool read = sqlite3session_changeset(m_session, &size, &bytes) == SQLITE_OK;
    QByteArray changes = read ? QByteArray(static_cast<const char*>(bytes), size) : QByteArray();
    sqlite3_free(bytes);
    dropSession();
    if (!read) return false;
    if (!changes.isEmpty()) {
        m_done.append({changes, undoText, redoText});
        m_undone.clear();
    }
    return true;
}

bool VMPCmdLogTool::apply(const QByteArray& changeset, bool inverted) {
    if (!m_database || !m_database->handle() || m_depth > 0) return false;
    QByteArray changes = changeset;
    if (inverted) {
        int size = 0;
        void* bytes = nullptr;
        if (sqlite3changeset_invert(changeset.size(), const_cast<char*>(changeset.constData()), &size, &bytes) !=
            SQLITE_OK)
            return false;
        changes = QByteArray(static_cast<const char*>(bytes), size);
        sqlite3_free(bytes);
    }
    // Applied inside the database's own transaction, so that only a flush makes it durable.
    if (!m_database->BeginTransaction()) return false;
    return sqlite3changeset_apply(m_database->handle(), changes.size(), changes.data(), nullptr, abortOnConflict,
                                  nullptr) == SQLITE_OK;
}

bool VMPCmdLogTool::undo() {
    if (!canUndo() || m_depth > 0) return false;
    const Command command = m_done.takeLast();
    if (!apply(command.changes, true)) return false;
    m_undone.append(command);
    return true;
}

bool VMPCmdLogTool::redo() {
    if (!canRedo() || m_depth > 0) return false;
    const Command command = m_undone.takeLast();
    if (!apply(command.changes, false)) return false;
    m_done.append(command);
    return true;
}
