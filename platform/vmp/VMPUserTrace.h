// VMPUserTrace: the host's usage log of user operations (opening a dialog, running a command),
// written to the "bxq.trace" logging category; a trace, never shown to the user.
#pragma once

#include "PlatformGlobal.h"

#include <QString>

class BXQPLATFORM_EXPORT VMPUserTrace {
public:
    // Records one operation under its category, e.g. ("打开截面库", "用户操作记录").
    static void record(const QString& operation, const QString& category);
    // The last operation recorded in this process, "category: operation"; empty before any.
    static QString lastEntry();
};
