// "CuttingPlane" records as whole records.
#include "solid_split/SKRCuttingPlaneStore.h"
#include "vmp/VMPModelTables.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPRef.h"


namespace skr {
namespace split {
namespace {

struct Fields {
    int id, element, shape, tail, local, offset;
    explicit Fields(const ndp::CDBTable& t)
        : id(t.FindField(vmp_tables::cutting_plane::id)), element(t.FindField(vmp_tables::cutting_plane::element)), shape(t.FindField(vmp_tables::cutting_plane::solidShape)),
          tail(t.FindField(vmp_tables::cutting_plane::isTail)), local(t.FindField(vmp_tables::cutting_plane::localCoordinate)), offset(t.FindField(vmp_tables::cutting_plane::offset)) {}
};

ndp::CDBTable* planeTable(ndp::CDatabase* database, QString* error) {
    ndp::CDBTable* table = database ? database->GetTable(vmp_tables::cutting_plane::table) : nullptr;
    if (!table && error && database) *error = QStringLiteral("%1 has no table CuttingPlane").arg(database->GetPath());
    return table;
}

QString failure(ndp::CDatabase* database, const QString& what) {
    return QStringLiteral("cannot %1 in %2: %3").arg(what, database->GetPath(), database->GetLastError());
}

CuttingPlaneRecord fromRecord(const ndp::CDBRecord& r, const Fields& f) {
    CuttingPlaneRecord p;
    p.id = r.GetInt64(f.id);
    p.elementId = r.GetInt64(f.element, -1);
    p.shapeId = r.GetInt64(f.shape, -1);
    p.isTail = r.GetBool(f.tail, false);
    p.local = r.GetCoord3(f.local);
    p.offset = r.GetDouble(f.offset, 0.0);
    return p;
}

// Addresses of the rows whose field equals key (every row for a negative key). A query rather
// than the field-index search, which answers false alike for no row and a failed read.
bool rows(ndp::CDBTable* table, const wchar_t* field, std::int64_t key, ndp::CFileAddressList& found) {
    if (key < 0) return table->ListAll(found);
    return table->Query(std::wstring(field) + L"==" + std::to_wstring(key), found);
}
}  // namespace

bool ReadCuttingPlaneRecords(ndp::CDatabase* database, std::int64_t elementId, std::vector<CuttingPlaneRecord>& records,
                             QString* error) {
    ndp::CDBTable* table = planeTable(database, error);
    if (!table) return false;
    const Fields fields(*table);
    ndp::CFileAddressList found;
    if (!rows(table, vmp_tables::cutting_plane::element, elementId, found)) {
        if (error) *error = failure(database, QStringLiteral("read the cutting planes"));
        return false;
    }
    records.clear();
    for (int i = 0; i < found.GetCount(); ++i) {
        const ndp::CRef<ndp::CDBRecord> record(table->GetRecord(found.GetItem(i)));
        if (!record) {
            if (error) *error = failure(database, QStringLiteral("read a cutting plane"));
            return false;
        }
        records.push_back(fromRecord(*record, fields));
    }
    return true;
}

bool FindCuttingPlaneRecord(ndp::CDatabase* database, std::int64_t recordId, CuttingPlaneRecord& record) {
    ndp::CDBTable* table = planeTable(database, nullptr);
    ndp::CFileAddressList found;
    if (!table || recordId < 0 || !rows(table, vmp_tables::cutting_plane::id, recordId, found) || found.GetCount() == 0) return false;
    const ndp::CRef<ndp::CDBRecord> row(table->GetRecord(found.GetItem(0)));
    if (!row) return false;
    record = fromRecord(*row, Fields(*table));
    return true;
}

bool AddCuttingPlaneRecord(ndp::CDatabase* database, CuttingPlaneRecord& record, QString* error) {
    ndp::CDBTable* table = planeTable(database, error);
    if (!table) return false;
    const Fields f(*table);
    std::int64_t largest = 0;
    if (!table->GetMaxInt64(f.id, largest)) {
        if (error) *error = failure(database, QStringLiteral("read the cutting planes"));
        return false;
    }
    record.id = largest + 1;
    const ndp::CRef<ndp::CDBRecord> row(table->CreateRecord());
    row->SetInt64(f.id, record.id);
    row->SetInt64(f.element, record.elementId);
    row->SetInt64(f.shape, record.shapeId);
    row->SetBool(f.tail, record.isTail);
    row->SetCoord3(f.local, record.local);
    row->SetDouble(f.offset, record.offset);
    if (table->AddRecord(row.get()) != ndp::kNullAddress) return true;
    if (error) *error = failure(database, QStringLiteral("add a cutting plane"));
    return false;
}

bool UpdateCuttingPlaneRecord(ndp::CDatabase* database, const CuttingPlaneRecord& record, QString* error) {
    ndp::CDBTable* table = planeTable(database, error);
    ndp::CFileAddressList found;
    if (!table) return false;
    if (!rows(table, vmp_tables::cutting_plane::id, record.id, found) || found.GetCount() == 0) {
        if (error) *error = QStringLiteral("%1 has no cutting plane %2").arg(database->GetPath()).arg(record.id);
        return false;
    }
    const Fields f(*table);
    const ndp::CRef<ndp::CDBRecord> row(table->GetRecord(found.GetItem(0)));
    if (row && row->SetCoord3(f.local, record.local) && row->SetDouble(f.offset, record.offset) &&
        table->ModifyRecord(row.get()))
        return true;
    if (error) *error = failure(database, QStringLiteral("move cutting plane %1").arg(record.id));
    return false;
}

bool DeleteCuttingPlaneRecord(ndp::CDatabase* database, std::int64_t recordId, QString* error) {
    ndp::CDBTable* table = planeTable(database, error);
    ndp::CFileAddressList found;
    if (!table) return false;
    if (!rows(table, vmp_tables::cutting_plane::id, recordId, found) || found.GetCount() == 0) {
        if (error) *error = QStringLiteral("%1 has no cutting plane %2").arg(database->GetPath()).arg(recordId);
        return false;
    }
    for (int i = 0; i < found.GetCount(); ++i) {
        if (!table->DeleteRecord(found.GetItem(i))) {
            if (error) *error = failure(database, QStringLiteral("delete cutting plane %1").arg(recordId));
            return false;
        }
    }
    return true;
}

}  // namespace split
}  // namespace skr
