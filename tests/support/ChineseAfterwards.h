// Puts the library back to Chinese when a test that switched its language ends, however it ends,
// so that the tests after it in the same process read the texts they expect.
#pragma once

#include "plugin/BXQTranslations.h"

namespace bxqtest {

struct ChineseAfterwards {
    ~ChineseAfterwards() { BXQInstallTranslation(QStringLiteral("zh")); }
};

}  // namespace bxqtest
