// The host's element drawing object (a steel member in the model) and solid shape object, as the
// solid splitting needs them: the element's id, model, head frame and axis, and a fresh body.
#pragma once

#include "PlatformGlobal.h"
#include "ndp/NDPVector3.h"

#include <cstdint>

class IVMPModel;
class IVMPSolidShape;
namespace ndp {
class CBody;
}

// The kinds of element axis: straight; the host's second curve kind, whose length is taken as the
// diagonal of its two extents; any other kind, which has no length.
enum class EnElementAxisKind : std::int32_t { Straight = 0, Extents = 1, Other = 2 };

class BXQPLATFORM_EXPORT IVMPElementDrawObj {
public:
    virtual ~IVMPElementDrawObj();
    virtual std::int64_t getId() const = 0;
    virtual IVMPModel* getModel() const = 0;
    // The element's local frame at its start point; the member axis runs along its Z axis.
    virtual ndp::CoordinateSystem3 getHeadFrame() const = 0;
    virtual EnElementAxisKind getAxisKind() const = 0;
    // The length of a straight axis.
    virtual double getAxisLength() const = 0;
    // The two extents of an axis of the second curve kind.
    virtual void getAxisExtents(double& first, double& second) const = 0;
    // The element's solid shape (owned by the element), or null when it has none.
    virtual IVMPSolidShape* getSolidShape();
};

class BXQPLATFORM_EXPORT IVMPSolidShape {
public:
    virtual ~IVMPSolidShape();
    // A new body of the shape (the caller releases it), or null when it cannot be built.
    virtual ndp::CBody* createBody() = 0;
};
