// The OpenCASCADE side of the 3D kernel: the shape inside a body, bodies made from shapes, and the
// kernel's frames, planes and polygons as OpenCASCADE geometry. For the platform's own files and
// the body builders only; the host and the rest of the library see NDPBody.h alone.
#pragma once

#include "PlatformGlobal.h"
#include "ndp/NDPVector3.h"

#include <TopoDS_Face.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Ax3.hxx>
#include <gp_Pln.hxx>
#include <gp_Pnt.hxx>
#include <gp_Vec.hxx>

class QString;

namespace ndp {

class CBody;
class CPlane;
class CPolygon;

class BXQPLATFORM_EXPORT CBodyOcct {
public:
    // A new body (reference count one) holding shape. A compound of exactly one solid is
    // unwrapped to that solid.
    static CBody* Create(const TopoDS_Shape& shape);
    // A body holding solid, the prism of the planar face section extruded by extrusion: it keeps
    // both, so that planar trims of it can be built directly (CBooleanOperate::TrimPositiveBody).
    static CBody* CreatePrism(const TopoDS_Shape& solid, const TopoDS_Face& section, const gp_Vec& extrusion);
    // The section and extrusion of a body made by CreatePrism (and its copies); false for others.
    static bool PrismOf(const CBody& body, TopoDS_Face& section, gp_Vec& extrusion);
    // Records that body passed the validity check, for a body made by a kernel operation whose
    // result is valid whenever its input is (CBody::IsValid then answers without checking).
    static void SetKnownValid(CBody& body);
    // The shape held by body.
    static const TopoDS_Shape& Shape(const CBody& body);

    static gp_Pnt ToPnt(const CVector3& p) { return gp_Pnt(p[0], p[1], p[2]); }
    static gp_Vec ToVec(const CVector3& v) { return gp_Vec(v[0], v[1], v[2]); }
    static CVector3 FromPnt(const gp_Pnt& p) { return {p.X(), p.Y(), p.Z()}; }

    // The right-handed placement of frame: its origin, Z as the main direction and X made
    // perpendicular to Z (Y follows as Z x X). False, with the reason, when Z has no length, X is
    // parallel to Z or a number is not finite.
    static bool ToAx3(const CCoord3& frame, gp_Ax3& out, QString* error = nullptr);
    // The plane with the same origin, normal and U direction (its X direction), so that OCCT's
    // (u, v) on it are CPlane's.
    static gp_Pln ToPln(const CPlane& plane);

    // The planar face of polygon in the X-Y plane of placement: lines as segments, arcs as true
    // circular arcs, the outer loop first and then the holes, each brought to the turning sense
    // the face needs whatever its own. False, with the reason and the loop and curve where it
    // failed, for an empty polygon, a loop without area, or one that is not closed.
    static bool MakeFace(const CPolygon& polygon, const gp_Ax3& placement, TopoDS_Face& out, QString* error = nullptr);
};

}  // namespace ndp
