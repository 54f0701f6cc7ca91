// The "Member" table of a project and the element drawing objects of its rows.
#include "vmp/VMPMembers.h"
#include "vmp/VMPModelTables.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPRef.h"

#include <algorithm>
#include <cmath>

namespace {

using ndp::CVector3;
using ndp::operator+;
using ndp::operator-;
using ndp::operator*;

constexpr double kPi = 3.14159265358979323846;

QString noTable(ndp::CDatabase* database, const wchar_t* table) {
    return QStringLiteral("%1 has no table %2").arg(database->GetPath(), QString::fromWCharArray(table));
}

struct MemberFields {
    int id, section, sx, sy, sz, ex, ey, ez, roll;
    explicit MemberFields(const ndp::CDBTable& t)
        : id(t.FindField(vmp_tables::member::id)), section(t.FindField(vmp_tables::member::section)), sx(t.FindField(vmp_tables::member::startX)),
          sy(t.FindField(vmp_tables::member::startY)), sz(t.FindField(vmp_tables::member::startZ)), ex(t.FindField(vmp_tables::member::endX)),
          ey(t.FindField(vmp_tables::member::endY)), ez(t.FindField(vmp_tables::member::endZ)), roll(t.FindField(vmp_tables::member::roll)) {}
};

VMPMember fromRecord(const ndp::CDBRecord& r, const MemberFields& f) {
    VMPMember m;
    m.id = r.GetInt64(f.id);
    m.section = QString::fromStdWString(r.GetString(f.section));
    m.start = {r.GetDouble(f.sx), r.GetDouble(f.sy), r.GetDouble(f.sz)};
    m.end = {r.GetDouble(f.ex), r.GetDouble(f.ey), r.GetDouble(f.ez)};
    m.roll = r.GetDouble(f.roll);
    return m;
}

// Every record address of the rows whose integer field equals key; an empty list is no failure.
bool rowsOf(ndp::CDBTable* table, const wchar_t* field, std::int64_t key, ndp::CFileAddressList& rows, QString* error) {
    if (table->Query(std::wstring(field) + L"==" + std::to_wstring(key), rows)) return true;
    if (error)
        *error = QStringLiteral("cannot read %1: %2").arg(QString::fromStdWString(table->GetName()),
                                                         table->GetDatabase()->GetLastError());
    return false;
}

}  // namespace

ndp::CoordinateSystem3 VMPMemberHeadFrame(const CVector3& start, const CVector3& end, double rollDegrees) {
    const CVector3 z = ndp::Normalized(end - start);
    const CVector3 up{0, 0, 1};
    CVector3 y = up - ndp::Dot(up, z) * z;
    if (ndp::Length(y) < 1e-9) y = ndp::Cross(z, CVector3{1, 0, 0});  // vertical: X stays global X
    y = ndp::Normalized(y);
    const CVector3 x = ndp::Cross(y, z);
    const double a = rollDegrees * kPi / 180.0;
    const double c = std::cos(a), s = std::sin(a);
    return ndp::MakeFrame(start, c * x + s * y, -s * x + c * y, z);
}

bool VMPReadMembers(ndp::CDatabase* database, std::vector<VMPMember>& members, QString* error) {
    ndp::CDBTable* table = database ? database->GetTable(vmp_tables::member::table) : nullptr;
    if (!table) {
        if (error && database) *error = noTable(database, vmp_tables::member::table);
        return false;
    }
    const MemberFields fields(*table);
    ndp::CFileAddressList rows;
    if (!table->ListAll(rows)) {
        if (error) *error = QStringLiteral("cannot read the members of %1").arg(database->GetPath());
        return false;
    }
    members.clear();
    members.reserve(static_cast<size_t>(rows.GetCount()));
    for (int i = 0; i < rows.GetCount(); ++i) {
        const ndp::CRef<ndp::CDBRecord> record(table->GetRecord(rows.GetItem(i)));
        if (!record) {
            if (error) *error = QStringLiteral("cannot read a member of %1").arg(database->GetPath());
            return false;
        }
        members.push_back(fromRecord(*record, fields));
    }
    std::sort(members.begin(), members.end(), [](const VMPMember& a, const VMPMember& b) { return a.id < b.id; });
    return true;
}

bool VMPReadMember(ndp::CDatabase* database, std::int64_t id, VMPMember& member, QString* error) {
    ndp::CDBTable* table = database ? database->GetTable(vmp_tables::member::table) : nullptr;
    if (!table) return false;
    const MemberFields fields(*table);
    ndp::CFileAddressList rows;
    if (!rowsOf(table, vmp_tables::member::id, id, rows, error) || rows.GetCount() == 0) return false;
    const ndp::CRef<ndp::CDBRecord> record(table->GetRecord(rows.GetItem(0)));
    if (!record) {
        if (error) *error = QStringLiteral("cannot read member %1 of %2").arg(id).arg(database->GetPath());
        return false;
    }
    member = fromRecord(*record, fields);
    return true;
}

bool VMPAddMember(ndp::CDatabase* database, VMPMember& member, QString* error) {
    ndp::CDBTable* table = database ? database->GetTable(vmp_tables::member::table) : nullptr;
    if (!table) {
        if (error && database) *error = noTable(database, vmp_tables::member::table);
        return false;
    }
    const MemberFields f(*table);
    std::int64_t largest = 0;
    if (!table->GetMaxInt64(f.id, largest)) {
        if (error) *error = QStringLiteral("cannot read the members of %1: %2").arg(database->GetPath(), database->GetLastError());
        return false;
    }
    member.id = largest + 1;
    const ndp::CRef<ndp::CDBRecord> record(table->CreateRecord());
    record->SetInt64(f.id, member.id);
    record->SetString(f.section, member.section.toStdWString());
    const double values[] = {member.start[0], member.start[1], member.start[2],
                             member.end[0],   member.end[1],   member.end[2], member.roll};
    const int fieldsInOrder[] = {f.sx, f.sy, f.sz, f.ex, f.ey, f.ez, f.roll};
    for (int i = 0; i < 7; ++i) record->SetDouble(fieldsInOrder[i], values[i]);
    if (table->AddRecord(record.get()) == ndp::kNullAddress) {
        if (error) *error = QStringLiteral("cannot add a member to %1: %2").arg(database->GetPath(), database->GetLastError());
        return false;
    }
    return true;
}

bool VMPRemoveMember(ndp::CDatabase* database, std::int64_t id, QString* error) {
    ndp::CDBTable* table = database ? database->GetTable(vmp_tables::member::table) : nullptr;
    if (!table) {
        if (error && database) *error = noTable(database, vmp_tables::member::table);
        return false;
    }
    ndp::CFileAddressList rows;
    if (!rowsOf(table, vmp_tables::member::id, id, rows, error)) return false;
    if (rows.GetCount() == 0) {
        if (error) *error = QStringLiteral("%1 has no member %2").arg(database->GetPath()).arg(id);
        return false;
    }
    ndp::CDBTable* planes = database->GetTable(vmp_tables::cutting_plane::table);
    ndp::CFileAddressList planeRows;
    if (planes && !rowsOf(planes, vmp_tables::cutting_plane::element, id, planeRows, error)) return false;
    const auto fail = [&] {
        if (error) *error = QStringLiteral("cannot remove member %1 from %2: %3").arg(id).arg(database->GetPath(), database->GetLastError());
        return false;
    };
    for (int i = 0; i < planeRows.GetCount(); ++i)
        if (!planes->DeleteRecord(planeRows.GetItem(i))) return fail();
    for (int i = 0; i < rows.GetCount(); ++i)
        if (!table->DeleteRecord(rows.GetItem(i))) return fail();
    return true;
}

void VMPMemberElement::assign(const VMPMember& member) {
    const bool sameSolid = m_shapeBuilt && member.section == m_member.section && member.start == m_member.start &&
                           member.end == m_member.end && member.roll == m_member.roll;
    m_member = member;
    m_head = VMPMemberHeadFrame(member.start, member.end, member.roll);
    if (!sameSolid) {
        m_shape.reset();
        m_shapeBuilt = false;
    }
}

IVMPSolidShape* VMPMemberElement::getSolidShape() {
    if (!m_shapeBuilt && m_factory) m_shape = m_factory(m_member.section, m_member.length(), m_head);
    m_shapeBuilt = true;
    return m_shape.get();
}
