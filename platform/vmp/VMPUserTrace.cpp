// The usage log of user operations.
#include "vmp/VMPUserTrace.h"

#include <QLoggingCategory>
#include <QMutex>

namespace {
Q_LOGGING_CATEGORY(lcTrace, "bxq.trace", QtWarningMsg)
QMutex g_mutex;
QString g_last;
}  // namespace

void VMPUserTrace::record(const QString& operation, const QString& category) {
    const QString entry = category + QStringLiteral(": ") + operation;
    qCInfo(lcTrace).noquote() << entry;
    const QMutexLocker lock(&g_mutex);
    g_last = entry;
}

QString VMPUserTrace::lastEntry() {
    const QMutexLocker lock(&g_mutex);
    return g_last;
}
