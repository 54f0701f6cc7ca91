// Query texts of the library.
#include "section_data/SKRQueryText.h"

namespace skr {
namespace section {
namespace query {

std::wstring fieldEquals(const std::wstring& field, std::int64_t value) {
    return field + L"==" + std::to_wstring(value);
}

std::wstring fieldsEqual(const std::wstring& first, std::int64_t firstValue, const std::wstring& second,
                         std::int64_t secondValue) {
    return fieldEquals(first, firstValue) + L" && " + fieldEquals(second, secondValue);
}

std::wstring keyFieldsEqual(const std::wstring& first, std::int64_t firstValue, const std::wstring& second,
                            std::int64_t secondValue) {
    std::wstring text = first + L" == " + std::to_wstring(firstValue);
    if (!second.empty()) text += L" && " + second + L" == " + std::to_wstring(secondValue);
    return text;
}

std::wstring sameString(const std::wstring& field, const std::wstring& text) {
    static const std::wstring kOpen = L"SameString(";
    std::wstring query;
    query.reserve(kOpen.size() + field.size() + text.size() + 4);
    query.append(kOpen).append(field).append(L",\"").append(text).append(L"\")");
    return query;
}

}  // namespace query
}  // namespace section
}  // namespace skr
