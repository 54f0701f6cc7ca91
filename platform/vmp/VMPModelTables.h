// The model's own tables in a project database: members, their cutting planes and solid shapes.
// Their names and fields are written here once; the model creates them, the library reads them.
#pragma once

#include "PlatformGlobal.h"
#include "ndp/NDPDBField.h"

#include <string>
#include <utility>
#include <vector>

namespace ndp {
class CDatabase;
}

// A table as created: its name and fields in order.
using VMPTableDefinition = std::pair<std::wstring, std::vector<ndp::CDBField>>;

namespace vmp_tables {

namespace member {
constexpr const wchar_t* table = L"Member";
constexpr const wchar_t* id = L"ID";
constexpr const wchar_t* section = L"Section";
constexpr const wchar_t* startX = L"StartX";
constexpr const wchar_t* startY = L"StartY";
constexpr const wchar_t* startZ = L"StartZ";
constexpr const wchar_t* endX = L"EndX";
constexpr const wchar_t* endY = L"EndY";
constexpr const wchar_t* endZ = L"EndZ";
constexpr const wchar_t* roll = L"Roll";
}  // namespace member

namespace cutting_plane {
constexpr const wchar_t* table = L"CuttingPlane";
constexpr const wchar_t* id = L"ID";
constexpr const wchar_t* element = L"EDOID";
constexpr const wchar_t* solidShape = L"SNID";
constexpr const wchar_t* isTail = L"IsTail";
constexpr const wchar_t* localCoordinate = L"LocalCoordinate";
constexpr const wchar_t* offset = L"OffsetValue";
}  // namespace cutting_plane

namespace solid_shape {
constexpr const wchar_t* table = L"SNSolidShape";
constexpr const wchar_t* id = L"ID";
constexpr const wchar_t* target = L"TargetID";
constexpr const wchar_t* type = L"Type";
constexpr const wchar_t* length = L"Length";
constexpr const wchar_t* localCoord = L"LocalCoord";
}  // namespace solid_shape

// The model tables with their fields, as a new project gets them.
BXQPLATFORM_EXPORT const std::vector<VMPTableDefinition>& modelTables();
// Creates every table of definitions that database lacks; false at the first that cannot be made.
BXQPLATFORM_EXPORT bool createTables(ndp::CDatabase* database, const std::vector<VMPTableDefinition>& definitions);

}  // namespace vmp_tables
