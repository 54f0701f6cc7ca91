// Members and cutting planes as scene nodes.
#include "app/view/BXQModelScene.h"

#include "body_builder/SKRMemberSolidShape.h"
#include "solid_split/SKRCuttingPlaneStore.h"
#include "solid_split/SKRCuttingPlanes.h"
#include "solid_split/SKRSolidSplit.h"

#include "ndp/NDPBody.h"
#include "ndp/NDPBodyMesh.h"
#include "ndp/NDPMeshParameter.h"
#include "ndp/NDPRef.h"
#include "scene/NDPScene.h"
#include "scene/VMPViewerManager.h"
#include "vmp/VMPElementDrawObj.h"
#include "vmp/VMPMembers.h"
#include "vmp/VMPProjectModel.h"

#include <osg/Geometry>
#include <osg/ComputeBoundsVisitor>
#include <osg/Material>

namespace bxq {
namespace {

// Display tessellation: 0.5 mm chords, 0.35 rad between neighbouring normals.
const ndp::CMeshParameter kMesh(0.5, 0.35);

// What makes two members' local solids equal: section, length and the cutting planes in their
// own head or tail frames.
QString meshKey(const QString& section, double length, const skr::split::CuttingPlaneEntries& cuts) {
    QString key = section + QLatin1Char('|') + QString::number(length, 'g', 17);
    for (const auto& cut : cuts) {
        key += cut.IsTail ? QLatin1String("|T") : QLatin1String("|H");
        for (const auto* v : {&cut.LocalCoordinate.origin, &cut.LocalCoordinate.xAxis, &cut.LocalCoordinate.zAxis})
            for (double x : *v) key += QLatin1Char(',') + QString::number(x, 'g', 17);
    }
    return key;
}

osg::Geode* geodeOf(const ndp::CBodyMesh& mesh) {
    auto* geometry = new osg::Geometry;
    geometry->setUseDisplayList(false);
    geometry->setUseVertexBufferObjects(true);
    const auto& v = mesh.GetVertices();
    const auto& n = mesh.GetNormals();
    auto* vertices = new osg::Vec3Array(static_cast<unsigned>(mesh.GetVertexCount()));
    auto* normals = new osg::Vec3Array(static_cast<unsigned>(mesh.GetVertexCount()));
    for (int i = 0; i < mesh.GetVertexCount(); ++i) {
        const size_t k = 3 * static_cast<size_t>(i);
        (*vertices)[static_cast<unsigned>(i)].set(static_cast<float>(v[k]), static_cast<float>(v[k + 1]), static_cast<float>(v[k + 2]));
        (*normals)[static_cast<unsigned>(i)].set(static_cast<float>(n[k]), static_cast<float>(n[k + 1]), static_cast<float>(n[k + 2]));
    }
    auto* indices = new osg::DrawElementsUInt(GL_TRIANGLES);
    indices->reserve(mesh.GetIndices().size());
    for (int index : mesh.GetIndices()) indices->push_back(static_cast<unsigned>(index));
    geometry->setVertexArray(vertices);
    geometry->setNormalArray(normals, osg::Array::BIND_PER_VERTEX);
    geometry->addPrimitiveSet(indices);
    auto* geode = new osg::Geode;
    geode->addDrawable(geometry);
    return geode;
}

osg::Matrixd placement(const ndp::CCoord3& f) {
    return osg::Matrixd(f.xAxis[0], f.xAxis[1], f.xAxis[2], 0, f.yAxis[0], f.yAxis[1], f.yAxis[2], 0, f.zAxis[0],
                        f.zAxis[1], f.zAxis[2], 0, f.origin[0], f.origin[1], f.origin[2], 1);
}

}  // namespace

BXQModelScene::BXQModelScene(VMPProjectModel* project, VMPViewerManager* viewer)
    : m_project(project), m_viewer(viewer),
      m_planes(std::make_unique<skr::split::SKRSplitPlaneDisplayManager>(project, viewer)) {
    // Members share the steel's material; planes carry their own.
    auto* material = new osg::Material;
    material->setDiffuse(osg::Material::FRONT_AND_BACK, osg::Vec4(0.62f, 0.64f, 0.68f, 1.0f));
    material->setAmbient(osg::Material::FRONT_AND_BACK, osg::Vec4(0.28f, 0.29f, 0.31f, 1.0f));
    material->setSpecular(osg::Material::FRONT_AND_BACK, osg::Vec4(0.2f, 0.2f, 0.2f, 1.0f));
    material->setShininess(osg::Material::FRONT_AND_BACK, 32.0f);
    m_viewer->getModelGroup()->getOrCreateStateSet()->setAttributeAndModes(material, osg::StateAttribute::ON);
    // Planes that the model update finds deleted are dropped; existing members keep theirs.
    m_planes->SetElementFilter([](IVMPElementDrawObj* element) { return element != nullptr; });
}

BXQModelScene::~BXQModelScene() {
    m_planes.reset();
    for (auto& member : m_members) m_viewer->getModelGroup()->removeChild(member.second.get());
}

osg::ref_ptr<osg::Geode> BXQModelScene::meshOf(std::int64_t memberId, const QString& section, double length,
                                                QString* error) {
    // The planes as the trimming reads them, but a failed read is an error, not an uncut member.
    std::vector<skr::split::CuttingPlaneRecord> records;
    if (!skr::split::ReadCuttingPlaneRecords(m_project->getProjectDB(), memberId, records, error)) return nullptr;
    skr::split::CuttingPlaneEntries cuts;
    for (const auto& record : records) cuts.push_back({record.isTail, record.local});
    const QString key = meshKey(section, length, cuts);
    const auto found = m_meshes.find(key);
    if (found != m_meshes.end()) return found->second;
    // The solid in the member's own frame: the head frame is the identity there.
    const ndp::CoordinateSystem3 local;
    skr::body::SKRMemberSolidShape shape(section, length, local);
    const VMPElementDrawObj element(memberId, m_project, local, length);
    const ndp::CRef<ndp::CBody> body(skr::split::ApplyCuttingPlanes(element, shape));
    ndp::CBodyMesh mesh;
    QString reason;
    if (!body || !mesh.Build(body.get(), kMesh, &reason)) {
        if (error) *error = body ? reason : shape.lastError();
        return nullptr;
    }
    osg::ref_ptr<osg::Geode> geode = geodeOf(mesh);
    m_meshes[key] = geode;
    return geode;
}

bool BXQModelScene::addMember(std::int64_t memberId, QString* error) {
    VMPMember member;
    QString reason;
    if (!VMPReadMember(m_project->getProjectDB(), memberId, member, &reason)) {
        if (error) *error = reason;
        return reason.isEmpty();  // gone: nothing to show
    }
    osg::ref_ptr<osg::Geode> mesh = meshOf(memberId, member.section, member.length(), &reason);
    if (!mesh) {
        if (error) *error = QStringLiteral("member %1 (%2): %3").arg(memberId).arg(member.section, reason);
        return false;
    }
    osg::ref_ptr<BXQMemberNode> node = new BXQMemberNode(memberId);
    node->setMatrix(placement(VMPMemberHeadFrame(member.start, member.end, member.roll)));
    node->addChild(mesh.get());
    m_viewer->getModelGroup()->addChild(node.get());
    m_members[memberId] = node;
    m_planes->BuildDisplayNodes(memberId);
    return true;
}

bool BXQModelScene::build(QString* error, const Progress& progress) {
    std::vector<VMPMember> members;
    if (!VMPReadMembers(m_project->getProjectDB(), members, error)) return false;
    int done = 0;
    for (const VMPMember& member : members) {
        if (!addMember(member.id, error)) return false;
        if (progress && !progress(++done, static_cast<int>(members.size()))) return false;
    }
    return true;
}

bool BXQModelScene::rebuildMember(std::int64_t memberId, QString* error) {
    const auto found = m_members.find(memberId);
    if (found != m_members.end()) {
        m_viewer->getModelGroup()->removeChild(found->second.get());
        m_members.erase(found);
    }
    // The model update drops the nodes of deleted planes; the element change rebuilds the rest.
    m_project->notifyUpdate(VMP_UPDATE_DATABASE);
    if (IVMPElementDrawObj* element = m_project->getElementDrawObj(memberId))
        m_project->notifyElementChange(VMP_CHANGE_PROPERTY, element, L"OriginalBody", false);
    const bool ok = addMember(memberId, error);
    m_viewer->setTempDirty();
    return ok;
}

void BXQModelScene::clearSelection() {
    for (std::int64_t record : m_planes->DisplayedRecords())
        if (m_planes->IsSelected(record)) m_planes->ToggleSelection(record, false);
}

osg::BoundingBox BXQModelScene::bounds() const {
    osg::ComputeBoundsVisitor visitor;
    m_viewer->getSceneRoot()->accept(visitor);
    return visitor.getBoundingBox();
}

}  // namespace bxq
