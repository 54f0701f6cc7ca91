// The Saint-Venant warping problem and the shear-function problems of a section, solved by
// finite elements on a quadratic triangle mesh (SKRSectionMesh) with Eigen's sparse LDLT.
//
// The warping function w about the centroid solves Laplace's equation with the boundary flux
// y nx - x ny; in weak form K w = f with f_i = integral of (y dNi/dx - x dNi/dy) dA, so no
// boundary integral is needed. K is singular up to a constant; the constant is fixed by the exact
// condition integral of w dA = 0, added as a Lagrange multiplier whose row holds the assembled
// integrals of the shape functions (not by pinning a node or zeroing the sum of nodal values,
// which shifts w on uneven meshes and with it the shear centre and the warping constant). Then
// J = Ix + Iy - w.K.w, the shear centre follows from Trefftz's conditions (the warping function
// about it is orthogonal to x and y), and Iw is the integral of its square. The shear functions
// of the same operator give the shear areas for a Poisson's ratio.
#pragma once

#include "section_geometry/SKRSectionFigures.h"

namespace skr {
namespace geometry {

struct SKRSectionMesh;

constexpr double kSteelPoissonRatio = 0.3;  // of steel, for the shear areas

// Fills j, iw, xs, ys, asx, asy, betaX and betaY of out from the mesh (the other fields are left
// alone); *area, when given, receives the area of the mesh. False, with the reason, for an empty
// mesh or a system that cannot be solved.
bool SolveWarping(const SKRSectionMesh& mesh, double poissonRatio, SKRWarpingFigures& out, QString* error = nullptr,
                  double* area = nullptr);

}  // namespace geometry
}  // namespace skr
