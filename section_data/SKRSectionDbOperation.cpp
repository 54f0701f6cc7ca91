// SKRSectionDbOperation: custom polygon sections added, updated, removed and read by ID.
#include "section_data/SKRSectionDbOperation.h"
#include "section_data/SKRProjectSchema.h"

#include "section_data/SKRQueryText.h"
#include "section_data/SKRDatabaseError.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPRef.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPPolygon.h"

#include <QCoreApplication>

#include <stdexcept>
#include <string>

namespace {

const char kCannotAccept[] = "cannot accept:DB is nullptr ;CustomPoly doesn't exist;CustomPolyType doesn't exist";
const char kInvalidQuery[] = "Invalid Query String!";
const char kInvalidField[] = "Invalid Field Name!";

int fieldIndex(ndp::CDBTable* table, const wchar_t* name) {
    const int index = table->FindField(name);
    if (index < 0) throw std::invalid_argument(kInvalidField);
    return index;
}

QString customSectionText() { return QCoreApplication::translate("SKRSectionDbOperation", "自定义截面"); }
QString customSectionTypeText() { return QCoreApplication::translate("SKRSectionDbOperation", "自定义截面类型"); }

std::wstring idQuery(int id) { return skr::section::query::fieldEquals(skr::section::schema::custom_poly::id, id); }

// The fields an update rewrites; an add writes them too.
void writeEditableFields(ndp::CDBTable* table, ndp::CDBRecord* record, const SKRCustomPolyInfo& info) {
    record->SetString(fieldIndex(table, skr::section::schema::custom_poly::description), info.description.toStdWString());
    record->SetString(fieldIndex(table, skr::section::schema::custom_poly::horzSpace), info.horzSpace.toStdWString());
    record->SetString(fieldIndex(table, skr::section::schema::custom_poly::vertSpace), info.vertSpace.toStdWString());
    record->SetDouble(fieldIndex(table, skr::section::schema::custom_poly::insertPointX), info.insertPointX);
    record->SetDouble(fieldIndex(table, skr::section::schema::custom_poly::insertPointY), info.insertPointY);
    record->SetPolygon(fieldIndex(table, skr::section::schema::custom_poly::polyData), info.polygon ? *info.polygon : ndp::CPolygon());
    record->SetBytes(fieldIndex(table, skr::section::schema::custom_poly::drawing), info.vectorDrawingInfo);
}

}  // namespace

SKRSectionDbOperation::SKRSectionDbOperation(ndp::CDatabase* db)
    : m_pDatabase(db),
      m_pCustomPoly(db ? db->GetTable(skr::section::schema::custom_poly::table) : nullptr),
      m_pCustomPolyType(db ? db->GetTable(skr::section::schema::custom_poly_type::table) : nullptr) {
    if (!m_pDatabase || !m_pCustomPoly || !m_pCustomPolyType) throw std::invalid_argument(kCannotAccept);
}

int SKRSectionDbOperation::nextId(ndp::CDBTable* table) const {
    // A failed read would hand out an ID in use: it throws instead.
    const skr::section::SKRDatabaseCheck failed(table);
    ndp::CFileAddressList all;
    int last = 0;
    if (table->ListAll(all) && all.GetCount() > 0) {
        ndp::CRef<ndp::CDBRecord> ref(table->GetRecord(all.GetItem(all.GetCount() - 1)));
        last = ref.get() ? ref.get()->GetInt(fieldIndex(table, skr::section::schema::custom_poly_type::id), -1) : -1;
    }
    failed.check();
    return last + 1;
}

bool SKRSectionDbOperation::addCustomPoly(SKRCustomPolyInfo& info) {
    // Every custom polygon gets a type row of its own.
    const int typeId = nextId(m_pCustomPolyType);
    bool written;
    {
        ndp::CRef<ndp::CDBRecord> type(m_pCustomPolyType->CreateRecord());
        type.get()->SetInt(fieldIndex(m_pCustomPolyType, skr::section::schema::custom_poly_type::id), typeId);
        type.get()->SetString(fieldIndex(m_pCustomPolyType, skr::section::schema::custom_poly_type::description), customSectionTypeText().toStdWString());
        written = m_pCustomPolyType->AddRecord(type.get()) != ndp::kNullAddress;
    }
    written = m_pDatabase->Flush() && written;

    info.id = nextId(m_pCustomPoly);
    info.description = customSectionText() + QString::number(info.id);

    ndp::CRef<ndp::CDBRecord> poly(m_pCustomPoly->CreateRecord());
    poly.get()->SetInt(fieldIndex(m_pCustomPoly, skr::section::schema::custom_poly::id), info.id);
    poly.get()->SetInt(fieldIndex(m_pCustomPoly, skr::section::schema::custom_poly::typeId), typeId);
    writeEditableFields(m_pCustomPoly, poly.get(), info);
    poly.get()->SetString(fieldIndex(m_pCustomPoly, skr::section::schema::custom_poly::typeName), customSectionTypeText().toStdWString());
    written = m_pCustomPoly->AddRecord(poly.get()) != ndp::kNullAddress && written;
    return m_pDatabase->Flush() && written;
}

bool SKRSectionDbOperation::updateCustomPoly(const SKRCustomPolyInfo& info) {
    const skr::section::SKRDatabaseCheck failed(m_pCustomPoly);
    ndp::CFileAddressList found;
    const bool accepted = m_pCustomPoly->Query(idQuery(info.id), found);
    failed.check();
    if (!accepted) throw std::invalid_argument(kInvalidQuery);
    if (found.GetCount() == 0) return false;
    ndp::CRef<ndp::CDBRecord> ref(m_pCustomPoly->GetRecord(found.GetItem(0)));
    failed.check();
    if (!ref.get()) return false;
    writeEditableFields(m_pCustomPoly, ref.get(), info);
    const bool modified = m_pCustomPoly->ModifyRecord(ref.get());
    return m_pDatabase->Flush() && modified;
}

bool SKRSectionDbOperation::removeCustomPoly(int id) {
    const skr::section::SKRDatabaseCheck failed(m_pCustomPoly);
    ndp::CFileAddressList found;
    m_pCustomPoly->Search(fieldIndex(m_pCustomPoly, skr::section::schema::custom_poly::id), id, found);
    failed.check();
    bool removed = false;
    for (int i = 0; i < found.GetCount(); ++i) removed = m_pCustomPoly->DeleteRecord(found.GetItem(i)) || removed;
    return removed;
}

bool SKRSectionDbOperation::readCustomPoly(int id, SKRCustomPolyInfo& info, ndp::CPolygon& polygon, QString* error) {
    return readById(id, false, info, polygon, error);
}

bool SKRSectionDbOperation::readCustomPolyWithDrawing(int id, SKRCustomPolyInfo& info, ndp::CPolygon& polygon,
                                                      QString* error) {
    return readById(id, true, info, polygon, error);
}

bool SKRSectionDbOperation::readById(int id, bool withDrawing, SKRCustomPolyInfo& info, ndp::CPolygon& polygon,
                                     QString* error) {
    const skr::section::SKRDatabaseCheck failed(m_pCustomPoly);
    ndp::CFileAddressList found;
    const bool accepted = m_pCustomPoly->Query(idQuery(id), found);
    failed.check();
    if (!accepted) throw std::invalid_argument(kInvalidQuery);
    ndp::CRef<ndp::CDBRecord> ref(found.GetCount() > 0 ? m_pCustomPoly->GetRecord(found.GetItem(0)) : nullptr);
    failed.check();
    if (!ref.get()) {
        if (error) *error = QStringLiteral("no custom polygon with ID %1").arg(id);
        return false;
    }
    ndp::CDBRecord* record = ref.get();

    ndp::CPolygon outline;
    const int polyData = fieldIndex(m_pCustomPoly, skr::section::schema::custom_poly::polyData);
    QString why;
    if (!record->IsNull(polyData) && !ndp::CPolygon::FromBytes(record->GetBytes(polyData), outline, &why)) {
        if (error) *error = QStringLiteral("custom polygon %1: the outline is unreadable: %2").arg(id).arg(why);
        return false;
    }

    SKRCustomPolyInfo read;
    read.id = record->GetInt(fieldIndex(m_pCustomPoly, skr::section::schema::custom_poly::id));
    read.description = QString::fromStdWString(record->GetString(fieldIndex(m_pCustomPoly, skr::section::schema::custom_poly::description)));
    read.insertPointX = record->GetDouble(fieldIndex(m_pCustomPoly, skr::section::schema::custom_poly::insertPointX));
    read.insertPointY = record->GetDouble(fieldIndex(m_pCustomPoly, skr::section::schema::custom_poly::insertPointY));
    read.horzSpace = QString::fromStdWString(record->GetString(fieldIndex(m_pCustomPoly, skr::section::schema::custom_poly::horzSpace)));
    read.vertSpace = QString::fromStdWString(record->GetString(fieldIndex(m_pCustomPoly, skr::section::schema::custom_poly::vertSpace)));
    if (withDrawing) read.vectorDrawingInfo = record->GetBytes(fieldIndex(m_pCustomPoly, skr::section::schema::custom_poly::drawing));
    polygon = std::move(outline);
    read.polygon = &polygon;
    info = std::move(read);
    return true;
}
