// VMPDBRecord: by-name reads of one table row.
#include "vmp/VMPDBRecord.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"

VMPDBRecord::VMPDBRecord(ndp::CDBTable* table, ndp::CFileAddress address)
    : m_table(table), m_record(table ? table->GetRecord(address) : nullptr) {}

VMPDBRecord::~VMPDBRecord() {
    if (m_record) m_record->Release();
}

int VMPDBRecord::fieldIndex(const QString& field) const {
    return m_record ? m_table->FindField(field.toStdWString()) : -1;
}

int VMPDBRecord::getInteger(const QString& field, int def) const {
    const int index = fieldIndex(field);
    return index < 0 ? def : m_record->GetInt(index, def);
}

qint64 VMPDBRecord::getInteger64(const QString& field, qint64 def) const {
    const int index = fieldIndex(field);
    return index < 0 ? def : m_record->GetInt64(index, def);
}

double VMPDBRecord::getDouble(const QString& field, double def) const {
    const int index = fieldIndex(field);
    return index < 0 ? def : m_record->GetDouble(index, def);
}

bool VMPDBRecord::getBool(const QString& field, bool def) const {
    const int index = fieldIndex(field);
    return index < 0 ? def : m_record->GetBool(index, def);
}

QString VMPDBRecord::getString(const QString& field, const QString& def) const {
    const int index = fieldIndex(field);
    return index < 0 || m_record->IsNull(index) ? def : QString::fromStdWString(m_record->GetString(index, def.toStdWString()));
}

ndp::CCoord3 VMPDBRecord::getCoord3(const QString& field, const ndp::CCoord3& def) const {
    const int index = fieldIndex(field);
    return index < 0 ? def : m_record->GetCoord3(index, def);
}
