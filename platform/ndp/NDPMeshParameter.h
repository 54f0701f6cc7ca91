// CMeshParameter: how finely a body is tessellated into triangles.
//
// Linear deflection: the largest distance (millimetres) between a triangle and the surface it
// stands for. Angular deflection: the largest angle (radians) between the normals of neighbouring
// triangles on a curved surface. With a relative deflection the linear value is a fraction of each
// edge's size instead of a length.
#pragma once

#include "PlatformGlobal.h"

namespace ndp {

class BXQPLATFORM_EXPORT CMeshParameter {
public:
    CMeshParameter() = default;
    CMeshParameter(double linearDeflection, double angularDeflection, bool relative = false);

    double GetLinearDeflection() const { return m_linearDeflection; }
    double GetAngularDeflection() const { return m_angularDeflection; }
    bool IsRelative() const { return m_relative; }
    void SetLinearDeflection(double value) { m_linearDeflection = value; }
    void SetAngularDeflection(double value) { m_angularDeflection = value; }
    void SetRelative(bool relative) { m_relative = relative; }

    // Both deflections finite and positive, the angle below pi.
    bool IsValid() const;

private:
    double m_linearDeflection = 0.5;
    double m_angularDeflection = 0.5;
    bool m_relative = false;
};

}  // namespace ndp
