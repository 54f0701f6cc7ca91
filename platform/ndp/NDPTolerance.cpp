// Geometric tolerances of the geometry kernel.
#include "ndp/NDPTolerance.h"

namespace ndp {

const double g_DistEpsilon = 1.0e-6;

}  // namespace ndp
