// CPlane: an oriented plane of the 3D geometry kernel with a fixed (u, v) parametrisation.
//
// A point of the plane is GetPoint(u, v) = origin + u * U + v * V. U, V and the unit normal N form
// a right-handed frame (U x V = N). The U direction is the global X axis projected onto the plane
// and made unit; when the normal is parallel to X (within 1e-6 of it) the global Y axis projected
// is used instead. So a plane whose normal is Z has U = X and V = Y, and one whose normal is X
// has U = Y and V = Z.
//
// The positive side of the plane is the side the normal points into: SignedDistance > 0.
// A default plane is the X-Y plane through the origin with normal +Z.
#pragma once

#include "PlatformGlobal.h"
#include "ndp/NDPVector3.h"

namespace ndp {

class BXQPLATFORM_EXPORT CPlane {
public:
    CPlane();

    // The plane through point with the given normal (any length). False, leaving the plane as it
    // was, for a zero or not finite normal or a point that is not finite.
    bool Create(const CVector3& point, const CVector3& normal);
    // The same with the U direction given: uDirection projected onto the plane becomes U. False,
    // leaving the plane as it was, when uDirection is (nearly) parallel to the normal.
    bool Create(const CVector3& point, const CVector3& normal, const CVector3& uDirection);

    // The parameters of the point of the plane nearest to point (its orthogonal projection). A
    // plane's projection is exact, so every tolerance is met; tolerance is the accuracy the caller
    // needs and only a negative one is refused. False, leaving u and v unchanged, for a point that
    // is not finite or a negative tolerance.
    bool GetNearestUV(const CVector3& point, double& u, double& v, double tolerance) const;
    CVector3 GetPoint(double u, double v) const;

    const CVector3& GetOrigin() const { return m_origin; }
    const CVector3& GetNormal() const { return m_normal; }
    const CVector3& GetUDirection() const { return m_u; }
    const CVector3& GetVDirection() const { return m_v; }
    // The plane as a frame: origin, X = U, Y = V, Z = normal.
    CCoord3 GetFrame() const;

    // Positive on the side the normal points into.
    double SignedDistance(const CVector3& point) const;

private:
    CVector3 m_origin{0, 0, 0};
    CVector3 m_normal{0, 0, 1};
    CVector3 m_u{1, 0, 0};
    CVector3 m_v{0, 1, 0};
};

}  // namespace ndp
