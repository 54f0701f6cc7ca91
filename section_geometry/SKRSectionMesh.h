// Quadratic (6-node) triangle meshes of section outlines for the warping solver.
//
// The mesh is a conforming Delaunay triangulation: the outline's curves are cut into pieces no
// longer than the element size (arcs also into pieces of at most 15 degrees), the inside is
// filled with a triangular lattice of that spacing kept clear of the boundary, and the points are
// triangulated incrementally (Bowyer-Watson). A boundary piece that is not an edge of the
// triangulation is halved (an arc at its middle angle) until every piece is one; the triangles
// inside the outline are then those reached from the outside across an odd number of boundary
// edges. Midside nodes of edges on arcs lie on the arc, so elements there are curved.
#pragma once

#include "ndp/NDPGeometry2d.h"

#include <QString>

#include <array>
#include <vector>

namespace ndp {
class CPolygon;
}

namespace skr {
namespace geometry {

struct SKRSectionMesh {
    std::vector<ndp::CPoint2d> nodes;
    // Corner nodes counter-clockwise, then the midside nodes of the edges 0-1, 1-2 and 2-0.
    std::vector<std::array<int, 6>> elements;
};

// Meshes a checked outline polygon with elements of about the given size. False, with the
// reason, for a polygon of no area or a size that is not positive or would need more than a few
// million elements.
bool MeshSection(const ndp::CPolygon& polygon, double size, SKRSectionMesh& mesh, QString* error = nullptr);

}  // namespace geometry
}  // namespace skr
