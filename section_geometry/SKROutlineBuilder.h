// Outline loops from corner points: each corner may be rounded by a fillet, and the loop comes out
// as lines and tangent arcs, written as outline text ("x,y,value,kind" records).
#pragma once

#include <QString>
#include <QVector>

namespace skr {
namespace geometry {

// A corner of an outline loop and the radius of the fillet that rounds it (0: a sharp corner).
struct SKROutlineCorner {
    double x = 0.0;
    double y = 0.0;
    double radius = 0.0;
};

// A vertex of an outline loop with the segment that starts there, as one record of outline text:
// kind 0 a line to the next vertex, kind 1 to 4 an arc of that kernel arc type and radius value.
struct SKROutlineVertex {
    double x = 0.0;
    double y = 0.0;
    double value = 0.0;
    int kind = 0;
};

// Turns a closed list of corners (the last joins the first; either turning sense) into the
// vertices of lines and arcs. A filleted corner that turns the outline through theta is cut back
// by radius * tan(theta / 2) along both of its edges, and a minor arc of that radius joins the two
// cut points tangentially: counter-clockwise (type 1) where the outline turns left, clockwise
// (type 2) where it turns right, so convex and concave corners are both rounded. A fillet on a
// corner where the outline runs straight on is dropped.
// False, with the reason and the corner in error, and loop unchanged, for fewer than three
// corners, a corner on top of the next, a radius that is negative or not finite, a fillet on a
// corner where the outline folds back on itself, or fillets that need more of an edge than it has.
bool filletCorners(const QVector<SKROutlineCorner>& corners, QVector<SKROutlineVertex>& loop,
                   QString* error = nullptr);

// The kind of a loop's only record that makes the loop a full circle about (x, y) of radius value.
constexpr int kOutlineCircleKind = 50;
// What separates the loops of an outline text.
constexpr const char* kOutlineLoopSeparator = "|||";

using SKROutlineLoop = QVector<SKROutlineVertex>;

// An outline as the library passes it around: its loops, the outer one first (a loop of one
// vertex of kind kOutlineCircleKind is a full circle). Text is only for the databases.
struct SKROutline {
    QVector<SKROutlineLoop> loops;
};

// A full circle as a loop.
SKROutlineLoop outlineCircle(double centreX, double centreY, double radius);
// One loop as outline text: the records joined by ";".
QString outlineLoopText(const SKROutlineLoop& loop);
// A full-circle loop as outline text: "x,y,radius,50".
QString outlineCircleText(double centreX, double centreY, double radius);
// The outline as text: the loops joined by "|||".
QString outlineText(const SKROutline& outline);

}  // namespace geometry
}  // namespace skr
