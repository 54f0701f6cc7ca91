// Kernel polygons as OpenCASCADE faces: lines and true circular arcs on shared vertices, the outer
// loop counter-clockwise about the placement's Z axis and the holes clockwise.
#include "ndp/NDPBodyOcct.h"

#include "ndp/NDPPolygon.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRep_Builder.hxx>
#include <ElCLib.hxx>
#include <Geom_Circle.hxx>
#include <Precision.hxx>
#include <Standard_Failure.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Vertex.hxx>
#include <TopoDS_Wire.hxx>

#include <QString>

#include <algorithm>
#include <cmath>
#include <vector>

namespace ndp {
namespace {

bool fail(QString* error, const QString& text) {
    if (error) *error = text;
    return false;
}

// Points of the placement's X-Y plane.
class PlanePoints {
public:
    explicit PlanePoints(const gp_Ax3& placement)
        : m_origin(placement.Location().XYZ()),
          m_x(placement.XDirection().XYZ()),
          m_y(placement.YDirection().XYZ()),
          m_z(placement.Direction()) {}
    gp_Pnt operator()(const CPoint2d& p) const { return gp_Pnt(m_origin + p.x * m_x + p.y * m_y); }
    const gp_Dir& normal() const { return m_z; }
    gp_Dir xDirection() const { return gp_Dir(m_x); }

private:
    gp_XYZ m_origin;
    gp_XYZ m_x;
    gp_XYZ m_y;
    gp_Dir m_z;
};

// One loop as a closed wire. Curves shorter than g_DistEpsilon are dropped; consecutive curves
// must meet within g_DistEpsilon, and share one vertex there.
bool makeWire(const CLoop& loop, int loopIndex, const PlanePoints& at, TopoDS_Wire& out, QString* error) {
    std::vector<const CCurve2d*> curves;
    for (int i = 0; i < loop.GetCount(); ++i) {
        const CCurve2d* curve = loop.GetCurve(i);
        if (curve && curve->Length() > g_DistEpsilon) curves.push_back(curve);
    }
    if (curves.empty())
        return fail(error, QStringLiteral("loop %1 has no curve of any length").arg(loopIndex));

    const int n = static_cast<int>(curves.size());
    std::vector<TopoDS_Vertex> vertices(n);
    BRep_Builder builder;
    for (int i = 0; i < n; ++i) {
        const int previous = (i + n - 1) % n;
        const double gap = curves[previous]->EndPoint().DistanceTo(curves[i]->StartPoint());
        if (!(gap <= g_DistEpsilon)) {
            return fail(error, QStringLiteral("loop %1 is open between curve %2 and curve %3 (gap %4)")
                                   .arg(loopIndex)
                                   .arg(previous)
                                   .arg(i)
                                   .arg(gap));
        }
        builder.MakeVertex(vertices[i], at(curves[i]->StartPoint()), std::max(Precision::Confusion(), 2.0 * gap));
    }

    BRepBuilderAPI_MakeWire wire;
    for (int i = 0; i < n; ++i) {
        const TopoDS_Vertex& v1 = vertices[i];
        const TopoDS_Vertex& v2 = vertices[(i + 1) % n];
        TopoDS_Edge edge;
        if (curves[i]->GetType() == EnCurveType::Line) {
            if (n == 1) return fail(error, QStringLiteral("loop %1 is a single line").arg(loopIndex));
            BRepBuilderAPI_MakeEdge maker(v1, v2);
            if (!maker.IsDone())
                return fail(error, QStringLiteral("loop %1, curve %2: the line could not be made").arg(loopIndex).arg(i));
            edge = maker.Edge();
        } else {
            const auto* arc = static_cast<const CArc2d*>(curves[i]);
            // A clockwise arc runs counter-clockwise about the opposite axis, so that it always
            // runs towards increasing parameters.
            const gp_Dir axis = arc->IsCounterClockwise() ? at.normal() : at.normal().Reversed();
            Handle(Geom_Circle) circle = new Geom_Circle(gp_Ax2(at(arc->Centre()), axis, at.xDirection()), arc->Radius());
            const double first = ElCLib::Parameter(circle->Circ(), at(arc->StartPoint()));
            const double last = first + std::min(std::abs(arc->Sweep()), 2.0 * M_PI);
            BRepBuilderAPI_MakeEdge maker(circle, v1, v2, first, last);
            if (!maker.IsDone())
                return fail(error, QStringLiteral("loop %1, curve %2: the arc could not be made").arg(loopIndex).arg(i));
            edge = maker.Edge();
        }
        wire.Add(edge);
        if (!wire.IsDone())
            return fail(error, QStringLiteral("loop %1, curve %2 does not join the curves before it").arg(loopIndex).arg(i));
    }
    out = wire.Wire();
    return true;
}

}  // namespace

bool CBodyOcct::MakeFace(const CPolygon& polygon, const gp_Ax3& placement, TopoDS_Face& out, QString* error) {
    if (polygon.IsEmpty()) return fail(error, QStringLiteral("the polygon has no loop"));
    try {
        const PlanePoints at(placement);
        std::vector<TopoDS_Wire> wires;
        for (int i = 0; i < polygon.GetLoopCount(); ++i) {
            const CLoop* loop = polygon.GetLoop(i);
            const int sense = loop ? loop->ClockSign() : 0;
            if (sense == 0) return fail(error, QStringLiteral("loop %1 encloses no area").arg(i));
            TopoDS_Wire wire;
            if (!makeWire(*loop, i, at, wire, error)) return false;
            // The outer loop runs counter-clockwise about the normal, the holes clockwise.
            if ((sense > 0) != (i == 0)) wire.Reverse();
            wires.push_back(wire);
        }
        BRepBuilderAPI_MakeFace face(gp_Pln(placement), wires.front(), Standard_True);
        if (!face.IsDone()) return fail(error, QStringLiteral("loop 0 does not bound a face"));
        for (size_t i = 1; i < wires.size(); ++i) {
            face.Add(wires[i]);
            if (!face.IsDone()) return fail(error, QStringLiteral("loop %1 cannot be a hole of the face").arg(i));
        }
        const TopoDS_Face result = face.Face();
        if (!BRepCheck_Analyzer(result).IsValid())
            return fail(error, QStringLiteral("the loops do not make a valid face (crossing or touching loops)"));
        out = result;
        return true;
    } catch (const Standard_Failure& failure) {
        return fail(error, QStringLiteral("the face could not be made: ") + QString::fromUtf8(failure.GetMessageString()));
    }
}

}  // namespace ndp
