// Outline text to kernel polygon: loops separated by "|||", vertex records by ";", record fields
// (x, y, value, kind) by ","; the outer loop and the holes brought to opposite turning senses.
#pragma once

#include <QString>

#include <memory>

namespace ndp {
class CLoop;
class CPolygon;
}  // namespace ndp

namespace skr {
namespace geometry {

// The polygon of an outline text; null when no loop could be built.
std::unique_ptr<ndp::CPolygon> ParseSectionPolygon(const QString& text);
// One loop, counter-clockwise when outer and clockwise when a hole (a loop of zero area is left
// as written); null when its first record is empty.
std::unique_ptr<ndp::CLoop> ParseLoop(const QString& loopText, bool isOuter);

}  // namespace geometry
}  // namespace skr
