// Reading cutting planes from the project: "CuttingPlane" records and cutter solid shapes, their
// head or tail reference and their frames, and the sources that give none.
#include "solid_split/SKRCuttingPlanes.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/VMPProjectModel.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

using namespace skr::split;
using ndp::CoordinateSystem3;

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

class CuttingPlaneReading : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_model.open(m_dir.filePath("project.KDB"))); }

    ndp::CDatabase* db() { return m_model.getProjectDB(); }

    // A "CuttingPlane" record; frame null leaves "LocalCoordinate" empty.
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

    QTemporaryDir m_dir;
    VMPProjectModel m_model;
};

}  // namespace

TEST_F(CuttingPlaneReading, PlaneRecordsAreReadInOrderWithTheirDefaults) {
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
}

TEST_F(CuttingPlaneReading, MissingModelDatabaseOrTableGivesNothing) {
    EXPECT_FALSE(HasCuttingPlanes(nullptr, 1, false));
    EXPECT_FALSE(HasCuttingPlanes(nullptr, 1, true));
    CuttingPlaneEntries entries{{true, CoordinateSystem3()}};
    EXPECT_FALSE(ReadCuttingPlanes(nullptr, 1, entries, false));
    ndp::CDatabase bare;
    ASSERT_TRUE(bare.Create(m_dir.filePath("bare.KDB")));
    EXPECT_FALSE(ReadCuttingPlanes(&bare, 1, entries, false));
    EXPECT_FALSE(ReadCuttingPlanes(&bare, 1, entries, true));
    EXPECT_EQ(entries.size(), 1u);  // untouched
}

TEST_F(CuttingPlaneReading, CutterShapesAreHeadOrTailCutsByTheirNormal) {
    // A member from (0,0,0) along +Z, 6000 long; three cutters and one shape of another kind.
    const CoordinateSystem3 member = frame({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    addShape(1, 0, 1, 6000, member);
    const CoordinateSystem3 tailCut = frame({0, 0, 5900}, {1, 0, 0}, {0, -1, 0}, {0, 0, -1});
    const CoordinateSystem3 headCut = frame({0, 0, 100}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    const CoordinateSystem3 sideways = frame({50, 0, 3000}, {0, 0, 1}, {0, 1, 0}, {1, 0, 0});
    addShape(2, 1, 7, 10, tailCut);
    addShape(3, 1, 5, 10, headCut);  // not a cutter
    addShape(4, 1, 7, 10, headCut);
    addShape(5, 1, 7, 10, sideways);
    EXPECT_TRUE(HasCuttingPlanes(&m_model, 1, true));

    CuttingPlaneEntries entries;
    ASSERT_TRUE(ReadCuttingPlanes(db(), 1, entries, true));
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_TRUE(entries[0].IsTail);
    expectFrameNear(entries[0].LocalCoordinate, frame({0, 0, -100}, {1, 0, 0}, {0, -1, 0}, {0, 0, -1}));
    EXPECT_FALSE(entries[1].IsTail);
    expectFrameNear(entries[1].LocalCoordinate, headCut);
    EXPECT_FALSE(entries[2].IsTail);  // exactly perpendicular to the member: a head cut
    expectFrameNear(entries[2].LocalCoordinate, sideways);
}

TEST_F(CuttingPlaneReading, CutterFramesAreExpressedInARotatedMembersFrame) {
    // A member along global +X starting at (1000, 0, 0): local X = global Y, local Y = global Z.
    const CoordinateSystem3 member = frame({1000, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0});
    addShape(1, 0, 1, 2000, member);
    addShape(2, 1, 7, 1, frame({2950, 10, 20}, {0, 1, 0}, {0, 0, 1}, {-1, 0, 0}));
    CuttingPlaneEntries entries;
    ASSERT_TRUE(ReadCuttingPlanes(db(), 1, entries, true));
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_TRUE(entries[0].IsTail);
    expectFrameNear(entries[0].LocalCoordinate, frame({10, 20, -50}, {1, 0, 0}, {0, 1, 0}, {0, 0, -1}));
}

TEST_F(CuttingPlaneReading, ShapesWithoutCuttersOrLengthGiveNone) {
    const CoordinateSystem3 member;
    addShape(1, 0, 1, 1e-7, member);  // zero length within tolerance
    addShape(2, 1, 7, 10, member);
    addShape(10, 0, 1, 3000, member);
    addShape(11, 10, 3, 10, member);  // acts on 10 but is no cutter
    CuttingPlaneEntries entries;
    EXPECT_TRUE(HasCuttingPlanes(&m_model, 1, true));
    EXPECT_FALSE(ReadCuttingPlanes(db(), 1, entries, true));
    EXPECT_FALSE(HasCuttingPlanes(&m_model, 10, true));
    EXPECT_FALSE(ReadCuttingPlanes(db(), 10, entries, true));
    EXPECT_FALSE(HasCuttingPlanes(&m_model, 99, true));  // no such shape
    EXPECT_FALSE(ReadCuttingPlanes(db(), 99, entries, true));
    EXPECT_TRUE(entries.empty());
}
