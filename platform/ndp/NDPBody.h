// CBody: a solid (or a set of faces) of the 3D geometry kernel, reference counted like the
// database's records: a body handed out starts at one and is Release()d by its owner, AddRef()
// shares it. Bodies never change after they are made; every operation returns a new body.
//
// A body may hold no solid at all (IsEmpty): a cut face, or what is left of a body that a plane
// missed. Lengths are millimetres, volumes cubic and areas square millimetres.
#pragma once

#include "PlatformGlobal.h"
#include "ndp/NDPVector3.h"

class QString;

namespace ndp {

class CPolygon;
class CPlane;
class CBodyOcct;

// An axis-aligned 3D box; empty when the body has no geometry.
struct CBox3d {
    CVector3 min{0, 0, 0};
    CVector3 max{0, 0, 0};
    bool empty = true;

    bool IsEmpty() const { return empty; }
};

class BXQPLATFORM_EXPORT CBody {
public:
    void AddRef() { ++m_refCount; }
    void Release();
    int GetRefCount() const { return m_refCount; }

    // A box from frame's origin along its X, Y and Z axes by the three sizes (a frame whose X and
    // Z are not perpendicular has its X made perpendicular to Z). Null, with the reason, for a
    // size that is not positive or a frame without two independent axes.
    static CBody* CreateBox(const CCoord3& frame, double sizeX, double sizeY, double sizeZ, QString* error = nullptr);
    // The planar face of polygon (outer loop first, then holes; lines and arcs) lying in the
    // X-Y plane of frame. Null, with the reason and where it failed, for an empty or open loop.
    static CBody* CreateFace(const CPolygon& polygon, const CCoord3& frame, QString* error = nullptr);

    // Another handle on the same geometry, starting at one.
    CBody* Copy() const;
    // Whether the body is a straight prism of a planar section (made as one by a body builder).
    bool IsPrism() const;
    // For a prism: its section extruded the same way to another length, a new prism with
    // geometry of its own (so that other threads may work on it). Null for other bodies and for
    // a length that is not positive.
    CBody* ExtrudedTo(double length) const;

    // No solid: nothing but faces, or nothing at all.
    bool IsEmpty() const { return SolidCount() == 0; }
    int SolidCount() const;
    int FaceCount() const;
    double Volume() const;
    double SurfaceArea() const;
    // The tight box of the geometry (not widened by tolerances).
    CBox3d BoundingBox() const;
    // The box of the geometry in plane's U, V, normal coordinates (see CPlane): min/max[0] along
    // U, [1] along V, [2] the signed distance from the plane.
    CBox3d BoundingBoxInPlane(const CPlane& plane) const;
    // The kernel's own validity check of the geometry and its topology, run once per shape (a
    // copy of a body knows its answer).
    bool IsValid() const;

private:
    friend class CBodyOcct;
    struct Data;

    explicit CBody(Data* data);
    ~CBody();
    CBody(const CBody&) = delete;
    CBody& operator=(const CBody&) = delete;

    Data* m_data;
    int m_refCount = 1;
};

}  // namespace ndp
