// The undoable command log: each logged command is undone and redone exactly (added, changed and
// deleted rows), nesting makes one command, a new command drops what could be redone, and a
// database that no longer matches a command refuses it without changing anything.
#include "vmp/VMPCmdLogTool.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <map>

using namespace ndp;

namespace {

class CommandLog : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_db.Create(m_dir.filePath("project.KDB")));
        m_table = m_db.CreateTable(L"CustomHotRolledSection", {{L"SectionType", EnDBFieldKind::Int32, true},
                                                               {L"StandardName", EnDBFieldKind::Text},
                                                               {L"WeightMeter", EnDBFieldKind::Double}});
        ASSERT_NE(m_table, nullptr);
        m_first = add(7, L"HN400*200*8*13(ZDY)", 65.4);
        m_log = VMPCmdLogTool::getInstance();
        m_log->setDatabase(&m_db);
    }
    void TearDown() override { m_log->setDatabase(nullptr); }

    CFileAddress add(int type, const wchar_t* name, double weight) {
        CDBRecord* record = m_table->CreateRecord();
        record->SetInt(0, type);
        record->SetString(1, name);
        record->SetDouble(2, weight);
        const CFileAddress address = m_table->AddRecord(record);
        record->Release();
        return address;
    }

    void setWeight(CFileAddress address, double weight) {
        CDBRecord* record = m_table->GetRecord(address);
        record->SetDouble(2, weight);
        m_table->ModifyRecord(record);
        record->Release();
    }

    // Every row: address -> (name, weight).
    std::map<CFileAddress, std::pair<std::wstring, double>> rows() {
        std::map<CFileAddress, std::pair<std::wstring, double>> out;
        CFileAddressList all;
        m_table->ListAll(all);
        for (int i = 0; i < all.GetCount(); ++i) {
            CDBRecord* record = m_table->GetRecord(all.GetItem(i));
            out[all.GetItem(i)] = {record->GetString(1), record->GetDouble(2)};
            record->Release();
        }
        return out;
    }

    QTemporaryDir m_dir;
    CDatabase m_db;
    CDBTable* m_table = nullptr;
    CFileAddress m_first = kNullAddress;
    VMPCmdLogTool* m_log = nullptr;
};

}  // namespace

TEST_F(CommandLog, AddedChangedAndDeletedRowsAreUndoneAndRedoneExactly) {
    const auto before = rows();
    ASSERT_TRUE(m_log->beginCommandLog());
    const CFileAddress added = add(3, L"L100*10(ZDY)", 15.1);
    setWeight(m_first, 66.0);
    ASSERT_TRUE(m_log->endCommandLog(QStringLiteral("撤消“编辑”操作"), QStringLiteral("恢复“编辑”操作")));
    ASSERT_TRUE(m_log->beginCommandLog());
    m_table->DeleteRecord(m_first);
    ASSERT_TRUE(m_log->endCommandLog(QStringLiteral("undo delete"), QStringLiteral("redo delete")));
    const auto after = rows();
    ASSERT_EQ(after.size(), 1u);

    EXPECT_EQ(m_log->undoText(), QStringLiteral("undo delete"));
    ASSERT_TRUE(m_log->undo());
    EXPECT_EQ(rows().at(m_first).second, 66.0);  // the deleted row is back at its address
    EXPECT_EQ(m_log->undoText(), QStringLiteral("撤消“编辑”操作"));
    EXPECT_EQ(m_log->redoText(), QStringLiteral("redo delete"));
    ASSERT_TRUE(m_log->undo());
    EXPECT_EQ(rows(), before);
    EXPECT_FALSE(m_log->canUndo());
    EXPECT_FALSE(m_log->undo());

    ASSERT_TRUE(m_log->redo());
    ASSERT_TRUE(m_log->redo());
    EXPECT_EQ(rows(), after);
    EXPECT_EQ(rows().count(added), 1u);
    EXPECT_FALSE(m_log->redo());

    // Undone state is an ordinary state of the database: flushed, it is what a reopen finds.
    ASSERT_TRUE(m_log->undo());
    ASSERT_TRUE(m_db.Flush());
    const auto flushed = rows();
    const QString path = m_db.GetPath();
    m_db.Close();
    EXPECT_EQ(m_log->database(), nullptr);  // closing forgets the log
    ASSERT_TRUE(m_db.Open(path, false));
    m_table = m_db.GetTable(L"CustomHotRolledSection");
    EXPECT_EQ(rows(), flushed);
}

TEST_F(CommandLog, NestedRecordingIsOneCommandAndEmptyCommandsAreNotKept) {
    EXPECT_FALSE(m_log->endCommandLog(QString(), QString()));  // nothing open
    ASSERT_TRUE(m_log->beginCommandLog());
    ASSERT_TRUE(m_log->beginCommandLog());
    add(1, L"I20a(ZDY)", 27.9);
    ASSERT_TRUE(m_log->endCommandLog(QStringLiteral("inner"), QStringLiteral("inner")));
    EXPECT_TRUE(m_log->isLogging());
    EXPECT_FALSE(m_log->undo());  // not while recording
    add(2, L"[20a(ZDY)", 22.6);
    ASSERT_TRUE(m_log->endCommandLog(QStringLiteral("outer"), QStringLiteral("outer")));
    EXPECT_EQ(m_log->undoText(), QStringLiteral("outer"));
    ASSERT_TRUE(m_log->undo());
    EXPECT_EQ(rows().size(), 1u);  // both rows went with the one command
    EXPECT_FALSE(m_log->canUndo());

    ASSERT_TRUE(m_log->beginCommandLog());
    ASSERT_TRUE(m_log->endCommandLog(QStringLiteral("nothing"), QStringLiteral("nothing")));
    EXPECT_FALSE(m_log->canUndo());
    EXPECT_TRUE(m_log->canRedo());  // an empty command does not drop the redo
}

TEST_F(CommandLog, ANewCommandDropsTheRedoAndAStaleCommandIsRefused) {
    ASSERT_TRUE(m_log->beginCommandLog());
    setWeight(m_first, 70.0);
    ASSERT_TRUE(m_log->endCommandLog(QStringLiteral("a"), QStringLiteral("a")));
    ASSERT_TRUE(m_log->undo());
    ASSERT_TRUE(m_log->beginCommandLog());
    setWeight(m_first, 71.0);
    ASSERT_TRUE(m_log->endCommandLog(QStringLiteral("b"), QStringLiteral("b")));
    EXPECT_FALSE(m_log->canRedo());

    // A change made outside the log: undoing "b" would overwrite it, so nothing changes.
    setWeight(m_first, 99.0);
    EXPECT_FALSE(m_log->undo());
    EXPECT_EQ(rows().at(m_first).second, 99.0);
    EXPECT_FALSE(m_log->canUndo());
}

TEST(CommandLogWithoutDatabase, RefusesToRecord) {
    VMPCmdLogTool* log = VMPCmdLogTool::getInstance();
    log->setDatabase(nullptr);
    EXPECT_FALSE(log->beginCommandLog());
    EXPECT_FALSE(log->undo());
    EXPECT_FALSE(log->redo());
    EXPECT_TRUE(log->undoText().isEmpty());
}
