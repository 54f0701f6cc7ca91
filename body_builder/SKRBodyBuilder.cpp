// SKRBodyBuilder on OpenCASCADE: prisms, pipe shells along paths and helices, fillets, elliptic
// solids, and the member of a specification text.
#include "body_builder/SKRBodyBuilder.h"

#include "body_builder/SKRSweepPath.h"
#include "ndp/NDPBody.h"
#include "ndp/NDPBodyOcct.h"
#include "ndp/NDPPolygon.h"
#include "ndp/NDPTolerance.h"
#include "section_geometry/SKRSectionPolygonParser.h"
#include "section_geometry/SKRSpecificationOutline.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAlgoAPI_Cut.hxx>
#include <BRepBuilderAPI_GTransform.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepBuilderAPI_Transform.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepFilletAPI_MakeFillet.hxx>
#include <BRepGProp.hxx>
#include <BRepLib.hxx>
#include <BRepOffsetAPI_MakePipeShell.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <GC_MakeArcOfCircle.hxx>
#include <GProp_GProps.hxx>
#include <Geom2d_Line.hxx>
#include <Geom_CylindricalSurface.hxx>
#include <Geom_TrimmedCurve.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Iterator.hxx>
#include <TopoDS_Wire.hxx>
#include <gp_Elips.hxx>
#include <gp_GTrsf.hxx>

#include <cmath>
#include <functional>
#include <memory>
#include <vector>

namespace skr {
namespace body {
namespace {

using ndp::CBody;
using ndp::CBodyOcct;
using ndp::CVector3;
// The vector operators live in ndp, which argument lookup on std::array does not search.
using ndp::operator+;
using ndp::operator-;
using ndp::operator*;

CBody* refuse(QString* error, const QString& reason) {
    if (error) *error = reason;
    return nullptr;
}

bool positiveSize(double value) { return std::isfinite(value) && value > 0.0; }

// Runs a builder and turns every kernel exception into a refusal.
CBody* guarded(QString* error, const std::function<CBody*()>& build) {
    try {
        return build();
    } catch (const Standard_Failure& failure) {
        const char* message = failure.GetMessageString();
        return refuse(error, QStringLiteral("the geometry kernel failed: ") + QString::fromUtf8(failure.DynamicType()->Name()) +
                                 (message && *message ? QStringLiteral(" ") + QString::fromUtf8(message) : QString()));
    } catch (const std::exception& e) {
        return refuse(error, QStringLiteral("building the body failed: ") + QString::fromLocal8Bit(e.what()));
    } catch (...) {
        return refuse(error, QStringLiteral("building the body failed"));
    }
}

double volumeOf(const TopoDS_Shape& shape) {
    GProp_GProps props;
    BRepGProp::VolumeProperties(shape, props);
    return props.Mass();
}

// A solid made of a closed sweep may come out inside out; turn it so its volume is positive.
TopoDS_Shape outward(const TopoDS_Shape& solid) { return volumeOf(solid) < 0.0 ? solid.Reversed() : solid; }

// The face's outer wire first, then its holes.
std::vector<TopoDS_Wire> wiresOf(const TopoDS_Face& face) {
    const TopoDS_Wire outer = BRepTools::OuterWire(face);
    std::vector<TopoDS_Wire> wires{outer};
    for (TopoDS_Iterator it(face); it.More(); it.Next()) {
        if (it.Value().ShapeType() == TopAbs_WIRE && !it.Value().IsSame(outer)) wires.push_back(TopoDS::Wire(it.Value()));
    }
    return wires;
}

// Sweeps every loop of the section face along spine on its own (a pipe shell sweeps one wire)
// and cuts the holes' solids out of the outer one.
CBody* sweepFace(const TopoDS_Face& section, const TopoDS_Wire& spine,
                 const std::function<void(BRepOffsetAPI_MakePipeShell&)>& setMode, QString* error) {
    std::vector<TopoDS_Shape> solids;
    int loop = 0;
    for (const TopoDS_Wire& wire : wiresOf(section)) {
        BRepOffsetAPI_MakePipeShell pipe(spine);
        setMode(pipe);
        pipe.SetTransitionMode(BRepBuilderAPI_RightCorner);
        pipe.Add(wire, Standard_False, Standard_False);
        pipe.Build();
        if (!pipe.IsDone() || !pipe.MakeSolid())
            return refuse(error, QStringLiteral("loop %1 of the section could not be swept along the path").arg(loop));
        solids.push_back(outward(pipe.Shape()));
        ++loop;
    }
    TopoDS_Shape result = solids.front();
    if (solids.size() > 1) {
        TopTools_ListOfShape arguments, tools;
        arguments.Append(result);
        for (size_t i = 1; i < solids.size(); ++i) tools.Append(solids[i]);
        BRepAlgoAPI_Cut cut;
        cut.SetArguments(arguments);
        cut.SetTools(tools);
        cut.Build();
        if (!cut.IsDone() || cut.HasErrors()) return refuse(error, QStringLiteral("the holes of the section could not be cut out"));
        result = cut.Shape();
    }
    if (!BRepCheck_Analyzer(result).IsValid())
        return refuse(error, QStringLiteral("the swept solid is not valid (does the section cross itself along the path?)"));
    return CBodyOcct::Create(result);
}

// A frame at origin with Z along direction and X along xHint made perpendicular to it.
bool sectionFrame(const CVector3& origin, const CVector3& direction, const CVector3& xHint, ndp::CCoord3& frame,
                  QString* error) {
    const CVector3 z = ndp::Normalized(direction);
    const CVector3 x = xHint - ndp::Dot(xHint, z) * z;
    if (ndp::Length(x) < 1e-9 * std::max(1.0, ndp::Length(xHint))) {
        if (error) *error = QStringLiteral("the section's X direction is parallel to the path");
        return false;
    }
    frame.origin = origin;
    frame.zAxis = z;
    frame.xAxis = ndp::Normalized(x);
    frame.yAxis = ndp::Cross(frame.zAxis, frame.xAxis);
    return true;
}

double diagonalOf(const ndp::CPolygon& section) {
    const ndp::CBox2d box = section.BoundingBox();
    return box.IsEmpty() ? 0.0 : box.Min().DistanceTo(box.Max());
}

}  // namespace

CBody* SKRBodyBuilder::extrudedMember(const ndp::CPolygon& section, double length, const ndp::CCoord3& frame,
                                      QString* error) {
    if (!positiveSize(length)) return refuse(error, QStringLiteral("the member length %1 is not positive").arg(length));
    return guarded(error, [&]() -> CBody* {
        gp_Ax3 placement;
        TopoDS_Face face;
        if (!CBodyOcct::ToAx3(frame, placement, error) || !CBodyOcct::MakeFace(section, placement, face, error))
            return nullptr;
        const gp_Vec extrusion = gp_Vec(placement.Direction()) * length;
        BRepPrimAPI_MakePrism prism(face, extrusion);
        if (!prism.IsDone()) return refuse(error, QStringLiteral("the section could not be extruded"));
        // The face passed the kernel's check, and a planar face swept straight is a valid solid:
        // a split of the member need not check it again.
        CBody* body = CBodyOcct::CreatePrism(prism.Shape(), face, extrusion);
        CBodyOcct::SetKnownValid(*body);
        return body;
    });
}

CBody* SKRBodyBuilder::sweptMember(const ndp::CPolygon& section, const SKRSweepPath& path, const CVector3& sectionX,
                                   QString* error) {
    if (path.isEmpty()) return refuse(error, QStringLiteral("the path has no piece"));
    return guarded(error, [&]() -> CBody* {
        BRepBuilderAPI_MakeWire spine;
        CVector3 current = path.start();
        CVector3 startDirection{0, 0, 0};
        for (int i = 0; i < path.segments().size(); ++i) {
            const SKRSweepPath::Segment& segment = path.segments()[i];
            if (ndp::Length(segment.end - current) <= ndp::g_DistEpsilon)
                return refuse(error, QStringLiteral("piece %1 of the path has no length").arg(i));
            TopoDS_Edge edge;
            CVector3 direction;
            if (!segment.isArc) {
                edge = BRepBuilderAPI_MakeEdge(CBodyOcct::ToPnt(current), CBodyOcct::ToPnt(segment.end)).Edge();
                direction = segment.end - current;
            } else {
                GC_MakeArcOfCircle arc(CBodyOcct::ToPnt(current), CBodyOcct::ToPnt(segment.through),
                                       CBodyOcct::ToPnt(segment.end));
                if (!arc.IsDone())
                    return refuse(error, QStringLiteral("piece %1 of the path: its three points make no arc").arg(i));
                gp_Pnt p;
                gp_Vec tangent;
                arc.Value()->D1(arc.Value()->FirstParameter(), p, tangent);
                direction = {tangent.X(), tangent.Y(), tangent.Z()};
                edge = BRepBuilderAPI_MakeEdge(arc.Value()).Edge();
            }
            if (i == 0) startDirection = direction;
            spine.Add(edge);
            if (!spine.IsDone()) return refuse(error, QStringLiteral("piece %1 of the path does not join the one before").arg(i));
            current = segment.end;
        }
        ndp::CCoord3 frame;
        gp_Ax3 placement;
        TopoDS_Face face;
        if (!sectionFrame(path.start(), startDirection, sectionX, frame, error) ||
            !CBodyOcct::ToAx3(frame, placement, error) || !CBodyOcct::MakeFace(section, placement, face, error))
            return nullptr;
        return sweepFace(face, spine.Wire(), [](BRepOffsetAPI_MakePipeShell& pipe) { pipe.SetMode(Standard_False); },
                         error);
    });
}

CBody* SKRBodyBuilder::spiralMember(const ndp::CPolygon& section, const SKRHelix& helix, QString* error) {
    if (!positiveSize(helix.radius) || !positiveSize(helix.pitch) || !positiveSize(helix.turns))
        return refuse(error, QStringLiteral("a helix needs a positive radius, pitch and number of turns"));
    const double sectionSize = diagonalOf(section);
    if (sectionSize >= 2.0 * helix.radius)
        return refuse(error, QStringLiteral("the section (%1 across) reaches the helix axis at radius %2")
                                 .arg(sectionSize)
                                 .arg(helix.radius));
    if (helix.turns > 1.0 && sectionSize >= helix.pitch)
        return refuse(error, QStringLiteral("the section (%1 across) does not fit between turns %2 apart")
                                 .arg(sectionSize)
                                 .arg(helix.pitch));
    return guarded(error, [&]() -> CBody* {
        gp_Ax3 axis;
        if (!CBodyOcct::ToAx3(helix.frame, axis, error)) return nullptr;
        // The helix is a straight line on the unrolled cylinder: u turns by 2 pi while v rises by the pitch.
        const double sense = helix.leftHanded ? -1.0 : 1.0;
        Handle(Geom_CylindricalSurface) cylinder = new Geom_CylindricalSurface(axis, helix.radius);
        Handle(Geom2d_Line) line = new Geom2d_Line(gp_Pnt2d(0, 0), gp_Dir2d(sense * 2.0 * M_PI, helix.pitch));
        const double span = helix.turns * std::hypot(2.0 * M_PI, helix.pitch);
        TopoDS_Edge edge = BRepBuilderAPI_MakeEdge(line, cylinder, 0.0, span).Edge();
        const int segments = std::max(8, static_cast<int>(std::ceil(helix.turns * 8.0)));
        BRepLib::BuildCurves3d(edge, 1e-7, GeomAbs_C2, 14, segments);
        const TopoDS_Wire spine = BRepBuilderAPI_MakeWire(edge).Wire();

        const gp_XYZ x = axis.XDirection().XYZ(), y = axis.YDirection().XYZ(), z = axis.Direction().XYZ();
        const gp_XYZ start = axis.Location().XYZ() + helix.radius * x;
        const gp_XYZ tangent = sense * helix.radius * y + helix.pitch / (2.0 * M_PI) * z;
        ndp::CCoord3 frame;
        gp_Ax3 placement;
        TopoDS_Face face;
        if (!sectionFrame({start.X(), start.Y(), start.Z()}, {tangent.X(), tangent.Y(), tangent.Z()}, {x.X(), x.Y(), x.Z()},
                          frame, error) ||
            !CBodyOcct::ToAx3(frame, placement, error) || !CBodyOcct::MakeFace(section, placement, face, error))
            return nullptr;
        const gp_Dir binormal = axis.Direction();
        return sweepFace(face, spine, [&binormal](BRepOffsetAPI_MakePipeShell& pipe) { pipe.SetMode(binormal); }, error);
    });
}

CBody* SKRBodyBuilder::filletedBody(const CBody* body, double radius, const CVector3& direction, QString* error) {
    if (!body || body->IsEmpty()) return refuse(error, QStringLiteral("there is no solid to round"));
    if (!positiveSize(radius)) return refuse(error, QStringLiteral("the fillet radius %1 is not positive").arg(radius));
    const bool anyDirection = ndp::Length(direction) == 0.0;
    return guarded(error, [&]() -> CBody* {
        const TopoDS_Shape& shape = CBodyOcct::Shape(*body);
        TopTools_IndexedMapOfShape edges;
        TopExp::MapShapes(shape, TopAbs_EDGE, edges);
        BRepFilletAPI_MakeFillet fillet(shape);
        int chosen = 0;
        for (int i = 1; i <= edges.Extent(); ++i) {
            const TopoDS_Edge& edge = TopoDS::Edge(edges(i));
            if (BRep_Tool::Degenerated(edge)) continue;
            BRepAdaptor_Curve curve(edge);
            if (curve.GetType() != GeomAbs_Line) continue;
            if (!anyDirection && !curve.Line().Direction().IsParallel(gp_Dir(CBodyOcct::ToVec(direction)), 1e-6)) continue;
            fillet.Add(radius, edge);
            ++chosen;
        }
        if (chosen == 0) return refuse(error, QStringLiteral("the body has no straight edge to round"));
        fillet.Build();
        if (!fillet.IsDone())
            return refuse(error, QStringLiteral("a radius of %1 does not fit the %2 chosen edges").arg(radius).arg(chosen));
        const TopoDS_Shape result = fillet.Shape();
        if (!BRepCheck_Analyzer(result).IsValid())
            return refuse(error, QStringLiteral("rounding by %1 gave no valid solid").arg(radius));
        return CBodyOcct::Create(result);
    });
}

CBody* SKRBodyBuilder::ellipticCylinder(double radiusX, double radiusY, double length, const ndp::CCoord3& frame,
                                        QString* error) {
    if (!positiveSize(radiusX) || !positiveSize(radiusY) || !positiveSize(length))
        return refuse(error, QStringLiteral("an elliptic cylinder needs two positive radii and a positive length"));
    return guarded(error, [&]() -> CBody* {
        gp_Ax3 placement;
        if (!CBodyOcct::ToAx3(frame, placement, error)) return nullptr;
        // An ellipse's major axis is its X direction: along the frame's Y when radiusY is the larger.
        const bool alongX = radiusX >= radiusY;
        const gp_Ax2 axes(placement.Location(), placement.Direction(), alongX ? placement.XDirection() : placement.YDirection());
        const gp_Elips ellipse(axes, alongX ? radiusX : radiusY, alongX ? radiusY : radiusX);
        const TopoDS_Wire wire = BRepBuilderAPI_MakeWire(BRepBuilderAPI_MakeEdge(ellipse).Edge()).Wire();
        const TopoDS_Face face = BRepBuilderAPI_MakeFace(wire, Standard_True).Face();
        BRepPrimAPI_MakePrism prism(face, gp_Vec(placement.Direction()) * length);
        if (!prism.IsDone()) return refuse(error, QStringLiteral("the ellipse could not be extruded"));
        return CBodyOcct::Create(prism.Shape());
    });
}

CBody* SKRBodyBuilder::ellipsoid(double a, double b, double c, const ndp::CCoord3& frame, QString* error) {
    if (!positiveSize(a) || !positiveSize(b) || !positiveSize(c))
        return refuse(error, QStringLiteral("an ellipsoid needs three positive semi-axes"));
    return guarded(error, [&]() -> CBody* {
        gp_Ax3 placement;
        if (!CBodyOcct::ToAx3(frame, placement, error)) return nullptr;
        // A unit sphere stretched along the global axes, then moved onto the frame.
        gp_GTrsf stretch;
        stretch.SetValue(1, 1, a);
        stretch.SetValue(2, 2, b);
        stretch.SetValue(3, 3, c);
        BRepBuilderAPI_GTransform stretched(BRepPrimAPI_MakeSphere(1.0).Shape(), stretch, Standard_True);
        if (!stretched.IsDone()) return refuse(error, QStringLiteral("the sphere could not be stretched"));
        gp_Trsf move;
        move.SetDisplacement(gp_Ax3(), placement);
        BRepBuilderAPI_Transform moved(stretched.Shape(), move, Standard_True);
        return CBodyOcct::Create(moved.Shape());
    });
}

CBody* SKRBodyBuilder::memberFromSpecification(const QString& specification, double length, const ndp::CCoord3& frame,
                                               QString* error) {
    geometry::SKROutline outline;
    if (!geometry::specificationOutline(specification, outline, error)) return nullptr;
    const std::unique_ptr<ndp::CPolygon> section = geometry::outlinePolygon(outline);
    if (!section) return refuse(error, QStringLiteral("the outline of \"%1\" gives no polygon").arg(specification));

    gp_Ax3 placement;
    if (!CBodyOcct::ToAx3(frame, placement, error)) return nullptr;
    const ndp::CBox2d box = section->BoundingBox();
    const double cx = 0.5 * (box.Min().x + box.Max().x), cy = 0.5 * (box.Min().y + box.Max().y);
    const gp_XYZ origin = placement.Location().XYZ() - cx * placement.XDirection().XYZ() - cy * placement.YDirection().XYZ();
    ndp::CCoord3 centred;
    centred.origin = {origin.X(), origin.Y(), origin.Z()};
    centred.xAxis = {placement.XDirection().X(), placement.XDirection().Y(), placement.XDirection().Z()};
    centred.yAxis = {placement.YDirection().X(), placement.YDirection().Y(), placement.YDirection().Z()};
    centred.zAxis = {placement.Direction().X(), placement.Direction().Y(), placement.Direction().Z()};
    return extrudedMember(*section, length, centred, error);
}

}  // namespace body
}  // namespace skr
