// CBooleanOperate: splitting a body by a plane.
//
// SplitPositiveBody keeps the part on the side the plane's normal points into (signed distance
// > 0), SplitNegativeBody the part on the other side. Each returns a new body (reference count
// one; the input body is left as it is and stays the caller's) or null:
//   - the whole body lies on the removed side, touching the plane at most: null, and
//     GetLastError() is empty (nothing remains);
//   - the whole body lies on the kept side: a new handle on the whole body (Copy());
//   - a null, empty (no solid) or refused body, or a kernel failure: null with the reason in
//     GetLastError().
// "Touching" is decided with g_DistEpsilon: a body whose extent beyond the plane is at most
// g_DistEpsilon does not reach across it. So a plane on an end face, or within g_DistEpsilon of
// it on either side, keeps all or nothing; a plane further in cuts.
//
// SplitBody gives both parts and the cut face (the faces the body has in the plane, holes left
// open). It answers false only for a failure; a side that is empty, or a plane that misses the
// body (no cut face), gives null for that output with true.
//
// The four construction flags:
//   checkInput:     a body that fails the kernel's validity check is refused;
//   nonDestructive: the kernel never adjusts the tolerances of the input body's own edges and
//                   vertices (other handles on the same geometry stay exactly as they were);
//   unifyResult:    faces and edges of a result that lie on one surface or curve are merged;
//   runParallel:    the kernel may use several threads (it does for large bodies, where they pay).
// Nothing throws out of these operations.
#pragma once

#include "PlatformGlobal.h"

#include <QString>

#include <vector>

namespace ndp {

class CBody;
class CPlane;

class BXQPLATFORM_EXPORT CBooleanOperate {
public:
    CBooleanOperate(bool checkInput, bool nonDestructive, bool unifyResult, bool runParallel);

    CBody* SplitPositiveBody(const CPlane& plane, const CBody* body);
    CBody* SplitNegativeBody(const CPlane& plane, const CBody* body);
    // positive, negative and cutFace are set (to a new body or null) whenever the answer is true,
    // and to null when it is false.
    bool SplitBody(const CPlane& plane, const CBody* body, CBody*& positive, CBody*& negative, CBody*& cutFace);
    // The cut face of SplitBody alone, without building the two sides (a third of the work): a
    // new body, or null with true when the plane misses the body; false only for a failure.
    bool CutFace(const CPlane& plane, const CBody* body, CBody*& cutFace);

    // The part of body on the positive side of every plane: what SplitPositiveBody gives applied
    // plane after plane (null when a plane leaves nothing, or for a failure). A prism (a body of
    // CBodyOcct::CreatePrism) whose cutting planes each cross the whole member, meeting every
    // generator line between the member's ends, or meet an end's plane inside the section (one
    // such corner an end), is built at once (LastTrimWasDirect()): end faces on the planes, side
    // faces between them. That path reads only the section and the extrusion, which the prism's
    // maker checked. Every other body and plane takes the general split.
    CBody* TrimPositiveBody(const std::vector<CPlane>& planes, const CBody* body);
    bool LastTrimWasDirect() const { return m_lastDirect; }

    // Why the last operation gave no result; empty when it succeeded or nothing remained.
    const QString& GetLastError() const { return m_lastError; }

private:
    CBody* splitSide(const CPlane& plane, const CBody* body, bool positiveSide);

    bool m_checkInput;
    bool m_nonDestructive;
    bool m_unifyResult;
    bool m_runParallel;
    bool m_lastDirect = false;
    QString m_lastError;
};

}  // namespace ndp
