// Cutting planes of steel elements: reading them from the project's "CuttingPlane" records or from
// the cutter solid shapes of "SNSolidShape", relative to the element's head or tail frame.
#pragma once

#include "ndp/NDPVector3.h"

#include <cstdint>
#include <vector>

class IVMPModel;
namespace ndp {
class CDatabase;
}

namespace skr {
namespace split {

using ndp::CoordinateSystem3;

// One cutting plane: it passes through the origin of LocalCoordinate with its Z axis as normal,
// and LocalCoordinate is relative to the element's tail frame when IsTail, else its head frame.
struct CuttingPlaneEntry {
    bool IsTail = false;
    CoordinateSystem3 LocalCoordinate;
};
using CuttingPlaneEntries = std::vector<CuttingPlaneEntry>;

// Whether element id has cutting planes: a "CuttingPlane" record, or (fromSolidShapes) a cutter
// shape (type 7) acting on solid shape id. False for a null model or a missing table.
bool HasCuttingPlanes(IVMPModel* model, std::int64_t id, bool fromSolidShapes);

// Appends the cutting planes of id, in reading order; true when entries is non-empty after a
// successful read, false on every early exit (missing table or record, zero-length shape).
bool ReadCuttingPlanes(ndp::CDatabase* database, std::int64_t id, CuttingPlaneEntries& entries, bool fromSolidShapes);

}  // namespace split
}  // namespace skr
