// Drawing section outlines with QPainter: the outline as a painter path, fitted into a picture
// with the y axis up, and the dimensioned drawing of a section type whose parameter codes are
// written where each parameter acts (the section pictures of the section dialog).
#pragma once

#include "plugin/BXQExtendGlobal.h"

#include <QImage>
#include <QMap>
#include <QPainterPath>
#include <QRectF>
#include <QStringList>
#include <QTransform>

class QPainter;
namespace ndp {
class CPolygon;
}

namespace skr {
namespace geometry {

// Every loop of the polygon as one closed subpath, in the polygon's own units and axes (y up);
// arcs stay true arcs, full circles included.
BXQEXTEND_EXPORT QPainterPath sectionPath(const ndp::CPolygon& polygon);

// The uniform scaling that fits box (model units, y up) centred into target (pixels, y down).
BXQEXTEND_EXPORT QTransform fitTransform(const QRectF& box, const QRectF& target);

// The outline filled and stroked into target, fitted and centred, y up.
BXQEXTEND_EXPORT void paintSection(QPainter& painter, const QPainterPath& path, const QRectF& target);

// A dimensioned drawing of the type for the values: the outline, the overall width above it and
// the height left of it with their codes, and the other codes written where they act (found by
// growing each parameter a little and seeing which outline points move; one that moves nothing,
// a zero radius, gets no label). A null image, with the reason, when the values make no outline.
BXQEXTEND_EXPORT QImage sectionDrawing(int sectionType, const QMap<QString, double>& values, const QStringList& codes,
                                       const QSize& size, QString* error = nullptr);

}  // namespace geometry
}  // namespace skr
