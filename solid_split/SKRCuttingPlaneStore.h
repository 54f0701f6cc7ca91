// The "CuttingPlane" records of a project as whole records: read, added, changed and deleted by
// the display manager and the host's commands.
#pragma once

#include "ndp/NDPVector3.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace ndp {
class CDatabase;
}

namespace skr {
namespace split {

struct CuttingPlaneRecord {
    std::int64_t id = 0;          // "ID"
    std::int64_t elementId = -1;  // "EDOID"
    std::int64_t shapeId = -1;    // "SNID": -1 for planes not made from a solid shape
    bool isTail = false;          // "IsTail"
    ndp::CoordinateSystem3 local; // "LocalCoordinate", relative to the head or tail frame
    double offset = 0.0;          // "OffsetValue": the distance of the last move
};

// The records of one element (every record when elementId is negative), in record order. False,
// with the reason naming the file, when the table is missing or cannot be read.
bool ReadCuttingPlaneRecords(ndp::CDatabase* database, std::int64_t elementId, std::vector<CuttingPlaneRecord>& records,
                             QString* error);
// The record of that "ID"; false when there is none or it cannot be read.
bool FindCuttingPlaneRecord(ndp::CDatabase* database, std::int64_t recordId, CuttingPlaneRecord& record);
// Stores record under the next free "ID" (one more than the largest) and sets record.id.
bool AddCuttingPlaneRecord(ndp::CDatabase* database, CuttingPlaneRecord& record, QString* error);
// Writes the frame and offset of an existing record.
bool UpdateCuttingPlaneRecord(ndp::CDatabase* database, const CuttingPlaneRecord& record, QString* error);
// Deletes the records of that "ID"; false when there is none or the delete failed.
bool DeleteCuttingPlaneRecord(ndp::CDatabase* database, std::int64_t recordId, QString* error);

}  // namespace split
}  // namespace skr
