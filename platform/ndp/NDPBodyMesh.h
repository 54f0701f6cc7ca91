// CBodyMesh: a body tessellated into triangles for display and export.
//
// Every face of the body is tessellated on its own (vertices on a shared edge appear once per
// face). Triangles run counter-clockwise seen from outside the body, so that their normals point
// out; each vertex carries the unit normal of its surface there, pointing out of the body.
// Tessellating drops any earlier tessellation of the body's faces first, so the triangles always
// follow the parameter given.
#pragma once

#include "PlatformGlobal.h"

#include <vector>

class QString;

namespace ndp {

class CBody;
class CMeshParameter;

class BXQPLATFORM_EXPORT CBodyMesh {
public:
    // Replaces the mesh by the triangles of body. False, with the reason and an empty mesh, for a
    // null body, a parameter that is not valid, or a face the mesher could not tessellate.
    bool Build(const CBody* body, const CMeshParameter& parameter, QString* error = nullptr);
    void Clear();

    int GetVertexCount() const { return static_cast<int>(m_vertices.size() / 3); }
    int GetTriangleCount() const { return static_cast<int>(m_indices.size() / 3); }
    // x, y, z of each vertex in turn.
    const std::vector<double>& GetVertices() const { return m_vertices; }
    // x, y, z of each vertex's normal in turn.
    const std::vector<double>& GetNormals() const { return m_normals; }
    // Three vertex indices (from 0) per triangle.
    const std::vector<int>& GetIndices() const { return m_indices; }

private:
    std::vector<double> m_vertices;
    std::vector<double> m_normals;
    std::vector<int> m_indices;
};

}  // namespace ndp
