// CBooleanOperate on OpenCASCADE: each side is the common part of the body and a half-space, and
// the cut face the common part of the body and a planar face. Both the half-space and the face
// are built on a bounded face a little larger than the body, never on an unbounded plane.
#include "ndp/NDPBooleanOperate.h"

#include "ndp/NDPBody.h"
#include "ndp/NDPBodyOcct.h"
#include "ndp/NDPPlane.h"
#include "ndp/NDPTolerance.h"

#include <BOPAlgo_Alerts.hxx>
#include <BRepAlgoAPI_Common.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepPrimAPI_MakeHalfSpace.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <Geom_ElementarySurface.hxx>
#include <Geom_Plane.hxx>
#include <Geom_RectangularTrimmedSurface.hxx>
#include <Message_Report.hxx>
#include <ShapeUpgrade_UnifySameDomain.hxx>
#include <Standard_Failure.hxx>
#include <Precision.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace ndp {
namespace {

// Where the body lies relative to the plane: its box in the plane's U, V, normal coordinates.
struct Placement {
    CBox3d box;
    bool reachesPositive() const { return box.max[2] > g_DistEpsilon; }
    bool reachesNegative() const { return box.min[2] < -g_DistEpsilon; }
    bool nearPlane() const { return box.min[2] <= g_DistEpsilon && box.max[2] >= -g_DistEpsilon; }
};

// A rectangle of the plane that covers the body's shadow on it with a margin.
TopoDS_Face boundedFace(const CPlane& plane, const CBox3d& box, double& margin) {
    const double diagonal = Length(box.max - box.min);
    margin = std::max(1.0, 0.1 * diagonal);
    BRepBuilderAPI_MakeFace maker(CBodyOcct::ToPln(plane), box.min[0] - margin, box.max[0] + margin,
                                  box.min[1] - margin, box.max[1] + margin);
    return maker.Face();
}

int solidCount(const TopoDS_Shape& shape) {
    int count = 0;
    for (TopExp_Explorer it(shape, TopAbs_SOLID); it.More(); it.Next()) ++count;
    return count;
}

int faceCount(const TopoDS_Shape& shape) {
    int count = 0;
    for (TopExp_Explorer it(shape, TopAbs_FACE); it.More(); it.Next()) ++count;
    return count;
}

// Below this many faces the kernel's threads cost more than they save: a member's split runs on
// the caller's thread even when threads are allowed.
constexpr int kParallelFaces = 200;

// The surface a face lies on, with its location applied and any trimming taken off.
Handle(Geom_Surface) baseSurface(const TopoDS_Face& face) {
    Handle(Geom_Surface) surface = BRep_Tool::Surface(face);
    while (auto trimmed = Handle(Geom_RectangularTrimmedSurface)::DownCast(surface)) surface = trimmed->BasisSurface();
    return surface;
}

// Whether two neighbouring faces might lie on one surface, with the unifier's own tolerances.
// Planes are compared here; two elementary surfaces of different kinds never coincide; any
// other pair is left to the unifier.
bool maySameSurface(const TopoDS_Face& first, const TopoDS_Face& second) {
    const Handle(Geom_Surface) a = baseSurface(first), b = baseSurface(second);
    if (a.IsNull() || b.IsNull() || a == b) return true;
    const auto planeA = Handle(Geom_Plane)::DownCast(a), planeB = Handle(Geom_Plane)::DownCast(b);
    if (planeA && planeB) {
        const gp_Pln p = planeA->Pln(), q = planeB->Pln();
        return p.Axis().IsParallel(q.Axis(), Precision::Angular()) && p.Distance(q.Location()) <= Precision::Confusion();
    }
    const bool elementary = a->IsKind(STANDARD_TYPE(Geom_ElementarySurface)) && b->IsKind(STANDARD_TYPE(Geom_ElementarySurface));
    return !elementary || a->DynamicType() == b->DynamicType();
}

// Whether unifying the result could change it: two faces sharing an edge that may lie on one
// surface, or a vertex where only two edges meet (an edge split in two). A planar cut of a sound
// body rarely leaves either, and looking costs a small part of what the unifier would.
bool mayUnify(const TopoDS_Shape& shape) {
    TopTools_IndexedDataMapOfShapeListOfShape edgeFaces;
    TopExp::MapShapesAndUniqueAncestors(shape, TopAbs_EDGE, TopAbs_FACE, edgeFaces);
    for (int i = 1; i <= edgeFaces.Extent(); ++i) {
        const TopTools_ListOfShape& faces = edgeFaces(i);
        if (faces.Extent() == 2 && maySameSurface(TopoDS::Face(faces.First()), TopoDS::Face(faces.Last()))) return true;
    }
    TopTools_IndexedDataMapOfShapeListOfShape vertexEdges;
    TopExp::MapShapesAndUniqueAncestors(shape, TopAbs_VERTEX, TopAbs_EDGE, vertexEdges);
    for (int i = 1; i <= vertexEdges.Extent(); ++i)
        if (vertexEdges(i).Extent() <= 2) return true;
    return false;
}

// The solid builder leaves the half-space's face outside the body unused and says so: the one
// warning that does not make a result doubtful.
bool onlyUnusedFaces(const Message_ListOfAlert& warnings) {
    for (Message_ListOfAlert::Iterator it(warnings); it.More(); it.Next())
        if (!it.Value()->IsInstance(STANDARD_TYPE(BOPAlgo_AlertSolidBuilderUnusedFaces))) return false;
    return true;
}

// One split: the body's shape, where it lies, and the bounded face of the plane over it.
class Splitter {
public:
    Splitter(bool checkInput, bool nonDestructive, bool unifyResult, bool runParallel, QString& error)
        : m_checkInput(checkInput), m_nonDestructive(nonDestructive), m_unifyResult(unifyResult),
          m_runParallel(runParallel), m_error(error) {}

    // Checks the body and finds where it lies; false with the reason for a body it refuses.
    bool prepare(const CPlane& plane, const CBody* body) {
        if (!body) return refuse(QStringLiteral("there is no body to split"));
        m_shape = CBodyOcct::Shape(*body);
        if (m_shape.IsNull() || solidCount(m_shape) == 0) return refuse(QStringLiteral("the body has no solid"));
        if (m_checkInput && !body->IsValid())
            return refuse(QStringLiteral("the body is not a valid solid"));
        // Vertices on both sides beyond the tolerance settle that the plane cuts, and then a box
        // about the body is enough to size the plane's face. Otherwise the tight box decides.
        if (!crossesAtVertices(plane) || !looseBoxInPlane(plane, m_where.box)) m_where.box = body->BoundingBoxInPlane(plane);
        if (m_where.box.IsEmpty()) return refuse(QStringLiteral("the body has no extent"));
        m_face = boundedFace(plane, m_where.box, m_margin);
        m_plane = plane;
        return true;
    }

    const Placement& where() const { return m_where; }

    // The common part of the body and the half-space on one side of the plane (possibly no solid
    // at all); false with the reason when the kernel fails.
    bool side(bool positive, TopoDS_Shape& out) {
        const double reach = std::max(std::abs(m_where.box.min[2]), std::abs(m_where.box.max[2])) + m_margin;
        const double u = 0.5 * (m_where.box.min[0] + m_where.box.max[0]);
        const double v = 0.5 * (m_where.box.min[1] + m_where.box.max[1]);
        const CVector3 reference = m_plane.GetPoint(u, v) + (positive ? reach : -reach) * m_plane.GetNormal();
        BRepPrimAPI_MakeHalfSpace halfSpace(m_face, CBodyOcct::ToPnt(reference));
        if (!halfSpace.IsDone()) return refuse(QStringLiteral("the half-space of the plane could not be made"));
        return common(halfSpace.Solid(), out);
    }

    bool cutFace(TopoDS_Shape& out) { return common(m_face, out); }
    // Whether the last common part was made without a warning from the kernel: the part of a
    // valid body that such an operation leaves is itself valid and need not be checked again.
    bool clean() const { return m_clean; }

private:
    bool crossesAtVertices(const CPlane& plane) const {
        bool below = false, above = false;
        for (TopExp_Explorer it(m_shape, TopAbs_VERTEX); it.More() && !(below && above); it.Next()) {
            const double distance = plane.SignedDistance(CBodyOcct::FromPnt(BRep_Tool::Pnt(TopoDS::Vertex(it.Current()))));
            below = below || distance < -g_DistEpsilon;
            above = above || distance > g_DistEpsilon;
        }
        return below && above;
    }

    // The body's box (with the kernel's allowance) turned into the plane's U, V, normal coordinates.
    bool looseBoxInPlane(const CPlane& plane, CBox3d& out) const {
        Bnd_Box global;
        BRepBndLib::Add(m_shape, global, Standard_False);
        if (global.IsVoid()) return false;
        double lo[3], hi[3];
        global.Get(lo[0], lo[1], lo[2], hi[0], hi[1], hi[2]);
        const CVector3 axes[3] = {plane.GetUDirection(), plane.GetVDirection(), plane.GetNormal()};
        for (int corner = 0; corner < 8; ++corner) {
            const CVector3 p{corner & 1 ? hi[0] : lo[0], corner & 2 ? hi[1] : lo[1], corner & 4 ? hi[2] : lo[2]};
            const CVector3 d = p - plane.GetOrigin();
            for (int k = 0; k < 3; ++k) {
                const double value = Dot(d, axes[k]);
                if (corner == 0 || value < out.min[k]) out.min[k] = value;
                if (corner == 0 || value > out.max[k]) out.max[k] = value;
            }
        }
        out.empty = false;
        return true;
    }

    bool refuse(const QString& text) {
        m_error = text;
        return false;
    }

    bool common(const TopoDS_Shape& tool, TopoDS_Shape& out) {
        TopTools_ListOfShape arguments, tools;
        arguments.Append(m_shape);
        tools.Append(tool);
        BRepAlgoAPI_Common op;
        op.SetArguments(arguments);
        op.SetTools(tools);
        op.SetNonDestructive(m_nonDestructive);
        op.SetRunParallel(m_runParallel && faceCount(m_shape) > kParallelFaces);
        op.Build();
        if (op.HasErrors() || !op.IsDone()) {
            std::ostringstream report;
            op.DumpErrors(report);
            return refuse(QStringLiteral("the kernel could not split the body: ") +
                          QString::fromStdString(report.str()).simplified());
        }
        m_clean = onlyUnusedFaces(op.GetReport()->GetAlerts(Message_Warning));
        out = op.Shape();
        if (m_unifyResult && !out.IsNull() && mayUnify(out)) {
            ShapeUpgrade_UnifySameDomain unify(out, Standard_True, Standard_True, Standard_False);
            unify.SetSafeInputMode(Standard_False);  // the result is ours: no copy of it
            unify.Build();
            out = unify.Shape();
        }
        return true;
    }

    bool m_checkInput;
    bool m_nonDestructive;
    bool m_unifyResult;
    bool m_runParallel;
    QString& m_error;
    TopoDS_Shape m_shape;
    Placement m_where;
    TopoDS_Face m_face;
    double m_margin = 1.0;
    bool m_clean = false;
    CPlane m_plane;
};

QString failureText(const Standard_Failure& failure) {
    const char* message = failure.GetMessageString();
    return QStringLiteral("the kernel failed while splitting: ") + QString::fromUtf8(failure.DynamicType()->Name()) +
           (message && *message ? QStringLiteral(" ") + QString::fromUtf8(message) : QString());
}

// Why the exception being handled stopped a split.
QString currentFailureText() {
    try {
        throw;
    } catch (const Standard_Failure& failure) {
        return failureText(failure);
    } catch (const std::exception& e) {
        return QStringLiteral("splitting failed: ") + QString::fromLocal8Bit(e.what());
    } catch (...) {
        return QStringLiteral("splitting failed");
    }
}

}  // namespace

CBooleanOperate::CBooleanOperate(bool checkInput, bool nonDestructive, bool unifyResult, bool runParallel)
    : m_checkInput(checkInput), m_nonDestructive(nonDestructive), m_unifyResult(unifyResult), m_runParallel(runParallel) {}

CBody* CBooleanOperate::SplitPositiveBody(const CPlane& plane, const CBody* body) {
    return splitSide(plane, body, true);
}

CBody* CBooleanOperate::SplitNegativeBody(const CPlane& plane, const CBody* body) {
    return splitSide(plane, body, false);
}

CBody* CBooleanOperate::splitSide(const CPlane& plane, const CBody* body, bool positiveSide) {
    m_lastError.clear();
    try {
        Splitter splitter(m_checkInput, m_nonDestructive, m_unifyResult, m_runParallel, m_lastError);
        if (!splitter.prepare(plane, body)) return nullptr;
        const Placement& where = splitter.where();
        const bool reachesKept = positiveSide ? where.reachesPositive() : where.reachesNegative();
        const bool reachesRemoved = positiveSide ? where.reachesNegative() : where.reachesPositive();
        if (!reachesKept) return nullptr;
        if (!reachesRemoved) return body->Copy();
        TopoDS_Shape part;
        if (!splitter.side(positiveSide, part)) return nullptr;
        if (solidCount(part) == 0) return nullptr;
        CBody* result = CBodyOcct::Create(part);
        if (m_checkInput && splitter.clean()) CBodyOcct::SetKnownValid(*result);
        return result;
    } catch (...) {
        m_lastError = currentFailureText();
    }
    return nullptr;
}

bool CBooleanOperate::SplitBody(const CPlane& plane, const CBody* body, CBody*& positive, CBody*& negative,
                                CBody*& cutFace) {
    positive = negative = cutFace = nullptr;
    m_lastError.clear();
    try {
        Splitter splitter(m_checkInput, m_nonDestructive, m_unifyResult, m_runParallel, m_lastError);
        if (!splitter.prepare(plane, body)) return false;
        const Placement& where = splitter.where();
        TopoDS_Shape positivePart, negativePart, facePart;
        const bool crossing = where.reachesPositive() && where.reachesNegative();
        if (crossing) {
            if (!splitter.side(true, positivePart) || !splitter.side(false, negativePart)) return false;
        }
        if (where.nearPlane() && !splitter.cutFace(facePart)) return false;

        if (crossing) {
            if (solidCount(positivePart) > 0) positive = CBodyOcct::Create(positivePart);
            if (solidCount(negativePart) > 0) negative = CBodyOcct::Create(negativePart);
        } else if (where.reachesPositive()) {
            positive = body->Copy();
        } else if (where.reachesNegative()) {
            negative = body->Copy();
        }
        if (!facePart.IsNull() && faceCount(facePart) > 0) cutFace = CBodyOcct::Create(facePart);
        return true;
    } catch (...) {
        m_lastError = currentFailureText();
    }
    for (CBody** out : {&positive, &negative, &cutFace}) {
        if (*out) (*out)->Release();
        *out = nullptr;
    }
    return false;
}

bool CBooleanOperate::CutFace(const CPlane& plane, const CBody* body, CBody*& cutFace) {
    cutFace = nullptr;
    m_lastError.clear();
    try {
        Splitter splitter(m_checkInput, m_nonDestructive, m_unifyResult, m_runParallel, m_lastError);
        if (!splitter.prepare(plane, body)) return false;
        TopoDS_Shape facePart;
        if (splitter.where().nearPlane() && !splitter.cutFace(facePart)) return false;
        if (!facePart.IsNull() && faceCount(facePart) > 0) cutFace = CBodyOcct::Create(facePart);
        return true;
    } catch (...) {
        m_lastError = currentFailureText();
    }
    return false;
}

}  // namespace ndp
