// SKROutlineCheck: whether a section polygon is an outline that figures and solids may be made
// from. The stored text stays readable whatever it holds; this says what is wrong with it.
#pragma once

#include <QString>

namespace ndp {
class CPolygon;
}

namespace skr {
namespace geometry {

// The largest coordinate of an outline, in millimetres (the bound of a section's dimensions).
constexpr double kMaxOutlineCoordinate = 1e6;

// True for a polygon whose figures are finite and whose loops enclose one region: every point
// finite and within kMaxOutlineCoordinate, every loop closed round an area without crossing or
// touching itself, every hole inside the outer loop, no two holes crossing or one inside the
// other. Otherwise false, with where saying which loop is wrong and near which point, in one line.
bool checkSectionOutline(const ndp::CPolygon& polygon, QString* where);

}  // namespace geometry
}  // namespace skr
