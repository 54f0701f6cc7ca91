// SQL text of the engine's own: identifiers quoted for SQLite.
#pragma once

#include <QString>

#include <set>
#include <string>
#include <vector>

namespace ndp {

// A table or field name as a quoted SQLite identifier (inner quotes doubled).
inline std::string sqlIdentifier(const std::wstring& name) {
    const std::string utf8 = QString::fromStdWString(name).toStdString();
    std::string out = "\"";
    for (char c : utf8) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + "\"";
}

// The quoted SQLite column of every field, in field order. SQLite compares identifiers without
// regard to ASCII case while field names are case-sensitive ("B" and "b" are two parameters), so
// a name that repeats an earlier one, or the engine's own row-address column, in another case is
// stored under the name with "#" and its field index appended. Derived from the field list alone,
// so reopening a file finds the same columns.
template <typename Fields>
std::vector<std::string> sqlColumns(const Fields& fields) {
    std::vector<std::string> columns;
    std::set<QString> taken{QStringLiteral("kdb_addr")};
    for (size_t i = 0; i < fields.size(); ++i) {
        const std::wstring name = fields[i].GetName();
        const QString folded = QString::fromStdWString(name).toLower();
        columns.push_back(taken.insert(folded).second ? sqlIdentifier(name)
                                                      : sqlIdentifier(name + L"#" + std::to_wstring(i)));
    }
    return columns;
}

}  // namespace ndp
