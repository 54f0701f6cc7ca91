// The custom polygon store on a real project file: IDs and type rows of new polygons, what
// survives closing and reopening the project (flushed or not), updates, removals and refusals.
#include "section_data/SKRSectionDbOperation.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPPolygon.h"
#include "vmp/VMPProjectModel.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <memory>
#include <stdexcept>

using ndp::CArc2d;
using ndp::CLine2d;
using ndp::CLoop;
using ndp::CPolygon;
using ndp::EnDBFieldKind;

namespace {

const char kCannotAccept[] = "cannot accept:DB is nullptr ;CustomPoly doesn't exist;CustomPolyType doesn't exist";

// A plate with rounded ends and a bolt hole.
CPolygon plate(double width) {
    CPolygon polygon;
    auto* outer = new CLoop;
    outer->AddCurve(new CLine2d({0, 0}, {width, 0}), false);
    outer->AddCurve(new CArc2d({width, 0}, {width, 30}, 15, 1), false);
    outer->AddCurve(new CLine2d({width, 30}, {0, 30}), false);
    outer->AddCurve(new CArc2d({0, 30}, {0, 0}, 20, 3), false);
    polygon.AddLoop(outer, true);
    auto* hole = new CLoop;
    hole->AddCurve(new CArc2d({width / 3, 15}, 4.5, 0.0, 6.283185307179586), false);
    polygon.AddLoop(hole, true);
    return polygon;
}

QByteArray drawingBytes() {
    QByteArray bytes;
    for (int i = 0; i < 512; ++i) bytes.append(static_cast<char>(i % 256));
    bytes.append(QByteArray(16, '\0'));
    return bytes;
}

std::string thrownBy(ndp::CDatabase* db) {
    try {
        SKRSectionDbOperation store(db);
    } catch (const std::invalid_argument& e) {
        return e.what();
    }
    return "nothing thrown";
}

class CustomPolyStoreTest : public ::testing::Test {
protected:
    void SetUp() override { reopen(); }

    // Closes the project, discarding whatever was not flushed, and opens it again.
    void reopen() {
        m_store.reset();
        m_project.reset();
        m_project = std::make_unique<VMPProjectModel>();
        ASSERT_TRUE(m_project->open(m_dir.filePath("project.KDB"))) << qPrintable(m_project->lastError());
        m_store = std::make_unique<SKRSectionDbOperation>(db());
    }

    ndp::CDatabase* db() { return m_project->getProjectDB(); }
    ndp::CDBTable* table(const wchar_t* name) { return db()->GetTable(name); }

    SKRCustomPolyInfo added(CPolygon* polygon) {
        SKRCustomPolyInfo info;
        info.polygon = polygon;
        info.insertPointX = 12.5;
        info.insertPointY = -7.25;
        info.horzSpace = QStringLiteral("100");
        info.vertSpace = QStringLiteral("50");
        info.vectorDrawingInfo = drawingBytes();
        EXPECT_TRUE(m_store->addCustomPoly(info));
        return info;
    }

    // (ID, Description) of every "CustomPolyType" row, in table order.
    std::vector<std::pair<int, std::wstring>> typeRows() {
        std::vector<std::pair<int, std::wstring>> rows;
        ndp::CDBTable* types = table(L"CustomPolyType");
        ndp::CFileAddressList all;
        types->ListAll(all);
        for (int i = 0; i < all.GetCount(); ++i) {
            ndp::CDBRecord* record = types->GetRecord(all.GetItem(i));
            rows.emplace_back(record->GetInt(types->FindField(L"ID"), -99),
                              record->GetString(types->FindField(L"Description")));
            record->Release();
        }
        return rows;
    }

    int polyRowCount() {
        ndp::CFileAddressList all;
        table(L"CustomPoly")->ListAll(all);
        return all.GetCount();
    }

    // A field of the "CustomPoly" row with that ID, read straight from the table.
    template <typename Read>
    auto polyField(int id, const wchar_t* field, Read read) {
        ndp::CDBTable* polys = table(L"CustomPoly");
        ndp::CFileAddress address = ndp::kNullAddress;
        EXPECT_TRUE(polys->Find(polys->FindField(L"ID"), id, address));
        ndp::CDBRecord* record = polys->GetRecord(address);
        auto value = read(record, polys->FindField(field));
        record->Release();
        return value;
    }

    QTemporaryDir m_dir;
    std::unique_ptr<VMPProjectModel> m_project;
    std::unique_ptr<SKRSectionDbOperation> m_store;
};

auto readInt = [](ndp::CDBRecord* r, int f) { return r->GetInt(f, -99); };
auto readText = [](ndp::CDBRecord* r, int f) { return r->GetString(f); };

}  // namespace

TEST_F(CustomPolyStoreTest, FirstPolygonsGetConsecutiveIdsAndATypeRowEachAndARemovalIsNotFlushed) {
    CPolygon polygon = plate(80);
    const SKRCustomPolyInfo first = added(&polygon);
    EXPECT_EQ(first.id, 1);
    EXPECT_EQ(first.description, QStringLiteral("自定义截面1"));
    EXPECT_EQ(typeRows(), (std::vector<std::pair<int, std::wstring>>{{1, L"自定义截面类型"}}));
    EXPECT_EQ(polyField(1, L"CustomPolyTypeID", readInt), 1);
    EXPECT_EQ(polyField(1, L"TypeName", readText), L"自定义截面类型");
    EXPECT_EQ(polyField(1, L"Description", readText), L"自定义截面1");

    const SKRCustomPolyInfo second = added(&polygon);
    EXPECT_EQ(second.id, 2);
    EXPECT_EQ(second.description, QStringLiteral("自定义截面2"));
    EXPECT_EQ(typeRows(), (std::vector<std::pair<int, std::wstring>>{{1, L"自定义截面类型"}, {2, L"自定义截面类型"}}));
    EXPECT_EQ(polyField(2, L"CustomPolyTypeID", readInt), 2);

    // A removal holds for the session but is not flushed.
    EXPECT_TRUE(m_store->removeCustomPoly(1));
    EXPECT_FALSE(m_store->removeCustomPoly(1));
    EXPECT_FALSE(m_store->removeCustomPoly(9));

    SKRCustomPolyInfo got;
    CPolygon read;
    QString error;
    EXPECT_FALSE(m_store->readCustomPoly(1, got, read, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(m_store->readCustomPoly(2, got, read));
    EXPECT_EQ(polyRowCount(), 1);

    reopen();  // nothing flushed the removal
    EXPECT_EQ(polyRowCount(), 2);
    EXPECT_TRUE(m_store->readCustomPoly(1, got, read));
    EXPECT_EQ(got.description, QStringLiteral("自定义截面1"));
}

TEST_F(CustomPolyStoreTest, NewIdsFollowTheIdOfTheLastRowNotTheRowCount) {
    ndp::CDBTable* polys = table(L"CustomPoly");
    ndp::CDBRecord* record = polys->CreateRecord();
    record->SetInt(polys->FindField(L"ID"), 41);
    polys->AddRecord(record);
    record->Release();
    ndp::CDBTable* types = table(L"CustomPolyType");
    record = types->CreateRecord();  // a type row without an ID counts as -1
    types->AddRecord(record);
    record->Release();

    CPolygon polygon = plate(60);
    const SKRCustomPolyInfo info = added(&polygon);
    EXPECT_EQ(info.id, 42);
    EXPECT_EQ(info.description, QStringLiteral("自定义截面42"));
    EXPECT_EQ(typeRows().back().first, 0);
    EXPECT_EQ(polyField(42, L"CustomPolyTypeID", readInt), 0);
}

TEST_F(CustomPolyStoreTest, AddedAndUpdatedPolygonsAreFlushedAndReadBackIdentical) {
    CPolygon polygon = plate(120.3);
    SKRCustomPolyInfo info = added(&polygon);
    reopen();
    CPolygon read;
    SKRCustomPolyInfo got;
    QString error;
    ASSERT_TRUE(m_store->readCustomPolyWithDrawing(info.id, got, read, &error)) << qPrintable(error);
    EXPECT_EQ(got.id, info.id);
    EXPECT_EQ(got.description, info.description);
    EXPECT_EQ(got.polygon, &read);
    EXPECT_EQ(read, polygon);
    EXPECT_EQ(read.ToBytes(), polygon.ToBytes());
    EXPECT_EQ(got.insertPointX, 12.5);
    EXPECT_EQ(got.insertPointY, -7.25);
    EXPECT_EQ(got.horzSpace, QStringLiteral("100"));
    EXPECT_EQ(got.vertSpace, QStringLiteral("50"));
    EXPECT_EQ(got.vectorDrawingInfo, drawingBytes());
    // The reader without the drawing leaves it out.
    SKRCustomPolyInfo plain;
    plain.vectorDrawingInfo = QByteArray("stale");
    CPolygon outline;
    ASSERT_TRUE(m_store->readCustomPoly(info.id, plain, outline));
    EXPECT_EQ(outline, polygon);
    EXPECT_EQ(plain.polygon, &outline);
    EXPECT_EQ(plain.horzSpace, QStringLiteral("100"));
    EXPECT_TRUE(plain.vectorDrawingInfo.isEmpty());

    // An update of an ID there is not changes nothing.
    CPolygon changed = plate(95);
    changed.GetLoop(1)->Reverse();
    info.description = QStringLiteral("底板");
    info.polygon = &changed;
    for (int missing : {5, -1}) {
        SKRCustomPolyInfo other = info;
        other.id = missing;
        EXPECT_FALSE(m_store->updateCustomPoly(other));
    }
    EXPECT_EQ(polyField(1, L"Description", readText), L"自定义截面1");
    info.insertPointX = 1.0 / 3;
    info.insertPointY = 2e-9;
    info.horzSpace = QStringLiteral("150");
    info.vertSpace = QStringLiteral("75");
    info.vectorDrawingInfo = QByteArray(3, '\0');
    ASSERT_TRUE(m_store->updateCustomPoly(info));
    reopen();  // without saving: the update flushed
    ASSERT_TRUE(m_store->readCustomPolyWithDrawing(info.id, got, read));
    EXPECT_EQ(got.description, QStringLiteral("底板"));
    EXPECT_EQ(read, changed);
    EXPECT_EQ(got.insertPointX, 1.0 / 3);
    EXPECT_EQ(got.insertPointY, 2e-9);
    EXPECT_EQ(got.horzSpace, QStringLiteral("150"));
    EXPECT_EQ(got.vertSpace, QStringLiteral("75"));
    EXPECT_EQ(got.vectorDrawingInfo, QByteArray(3, '\0'));
    // Identity and type stay.
    EXPECT_EQ(polyField(info.id, L"CustomPolyTypeID", readInt), 1);
    EXPECT_EQ(polyField(info.id, L"TypeName", readText), L"自定义截面类型");
    EXPECT_EQ(polyRowCount(), 1);
}

TEST(CustomPolyStoreRefusals, StoreNeedsADatabaseWithBothTables) {
    EXPECT_EQ(thrownBy(nullptr), kCannotAccept);
    QTemporaryDir dir;
    for (const wchar_t* only : {L"CustomPoly", L"CustomPolyType"}) {
        ndp::CDatabase db;
        ASSERT_TRUE(db.Create(dir.filePath(QString::fromWCharArray(only) + ".KDB")));
        db.CreateTable(only, {{L"ID", EnDBFieldKind::Int32, true}});
        EXPECT_EQ(thrownBy(&db), kCannotAccept) << only;
    }
    ndp::CDatabase both;
    ASSERT_TRUE(both.Create(dir.filePath("both.KDB")));
    ASSERT_TRUE(VMPProjectModel::createProjectTables(&both));
    EXPECT_EQ(thrownBy(&both), "nothing thrown");
}
