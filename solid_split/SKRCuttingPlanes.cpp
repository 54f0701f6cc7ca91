// Reading cutting planes. Missing tables, records and fields are never errors: they give false,
// nothing read, or the field's default.
#include "solid_split/SKRCuttingPlanes.h"
#include "vmp/VMPModelTables.h"

#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPTolerance.h"
#include "vmp/IVMPModel.h"
#include "vmp/VMPDBRecord.h"

#include <QString>

namespace skr {
namespace split {
namespace {

// Vector operators on the kernel's point triples (std::array, so not found by argument lookup).
using ndp::operator+;
using ndp::operator-;
using ndp::operator*;

constexpr int kCutterType = 7;
constexpr double kRightAngle = 1.5707963267948966;

const QString kCuttingPlane = QString::fromWCharArray(vmp_tables::cutting_plane::table);
const QString kSolidShape = QString::fromWCharArray(vmp_tables::solid_shape::table);

ndp::CDBTable* tableOf(ndp::CDatabase* database, const QString& name) {
    return database ? database->GetTable(name.toStdWString()) : nullptr;
}

// Records whose 64-bit key field equals id; empty when the field is missing or nothing matches.
ndp::CFileAddressList search(ndp::CDBTable* table, const wchar_t* field, std::int64_t id) {
    ndp::CFileAddressList found;
    if (!table->Search(table->FindField(field), id, found, false)) found.RemoveAll();
    return found;
}

bool readPlaneRecords(ndp::CDatabase* database, std::int64_t id, CuttingPlaneEntries& entries) {
    ndp::CDBTable* table = tableOf(database, kCuttingPlane);
    if (!table) return false;
    const ndp::CFileAddressList found = search(table, vmp_tables::cutting_plane::element, id);
    for (int i = 0; i < found.GetCount(); ++i) {
        const VMPDBRecord record(table, found.GetItem(i));
        entries.push_back({record.getBool(QString::fromWCharArray(vmp_tables::cutting_plane::isTail), false),
                           record.getCoord3(QString::fromWCharArray(vmp_tables::cutting_plane::localCoordinate), CoordinateSystem3())});
    }
    return !entries.empty();
}

bool readCutterShapes(ndp::CDatabase* database, std::int64_t id, CuttingPlaneEntries& entries) {
    ndp::CDBTable* table = tableOf(database, kSolidShape);
    if (!table) return false;
    const ndp::CFileAddressList shapes = search(table, vmp_tables::solid_shape::id, id);
    if (shapes.GetCount() == 0) return false;
    const VMPDBRecord shape(table, shapes.GetItem(0));
    const double length = shape.getDouble(QString::fromWCharArray(vmp_tables::solid_shape::length), 0.0);
    if (length >= -ndp::g_DistEpsilon && length <= ndp::g_DistEpsilon) return false;
    const CoordinateSystem3 frame = shape.getCoord3(QString::fromWCharArray(vmp_tables::solid_shape::localCoord), CoordinateSystem3());
    const ndp::CVector3 end = frame.origin + length * frame.zAxis;
    const ndp::CVector3 backwards = ndp::Normalized(frame.origin - end);
    CoordinateSystem3 tailFrame = frame;
    tailFrame.origin = end;

    const ndp::CFileAddressList cutters = search(table, vmp_tables::solid_shape::target, id);
    for (int i = 0; i < cutters.GetCount(); ++i) {
        const VMPDBRecord cutter(table, cutters.GetItem(i));
        if (cutter.getInteger(QString::fromWCharArray(vmp_tables::solid_shape::type), -1) != kCutterType) continue;
        const CoordinateSystem3 cutterFrame = cutter.getCoord3(QString::fromWCharArray(vmp_tables::solid_shape::localCoord), CoordinateSystem3());
        const bool isTail = ndp::AngleBetween(backwards, cutterFrame.zAxis) < kRightAngle;
        entries.push_back({isTail, ndp::ExpressIn(cutterFrame, isTail ? tailFrame : frame)});
    }
    return !entries.empty();
}

}  // namespace

bool HasCuttingPlanes(IVMPModel* model, std::int64_t id, bool fromSolidShapes) {
    ndp::CDatabase* database = model ? model->getProjectDB() : nullptr;
    if (!fromSolidShapes) {
        ndp::CDBTable* table = tableOf(database, kCuttingPlane);
        ndp::CFileAddress address = ndp::kNullAddress;
        return table && table->Find(table->FindField(vmp_tables::cutting_plane::element), id, address, false);
    }
    ndp::CDBTable* table = tableOf(database, kSolidShape);
    if (!table || search(table, vmp_tables::solid_shape::id, id).GetCount() == 0) return false;
    const ndp::CFileAddressList targets = search(table, vmp_tables::solid_shape::target, id);
    for (int i = 0; i < targets.GetCount(); ++i)
        if (VMPDBRecord(table, targets.GetItem(i)).getInteger(QString::fromWCharArray(vmp_tables::solid_shape::type), -1) == kCutterType) return true;
    return false;
}

bool ReadCuttingPlanes(ndp::CDatabase* database, std::int64_t id, CuttingPlaneEntries& entries, bool fromSolidShapes) {
    return fromSolidShapes ? readCutterShapes(database, id, entries) : readPlaneRecords(database, id, entries);
}

}  // namespace split
}  // namespace skr
