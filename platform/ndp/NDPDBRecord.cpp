// CDBRecord: typed access to the values of one row.
#include "ndp/NDPDBRecord.h"

#include "ndp/NDPDBTable.h"
#include "ndp/NDPPolygon.h"

#include <QDataStream>

namespace ndp {
namespace {

QByteArray packCoord(const CCoord3& c) {
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    for (const auto* axis : {&c.origin, &c.xAxis, &c.yAxis, &c.zAxis})
        for (double v : *axis) out << v;
    return bytes;
}

bool unpackCoord(const QByteArray& bytes, CCoord3& c) {
    if (bytes.size() != 12 * static_cast<int>(sizeof(double))) return false;
    QDataStream in(bytes);
    in.setByteOrder(QDataStream::LittleEndian);
    for (auto* axis : {&c.origin, &c.xAxis, &c.yAxis, &c.zAxis})
        for (double& v : *axis) in >> v;
    return in.status() == QDataStream::Ok;
}

}  // namespace

CDBRecord::CDBRecord(CDBTable* table, CFileAddress address, std::vector<QVariant> values)
    : m_table(table), m_address(address), m_values(std::move(values)) {}

void CDBRecord::Release() {
    if (--m_refCount == 0) delete this;
}

bool CDBRecord::kindIs(int field, int kind) const {
    return field >= 0 && field < GetFieldCount() && static_cast<int>(m_table->GetField(field).GetKind()) == kind;
}

bool CDBRecord::IsNull(int field) const {
    return field < 0 || field >= GetFieldCount() || !m_values[static_cast<size_t>(field)].isValid();
}

#define NDP_KIND(k) static_cast<int>(EnDBFieldKind::k)

std::int32_t CDBRecord::GetInt(int field, std::int32_t def) const {
    if (IsNull(field) || !(kindIs(field, NDP_KIND(Int32)) || kindIs(field, NDP_KIND(Int64)) || kindIs(field, NDP_KIND(Bool))))
        return def;
    return static_cast<std::int32_t>(m_values[static_cast<size_t>(field)].toLongLong());
}

std::int64_t CDBRecord::GetInt64(int field, std::int64_t def) const {
    if (IsNull(field) || !(kindIs(field, NDP_KIND(Int32)) || kindIs(field, NDP_KIND(Int64)) || kindIs(field, NDP_KIND(Bool))))
        return def;
    return m_values[static_cast<size_t>(field)].toLongLong();
}

double CDBRecord::GetDouble(int field, double def) const {
    if (IsNull(field) || !kindIs(field, NDP_KIND(Double))) return def;
    return m_values[static_cast<size_t>(field)].toDouble();
}

bool CDBRecord::GetBool(int field, bool def) const {
    if (IsNull(field) || !(kindIs(field, NDP_KIND(Bool)) || kindIs(field, NDP_KIND(Int32)))) return def;
    return m_values[static_cast<size_t>(field)].toLongLong() != 0;
}

std::wstring CDBRecord::GetString(int field, const std::wstring& def) const {
    if (IsNull(field) || !kindIs(field, NDP_KIND(Text))) return def;
    return m_values[static_cast<size_t>(field)].toString().toStdWString();
}

CCoord3 CDBRecord::GetCoord3(int field, const CCoord3& def) const {
    CCoord3 c;
    if (IsNull(field) || !kindIs(field, NDP_KIND(Coord3)) || !unpackCoord(m_values[static_cast<size_t>(field)].toByteArray(), c))
        return def;
    return c;
}

QByteArray CDBRecord::GetBytes(int field) const {
    if (IsNull(field) || !(kindIs(field, NDP_KIND(Polygon)) || kindIs(field, NDP_KIND(Stream)))) return {};
    return m_values[static_cast<size_t>(field)].toByteArray();
}

bool CDBRecord::SetInt(int field, std::int32_t value) {
    if (!(kindIs(field, NDP_KIND(Int32)) || kindIs(field, NDP_KIND(Int64)))) return false;
    m_values[static_cast<size_t>(field)] = QVariant(static_cast<qlonglong>(value));
    return true;
}

bool CDBRecord::SetInt64(int field, std::int64_t value) {
    if (!kindIs(field, NDP_KIND(Int64))) return false;
    m_values[static_cast<size_t>(field)] = QVariant(static_cast<qlonglong>(value));
    return true;
}

bool CDBRecord::SetDouble(int field, double value) {
    if (!kindIs(field, NDP_KIND(Double))) return false;
    m_values[static_cast<size_t>(field)] = QVariant(value);
    return true;
}

bool CDBRecord::SetBool(int field, bool value) {
    if (!kindIs(field, NDP_KIND(Bool))) return false;
    m_values[static_cast<size_t>(field)] = QVariant(value);
    return true;
}

bool CDBRecord::SetString(int field, const std::wstring& value) {
    if (!kindIs(field, NDP_KIND(Text))) return false;
    m_values[static_cast<size_t>(field)] = QVariant(QString::fromStdWString(value));
    return true;
}

bool CDBRecord::SetCoord3(int field, const CCoord3& value) {
    if (!kindIs(field, NDP_KIND(Coord3))) return false;
    m_values[static_cast<size_t>(field)] = QVariant(packCoord(value));
    return true;
}

bool CDBRecord::SetBytes(int field, const QByteArray& value) {
    if (!(kindIs(field, NDP_KIND(Polygon)) || kindIs(field, NDP_KIND(Stream)))) return false;
    m_values[static_cast<size_t>(field)] = QVariant(value);
    return true;
}

bool CDBRecord::SetPolygon(int field, const CPolygon& polygon) {
    if (!kindIs(field, NDP_KIND(Polygon))) return false;
    m_values[static_cast<size_t>(field)] = QVariant(polygon.ToBytes());
    return true;
}

bool CDBRecord::GetPolygon(int field, CPolygon& out) const {
    if (IsNull(field) || !kindIs(field, NDP_KIND(Polygon))) return false;
    return CPolygon::FromBytes(m_values[static_cast<size_t>(field)].toByteArray(), out);
}

#undef NDP_KIND

}  // namespace ndp
