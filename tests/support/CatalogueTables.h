// Field lists of the catalogue tables as the shipped and project databases have them, for tests
// that build small catalogues of their own.
#pragma once

#include "section_data/SKRProjectSchema.h"
#include "ndp/NDPDBField.h"

#include <vector>

namespace bxqtest {

// "SectionPolyInfor" with the parameter columns h, b, d, t.
inline std::vector<ndp::CDBField> systemCatalogueFields() {
    using ndp::EnDBFieldKind;
    return {{L"PolyID", EnDBFieldKind::Int32, true}, {L"SubClassID", EnDBFieldKind::Int32, true},
            {L"StandardName", EnDBFieldKind::Text, true}, {L"WeightMeter", EnDBFieldKind::Double},
            {L"AreaVal", EnDBFieldKind::Double}, {L"h", EnDBFieldKind::Text},
            {L"b", EnDBFieldKind::Text}, {L"d", EnDBFieldKind::Text},
            {L"t", EnDBFieldKind::Text}};
}

// "CustomHotRolledSection" of a project.
// The fields of the project's user-section table, as the library's schema defines them.
inline std::vector<ndp::CDBField> userCatalogueFields() {
    for (const VMPTableDefinition& table : skr::section::schema::projectTables())
        if (table.first == skr::section::schema::user_section::table) return table.second;
    return {};
}

}  // namespace bxqtest
