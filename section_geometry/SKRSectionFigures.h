// The figures of a steel table for any section outline of lines and arcs: the exact ones (area,
// perimeters, mass, moments about the centroid and the principal axes, radii of gyration,
// elastic and plastic moduli) in closed form, and the torsion and warping ones (St Venant
// torsion constant, warping constant, shear centre, shear areas, monosymmetry) from a
// finite-element solution of the warping problem (SKRWarpingSolver). Millimetres throughout.
#pragma once

#include "plugin/BXQExtendGlobal.h"
#include "ndp/NDPGeometry2d.h"

#include <QString>

namespace ndp {
class CPolygon;
}

namespace skr {
namespace geometry {

// The figures that come exactly from the outline. The second moments are about axes through the
// centroid; the principal axis 1 carries the larger moment i1 and lies alpha degrees
// counter-clockwise from x. Section moduli divide a moment by the distance from its axis to the
// extreme fibre on that side; w1 and w2 use the farther fibre. The plastic moduli are about the
// axes (parallel to x and y) that halve the area, at plasticY and plasticX.
struct SKRExactFigures {
    double area = 0.0;
    double perimeter = 0.0;
    double outerPerimeter = 0.0;
    double massPerMetre = 0.0;  // kg/m at 7850 kg/m3
    double xc = 0.0;
    double yc = 0.0;
    ndp::CBox2d box;
    double ix = 0.0;
    double iy = 0.0;
    double ixy = 0.0;
    double i1 = 0.0;
    double i2 = 0.0;
    double alpha = 0.0;
    double rx = 0.0;
    double ry = 0.0;
    double r1 = 0.0;
    double r2 = 0.0;
    double wxTop = 0.0;
    double wxBottom = 0.0;
    double wyLeft = 0.0;
    double wyRight = 0.0;
    double w1 = 0.0;
    double w2 = 0.0;
    double zx = 0.0;
    double zy = 0.0;
    double plasticY = 0.0;
    double plasticX = 0.0;
    double shapeFactorX = 0.0;  // zx / min(wxTop, wxBottom)
    double shapeFactorY = 0.0;

    double wx() const { return wxTop < wxBottom ? wxTop : wxBottom; }
    double wy() const { return wyLeft < wyRight ? wyLeft : wyRight; }
};

// The figures of the warping solution. The shear centre (xs, ys) is measured from the centroid;
// iw is the warping constant about it. betaX = (1/Ix) * integral of y (x^2 + y^2) dA - 2 ys (and
// betaY likewise with x), both about the centroid: zero for a section symmetric about that axis.
// meshSize is the element size of the mesh the figures come from, with its element and node
// counts; converged says whether successive meshes agreed to kWarpingTolerance.
struct SKRWarpingFigures {
    double j = 0.0;
    double iw = 0.0;
    double xs = 0.0;
    double ys = 0.0;
    double asx = 0.0;
    double asy = 0.0;
    double betaX = 0.0;
    double betaY = 0.0;
    double meshSize = 0.0;
    int elements = 0;
    int nodes = 0;
    bool converged = false;
};

struct SKRSectionFigures {
    SKRExactFigures exact;
    SKRWarpingFigures warping;
};

// Relative change between two successive meshes below which the warping figures count as
// converged (each mesh's element size is 0.6 times the one before).
constexpr double kWarpingTolerance = 0.005;

// The largest mesh the warping figures are worked out on (about a second's work).
constexpr int kMaxWarpingElements = 60000;

// The exact figures of a checked outline polygon (outer loop first, then its holes).
BXQEXTEND_EXPORT SKRExactFigures ExactSectionFigures(const ndp::CPolygon& polygon);

// The warping figures of a checked outline polygon, refined until two successive meshes agree
// to kWarpingTolerance or the next mesh would pass kMaxWarpingElements (converged then false).
// False, with the reason, when no mesh could be made of it.
BXQEXTEND_EXPORT bool WarpingSectionFigures(const ndp::CPolygon& polygon, SKRWarpingFigures& out,
                                            QString* error = nullptr);

// Every figure of an outline text. Results are kept per outline text, so a second request for
// the same section is answered at once. False, with the reason, for a text that is no valid
// outline or whose section cannot be meshed.
BXQEXTEND_EXPORT bool SectionFigures(const QString& outlineText, SKRSectionFigures& out, QString* error = nullptr);

// The same for a polygon that has no outline text (a user-drawn custom section), kept under key.
BXQEXTEND_EXPORT bool SectionFigures(const ndp::CPolygon& polygon, const QString& key, SKRSectionFigures& out,
                                     QString* error = nullptr);

// The kept figures under key (an outline text or a polygon's key), without computing any.
BXQEXTEND_EXPORT bool KnownSectionFigures(const QString& key, SKRSectionFigures& out);

// Forgets the kept results (for measurements that must compute afresh).
BXQEXTEND_EXPORT void ClearSectionFiguresCache();

}  // namespace geometry
}  // namespace skr
