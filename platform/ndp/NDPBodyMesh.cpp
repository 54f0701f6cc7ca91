// CBodyMesh on OpenCASCADE's incremental mesher: triangles, vertices and surface normals per face.
#include "ndp/NDPBodyMesh.h"

#include "ndp/NDPBody.h"
#include "ndp/NDPBodyOcct.h"
#include "ndp/NDPMeshParameter.h"

#include <BRepAdaptor_Surface.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <Poly_Triangulation.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <gp_Vec.hxx>

#include <QString>

namespace ndp {
namespace {

bool fail(QString* error, const QString& text) {
    if (error) *error = text;
    return false;
}

}  // namespace

void CBodyMesh::Clear() {
    m_vertices.clear();
    m_normals.clear();
    m_indices.clear();
}

bool CBodyMesh::Build(const CBody* body, const CMeshParameter& parameter, QString* error) {
    Clear();
    if (!body) return fail(error, QStringLiteral("there is no body to tessellate"));
    if (!parameter.IsValid()) return fail(error, QStringLiteral("the mesh parameter is not valid"));
    const TopoDS_Shape& shape = CBodyOcct::Shape(*body);
    if (shape.IsNull()) return fail(error, QStringLiteral("the body has no geometry"));
    try {
        BRepTools::Clean(shape);
        BRepMesh_IncrementalMesh mesher(shape, parameter.GetLinearDeflection(), parameter.IsRelative() ? Standard_True : Standard_False,
                                        parameter.GetAngularDeflection(), Standard_False);
        if (!mesher.IsDone()) return fail(error, QStringLiteral("the mesher could not tessellate the body"));

        int faceIndex = 0;
        for (TopExp_Explorer it(shape, TopAbs_FACE); it.More(); it.Next(), ++faceIndex) {
            const TopoDS_Face& face = TopoDS::Face(it.Current());
            TopLoc_Location location;
            const Handle(Poly_Triangulation) triangles = BRep_Tool::Triangulation(face, location);
            if (triangles.IsNull()) {
                Clear();
                return fail(error, QStringLiteral("face %1 could not be tessellated").arg(faceIndex));
            }
            const gp_Trsf& placement = location.Transformation();
            const bool reversed = face.Orientation() == TopAbs_REVERSED;
            const int base = GetVertexCount();
            const int nodeCount = triangles->NbNodes();

            // Normals from the triangles as a fallback where the surface has none (a pole).
            std::vector<gp_Vec> fallback(nodeCount, gp_Vec(0, 0, 0));
            for (int t = 1; t <= triangles->NbTriangles(); ++t) {
                int n1, n2, n3;
                triangles->Triangle(t).Get(n1, n2, n3);
                if (reversed) std::swap(n2, n3);
                const gp_Pnt p1 = triangles->Node(n1).Transformed(placement);
                const gp_Pnt p2 = triangles->Node(n2).Transformed(placement);
                const gp_Pnt p3 = triangles->Node(n3).Transformed(placement);
                const gp_Vec normal = gp_Vec(p1, p2).Crossed(gp_Vec(p1, p3));
                for (int n : {n1, n2, n3}) fallback[n - 1] += normal;
                m_indices.insert(m_indices.end(), {base + n1 - 1, base + n2 - 1, base + n3 - 1});
            }

            BRepAdaptor_Surface surface(face, Standard_False);
            for (int n = 1; n <= nodeCount; ++n) {
                const gp_Pnt p = triangles->Node(n).Transformed(placement);
                m_vertices.insert(m_vertices.end(), {p.X(), p.Y(), p.Z()});
                gp_Vec normal = fallback[n - 1];
                if (triangles->HasUVNodes()) {
                    gp_Pnt onSurface;
                    gp_Vec du, dv;
                    const gp_Pnt2d uv = triangles->UVNode(n);
                    surface.D1(uv.X(), uv.Y(), onSurface, du, dv);
                    gp_Vec exact = du.Crossed(dv);
                    if (exact.Magnitude() > 1e-12) {
                        if (reversed) exact.Reverse();
                        normal = exact.Transformed(placement);
                    }
                }
                if (normal.Magnitude() > 0.0) normal.Normalize();
                m_normals.insert(m_normals.end(), {normal.X(), normal.Y(), normal.Z()});
            }
        }
        return true;
    } catch (const Standard_Failure& failure) {
        Clear();
        return fail(error, QStringLiteral("the mesher failed: ") + QString::fromUtf8(failure.GetMessageString()));
    }
}

}  // namespace ndp
