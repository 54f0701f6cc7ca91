// The query expressions a table accepts, turned into field tests with bound values.
#pragma once

#include <QString>

#include <cstdint>
#include <string>
#include <vector>

namespace ndp {

class CDBTable;

struct NDPQueryTerm {
    int field = -1;
    bool isText = false;
    std::int64_t number = 0;
    QString text;
};

// Parses "F==1", "F==1 && G==2", "F == 1", "F == 1 && G == 2" (integer fields) and
// SameString(F,"text") (a text field; the text runs to the closing "\")" as written).
// False for any other expression or a field the table lacks.
bool parseQueryExpression(const std::wstring& expression, const CDBTable& table, std::vector<NDPQueryTerm>& terms);

}  // namespace ndp
