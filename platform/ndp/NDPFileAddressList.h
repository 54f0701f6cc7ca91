// Record addresses: where a record lives in its table, and ordered lists of them.
#pragma once

#include "PlatformGlobal.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ndp {

using CFileAddress = std::int64_t;
constexpr CFileAddress kNullAddress = 0;

class BXQPLATFORM_EXPORT CFileAddressList {
public:
    int GetCount() const { return static_cast<int>(m_items.size()); }
    CFileAddress GetItem(int index) const { return m_items.at(static_cast<size_t>(index)); }
    void Add(CFileAddress address) { m_items.push_back(address); }
    void RemoveAll() { m_items.clear(); }

private:
    std::vector<CFileAddress> m_items;
};

}  // namespace ndp
