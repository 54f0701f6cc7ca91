// VMPProjectModel: a project database file with its tables.
#include "vmp/VMPProjectModel.h"

#include "ndp/NDPDatabase.h"

#include <QFileInfo>

using ndp::CDBField;
using ndp::EnDBFieldKind;

IVMPModel::~IVMPModel() = default;
IVMPService::~IVMPService() = default;

VMPProjectModel::VMPProjectModel() : m_database(std::make_unique<ndp::CDatabase>()) {}
VMPProjectModel::~VMPProjectModel() = default;

bool VMPProjectModel::createProjectTables(ndp::CDatabase* db) {
    const std::pair<const wchar_t*, std::vector<CDBField>> tables[] = {
        {L"CustomHotRolledSection",
         {{L"SectionType", EnDBFieldKind::Int32, true},
          {L"SubID", EnDBFieldKind::Int32, true},
          {L"StandardName", EnDBFieldKind::Text, true},
          {L"WeightMeter", EnDBFieldKind::Double},
          {L"AreaVal", EnDBFieldKind::Double},
          {L"SectionParam", EnDBFieldKind::Text}}},
        {L"CustomPoly",
         {{L"ID", EnDBFieldKind::Int32, true},
          {L"Description", EnDBFieldKind::Text},
          {L"CustomPolyTypeID", EnDBFieldKind::Int32},
          {L"HorzSpace", EnDBFieldKind::Text},
          {L"VertSpace", EnDBFieldKind::Text},
          {L"InsertPointX", EnDBFieldKind::Double},
          {L"InsertPointY", EnDBFieldKind::Double},
          {L"PolyData", EnDBFieldKind::Polygon},
          {L"VectorDrawingInfo", EnDBFieldKind::Stream},
          {L"TypeName", EnDBFieldKind::Text}}},
        {L"CustomPolyType", {{L"ID", EnDBFieldKind::Int32, true}, {L"Description", EnDBFieldKind::Text}}},
        {L"CuttingPlane",
         {{L"ID", EnDBFieldKind::Int64, true},
          {L"EDOID", EnDBFieldKind::Int64, true},
          {L"SNID", EnDBFieldKind::Int64},
          {L"IsTail", EnDBFieldKind::Bool},
          {L"LocalCoordinate", EnDBFieldKind::Coord3},
          {L"OffsetValue", EnDBFieldKind::Double}}},
        {L"SNSolidShape",
         {{L"ID", EnDBFieldKind::Int64, true},
          {L"TargetID", EnDBFieldKind::Int64, true},
          {L"Type", EnDBFieldKind::Int32},
          {L"Length", EnDBFieldKind::Double},
          {L"LocalCoord", EnDBFieldKind::Coord3}}},
    };
    for (const auto& table : tables)
        if (!db->GetTable(table.first) && !db->CreateTable(table.first, table.second)) return false;
    return true;
}

bool VMPProjectModel::open(const QString& path) {
    m_database->Close();
    // A new project is made whole or not at all: a failed first write leaves no file behind.
    const auto fill = [](ndp::CDatabase& database) { return createProjectTables(&database); };
    if (!QFileInfo::exists(path) && !ndp::CDatabase::CreateWhole(path, fill, &m_lastError)) return false;
    if (!m_database->Open(path, false) || !createProjectTables(m_database.get())) {
        m_lastError = m_database->GetLastError();
        m_database->Close();
        return false;
    }
    return true;
}

bool VMPProjectModel::save() {
    if (m_database->Flush()) return true;
    m_lastError = m_database->GetLastError();
    return false;
}

ndp::CDatabase* VMPProjectModel::getProjectDB() { return m_database->IsOpen() ? m_database.get() : nullptr; }
