// CMeshParameter: the two deflections of a tessellation.
#include "ndp/NDPMeshParameter.h"

#include <cmath>

namespace ndp {

CMeshParameter::CMeshParameter(double linearDeflection, double angularDeflection, bool relative)
    : m_linearDeflection(linearDeflection), m_angularDeflection(angularDeflection), m_relative(relative) {}

bool CMeshParameter::IsValid() const {
    return std::isfinite(m_linearDeflection) && m_linearDeflection > 0.0 && std::isfinite(m_angularDeflection) &&
           m_angularDeflection > 0.0 && m_angularDeflection < M_PI;
}

}  // namespace ndp
