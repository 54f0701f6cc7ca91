// The database engine stand-in: field order and kinds, polygon fields, look-ups, the query forms,
// transactions, files that are not our databases, faults (a file held by another program, a create
// that fails part way), the database manager and the undoable command log. Durability across a
// killed process and damaged rows are checked where the catalogue uses them (section_data).
#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/VMPCmdLogTool.h"
#include "vmp/VMPDBRecord.h"
#include "vmp/VMPNDDBManager.h"

#include "platform/Loops.h"
#include "support/LockHolder.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <map>

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

void setWeight(CDBTable* table, CFileAddress address, double weight) {
    CDBRecord* record = table->GetRecord(address);
    record->SetDouble(3, weight);
    table->ModifyRecord(record);
    record->Release();
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

QStringList filesIn(const QTemporaryDir& dir) {
    return QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

// A project with four sections, open for writing and not yet flushed.
class DatabaseTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        m_path = m_dir.filePath("project.KDB");
        ASSERT_TRUE(m_db.Create(m_path)) << qPrintable(m_db.GetLastError());
        m_table = m_db.CreateTable(L"CustomHotRolledSection", sectionFields());
        ASSERT_NE(m_table, nullptr);
        m_first = addSection(m_table, 7, 1, L"HN400*200*8*13(ZDY)", 65.4);
        addSection(m_table, 3, 2, L"L100*10(ZDY)", 15.1);
        addSection(m_table, 3, 2, L"L100*12(ZDY)", 17.9);
        addSection(m_table, 7, 2, L"热轧H型钢", 1.0);
    }

    QTemporaryDir m_dir;
    QString m_path;
    CDatabase m_db;
    CDBTable* m_table = nullptr;
    CFileAddress m_first = kNullAddress;
};

// Field order and kinds come back from the file. Catalogue rows carry both "B" and "b", "D" and
// "d" as parameters, which SQLite's columns do not tell apart, nor its row-address column from
// "KDB_ADDR".
// Writes after the last flush are discarded on closing, and a database opened read-only refuses
// every write.
TEST_F(DatabaseTest, TableDefinitionsSurviveReopeningUnflushedWritesDoNotAndAHeldFileIsBusy) {
    CDBTable* table = m_db.CreateTable(L"Params", {{L"B", EnDBFieldKind::Int32, true},
                                                   {L"KDB_ADDR", EnDBFieldKind::Int32},
                                                   {L"b", EnDBFieldKind::Text, true},
                                                   {L"d", EnDBFieldKind::Double}});
    ASSERT_NE(table, nullptr) << qPrintable(m_db.GetLastError());
    ASSERT_NE(addSection(table, 125, 7, L"80", 10), kNullAddress);  // the fields a section row has

    ASSERT_TRUE(m_db.Flush());
    addSection(m_table, 9, 9, L"unsaved", 1.0);
    m_db.Close();  // without a flush
    CDatabase reopened;
    ASSERT_TRUE(reopened.Open(m_path, true)) << qPrintable(reopened.GetLastError());
    EXPECT_TRUE(reopened.IsReadOnly());
    CDBTable* sections = reopened.GetTable(L"CustomHotRolledSection");
    ASSERT_NE(sections, nullptr);
    CFileAddressList all;
    sections->ListAll(all);
    EXPECT_EQ(all.GetCount(), 4);  // not the unsaved fifth
    EXPECT_EQ(addSection(sections, 1, 1, L"refused", 1.0), kNullAddress);
    EXPECT_FALSE(sections->DeleteRecord(all.GetItem(0)));
    EXPECT_EQ(reopened.CreateTable(L"New", {{L"A", EnDBFieldKind::Int32}}), nullptr);
    const auto expected = sectionFields();
    ASSERT_EQ(sections->GetFieldCount(), static_cast<int>(expected.size()));
    for (int i = 0; i < sections->GetFieldCount(); ++i) {
        EXPECT_EQ(sections->GetFieldName(i), expected[i].GetName());
        EXPECT_EQ(sections->GetField(i).GetKind(), expected[i].GetKind());
    }
    EXPECT_EQ(reopened.GetTable(L"NoSuchTable"), nullptr);
    table = reopened.GetTable(L"Params");
    EXPECT_EQ(table->FindField(L"B"), 0);
    EXPECT_EQ(table->FindField(L"D"), -1);
    CFileAddressList found;
    ASSERT_TRUE(table->Search(0, 125, found));
    ASSERT_EQ(found.GetCount(), 1);
    CDBRecord* read = table->GetRecord(found.GetItem(0));
    EXPECT_EQ(read->GetString(2), L"80");
    EXPECT_EQ(read->GetInt(1), 7);
    // Field indexes outside the table are null, not read past the row.
    EXPECT_TRUE(read->IsNull(-1));
    EXPECT_TRUE(read->IsNull(table->GetFieldCount()));
    read->Release();
    EXPECT_TRUE(table->Query(L"B==125", found));
    EXPECT_FALSE(table->Search(0, 80, found));

    // The closed file, held by another program, is busy and its holder named.
    CDatabase::SetBusyTimeout(200);
    struct Case { const char* begin; bool opens; };  // opens: readers still open the file; only writers wait
    for (const Case& held : {Case{"BEGIN IMMEDIATE", true}, Case{"BEGIN EXCLUSIVE", false}}) {
        SCOPED_TRACE(held.begin);
        const bxqtest::LockHolder holder(m_path, held.begin);
        CDatabase db;
        const bool opened = db.Open(m_path, false);
        ASSERT_EQ(opened, held.opens) << qPrintable(db.GetLastError());
        EXPECT_TRUE(!opened || !db.BeginTransaction());
        EXPECT_TRUE(db.IsBusy());
        const QString error = db.GetLastError();
        EXPECT_TRUE(error.contains("busy")) << qPrintable(error);
        EXPECT_TRUE(error.contains(QStringLiteral("sqlite3 (process %1)").arg(holder.pid()))) << qPrintable(error);
        EXPECT_TRUE(error.contains(m_path)) << qPrintable(error);
    }
    CDatabase::SetBusyTimeout(5000);
}

TEST_F(DatabaseTest, FindSearchQueriesFieldKindsRecordViewsAndPolygonFieldsReadAndWriteExactly) {
    CFileAddressList all;
    ASSERT_TRUE(m_table->ListAll(all));
    EXPECT_EQ(namesOf(m_table, all),
              (QList<std::wstring>{L"HN400*200*8*13(ZDY)", L"L100*10(ZDY)", L"L100*12(ZDY)", L"热轧H型钢"}));
    CFileAddressList found;
    ASSERT_TRUE(m_table->Search(0, 3, found));
    EXPECT_EQ(namesOf(m_table, found), (QList<std::wstring>{L"L100*10(ZDY)", L"L100*12(ZDY)"}));
    CFileAddress first = kNullAddress;
    ASSERT_TRUE(m_table->Find(0, 7, first));
    EXPECT_EQ(first, m_first);
    EXPECT_FALSE(m_table->Find(0, 99, first));
    EXPECT_FALSE(m_table->Search(0, 99, found));
    EXPECT_EQ(found.GetCount(), 0);

    // Queries accept exactly the forms the library builds. Texts are compared as values: quotes,
    // SQL and LIKE wildcards in a name find only that name.
    addSection(m_table, 1, 1, L"a\"b\"c", 2.0);
    const struct { const wchar_t* query; QList<std::wstring> names; } accepted[] = {
        {L"SectionType==3", {L"L100*10(ZDY)", L"L100*12(ZDY)"}},
        {L"SectionType==3 && SubID==2", {L"L100*10(ZDY)", L"L100*12(ZDY)"}},
        {L"SectionType == 7 && SubID == 1", {L"HN400*200*8*13(ZDY)"}},
        {L"SectionType == 7", {L"HN400*200*8*13(ZDY)", L"热轧H型钢"}},
        {L"SameString(StandardName,\"L100*12(ZDY)\")", {L"L100*12(ZDY)"}},
        {L"SameString(StandardName,\"热轧H型钢\")", {L"热轧H型钢"}},
        {L"SameString(StandardName,\"a\"b\"c\")", {L"a\"b\"c"}},
        {L"SameString(StandardName,\"x\") OR 1=1 --\")", {}},
        {L"SameString(StandardName,\"'; DELETE FROM CustomHotRolledSection; --\")", {}},
        {L"SectionType==-3", {}}, {L"SameString(StandardName,\"\")", {}}, {L"SameString(StandardName,\"(ZDY);\")", {}},
        {L"SameString(StandardName,\"%\")", {}}, {L"SameString(StandardName,\"_\")", {}},
    };
    for (const auto& row : accepted) {
        SCOPED_TRACE(QString::fromWCharArray(row.query).toStdString());
        CFileAddressList list;
        ASSERT_TRUE(m_table->Query(row.query, list));
        EXPECT_EQ(namesOf(m_table, list), row.names);
    }
    const wchar_t* refused[] = {
        L"", L"SectionType=3", L"SectionType==3 AND SubID==2", L"SectionType==3 || 1==1",
        L"SectionType==3 && SubID == 2", L"SectionType==3 && SubID==2 && SubID==2", L"SectionType == 3.5",
        L"SectionType==99999999999999999999", L"NoField==1", L"StandardName==1", L"WeightMeter==1",
        L"SameString(SectionType,\"3\")", L"SameString(NoField,\"x\")", L"SameString(StandardName,x)",
        L"SameString(StandardName,\"x\"", L"1 == 1; DROP TABLE CustomHotRolledSection",
    };
    for (const wchar_t* query : refused) {
        SCOPED_TRACE(QString::fromWCharArray(query).toStdString());
        CFileAddressList list;
        EXPECT_FALSE(m_table->Query(query, list));
        EXPECT_EQ(list.GetCount(), 0);
    }

    // Every field kind round-trips exactly.
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
    EXPECT_EQ(read->GetInt(1, -1), -1);  // null gives the default
    EXPECT_EQ(read->GetString(2), L"截面 \"quoted\"; DROP TABLE x;--");
    EXPECT_EQ(read->GetDouble(3), 0.1 + 0.2);
    EXPECT_EQ(read->GetInt64(5), 9007199254740993LL);
    EXPECT_TRUE(read->GetBool(6));
    EXPECT_EQ(read->GetCoord3(7), frame);
    EXPECT_EQ(read->GetBytes(8), bytes);
    EXPECT_EQ(read->GetString(3, L"default"), L"default");  // wrong kind gives the default
    read->Release();

    // The record view reads by name with defaults, and changes reach only their record.
    const VMPDBRecord row(m_table, m_first);
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

    // Modifying and deleting change only their record.
    setWeight(m_table, m_first, 99.5);
    EXPECT_EQ(VMPDBRecord(m_table, m_first).getDouble("WeightMeter", 0.0), 99.5);
    EXPECT_TRUE(m_table->DeleteRecord(m_first));
    EXPECT_FALSE(m_table->DeleteRecord(m_first));
    EXPECT_EQ(m_table->GetRecord(m_first), nullptr);
    CFileAddressList rest;
    m_table->ListAll(rest);
    EXPECT_EQ(rest.GetCount(), 5);  // the four, the two added above, less the deleted one

    // Polygon fields take and give only polygons.
    CPolygon polygon, untouched;
    polygon.AddLoop(rectangle(0, 0, 100, 50), true);
    polygon.AddLoop(circle(20, 20, 10), true);
    CDBRecord* polygonRecord = m_table->CreateRecord();
    EXPECT_FALSE(polygonRecord->GetPolygon(8, untouched));  // null
    EXPECT_FALSE(polygonRecord->SetPolygon(9, polygon));    // a stream
    EXPECT_FALSE(polygonRecord->SetPolygon(2, polygon));
    EXPECT_FALSE(polygonRecord->SetPolygon(42, polygon));
    EXPECT_TRUE(polygonRecord->SetPolygon(8, polygon));
    polygonRecord->SetBytes(9, polygon.ToBytes());
    const CFileAddress polygonAddress = m_table->AddRecord(polygonRecord);
    polygonRecord->Release();
    CDBRecord* readBack = m_table->GetRecord(polygonAddress);
    ASSERT_NE(readBack, nullptr);
    CPolygon back;
    EXPECT_TRUE(readBack->GetPolygon(8, back));
    EXPECT_EQ(back, polygon);
    EXPECT_FALSE(readBack->GetPolygon(9, untouched));  // a stream, even one holding polygon bytes
    EXPECT_TRUE(untouched.IsEmpty());
    readBack->Release();
}

TEST(DatabaseFiles, MissingCorruptAndForeignFilesAreRefusedAndTheManagerClosesEachDatabaseOnce) {
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
    QProcess::execute("sqlite3", {dir.filePath("foreign.KDB"), "CREATE TABLE t(a);"});
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

    // The database manager closes one of its databases once and opens it again on request.
    {
        CDatabase db;
        ASSERT_TRUE(db.Create(dir.filePath("Some.KDB")));
        ASSERT_TRUE(db.Flush());  // with nothing to commit
    }
    const QByteArray previous = qgetenv("BXQ_DATA_DIR");
    qputenv("BXQ_DATA_DIR", dir.path().toUtf8());
    VMPNDDBManager* manager = VMPNDDBManager::nddbMgr();
    CDatabase* first = manager->getNDDB("Some.KDB", true);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(manager->getNDDB("Some.KDB", true), first);  // once per process
    EXPECT_TRUE(manager->closeNDDB(first));
    EXPECT_FALSE(manager->closeNDDB(first));  // not its own any more: nothing freed twice
    CDatabase other;
    EXPECT_FALSE(manager->closeNDDB(&other));
    CDatabase* again = manager->getNDDB("Some.KDB", true);
    ASSERT_NE(again, nullptr);
    EXPECT_TRUE(again->IsOpen());
    EXPECT_TRUE(manager->closeNDDB(again));
    qputenv("BXQ_DATA_DIR", previous);
}

// ---------------------------------------------------------------------------------------------
// Faults: each comes out as a failure that says what went wrong and names the file.

TEST(DatabaseFaults, AWholeCreateLeavesNothingOnFailureAndKeepsAFileMadeMeanwhile) {
    QTemporaryDir dir;
    const QString path = dir.filePath("new.KDB");
    QString error;
    const auto table = [](CDatabase& db, const wchar_t* name) {
        return db.CreateTable(name, {{L"ID", EnDBFieldKind::Int32, true}}) != nullptr;
    };
    EXPECT_FALSE(CDatabase::CreateWhole(path, [](CDatabase&) { return false; }, &error));
    EXPECT_TRUE(filesIn(dir).isEmpty());

    // Another program creates the project while this one builds its own: theirs is kept.
    ASSERT_TRUE(CDatabase::CreateWhole(path, [&](CDatabase& db) {
        CDatabase theirs;
        return theirs.Create(path) && table(theirs, L"Theirs") && theirs.Flush() && table(db, L"Ours");
    }, &error)) << qPrintable(error);
    CDatabase db;
    ASSERT_TRUE(db.Open(path, true));
    EXPECT_NE(db.GetTable(L"Theirs"), nullptr);
    EXPECT_EQ(db.GetTable(L"Ours"), nullptr);
    EXPECT_EQ(filesIn(dir), QStringList{"new.KDB"});
}

// ---------------------------------------------------------------------------------------------
// The undoable command log: each command is undone and redone exactly (added, changed and deleted
// rows), nesting makes one command, a new command drops the redo, and a database that no longer
// matches a command refuses it without changing anything.

class CommandLog : public DatabaseTest {
protected:
    void SetUp() override {
        DatabaseTest::SetUp();
        m_log->setDatabase(&m_db);
    }
    void TearDown() override { m_log->setDatabase(nullptr); }

    // Every row: address -> (name, weight).
    std::map<CFileAddress, std::pair<std::wstring, double>> rows() {
        std::map<CFileAddress, std::pair<std::wstring, double>> out;
        CFileAddressList all;
        m_table->ListAll(all);
        for (int i = 0; i < all.GetCount(); ++i) {
            CDBRecord* record = m_table->GetRecord(all.GetItem(i));
            out[all.GetItem(i)] = {record->GetString(2), record->GetDouble(3)};
            record->Release();
        }
        return out;
    }

    bool end(const QString& undo, const QString& redo) { return m_log->endCommandLog(undo, redo); }
    bool end(const QString& text) { return end(text, text); }

    VMPCmdLogTool* m_log = VMPCmdLogTool::getInstance();
};

}  // namespace

TEST_F(CommandLog, AddedChangedAndDeletedRowsAreUndoneAndRedoneExactly) {
    const auto before = rows();
    ASSERT_TRUE(m_log->beginCommandLog());
    const CFileAddress added = addSection(m_table, 3, 3, L"L100*8(ZDY)", 12.3);
    setWeight(m_table, m_first, 66.0);
    ASSERT_TRUE(end(QStringLiteral("撤消“编辑”操作"), QStringLiteral("恢复“编辑”操作")));
    ASSERT_TRUE(m_log->beginCommandLog());
    m_table->DeleteRecord(m_first);
    ASSERT_TRUE(end(QStringLiteral("undo delete"), QStringLiteral("redo delete")));
    const auto after = rows();
    EXPECT_EQ(after.count(added), 1u);

    EXPECT_EQ(m_log->undoText(), QStringLiteral("undo delete"));
    ASSERT_TRUE(m_log->undo());
    EXPECT_EQ(rows().at(m_first).second, 66.0);  // the deleted row is back at its address
    EXPECT_EQ(m_log->undoText(), QStringLiteral("撤消“编辑”操作"));
    EXPECT_EQ(m_log->redoText(), QStringLiteral("redo delete"));
    ASSERT_TRUE(m_log->undo());
    EXPECT_EQ(rows(), before);
    EXPECT_FALSE(m_log->undo());

    ASSERT_TRUE(m_log->redo());
    ASSERT_TRUE(m_log->redo());
    EXPECT_EQ(rows(), after);
    EXPECT_FALSE(m_log->redo());
    m_db.Close();
    EXPECT_EQ(m_log->database(), nullptr);  // closing forgets the log
}

TEST_F(CommandLog, NestingMakesOneCommandEmptyOnesAreNotKeptANewOneDropsTheRedoAndStaleOnesAreRefused) {
    EXPECT_FALSE(end(QString()));  // nothing open
    ASSERT_TRUE(m_log->beginCommandLog());
    ASSERT_TRUE(m_log->beginCommandLog());
    addSection(m_table, 1, 1, L"I20a(ZDY)", 27.9);
    ASSERT_TRUE(end(QStringLiteral("inner")));
    EXPECT_TRUE(m_log->isLogging());
    EXPECT_FALSE(m_log->undo());  // not while recording
    addSection(m_table, 2, 1, L"[20a(ZDY)", 22.6);
    ASSERT_TRUE(end(QStringLiteral("outer")));
    EXPECT_EQ(m_log->undoText(), QStringLiteral("outer"));
    ASSERT_TRUE(m_log->undo());
    EXPECT_EQ(rows().size(), 4u);  // both rows went with the one command
    EXPECT_FALSE(m_log->canUndo());

    ASSERT_TRUE(m_log->beginCommandLog());
    ASSERT_TRUE(end(QStringLiteral("nothing")));
    EXPECT_FALSE(m_log->canUndo());
    EXPECT_TRUE(m_log->canRedo());  // an empty command does not drop the redo

    // A new command drops the redo, and a stale command is refused.
    ASSERT_TRUE(m_log->beginCommandLog());
    setWeight(m_table, m_first, 70.0);
    ASSERT_TRUE(end(QStringLiteral("a")));
    ASSERT_TRUE(m_log->undo());
    ASSERT_TRUE(m_log->beginCommandLog());
    setWeight(m_table, m_first, 71.0);
    ASSERT_TRUE(end(QStringLiteral("b")));
    EXPECT_FALSE(m_log->canRedo());

    // A change made outside the log: undoing "b" would overwrite it, so nothing changes.
    setWeight(m_table, m_first, 99.0);
    EXPECT_FALSE(m_log->undo());
    EXPECT_EQ(rows().at(m_first).second, 99.0);
    EXPECT_FALSE(m_log->canUndo());

    m_log->setDatabase(nullptr);  // without a database nothing is recorded
    EXPECT_FALSE(m_log->beginCommandLog());
    EXPECT_FALSE(m_log->undo());
    EXPECT_FALSE(m_log->redo());
    EXPECT_TRUE(m_log->undoText().isEmpty());
}
