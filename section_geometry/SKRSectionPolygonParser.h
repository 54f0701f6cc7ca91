// Outline text to outline and kernel polygon: loops separated by "|||", vertex records by ";",
// record fields (x, y, value, kind) by ","; the outer loop and the holes brought to opposite
// turning senses.
#pragma once

#include "section_geometry/SKROutlineBuilder.h"

#include <QString>

#include <memory>

namespace ndp {
class CLoop;
class CPolygon;
}  // namespace ndp

namespace skr {
namespace geometry {

// The outline of a text. False, with where and why in error ("loop 2, record 3: ..."), for a text
// with an empty loop, a field that is no number or a kind that is no segment; outline is then
// what could be read (bad numbers as 0, unknown kinds kept).
bool parseOutlineText(const QString& text, SKROutline& outline, QString* error = nullptr);
// The kernel polygon of an outline: loops of lines and arcs, unknown segment kinds left as gaps,
// the first loop counter-clockwise and the others clockwise; null without a loop.
std::unique_ptr<ndp::CPolygon> outlinePolygon(const SKROutline& outline);

// The polygon of a stored outline text, drawn as well as it can be (stored outlines are never
// refused); null when no loop could be built.
std::unique_ptr<ndp::CPolygon> ParseSectionPolygon(const QString& text);
// One loop, counter-clockwise when outer and clockwise when a hole (a loop of zero area is left
// as written); null when its first record is empty.
std::unique_ptr<ndp::CLoop> ParseLoop(const QString& loopText, bool isOuter);

}  // namespace geometry
}  // namespace skr
