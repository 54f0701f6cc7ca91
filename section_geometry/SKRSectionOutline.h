// Section outlines of the section types as the section database stores them: loops of lines and
// arcs written as outline text ("x,y,value,kind" records, ";" between records, "|||" between
// loops), with the fillets, toe radii, bends and corner radii of the rolled and cold-formed shapes.
#pragma once

#include "section_geometry/SKROutlineBuilder.h"

#include <QMap>
#include <QString>
#include <QStringList>

namespace skr {
namespace geometry {

// Weight per metre of a steel section per mm2 of its area (7850 kg/m3): kg/m per mm2.
constexpr double kSteelKgPerMetrePerMm2 = 0.00785;
// Flange slopes of hot-rolled I-beams and channels: the inner face rises 1 in 6 and 1 in 10.
constexpr double kIBeamFlangeSlope = 1.0 / 6;
constexpr double kChannelFlangeSlope = 1.0 / 10;
// Outer corner radius of a cold-formed hollow section by its wall thickness.
inline double hollowCornerRadius(double t) { return t <= 6 ? 2 * t : t <= 10 ? 2.5 * t : 3 * t; }

// The outline of a section type for the given parameter values (by parameter code), in
// millimetres, the origin at the bottom-left corner of the bounding box, x right, y up. The
// outer loop runs counter-clockwise and holes clockwise; round outlines are full circles.
//
// Radii, each optional (absent or 0: a sharp corner, unless a rule below gives one):
// - I-beams (1) and channels (2): inner flange faces sloped 1:6 and 1:10, the flange thickness t
//   measured halfway along the outstand; root radius "r" and toe radius "r1".
// - Angles (3, 4): root radius "r"; toe radius d / 3 at the inner edge of both leg ends.
// - Hot-rolled H (7) and T (10): root radius "r".
// - Cold-formed C (8) and Z (9): bends of inner radius "r" (2t when absent), outer radius r + t.
// - Hollow sections (1011): inner corner radius "r", outer r + t; when absent the outer radius
//   is 2t for t <= 6, 2.5t for t <= 10 and 3t beyond, the inner one that less t.
// Welded types (11 to 21) are drawn from their plates with sharp corners; tapered ones (17 to 21)
// at their deeper or larger end. The elliptic tube (21) is drawn as two ovals of four tangent
// arcs each, with the axes and the area of the true ellipses (its perimeter is long by 0.18 % at
// an axis ratio of 1.5, 0.45 % at 2 and 0.84 % at 3).
// False, with the reason in error and text unchanged, for a type without an outline, a missing
// parameter, values that do not make a section (a web thicker than the flange is wide, ...), or
// a radius that does not fit.
bool sectionOutline(int sectionType, const QMap<QString, double>& params, SKROutline& outline,
                    QString* error = nullptr);
// The same outline as text, as the section database stores it.
bool sectionOutlineText(int sectionType, const QMap<QString, double>& params, QString& text,
                        QString* error = nullptr);

// The two end sections of a tapered type (17 to 21), each as values of the same type whose
// outline is that end: the first end (h1, R1, B1 x B2, R1 x R2) and the second (h2, R2, b1 x b2,
// r1 x r2). secondCodes receives the codes that only the second end shows. False for a type that
// does not taper (its outline is its one section).
bool taperedSectionEnds(int sectionType, const QMap<QString, double>& params, QMap<QString, double>& first,
                        QMap<QString, double>& second, QStringList* secondCodes = nullptr);

// The inner bend radius at which a cold-formed lipped C or Z of depth h, flange b, lip c and
// thickness t has the sectional area `area` (mm2): the four 90-degree bends take
// t * 4 * (2 - pi / 2) * (r + t / 2) off the sharp-cornered area. False when no radius of at
// least zero gives that area.
bool coldFormedBendRadius(double h, double b, double c, double t, double area, double* radius);

// The outline parameters of a catalogue row: its dimensions without those of value 0 (the
// dimensions its family does not have), and for cold-formed C and Z (which the catalogue lists
// without a radius) the bend radius that the row's weight per metre implies, when that lies in
// the usual 1.4t to 2.6t.
QMap<QString, double> catalogueOutlineParams(int sectionType, const QMap<QString, double>& dimensions,
                                             double weightPerMetre);

}  // namespace geometry
}  // namespace skr
