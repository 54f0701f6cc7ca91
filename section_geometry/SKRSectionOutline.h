// Section outlines of the section types as the section database stores them: loops of vertices
// written as outline text ("x,y,value,kind" records, ";" between records, "|||" between loops).
#pragma once

#include <QMap>
#include <QString>

namespace skr {
namespace geometry {

// The outline of a section type for the given parameter values (by parameter code), in
// millimetres, the origin at the bottom-left corner of the bounding box, x right, y up. The
// outer loop runs counter-clockwise and holes clockwise; round outlines are full circles.
// False, with the reason in error, for a type without an outline, a missing parameter or
// values that do not make a section (a web thicker than the flange is wide, ...).
bool sectionOutlineText(int sectionType, const QMap<QString, double>& params, QString& text,
                       QString* error = nullptr);

}  // namespace geometry
}  // namespace skr
