// CBody on an OpenCASCADE shape: measures, boxes, validity, and the conversions of NDPBodyOcct.h.
#include "ndp/NDPBody.h"

#include "ndp/NDPBodyOcct.h"
#include "ndp/NDPPlane.h"

#include <BRepBndLib.hxx>
#include <BRepCheck_Analyzer.hxx>
#include <BRepGProp.hxx>
#include <BRepLib.hxx>
#include <BRepBuilderAPI_Copy.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakePrism.hxx>
#include <TopoDS.hxx>
#include <Bnd_Box.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS_Iterator.hxx>
#include <gp_Trsf.hxx>

#include <QString>

#include <algorithm>
#include <memory>
#include <cmath>

namespace ndp {

struct CBody::Data {
    TopoDS_Shape shape;
    // For a prism: the section face it was extruded from and the extrusion (null face otherwise).
    TopoDS_Face section;
    gp_Vec extrusion;
    // The kernel's validity check, run once and shared by the copies of a body: bodies never
    // change after they are made.
    enum class Validity { Unknown, Valid, Invalid };
    std::shared_ptr<Validity> validity = std::make_shared<Validity>(Validity::Unknown);
};

namespace {

void setError(QString* error, const QString& text) {
    if (error) *error = text;
}

QString failureText(const Standard_Failure& failure) {
    const char* message = failure.GetMessageString();
    return QString::fromUtf8(failure.DynamicType()->Name()) +
           (message && *message ? QStringLiteral(": ") + QString::fromUtf8(message) : QString());
}

bool finite(const CVector3& v) { return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]); }

int countOf(const TopoDS_Shape& shape, TopAbs_ShapeEnum kind) {
    int count = 0;
    if (shape.IsNull()) return 0;
    for (TopExp_Explorer it(shape, kind); it.More(); it.Next()) ++count;
    return count;
}

// A compound holding a single solid (as the booleans return it) is that solid.
TopoDS_Shape unwrapped(const TopoDS_Shape& shape) {
    TopoDS_Shape current = shape;
    while (!current.IsNull() && current.ShapeType() == TopAbs_COMPOUND) {
        TopoDS_Iterator it(current);
        if (!it.More()) break;
        const TopoDS_Shape only = it.Value();
        it.Next();
        if (it.More()) break;
        if (only.ShapeType() != TopAbs_SOLID && only.ShapeType() != TopAbs_COMPOUND) break;
        current = only;
    }
    return current.ShapeType() == TopAbs_SOLID ? current : shape;
}

CBox3d boxOf(const TopoDS_Shape& shape) {
    CBox3d box;
    if (shape.IsNull()) return box;
    Bnd_Box bnd;
    BRepBndLib::AddOptimal(shape, bnd, Standard_False, Standard_False);
    if (bnd.IsVoid()) return box;
    bnd.Get(box.min[0], box.min[1], box.min[2], box.max[0], box.max[1], box.max[2]);
    box.empty = false;
    return box;
}

}  // namespace

CBody::CBody(Data* data) : m_data(data) {}

CBody::~CBody() { delete m_data; }

void CBody::Release() {
    if (--m_refCount <= 0) delete this;
}

CBody* CBody::CreateBox(const CCoord3& frame, double sizeX, double sizeY, double sizeZ, QString* error) {
    if (!(sizeX > 0.0) || !(sizeY > 0.0) || !(sizeZ > 0.0) || !std::isfinite(sizeX) || !std::isfinite(sizeY) ||
        !std::isfinite(sizeZ)) {
        setError(error, QStringLiteral("a box needs three positive sizes"));
        return nullptr;
    }
    gp_Ax3 placement;
    if (!CBodyOcct::ToAx3(frame, placement, error)) return nullptr;
    try {
        BRepPrimAPI_MakeBox maker(placement.Ax2(), sizeX, sizeY, sizeZ);
        maker.Build();
        if (!maker.IsDone()) {
            setError(error, QStringLiteral("the box could not be built"));
            return nullptr;
        }
        return CBodyOcct::Create(maker.Solid());
    } catch (const Standard_Failure& failure) {
        setError(error, QStringLiteral("the box could not be built: ") + failureText(failure));
    }
    return nullptr;
}

CBody* CBody::CreateFace(const CPolygon& polygon, const CCoord3& frame, QString* error) {
    gp_Ax3 placement;
    if (!CBodyOcct::ToAx3(frame, placement, error)) return nullptr;
    TopoDS_Face face;
    if (!CBodyOcct::MakeFace(polygon, placement, face, error)) return nullptr;
    return CBodyOcct::Create(face);
}

CBody* CBody::Copy() const {
    CBody* copy = CBodyOcct::Create(m_data->shape);
    copy->m_data->validity = m_data->validity;  // the same shape, so the same answer
    copy->m_data->section = m_data->section;
    copy->m_data->extrusion = m_data->extrusion;
    return copy;
}

bool CBody::IsPrism() const { return !m_data->section.IsNull(); }

CBody* CBody::ExtrudedTo(double length) const {
    if (!IsPrism() || !(length > 0.0) || !std::isfinite(length) || m_data->extrusion.Magnitude() == 0.0) return nullptr;
    try {
        const gp_Vec extrusion = m_data->extrusion.Normalized() * length;
        const TopoDS_Face section = TopoDS::Face(BRepBuilderAPI_Copy(m_data->section).Shape());
        BRepPrimAPI_MakePrism prism(section, extrusion);
        if (!prism.IsDone()) return nullptr;
        CBody* body = CBodyOcct::CreatePrism(prism.Shape(), section, extrusion);
        body->m_data->validity = std::make_shared<Data::Validity>(*m_data->validity);  // the same section swept
        return body;
    } catch (const Standard_Failure&) {
        return nullptr;
    }
}

int CBody::SolidCount() const { return countOf(m_data->shape, TopAbs_SOLID); }

int CBody::FaceCount() const { return countOf(m_data->shape, TopAbs_FACE); }

double CBody::Volume() const {
    if (m_data->shape.IsNull()) return 0.0;
    try {
        GProp_GProps props;
        BRepGProp::VolumePropertiesGK(m_data->shape, props, 1e-9);
        return props.Mass();
    } catch (const Standard_Failure&) {
        return 0.0;
    }
}

double CBody::SurfaceArea() const {
    if (m_data->shape.IsNull()) return 0.0;
    try {
        GProp_GProps props;
        BRepGProp::SurfaceProperties(m_data->shape, props);
        return props.Mass();
    } catch (const Standard_Failure&) {
        return 0.0;
    }
}

CBox3d CBody::BoundingBox() const {
    try {
        return boxOf(m_data->shape);
    } catch (const Standard_Failure&) {
        return CBox3d();
    }
}

CBox3d CBody::BoundingBoxInPlane(const CPlane& plane) const {
    if (m_data->shape.IsNull()) return CBox3d();
    try {
        gp_Trsf toPlane;
        toPlane.SetTransformation(gp_Ax3(CBodyOcct::ToPln(plane).Position()));
        return boxOf(m_data->shape.Moved(TopLoc_Location(toPlane)));
    } catch (const Standard_Failure&) {
        return CBox3d();
    }
}

bool CBody::IsValid() const {
    Data::Validity& validity = *m_data->validity;
    if (validity == Data::Validity::Unknown) {
        bool valid = false;
        try {
            valid = !m_data->shape.IsNull() &&
                    BRepCheck_Analyzer(m_data->shape, Standard_True, Standard_True).IsValid() == Standard_True;
        } catch (const Standard_Failure&) {
        }
        validity = valid ? Data::Validity::Valid : Data::Validity::Invalid;
    }
    return validity == Data::Validity::Valid;
}

void CBodyOcct::SetKnownValid(CBody& body) { *body.m_data->validity = CBody::Data::Validity::Valid; }

CBody* CBodyOcct::Create(const TopoDS_Shape& shape) {
    auto* data = new CBody::Data;
    data->shape = unwrapped(shape);
    return new CBody(data);
}

CBody* CBodyOcct::CreatePrism(const TopoDS_Shape& solid, const TopoDS_Face& section, const gp_Vec& extrusion) {
    // The splits leave their arguments as they are and so would work out the plane curves of
    // these edges on every cut; a new prism is still the caller's alone, so they are stored now.
    for (TopExp_Explorer face(solid, TopAbs_FACE); face.More(); face.Next()) {
        TopTools_ListOfShape edges;
        for (TopExp_Explorer edge(face.Current(), TopAbs_EDGE); edge.More(); edge.Next()) edges.Append(edge.Current());
        BRepLib::BuildPCurveForEdgesOnPlane(edges, TopoDS::Face(face.Current()));
    }
    CBody* body = Create(solid);
    body->m_data->section = section;
    body->m_data->extrusion = extrusion;
    return body;
}

bool CBodyOcct::PrismOf(const CBody& body, TopoDS_Face& section, gp_Vec& extrusion) {
    if (body.m_data->section.IsNull()) return false;
    section = body.m_data->section;
    extrusion = body.m_data->extrusion;
    return true;
}

const TopoDS_Shape& CBodyOcct::Shape(const CBody& body) { return body.m_data->shape; }

bool CBodyOcct::ToAx3(const CCoord3& frame, gp_Ax3& out, QString* error) {
    if (!finite(frame.origin) || !finite(frame.xAxis) || !finite(frame.zAxis)) {
        setError(error, QStringLiteral("the frame has a number that is not finite"));
        return false;
    }
    const double zLength = Length(frame.zAxis);
    if (zLength == 0.0) {
        setError(error, QStringLiteral("the frame's Z axis has no length"));
        return false;
    }
    const CVector3 z = (1.0 / zLength) * frame.zAxis;
    const CVector3 x = frame.xAxis - Dot(frame.xAxis, z) * z;
    if (Length(x) < 1e-9 * std::max(1.0, Length(frame.xAxis))) {
        setError(error, QStringLiteral("the frame's X axis is parallel to its Z axis"));
        return false;
    }
    try {
        out = gp_Ax3(ToPnt(frame.origin), gp_Dir(ToVec(z)), gp_Dir(ToVec(x)));
        return true;
    } catch (const Standard_Failure& failure) {
        setError(error, QStringLiteral("the frame is not usable: ") + failureText(failure));
        return false;
    }
}

gp_Pln CBodyOcct::ToPln(const CPlane& plane) {
    return gp_Pln(gp_Ax3(ToPnt(plane.GetOrigin()), gp_Dir(ToVec(plane.GetNormal())), gp_Dir(ToVec(plane.GetUDirection()))));
}

}  // namespace ndp
