// Trimming a member's solid by its cutting planes: every plane keeps the part of the body its
// normal points into; a trim that leaves nothing falls back to the uncut body.
#pragma once

#include "solid_split/SKRCuttingPlanes.h"

class IVMPElementDrawObj;
class IVMPSolidShape;
namespace ndp {
class CBody;
}

namespace skr {
namespace split {

// Offsets below this (mm) are taken as none by TrimBodyByOffsetPlane.
constexpr double SplitPlaneMinOffset = 0.3;

// The element's local frame at its start point (its head frame).
CoordinateSystem3 HeadFrame(const IVMPElementDrawObj& element);
// The head frame moved to the element's end point along its axis.
CoordinateSystem3 TailFrame(const IVMPElementDrawObj& element);

// The element's body from shape trimmed by all its "CuttingPlane" records; the caller releases
// it. The uncut body when the element has no planes or the planes leave nothing; null only when
// the shape builds no body.
ndp::CBody* ApplyCuttingPlanes(const IVMPElementDrawObj& element, IVMPSolidShape& shape);

// Trims body by the plane through basePoint with normal frame.Z, moved along direction by the
// distance of point from that plane (or not at all below SplitPlaneMinOffset): the part on the
// side opposite to the plane's normal is kept, the normal being -direction, or direction when
// flipped (the plane then moves against direction). body is replaced by the result, or released
// and set to null when nothing remains. Returns the distance used.
double TrimBodyByOffsetPlane(const ndp::CVector3& point, const CoordinateSystem3& frame, const ndp::CVector3& direction,
                             const ndp::CVector3& basePoint, ndp::CBody*& body, bool flipped);

}  // namespace split
}  // namespace skr
