// SQL text of the engine's own: identifiers quoted for SQLite.
#pragma once

#include <QString>

#include <string>

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

}  // namespace ndp
