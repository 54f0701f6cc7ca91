// VMPAppInfo: where the application keeps its data files, and file tests.
#pragma once

#include "PlatformGlobal.h"

#include <QString>

class BXQPLATFORM_EXPORT VMPAppInfo {
public:
    static VMPAppInfo* gAppInfo();

    // BXQ_DATA_DIR when set; else the installed data folder when it holds the databases; else
    // the build tree's data folder.
    QString appDataPath() const;
    bool fileExists(const QString& path) const;
};
