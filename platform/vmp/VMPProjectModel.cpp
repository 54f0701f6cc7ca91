// VMPProjectModel: a project database file with its tables.
#include "vmp/VMPProjectModel.h"

#include "ndp/NDPDatabase.h"
#include "vmp/VMPObserver.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

using ndp::CDBField;
using ndp::EnDBFieldKind;

IVMPModel::~IVMPModel() = default;
IVMPElementDrawObj* IVMPModel::getElementDrawObj(std::int64_t) { return nullptr; }
void IVMPModel::attachObserver(VMPObserver*) {}
void IVMPModel::detachObserver(VMPObserver*) {}
void IVMPModel::attachListener(IVMPListener*) {}
void IVMPModel::detachListener(IVMPListener*) {}
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
        {L"Member",
         {{L"ID", EnDBFieldKind::Int64, true},
          {L"Section", EnDBFieldKind::Text},
          {L"StartX", EnDBFieldKind::Double},
          {L"StartY", EnDBFieldKind::Double},
          {L"StartZ", EnDBFieldKind::Double},
          {L"EndX", EnDBFieldKind::Double},
          {L"EndY", EnDBFieldKind::Double},
          {L"EndZ", EnDBFieldKind::Double},
          {L"Roll", EnDBFieldKind::Double}}},
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
    // An empty file (a creation cut short by an older version, or by hand) holds nothing to
    // lose: it is taken as no project at all and made anew.
    const QFileInfo file(path);
    if (file.exists() && file.isFile() && file.size() == 0) QFile::remove(path);
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

IVMPElementDrawObj* VMPProjectModel::getElementDrawObj(std::int64_t id) {
    VMPMember member;
    if (!VMPReadMember(getProjectDB(), id, member, nullptr)) return nullptr;
    std::unique_ptr<VMPMemberElement>& element = m_elements[id];
    if (!element) element = std::make_unique<VMPMemberElement>(this, m_shapeFactory);
    element->assign(member);
    return element.get();
}

namespace {
template <class T>
void attach(std::vector<T*>& list, T* item) {
    if (item && std::find(list.begin(), list.end(), item) == list.end()) list.push_back(item);
}
template <class T>
void detach(std::vector<T*>& list, T* item) {
    list.erase(std::remove(list.begin(), list.end(), item), list.end());
}
}  // namespace

void VMPProjectModel::attachObserver(VMPObserver* observer) { attach(m_observers, observer); }
void VMPProjectModel::detachObserver(VMPObserver* observer) { detach(m_observers, observer); }
void VMPProjectModel::attachListener(IVMPListener* listener) { attach(m_listeners, listener); }
void VMPProjectModel::detachListener(IVMPListener* listener) { detach(m_listeners, listener); }

void VMPProjectModel::notifyUpdate(std::uint32_t flags, void* data) {
    // A copy: an observer may detach itself while it is told.
    const std::vector<VMPObserver*> observers = m_observers;
    for (VMPObserver* observer : observers) observer->update(flags, data);
}

void VMPProjectModel::notifyElementChange(int kind, IVMPElementDrawObj* element, const std::wstring& property,
                                          bool refreshAll) {
    const std::vector<IVMPListener*> listeners = m_listeners;
    for (IVMPListener* listener : listeners) listener->onNotify(kind, element, property, refreshAll);
}
