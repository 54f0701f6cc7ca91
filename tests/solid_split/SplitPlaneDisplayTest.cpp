// The cutting-plane display on stored members: node sizes from the cut face, selection, model
// updates with and without an element filter, element changes, moving and adding planes, and the
// viewer left empty when the manager goes.
#include "solid_split/SKRCuttingPlaneStore.h"
#include "solid_split/SKRSplitPlaneDisplayManager.h"

#include "body_builder/SKRMemberSolidShape.h"
#include "scene/VMPViewerManager.h"
#include "vmp/VMPMembers.h"
#include "vmp/VMPObserver.h"
#include "vmp/VMPProjectModel.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <memory>

using namespace skr::split;
using Manager = SKRSplitPlaneDisplayManager;

namespace {

class PlaneDisplay : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_model.open(m_dir.filePath("project.KDB")));
        m_model.setSolidShapeFactory([](const QString& section, double length, const ndp::CoordinateSystem3& head) {
            return std::unique_ptr<IVMPSolidShape>(new skr::body::SKRMemberSolidShape(section, length, head));
        });
        // A welded H 400 high, 200 wide, 6 m along global X.
        m_member = addMember("H400*200*8*13", {0, 0, 0}, {6000, 0, 0});
    }

    std::int64_t addMember(const QString& section, const ndp::CVector3& from, const ndp::CVector3& to) {
        VMPMember member;
        member.section = section;
        member.start = from;
        member.end = to;
        EXPECT_TRUE(VMPAddMember(m_model.getProjectDB(), member, nullptr));
        return member.id;
    }

    // A plane relative to the member's head (or tail) frame.
    std::int64_t addPlane(std::int64_t member, bool tail, const ndp::CVector3& origin, const ndp::CVector3& normal) {
        CuttingPlaneRecord record;
        record.elementId = member;
        record.isTail = tail;
        record.local = ndp::MakeFrame(origin, {1, 0, 0}, ndp::Cross(normal, {1, 0, 0}), normal);
        EXPECT_TRUE(AddCuttingPlaneRecord(m_model.getProjectDB(), record, nullptr));
        return record.id;
    }

    Manager::NodeShape shapeOf(Manager& manager, std::int64_t record) {
        Manager::NodeShape shape;
        EXPECT_TRUE(manager.GetNodeShape(record, shape));
        return shape;
    }

    QTemporaryDir m_dir;
    VMPProjectModel m_model;
    VMPViewerManager m_viewer;
    std::int64_t m_member = 0;
};

TEST_F(PlaneDisplay, NodeSpansTheCutFacePlusAMarginOrDefaultsWhereNothingIsCut) {
    const std::int64_t across = addPlane(m_member, true, {0, 0, -1000}, {0, 0, -1});  // 200 x 400 face
    const std::int64_t beyond = addPlane(m_member, true, {0, 0, 2000}, {0, 0, 1});    // past the tail
    Manager manager(&m_model, &m_viewer);
    manager.BuildDisplayNodes(m_member);
    ASSERT_EQ(manager.DisplayedRecords(), (std::vector<std::int64_t>{across, beyond}));

    // The tail frame is at x = 6000 with local Z along global X; local Y is global Z (up).
    const Manager::NodeShape cut = shapeOf(manager, across);
    const double size[] = {cut.width, cut.height};
    EXPECT_NEAR(std::min(size[0], size[1]), 500, 1e-6);
    EXPECT_NEAR(std::max(size[0], size[1]), 700, 1e-6);
    EXPECT_NEAR(cut.centre[0], 5000, 1e-6);
    EXPECT_NEAR(cut.centre[1], 0, 1e-6);
    EXPECT_NEAR(cut.centre[2], 0, 1e-6);

    const Manager::NodeShape none = shapeOf(manager, beyond);
    EXPECT_EQ(none.width, 1100.0);
    EXPECT_EQ(none.height, 1100.0);
    EXPECT_NEAR(none.centre[0], 8000, 1e-9);

    // New nodes are shown selected, in blue, as temporary nodes of the viewer.
    for (std::int64_t record : {across, beyond}) {
        ndp::CVisualNode* node = manager.GetNode(record);
        ASSERT_NE(node, nullptr);
        EXPECT_TRUE(manager.IsSelected(record));
        EXPECT_EQ(node->GetStateSet()->GetMaterial(), ndp::CColor::Blue);
        EXPECT_TRUE(m_viewer.hasTempNode(node));
        EXPECT_TRUE(node->IsTempDisplayed());
        EXPECT_EQ(node->GetTag().objectId - Manager::kNodeIdOffset, record);
        EXPECT_GT(node->GetRenderable(0)->GetVertexCount(), 0);
    }
    std::vector<std::int64_t> ids;
    manager.AppendNodeObjectId(across, ids);
    manager.AppendNodeObjectId(999, ids);
    EXPECT_EQ(ids, (std::vector<std::int64_t>{across + 76861433354125312LL}));
    // Building again adds nothing.
    manager.BuildDisplayNodes(m_member);
    EXPECT_EQ(m_viewer.getTempNodeCount(), 2);
}

TEST_F(PlaneDisplay, ExclusiveToggleKeepsAtMostOnePlaneSelected) {
    const std::int64_t a = addPlane(m_member, false, {0, 0, 500}, {0, 0, 1});
    const std::int64_t b = addPlane(m_member, true, {0, 0, -500}, {0, 0, -1});
    Manager manager(&m_model, &m_viewer);
    manager.BuildDisplayNodes(m_member);
    const struct {
        std::int64_t record;
        bool exclusive;
        bool aSelected, bSelected;
    } steps[] = {
        {a, true, false, true},   // selected a toggled off; b stays
        {b, true, false, false},  // the only selected plane toggled off: none left
        {a, true, true, false},   // a selected alone
        {b, true, false, true},   // b selected, a unselected
        {a, false, true, true},   // not exclusive: both
        {404, true, true, true},  // no such record: nothing happens
    };
    for (const auto& step : steps) {
        manager.ToggleSelection(step.record, step.exclusive);
        EXPECT_EQ(manager.IsSelected(a), step.aSelected) << step.record;
        EXPECT_EQ(manager.IsSelected(b), step.bSelected) << step.record;
        EXPECT_EQ(manager.GetNode(a)->GetStateSet()->GetMaterial(), step.aSelected ? ndp::CColor::Blue : ndp::CColor::Yellow);
    }
}

TEST_F(PlaneDisplay, ModelUpdateDropsOnlyWhatTheKeepTestAndTheFilterBothRefuse) {
    const std::int64_t kept = addPlane(m_member, false, {0, 0, 500}, {0, 0, 1});
    const std::int64_t deleted = addPlane(m_member, true, {0, 0, -500}, {0, 0, -1});
    Manager manager(&m_model, &m_viewer);
    manager.BuildDisplayNodes(m_member);
    ASSERT_TRUE(DeleteCuttingPlaneRecord(m_model.getProjectDB(), deleted, nullptr));

    // Without bit 0x100, or while disabled, or with no filter, nothing is dropped.
    m_model.notifyUpdate(VMP_UPDATE_GEOMETRY);
    manager.SetElementFilter([](IVMPElementDrawObj*) { return false; });
    manager.SetEnabled(false);
    m_model.notifyUpdate(VMP_UPDATE_DATABASE);
    manager.SetEnabled(true);
    manager.SetElementFilter(nullptr);
    m_model.notifyUpdate(VMP_UPDATE_DATABASE);
    EXPECT_EQ(manager.DisplayedRecords().size(), 2u);

    // A filter that accepts every element keeps the existing plane and drops the deleted one;
    // the dropped node leaves the viewer.
    ndp::CSceneRef<ndp::CVisualNode> gone = manager.GetNode(deleted);
    manager.SetElementFilter([](IVMPElementDrawObj* element) { return element != nullptr; });
    m_model.notifyUpdate(VMP_UPDATE_DATABASE);
    EXPECT_EQ(manager.DisplayedRecords(), (std::vector<std::int64_t>{kept}));
    EXPECT_FALSE(m_viewer.hasTempNode(gone.get()));
    EXPECT_FALSE(gone->IsTempDisplayed());

    // The keep test passes while the element's planes are all shown: a refusing filter drops
    // nothing then, and drops the plane once its element has one more record than nodes.
    manager.SetElementFilter([](IVMPElementDrawObj*) { return false; });
    m_model.notifyUpdate(VMP_UPDATE_DATABASE);
    EXPECT_EQ(manager.DisplayedRecords(), (std::vector<std::int64_t>{kept}));
    addPlane(m_member, false, {0, 0, 800}, {0, 0, 1});
    m_model.notifyUpdate(VMP_UPDATE_DATABASE);
    EXPECT_TRUE(manager.DisplayedRecords().empty());
}

TEST_F(PlaneDisplay, ElementChangesRebuildThatElementsNodes) {
    const std::int64_t record = addPlane(m_member, false, {0, 0, 500}, {0, 0, 1});
    Manager manager(&m_model, &m_viewer);
    manager.BuildDisplayNodes(m_member);
    IVMPElementDrawObj* element = m_model.getElementDrawObj(m_member);
    ndp::CVisualNode* before = manager.GetNode(record);
    m_model.notifyElementChange(VMP_CHANGE_PROPERTY, element, L"Name", false);
    m_model.notifyElementChange(VMP_CHANGE_ADDED, element, L"WorldPoly", false);
    m_model.notifyElementChange(VMP_CHANGE_PROPERTY, nullptr, L"WorldPoly", true);
    EXPECT_EQ(manager.GetNode(record), before);
    for (const wchar_t* property : {L"WorldPoly", L"OriginalBody", L"BoundingBox"}) {
        ndp::CSceneRef<ndp::CVisualNode> old = manager.GetNode(record);
        m_model.notifyElementChange(VMP_CHANGE_PROPERTY, element, property, false);
        EXPECT_NE(manager.GetNode(record), old.get());
        EXPECT_FALSE(m_viewer.hasTempNode(old.get()));
        EXPECT_EQ(m_viewer.getTempNodeCount(), 1);
    }
}

TEST_F(PlaneDisplay, MovingAndAddingPlanesWritesTheirRecords) {
    const std::int64_t record = addPlane(m_member, false, {0, 0, 500}, {0, 0, 1});
    Manager manager(&m_model, &m_viewer);
    std::int64_t element = -1;
    ASSERT_TRUE(manager.GetElementOfCuttingPlane(record, element));
    EXPECT_EQ(element, m_member);
    EXPECT_FALSE(manager.GetElementOfCuttingPlane(record + 1, element));

    // Along its own normal; the last distance is the offset; tiny moves change nothing.
    ASSERT_TRUE(manager.MoveCuttingPlane(record, 250));
    EXPECT_FALSE(manager.MoveCuttingPlane(record, 0.00005));
    EXPECT_FALSE(manager.MoveCuttingPlane(record + 1, 10));
    CuttingPlaneRecord moved;
    ASSERT_TRUE(FindCuttingPlaneRecord(m_model.getProjectDB(), record, moved));
    EXPECT_NEAR(moved.local.origin[2], 750, 1e-9);
    EXPECT_EQ(manager.GetOffsetValue(record), 250);

    // A plane given globally at x = 5500 facing the head is stored 500 back in the tail frame.
    ndp::CoordinateSystem3 global = ndp::MakeFrame({5500, 0, 0}, {0, 1, 0}, {0, 0, 1}, {-1, 0, 0});
    std::int64_t added = 0;
    ASSERT_TRUE(manager.AddCuttingPlane(m_member, global, true, &added));
    EXPECT_FALSE(manager.AddCuttingPlane(4242, global, true));
    CuttingPlaneRecord stored;
    ASSERT_TRUE(FindCuttingPlaneRecord(m_model.getProjectDB(), added, stored));
    EXPECT_TRUE(stored.isTail);
    EXPECT_EQ(stored.shapeId, -1);
    EXPECT_NEAR(stored.local.origin[2], -500, 1e-9);
    EXPECT_NEAR(stored.local.zAxis[2], -1, 1e-12);

    manager.DeleteCuttingPlanesOfElement(m_member);
    std::vector<CuttingPlaneRecord> left;
    ASSERT_TRUE(ReadCuttingPlaneRecords(m_model.getProjectDB(), m_member, left, nullptr));
    EXPECT_TRUE(left.empty());
}

TEST_F(PlaneDisplay, DestroyedManagerLeavesNoNodeAndNoObserver) {
    addPlane(m_member, false, {0, 0, 500}, {0, 0, 1});
    {
        Manager manager(&m_model, &m_viewer);
        manager.BuildDisplayNodes(m_member);
        manager.BuildDisplayNodes(4242);  // no such element: nothing
        EXPECT_EQ(m_viewer.getTempNodeCount(), 1);
    }
    EXPECT_EQ(m_viewer.getTempNodeCount(), 0);
    // A later update reaches no destroyed manager.
    m_model.notifyUpdate(VMP_UPDATE_DATABASE);
    m_model.notifyElementChange(VMP_CHANGE_PROPERTY, m_model.getElementDrawObj(m_member), L"WorldPoly", true);
}

TEST(MemberFrame, AxisAlongZWithTheSectionUpright) {
    const struct {
        ndp::CVector3 from, to;
        double roll;
        ndp::CVector3 x, y, z;
    } cases[] = {
        {{0, 0, 0}, {10, 0, 0}, 0, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}},    // beam along X: Y up
        {{0, 0, 0}, {0, 0, 10}, 0, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},    // column: X stays X
        {{0, 0, 0}, {0, 0, -10}, 0, {1, 0, 0}, {0, -1, 0}, {0, 0, -1}}, // hanging column
        {{0, 0, 0}, {10, 0, 0}, 90, {0, 0, 1}, {0, -1, 0}, {1, 0, 0}},  // rolled a quarter turn
    };
    for (const auto& c : cases) {
        const ndp::CoordinateSystem3 f = VMPMemberHeadFrame(c.from, c.to, c.roll);
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(f.xAxis[i], c.x[i], 1e-12);
            EXPECT_NEAR(f.yAxis[i], c.y[i], 1e-12);
            EXPECT_NEAR(f.zAxis[i], c.z[i], 1e-12);
        }
    }
}

}  // namespace
