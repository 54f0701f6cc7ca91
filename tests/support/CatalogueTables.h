// Field lists of the catalogue tables as the shipped and project databases have them, for tests
// that build small catalogues of their own.
#pragma once

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
inline std::vector<ndp::CDBField> userCatalogueFields() {
    using ndp::EnDBFieldKind;
    return {{L"SectionType", EnDBFieldKind::Int32, true}, {L"SubID", EnDBFieldKind::Int32, true},
            {L"StandardName", EnDBFieldKind::Text, true}, {L"WeightMeter", EnDBFieldKind::Double},
            {L"AreaVal", EnDBFieldKind::Double}, {L"SectionParam", EnDBFieldKind::Text}};
}

}  // namespace bxqtest
