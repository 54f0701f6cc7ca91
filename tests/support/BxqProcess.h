// Runs the bxq program (BXQ_BINARY, defined by each suite's build) as a user runs it: arguments,
// optional standard input, data folder and environment, optionally as an ordinary user; and reads
// back the files it writes.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

#include <unistd.h>

namespace bxqtest {

struct BxqRun {
    int exitCode = -1;  // -1 when bxq did not end normally
    QByteArray out;
    QByteArray err;
    QString text() const { return QString::fromUtf8(out); }
    QStringList lines() const { return text().split(QLatin1Char('\n'), Qt::SkipEmptyParts); }
};

struct BxqOptions {
    QString dataDir;          // BXQ_DATA_DIR; the inherited one when empty
    QByteArray input;         // written to its standard input, which is then closed
    QStringList environment;  // extra NAME=VALUE settings
    bool ordinaryUser = false;  // as uid 65534 when running as root (an ordinary user already is one)
};

inline BxqRun runBxq(const QStringList& arguments, const BxqOptions& options = {}) {
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    if (!options.dataDir.isEmpty()) env.insert(QStringLiteral("BXQ_DATA_DIR"), options.dataDir);
    for (const QString& setting : options.environment)
        env.insert(setting.section(QLatin1Char('='), 0, 0), setting.section(QLatin1Char('='), 1, -1));
    process.setProcessEnvironment(env);
    if (options.ordinaryUser && ::getuid() == 0)
        process.start(QStringLiteral("setpriv"), QStringList{"--reuid=65534", "--regid=65534", "--clear-groups",
                                                             QStringLiteral(BXQ_BINARY)} + arguments);
    else
        process.start(QStringLiteral(BXQ_BINARY), arguments);
    process.write(options.input);
    process.closeWriteChannel();
    process.waitForFinished(120000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
            process.readAllStandardError()};
}

// A file's bytes, or none when it cannot be read.
inline QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace bxqtest
