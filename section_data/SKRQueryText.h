// The query texts the library gives the database's query facility, built in this one place. The
// forms are fixed by the database layer's users (tests and logs compare them as text), so each has
// its own function rather than callers joining fields and values themselves.
#pragma once

#include <cstdint>
#include <string>

namespace skr {
namespace section {
namespace query {

// "ID==7": one integer field equal to a value, no blanks.
std::wstring fieldEquals(const std::wstring& field, std::int64_t value);
// "SectionType==3 && SubID==2": two integer fields, blanks only around "&&".
std::wstring fieldsEqual(const std::wstring& first, std::int64_t firstValue, const std::wstring& second,
                         std::int64_t secondValue);
// "PolyID == 1 && SubClassID == 3": the key fields of a hot-rolled table, blanks around "==" too;
// the second part only when there is a second key field.
std::wstring keyFieldsEqual(const std::wstring& first, std::int64_t firstValue, const std::wstring& second,
                            std::int64_t secondValue);
// "SameString(StandardName,"I20a")": string equality, the text inserted as it is.
std::wstring sameString(const std::wstring& field, const std::wstring& text);

}  // namespace query
}  // namespace section
}  // namespace skr
