// Trimming every member of a model at once: members of equal section, length and cutting planes
// (in their own head and tail frames) share one solid, built once in the member's own frame, and
// the distinct solids are trimmed in parallel.
#pragma once

#include "ndp/NDPRef.h"
#include "ndp/NDPVector3.h"
#include "vmp/VMPMembers.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <vector>

namespace ndp {
class CBody;
class CDatabase;
}  // namespace ndp

namespace skr {
namespace split {

struct SKRModelTrim {
    // Distinct trimmed solids, each in its members' own frame (the head frame is the identity).
    std::vector<ndp::CRef<ndp::CBody>> solids;
    struct Member {
        std::int64_t id = 0;
        ndp::CoordinateSystem3 head;  // places the solid in the model
        int solid = -1;               // index into solids
    };
    // Every member in id order.
    std::vector<Member> members;
};

// Reports progress: solids done, solids in all. Answering false cancels the trimming.
using TrimProgress = std::function<bool(int done, int total)>;

// Reads the members of database and their "CuttingPlane" records, and trims each distinct solid
// that factory builds (called on this thread, in the member's own frame; once per section when its
// solids are prisms, whose other lengths the kernel extrudes on the pool) as ApplyCuttingPlanes
// does: planes that leave nothing give the uncut solid. False, with the reason naming the file
// (and the member), when the members or planes cannot be read, a solid cannot be built, or
// progress cancelled.
bool TrimModelMembers(ndp::CDatabase* database, const VMPSolidShapeFactory& factory, SKRModelTrim& result,
                      QString* error, const TrimProgress& progress = TrimProgress());

}  // namespace split
}  // namespace skr
