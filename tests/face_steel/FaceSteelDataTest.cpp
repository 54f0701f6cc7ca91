// The face-steel catalogue loaded from a system database, and the quantity query's rules.
#include "face_steel/BXQFaceSteelData.h"

#include "FaceSteelTable.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/VMPNDDBManager.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>


namespace {

class FaceSteelDataTest : public ::testing::Test {
protected:
    void SetUp() override {
        VMPNDDBManager::nddbMgr()->closeAll();
        qputenv("BXQ_DATA_DIR", m_dir.path().toUtf8());
        ndp::CDatabase db;
        ASSERT_TRUE(db.Create(m_dir.filePath("SysInfo.KDB")));
        ndp::CDBTable* table = createFaceSteelTable(db);
        addPlate(table, 1, 20.0, 157.0);
        addPlate(table, 1, 20.0, 999.0);  // a second row of the same plate: the first read wins
        addPlate(table, 1, 4.5, 35.325);
        addPlate(table, 3, 2.5, 21.6);
        addPlate(table, 9, 1.0, 1.0);  // a class without a name is kept but never matched
        ndp::CDBRecord* noClass = table->CreateRecord();
        noClass->SetDouble(1, 6.0);
        noClass->SetDouble(2, 47.1);
        table->AddRecord(noClass);
        noClass->Release();
        ASSERT_TRUE(db.Flush());
    }
    void TearDown() override {
        VMPNDDBManager::nddbMgr()->closeAll();
        qunsetenv("BXQ_DATA_DIR");
        BXQFaceSteelData::m_oClassName.clear();
        BXQFaceSteelData::m_oData.clear();
    }
    QTemporaryDir m_dir;
};

}  // namespace

TEST_F(FaceSteelDataTest, NothingIsAnsweredBeforeLoading) {
    EXPECT_EQ(BXQFaceSteelData::getFaceSteelQty(QStringLiteral("热轧钢板"), 20.0), 0.0);
}

TEST_F(FaceSteelDataTest, QuantityIsTheFirstRowOfThatClassAndThickness) {
    BXQFaceSteelData::loadData(nullptr);
    EXPECT_EQ(BXQFaceSteelData::getFaceSteelQty(QStringLiteral("热轧钢板"), 20.0), 157.0);
    EXPECT_EQ(BXQFaceSteelData::getFaceSteelQty(QStringLiteral("热轧钢板"), 4.5), 35.325);
    EXPECT_EQ(BXQFaceSteelData::getFaceSteelQty(QStringLiteral("菱形花纹钢板"), 2.5), 21.6);
    EXPECT_EQ(BXQFaceSteelData::getFaceSteelQty(QStringLiteral("热轧钢板"), 20.0000000001), 0.0);
    EXPECT_EQ(BXQFaceSteelData::getFaceSteelQty(QStringLiteral("冷轧钢板"), 20.0), 0.0);
}

TEST_F(FaceSteelDataTest, UnknownClassReadsClassZeroAndLeavesAnEmptyEntry) {
    BXQFaceSteelData::loadData(nullptr);
    EXPECT_FALSE(BXQFaceSteelData::m_oData.contains(0));
    EXPECT_EQ(BXQFaceSteelData::getFaceSteelQty(QStringLiteral("不锈钢板"), 20.0), 0.0);
    ASSERT_TRUE(BXQFaceSteelData::m_oData.contains(0));
    EXPECT_TRUE(BXQFaceSteelData::m_oData.value(0).isEmpty());
}

TEST_F(FaceSteelDataTest, LoadingRebuildsTheTablesFromScratch) {
    BXQFaceSteelData::loadData(nullptr);
    BXQFaceSteelData::loadData(nullptr);
    EXPECT_EQ(BXQFaceSteelData::m_oClassName.size(), 5);
    EXPECT_EQ(BXQFaceSteelData::m_oData.value(1).size(), 3);
    EXPECT_EQ(BXQFaceSteelData::m_oData.value(-1).size(), 1);  // the row without a class
    EXPECT_EQ(BXQFaceSteelData::m_oData.value(9).size(), 1);
}

TEST(FaceSteelDefaults, DefaultPlateIsTwentyMillimetreHotRolled) {
    const BXQFaceSteelInfo info = BXQFaceSteelData::defaultFaceInfo();
    EXPECT_EQ(info.className, QStringLiteral("热轧钢板"));
    EXPECT_EQ(info.thickness, 20.0);
}
