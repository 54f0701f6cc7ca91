// IVMPModel and IVMPService: the host's model (owner of the project database) and its services.
#pragma once

#include "PlatformGlobal.h"

namespace ndp {
class CDatabase;
}

class BXQPLATFORM_EXPORT IVMPModel {
public:
    virtual ~IVMPModel();
    virtual ndp::CDatabase* getProjectDB() = 0;
    virtual bool isAutoCalculate() const = 0;
};

class BXQPLATFORM_EXPORT IVMPService {
public:
    virtual ~IVMPService();
};
