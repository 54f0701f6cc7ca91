// The hot-rolled providers when things fail under them: a damaged row is an error naming the file
// for every look-up that reaches it, never a row not found or a shorter list; a change to a
// project that cannot be written says so; a user section saved just before the process is killed
// survives and an unsaved one is gone.
#include "section_data/SKRDatabaseError.h"
#include "section_data/SKRProjectSchema.h"
#include "vmp/VMPProjectModel.h"

#include "HotRollingCatalogue.h"
#include "support/DamagedDatabase.h"

#include <QProcess>
#include <QThread>

#include <csignal>
#include <cstdio>
#include <functional>

using namespace skr::section;
using namespace cattest;

namespace {

using Calls = std::vector<std::pair<const char*, std::function<void()>>>;

void expectFailuresNamingFile(const Calls& calls, const QString& path, const char* reason) {
    for (const auto& call : calls) {
        SCOPED_TRACE(call.first);
        const QString what = QString::fromStdString(thrown<SKRDatabaseError>(call.second));
        EXPECT_TRUE(what.contains(path)) << what.toStdString();
        EXPECT_TRUE(what.contains(reason)) << what.toStdString();
    }
}

const wchar_t kSaved[] = L"Z270*80*8*3(ZDY)", kUnsaved[] = L"Z300*80*8*3(ZDY)";

// The child half of the kill test: saves one user section, adds a second without saving,
// reports, then waits to be killed.
int runSavedSectionChild(const QString& path) {
    VMPProjectModel model;
    if (!model.open(path)) return 3;
    SKRUserHotRollingSectionDBProvider user(model.getProjectDB()->GetTable(schema::user_section::table));
    if (!user.addSection(userSection(kSaved, 9, 1)) || !model.save()) return 4;
    if (!user.addSection(userSection(kUnsaved, 9, 2, 14.0))) return 5;
    std::printf("saved\n");
    std::fflush(stdout);
    for (;;) QThread::sleep(1);
}

// Runs before the tests: the kill test starts this executable again as its child.
const int savedSectionChild = [] {
    const QByteArray path = qgetenv("BXQ_SAVED_SECTION_CHILD");
    if (!path.isEmpty()) std::exit(runSavedSectionChild(QString::fromLocal8Bit(path)));
    return 0;
}();

}  // namespace

TEST(ProviderFaults, EveryLookUpReachingADamagedRowFailsNamingTheFile) {
    QTemporaryDir dir;
    const QString path = dir.filePath("SKRSectionPolyDB.KDB");
    {
        ndp::CDatabase db;
        ASSERT_TRUE(db.Create(path));
        ndp::CDBTable* table = db.CreateTable(L"SectionPolyInfor", bxqtest::systemCatalogueFields());
        addRow(table, 1, 1, L"I20a", 0, 0, {L"200", L"10", L"10", L"10"});
        addRow(table, 1, 1, L"I20b", 0, 0, {bxqtest::longNumberText("200").toStdWString(), L"10", L"10", L"10"});
        addRow(table, 2, 1, L"[20a", 0, 0, {L"200", L"10", L"10", L"10"});
        ASSERT_TRUE(db.Flush());
    }
    ASSERT_TRUE(bxqtest::damageLongRow(path));
    ndp::CDatabase db;
    ASSERT_TRUE(db.Open(path, true));
    SKRHotRollingSectionDBProvider provider(db.GetTable(L"SectionPolyInfor"));
    EXPECT_TRUE(provider.findByName(L"I20a").first);
    EXPECT_EQ(provider.listByType(2).size(), 1u);
    expectFailuresNamingFile({{"findByName", [&] { provider.findByName(L"I20b"); }},
                              {"listByType", [&] { provider.listByType(1); }},
                              {"listAll", [&] { provider.listAll(); }}},
                             path, "malformed");
}

TEST(ProviderFaults, AChangeToAProjectThatCannotBeWrittenSaysSo) {
    QTemporaryDir dir;
    const QString path = dir.filePath("project.KDB");
    const SKRHotRollingSection section = userSection(kSaved, 9, 1);
    {
        ndp::CDatabase db;
        ASSERT_TRUE(db.Create(path));
        SKRUserHotRollingSectionDBProvider provider(db.CreateTable(L"CustomHotRolledSection", bxqtest::userCatalogueFields()));
        ASSERT_TRUE(provider.addSection(section));
        ASSERT_TRUE(db.Flush());
    }
    ndp::CDatabase db;
    ASSERT_TRUE(db.Open(path, true));
    SKRUserHotRollingSectionDBProvider provider(db.GetTable(L"CustomHotRolledSection"));
    expectFailuresNamingFile({{"addSection", [&] { provider.addSection(userSection(kUnsaved, 9, 2)); }},
                              {"updateSection", [&] { provider.updateSection(section); }},
                              {"removeSection", [&] { provider.removeSection(9, 1); }}},
                             path, "cannot write");
    EXPECT_EQ(provider.listAll().size(), 1u);
}

TEST(ProviderFaults, SavedSectionSurvivesTheProcessBeingKilledAndAnUnsavedOneIsGone) {
    QTemporaryDir dir;
    const QString path = dir.filePath("project.KDB");
    {
        VMPProjectModel created;
        ASSERT_TRUE(created.open(path)) << qPrintable(created.lastError());
    }
    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("BXQ_SAVED_SECTION_CHILD", path);
    child.setProcessEnvironment(env);
    child.start(QCoreApplication::applicationFilePath(), QStringList());
    ASSERT_TRUE(child.waitForReadyRead(30000)) << child.readAllStandardError().constData();
    EXPECT_EQ(child.readLine().trimmed(), "saved");
    ::kill(static_cast<pid_t>(child.processId()), SIGKILL);
    child.waitForFinished();
    EXPECT_EQ(child.exitStatus(), QProcess::CrashExit);

    VMPProjectModel reopened;
    ASSERT_TRUE(reopened.open(path)) << qPrintable(reopened.lastError());
    ndp::CDBTable* table = reopened.getProjectDB()->GetTable(schema::user_section::table);
    SKRUserHotRollingSectionDBProvider user(table);
    const SKRHotRollingLookup saved = user.findByName(kSaved);
    ASSERT_TRUE(saved.first);
    EXPECT_EQ(saved.second.weightMeter, 12.5);
    EXPECT_EQ(saved.second.params, kUserParams);
    EXPECT_FALSE(user.findByName(kUnsaved).first);
    EXPECT_EQ(rowCount(table), 1);
}
