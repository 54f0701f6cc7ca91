// VMPProjectModel: a project database file with its tables.
#include "vmp/VMPProjectModel.h"

#include "ndp/NDPDatabase.h"
#include "vmp/VMPObserver.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <mutex>


IVMPModel::~IVMPModel() = default;
IVMPElementDrawObj* IVMPModel::getElementDrawObj(std::int64_t) { return nullptr; }
void IVMPModel::attachObserver(VMPObserver*) {}
void IVMPModel::detachObserver(VMPObserver*) {}
void IVMPModel::attachListener(IVMPListener*) {}
void IVMPModel::detachListener(IVMPListener*) {}
IVMPService::~IVMPService() = default;

VMPProjectModel::VMPProjectModel() : m_database(std::make_unique<ndp::CDatabase>()) {}
VMPProjectModel::~VMPProjectModel() = default;

namespace {

std::mutex& pluginTablesLock() {
    static std::mutex lock;
    return lock;
}

std::vector<VMPTableDefinition>& pluginTables() {
    static std::vector<VMPTableDefinition> tables;
    return tables;
}

}  // namespace

namespace vmp_tables {

const std::vector<VMPTableDefinition>& modelTables() {
    using namespace ndp;
    static const std::vector<VMPTableDefinition> tables = {
        {cutting_plane::table,
         {{cutting_plane::id, EnDBFieldKind::Int64, true},
          {cutting_plane::element, EnDBFieldKind::Int64, true},
          {cutting_plane::solidShape, EnDBFieldKind::Int64},
          {cutting_plane::isTail, EnDBFieldKind::Bool},
          {cutting_plane::localCoordinate, EnDBFieldKind::Coord3},
          {cutting_plane::offset, EnDBFieldKind::Double}}},
        {member::table,
         {{member::id, EnDBFieldKind::Int64, true},
          {member::section, EnDBFieldKind::Text},
          {member::startX, EnDBFieldKind::Double},
          {member::startY, EnDBFieldKind::Double},
          {member::startZ, EnDBFieldKind::Double},
          {member::endX, EnDBFieldKind::Double},
          {member::endY, EnDBFieldKind::Double},
          {member::endZ, EnDBFieldKind::Double},
          {member::roll, EnDBFieldKind::Double}}},
        {solid_shape::table,
         {{solid_shape::id, EnDBFieldKind::Int64, true},
          {solid_shape::target, EnDBFieldKind::Int64, true},
          {solid_shape::type, EnDBFieldKind::Int32},
          {solid_shape::length, EnDBFieldKind::Double},
          {solid_shape::localCoord, EnDBFieldKind::Coord3}}},
    };
    return tables;
}

bool createTables(ndp::CDatabase* database, const std::vector<VMPTableDefinition>& definitions) {
    for (const VMPTableDefinition& table : definitions)
        if (!database->GetTable(table.first) && !database->CreateTable(table.first, table.second)) return false;
    return true;
}

}  // namespace vmp_tables

void VMPProjectModel::registerProjectTables(const std::vector<VMPTableDefinition>& tables) {
    const std::lock_guard<std::mutex> hold(pluginTablesLock());
    for (const VMPTableDefinition& table : tables) {
        auto& registered = pluginTables();
        const auto same = std::find_if(registered.begin(), registered.end(),
                                       [&table](const VMPTableDefinition& t) { return t.first == table.first; });
        if (same == registered.end()) registered.push_back(table);
    }
}

bool VMPProjectModel::createProjectTables(ndp::CDatabase* db) {
    std::vector<VMPTableDefinition> plugins;
    {
        const std::lock_guard<std::mutex> hold(pluginTablesLock());
        plugins = pluginTables();
    }
    return vmp_tables::createTables(db, vmp_tables::modelTables()) && vmp_tables::createTables(db, plugins);
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
