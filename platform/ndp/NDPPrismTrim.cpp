// CBooleanOperate::TrimPositiveBody: planar trims of straight prisms built directly. When every
// plane that cuts crosses the whole member (each generator line of the prism meets it between the
// member's current ends), the trimmed prism is the section projected along the axis onto its two
// end planes, with ruled side faces between them: planes stay planes, circles become ellipses on
// exact cylinders. Every other case goes through the general split, plane after plane.
#include "ndp/NDPBooleanOperate.h"

#include "ndp/NDPBody.h"
#include "ndp/NDPBodyOcct.h"
#include "ndp/NDPPlane.h"
#include "ndp/NDPTolerance.h"

#include <BRepAdaptor_Curve.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <BRepTools_WireExplorer.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <ElCLib.hxx>
#include <GeomProjLib.hxx>
#include <Geom2d_Curve.hxx>
#include <Geom2d_Line.hxx>
#include <Geom_Circle.hxx>
#include <Geom_CylindricalSurface.hxx>
#include <Geom_Ellipse.hxx>
#include <Geom_Line.hxx>
#include <Geom_Plane.hxx>
#include <Precision.hxx>
#include <Standard_Failure.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Iterator.hxx>
#include <TopoDS_Shell.hxx>
#include <TopoDS_Solid.hxx>
#include <TopoDS_Vertex.hxx>
#include <TopoDS_Wire.hxx>
#include <gp_Elips.hxx>
#include <gp_Vec2d.hxx>

#include <algorithm>
#include <cmath>
#include <vector>

namespace ndp {
namespace {

constexpr double kTwoPi = 2.0 * M_PI;

// A plane bounding the member: n . x = d, n a unit normal never parallel to the section.
struct End {
    gp_XYZ n;
    double d = 0.0;
};

// One curve of a section loop, in a loop that runs counter-clockwise about the axis (holes
// clockwise), so that the material is on its left seen from the axis' tip.
struct Piece {
    gp_XYZ start, end;
    bool arc = false;
    gp_XYZ centre;       // arcs: centre, radius, sweep (radians, positive)
    double radius = 0.0;
    double sweep = 0.0;
    bool ccw = true;     // arcs: counter-clockwise about the axis
};
using Loop = std::vector<Piece>;

enum class Plan { Build, Whole, Nothing, General };

class DirectTrim {
public:
    // Reads the prism; false when it is not a section of lines and circular arcs extruded along
    // its normal.
    bool read(const TopoDS_Face& face, const gp_Vec& extrusion) {
        const double length = extrusion.Magnitude();
        if (!(length > g_DistEpsilon)) return false;
        m_axis = extrusion.XYZ() / length;
        BRepAdaptor_Surface surface(face, Standard_False);
        if (surface.GetType() != GeomAbs_Plane) return false;
        gp_XYZ normal = surface.Plane().Axis().Direction().XYZ();
        if (face.Orientation() == TopAbs_REVERSED) normal.Reverse();
        const double along = normal.Dot(m_axis);
        if (std::abs(std::abs(along) - 1.0) > 1e-12) return false;
        const bool flip = along < 0.0;
        const double base = m_axis.Dot(surface.Plane().Location().XYZ());
        m_lo = {m_axis, base};
        m_hi = {m_axis, base + length};

        for (TopoDS_Iterator wires(face); wires.More(); wires.Next()) {
            if (wires.Value().ShapeType() != TopAbs_WIRE) return false;
            Loop loop;
            for (BRepTools_WireExplorer it(TopoDS::Wire(wires.Value()), face); it.More(); it.Next()) {
                const TopoDS_Edge& edge = it.Current();
                BRepAdaptor_Curve curve(edge);
                const bool reversed = edge.Orientation() == TopAbs_REVERSED;
                Piece piece;
                piece.start = curve.Value(reversed ? curve.LastParameter() : curve.FirstParameter()).XYZ();
                piece.end = curve.Value(reversed ? curve.FirstParameter() : curve.LastParameter()).XYZ();
                if (curve.GetType() == GeomAbs_Circle) {
                    const gp_Circ circle = curve.Circle();
                    if (!circle.Axis().Direction().IsParallel(gp_Dir(m_axis), 1e-12)) return false;
                    piece.arc = true;
                    piece.centre = circle.Location().XYZ();
                    piece.radius = circle.Radius();
                    piece.sweep = curve.LastParameter() - curve.FirstParameter();
                    piece.ccw = (circle.Axis().Direction().XYZ().Dot(m_axis) > 0.0) != reversed;
                    if (!(piece.sweep > 0.0) || piece.sweep > kTwoPi + 1e-12) return false;
                } else if (curve.GetType() != GeomAbs_Line) {
                    return false;
                }
                loop.push_back(piece);
            }
            if (loop.empty()) return false;
            if (flip) {
                Loop turned(loop.rbegin(), loop.rend());
                for (Piece& piece : turned) {
                    std::swap(piece.start, piece.end);
                    piece.ccw = !piece.ccw;
                }
                loop.swap(turned);
            }
            m_loops.push_back(loop);
        }
        return !m_loops.empty();
    }

    // Follows the general split plane by plane on the prism's ends alone: a plane that misses
    // keeps the body whole, one that leaves nothing ends it, one that cuts must cross the whole
    // member and becomes its new end on that side.
    Plan plan(const std::vector<CPlane>& planes) {
        bool cut = false;
        for (const CPlane& plane : planes) {
            const gp_XYZ n = CBodyOcct::ToVec(plane.GetNormal()).XYZ().Normalized();
            const double d = n.Dot(CBodyOcct::ToPnt(plane.GetOrigin()).XYZ());
            // Signed distance from the plane over the two ends: at the end e the section point p
            // is at p + t_e(p) axis, which is linear in p.
            double lowest = 0.0, highest = 0.0;
            bool first = true;
            for (const End* e : {&m_lo, &m_hi}) {
                const double na = n.Dot(m_axis), ea = e->n.Dot(m_axis);
                double low = 0.0, high = 0.0;
                range(n - (na / ea) * e->n, low, high);
                const double constant = na * e->d / ea - d;
                if (first || low + constant < lowest) lowest = low + constant;
                if (first || high + constant > highest) highest = high + constant;
                first = false;
            }
            if (!(highest > g_DistEpsilon)) return Plan::Nothing;
            if (!(lowest < -g_DistEpsilon)) continue;

            const double na = n.Dot(m_axis);
            if (std::abs(na) < 1e-9) return Plan::General;
            const End candidate{n, d};
            End& replaced = na > 0.0 ? m_lo : m_hi;
            const End& other = na > 0.0 ? m_hi : m_lo;
            // Along each generator (t growing along the axis) the plane lies beyond the end it
            // replaces and strictly short of the opposite end.
            const double sense = na > 0.0 ? 1.0 : -1.0;
            if (minimumGap(replaced, candidate, sense) < -1e-9 || minimumGap(candidate, other, sense) <= g_DistEpsilon)
                return Plan::General;
            replaced = candidate;
            cut = true;
        }
        return cut ? Plan::Build : Plan::Whole;
    }

    TopoDS_Shape build() {
        BRep_Builder builder;
        TopoDS_Shell shell;
        builder.MakeShell(shell);
        std::vector<TopoDS_Wire> loWires, hiWires;
        for (const Loop& loop : m_loops) {
            const size_t m = loop.size();
            std::vector<TopoDS_Vertex> vLo(m), vHi(m);
            std::vector<TopoDS_Edge> rise(m), eLo(m), eHi(m);
            std::vector<double> tLo(m), tHi(m);
            for (size_t i = 0; i < m; ++i) {
                tLo[i] = at(m_lo, loop[i].start);
                tHi[i] = at(m_hi, loop[i].start);
                builder.MakeVertex(vLo[i], gp_Pnt(loop[i].start + tLo[i] * m_axis), kTolerance);
                builder.MakeVertex(vHi[i], gp_Pnt(loop[i].start + tHi[i] * m_axis), kTolerance);
                // The rise's parameter is t, the cylinders' v.
                builder.MakeEdge(rise[i], new Geom_Line(gp_Pnt(loop[i].start), gp_Dir(m_axis)), kTolerance);
                builder.Add(rise[i], vLo[i].Oriented(TopAbs_FORWARD));
                builder.Add(rise[i], vHi[i].Oriented(TopAbs_REVERSED));
                builder.Range(rise[i], tLo[i], tHi[i]);
            }
            std::vector<Handle(Geom_Curve)> cLo(m), cHi(m);
            for (size_t i = 0; i < m; ++i) {
                const size_t j = (i + 1) % m;
                eLo[i] = endEdge(m_lo, loop[i], vLo[i], vLo[j], cLo[i]);
                eHi[i] = endEdge(m_hi, loop[i], vHi[i], vHi[j], cHi[i]);
            }
            TopoDS_Wire lo, hi;
            builder.MakeWire(lo);
            builder.MakeWire(hi);
            for (size_t k = 0; k < m; ++k) {
                builder.Add(lo, eLo[m - 1 - k].Reversed());
                builder.Add(hi, eHi[k]);
            }
            loWires.push_back(lo);
            hiWires.push_back(hi);

            for (size_t i = 0; i < m; ++i) {
                const size_t j = (i + 1) % m;
                const Piece& piece = loop[i];
                TopoDS_Wire wire;
                builder.MakeWire(wire);
                builder.Add(wire, eLo[i]);
                builder.Add(wire, rise[j]);
                builder.Add(wire, eHi[i].Reversed());
                builder.Add(wire, rise[i].Reversed());
                TopoDS_Face face;
                if (!piece.arc) {
                    const gp_XYZ along = piece.end - piece.start;
                    const gp_Dir outward(along.Crossed(m_axis));
                    builder.MakeFace(face, new Geom_Plane(gp_Ax3(gp_Pnt(piece.start), outward, gp_Dir(along))), kTolerance);
                    builder.Add(face, wire);
                } else {
                    // u runs counter-clockwise about the axis from 0 at the arc's first end
                    // (counter-clockwise arcs) or its last end (clockwise ones).
                    const gp_Dir x(piece.ccw ? piece.start - piece.centre : piece.end - piece.centre);
                    Handle(Geom_CylindricalSurface) cylinder =
                        new Geom_CylindricalSurface(gp_Ax3(gp_Pnt(piece.centre), gp_Dir(m_axis), x), piece.radius);
                    const double uStart = piece.ccw ? 0.0 : piece.sweep, uEnd = piece.ccw ? piece.sweep : 0.0;
                    builder.MakeFace(face, cylinder, kTolerance);
                    // The cylinder's normal points away from its axis: outward for counter-
                    // clockwise arcs; for clockwise ones the face is reversed, and its wire with it.
                    builder.Add(face, piece.ccw ? wire : TopoDS::Wire(wire.Reversed()));
                    if (i == j) {
                        builder.UpdateEdge(rise[i], riseCurve(kTwoPi), riseCurve(0.0), face, kTolerance);
                    } else {
                        builder.UpdateEdge(rise[i], riseCurve(uStart), face, kTolerance);
                        builder.UpdateEdge(rise[j], riseCurve(uEnd), face, kTolerance);
                    }
                    onCylinder(eLo[i], cLo[i], cylinder, face, uStart, uEnd);
                    onCylinder(eHi[i], cHi[i], cylinder, face, uStart, uEnd);
                    if (!piece.ccw) face.Reverse();
                }
                builder.Add(shell, face);
            }
        }
        builder.Add(shell, endFace(m_lo, loWires, false));
        builder.Add(shell, endFace(m_hi, hiWires, true));
        shell.Closed(Standard_True);
        TopoDS_Solid solid;
        builder.MakeSolid(solid);
        builder.Add(solid, shell);
        return solid;
    }

private:
    static constexpr double kTolerance = 1e-7;

    double at(const End& e, const gp_XYZ& p) const { return (e.d - e.n.Dot(p)) / e.n.Dot(m_axis); }

    // The least of t_to(p) - t_from(p) over the section, times sense.
    double minimumGap(const End& from, const End& to, double sense) const {
        const double fa = from.n.Dot(m_axis), ta = to.n.Dot(m_axis);
        const gp_XYZ g = sense * (from.n / fa - to.n / ta);
        double low = 0.0, high = 0.0;
        range(g, low, high);
        return low + sense * (to.d / ta - from.d / fa);
    }

    // The range of g . p over the section (its loops' points and the arcs' extremes).
    void range(const gp_XYZ& g, double& low, double& high) const {
        low = high = 0.0;
        bool first = true;
        auto take = [&](const gp_XYZ& p) {
            const double value = g.Dot(p);
            if (first || value < low) low = value;
            if (first || value > high) high = value;
            first = false;
        };
        const gp_XYZ across = g - g.Dot(m_axis) * m_axis;
        const double size = across.Modulus();
        for (const Loop& loop : m_loops) {
            for (const Piece& piece : loop) {
                take(piece.start);
                if (!piece.arc || size == 0.0) continue;
                for (const double sign : {1.0, -1.0}) {
                    const gp_XYZ direction = sign / size * across;
                    if (onArc(piece, direction)) take(piece.centre + piece.radius * direction);
                }
            }
        }
    }

    // Whether the arc passes through the direction from its centre.
    bool onArc(const Piece& piece, const gp_XYZ& direction) const {
        const gp_XYZ s = (piece.start - piece.centre) / piece.radius;
        const gp_XYZ axis = piece.ccw ? m_axis : m_axis.Reversed();
        double angle = std::atan2(s.Crossed(direction).Dot(axis), s.Dot(direction));
        if (angle < 0.0) angle += kTwoPi;
        return angle <= piece.sweep;
    }

    gp_XYZ onEnd(const End& e, const gp_XYZ& p) const { return p + at(e, p) * m_axis; }

    // The curve of piece projected along the axis onto e, between the two vertices.
    TopoDS_Edge endEdge(const End& e, const Piece& piece, const TopoDS_Vertex& from, const TopoDS_Vertex& to,
                        Handle(Geom_Curve)& curve) const {
        BRep_Builder builder;
        TopoDS_Edge edge;
        const gp_XYZ start = onEnd(e, piece.start), end = onEnd(e, piece.end);
        double first = 0.0, last = 0.0;
        if (!piece.arc) {
            last = (end - start).Modulus();
            curve = new Geom_Line(gp_Pnt(start), gp_Dir(end - start));
        } else {
            const gp_Pnt centre(onEnd(e, piece.centre));
            const double na = e.n.Dot(m_axis);
            const gp_XYZ tilt = e.n - na * m_axis;
            if (tilt.Modulus() < 1e-12) {
                curve = new Geom_Circle(gp_Ax2(centre, gp_Dir(piece.ccw ? m_axis : m_axis.Reversed()), gp_Dir(start - centre.XYZ())),
                                        piece.radius);
            } else {
                // The circle's direction of steepest slope on the plane stretches by 1 / |n . axis|;
                // the one across it stays. The parameter runs the way the arc does.
                const gp_XYZ u = tilt.Normalized();
                const gp_XYZ v = m_axis.Crossed(u);
                const gp_XYZ major = u - (e.n.Dot(u) / na) * m_axis;
                const gp_Dir x(major), y(piece.ccw ? v : v.Reversed());
                const gp_Elips ellipse(gp_Ax2(centre, x.Crossed(y), x), piece.radius / std::abs(na), piece.radius);
                first = ElCLib::Parameter(ellipse, gp_Pnt(start));
                first -= kTwoPi * std::floor(first / kTwoPi);  // ranges start in [0, 2 pi)
                curve = new Geom_Ellipse(ellipse);
            }
            last = first + piece.sweep;
        }
        builder.MakeEdge(edge, curve, kTolerance);
        builder.Add(edge, from.Oriented(TopAbs_FORWARD));
        builder.Add(edge, to.Oriented(TopAbs_REVERSED));
        builder.Range(edge, first, last);
        return edge;
    }

    static Handle(Geom2d_Line) riseCurve(double u) { return new Geom2d_Line(gp_Pnt2d(u, 0.0), gp_Dir2d(0.0, 1.0)); }

    // The end curve's parameter curve on the cylinder, moved by whole turns so that it runs from
    // uStart to uEnd as the face's other edges do.
    void onCylinder(const TopoDS_Edge& edge, const Handle(Geom_Curve)& curve, const Handle(Geom_CylindricalSurface)& cylinder,
                    const TopoDS_Face& face, double uStart, double uEnd) const {
        double first = 0.0, last = 0.0;
        BRep_Tool::Range(edge, first, last);
        double tolerance = kTolerance;
        Handle(Geom2d_Curve) uv = GeomProjLib::Curve2d(curve, first, last, cylinder, tolerance);
        if (uv.IsNull()) throw Standard_Failure("no parameter curve on the cylinder");
        const double shift = kTwoPi * std::round((uStart - uv->Value(first).X()) / kTwoPi);
        uv->Translate(gp_Vec2d(shift, 0.0));
        if (std::abs(uv->Value(first).X() - uStart) > 1e-6 || std::abs(uv->Value(last).X() - uEnd) > 1e-6)
            throw Standard_Failure("the parameter curve on the cylinder does not join its face");
        BRep_Builder builder;
        builder.UpdateEdge(edge, uv, face, std::max(tolerance, kTolerance));
        if (tolerance > kTolerance) {
            for (TopoDS_Iterator it(edge); it.More(); it.Next())
                builder.UpdateVertex(TopoDS::Vertex(it.Value()), tolerance);
        }
    }

    // An end face: on the plane, facing away from the member (against the axis at the low end).
    TopoDS_Face endFace(const End& e, const std::vector<TopoDS_Wire>& wires, bool high) const {
        const bool alongAxis = e.n.Dot(m_axis) > 0.0;
        const gp_XYZ outward = (alongAxis == high) ? e.n : e.n.Reversed();
        BRep_Builder builder;
        TopoDS_Face face;
        builder.MakeFace(face, new Geom_Plane(gp_Pnt(e.d * e.n), gp_Dir(outward)), kTolerance);
        for (const TopoDS_Wire& wire : wires) builder.Add(face, wire);
        return face;
    }

    gp_XYZ m_axis;
    End m_lo, m_hi;
    std::vector<Loop> m_loops;
};

}  // namespace

CBody* CBooleanOperate::TrimPositiveBody(const std::vector<CPlane>& planes, const CBody* body) {
    m_lastError.clear();
    m_lastDirect = false;
    TopoDS_Face section;
    gp_Vec extrusion;
    if (body && CBodyOcct::PrismOf(*body, section, extrusion)) {
        try {
            DirectTrim trim;
            if (trim.read(section, extrusion)) {
                switch (trim.plan(planes)) {
                case Plan::Nothing: m_lastDirect = true; return nullptr;
                case Plan::Whole: m_lastDirect = true; return body->Copy();
                case Plan::Build: {
                    CBody* result = CBodyOcct::Create(trim.build());
                    m_lastDirect = true;
                    return result;
                }
                case Plan::General: break;
                }
            }
        } catch (...) {
            // the general split below
        }
    }
    if (!body) return SplitPositiveBody(planes.empty() ? CPlane() : planes.front(), body);
    CBody* current = body->Copy();
    for (const CPlane& plane : planes) {
        CBody* next = SplitPositiveBody(plane, current);
        current->Release();
        current = next;
        if (!current) break;
    }
    return current;
}

}  // namespace ndp
