// IVMPModel and IVMPService: the host's model (owner of the project database and its elements,
// which observers and listeners hear about) and its services.
#pragma once

#include "PlatformGlobal.h"

#include <cstdint>

namespace ndp {
class CDatabase;
}
class IVMPElementDrawObj;
class VMPObserver;
class IVMPListener;

class BXQPLATFORM_EXPORT IVMPModel {
public:
    virtual ~IVMPModel();
    virtual ndp::CDatabase* getProjectDB() = 0;
    virtual bool isAutoCalculate() const = 0;

    // The element drawing object of that id (owned by the model, valid until the model goes or
    // the element is removed), or null. A model without elements has none.
    virtual IVMPElementDrawObj* getElementDrawObj(std::int64_t id);
    virtual void attachObserver(VMPObserver* observer);
    virtual void detachObserver(VMPObserver* observer);
    virtual void attachListener(IVMPListener* listener);
    virtual void detachListener(IVMPListener* listener);
};

class BXQPLATFORM_EXPORT IVMPService {
public:
    virtual ~IVMPService();
};
