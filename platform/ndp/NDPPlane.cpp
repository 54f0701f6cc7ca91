// CPlane: origin, unit normal and the documented U, V directions.
#include "ndp/NDPPlane.h"

#include <cmath>

namespace ndp {
namespace {

bool finite(const CVector3& v) { return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]); }

// Below this the projection of an axis onto the plane is taken as too short to give a direction.
constexpr double kParallel = 1e-6;

}  // namespace

CPlane::CPlane() = default;

bool CPlane::Create(const CVector3& point, const CVector3& normal) {
    if (!finite(point) || !finite(normal) || Length(normal) == 0.0) return false;
    const CVector3 n = Normalized(normal);
    CVector3 u = CVector3{1, 0, 0} - n[0] * n;
    if (Length(u) < kParallel) u = CVector3{0, 1, 0} - n[1] * n;
    return Create(point, n, u);
}

bool CPlane::Create(const CVector3& point, const CVector3& normal, const CVector3& uDirection) {
    if (!finite(point) || !finite(normal) || !finite(uDirection) || Length(normal) == 0.0) return false;
    const CVector3 n = Normalized(normal);
    const CVector3 projected = uDirection - Dot(uDirection, n) * n;
    if (Length(projected) < kParallel * Length(uDirection) || Length(projected) == 0.0) return false;
    m_origin = point;
    m_normal = n;
    m_u = Normalized(projected);
    m_v = Normalized(Cross(m_normal, m_u));
    return true;
}

bool CPlane::GetNearestUV(const CVector3& point, double& u, double& v, double tolerance) const {
    if (!finite(point) || !(tolerance >= 0.0)) return false;
    const CVector3 d = point - m_origin;
    u = Dot(d, m_u);
    v = Dot(d, m_v);
    return true;
}

CVector3 CPlane::GetPoint(double u, double v) const { return m_origin + u * m_u + v * m_v; }

CCoord3 CPlane::GetFrame() const {
    CCoord3 frame;
    frame.origin = m_origin;
    frame.xAxis = m_u;
    frame.yAxis = m_v;
    frame.zAxis = m_normal;
    return frame;
}

double CPlane::SignedDistance(const CVector3& point) const { return Dot(point - m_origin, m_normal); }

}  // namespace ndp
