// Cutting planes of a project and what they do: reading "CuttingPlane" records and cutter solid
// shapes (head or tail, their frames, sources that give none), trimming one member's solid by its
// planes and by an offset plane, trimming a whole model (equal members share a solid, cancelling),
// and the cutting-plane display on stored members (node sizes, selection, model updates with and
// without an element filter, element changes, moving and adding planes, the viewer left empty).
#include "solid_split/SKRCuttingPlaneStore.h"
#include "solid_split/SKRCuttingPlanes.h"
#include "solid_split/SKRModelTrim.h"
#include "solid_split/SKRSolidSplit.h"
#include "solid_split/SKRSplitPlaneDisplayManager.h"

#include "body_builder/SKRMemberSolidShape.h"
#include "ndp/NDPBody.h"
#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "scene/VMPViewerManager.h"
#include "vmp/IVMPElementDrawObj.h"
#include "vmp/VMPElementDrawObj.h"
#include "vmp/VMPMembers.h"
#include "vmp/VMPObserver.h"
#include "vmp/VMPProjectModel.h"

#include "support/LockHolder.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cmath>
#include <functional>
#include <memory>

using namespace skr::split;
using ndp::CoordinateSystem3;
using ndp::CVector3;

namespace {

const auto frame = ndp::MakeFrame;

void expectFrameNear(const CoordinateSystem3& actual, const CoordinateSystem3& expected) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(actual.origin[i], expected.origin[i], 1e-9);
        EXPECT_NEAR(actual.xAxis[i], expected.xAxis[i], 1e-12);
        EXPECT_NEAR(actual.yAxis[i], expected.yAxis[i], 1e-12);
        EXPECT_NEAR(actual.zAxis[i], expected.zAxis[i], 1e-12);
    }
}

std::unique_ptr<IVMPSolidShape> memberSolid(const QString& section, double length, const CoordinateSystem3& head) {
    return std::make_unique<skr::body::SKRMemberSolidShape>(section, length, head);
}

// A project file of its own for each test.
class Project : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_model.open(m_dir.filePath("project.KDB"))); }

    ndp::CDatabase* db() { return m_model.getProjectDB(); }

    // A "CuttingPlane" record written field by field; local null leaves "LocalCoordinate" empty.
    void addPlane(std::int64_t element, bool isTail, const CoordinateSystem3* local) {
        ndp::CDBTable* table = db()->GetTable(L"CuttingPlane");
        ndp::CDBRecord* record = table->CreateRecord();
        record->SetInt64(table->FindField(L"EDOID"), element);
        record->SetBool(table->FindField(L"IsTail"), isTail);
        if (local) record->SetCoord3(table->FindField(L"LocalCoordinate"), *local);
        table->AddRecord(record);
        record->Release();
    }

    void addShape(std::int64_t id, std::int64_t target, int type, double length, const CoordinateSystem3& local) {
        ndp::CDBTable* table = db()->GetTable(L"SNSolidShape");
        ndp::CDBRecord* record = table->CreateRecord();
        record->SetInt64(table->FindField(L"ID"), id);
        record->SetInt64(table->FindField(L"TargetID"), target);
        record->SetInt(table->FindField(L"Type"), type);
        record->SetDouble(table->FindField(L"Length"), length);
        record->SetCoord3(table->FindField(L"LocalCoord"), local);
        table->AddRecord(record);
        record->Release();
    }

    std::int64_t addMember(const QString& section, const CVector3& from, const CVector3& to, double roll = 0) {
        VMPMember member{0, section, from, to, roll};
        EXPECT_TRUE(VMPAddMember(db(), member, nullptr));
        return member.id;
    }

    // A plane through origin of the member's head (or tail) frame, with that frame's X across it.
    std::int64_t addCut(std::int64_t member, bool tail, const CVector3& origin, const CVector3& normal) {
        CuttingPlaneRecord record{0, member, -1, tail, frame(origin, {1, 0, 0}, ndp::Cross(normal, {1, 0, 0}), normal)};
        EXPECT_TRUE(AddCuttingPlaneRecord(db(), record, nullptr));
        return record.id;
    }

    QTemporaryDir m_dir;
    VMPProjectModel m_model;
};

class CuttingPlaneReading : public Project {};
class SolidSplit : public Project {};

// ---------------------------------------------------------------------------------------------
// Reading the planes

TEST_F(CuttingPlaneReading, PlaneRecordsAndCutterShapesAreReadInOrderWithTheirDefaultsAndOtherSourcesGiveNone) {
    const CoordinateSystem3 oblique = frame({10, 20, 30}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0});
    addPlane(42, true, &oblique);
    addPlane(7, false, &oblique);
    addPlane(42, false, nullptr);
    EXPECT_TRUE(HasCuttingPlanes(&m_model, 42, false));
    EXPECT_FALSE(HasCuttingPlanes(&m_model, 43, false));

    CuttingPlaneEntries entries;
    ASSERT_TRUE(ReadCuttingPlanes(db(), 42, entries, false));
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_TRUE(entries[0].IsTail);
    EXPECT_EQ(entries[0].LocalCoordinate, oblique);
    EXPECT_FALSE(entries[1].IsTail);
    EXPECT_EQ(entries[1].LocalCoordinate, CoordinateSystem3());  // absent field: identity

    // Appends; an element without records adds nothing but the list stays non-empty.
    EXPECT_TRUE(ReadCuttingPlanes(db(), 43, entries, false));
    EXPECT_EQ(entries.size(), 2u);
    CuttingPlaneEntries none;
    EXPECT_FALSE(ReadCuttingPlanes(db(), 43, none, false));

    // A missing model, database or table gives no planes.
    EXPECT_FALSE(HasCuttingPlanes(nullptr, 1, false));
    EXPECT_FALSE(HasCuttingPlanes(nullptr, 1, true));
    CuttingPlaneEntries untouched{{true, CoordinateSystem3()}};
    EXPECT_FALSE(ReadCuttingPlanes(nullptr, 1, untouched, false));
    ndp::CDatabase bare;
    ASSERT_TRUE(bare.Create(m_dir.filePath("bare.KDB")));
    EXPECT_FALSE(ReadCuttingPlanes(&bare, 1, untouched, false));
    EXPECT_FALSE(ReadCuttingPlanes(&bare, 1, untouched, true));
    EXPECT_EQ(untouched.size(), 1u);  // untouched

    // Writing into a file without the tables is refused, naming the file and the table.
    CuttingPlaneRecord plane;
    plane.id = 1;
    VMPMember member;
    const std::pair<const char*, std::function<bool(QString*)>> writes[] = {
        {"CuttingPlane", [&](QString* error) { return AddCuttingPlaneRecord(&bare, plane, error); }},
        {"CuttingPlane", [&](QString* error) { return UpdateCuttingPlaneRecord(&bare, plane, error); }},
        {"CuttingPlane", [&](QString* error) { return DeleteCuttingPlaneRecord(&bare, 1, error); }},
        {"Member", [&](QString* error) { return VMPAddMember(&bare, member, error); }},
        {"Member", [&](QString* error) { return VMPRemoveMember(&bare, 1, error); }},
    };
    for (const auto& [table, write] : writes) {
        QString error;
        EXPECT_FALSE(write(&error)) << table;
        EXPECT_TRUE(error.contains(QLatin1String("bare.KDB")) && error.contains(QLatin1String(table))) << error.toStdString();
    }

    // Cutter solid shapes are head or tail cuts by their normal.
    // A member from (0,0,0) along +Z, 6000 long; three cutters and one shape of another kind.
    addShape(1, 0, 1, 6000, frame({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}));
    const CoordinateSystem3 tailCut = frame({0, 0, 5900}, {1, 0, 0}, {0, -1, 0}, {0, 0, -1});
    const CoordinateSystem3 headCut = frame({0, 0, 100}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    const CoordinateSystem3 sideways = frame({50, 0, 3000}, {0, 0, 1}, {0, 1, 0}, {1, 0, 0});
    addShape(2, 1, 7, 10, tailCut);
    addShape(3, 1, 5, 10, headCut);  // not a cutter
    addShape(4, 1, 7, 10, headCut);
    addShape(5, 1, 7, 10, sideways);
    EXPECT_TRUE(HasCuttingPlanes(&m_model, 1, true));

    CuttingPlaneEntries cutters;
    ASSERT_TRUE(ReadCuttingPlanes(db(), 1, cutters, true));
    ASSERT_EQ(cutters.size(), 3u);
    EXPECT_TRUE(cutters[0].IsTail);
    expectFrameNear(cutters[0].LocalCoordinate, frame({0, 0, -100}, {1, 0, 0}, {0, -1, 0}, {0, 0, -1}));
    EXPECT_FALSE(cutters[1].IsTail);
    expectFrameNear(cutters[1].LocalCoordinate, headCut);
    EXPECT_FALSE(cutters[2].IsTail);  // exactly perpendicular to the member: a head cut
    expectFrameNear(cutters[2].LocalCoordinate, sideways);

    // A member along global +X starting at (1000, 0, 0): local X = global Y, local Y = global Z.
    addShape(10, 0, 1, 2000, frame({1000, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}));
    addShape(11, 10, 7, 1, frame({2950, 10, 20}, {0, 1, 0}, {0, 0, 1}, {-1, 0, 0}));
    cutters.clear();
    ASSERT_TRUE(ReadCuttingPlanes(db(), 10, cutters, true));
    ASSERT_EQ(cutters.size(), 1u);
    EXPECT_TRUE(cutters[0].IsTail);
    expectFrameNear(cutters[0].LocalCoordinate, frame({10, 20, -50}, {1, 0, 0}, {0, 1, 0}, {0, 0, -1}));

    // Shapes without cutters or length give no planes.
    const CoordinateSystem3 identity;
    addShape(21, 0, 1, 1e-7, identity);  // zero length within tolerance
    addShape(22, 21, 7, 10, identity);
    addShape(30, 0, 1, 3000, identity);
    addShape(31, 30, 3, 10, identity);  // acts on 30 but is no cutter
    CuttingPlaneEntries nothing;
    for (const auto& [shape, has] : {std::pair{21, true}, std::pair{30, false}, std::pair{99, false}}) {  // 99: nothing
        EXPECT_EQ(HasCuttingPlanes(&m_model, shape, true), has) << shape;
        EXPECT_FALSE(ReadCuttingPlanes(db(), shape, nothing, true)) << shape;
    }
    EXPECT_TRUE(nothing.empty());
}

// ---------------------------------------------------------------------------------------------
// Trimming one member

constexpr double kWidth = 100, kDepth = 200, kLength = 6000;
constexpr double kVolume = kWidth * kDepth * kLength;

// A straight member whose head frame is given; its 100 x 200 section is centred on the axis.
class Member : public IVMPElementDrawObj, public IVMPSolidShape {
public:
    Member(IVMPModel* model, CoordinateSystem3 head, std::int64_t id = 42) : m_model(model), m_head(head), m_id(id) {}
    std::int64_t getId() const override { return m_id; }
    IVMPModel* getModel() const override { return m_model; }
    CoordinateSystem3 getHeadFrame() const override { return m_head; }
    EnElementAxisKind getAxisKind() const override { return m_kind; }
    double getAxisLength() const override { return kLength; }
    void getAxisExtents(double& first, double& second) const override {
        first = 3600;
        second = 4800;  // diagonal 6000
    }
    ndp::CBody* createBody() override {
        ++m_bodiesMade;
        CoordinateSystem3 corner = m_head;
        corner.origin = ndp::ToGlobal(frame({-kWidth / 2, -kDepth / 2, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}), m_head).origin;
        return ndp::CBody::CreateBox(corner, kWidth, kDepth, kLength);
    }

    EnElementAxisKind m_kind = EnElementAxisKind::Straight;
    int m_bodiesMade = 0;

private:
    IVMPModel* m_model;
    CoordinateSystem3 m_head;
    std::int64_t m_id;
};

// Volume of a trimmed body, which is then released.
double volumeOf(ndp::CBody* body) {
    if (!body) return -1;
    const double volume = body->Volume();
    body->Release();
    return volume;
}

// A plane through the frame's origin tilted by angle about the frame's X axis, its normal along z.
CoordinateSystem3 tilted(double angle, double z) {
    return frame({0, 0, 0}, {1, 0, 0}, {0, std::cos(angle), std::sin(angle) * (z > 0 ? 1 : -1)},
                 {0, -std::sin(angle), z * std::cos(angle)});
}

TEST_F(SolidSplit, AMembersPlanesKeepWhatTheyLeaveFramesOffTheAxesAreFollowedAndOffsetPlanesTrim) {
    const double angle = 20 * M_PI / 180;
    // The wedge an oblique plane through the axis cuts off the section.
    const double wedge = kWidth * std::tan(angle) * (kDepth / 2) * (kDepth / 2) / 2;
    const CoordinateSystem3 tiltH = tilted(angle, 1), tiltT = tilted(angle, -1);
    const CoordinateSystem3 keepBeyond4000 = frame({0, 0, 4000}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    const CoordinateSystem3 keepBefore3000 = frame({0, 0, -3000}, {1, 0, 0}, {0, -1, 0}, {0, 0, -1});
    const struct {
        const char* name;
        std::vector<std::pair<bool, const CoordinateSystem3*>> planes;  // (is tail, frame or none)
        double volume;
        int bodiesMade;  // a second when the planes leave nothing
    } plans[] = {
        {"no planes", {}, kVolume, 1},
        {"oblique head and tail cuts remove their wedges", {{false, &tiltH}, {true, &tiltT}}, kVolume - 2 * wedge, 1},
        {"a head plane without a frame: through the head, into the member", {{false, nullptr}}, kVolume, 1},
        {"a tail plane without a frame: at the end point, pointing away", {{false, nullptr}, {true, nullptr}}, kVolume, 2},
        {"two planes that remove everything", {{false, &keepBeyond4000}, {true, &keepBefore3000}}, kVolume, 2},
    };
    std::int64_t id = 100;
    for (const auto& c : plans) {
        SCOPED_TRACE(c.name);
        for (const auto& plane : c.planes) addPlane(id, plane.first, plane.second);
        Member member(&m_model, CoordinateSystem3(), id++);
        EXPECT_NEAR(volumeOf(ApplyCuttingPlanes(member, member)), c.volume, 1e-6 * kVolume);
        EXPECT_EQ(member.m_bodiesMade, c.bodiesMade);
    }

    // Frames of a member off the global axes are followed.
    // Head at (1000, 500, 0), axis along global +X; a square cut 1000 into the member.
    const CoordinateSystem3 head = frame({1000, 500, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0});
    const CoordinateSystem3 cut = frame({0, 0, 1000}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    addPlane(42, false, &cut);
    Member member(&m_model, head);
    ndp::CBody* body = ApplyCuttingPlanes(member, member);
    ASSERT_NE(body, nullptr);
    EXPECT_NEAR(body->BoundingBox().min[0], 2000, 1e-6);
    EXPECT_NEAR(body->BoundingBox().max[0], 7000, 1e-6);
    EXPECT_NEAR(volumeOf(body), kVolume * 5 / 6, 1e-6 * kVolume);

    // The tail frame of a curved-kind axis lies at the diagonal of its extents.
    member.m_kind = EnElementAxisKind::Extents;
    EXPECT_NEAR(TailFrame(member).origin[0], 7000, 1e-9);
    member.m_kind = EnElementAxisKind::Other;
    EXPECT_EQ(TailFrame(member), head);

    // An offset plane trims by the measured distance above its threshold.
    Member straight(&m_model, CoordinateSystem3());
    const CoordinateSystem3 axis;
    const CVector3 intoMember{0, 0, 1};
    const struct { double offset; bool flipped; double expectedDistance, keptLength; } cases[] = {
        {500, false, 500, kLength - 500},  // from the head, keeps the member beyond the plane
        {0.29, false, 0, kLength},         // under the threshold: no offset
        {0.3, false, 0.3, kLength - 0.3},  // at it: used as measured
        {500, true, 500, kLength - 500},   // flipped at the tail end, keeps the member before it
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.offset);
        ndp::CBody* body = straight.createBody();
        const CVector3 base = c.flipped ? CVector3{0, 0, kLength} : CVector3{0, 0, 0};
        const CVector3 point = ndp::operator+(base, CVector3{30, 40, c.flipped ? -c.offset : c.offset});
        EXPECT_NEAR(TrimBodyByOffsetPlane(point, axis, intoMember, base, body, c.flipped), c.expectedDistance, 1e-9);
        EXPECT_NEAR(volumeOf(body), kWidth * kDepth * c.keptLength, 1e-6 * kVolume);
    }
    // Keeping the side beyond the tail end leaves nothing: the body is released and null.
    body = straight.createBody();
    TrimBodyByOffsetPlane({0, 0, kLength}, axis, intoMember, {0, 0, kLength}, body, false);
    EXPECT_EQ(body, nullptr);
}

// ---------------------------------------------------------------------------------------------
// Trimming a whole model: members of equal section, length and cuts share one solid, each solid is
// what ApplyCuttingPlanes gives the member alone.

// A member along X from x0 at y = 1000, with a head plane at headZ tilted by degrees and a square
// tail plane at tailZ before the end (none where the value is negative).
class ModelTrimming : public Project {
protected:
    void addTrimmed(const QString& section, double length, double x0, double roll, double degrees, double headZ,
                    double tailZ) {
        const std::int64_t id = addMember(section, {x0, 1000, 0}, {x0 + length, 1000, 0}, roll);
        const double a = degrees * M_PI / 180;
        if (headZ >= 0) addCut(id, false, {0, 0, headZ}, {0, std::sin(a), std::cos(a)});
        if (tailZ >= 0) addCut(id, true, {0, 0, -tailZ}, {0, 0, -1});
    }
};

TEST_F(ModelTrimming, EqualMembersShareOneSolidEachIsTheMembersOwnTrimFramesStandUprightAndFailuresGiveNothing) {
    addTrimmed("H300*150*6*9", 4000, 0, 0, 20, 200, 200);
    addTrimmed("H300*150*6*9", 4000, 9000, 90, 20, 200, 200);  // shares the first one's solid
    addTrimmed("H300*150*6*9", 4000, 0, 0, 30, 200, 200);
    addTrimmed("D219*8", 3000, 0, 0, 0, -1, -1);
    addTrimmed("H300*150*6*9", 4000, 0, 0, 0, 3000, 2000);      // the planes leave nothing: uncut
    addTrimmed("H300*150*6*9", 4000, 0, 0, 20, 0, 200);         // a partial cut: the general split

    SKRModelTrim trim;
    QString error;
    int calls = 0, last = -1;
    ASSERT_TRUE(TrimModelMembers(db(), memberSolid, trim, &error, [&](int done, int total) {
        ++calls;
        last = done;
        EXPECT_EQ(total, 5);
        return true;
    })) << error.toStdString();
    EXPECT_GE(calls, 2);
    EXPECT_EQ(last, 5);
    ASSERT_EQ(trim.members.size(), 6u);
    ASSERT_EQ(trim.solids.size(), 5u);
    EXPECT_EQ(trim.members[0].solid, trim.members[1].solid);

    for (const SKRModelTrim::Member& member : trim.members) {
        SCOPED_TRACE(member.id);
        VMPMember row;
        ASSERT_TRUE(VMPReadMember(db(), member.id, row, nullptr));
        const CoordinateSystem3 head = VMPMemberHeadFrame(row.start, row.end, row.roll);
        for (int k = 0; k < 3; ++k) EXPECT_DOUBLE_EQ(member.head.zAxis[k], head.zAxis[k]);
        skr::body::SKRMemberSolidShape shape(row.section, row.length(), CoordinateSystem3());
        const VMPElementDrawObj element(member.id, &m_model, CoordinateSystem3(), row.length());
        const ndp::CRef<ndp::CBody> alone(ApplyCuttingPlanes(element, shape));
        ASSERT_TRUE(alone && trim.solids[member.solid]);
        EXPECT_NEAR(trim.solids[member.solid]->Volume(), alone->Volume(), 1e-9 * alone->Volume());
    }
    const ndp::CRef<ndp::CBody> uncut(skr::body::SKRMemberSolidShape("H300*150*6*9", 4000, {}).createBody());
    EXPECT_NEAR(trim.solids[trim.members[4].solid]->Volume(), uncut->Volume(), 1e-9 * uncut->Volume());

    // A cancelled or failed trimming of the same members gives nothing and says why.
    EXPECT_FALSE(TrimModelMembers(db(), memberSolid, trim, &error, [](int, int) { return false; }));
    EXPECT_TRUE(trim.members.empty() && trim.solids.empty());
    EXPECT_TRUE(error.contains(QStringLiteral("cancelled")) && error.contains(QStringLiteral("project.KDB")))
        << error.toStdString();

    const auto noSolid = [](const QString&, double, const CoordinateSystem3&) { return std::unique_ptr<IVMPSolidShape>(); };
    EXPECT_FALSE(TrimModelMembers(db(), noSolid, trim, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("member 1 (H300*150*6*9)"))) << error.toStdString();

    // A member's head frame has its axis along Z with the section upright.
    const struct { CVector3 from, to; double roll; CVector3 x, y, z; } cases[] = {
        {{0, 0, 0}, {10, 0, 0}, 0, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}},    // beam along X: Y up
        {{0, 0, 0}, {0, 0, 10}, 0, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},    // column: X stays X
        {{0, 0, 0}, {0, 0, -10}, 0, {1, 0, 0}, {0, -1, 0}, {0, 0, -1}}, // hanging column
        {{0, 0, 0}, {10, 0, 0}, 90, {0, 0, 1}, {0, -1, 0}, {1, 0, 0}},  // rolled a quarter turn
    };
    for (const auto& c : cases) expectFrameNear(VMPMemberHeadFrame(c.from, c.to, c.roll), frame({0, 0, 0}, c.x, c.y, c.z));
}

// ---------------------------------------------------------------------------------------------
// The cutting-plane display

using Manager = SKRSplitPlaneDisplayManager;

// A welded H 400 high, 200 wide, 6 m along global X, its solids made by the member solid shape.
class PlaneDisplay : public Project {
protected:
    void SetUp() override {
        Project::SetUp();
        m_model.setSolidShapeFactory(memberSolid);
        m_member = addMember("H400*200*8*13", {0, 0, 0}, {6000, 0, 0});
    }

    Manager::NodeShape shapeOf(Manager& manager, std::int64_t record) {
        Manager::NodeShape shape;
        EXPECT_TRUE(manager.GetNodeShape(record, shape));
        return shape;
    }

    VMPViewerManager m_viewer;
    std::int64_t m_member = 0;
};

}  // namespace

TEST_F(PlaneDisplay, NodeSpansTheCutFacePlusAMarginOrDefaultsWhereNothingIsCut) {
    const std::int64_t across = addCut(m_member, true, {0, 0, -1000}, {0, 0, -1});  // 200 x 400 face
    const std::int64_t beyond = addCut(m_member, true, {0, 0, 2000}, {0, 0, 1});    // past the tail
    Manager manager(&m_model, &m_viewer);
    manager.BuildDisplayNodes(m_member);
    ASSERT_EQ(manager.DisplayedRecords(), (std::vector<std::int64_t>{across, beyond}));

    // The tail frame is at x = 6000 with local Z along global X; local Y is global Z (up).
    const Manager::NodeShape cut = shapeOf(manager, across);
    EXPECT_NEAR(std::min(cut.width, cut.height), 500, 1e-6);
    EXPECT_NEAR(std::max(cut.width, cut.height), 700, 1e-6);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(cut.centre[k], k == 0 ? 5000 : 0, 1e-6);
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

TEST_F(PlaneDisplay, ExclusiveToggleKeepsAtMostOnePlaneSelectedAndUpdatesDropOnlyRefusedPlanes) {
    const std::int64_t a = addCut(m_member, false, {0, 0, 500}, {0, 0, 1});
    const std::int64_t b = addCut(m_member, true, {0, 0, -500}, {0, 0, -1});
    Manager manager(&m_model, &m_viewer);
    manager.BuildDisplayNodes(m_member);
    const struct { std::int64_t record; bool exclusive, aSelected, bSelected; } steps[] = {
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

    // A model update drops only what the keep test and the element filter both refuse.
    const std::int64_t kept = a, deleted = b;
    ASSERT_TRUE(DeleteCuttingPlaneRecord(db(), deleted, nullptr));

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
    addCut(m_member, false, {0, 0, 800}, {0, 0, 1});
    m_model.notifyUpdate(VMP_UPDATE_DATABASE);
    EXPECT_TRUE(manager.DisplayedRecords().empty());
}

// Element changes rebuild that element's nodes; a destroyed manager leaves no node and no observer.
TEST_F(PlaneDisplay, ElementChangesRebuildNodesADestroyedManagerLeavesNothingAndMovesAndAddsAreWritten) {
    const std::int64_t record = addCut(m_member, false, {0, 0, 500}, {0, 0, 1});
    {
        Manager manager(&m_model, &m_viewer);
        manager.BuildDisplayNodes(m_member);
        manager.BuildDisplayNodes(4242);  // no such element: nothing
        EXPECT_EQ(m_viewer.getTempNodeCount(), 1);
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
    EXPECT_EQ(m_viewer.getTempNodeCount(), 0);
    // A later update reaches no destroyed manager.
    m_model.notifyUpdate(VMP_UPDATE_DATABASE);
    m_model.notifyElementChange(VMP_CHANGE_PROPERTY, m_model.getElementDrawObj(m_member), L"WorldPoly", true);

    // The same plane, moved, and planes added write their records.
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
    ASSERT_TRUE(FindCuttingPlaneRecord(db(), record, moved));
    EXPECT_NEAR(moved.local.origin[2], 750, 1e-9);
    EXPECT_EQ(manager.GetOffsetValue(record), 250);
    {
        // While another program holds the file for writing, a move fails and the plane stays.
        ASSERT_TRUE(db()->Flush());
        ndp::CDatabase::SetBusyTimeout(100);
        const bxqtest::LockHolder holder(m_dir.filePath("project.KDB"), "BEGIN IMMEDIATE");
        EXPECT_FALSE(manager.MoveCuttingPlane(record, 100));
        ndp::CDatabase::SetBusyTimeout(5000);
    }
    ASSERT_TRUE(FindCuttingPlaneRecord(db(), record, moved));
    EXPECT_NEAR(moved.local.origin[2], 750, 1e-9);

    // A plane given globally at x = 5500 facing the head is stored 500 back in the tail frame.
    const CoordinateSystem3 global = frame({5500, 0, 0}, {0, 1, 0}, {0, 0, 1}, {-1, 0, 0});
    std::int64_t added = 0;
    ASSERT_TRUE(manager.AddCuttingPlane(m_member, global, true, &added));
    EXPECT_FALSE(manager.AddCuttingPlane(4242, global, true));
    CuttingPlaneRecord stored;
    ASSERT_TRUE(FindCuttingPlaneRecord(db(), added, stored));
    EXPECT_TRUE(stored.isTail);
    EXPECT_EQ(stored.shapeId, -1);
    EXPECT_NEAR(stored.local.origin[2], -500, 1e-9);
    EXPECT_NEAR(stored.local.zAxis[2], -1, 1e-12);

    manager.DeleteCuttingPlanesOfElement(m_member);
    EXPECT_FALSE(HasCuttingPlanes(&m_model, m_member, false));
}
