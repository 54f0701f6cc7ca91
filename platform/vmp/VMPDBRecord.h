// VMPDBRecord: a by-name view of one table row, with a default for every read.
#pragma once

#include "PlatformGlobal.h"
#include "ndp/NDPCoord3.h"
#include "ndp/NDPFileAddressList.h"

#include <QString>

namespace ndp {
class CDBRecord;
class CDBTable;
}  // namespace ndp

class BXQPLATFORM_EXPORT VMPDBRecord {
public:
    VMPDBRecord(ndp::CDBTable* table, ndp::CFileAddress address);
    ~VMPDBRecord();
    VMPDBRecord(const VMPDBRecord&) = delete;
    VMPDBRecord& operator=(const VMPDBRecord&) = delete;

    // False when the table has no record at the address.
    bool isValid() const { return m_record != nullptr; }

    int getInteger(const QString& field, int def) const;
    qint64 getInteger64(const QString& field, qint64 def) const;
    double getDouble(const QString& field, double def) const;
    bool getBool(const QString& field, bool def) const;
    QString getString(const QString& field, const QString& def) const;
    ndp::CCoord3 getCoord3(const QString& field, const ndp::CCoord3& def) const;

private:
    int fieldIndex(const QString& field) const;

    ndp::CDBTable* m_table;
    ndp::CDBRecord* m_record;
};
