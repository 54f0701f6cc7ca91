// 3D vector arithmetic on the kernel's point triples, and CoordinateSystem3, the kernel's frame
// (an origin and X, Y, Z axes; identity by default), with the changes of frame members need.
#pragma once

#include "ndp/NDPCoord3.h"

#include <array>
#include <cmath>

namespace ndp {

using CVector3 = std::array<double, 3>;
using CoordinateSystem3 = CCoord3;

inline CVector3 operator+(const CVector3& a, const CVector3& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline CVector3 operator-(const CVector3& a, const CVector3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline CVector3 operator*(double s, const CVector3& v) { return {s * v[0], s * v[1], s * v[2]}; }
inline CVector3 operator-(const CVector3& v) { return {-v[0], -v[1], -v[2]}; }
inline double Dot(const CVector3& a, const CVector3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline CVector3 Cross(const CVector3& a, const CVector3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline double Length(const CVector3& v) { return std::sqrt(Dot(v, v)); }
// The unit vector of v; v itself when it has no length.
inline CVector3 Normalized(const CVector3& v) {
    const double length = Length(v);
    return length > 0 ? (1.0 / length) * v : v;
}
// The angle between two vectors in radians, 0 to pi; pi/2 exactly for perpendicular ones.
inline double AngleBetween(const CVector3& a, const CVector3& b) { return std::atan2(Length(Cross(a, b)), Dot(a, b)); }

inline CoordinateSystem3 MakeFrame(const CVector3& origin, const CVector3& x, const CVector3& y, const CVector3& z) {
    CoordinateSystem3 frame;
    frame.origin = origin;
    frame.xAxis = x;
    frame.yAxis = y;
    frame.zAxis = z;
    return frame;
}

// A frame given relative to reference, expressed globally.
inline CoordinateSystem3 ToGlobal(const CoordinateSystem3& local, const CoordinateSystem3& reference) {
    const auto map = [&reference](const CVector3& v) {
        return v[0] * reference.xAxis + v[1] * reference.yAxis + v[2] * reference.zAxis;
    };
    CoordinateSystem3 global;
    global.origin = reference.origin + map(local.origin);
    global.xAxis = map(local.xAxis);
    global.yAxis = map(local.yAxis);
    global.zAxis = map(local.zAxis);
    return global;
}

// A global frame expressed relative to reference (whose axes are taken as orthonormal).
inline CoordinateSystem3 ExpressIn(const CoordinateSystem3& global, const CoordinateSystem3& reference) {
    const auto project = [&reference](const CVector3& v) {
        return CVector3{Dot(v, reference.xAxis), Dot(v, reference.yAxis), Dot(v, reference.zAxis)};
    };
    CoordinateSystem3 local;
    local.origin = project(global.origin - reference.origin);
    local.xAxis = project(global.xAxis);
    local.yAxis = project(global.yAxis);
    local.zAxis = project(global.zAxis);
    return local;
}

}  // namespace ndp
