// Installing the translations of the library's user texts.
#pragma once

#include "plugin/BXQExtendGlobal.h"

#include <QString>

// Installs the translation of the library's texts into language (for example "en") on the
// application, in place of the one installed before. Chinese ("zh" or "zh_CN"), the source
// language, removes it. False, with the language as it was, when no translation exists for it.
BXQEXTEND_EXPORT bool BXQInstallTranslation(const QString& language);
// Installs Qt's own translation for locale (e.g. "zh_CN": the OK, Cancel, Yes and No of message
// boxes) from Qt's translations folder; false when Qt has none for it.
BXQEXTEND_EXPORT bool BXQInstallQtTranslation(const QString& locale);
