// The library's own tables in a project database: the user's hot-rolled sections and the custom
// polygon sections. Their names and fields are written here once; the library registers the
// tables with the model so that every project has them, and its providers read them by these names.
#pragma once

#include "vmp/VMPModelTables.h"

#include <vector>

namespace skr {
namespace section {
namespace schema {

namespace user_section {
extern const wchar_t* const table;
extern const wchar_t* const sectionType;
extern const wchar_t* const subId;
extern const wchar_t* const standardName;
extern const wchar_t* const weightMeter;
extern const wchar_t* const area;
extern const wchar_t* const params;
}  // namespace user_section

namespace custom_poly {
extern const wchar_t* const table;
extern const wchar_t* const id;
extern const wchar_t* const description;
extern const wchar_t* const typeId;
extern const wchar_t* const horzSpace;
extern const wchar_t* const vertSpace;
extern const wchar_t* const insertPointX;
extern const wchar_t* const insertPointY;
extern const wchar_t* const polyData;
extern const wchar_t* const drawing;
extern const wchar_t* const typeName;
}  // namespace custom_poly

namespace custom_poly_type {
extern const wchar_t* const table;
extern const wchar_t* const id;
extern const wchar_t* const description;
}  // namespace custom_poly_type

// The library's project tables with their fields.
const std::vector<VMPTableDefinition>& projectTables();
// Creates the model's tables and the library's in database where missing (a project made outside
// a model, e.g. a copy to repair); false at the first that cannot be made.
bool createProjectTables(ndp::CDatabase* database);
// Registers the library's tables with the model (done once when the library is loaded; repeating
// it changes nothing).
void registerProjectTables();

}  // namespace schema
}  // namespace section
}  // namespace skr
