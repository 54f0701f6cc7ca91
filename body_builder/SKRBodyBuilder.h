// SKRBodyBuilder: member solids built from section outlines through the geometry kernel:
// extruded, swept along a path, wound along a helix, with rounded edges, and elliptic ones.
//
// Sections are kernel polygons (outer loop, then holes; lines and arcs) in the section's local
// X-Y plane. Every builder returns a new body (reference count one, the caller's) or null with
// the reason in error; none throws.
#pragma once

#include "ndp/NDPVector3.h"

#include <QString>

namespace ndp {
class CBody;
class CPolygon;
}  // namespace ndp

namespace skr {
namespace body {

class SKRSweepPath;

// A helix about the Z axis of frame, starting at frame.origin + radius * X and rising along Z by
// pitch per turn; counter-clockwise about Z unless leftHanded.
struct SKRHelix {
    ndp::CCoord3 frame;
    double radius = 0.0;
    double pitch = 0.0;
    double turns = 0.0;
    bool leftHanded = false;
};

class SKRBodyBuilder {
public:
    // section (in the X-Y plane of frame, as its coordinates stand) extruded by length along
    // frame's Z axis. Frames use their origin, Z and X made perpendicular to Z (Y = Z x X).
    static ndp::CBody* extrudedMember(const ndp::CPolygon& section, double length, const ndp::CCoord3& frame,
                                      QString* error = nullptr);

    // section swept along path and kept perpendicular to it. At the start of the path the section's
    // origin lies on the path, its Z axis along the path's first direction and its X axis along
    // sectionX made perpendicular to that direction. Consecutive pieces should meet tangentially;
    // a corner is closed by extending the two pieces' solids to meet.
    static ndp::CBody* sweptMember(const ndp::CPolygon& section, const SKRSweepPath& path, const ndp::CVector3& sectionX,
                                   QString* error = nullptr);

    // section swept along helix without twisting about it: at the start the section's origin is on
    // the helix, its Z axis along the helix, its X axis pointing away from the helix axis; its
    // angle to the helix axis stays the same all along.
    static ndp::CBody* spiralMember(const ndp::CPolygon& section, const SKRHelix& helix, QString* error = nullptr);

    // body with its straight edges parallel to direction (in either sense, within 1e-6 rad)
    // rounded by radius; with a zero direction every straight edge. Refused when no edge is
    // chosen or the radius does not fit.
    static ndp::CBody* filletedBody(const ndp::CBody* body, double radius, const ndp::CVector3& direction,
                                    QString* error = nullptr);

    // An elliptic cylinder centred on frame's Z axis from its origin to length along Z, with the
    // semi-axes radiusX along frame's X and radiusY along its Y.
    static ndp::CBody* ellipticCylinder(double radiusX, double radiusY, double length, const ndp::CCoord3& frame,
                                        QString* error = nullptr);

    // An ellipsoid centred on frame's origin with the semi-axes a, b, c along its X, Y and Z.
    static ndp::CBody* ellipsoid(double a, double b, double c, const ndp::CCoord3& frame, QString* error = nullptr);

    // The member of a section specification text (H400*200*8*13, I20a, B300*10*12, ...): its
    // outline (catalogue sections with their catalogue radii when the catalogue is registered),
    // with the centre of its bounding box on frame's Z axis, extruded by length along Z.
    static ndp::CBody* memberFromSpecification(const QString& specification, double length, const ndp::CCoord3& frame,
                                               QString* error = nullptr);
};

}  // namespace body
}  // namespace skr
