// Geometric tolerances of the geometry kernel.
#pragma once

#include "PlatformGlobal.h"

namespace ndp {

// Two lengths closer than this (millimetres) are the same length.
BXQPLATFORM_EXPORT extern const double g_DistEpsilon;

}  // namespace ndp
