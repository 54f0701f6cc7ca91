// bxq's data verbs under faults of their files, grouped by fault: a damaged row, a file held
// by another program, no permission (as an ordinary user), a full disk, many writers at once.
// A refused verb exits with 1, says in one line what went wrong and names the file, prints
// nothing on standard output and leaves the file byte for byte as it was, with no journal.
#include "section_data/SKRProjectSchema.h"
#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/VMPProjectModel.h"

#include "support/BxqProcess.h"
#include "support/LockHolder.h"
#include "support/CatalogueTables.h"
#include "support/DamagedDatabase.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>

#include <unistd.h>

using ndp::EnDBFieldKind;

namespace {

struct BxqRun {
    int exitCode = -1;
    QByteArray out;
    QString err;
};

// Runs bxq with the data folder and extra environment; as uid 65534 when asked and running as
// root (an ordinary user already is one).
BxqRun bxq(const QString& dataDir, const QStringList& arguments, const QStringList& environment = {},
        bool ordinaryUser = false) {
    const bxqtest::BxqRun run = bxqtest::runBxq(
        arguments, {dataDir, {}, QStringList{QStringLiteral("BXQ_BUSY_TIMEOUT=300")} + environment, ordinaryUser});
    return {run.exitCode, run.out, QString::fromUtf8(run.err)};
}

QByteArray digest(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256)
                                          : QByteArray();
}

// What every refusal must show.
void expectRefused(const BxqRun& run, const QString& file, const QString& reason) {
    EXPECT_EQ(run.exitCode, 1) << qPrintable(run.err);
    EXPECT_TRUE(run.out.isEmpty()) << run.out.constData();
    EXPECT_EQ(run.err.count('\n'), 1) << qPrintable(run.err);
    EXPECT_TRUE(run.err.contains(file)) << qPrintable(run.err);
    EXPECT_TRUE(run.err.contains(reason)) << qPrintable(run.err);
}

void expectNoJournal(const QString& folder) {
    EXPECT_TRUE(QDir(folder).entryList({"*-journal"}, QDir::Files | QDir::Hidden).isEmpty());
}

// A catalogue of I20a, I20b and [20a; the h of the row named damaged is a long text that
// damageLongRow can make unreadable.
void writeCatalogue(const QString& path, const std::wstring& damaged = std::wstring()) {
    ndp::CDatabase db;
    ASSERT_TRUE(db.Create(path));
    ndp::CDBTable* table = db.CreateTable(L"SectionPolyInfor", bxqtest::systemCatalogueFields());
    const std::pair<int, const wchar_t*> rows[] = {{1, L"I20a"}, {1, L"I20b"}, {2, L"[20a"}};
    for (const auto& row : rows) {
        ndp::CDBRecord* record = table->CreateRecord();
        record->SetInt(0, row.first);
        record->SetInt(1, 1);
        record->SetString(2, row.second);
        record->SetDouble(3, 27.929);
        record->SetDouble(4, 0.742);
        record->SetString(5, row.second == damaged ? bxqtest::longNumberText("200").toStdWString() : L"200");
        for (int field = 6; field < 9; ++field) record->SetString(field, L"10");
        ASSERT_NE(table->AddRecord(record), ndp::kNullAddress);
        record->Release();
    }
    ASSERT_TRUE(db.Flush());
    if (!damaged.empty()) {
        ASSERT_TRUE(bxqtest::damageLongRow(path));
    }
}

// A project of three user sections of type 9, subs 1 to 3; the one named damaged unreadable.
void writeProject(const QString& path, const std::wstring& damaged = std::wstring()) {
    VMPProjectModel model;
    ASSERT_TRUE(model.open(path));
    ndp::CDBTable* table = model.getProjectDB()->GetTable(skr::section::schema::user_section::table);
    const wchar_t* names[] = {L"Z1(ZDY)", L"Z2(ZDY)", L"Z3(ZDY)"};
    for (int i = 0; i < 3; ++i) {
        ndp::CDBRecord* record = table->CreateRecord();
        record->SetInt(0, 9);
        record->SetInt(1, i + 1);
        record->SetString(2, names[i]);
        record->SetDouble(3, 12.5);
        record->SetDouble(4, 0.6);
        const QString height = names[i] == damaged ? bxqtest::longNumberText("270") : QStringLiteral("270");
        record->SetString(5, (QStringLiteral("h=") + height).toStdWString());
        ASSERT_NE(table->AddRecord(record), ndp::kNullAddress);
        record->Release();
    }
    ASSERT_TRUE(model.save());
    if (!damaged.empty()) {
        ASSERT_TRUE(bxqtest::damageLongRow(path));
    }
}

QStringList addArguments(const QString& project, const QString& name) {
    return {"user-section", "add", name, "--project", project, "--type", "9", "--weight", "1", "--area", "1"};
}

// The verbs that change a project, each on a section the project of writeProject has.
QList<QStringList> changeVerbs(const QString& project) {
    return {addArguments(project, "Z9"),
            {"user-section", "update", "Z1", "--project", project, "--weight", "2"},
            {"user-section", "remove", "--project", project, "--type", "9", "--sub", "1"}};
}

class BxqFaultTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_data.isValid() && m_work.isValid());
        m_catalogue = m_data.filePath("SKRSectionPolyDB.KDB");
        m_project = m_work.filePath("project.KDB");
    }
    QTemporaryDir m_data;
    QTemporaryDir m_work;
    QString m_catalogue;
    QString m_project;
};

}  // namespace

TEST_F(BxqFaultTest, ADamagedRowIsAnErrorForEveryVerbThatReadsIt) {
    writeCatalogue(m_catalogue, L"I20a");
    writeProject(m_project, L"Z2(ZDY)");
    const QList<QPair<QStringList, QString>> cases{
        {{"catalogue"}, m_catalogue},
        {{"catalogue", "--type", "1", "--json"}, m_catalogue},
        {{"wpm", "I20a"}, m_catalogue},
        {{"apm", "I20a"}, m_catalogue},
        {{"parse", "--json", "I20a"}, m_catalogue},
        {{"user-section", "list", "--project", m_project}, m_project},
        {{"wpm", "--project", m_project, "Z2(ZDY)"}, m_project},
    };
    const QByteArray catalogueBefore = digest(m_catalogue), projectBefore = digest(m_project);
    for (const auto& verb : cases) {
        SCOPED_TRACE(verb.first.join(' ').toStdString());
        expectRefused(bxq(m_data.path(), verb.first), verb.second, "malformed");
    }
    // Rows that are sound still answer.
    EXPECT_EQ(bxq(m_data.path(), {"wpm", "I20b", "--project", m_project, "Z1(ZDY)"}).out, "27.929\n12.5\n");
    EXPECT_EQ(digest(m_catalogue), catalogueBefore);
    EXPECT_EQ(digest(m_project), projectBefore);
}

TEST_F(BxqFaultTest, AProjectHeldByAnotherProgramIsBusyAndItsHolderNamed) {
    writeProject(m_project);
    const QByteArray before = digest(m_project);
    {
        // Writing (the host's write transaction, another bxq): reading goes on, changes wait.
        const bxqtest::LockHolder holder(m_project, "BEGIN IMMEDIATE");
        for (const QStringList& verb : changeVerbs(m_project)) {
            SCOPED_TRACE(verb.join(' ').toStdString());
            const BxqRun run = bxq(m_data.path(), verb);
            expectRefused(run, m_project, "busy");
            EXPECT_TRUE(run.err.contains("sqlite3 (process")) << qPrintable(run.err);
        }
        EXPECT_EQ(bxq(m_data.path(), {"user-section", "list", "--project", m_project}).exitCode, 0);
    }
    {
        const bxqtest::LockHolder holder(m_project, "BEGIN EXCLUSIVE");
        for (const QStringList& verb : changeVerbs(m_project) + QList<QStringList>{{"user-section", "list", "--project", m_project}}) {
            SCOPED_TRACE(verb.join(' ').toStdString());
            expectRefused(bxq(m_data.path(), verb), m_project, "busy");
        }
    }
    EXPECT_EQ(digest(m_project), before);
    expectNoJournal(m_work.path());
}

TEST_F(BxqFaultTest, AChangeWithoutWritePermissionSaysSo) {
    writeProject(m_project);
    const QByteArray before = digest(m_project);
    QFile::setPermissions(m_work.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther |
                                             QFile::WriteOther | QFile::ExeOther);
    QFile::setPermissions(m_data.path(), QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther);
    const struct {
        const char* fault;
        QFile::Permissions folder;
        QFile::Permissions file;
        const char* reason;
    } cases[] = {
        {"read-only file", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther | QFile::WriteOther |
                               QFile::ExeOther,
         QFile::ReadOwner | QFile::ReadOther, "no permission to write the file"},
        {"read-only folder", QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther,
         QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther | QFile::WriteOther, "no permission to write in its folder"},
    };
    for (const auto& fault : cases) {
        SCOPED_TRACE(fault.fault);
        QFile::setPermissions(m_project, fault.file);
        QFile::setPermissions(m_work.path(), fault.folder);
        for (const QStringList& verb : changeVerbs(m_project)) {
            SCOPED_TRACE(verb.join(' ').toStdString());
            expectRefused(bxq(m_data.path(), verb, {}, true), m_project, fault.reason);
        }
        // Reading needs no write permission.
        EXPECT_EQ(bxq(m_data.path(), {"user-section", "list", "--project", m_project}, {}, true).out.count('\n'), 3);
        QFile::setPermissions(m_work.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        EXPECT_EQ(digest(m_project), before);
        expectNoJournal(m_work.path());
    }
}

TEST_F(BxqFaultTest, AFullDiskLeavesNoProjectBehindAndAnExistingOneAsItWas) {
    const QString shim = QStringLiteral("LD_PRELOAD=") + QStringLiteral(BXQ_NOSPACE_SHIM);
    const QStringList full{shim, QStringLiteral("ASAN_OPTIONS=verify_asan_link_order=0")};
    const QString fresh = m_work.filePath("fresh.KDB");
    expectRefused(bxq(m_data.path(), addArguments(fresh, "Z1"), full), fresh, "full");
    EXPECT_TRUE(QDir(m_work.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).isEmpty());
    // With space again the project is made as if never tried.
    EXPECT_EQ(bxq(m_data.path(), addArguments(fresh, "Z1")).exitCode, 0);

    writeProject(m_project);
    const QByteArray before = digest(m_project);
    for (const QStringList& verb : changeVerbs(m_project)) {
        SCOPED_TRACE(verb.join(' ').toStdString());
        expectRefused(bxq(m_data.path(), verb, full), m_project, "full");
    }
    EXPECT_EQ(digest(m_project), before);
    expectNoJournal(m_work.path());
}

TEST_F(BxqFaultTest, EightWritersAddingFiftySectionsEachAllWaitTheirTurn) {
    // Each writer a shell adding its sections one bxq at a time, counting the refusals; the
    // project does not exist yet, so the first ones race to create it too.
    const int writers = 8, adds = 50;
    QList<QProcess*> shells;
    for (int writer = 1; writer <= writers; ++writer) {
        auto* shell = new QProcess;
        shell->start(QStringLiteral("sh"),
                     {"-c",
                      QStringLiteral("failed=0; for i in $(seq 1 %1); do \"%2\" user-section add \"Z%3*$i\" --project "
                                     "\"%4\" --type 9 --weight 1 --area 1 >/dev/null || failed=$((failed+1)); done; "
                                     "exit $failed")
                          .arg(adds)
                          .arg(QStringLiteral(BXQ_BINARY))
                          .arg(writer)
                          .arg(m_project)});
        shells.append(shell);
    }
    for (QProcess* shell : shells) {
        ASSERT_TRUE(shell->waitForFinished(600000));
        EXPECT_EQ(shell->exitCode(), 0) << shell->readAllStandardError().constData();
        delete shell;
    }
    ndp::CDatabase db;
    ASSERT_TRUE(db.Open(m_project, true));
    ndp::CDBTable* table = db.GetTable(skr::section::schema::user_section::table);
    ndp::CFileAddressList rows;
    ASSERT_TRUE(table->ListAll(rows));
    EXPECT_EQ(rows.GetCount(), writers * adds);
    QSet<int> subs;
    QSet<QString> names;
    for (int i = 0; i < rows.GetCount(); ++i) {
        ndp::CDBRecord* record = table->GetRecord(rows.GetItem(i));
        subs.insert(record->GetInt(1));
        names.insert(QString::fromStdWString(record->GetString(2)));
        record->Release();
    }
    EXPECT_EQ(subs.size(), writers * adds);
    EXPECT_EQ(names.size(), writers * adds);
}

TEST_F(BxqFaultTest, NumbersPastAnyBuildingAndOutlinesThatAreNotOneRegionAreRefusedNamingTheText) {
    const QString huge = QString(400, QLatin1Char('9'));
    const QList<QPair<QStringList, QString>> cases{
        {{"parse", "--json", "H" + huge + "*200*8*13"}, "dimension 9999"},
        {{"parse", "TY400*7760*3e46*150*10"}, "section 'TY400*7760*3e46*150*10': dimension 3e46 is beyond 1000000 mm"},
        {{"outline", "--section", "TY400*7760*3e46*150*10"}, "dimension 3e46 is beyond 1000000 mm"},
        {{"outline", "0,0,1e200,50"}, "loop 1 of the outline reaches beyond 1000000 mm"},
        {{"outline", "--json", "71,0,190,0,00,0;79,0,0,0;79,190,0,0;9,0,0,0;79,190,0,0;150,;0,200,0,0;0,190,0,0;71,190,0,0"},
         "the outline text cannot be read: loop 1, record 6: '' is not a number"},
        {{"outline", "--json", "0,0,0,0;10,10,0,0;10,0,0,0;0,10,0,0"}, "loop 1 of the outline crosses itself near"},
    };
    writeCatalogue(m_catalogue);
    for (const auto& verb : cases) {
        SCOPED_TRACE(verb.first.join(' ').left(80).toStdString());
        expectRefused(bxq(m_data.path(), verb.first), QString(), verb.second);
    }
}
