// Cutting planes shown as temporary display nodes.
#include "solid_split/SKRSplitPlaneDisplayManager.h"

#include "solid_split/SKRCuttingPlaneStore.h"
#include "solid_split/SKRSolidSplit.h"

#include "ndp/NDPBody.h"
#include "ndp/NDPBodyMesh.h"
#include "ndp/NDPBooleanOperate.h"
#include "ndp/NDPGeometry2d.h"
#include "ndp/NDPMeshParameter.h"
#include "ndp/NDPPlane.h"
#include "ndp/NDPPolygon.h"
#include "ndp/NDPRef.h"
#include "ndp/NDPTolerance.h"
#include "scene/VMPViewerManager.h"
#include "vmp/IVMPElementDrawObj.h"
#include "vmp/IVMPModel.h"

#include <cmath>
#include <set>

namespace skr {
namespace split {
namespace {

using ndp::operator+;
using ndp::operator*;

constexpr double kMeshAngle = 0.3490658503988659;  // 20 degrees
constexpr double kMinMove = 0.0001;

ndp::CDatabase* projectOf(IVMPModel* model) { return model ? model->getProjectDB() : nullptr; }

// The rectangle -w/2..w/2 by -h/2..h/2 in the X-Y plane of frame, tessellated by the kernel:
// a triangle list of float triples. Empty when the kernel refuses it.
std::vector<float> rectangleTriangles(const ndp::CCoord3& frame, double width, double height) {
    auto* loop = new ndp::CLoop;
    const double x = width / 2, y = height / 2;
    loop->AddCurve(new ndp::CLine2d({-x, -y}, {x, -y}));
    loop->AddCurve(new ndp::CLine2d({x, -y}, {x, y}));
    loop->AddCurve(new ndp::CLine2d({x, y}, {-x, y}));
    loop->AddCurve(new ndp::CLine2d({-x, y}, {-x, -y}));
    ndp::CPolygon polygon;
    polygon.AddLoop(loop, true);
    const ndp::CRef<ndp::CBody> face(ndp::CBody::CreateFace(polygon, frame));
    ndp::CBodyMesh mesh;
    std::vector<float> triangles;
    if (!face || !mesh.Build(face.get(), ndp::CMeshParameter(1.0, kMeshAngle))) return triangles;
    const std::vector<double>& v = mesh.GetVertices();
    triangles.reserve(mesh.GetIndices().size() * 3);
    for (int index : mesh.GetIndices())
        for (int k = 0; k < 3; ++k) triangles.push_back(static_cast<float>(v[3 * static_cast<size_t>(index) + k]));
    return triangles;
}

}  // namespace

SKRSplitPlaneDisplayManager::SKRSplitPlaneDisplayManager(IVMPModel* model, VMPViewerManager* viewer)
    : m_model(model), m_viewer(viewer) {
    if (m_model) {
        m_model->attachObserver(this);
        m_model->attachListener(this);
    }
}

SKRSplitPlaneDisplayManager::~SKRSplitPlaneDisplayManager() {
    for (auto& item : m_display) removeNode(item.second);
    m_display.clear();
    if (m_viewer) m_viewer->setTempDirty();
    if (m_model) {
        m_model->detachListener(this);
        m_model->detachObserver(this);
    }
}

bool SKRSplitPlaneDisplayManager::AddCuttingPlane(std::int64_t elementId, const CoordinateSystem3& globalFrame,
                                                  bool isTail, std::int64_t* recordId) {
    IVMPElementDrawObj* element = m_model ? m_model->getElementDrawObj(elementId) : nullptr;
    if (!element) return false;
    CuttingPlaneRecord record;
    record.elementId = elementId;
    record.shapeId = -1;
    record.isTail = isTail;
    record.local = ndp::ExpressIn(globalFrame, isTail ? TailFrame(*element) : HeadFrame(*element));
    if (!AddCuttingPlaneRecord(projectOf(m_model), record, nullptr)) return false;
    if (recordId) *recordId = record.id;
    return true;
}

void SKRSplitPlaneDisplayManager::DeleteCuttingPlanesOfElement(std::int64_t elementId) {
    std::vector<CuttingPlaneRecord> records;
    if (!ReadCuttingPlaneRecords(projectOf(m_model), elementId, records, nullptr)) return;
    for (const CuttingPlaneRecord& record : records) DeleteCuttingPlaneRecord(projectOf(m_model), record.id, nullptr);
}

bool SKRSplitPlaneDisplayManager::DeleteCuttingPlane(std::int64_t planeId) {
    return DeleteCuttingPlaneRecord(projectOf(m_model), planeId, nullptr);
}

bool SKRSplitPlaneDisplayManager::GetElementOfCuttingPlane(std::int64_t planeId, std::int64_t& elementId) {
    CuttingPlaneRecord record;
    if (!FindCuttingPlaneRecord(projectOf(m_model), planeId, record)) return false;
    elementId = record.elementId;
    return true;
}

double SKRSplitPlaneDisplayManager::GetOffsetValue(std::int64_t planeId) {
    CuttingPlaneRecord record;
    return FindCuttingPlaneRecord(projectOf(m_model), planeId, record) ? record.offset : 0.0;
}

bool SKRSplitPlaneDisplayManager::MoveCuttingPlane(std::int64_t planeId, double distance) {
    CuttingPlaneRecord record;
    if (!std::isfinite(distance) || std::fabs(distance) < kMinMove) return false;
    if (!FindCuttingPlaneRecord(projectOf(m_model), planeId, record)) return false;
    if (!m_model || !m_model->getElementDrawObj(record.elementId)) return false;
    const double normalLength = ndp::Length(record.local.zAxis);
    if (normalLength < ndp::g_DistEpsilon) return false;
    // The plane's own normal in the head or tail frame, whose axes the local frame is given in.
    record.local.origin = record.local.origin + (distance / normalLength) * record.local.zAxis;
    record.offset = distance;
    return UpdateCuttingPlaneRecord(projectOf(m_model), record, nullptr);
}

ndp::CVisualNode* SKRSplitPlaneDisplayManager::createNode(std::int64_t recordId, const ndp::CCoord3& rectangle,
                                                          double width, double height) {
    auto* node = new ndp::CVisualNode;
    auto* renderable = new ndp::CPrimitiveRenderable(ndp::PRIMITIVE_TRIANGLES);
    const std::vector<float> vertices = rectangleTriangles(rectangle, width, height);
    const int count = static_cast<int>(vertices.size() / 3);
    std::vector<float> normals;
    normals.reserve(vertices.size());
    for (int i = 0; i < count; ++i)
        for (int k = 0; k < 3; ++k) normals.push_back(static_cast<float>(rectangle.zAxis[static_cast<size_t>(k)]));
    renderable->SetVertexArray(vertices.data(), count);
    renderable->SetNormalArray(normals.data(), count);
    node->AddRenderable(renderable);
    node->SetMask(0xFFFFFFFFu);
    ndp::CStateSet* state = node->GetStateSet();
    state->SetMaterial(ndp::CColor::Yellow);
    state->SetLighting(true);
    state->SetFaceMode(ndp::FACE_FRONT_AND_BACK);
    state->SetPolygonMode(ndp::POLYGON_FILL);
    state->SetLineWidth(3.0f);
    state->SetTwoSidedLighting(true);
    state->SetPolygonOffset(-0.5f, 25.0f);
    node->SetTempNodeType(1);
    node->GetTag().objectId = recordId + kNodeIdOffset;
    return node;
}

void SKRSplitPlaneDisplayManager::BuildDisplayNodes(std::int64_t elementId) {
    ndp::CDatabase* database = projectOf(m_model);
    IVMPElementDrawObj* element = m_model ? m_model->getElementDrawObj(elementId) : nullptr;
    std::vector<CuttingPlaneRecord> records;
    if (!element || !ReadCuttingPlaneRecords(database, elementId, records, nullptr)) return;
    const CoordinateSystem3 head = HeadFrame(*element);
    const CoordinateSystem3 tail = TailFrame(*element);
    ndp::CRef<ndp::CBody> body;
    bool bodyAsked = false;
    bool added = false;
    for (const CuttingPlaneRecord& record : records) {
        if (m_display.count(record.id)) continue;
        const CoordinateSystem3 global = ndp::ToGlobal(record.local, record.isTail ? tail : head);
        ndp::CPlane plane;
        plane.Create(global.origin, global.zAxis);
        double width = kDefaultPlaneSize, height = kDefaultPlaneSize;
        ndp::CVector3 centre = global.origin;
        if (!bodyAsked) {
            IVMPSolidShape* shape = element->getSolidShape();
            body.reset(shape ? shape->createBody() : nullptr);
            bodyAsked = true;
        }
        if (body) {
            // Only the cut face of the split is drawn on: the two sides are not built.
            ndp::CBooleanOperate splitter(true, true, true, true);
            ndp::CBody* cut = nullptr;
            if (splitter.CutFace(plane, body.get(), cut)) {
                const ndp::CRef<ndp::CBody> cutFace(cut);
                const ndp::CBox3d box = cutFace ? cutFace->BoundingBoxInPlane(plane) : ndp::CBox3d();
                if (!box.IsEmpty()) {
                    centre = plane.GetPoint((box.min[0] + box.max[0]) / 2, (box.min[1] + box.max[1]) / 2);
                    width = box.max[0] - box.min[0] + kCutFaceMargin;
                    height = box.max[1] - box.min[1] + kCutFaceMargin;
                }
            }
        }
        const ndp::CCoord3 rectangle =
            ndp::MakeFrame(centre, plane.GetUDirection(), plane.GetVDirection(), plane.GetNormal());
        ndp::CSceneRef<ndp::CVisualNode> node = createNode(record.id, rectangle, width, height);
        node->GetStateSet()->SetMaterial(ndp::CColor::Blue);
        const NodeShape shape{centre, plane.GetNormal(), plane.GetUDirection(), plane.GetVDirection(), width, height};
        m_display[record.id] = Entry{node, true, shape};
        if (m_viewer) {
            m_viewer->addTempDisplayNode(node.get(), TEMP_DISPLAY_IN_MODEL);
            node->SetTempDisplayed(true);
            added = true;
        }
    }
    if (added) m_viewer->setTempDirty();
    if (m_callback) m_callback();
}

void SKRSplitPlaneDisplayManager::RefreshAll() {
    for (auto& item : m_display) removeNode(item.second);
    m_display.clear();
    std::vector<CuttingPlaneRecord> records;
    if (ReadCuttingPlaneRecords(projectOf(m_model), -1, records, nullptr)) {
        std::set<std::int64_t> elements;
        for (const CuttingPlaneRecord& record : records) elements.insert(record.elementId);
        for (std::int64_t element : elements) BuildDisplayNodes(element);
    }
    if (m_viewer) m_viewer->setTempDirty();
}

void SKRSplitPlaneDisplayManager::ToggleSelection(std::int64_t recordId, bool exclusive) {
    const auto found = m_display.find(recordId);
    if (found == m_display.end()) return;
    Entry& entry = found->second;
    entry.selected = !entry.selected;
    entry.node->GetStateSet()->SetMaterial(entry.selected ? ndp::CColor::Blue : ndp::CColor::Yellow);
    if (exclusive && entry.selected) {
        for (auto& other : m_display) {
            if (other.first == recordId || !other.second.selected) continue;
            other.second.selected = false;
            other.second.node->GetStateSet()->SetMaterial(ndp::CColor::Yellow);
        }
    }
    if (m_viewer) m_viewer->setTempDirty();
}

void SKRSplitPlaneDisplayManager::AppendNodeObjectId(std::int64_t recordId, std::vector<std::int64_t>& list) const {
    const auto found = m_display.find(recordId);
    if (found != m_display.end()) list.push_back(found->second.node->GetTag().objectId);
}

bool SKRSplitPlaneDisplayManager::GetNodeShape(std::int64_t recordId, NodeShape& shape) const {
    const auto found = m_display.find(recordId);
    if (found == m_display.end()) return false;
    shape = found->second.shape;
    return true;
}

std::vector<std::int64_t> SKRSplitPlaneDisplayManager::DisplayedRecords() const {
    std::vector<std::int64_t> ids;
    for (const auto& item : m_display) ids.push_back(item.first);
    return ids;
}

ndp::CVisualNode* SKRSplitPlaneDisplayManager::GetNode(std::int64_t recordId) const {
    const auto found = m_display.find(recordId);
    return found == m_display.end() ? nullptr : found->second.node.get();
}

bool SKRSplitPlaneDisplayManager::IsSelected(std::int64_t recordId) const {
    const auto found = m_display.find(recordId);
    return found != m_display.end() && found->second.selected;
}

// The keep test: a node stays, whatever the element filter says, while its record is still there
// and every plane record of its element has a node, that is while the element's planes are shown
// exactly as they are stored. A deleted record, or an element that gained a plane since its nodes
// were built, leaves the decision to the element filter.
bool SKRSplitPlaneDisplayManager::keepNode(std::int64_t recordId) {
    std::int64_t elementId = -1;
    if (!GetElementOfCuttingPlane(recordId, elementId)) return false;
    std::vector<CuttingPlaneRecord> records;
    if (!ReadCuttingPlaneRecords(projectOf(m_model), elementId, records, nullptr)) return false;
    for (const CuttingPlaneRecord& record : records)
        if (!m_display.count(record.id)) return false;
    return true;
}

void SKRSplitPlaneDisplayManager::removeNode(Entry& entry) {
    if (!entry.node) return;
    entry.node->SetTempDisplayed(false);
    if (m_viewer) m_viewer->removeTempDisplayNode(entry.node.get());
}

void SKRSplitPlaneDisplayManager::removeNodesOfElement(std::int64_t elementId) {
    std::vector<std::int64_t> dropped;
    for (auto& item : m_display) {
        std::int64_t owner = -1;
        if (!GetElementOfCuttingPlane(item.first, owner) || owner != elementId) continue;
        removeNode(item.second);
        dropped.push_back(item.first);
    }
    for (std::int64_t id : dropped) m_display.erase(id);
}

void SKRSplitPlaneDisplayManager::update(std::uint32_t flags, void*) {
    if (!(flags & VMP_UPDATE_DATABASE) || !m_enabled) return;
    std::vector<std::int64_t> dropped;
    for (auto& item : m_display) {
        if (keepNode(item.first) || !m_filter) continue;
        std::int64_t elementId = -1;
        const bool found = GetElementOfCuttingPlane(item.first, elementId);
        IVMPElementDrawObj* element = found && m_model ? m_model->getElementDrawObj(elementId) : nullptr;
        if (element && m_filter(element)) continue;
        removeNode(item.second);
        dropped.push_back(item.first);
    }
    for (std::int64_t id : dropped) m_display.erase(id);
    if (!dropped.empty() && m_viewer) m_viewer->setTempDirty();
}

void SKRSplitPlaneDisplayManager::onNotify(int kind, IVMPElementDrawObj* object, const std::wstring& property,
                                           bool refreshAll) {
    if (!object) return;
    if (refreshAll) {
        RefreshAll();
        return;
    }
    if (kind != VMP_CHANGE_PROPERTY) return;
    if (property != L"WorldPoly" && property != L"OriginalBody" && property != L"BoundingBox") return;
    removeNodesOfElement(object->getId());
    BuildDisplayNodes(object->getId());
}

}  // namespace split
}  // namespace skr
