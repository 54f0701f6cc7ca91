// VMPAppInfo: the application data folder.
#include "vmp/VMPAppInfo.h"

#include <QDir>
#include <QFileInfo>

VMPAppInfo* VMPAppInfo::gAppInfo() {
    static VMPAppInfo info;
    return &info;
}

QString VMPAppInfo::appDataPath() const {
    const QString fromEnvironment = qEnvironmentVariable("BXQ_DATA_DIR");
    if (!fromEnvironment.isEmpty()) return QDir::cleanPath(fromEnvironment);
    const QString installed = QStringLiteral(BXQ_INSTALLED_DATA_DIR);
    if (QFileInfo::exists(installed + QStringLiteral("/SKRSectionPolyDB.KDB"))) return installed;
    return QStringLiteral(BXQ_BUILD_DATA_DIR);
}

bool VMPAppInfo::fileExists(const QString& path) const { return QFileInfo(path).isFile(); }
