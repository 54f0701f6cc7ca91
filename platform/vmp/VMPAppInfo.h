// VMPAppInfo: where the application keeps its data files, and file tests.
#pragma once

#include "PlatformGlobal.h"

#include <QString>
#include <QStringList>

class BXQPLATFORM_EXPORT VMPAppInfo {
public:
    static VMPAppInfo* gAppInfo();

    // BXQ_DATA_DIR when set; else the first data folder that holds the databases: share/bxq beside
    // the installed library, the configured install prefix's, and for a library in the build tree
    // that tree's data folder; else the last of these.
    QString appDataPath() const;
    // The folders appDataPath() considers, in order ("BXQ_DATA_DIR=DIR" alone when that is set),
    // for saying where the databases were looked for.
    QStringList searchedDataPaths() const;
    bool fileExists(const QString& path) const;
};
