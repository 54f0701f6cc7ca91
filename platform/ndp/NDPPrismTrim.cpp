// CBooleanOperate::TrimPositiveBody: planar trims of straight prisms built directly. When every
// plane that cuts crosses the whole member (each generator line of the prism meets it between the
// member's current ends), the trimmed prism is the section projected along the axis onto its two
// end planes, with ruled side faces between them: planes stay planes, circles become ellipses on
// exact cylinders. A plane that meets an end's plane inside the section (a mitre through the end
// point) makes a corner of that end: the section is split along the line where the two planes
// meet, each part projected onto its plane. Every other case (a second corner on one end, a
// corner line along a piece of the section or touching an arc, a plane along the axis) goes
// through the general split.
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
#include <map>
#include <vector>

namespace ndp {
namespace {

constexpr double kTwoPi = 2.0 * M_PI;

// A plane bounding the member: n . x = d, n a unit normal never parallel to the section.
struct End {
    gp_XYZ n;
    double d = 0.0;
};

// One end of the member: a plane, or (cornered) two planes meeting along a line across the
// section, the end lying on whichever of them is further in.
struct Side {
    End base;
    bool cornered = false;
    End corner;
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
        m_lo.base = {m_axis, base};
        m_hi.base = {m_axis, base + length};

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
    // keeps the body whole, one that leaves nothing ends it, and one that cuts becomes the end on
    // its side where it crosses the whole member, or a corner of that end where it meets the end's
    // plane inside the section. Anything else (a second corner on one end, a plane that reaches
    // the opposite end) is left to the general split.
    Plan plan(const std::vector<CPlane>& planes) {
        bool cut = false;
        for (const CPlane& plane : planes) {
            const gp_XYZ n = CBodyOcct::ToVec(plane.GetNormal()).XYZ().Normalized();
            const double d = n.Dot(CBodyOcct::ToPnt(plane.GetOrigin()).XYZ());
            const End candidate{n, d};
            // Signed distance from the plane over the ends: on an end plane e the section point p
            // is at p + t_e(p) axis, linear in p. A cornered end lies on parts of its two planes,
            // so its planes' whole ranges may reach further than the body does: there only the
            // plain ends answer, and must show a cut.
            double lowest = 0.0, highest = 0.0, plainLow = 0.0, plainHigh = 0.0;
            bool first = true, firstPlain = true, exact = true;
            for (const Side* side : {&m_lo, &m_hi}) {
                exact = exact && !side->cornered;
                for (const End* e : {&side->base, &side->corner}) {
                    if (e == &side->corner && !side->cornered) continue;
                    double low = 0.0, high = 0.0;
                    distances(candidate, *e, low, high);
                    if (first || low < lowest) lowest = low;
                    if (first || high > highest) highest = high;
                    first = false;
                    if (side->cornered) continue;
                    if (firstPlain || low < plainLow) plainLow = low;
                    if (firstPlain || high > plainHigh) plainHigh = high;
                    firstPlain = false;
                }
            }
            if (exact) {
                if (!(highest > g_DistEpsilon)) return Plan::Nothing;
                if (!(lowest < -g_DistEpsilon)) continue;
            } else if (firstPlain || !(plainLow < -g_DistEpsilon) || !(plainHigh > g_DistEpsilon)) {
                // The body's corners are its own points: on both sides of the plane they show a cut.
                double low = 0.0, high = 0.0;
                bool any = false;
                for (const Loop& loop : m_loops) {
                    for (const Piece& piece : loop) {
                        for (const bool atLow : {true, false}) {
                            const gp_XYZ x = piece.start + at(atLow ? m_lo : m_hi, piece.start, atLow) * m_axis;
                            const double value = n.Dot(x) - d;
                            if (!any || value < low) low = value;
                            if (!any || value > high) high = value;
                            any = true;
                        }
                    }
                }
                if (!(low < -g_DistEpsilon) || !(high > g_DistEpsilon)) return Plan::General;
            }

            const double na = n.Dot(m_axis);
            if (std::abs(na) < 1e-9) return Plan::General;
            Side& side = na > 0.0 ? m_lo : m_hi;
            const Side& other = na > 0.0 ? m_hi : m_lo;
            if (side.cornered) return Plan::General;
            // Along each generator (t growing along the axis) the plane stays strictly short of
            // the opposite end, and lies beyond its own end everywhere (it replaces it) or on both
            // sides of it by more than the tolerance (it makes a corner).
            const double sense = na > 0.0 ? 1.0 : -1.0;
            double low = 0.0, high = 0.0;
            gap(candidate, other.base, sense, low, high);
            if (low <= g_DistEpsilon) return Plan::General;
            if (other.cornered) {
                gap(candidate, other.corner, sense, low, high);
                if (low <= g_DistEpsilon) return Plan::General;
            }
            gap(side.base, candidate, sense, low, high);
            if (low >= -1e-9) {
                side.base = candidate;
            } else if (low < -kCornerGap && high > kCornerGap) {
                side.cornered = true;
                side.corner = candidate;
            } else {
                return Plan::General;
            }
            cut = true;
        }
        return cut ? Plan::Build : Plan::Whole;
    }

    TopoDS_Shape build() {
        BRep_Builder builder;
        TopoDS_Shell shell;
        builder.MakeShell(shell);
        EndFaces ends[2];  // low, high
        for (const Loop& loop : m_loops) {
            const size_t m = loop.size();
            std::vector<int> vLo(m), vHi(m);
            std::vector<TopoDS_Edge> rise(m);
            for (size_t i = 0; i < m; ++i) {
                const double tLo = at(m_lo, loop[i].start, true), tHi = at(m_hi, loop[i].start, false);
                vLo[i] = ends[0].vertex(loop[i].start + tLo * m_axis, loop[i].start);
                vHi[i] = ends[1].vertex(loop[i].start + tHi * m_axis, loop[i].start);
                // The rise's parameter is t, the cylinders' v.
                builder.MakeEdge(rise[i], new Geom_Line(gp_Pnt(loop[i].start), gp_Dir(m_axis)), kTolerance);
                builder.Add(rise[i], ends[0].vertices[vLo[i]].Oriented(TopAbs_FORWARD));
                builder.Add(rise[i], ends[1].vertices[vHi[i]].Oriented(TopAbs_REVERSED));
                builder.Range(rise[i], tLo, tHi);
            }
            throughVertices(ends[0], m_lo, loop, vLo);
            throughVertices(ends[1], m_hi, loop, vHi);
            for (size_t i = 0; i < m; ++i) {
                const size_t j = (i + 1) % m;
                const Piece& piece = loop[i];
                const std::vector<int> lo = chain(ends[0], m_lo, true, piece, vLo[i], vLo[j]);
                const std::vector<int> hi = chain(ends[1], m_hi, false, piece, vHi[i], vHi[j]);
                TopoDS_Wire wire;
                builder.MakeWire(wire);
                for (int k : lo) builder.Add(wire, ends[0].edges[k].edge);
                builder.Add(wire, rise[j]);
                for (auto k = hi.rbegin(); k != hi.rend(); ++k) builder.Add(wire, ends[1].edges[*k].edge.Reversed());
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
                    builder.MakeFace(face, cylinder, kTolerance);
                    // The cylinder's normal points away from its axis: outward for counter-
                    // clockwise arcs; for clockwise ones the face is reversed, and its wire with it.
                    builder.Add(face, piece.ccw ? wire : TopoDS::Wire(wire.Reversed()));
                    const double uStart = piece.ccw ? 0.0 : piece.sweep, uEnd = piece.ccw ? piece.sweep : 0.0;
                    if (i == j) {
                        builder.UpdateEdge(rise[i], riseCurve(kTwoPi), riseCurve(0.0), face, kTolerance);
                    } else {
                        builder.UpdateEdge(rise[i], riseCurve(uStart), face, kTolerance);
                        builder.UpdateEdge(rise[j], riseCurve(uEnd), face, kTolerance);
                    }
                    for (int side = 0; side < 2; ++side) {
                        for (int k : side == 0 ? lo : hi) {
                            const EndEdge& e = ends[side].edges[k];
                            const double u0 = piece.ccw ? e.from : piece.sweep - e.from;
                            const double u1 = piece.ccw ? e.to : piece.sweep - e.to;
                            onCylinder(e.edge, e.curve, cylinder, face, u0, u1);
                        }
                    }
                    if (!piece.ccw) face.Reverse();
                }
                builder.Add(shell, face);
            }
        }
        for (int side = 0; side < 2; ++side) {
            const Side& s = side == 0 ? m_lo : m_hi;
            if (s.cornered) chords(ends[side], s, side == 0);
            for (const bool onCorner : {false, true}) {
                if (onCorner && !s.cornered) continue;
                for (const TopoDS_Face& face : endFaces(ends[side], onCorner ? s.corner : s.base, onCorner, side == 1))
                    builder.Add(shell, face);
            }
        }
        shell.Closed(Standard_True);
        TopoDS_Solid solid;
        builder.MakeSolid(solid);
        builder.Add(solid, shell);
        return solid;
    }

private:
    static constexpr double kTolerance = 1e-7;

    // Below this a corner plane is taken as meeting its end's plane nowhere inside the section.
    static constexpr double kCornerGap = 1e-5;
    // Corner lines must pass this far from every vertex of the section.
    static constexpr double kTouch = 1e-6;

    // An edge of an end in the section's sense (material on its left about the axis), between
    // two of the end's vertices; from and to are where it starts and ends along its piece (the
    // angle from an arc's first end).
    struct EndEdge {
        TopoDS_Edge edge;
        Handle(Geom_Curve) curve;
        int first = 0, last = 0;
        bool onCorner = false;
        double from = 0.0, to = 0.0;
        std::vector<gp_XYZ> samples;  // over the section, for the sense of its loop
    };
    struct EndFaces {
        std::vector<TopoDS_Vertex> vertices;
        std::vector<gp_XYZ> over;  // the section point under each vertex
        std::vector<EndEdge> edges;
        std::vector<int> crossings;  // vertices on the corner line
        int vertex(const gp_XYZ& at, const gp_XYZ& section) {
            TopoDS_Vertex v;
            BRep_Builder().MakeVertex(v, gp_Pnt(at), kTolerance);
            vertices.push_back(v);
            over.push_back(section);
            return static_cast<int>(vertices.size()) - 1;
        }
    };

    double at(const End& e, const gp_XYZ& p) const { return (e.d - e.n.Dot(p)) / e.n.Dot(m_axis); }
    double at(const Side& s, const gp_XYZ& p, bool low) const {
        const double t = at(s.base, p);
        if (!s.cornered) return t;
        const double c = at(s.corner, p);
        return low ? std::max(t, c) : std::min(t, c);
    }

    // The range of the signed distance from plane over the end plane e.
    void distances(const End& plane, const End& e, double& low, double& high) const {
        const double na = plane.n.Dot(m_axis), ea = e.n.Dot(m_axis);
        range(plane.n - (na / ea) * e.n, low, high);
        const double constant = na * e.d / ea - plane.d;
        low += constant;
        high += constant;
    }

    // The range of t_to(p) - t_from(p) over the section, times sense.
    void gap(const End& from, const End& to, double sense, double& low, double& high) const {
        const double fa = from.n.Dot(m_axis), ta = to.n.Dot(m_axis);
        range(sense * (from.n / fa - to.n / ta), low, high);
        const double constant = sense * (to.d / ta - from.d / fa);
        low += constant;
        high += constant;
    }

    void arcFrame(const Piece& piece, gp_XYZ& e1, gp_XYZ& e2) const {
        e1 = (piece.start - piece.centre) / piece.radius;
        e2 = (piece.ccw ? m_axis : m_axis.Reversed()).Crossed(e1);
    }

    gp_XYZ pointOf(const Piece& piece, double along) const {
        if (!piece.arc) return piece.start + along * (piece.end - piece.start);
        gp_XYZ e1, e2;
        arcFrame(piece, e1, e2);
        return piece.centre + piece.radius * (std::cos(along) * e1 + std::sin(along) * e2);
    }

    Piece subPiece(const Piece& piece, double from, double to) const {
        Piece sub = piece;
        sub.start = from == 0.0 ? piece.start : pointOf(piece, from);
        sub.end = to == (piece.arc ? piece.sweep : 1.0) ? piece.end : pointOf(piece, to);
        sub.sweep = to - from;
        return sub;
    }

    // The piece's edges on an end, split where the end's corner line crosses it.
    std::vector<int> chain(EndFaces& end, const Side& side, bool low, const Piece& piece, int first, int last) {
        const double length = piece.arc ? piece.sweep : 1.0;
        std::vector<double> cuts;
        if (side.cornered) {
            const auto g = [&](const gp_XYZ& p) { return at(side.corner, p) - at(side.base, p); };
            const double g0 = g(piece.start), g1 = g(piece.end);
            // A vertex on the corner line is no cut of its pieces (see throughVertices).
            const bool startOn = std::abs(g0) < kTouch, endOn = std::abs(g1) < kTouch;
            const double margin = 1e-9 * length;
            if (!piece.arc) {
                if (!startOn && !endOn && (g0 < 0.0) != (g1 < 0.0)) cuts.push_back(g0 / (g0 - g1));
            } else {
                gp_XYZ e1, e2;
                arcFrame(piece, e1, e2);
                const double a = g(piece.centre);
                const double b = g(piece.centre + piece.radius * e1) - a, c = g(piece.centre + piece.radius * e2) - a;
                const double r = std::hypot(b, c);
                const double ratio = r > 0.0 ? -a / r : 2.0;
                if (std::abs(std::abs(ratio) - 1.0) < 1e-9) throw Standard_Failure("a corner line touching an arc");
                if (std::abs(ratio) < 1.0) {
                    const double phi = std::atan2(c, b), delta = std::acos(ratio);
                    for (double root : {phi - delta, phi + delta}) {
                        root -= kTwoPi * std::floor(root / kTwoPi);
                        if (root > margin && root < piece.sweep - margin) cuts.push_back(root);
                    }
                    std::sort(cuts.begin(), cuts.end());
                }
            }
        }
        std::vector<int> result;
        int from = first;
        double at0 = 0.0;
        for (size_t k = 0; k <= cuts.size(); ++k) {
            const double at1 = k < cuts.size() ? cuts[k] : length;
            int to = last;
            if (k < cuts.size()) {
                const gp_XYZ p = pointOf(piece, at1);
                to = end.vertex(p + at(side.base, p) * m_axis, p);
                end.crossings.push_back(to);
            }
            if (at1 - at0 < 1e-6 * length) throw Standard_Failure("a corner line nearly through a vertex");
            const Piece sub = subPiece(piece, at0, at1);
            const gp_XYZ mid = pointOf(piece, 0.5 * (at0 + at1));
            EndEdge e;
            e.onCorner = side.cornered && ((at(side.corner, mid) > at(side.base, mid)) == low);
            e.edge = endEdge(e.onCorner ? side.corner : side.base, sub, end.vertices[from], end.vertices[to], e.curve);
            e.first = from;
            e.last = to;
            e.from = at0;
            e.to = at1;
            const int steps = piece.arc ? 8 : 1;
            for (int i = 0; i < steps; ++i) e.samples.push_back(pointOf(piece, at0 + (at1 - at0) * i / steps));
            end.edges.push_back(e);
            result.push_back(static_cast<int>(end.edges.size()) - 1);
            from = to;
            at0 = at1;
        }
        return result;
    }

    // Section vertices on the end's corner line where the section's boundary crosses it (the
    // line meets the boundary just before and just after on opposite sides) are crossings; where
    // it only touches them, they are none.
    void throughVertices(EndFaces& end, const Side& side, const Loop& loop, const std::vector<int>& vertices) const {
        if (!side.cornered) return;
        const auto g = [&](const gp_XYZ& p) { return at(side.corner, p) - at(side.base, p); };
        const size_t m = loop.size();
        for (size_t i = 0; i < m; ++i) {
            if (std::abs(g(loop[i].start)) >= kTouch) continue;
            const Piece& before = loop[(i + m - 1) % m];
            const Piece& after = loop[i];
            const double beforeLength = before.arc ? before.sweep : 1.0, afterLength = after.arc ? after.sweep : 1.0;
            const double gBefore = g(pointOf(before, beforeLength * (1.0 - 1e-3)));
            const double gAfter = g(pointOf(after, afterLength * 1e-3));
            if (std::abs(gBefore) < kTouch || std::abs(gAfter) < kTouch)
                throw Standard_Failure("a piece of the section runs along the corner line");
            if ((gBefore < 0.0) != (gAfter < 0.0)) end.crossings.push_back(vertices[i]);
        }
    }

    // The segments of the corner line inside the section, shared by the end's two planes: the
    // crossings in order along the line pair up.
    void chords(EndFaces& end, const Side& side, bool low) const {
        if (end.crossings.size() % 2 != 0) throw Standard_Failure("the corner line crosses the section oddly");
        const gp_XYZ gradient = side.base.n / side.base.n.Dot(m_axis) - side.corner.n / side.corner.n.Dot(m_axis);
        const gp_XYZ across = gradient - gradient.Dot(m_axis) * m_axis;
        if (across.Modulus() < 1e-12) throw Standard_Failure("the corner planes are parallel");
        // Walking along d, where the corner's t exceeds the base's is on the left.
        const gp_XYZ d = across.Normalized().Crossed(m_axis);
        std::vector<int> order = end.crossings;
        std::sort(order.begin(), order.end(), [&](int a, int b) { return end.over[a].Dot(d) < end.over[b].Dot(d); });
        for (size_t k = 0; k + 1 < order.size(); k += 2) {
            const int a = order[k], b = order[k + 1];
            const gp_Pnt pa = BRep_Tool::Pnt(end.vertices[a]), pb = BRep_Tool::Pnt(end.vertices[b]);
            if (pa.Distance(pb) < kTouch) throw Standard_Failure("crossings of the corner line coincide");
            BRep_Builder builder;
            TopoDS_Edge edge;
            builder.MakeEdge(edge, new Geom_Line(pa, gp_Dir(pb.XYZ() - pa.XYZ())), kTolerance);
            builder.Add(edge, end.vertices[a].Oriented(TopAbs_FORWARD));
            builder.Add(edge, end.vertices[b].Oriented(TopAbs_REVERSED));
            builder.Range(edge, 0.0, pa.Distance(pb));
            EndEdge along, back;
            along.edge = edge;
            along.first = a;
            along.last = b;
            along.onCorner = low;  // the greater t is the low end's, the lesser the high end's
            along.samples = {end.over[a]};
            back.edge = TopoDS::Edge(edge.Reversed());
            back.first = b;
            back.last = a;
            back.onCorner = !low;
            back.samples = {end.over[b]};
            end.edges.push_back(along);
            end.edges.push_back(back);
        }
    }

    // The faces of an end on one of its planes: its edges there chained into loops, one face
    // with its holes, or one face a loop where the region falls apart without holes.
    std::vector<TopoDS_Face> endFaces(const EndFaces& end, const End& e, bool onCorner, bool high) const {
        std::map<int, int> next;
        std::vector<int> mine;
        for (size_t k = 0; k < end.edges.size(); ++k) {
            if (end.edges[k].onCorner != onCorner) continue;
            if (!next.emplace(end.edges[k].first, static_cast<int>(k)).second) throw Standard_Failure("loops of an end meet");
            mine.push_back(static_cast<int>(k));
        }
        const gp_XYZ helper = std::abs(m_axis.X()) < 0.9 ? gp_XYZ(1, 0, 0) : gp_XYZ(0, 1, 0);
        const gp_XYZ e1 = helper.Crossed(m_axis).Normalized();
        const gp_XYZ e2 = m_axis.Crossed(e1);
        std::vector<bool> used(end.edges.size(), false);
        std::vector<TopoDS_Wire> outer, holes;
        BRep_Builder builder;
        for (const int start : mine) {
            if (used[start]) continue;
            std::vector<int> loop;
            int k = start;
            do {
                if (used[k]) throw Standard_Failure("a loop of an end does not close");
                used[k] = true;
                loop.push_back(k);
                const auto found = next.find(end.edges[k].last);
                if (found == next.end()) throw Standard_Failure("a loop of an end is open");
                k = found->second;
            } while (k != start);
            std::vector<gp_XYZ> points;
            for (int i : loop) points.insert(points.end(), end.edges[i].samples.begin(), end.edges[i].samples.end());
            double area = 0.0;
            for (size_t i = 0; i < points.size(); ++i) {
                const gp_XYZ& p = points[i];
                const gp_XYZ& q = points[(i + 1) % points.size()];
                area += p.Dot(e1) * q.Dot(e2) - q.Dot(e1) * p.Dot(e2);
            }
            TopoDS_Wire wire;
            builder.MakeWire(wire);
            if (high) {
                for (int i : loop) builder.Add(wire, end.edges[i].edge);
            } else {
                for (auto i = loop.rbegin(); i != loop.rend(); ++i) builder.Add(wire, end.edges[*i].edge.Reversed());
            }
            (area > 0.0 ? outer : holes).push_back(wire);
        }
        if (outer.size() != 1 && !holes.empty()) throw Standard_Failure("an end with several parts and holes");
        const bool alongAxis = e.n.Dot(m_axis) > 0.0;
        const gp_XYZ outward = (alongAxis == high) ? e.n : e.n.Reversed();
        std::vector<TopoDS_Face> faces;
        for (const TopoDS_Wire& wire : outer) {
            TopoDS_Face face;
            builder.MakeFace(face, new Geom_Plane(gp_Pnt(e.d * e.n), gp_Dir(outward)), kTolerance);
            builder.Add(face, wire);
            if (outer.size() == 1)
                for (const TopoDS_Wire& hole : holes) builder.Add(face, hole);
            faces.push_back(face);
        }
        return faces;
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

    gp_XYZ m_axis;
    Side m_lo, m_hi;
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
