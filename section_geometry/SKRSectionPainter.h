// Drawing section outlines with QPainter: the outline as a painter path, fitted into a picture
// with the y axis up; the thumbnail of a section type (its shape alone) and its dimensioned
// drawing, whose parameter codes are written where each parameter acts (the section pictures of
// the section dialog).
#pragma once

#include "plugin/BXQExtendGlobal.h"

#include <QImage>
#include <QMap>
#include <QPainterPath>
#include <QRectF>
#include <QStringList>
#include <QTransform>
#include <QVector>

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

// The section as a designer reads it, in model units (y up): a tapered type (17 to 21) as its two
// end sections side by side at one scale, the first end left, centred on one axis; any other type
// as its outline. An empty path, with the reason, when the values make no outline.
BXQEXTEND_EXPORT QPainterPath sectionPicturePath(int sectionType, const QMap<QString, double>& values,
                                                 QString* error = nullptr);

// The shape alone (sectionPicturePath), as large as size allows, on a transparent ground: the
// thumbnail of a type in the dialog's type list. A null image, with the reason, when the values
// make no outline.
BXQEXTEND_EXPORT QImage sectionThumbnail(int sectionType, const QMap<QString, double>& values, const QSize& size,
                                         QString* error = nullptr);

// One parameter code written on a dimensioned drawing: its tag (pixels) and the point it names.
struct SKRDrawingLabel {
    QString code;
    QRectF box;
    QPointF anchor;
};

// A dimensioned drawing with where its parts went, so that their placement can be checked.
struct SKRSectionDrawing {
    QImage image;
    QPainterPath steel;  // the section as filled, in pixels
    QVector<SKRDrawingLabel> labels;
};

// A dimensioned drawing of the type for the values (sectionPicturePath): the overall width above
// each shape and its height beside it with their codes, and every other code on a tag clear of
// the steel and of the other tags, led by a line to where the parameter acts (found by growing
// each parameter a little and seeing which outline points move; one that moves nothing, a zero
// radius, gets no tag). A null image, with the reason, when the values make no outline.
BXQEXTEND_EXPORT SKRSectionDrawing drawSection(int sectionType, const QMap<QString, double>& values,
                                               const QStringList& codes, const QSize& size, QString* error = nullptr);
// The image of drawSection.
BXQEXTEND_EXPORT QImage sectionDrawing(int sectionType, const QMap<QString, double>& values, const QStringList& codes,
                                       const QSize& size, QString* error = nullptr);

}  // namespace geometry
}  // namespace skr
