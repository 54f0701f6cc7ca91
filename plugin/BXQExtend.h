// BXQExtend: the class whose presence marks the plug-in to the host.
#pragma once

#include "plugin/BXQExtendGlobal.h"

class BXQEXTEND_EXPORT BXQExtend {
public:
    BXQExtend();
    ~BXQExtend();
};
