// Trimming member solids by cutting planes through the kernel's plane splitting.
#include "solid_split/SKRSolidSplit.h"

#include "ndp/NDPBody.h"
#include "ndp/NDPBooleanOperate.h"
#include "ndp/NDPPlane.h"
#include "ndp/NDPTolerance.h"
#include "vmp/IVMPElementDrawObj.h"
#include "vmp/IVMPModel.h"

#include <cmath>
#include <vector>

namespace skr {
namespace split {
namespace {

using ndp::operator+;
using ndp::operator-;
using ndp::operator*;

double axisLength(const IVMPElementDrawObj& element) {
    switch (element.getAxisKind()) {
    case EnElementAxisKind::Straight: return element.getAxisLength();
    case EnElementAxisKind::Extents: {
        double first = 0, second = 0;
        element.getAxisExtents(first, second);
        return std::sqrt(first * first + second * second);
    }
    default: return 0.0;
    }
}

void release(ndp::CBody*& body) {
    if (body) body->Release();
    body = nullptr;
}

}  // namespace

CoordinateSystem3 HeadFrame(const IVMPElementDrawObj& element) { return element.getHeadFrame(); }

CoordinateSystem3 TailFrame(const IVMPElementDrawObj& element) {
    CoordinateSystem3 tail = element.getHeadFrame();
    tail.origin = tail.origin + axisLength(element) * tail.zAxis;
    return tail;
}

ndp::CBody* ApplyCuttingPlanes(const IVMPElementDrawObj& element, IVMPSolidShape& shape) {
    ndp::CBody* body = shape.createBody();
    const CoordinateSystem3 head = HeadFrame(element);
    IVMPModel* model = element.getModel();
    CuttingPlaneEntries entries;
    if (ReadCuttingPlanes(model ? model->getProjectDB() : nullptr, element.getId(), entries, false)) {
        const CoordinateSystem3 tail = TailFrame(element);
        std::vector<ndp::CPlane> planes(entries.size());
        for (size_t i = 0; i < entries.size(); ++i) {
            const CoordinateSystem3 global = ndp::ToGlobal(entries[i].LocalCoordinate, entries[i].IsTail ? tail : head);
            planes[i].Create(global.origin, global.zAxis);
        }
        // Plane after plane, or at once for a straight member that every plane crosses whole.
        if (body) {
            ndp::CBooleanOperate splitter(true, true, true, true);
            ndp::CBody* trimmed = splitter.TrimPositiveBody(planes, body);
            release(body);
            body = trimmed;
        }
    }
    if (!body) body = shape.createBody();
    return body;
}

double TrimBodyByOffsetPlane(const ndp::CVector3& point, const CoordinateSystem3& frame, const ndp::CVector3& direction,
                             const ndp::CVector3& basePoint, ndp::CBody*& body, bool flipped) {
    ndp::CBooleanOperate splitter(true, true, true, true);
    ndp::CPlane base;
    base.Create(basePoint, frame.zAxis);
    double u = 0, v = 0;
    base.GetNearestUV(point, u, v, ndp::g_DistEpsilon);
    double distance = ndp::Length(point - base.GetPoint(u, v));
    if (!(distance > 0) || distance < SplitPlaneMinOffset) distance = 0;

    const ndp::CVector3 origin = flipped ? basePoint + distance * (-direction) : basePoint + distance * direction;
    const ndp::CVector3 normal = flipped ? direction : -direction;
    ndp::CPlane plane;
    plane.Create(origin, normal);
    ndp::CBody* result = body ? splitter.SplitNegativeBody(plane, body) : nullptr;
    release(body);
    body = result;
    return distance;
}

}  // namespace split
}  // namespace skr
