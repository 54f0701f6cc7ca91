// The library's project tables.
#include "section_data/SKRProjectSchema.h"

#include "vmp/VMPProjectModel.h"

namespace skr {
namespace section {
namespace schema {

namespace user_section {
const wchar_t* const table = L"CustomHotRolledSection";
const wchar_t* const sectionType = L"SectionType";
const wchar_t* const subId = L"SubID";
const wchar_t* const standardName = L"StandardName";
const wchar_t* const weightMeter = L"WeightMeter";
const wchar_t* const area = L"AreaVal";
const wchar_t* const params = L"SectionParam";
}  // namespace user_section

namespace custom_poly {
const wchar_t* const table = L"CustomPoly";
const wchar_t* const id = L"ID";
const wchar_t* const description = L"Description";
const wchar_t* const typeId = L"CustomPolyTypeID";
const wchar_t* const horzSpace = L"HorzSpace";
const wchar_t* const vertSpace = L"VertSpace";
const wchar_t* const insertPointX = L"InsertPointX";
const wchar_t* const insertPointY = L"InsertPointY";
const wchar_t* const polyData = L"PolyData";
const wchar_t* const drawing = L"VectorDrawingInfo";
const wchar_t* const typeName = L"TypeName";
}  // namespace custom_poly

namespace custom_poly_type {
const wchar_t* const table = L"CustomPolyType";
const wchar_t* const id = L"ID";
const wchar_t* const description = L"Description";
}  // namespace custom_poly_type

const std::vector<VMPTableDefinition>& projectTables() {
    using ndp::EnDBFieldKind;
    static const std::vector<VMPTableDefinition> tables = {
        {user_section::table,
         {{user_section::sectionType, EnDBFieldKind::Int32, true},
          {user_section::subId, EnDBFieldKind::Int32, true},
          {user_section::standardName, EnDBFieldKind::Text, true},
          {user_section::weightMeter, EnDBFieldKind::Double},
          {user_section::area, EnDBFieldKind::Double},
          {user_section::params, EnDBFieldKind::Text}}},
        {custom_poly::table,
         {{custom_poly::id, EnDBFieldKind::Int32, true},
          {custom_poly::description, EnDBFieldKind::Text},
          {custom_poly::typeId, EnDBFieldKind::Int32},
          {custom_poly::horzSpace, EnDBFieldKind::Text},
          {custom_poly::vertSpace, EnDBFieldKind::Text},
          {custom_poly::insertPointX, EnDBFieldKind::Double},
          {custom_poly::insertPointY, EnDBFieldKind::Double},
          {custom_poly::polyData, EnDBFieldKind::Polygon},
          {custom_poly::drawing, EnDBFieldKind::Stream},
          {custom_poly::typeName, EnDBFieldKind::Text}}},
        {custom_poly_type::table,
         {{custom_poly_type::id, EnDBFieldKind::Int32, true}, {custom_poly_type::description, EnDBFieldKind::Text}}},
    };
    return tables;
}

bool createProjectTables(ndp::CDatabase* database) {
    return database && vmp_tables::createTables(database, vmp_tables::modelTables()) &&
           vmp_tables::createTables(database, projectTables());
}

void registerProjectTables() { VMPProjectModel::registerProjectTables(projectTables()); }

namespace {
// Loading the library registers its tables, before any project is opened.
const bool kRegistered = (registerProjectTables(), true);
}  // namespace

}  // namespace schema
}  // namespace section
}  // namespace skr
