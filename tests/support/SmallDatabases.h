// Small databases that tests write for themselves: one record from a list of values, and the
// plate table of a system database.
#pragma once

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"

#include <gtest/gtest.h>

#include <QVariantList>

namespace bxqtest {

// One record of a table, each value set as its type: int, double, or text; an invalid value
// leaves its field empty.
inline void addRecord(ndp::CDBTable* table, const QVariantList& values) {
    ndp::CDBRecord* record = table->CreateRecord();
    for (int i = 0; i < values.size(); ++i) {
        if (values[i].userType() == QMetaType::Int) record->SetInt(i, values[i].toInt());
        else if (values[i].userType() == QMetaType::Double) record->SetDouble(i, values[i].toDouble());
        else if (values[i].isValid()) record->SetString(i, values[i].toString().toStdWString());
    }
    ASSERT_NE(table->AddRecord(record), ndp::kNullAddress);
    record->Release();
}

// A "FaceSteelInfo" table of class, thickness and weight rows in a new database at path.
inline void writePlates(const QString& path, const std::vector<QVariantList>& rows) {
    ndp::CDatabase db;
    ASSERT_TRUE(db.Create(path));
    ndp::CDBTable* table = db.CreateTable(L"FaceSteelInfo", {{L"Class", ndp::EnDBFieldKind::Int32, true},
                                                             {L"Thickness", ndp::EnDBFieldKind::Double},
                                                             {L"Weight", ndp::EnDBFieldKind::Double}});
    ASSERT_NE(table, nullptr);
    for (const QVariantList& row : rows) addRecord(table, row);
    ASSERT_TRUE(db.Flush());
}

}  // namespace bxqtest
