// The database engine stand-in: field order and kinds, look-ups, the query forms, transactions
// and durability, and refusal of files that are not our databases.
#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/VMPDBRecord.h"
#include "vmp/VMPNDDBManager.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <QThread>

#include <csignal>
#include <cstdio>

using namespace ndp;

namespace {

std::vector<CDBField> sectionFields() {
    return {{L"SectionType", EnDBFieldKind::Int32, true}, {L"SubID", EnDBFieldKind::Int32, true},
            {L"StandardName", EnDBFieldKind::Text, true}, {L"WeightMeter", EnDBFieldKind::Double},
            {L"AreaVal", EnDBFieldKind::Double},          {L"Big", EnDBFieldKind::Int64},
            {L"Flag", EnDBFieldKind::Bool},               {L"Frame", EnDBFieldKind::Coord3},
            {L"Shape", EnDBFieldKind::Polygon},           {L"Drawing", EnDBFieldKind::Stream}};
}

CFileAddress addSection(CDBTable* table, int type, int sub, const std::wstring& name, double weight) {
    CDBRecord* record = table->CreateRecord();
    record->SetInt(0, type);
    record->SetInt(1, sub);
    record->SetString(2, name);
    record->SetDouble(3, weight);
    const CFileAddress address = table->AddRecord(record);
    record->Release();
    return address;
}

QList<std::wstring> namesOf(CDBTable* table, const CFileAddressList& list) {
    QList<std::wstring> names;
    for (int i = 0; i < list.GetCount(); ++i) {
        CDBRecord* record = table->GetRecord(list.GetItem(i));
        names << record->GetString(2);
        record->Release();
    }
    return names;
}

class DatabaseTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        m_path = m_dir.filePath("project.KDB");
        ASSERT_TRUE(m_db.Create(m_path)) << qPrintable(m_db.GetLastError());
        m_table = m_db.CreateTable(L"CustomHotRolledSection", sectionFields());
        ASSERT_NE(m_table, nullptr);
        addSection(m_table, 7, 1, L"HN400*200*8*13(ZDY)", 65.4);
        addSection(m_table, 3, 2, L"L100*10(ZDY)", 15.1);
        addSection(m_table, 3, 2, L"L100*12(ZDY)", 17.9);
        addSection(m_table, 7, 2, L"热轧H型钢", 1.0);
    }

    QTemporaryDir m_dir;
    QString m_path;
    CDatabase m_db;
    CDBTable* m_table = nullptr;
};

}  // namespace

TEST_F(DatabaseTest, FieldOrderAndKindsSurviveReopening) {
    ASSERT_TRUE(m_db.Flush());
    m_db.Close();
    CDatabase reopened;
    ASSERT_TRUE(reopened.Open(m_path, true)) << qPrintable(reopened.GetLastError());
    CDBTable* table = reopened.GetTable(L"CustomHotRolledSection");
    ASSERT_NE(table, nullptr);
    const auto expected = sectionFields();
    ASSERT_EQ(table->GetFieldCount(), static_cast<int>(expected.size()));
    for (int i = 0; i < table->GetFieldCount(); ++i) {
        EXPECT_EQ(table->GetFieldName(i), expected[i].GetName());
        EXPECT_EQ(table->GetField(i).GetKind(), expected[i].GetKind());
    }
    EXPECT_EQ(table->FindField(L"AreaVal"), 4);
    EXPECT_EQ(table->FindField(L"NoSuchField"), -1);
    EXPECT_EQ(reopened.GetTable(L"NoSuchTable"), nullptr);
}

TEST_F(DatabaseTest, FieldNamesAreCaseSensitive) {
    // Catalogue rows carry both "B" and "b", "D" and "d" as parameters.
    CDBTable* table = m_db.CreateTable(L"Params", {{L"b", EnDBFieldKind::Text, true},
                                                   {L"B", EnDBFieldKind::Int32, true},
                                                   {L"KDB_ADDR", EnDBFieldKind::Int32},
                                                   {L"d", EnDBFieldKind::Double}});
    ASSERT_NE(table, nullptr) << qPrintable(m_db.GetLastError());
    EXPECT_EQ(m_db.CreateTable(L"Twice", {{L"b", EnDBFieldKind::Text}, {L"b", EnDBFieldKind::Text}}), nullptr);
    CDBRecord* record = table->CreateRecord();
    record->SetString(0, L"80");
    record->SetInt(1, 125);
    record->SetInt(2, 7);
    record->SetDouble(3, 10);
    table->AddRecord(record);
    record->Release();
    ASSERT_TRUE(m_db.Flush());
    m_db.Close();

    CDatabase reopened;
    ASSERT_TRUE(reopened.Open(m_path, true));
    table = reopened.GetTable(L"Params");
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->FindField(L"B"), 1);
    EXPECT_EQ(table->FindField(L"D"), -1);
    CFileAddressList found;
    ASSERT_TRUE(table->Search(1, 125, found));
    ASSERT_EQ(found.GetCount(), 1);
    CDBRecord* read = table->GetRecord(found.GetItem(0));
    EXPECT_EQ(read->GetString(0), L"80");
    EXPECT_EQ(read->GetInt(1), 125);
    EXPECT_EQ(read->GetInt(2), 7);
    EXPECT_EQ(read->GetDouble(3), 10.0);
    read->Release();
    EXPECT_TRUE(table->Query(L"B==125", found));
    EXPECT_FALSE(table->Search(1, 80, found));
}

TEST_F(DatabaseTest, EveryFieldKindRoundTripsExactly) {
    CDBRecord* record = m_table->CreateRecord();
    CCoord3 frame;
    frame.origin = {1.5, -2.25, 1e-300};
    frame.zAxis = {0, -1, 0};
    const QByteArray bytes("\0\x01\xff polygon", 11);
    EXPECT_TRUE(record->SetInt(0, -2147483647 - 1));
    EXPECT_TRUE(record->SetString(2, L"截面 \"quoted\"; DROP TABLE x;--"));
    EXPECT_TRUE(record->SetDouble(3, 0.1 + 0.2));
    EXPECT_TRUE(record->SetInt64(5, 9007199254740993LL));
    EXPECT_TRUE(record->SetBool(6, true));
    EXPECT_TRUE(record->SetCoord3(7, frame));
    EXPECT_TRUE(record->SetBytes(8, bytes));
    EXPECT_TRUE(record->SetBytes(9, QByteArray()));
    EXPECT_FALSE(record->SetDouble(2, 1.0));  // a text field takes no double
    EXPECT_FALSE(record->SetInt(42, 1));
    const CFileAddress address = m_table->AddRecord(record);
    record->Release();
    ASSERT_NE(address, kNullAddress);

    CDBRecord* read = m_table->GetRecord(address);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->GetInt(0), -2147483647 - 1);
    EXPECT_TRUE(read->IsNull(1));
    EXPECT_EQ(read->GetInt(1, -1), -1);
    EXPECT_EQ(read->GetString(2), L"截面 \"quoted\"; DROP TABLE x;--");
    EXPECT_EQ(read->GetDouble(3), 0.1 + 0.2);
    EXPECT_EQ(read->GetInt64(5), 9007199254740993LL);
    EXPECT_TRUE(read->GetBool(6));
    EXPECT_EQ(read->GetCoord3(7), frame);
    EXPECT_EQ(read->GetBytes(8), bytes);
    EXPECT_EQ(read->GetString(3, L"default"), L"default");  // wrong kind gives the default
    read->Release();
}

TEST_F(DatabaseTest, FindSearchAndListFollowTableOrder) {
    CFileAddressList all;
    ASSERT_TRUE(m_table->ListAll(all));
    EXPECT_EQ(namesOf(m_table, all),
              (QList<std::wstring>{L"HN400*200*8*13(ZDY)", L"L100*10(ZDY)", L"L100*12(ZDY)", L"热轧H型钢"}));

    CFileAddressList found;
    ASSERT_TRUE(m_table->Search(0, 3, found));
    EXPECT_EQ(namesOf(m_table, found), (QList<std::wstring>{L"L100*10(ZDY)", L"L100*12(ZDY)"}));

    CFileAddress first = kNullAddress;
    ASSERT_TRUE(m_table->Find(0, 7, first));
    EXPECT_EQ(first, all.GetItem(0));
    EXPECT_FALSE(m_table->Find(0, 99, first));
    CFileAddressList none;
    EXPECT_FALSE(m_table->Search(0, 99, none));
    EXPECT_EQ(none.GetCount(), 0);
}

TEST_F(DatabaseTest, AcceptsExactlyTheQueryFormsTheLibraryBuilds) {
    const struct {
        const wchar_t* query;
        QList<std::wstring> names;
    } accepted[] = {
        {L"SectionType==3", {L"L100*10(ZDY)", L"L100*12(ZDY)"}},
        {L"SectionType==3 && SubID==2", {L"L100*10(ZDY)", L"L100*12(ZDY)"}},
        {L"SectionType == 7 && SubID == 1", {L"HN400*200*8*13(ZDY)"}},
        {L"SectionType == 7", {L"HN400*200*8*13(ZDY)", L"热轧H型钢"}},
        {L"SectionType==-3", {}},
        {L"SameString(StandardName,\"L100*12(ZDY)\")", {L"L100*12(ZDY)"}},
        {L"SameString(StandardName,\"热轧H型钢\")", {L"热轧H型钢"}},
        {L"SameString(StandardName,\"\")", {}},
    };
    for (const auto& row : accepted) {
        SCOPED_TRACE(QString::fromWCharArray(row.query).toStdString());
        CFileAddressList list;
        ASSERT_TRUE(m_table->Query(row.query, list));
        EXPECT_EQ(namesOf(m_table, list), row.names);
    }
    const wchar_t* refused[] = {
        L"",
        L"SectionType=3",
        L"SectionType==3 AND SubID==2",
        L"SectionType==3 || 1==1",
        L"SectionType==3 && SubID == 2",
        L"SectionType==3 && SubID==2 && SubID==2",
        L"SectionType == 3.5",
        L"SectionType==99999999999999999999",
        L"NoField==1",
        L"StandardName==1",
        L"WeightMeter==1",
        L"SameString(SectionType,\"3\")",
        L"SameString(NoField,\"x\")",
        L"SameString(StandardName,x)",
        L"SameString(StandardName,\"x\"",
        L"1 == 1; DROP TABLE CustomHotRolledSection",
    };
    for (const wchar_t* query : refused) {
        SCOPED_TRACE(QString::fromWCharArray(query).toStdString());
        CFileAddressList list;
        EXPECT_FALSE(m_table->Query(query, list));
        EXPECT_EQ(list.GetCount(), 0);
    }
}

TEST_F(DatabaseTest, HostileNamesAreValuesNotSql) {
    const std::wstring hostile[] = {L"x\") OR 1=1 --", L"'; DELETE FROM CustomHotRolledSection; --", L"a\"b\"c",
                                    L"(ZDY);", L"%", L"_"};
    for (const std::wstring& name : hostile) {
        CFileAddressList list;
        ASSERT_TRUE(m_table->Query(L"SameString(StandardName,\"" + name + L"\")", list));
        EXPECT_EQ(list.GetCount(), 0);
    }
    CFileAddressList all;
    m_table->ListAll(all);
    EXPECT_EQ(all.GetCount(), 4);

    addSection(m_table, 1, 1, L"a\"b\"c", 2.0);
    CFileAddressList quoted;
    ASSERT_TRUE(m_table->Query(L"SameString(StandardName,\"a\"b\"c\")", quoted));
    EXPECT_EQ(namesOf(m_table, quoted), (QList<std::wstring>{L"a\"b\"c"}));
}

TEST_F(DatabaseTest, RecordViewReadsByNameWithDefaults) {
    CFileAddressList list;
    ASSERT_TRUE(m_table->Search(1, 1, list));
    const VMPDBRecord row(m_table, list.GetItem(0));
    ASSERT_TRUE(row.isValid());
    EXPECT_EQ(row.getInteger("SectionType", -1), 7);
    EXPECT_EQ(row.getString("StandardName", "none"), QStringLiteral("HN400*200*8*13(ZDY)"));
    EXPECT_EQ(row.getDouble("WeightMeter", 0.0), 65.4);
    EXPECT_EQ(row.getDouble("AreaVal", -1.0), -1.0);  // null value
    EXPECT_EQ(row.getInteger("NoSuchField", 42), 42);
    EXPECT_EQ(row.getString("WeightMeter", "kind"), QStringLiteral("kind"));
    EXPECT_FALSE(row.getBool("Flag", false));

    const VMPDBRecord missing(m_table, 123456);
    EXPECT_FALSE(missing.isValid());
    EXPECT_EQ(missing.getInteger("SectionType", -5), -5);
}

TEST_F(DatabaseTest, ModifyAndDeleteChangeOnlyTheirRecord) {
    CFileAddressList list;
    ASSERT_TRUE(m_table->Query(L"SameString(StandardName,\"L100*10(ZDY)\")", list));
    CDBRecord* record = m_table->GetRecord(list.GetItem(0));
    record->SetDouble(3, 99.5);
    EXPECT_TRUE(m_table->ModifyRecord(record));
    record->Release();
    record = m_table->GetRecord(list.GetItem(0));
    EXPECT_EQ(record->GetDouble(3), 99.5);
    record->Release();

    EXPECT_TRUE(m_table->DeleteRecord(list.GetItem(0)));
    EXPECT_FALSE(m_table->DeleteRecord(list.GetItem(0)));
    EXPECT_EQ(m_table->GetRecord(list.GetItem(0)), nullptr);
    CFileAddressList rest;
    m_table->ListAll(rest);
    EXPECT_EQ(rest.GetCount(), 3);
}

TEST_F(DatabaseTest, ClosingWithoutFlushDiscardsWrites) {
    ASSERT_TRUE(m_db.Flush());
    addSection(m_table, 9, 9, L"unsaved", 1.0);
    m_db.Close();
    CDatabase reopened;
    ASSERT_TRUE(reopened.Open(m_path, false));
    CFileAddressList all;
    reopened.GetTable(L"CustomHotRolledSection")->ListAll(all);
    EXPECT_EQ(all.GetCount(), 4);
    CFileAddressList unsaved;
    EXPECT_TRUE(reopened.GetTable(L"CustomHotRolledSection")->Query(L"SameString(StandardName,\"unsaved\")", unsaved));
    EXPECT_EQ(unsaved.GetCount(), 0);
}

TEST_F(DatabaseTest, ReadOnlyDatabaseRefusesWrites) {
    ASSERT_TRUE(m_db.Flush());
    m_db.Close();
    CDatabase readOnly;
    ASSERT_TRUE(readOnly.Open(m_path, true));
    EXPECT_TRUE(readOnly.IsReadOnly());
    CDBTable* table = readOnly.GetTable(L"CustomHotRolledSection");
    EXPECT_EQ(addSection(table, 1, 1, L"refused", 1.0), kNullAddress);
    CFileAddressList all;
    table->ListAll(all);
    EXPECT_FALSE(table->DeleteRecord(all.GetItem(0)));
    EXPECT_EQ(readOnly.CreateTable(L"New", {{L"A", EnDBFieldKind::Int32}}), nullptr);
}

TEST(DatabaseFiles, MissingCorruptAndForeignFilesAreRefusedWithAReason) {
    QTemporaryDir dir;
    CDatabase db;
    EXPECT_FALSE(db.Open(dir.filePath("missing.KDB"), true));
    EXPECT_TRUE(db.GetLastError().contains("missing.KDB"));

    QFile garbage(dir.filePath("garbage.KDB"));
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
    garbage.write(QByteArray(4096, '\x5a'));
    garbage.close();
    EXPECT_FALSE(db.Open(garbage.fileName(), false));
    EXPECT_FALSE(db.GetLastError().isEmpty());
    EXPECT_FALSE(db.IsOpen());

    // A valid SQLite file without our table definitions is not one of our databases.
    {
        QProcess sqlite;
        sqlite.start("sqlite3", {dir.filePath("foreign.KDB"), "CREATE TABLE t(a);"});
        sqlite.waitForFinished();
    }
    if (QFile::exists(dir.filePath("foreign.KDB"))) {
        EXPECT_FALSE(db.Open(dir.filePath("foreign.KDB"), false));
        EXPECT_TRUE(db.GetLastError().contains("not a database of this program")) << qPrintable(db.GetLastError());
    }

    CDatabase created;
    ASSERT_TRUE(created.Create(dir.filePath("new.KDB")));
    EXPECT_FALSE(CDatabase().Create(dir.filePath("new.KDB")));  // never overwrites
    EXPECT_EQ(created.CreateTable(L"T", {{L"A", EnDBFieldKind::Int32}, {L"A", EnDBFieldKind::Text}}), nullptr);
    EXPECT_NE(created.CreateTable(L"T", {{L"A", EnDBFieldKind::Int32}}), nullptr);
    EXPECT_EQ(created.CreateTable(L"T", {{L"A", EnDBFieldKind::Int32}}), nullptr);
}

// The child half of the durability test: adds a record, flushes, reports, then waits to be killed.
static int runFlushChild(const QString& path) {
    CDatabase db;
    if (!db.Open(path, false)) return 3;
    CDBTable* table = db.GetTable(L"CustomHotRolledSection");
    addSection(table, 5, 5, L"flushed", 1.0);
    if (!db.Flush()) return 4;
    addSection(table, 6, 6, L"not flushed", 1.0);
    std::printf("flushed\n");
    std::fflush(stdout);
    for (;;) QThread::sleep(1);
}

TEST_F(DatabaseTest, FlushedWriteSurvivesTheProcessBeingKilled) {
    ASSERT_TRUE(m_db.Flush());
    m_db.Close();
    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("BXQ_FLUSH_CHILD", m_path);
    child.setProcessEnvironment(env);
    child.start(QCoreApplication::applicationFilePath(), QStringList());
    ASSERT_TRUE(child.waitForReadyRead(30000));
    EXPECT_EQ(child.readLine().trimmed(), "flushed");
    ::kill(static_cast<pid_t>(child.processId()), SIGKILL);
    child.waitForFinished();

    CDatabase reopened;
    ASSERT_TRUE(reopened.Open(m_path, false)) << qPrintable(reopened.GetLastError());
    CDBTable* table = reopened.GetTable(L"CustomHotRolledSection");
    CFileAddressList flushed, unflushed;
    ASSERT_TRUE(table->Query(L"SameString(StandardName,\"flushed\")", flushed));
    ASSERT_TRUE(table->Query(L"SameString(StandardName,\"not flushed\")", unflushed));
    EXPECT_EQ(flushed.GetCount(), 1);
    EXPECT_EQ(unflushed.GetCount(), 0);
}

// Runs before the tests: the durability test starts this executable again as its child.
static const int flushChild = [] {
    const QByteArray path = qgetenv("BXQ_FLUSH_CHILD");
    if (!path.isEmpty()) {
        std::exit(runFlushChild(QString::fromLocal8Bit(path)));
    }
    return 0;
}();

TEST(DatabaseManager, ClosesOneOfItsDatabasesOnceAndOpensItAgainOnRequest) {
    QTemporaryDir dir;
    {
        ndp::CDatabase db;
        ASSERT_TRUE(db.Create(dir.filePath("Some.KDB")));
        ASSERT_TRUE(db.Flush());
    }
    const QByteArray previous = qgetenv("BXQ_DATA_DIR");
    qputenv("BXQ_DATA_DIR", dir.path().toUtf8());
    VMPNDDBManager* manager = VMPNDDBManager::nddbMgr();
    ndp::CDatabase* first = manager->getNDDB("Some.KDB", true);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(manager->getNDDB("Some.KDB", true), first);  // once per process
    EXPECT_TRUE(manager->closeNDDB(first));
    EXPECT_FALSE(manager->closeNDDB(first));  // not its own any more: nothing freed twice
    ndp::CDatabase other;
    EXPECT_FALSE(manager->closeNDDB(&other));
    ndp::CDatabase* again = manager->getNDDB("Some.KDB", true);
    ASSERT_NE(again, nullptr);
    EXPECT_TRUE(again->IsOpen());
    EXPECT_TRUE(manager->closeNDDB(again));
    qputenv("BXQ_DATA_DIR", previous);
}
