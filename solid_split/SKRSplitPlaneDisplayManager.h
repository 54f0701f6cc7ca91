// SKRSplitPlaneDisplayManager: shows the cutting planes of the model's elements in the 3D view as
// temporary display nodes, one filled rectangle per plane lying in it, centred on the element's
// cut face and 300 mm larger than it (1100 x 1100 on the plane's origin where the plane cuts
// nothing). A selected plane is blue, others yellow. It adds, moves and deletes "CuttingPlane"
// records, follows model updates and element changes, and removes its nodes when it goes.
#pragma once

#include "solid_split/SKRCuttingPlanes.h"

#include "scene/NDPScene.h"
#include "vmp/VMPObserver.h"

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

class IVMPModel;
class IVMPElementDrawObj;
class VMPViewerManager;

namespace skr {
namespace split {

class SKRSplitPlaneDisplayManager : public VMPObserver, public IVMPListener {
public:
    // A node's object id is its record id plus this, apart from the ids of model objects.
    static constexpr std::int64_t kNodeIdOffset = 0x0111111100000000LL;
    // Plane size where nothing is cut, and the margin around a cut face (mm).
    static constexpr double kDefaultPlaneSize = 1100.0;
    static constexpr double kCutFaceMargin = 300.0;

    // Whether an element's planes are to be shown.
    using ElementFilter = std::function<bool(IVMPElementDrawObj* element)>;
    using BuildCallback = std::function<void()>;

    // Attaches to the model's updates and element changes; both may be null (nothing is shown).
    SKRSplitPlaneDisplayManager(IVMPModel* model, VMPViewerManager* viewer);
    ~SKRSplitPlaneDisplayManager() override;
    SKRSplitPlaneDisplayManager(const SKRSplitPlaneDisplayManager&) = delete;
    SKRSplitPlaneDisplayManager& operator=(const SKRSplitPlaneDisplayManager&) = delete;

    void SetEnabled(bool enabled) { m_enabled = enabled; }
    bool IsEnabled() const { return m_enabled; }
    void SetElementFilter(ElementFilter filter) { m_filter = std::move(filter); }
    void SetBuildCallback(BuildCallback callback) { m_callback = std::move(callback); }

    // Adds a "CuttingPlane" record to the element, globalFrame expressed in its head (or, for
    // isTail, tail) frame. False when there is no such element or the record cannot be added;
    // recordId, when given, receives the new record's "ID".
    bool AddCuttingPlane(std::int64_t elementId, const CoordinateSystem3& globalFrame, bool isTail,
                         std::int64_t* recordId = nullptr);
    // Deletes every "CuttingPlane" record of the element.
    void DeleteCuttingPlanesOfElement(std::int64_t elementId);
    // Deletes one record; false when there is none of that "ID".
    bool DeleteCuttingPlane(std::int64_t planeId);
    bool GetElementOfCuttingPlane(std::int64_t planeId, std::int64_t& elementId);
    double GetOffsetValue(std::int64_t planeId);
    // Moves the plane by distance along its own normal: the local origin moves by distance times
    // the unit local Z axis, the axes stay, and distance is stored as "OffsetValue". A move below
    // 0.0001 mm, a plane whose normal is shorter than the kernel's tolerance, a missing record or
    // element change nothing and answer false.
    bool MoveCuttingPlane(std::int64_t planeId, double distance);

    // Builds the nodes of the element's planes that have none yet; new nodes are selected (blue).
    void BuildDisplayNodes(std::int64_t elementId);
    // Drops every node and builds those of every element that has planes.
    void RefreshAll();
    // Flips a plane's selection; with exclusive a newly selected plane unselects all others.
    void ToggleSelection(std::int64_t recordId, bool exclusive);
    // Appends the node's object id of the record, when it has a node.
    void AppendNodeObjectId(std::int64_t recordId, std::vector<std::int64_t>& list) const;

    // Where a plane's node lies: its centre, the plane's normal and U, V directions, and its size.
    struct NodeShape {
        ndp::CVector3 centre{0, 0, 0};
        ndp::CVector3 normal{0, 0, 1};
        ndp::CVector3 u{1, 0, 0};
        ndp::CVector3 v{0, 1, 0};
        double width = 0.0;
        double height = 0.0;
    };
    // The shape of a record's node; false when it has none.
    bool GetNodeShape(std::int64_t recordId, NodeShape& shape) const;

    // What is shown: record ids in order, a record's node (null when none) and its selection.
    std::vector<std::int64_t> DisplayedRecords() const;
    ndp::CVisualNode* GetNode(std::int64_t recordId) const;
    bool IsSelected(std::int64_t recordId) const;

    // Model update: with bit 0x100 and enabled, drops the nodes that the keep test and the element
    // filter both refuse (see the source for the keep test).
    void update(std::uint32_t flags, void* data) override;
    using IVMPListener::onNotify;
    // Element change: refreshAll rebuilds everything; a change of "WorldPoly", "OriginalBody" or
    // "BoundingBox" (kind 4) rebuilds the nodes of that element.
    void onNotify(int kind, IVMPElementDrawObj* object, const std::wstring& property, bool refreshAll) override;

private:
    struct Entry {
        ndp::CSceneRef<ndp::CVisualNode> node;
        bool selected = false;
        NodeShape shape;
    };
    bool keepNode(std::int64_t recordId);
    void removeNode(Entry& entry);
    void removeNodesOfElement(std::int64_t elementId);
    ndp::CVisualNode* createNode(std::int64_t recordId, const ndp::CCoord3& rectangle, double width, double height);

    IVMPModel* m_model;
    VMPViewerManager* m_viewer;
    bool m_enabled = true;
    std::map<std::int64_t, Entry> m_display;
    ElementFilter m_filter;
    BuildCallback m_callback;
};

}  // namespace split
}  // namespace skr
