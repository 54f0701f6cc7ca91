// VMPObserver and IVMPListener: the host's two ways of hearing about a model. An observer is
// called after every model update with a flags word; a listener hears about single changes
// (elements, properties, floors, ...). Both attach to the model (IVMPModel::attachObserver,
// attachListener) and must detach before they are destroyed.
#pragma once

#include "PlatformGlobal.h"

#include <cstdint>
#include <string>

class IVMPElementDrawObj;
class IVMPPropertySchema;
class IVMPComment;
class IVMPWorkPlane;
class IVMPProperty;
class IVMPElement;
class IVMPFloor;
class IVMPRegion;

// Bits of the flags word of a model update.
enum EnVMPModelUpdate : std::uint32_t {
    VMP_UPDATE_GEOMETRY = 0x001,   // element geometry changed
    VMP_UPDATE_DATABASE = 0x100,   // records were added, changed or removed (also by undo and redo)
};

// Kinds of change an element-change notification reports.
enum EnVMPChangeKind : int {
    VMP_CHANGE_ADDED = 1,
    VMP_CHANGE_REMOVED = 2,
    VMP_CHANGE_RENAMED = 3,
    VMP_CHANGE_PROPERTY = 4,  // a property of the object changed; the name says which
};

class BXQPLATFORM_EXPORT VMPObserver {
public:
    VMPObserver();
    virtual ~VMPObserver();
    // After a model update; flags is a set of EnVMPModelUpdate bits, data the update's own.
    virtual void update(std::uint32_t flags, void* data) = 0;
};

class BXQPLATFORM_EXPORT IVMPListener {
public:
    virtual ~IVMPListener();
    virtual void onNotify(int kind, IVMPPropertySchema* schema);
    virtual void onNotify(int kind, IVMPComment* comment);
    virtual void onNotify(int kind, IVMPWorkPlane* plane);
    virtual void onNotify(int kind, IVMPProperty* property);
    // An element drawing object changed: kind is an EnVMPChangeKind, property the changed
    // property's name, refreshAll asks listeners to refresh everything they show.
    virtual void onNotify(int kind, IVMPElementDrawObj* object, const std::wstring& property, bool refreshAll);
    virtual void onNotify(int kind, IVMPElement* element);
    virtual void onNotify(int kind, IVMPFloor* floor);
    virtual void onNotify(int kind, IVMPRegion* region);
    virtual void onBeginEdit();
    virtual void onEndEdit();
};
