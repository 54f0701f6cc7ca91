// Trimming a member's solid by its cutting planes: no planes, head and tail cuts, planes without a
// frame, planes that leave nothing, a member off the global axes, and the offset-plane trim.
#include "solid_split/SKRSolidSplit.h"

#include "ndp/NDPBody.h"
#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/IVMPElementDrawObj.h"
#include "vmp/VMPProjectModel.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cmath>

using namespace skr::split;
using ndp::CoordinateSystem3;
using ndp::CVector3;

namespace {

constexpr double kWidth = 100, kDepth = 200, kLength = 6000;
constexpr double kVolume = kWidth * kDepth * kLength;

const auto frame = ndp::MakeFrame;

// A straight member whose head frame is given; its section is centred on the axis.
class Member : public IVMPElementDrawObj, public IVMPSolidShape {
public:
    Member(IVMPModel* model, CoordinateSystem3 head) : m_model(model), m_head(head) {}
    std::int64_t getId() const override { return 42; }
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
};

class SolidSplit : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_model.open(m_dir.filePath("project.KDB"))); }

    void addPlane(bool isTail, const CoordinateSystem3* local) {
        ndp::CDBTable* table = m_model.getProjectDB()->GetTable(L"CuttingPlane");
        ndp::CDBRecord* record = table->CreateRecord();
        record->SetInt64(table->FindField(L"EDOID"), 42);
        record->SetBool(table->FindField(L"IsTail"), isTail);
        if (local) record->SetCoord3(table->FindField(L"LocalCoordinate"), *local);
        table->AddRecord(record);
        record->Release();
    }

    // Volume of a trimmed body, which the test then releases.
    static double volumeOf(ndp::CBody* body) {
        if (!body) return -1;
        const double volume = body->Volume();
        body->Release();
        return volume;
    }

    QTemporaryDir m_dir;
    VMPProjectModel m_model;
};

// A plane through the frame's origin tilted by angle about the frame's X axis, its normal along z.
CoordinateSystem3 tilted(double angle, double z) {
    return frame({0, 0, 0}, {1, 0, 0}, {0, std::cos(angle), std::sin(angle) * (z > 0 ? 1 : -1)},
                 {0, -std::sin(angle), z * std::cos(angle)});
}

// The wedge an oblique plane through the axis cuts off the 100 x 200 section.
double wedge(double angle) { return kWidth * std::tan(angle) * (kDepth / 2) * (kDepth / 2) / 2; }

}  // namespace

TEST_F(SolidSplit, MemberWithoutPlanesKeepsItsBody) {
    Member member(&m_model, CoordinateSystem3());
    EXPECT_NEAR(volumeOf(ApplyCuttingPlanes(member, member)), kVolume, 1e-6 * kVolume);
    EXPECT_EQ(member.m_bodiesMade, 1);
}

TEST_F(SolidSplit, ObliqueHeadAndTailCutsRemoveTheirWedges) {
    const double angle = 20 * M_PI / 180;
    const CoordinateSystem3 head = tilted(angle, 1), tail = tilted(angle, -1);
    addPlane(false, &head);
    addPlane(true, &tail);
    Member member(&m_model, CoordinateSystem3());
    EXPECT_NEAR(volumeOf(ApplyCuttingPlanes(member, member)), kVolume - 2 * wedge(angle), 1e-6 * kVolume);
}

TEST_F(SolidSplit, PlanesWithoutAFrameCutAtTheHeadOrEndPointAlongTheAxis) {
    addPlane(false, nullptr);  // through the head origin, normal into the member: keeps it all
    Member member(&m_model, CoordinateSystem3());
    EXPECT_NEAR(volumeOf(ApplyCuttingPlanes(member, member)), kVolume, 1e-6 * kVolume);
    addPlane(true, nullptr);  // at the end point pointing away: nothing is left, so the uncut body
    EXPECT_NEAR(volumeOf(ApplyCuttingPlanes(member, member)), kVolume, 1e-6 * kVolume);
    EXPECT_EQ(member.m_bodiesMade, 3);
}

TEST_F(SolidSplit, TwoPlanesThatRemoveEverythingGiveTheUncutBody) {
    const CoordinateSystem3 keepBeyond4000 = frame({0, 0, 4000}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    const CoordinateSystem3 keepBefore3000 = frame({0, 0, -3000}, {1, 0, 0}, {0, -1, 0}, {0, 0, -1});
    addPlane(false, &keepBeyond4000);
    addPlane(true, &keepBefore3000);
    Member member(&m_model, CoordinateSystem3());
    EXPECT_NEAR(volumeOf(ApplyCuttingPlanes(member, member)), kVolume, 1e-6 * kVolume);
    EXPECT_EQ(member.m_bodiesMade, 2);
}

TEST_F(SolidSplit, FramesOfAMemberOffTheGlobalAxesAreFollowed) {
    // Head at (1000, 500, 0), axis along global +X; a square cut 1000 into the member.
    const CoordinateSystem3 head = frame({1000, 500, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0});
    const CoordinateSystem3 cut = frame({0, 0, 1000}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    addPlane(false, &cut);
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
}

TEST_F(SolidSplit, OffsetPlaneTrimsByTheMeasuredDistanceAboveItsThreshold) {
    Member member(&m_model, CoordinateSystem3());
    const CoordinateSystem3 axis;
    const CVector3 intoMember{0, 0, 1};
    struct Case {
        double offset;
        bool flipped;
        double expectedDistance;
        double keptLength;
    } cases[] = {
        {500, false, 500, kLength - 500},   // from the head, keeps the member beyond the plane
        {0.29, false, 0, kLength},          // under the threshold: no offset
        {0.3, false, 0.3, kLength - 0.3},   // at it: used as measured
        {500, true, 500, kLength - 500},    // flipped at the tail end, keeps the member before it
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.offset);
        ndp::CBody* body = member.createBody();
        const CVector3 base = c.flipped ? CVector3{0, 0, kLength} : CVector3{0, 0, 0};
        const CVector3 point = ndp::operator+(base, CVector3{30, 40, c.flipped ? -c.offset : c.offset});
        EXPECT_NEAR(TrimBodyByOffsetPlane(point, axis, intoMember, base, body, c.flipped), c.expectedDistance, 1e-9);
        EXPECT_NEAR(volumeOf(body), kWidth * kDepth * c.keptLength, 1e-6 * kVolume);
    }
    // Keeping the side beyond the tail end leaves nothing: the body is released and null.
    ndp::CBody* body = member.createBody();
    TrimBodyByOffsetPlane({0, 0, kLength}, axis, intoMember, {0, 0, kLength}, body, false);
    EXPECT_EQ(body, nullptr);
}
