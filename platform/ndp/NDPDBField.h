// CDBField: the definition of one field of a database table (name, kind, whether it is a key).
#pragma once

#include "PlatformGlobal.h"

#include <string>

namespace ndp {

enum class EnDBFieldKind : int {
    Int32 = 1,
    Int64 = 2,
    Double = 3,
    Text = 4,
    Bool = 5,
    Coord3 = 6,   // a frame: origin and three axes
    Polygon = 7,  // a CPolygon of lines and arcs
    Stream = 8,   // opaque bytes
};

class BXQPLATFORM_EXPORT CDBField {
public:
    CDBField() = default;
    // A key field is searched by Find/Search/Query and gets an index.
    CDBField(std::wstring name, EnDBFieldKind kind, bool key = false)
        : m_name(std::move(name)), m_kind(kind), m_key(key) {}

    const std::wstring& GetName() const { return m_name; }
    EnDBFieldKind GetKind() const { return m_kind; }
    bool IsKey() const { return m_key; }

private:
    std::wstring m_name;
    EnDBFieldKind m_kind = EnDBFieldKind::Text;
    bool m_key = false;
};

}  // namespace ndp
