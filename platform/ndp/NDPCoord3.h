// CCoord3: a 3D frame (origin and X, Y, Z axes) as stored in a coordinate field.
#pragma once

#include <array>

namespace ndp {

struct CCoord3 {
    std::array<double, 3> origin{0, 0, 0};
    std::array<double, 3> xAxis{1, 0, 0};
    std::array<double, 3> yAxis{0, 1, 0};
    std::array<double, 3> zAxis{0, 0, 1};

    bool operator==(const CCoord3& o) const {
        return origin == o.origin && xAxis == o.xAxis && yAxis == o.yAxis && zAxis == o.zAxis;
    }
};

}  // namespace ndp
