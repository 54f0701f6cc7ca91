// The database engine under faults: a damaged row, a file that another program holds, a create
// that fails part way. Each comes out as a failure that says what went wrong and names the file.
#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"

#include "support/LockHolder.h"
#include "support/DamagedDatabase.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

using namespace ndp;

namespace {

// A table of three rows, the second with a long text that damageLongRow can break.
QString writeThreeRows(const QTemporaryDir& dir) {
    const QString path = dir.filePath("rows.KDB");
    CDatabase db;
    EXPECT_TRUE(db.Create(path));
    CDBTable* table = db.CreateTable(L"Rows", {{L"Name", EnDBFieldKind::Text, true}, {L"Value", EnDBFieldKind::Text}});
    for (const QString& value : {QStringLiteral("1"), bxqtest::longNumberText("2"), QStringLiteral("3")}) {
        CDBRecord* record = table->CreateRecord();
        record->SetString(0, L"row");
        record->SetString(1, value.toStdWString());
        table->AddRecord(record);
        record->Release();
    }
    EXPECT_TRUE(db.Flush());
    return path;
}

}  // namespace

TEST(DatabaseFaults, ADamagedRowIsAFailedReadNotAnAbsentOne) {
    QTemporaryDir dir;
    const QString path = writeThreeRows(dir);
    ASSERT_TRUE(bxqtest::damageLongRow(path));
    CDatabase db;
    ASSERT_TRUE(db.Open(path, true)) << qPrintable(db.GetLastError());
    CDBTable* table = db.GetTable(L"Rows");
    CFileAddressList rows;
    ASSERT_TRUE(table->ListAll(rows));
    ASSERT_EQ(rows.GetCount(), 3);

    const unsigned before = db.GetFailureCount();
    CDBRecord* sound = table->GetRecord(rows.GetItem(0));
    ASSERT_NE(sound, nullptr);
    sound->Release();
    EXPECT_EQ(table->GetRecord(rows.GetItem(2) + 100), nullptr);  // no such row: not a failure
    EXPECT_EQ(db.GetFailureCount(), before);

    EXPECT_EQ(table->GetRecord(rows.GetItem(1)), nullptr);
    EXPECT_EQ(db.GetFailureCount(), before + 1);
    EXPECT_TRUE(db.GetLastError().contains("malformed")) << qPrintable(db.GetLastError());
    EXPECT_TRUE(db.GetLastError().contains(path)) << qPrintable(db.GetLastError());
}

TEST(DatabaseFaults, AFileHeldByAnotherProgramIsBusyAndItsHolderNamed) {
    CDatabase::SetBusyTimeout(200);
    struct Case {
        const char* begin;
        bool opens;  // readers still open the file; only writers wait
    };
    for (const Case& held : {Case{"BEGIN IMMEDIATE", true}, Case{"BEGIN EXCLUSIVE", false}}) {
        SCOPED_TRACE(held.begin);
        QTemporaryDir dir;
        const QString path = writeThreeRows(dir);
        const bxqtest::LockHolder holder(path, held.begin);
        CDatabase db;
        const bool opened = db.Open(path, false);
        ASSERT_EQ(opened, held.opens) << qPrintable(db.GetLastError());
        if (opened) {
            EXPECT_FALSE(db.BeginTransaction());
        }
        EXPECT_TRUE(db.IsBusy());
        const QString error = db.GetLastError();
        EXPECT_TRUE(error.contains("busy")) << qPrintable(error);
        EXPECT_TRUE(error.contains(QStringLiteral("sqlite3 (process %1)").arg(holder.pid()))) << qPrintable(error);
        EXPECT_TRUE(error.contains(path)) << qPrintable(error);
    }
    CDatabase::SetBusyTimeout(5000);
}

TEST(DatabaseFaults, AWholeCreateLeavesNothingOnFailureAndKeepsAFileMadeMeanwhile) {
    QTemporaryDir dir;
    const QString path = dir.filePath("new.KDB");
    QString error;
    const auto table = [](CDatabase& db, const wchar_t* name) {
        return db.CreateTable(name, {{L"ID", EnDBFieldKind::Int32, true}}) != nullptr;
    };
    EXPECT_FALSE(CDatabase::CreateWhole(path, [](CDatabase&) { return false; }, &error));
    EXPECT_TRUE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).isEmpty());

    // Another program creates the project while this one builds its own: theirs is kept.
    ASSERT_TRUE(CDatabase::CreateWhole(path, [&](CDatabase& db) {
        CDatabase theirs;
        return theirs.Create(path) && table(theirs, L"Theirs") && theirs.Flush() && table(db, L"Ours");
    }, &error)) << qPrintable(error);
    CDatabase db;
    ASSERT_TRUE(db.Open(path, true));
    EXPECT_NE(db.GetTable(L"Theirs"), nullptr);
    EXPECT_EQ(db.GetTable(L"Ours"), nullptr);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{"new.KDB"});
}
