// VMPCmdLogTool: the host's undoable command log on the project database. Everything written to
// the database between beginCommandLog and endCommandLog becomes one command that undo() takes
// back and redo() applies again, exactly (SQLite's session extension records the changes and
// inverts them).
#pragma once

#include "PlatformGlobal.h"

#include <QByteArray>
#include <QString>
#include <QVector>

struct sqlite3_session;
namespace ndp {
class CDatabase;
}

class BXQPLATFORM_EXPORT VMPCmdLogTool {
public:
    static VMPCmdLogTool* getInstance();

    // The database whose changes are logged; a new one (or null, when it is closed) forgets every
    // command of the old one.
    void setDatabase(ndp::CDatabase* database);
    ndp::CDatabase* database() const { return m_database; }

    // Starts recording; a begin inside a begin only counts the nesting. False without a database.
    bool beginCommandLog();
    // Ends the outermost recording and keeps what it recorded as one command with the texts the
    // host shows for undoing and redoing it (a command that changed nothing is not kept). Redoable
    // commands are dropped. False when no recording was open or the changes could not be read.
    bool endCommandLog(const QString& undoText, const QString& redoText);
    bool isLogging() const { return m_depth > 0; }

    bool canUndo() const { return !m_done.isEmpty(); }
    bool canRedo() const { return !m_undone.isEmpty(); }
    QString undoText() const { return canUndo() ? m_done.last().undoText : QString(); }
    QString redoText() const { return canRedo() ? m_undone.last().redoText : QString(); }
    // Takes back the last command / applies the last undone one. False, changing nothing, when
    // there is none, a recording is open, or the database no longer matches the command (rows
    // changed since by something not logged): the command is then dropped.
    bool undo();
    bool redo();
    void clear();

private:
    struct Command {
        QByteArray changes;  // the changeset, as recorded (forwards)
        QString undoText;
        QString redoText;
    };

    VMPCmdLogTool() = default;
    ~VMPCmdLogTool();
    bool apply(const QByteArray& changeset, bool inverted);
    void dropSession();

    ndp::CDatabase* m_database = nullptr;
    sqlite3_session* m_session = nullptr;
    int m_depth = 0;
    QVector<Command> m_done;
    QVector<Command> m_undone;
};
