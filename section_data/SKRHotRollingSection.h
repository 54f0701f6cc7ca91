// SKRHotRollingSection: one hot-rolled catalogue row, system or user, exchanged by value.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace skr {
namespace section {

struct SKRHotRollingSection {
    std::int32_t sectionType = -1;
    std::int32_t subId = 0;
    std::wstring standardName;
    double weightMeter = 0.0;  // kg/m
    double area = 0.0;         // surface per metre, m2/m
    std::vector<std::pair<std::wstring, double>> params;  // in the order they were read
};

// A look-up result: whether the row was found, and the row (empty when not).
using SKRHotRollingLookup = std::pair<bool, SKRHotRollingSection>;

}  // namespace section
}  // namespace skr
