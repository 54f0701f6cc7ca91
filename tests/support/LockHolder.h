// Another program holding a database file: the sqlite3 shell inside a transaction ("BEGIN
// IMMEDIATE" holds the write lock, "BEGIN EXCLUSIVE" every lock) until the holder is destroyed.
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>

namespace bxqtest {

class LockHolder {
public:
    LockHolder(const QString& path, const char* begin) {
        m_shell.start(QStringLiteral("sqlite3"), {path});
        m_shell.write(QByteArray(begin) + ";\nSELECT 'held';\n");
        while (!m_shell.readAllStandardOutput().contains("held") && m_shell.waitForReadyRead(10000)) {
        }
    }
    ~LockHolder() {
        m_shell.closeWriteChannel();
        m_shell.waitForFinished(10000);
    }
    qint64 pid() const { return m_shell.processId(); }

private:
    QProcess m_shell;
};

}  // namespace bxqtest
