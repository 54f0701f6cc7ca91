// A "FaceSteelInfo" table as the system database has it, and its rows, for the face-steel tests.
#pragma once

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"

inline ndp::CDBTable* createFaceSteelTable(ndp::CDatabase& db) {
    using ndp::EnDBFieldKind;
    return db.CreateTable(L"FaceSteelInfo", {{L"Class", EnDBFieldKind::Int32, true},
                                             {L"Thickness", EnDBFieldKind::Double},
                                             {L"Weight", EnDBFieldKind::Double}});
}

inline void addPlate(ndp::CDBTable* table, int cls, double thickness, double weight) {
    ndp::CDBRecord* record = table->CreateRecord();
    record->SetInt(0, cls);
    record->SetDouble(1, thickness);
    record->SetDouble(2, weight);
    table->AddRecord(record);
    record->Release();
}
