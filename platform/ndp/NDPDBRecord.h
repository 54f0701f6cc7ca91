// CDBRecord: the field values of one table row, read from or to be written to its table.
// Reference counted: a record handed out by a table starts at one and is Release()d after use.
#pragma once

#include "PlatformGlobal.h"
#include "ndp/NDPCoord3.h"
#include "ndp/NDPFileAddressList.h"

#include <QByteArray>
#include <QVariant>

#include <string>
#include <vector>

namespace ndp {

class CDBTable;
class CPolygon;

class BXQPLATFORM_EXPORT CDBRecord {
public:
    void AddRef() { ++m_refCount; }
    void Release();

    CDBTable* GetTable() const { return m_table; }
    CFileAddress GetAddress() const { return m_address; }
    int GetFieldCount() const { return static_cast<int>(m_values.size()); }
    bool IsNull(int field) const;

    // Typed reads; a null value, a field out of range or another kind gives the default.
    std::int32_t GetInt(int field, std::int32_t def = 0) const;
    std::int64_t GetInt64(int field, std::int64_t def = 0) const;
    double GetDouble(int field, double def = 0.0) const;
    bool GetBool(int field, bool def = false) const;
    std::wstring GetString(int field, const std::wstring& def = std::wstring()) const;
    CCoord3 GetCoord3(int field, const CCoord3& def = CCoord3()) const;
    QByteArray GetBytes(int field) const;  // polygon and stream fields

    // Typed writes; false when the field is out of range or of another kind.
    bool SetInt(int field, std::int32_t value);
    bool SetInt64(int field, std::int64_t value);
    bool SetDouble(int field, double value);
    bool SetBool(int field, bool value);
    bool SetString(int field, const std::wstring& value);
    bool SetCoord3(int field, const CCoord3& value);
    bool SetBytes(int field, const QByteArray& value);

    // Polygon fields only: false for another kind, and on reading for a null or unreadable value
    // (out is then unchanged).
    bool SetPolygon(int field, const CPolygon& polygon);
    bool GetPolygon(int field, CPolygon& out) const;

private:
    friend class CDBTable;
    CDBRecord(CDBTable* table, CFileAddress address, std::vector<QVariant> values);
    ~CDBRecord() = default;
    bool kindIs(int field, int kind) const;

    CDBTable* m_table;
    CFileAddress m_address;
    std::vector<QVariant> m_values;
    int m_refCount = 1;
};

}  // namespace ndp
