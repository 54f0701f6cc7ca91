// bxq's data verbs under faults of their files, grouped by fault: a damaged row, a flipped byte
// of the shipped catalogue, a file held by another program, no permission (as an ordinary user),
// a full disk, many writers at once, numbers past any building. A refused verb exits with 1, says
// in one line what went wrong and names the file, prints nothing on standard output and leaves the
// file byte for byte as it was, with no journal.
#include "section_data/SKRProjectSchema.h"
#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/VMPProjectModel.h"

#include "support/BxqProcess.h"
#include "support/CatalogueTables.h"
#include "support/DamagedDatabase.h"
#include "support/LockHolder.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>

namespace {

using bxqtest::BxqRun;

BxqRun bxq(const QString& dataDir, const QStringList& arguments, const QStringList& environment = {},
           bool ordinaryUser = false) {
    return bxqtest::runBxq(arguments, {dataDir, {}, QStringList{"BXQ_BUSY_TIMEOUT=300"} + environment, ordinaryUser});
}

QByteArray digest(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256)
                                          : QByteArray();
}

// What every refusal must show.
void expectRefused(const BxqRun& run, const QString& file, const QString& reason) {
    const QString err = QString::fromUtf8(run.err);
    EXPECT_EQ(run.exitCode, 1) << qPrintable(err);
    EXPECT_TRUE(run.out.isEmpty()) << run.out.constData();
    EXPECT_EQ(err.count('\n'), 1) << qPrintable(err);
    EXPECT_TRUE(err.contains(file) && err.contains(reason)) << qPrintable(err);
}

void expectNoJournal(const QString& folder) {
    EXPECT_TRUE(QDir(folder).entryList({"*-journal"}, QDir::Files | QDir::Hidden).isEmpty());
}

// A catalogue of I20a, I20b and [20a; the h of the row named damaged is a long text that
// damageLongRow makes unreadable.
void writeCatalogue(const QString& path, const std::wstring& damaged = {}) {
    ndp::CDatabase db;
    ASSERT_TRUE(db.Create(path));
    ndp::CDBTable* table = db.CreateTable(L"SectionPolyInfor", bxqtest::systemCatalogueFields());
    for (const auto& [type, name] : {std::pair<int, std::wstring>{1, L"I20a"}, {1, L"I20b"}, {2, L"[20a"}}) {
        ndp::CDBRecord* record = table->CreateRecord();
        record->SetInt(0, type);
        record->SetInt(1, 1);
        record->SetString(2, name);
        record->SetDouble(3, 27.929);
        record->SetDouble(4, 0.742);
        record->SetString(5, name == damaged ? bxqtest::longNumberText("200").toStdWString() : L"200");
        for (int field = 6; field < 9; ++field) record->SetString(field, L"10");
        ASSERT_NE(table->AddRecord(record), ndp::kNullAddress);
        record->Release();
    }
    ASSERT_TRUE(db.Flush());
    if (!damaged.empty()) { ASSERT_TRUE(bxqtest::damageLongRow(path)); }
}

// A project of three user sections of type 9, subs 1 to 3; the one named damaged unreadable.
void writeProject(const QString& path, const QString& damaged = {}) {
    VMPProjectModel model;
    ASSERT_TRUE(model.open(path));
    ndp::CDBTable* table = model.getProjectDB()->GetTable(skr::section::schema::user_section::table);
    for (int sub = 1; sub <= 3; ++sub) {
        const QString name = QStringLiteral("Z%1(ZDY)").arg(sub);
        ndp::CDBRecord* record = table->CreateRecord();
        record->SetInt(0, 9);
        record->SetInt(1, sub);
        record->SetString(2, name.toStdWString());
        record->SetDouble(3, 12.5);
        record->SetDouble(4, 0.6);
        record->SetString(5, ("h=" + (name == damaged ? bxqtest::longNumberText("270") : "270")).toStdWString());
        ASSERT_NE(table->AddRecord(record), ndp::kNullAddress);
        record->Release();
    }
    ASSERT_TRUE(model.save());
    if (!damaged.isEmpty()) { ASSERT_TRUE(bxqtest::damageLongRow(path)); }
}

QStringList addArguments(const QString& project, const QString& name) {
    return {"user-section", "add", name, "--project", project, "--type", "9", "--weight", "1", "--area", "1"};
}

// The verbs that change a project, each on a section the project of writeProject has.
QList<QStringList> changeVerbs(const QString& project) {
    return {addArguments(project, "Z9"), {"user-section", "update", "Z1", "--project", project, "--weight", "2"},
            {"user-section", "remove", "--project", project, "--type", "9", "--sub", "1"}};
}

class BxqFaultTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_data.isValid() && m_work.isValid()); }
    QTemporaryDir m_data, m_work;
    const QString m_catalogue = m_data.filePath("SKRSectionPolyDB.KDB");
    const QString m_project = m_work.filePath("project.KDB");
};

}  // namespace

TEST_F(BxqFaultTest, ADamagedRowIsAnErrorForEveryVerbThatReadsIt) {
    writeCatalogue(m_catalogue, L"I20a");
    writeProject(m_project, "Z2(ZDY)");
    const QByteArray catalogueBefore = digest(m_catalogue), projectBefore = digest(m_project);
    for (const auto& [verb, file] : QList<QPair<QStringList, QString>>{
             {{"catalogue"}, m_catalogue},
             {{"catalogue", "--type", "1", "--json"}, m_catalogue},
             {{"wpm", "I20a"}, m_catalogue},
             {{"apm", "I20a"}, m_catalogue},
             {{"parse", "--json", "I20a"}, m_catalogue},
             {{"user-section", "list", "--project", m_project}, m_project},
             {{"wpm", "--project", m_project, "Z2(ZDY)"}, m_project}}) {
        SCOPED_TRACE(verb.join(' ').toStdString());
        expectRefused(bxq(m_data.path(), verb), file, "malformed");
    }
    // Rows that are sound still answer.
    EXPECT_EQ(bxq(m_data.path(), {"wpm", "I20b", "--project", m_project, "Z1(ZDY)"}).out, "27.929\n12.5\n");
    EXPECT_EQ(digest(m_catalogue), catalogueBefore);
    EXPECT_EQ(digest(m_project), projectBefore);
}

// With one byte of the shipped catalogue flipped, `catalogue` and `wpm` either print exactly what
// the intact file gives or refuse naming the file.
TEST(DamagedCatalogue, AFlippedByteIsRefusedOrChangesNothing) {
    const QString shipped = QStringLiteral(BXQ_SHIPPED_DATA_DIR);
    QFile original(shipped + "/SKRSectionPolyDB.KDB");
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    const QByteArray bytes = original.readAll();
    ASSERT_GT(bytes.size(), 4096);
    const QStringList verbs[] = {{"catalogue", "--json"}, {"wpm", "I20a", "HN400*200*8*13", "L100*80*10"}};
    BxqRun intact[2];
    for (int v = 0; v < 2; ++v) {
        intact[v] = bxq(shipped, verbs[v]);
        ASSERT_EQ(intact[v].exitCode, 0) << intact[v].err.constData();
    }
    int refused = 0;
    const int positions = 48;  // spread over every page, past SQLite's own header checks
    for (int i = 0; i < positions; ++i) {
        const int at = 100 + static_cast<int>((static_cast<qint64>(bytes.size() - 101) * i) / positions);
        QTemporaryDir dir;
        QByteArray damaged = bytes;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x10);
        QFile copy(dir.filePath("SKRSectionPolyDB.KDB"));
        ASSERT_TRUE(copy.open(QIODevice::WriteOnly) && copy.write(damaged) == damaged.size());
        copy.close();
        QFile::copy(shipped + "/SysInfo.KDB", dir.filePath("SysInfo.KDB"));
        for (int v = 0; v < 2; ++v) {
            SCOPED_TRACE(QString("byte %1, %2").arg(at).arg(verbs[v].join(' ')).toStdString());
            const BxqRun run = bxq(dir.path(), verbs[v]);
            if (run.exitCode == 0) {
                EXPECT_EQ(run.out, intact[v].out);
            } else {
                ++refused;
                expectRefused(run, "SKRSectionPolyDB.KDB", "");
            }
        }
    }
    // Flips in a page's unused space change nothing; the rest are content and must be noticed.
    EXPECT_GE(refused, positions);
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
            EXPECT_TRUE(run.err.contains("sqlite3 (process")) << run.err.constData();
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
    const QFile::Permissions readable = QFile::ReadOwner | QFile::ReadOther, all = readable | QFile::WriteOwner |
                                        QFile::WriteOther, folder = QFile::ExeOwner | QFile::ExeOther;
    QFile::setPermissions(m_data.path(), readable | folder);
    const struct {
        QFile::Permissions folder, file;
        const char* reason;
    } cases[] = {{all | folder, readable, "no permission to write the file"},
                 {readable | folder, all, "no permission to write in its folder"}};
    for (const auto& fault : cases) {
        SCOPED_TRACE(fault.reason);
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
    const QStringList full{QStringLiteral("LD_PRELOAD=" BXQ_NOSPACE_SHIM), "ASAN_OPTIONS=verify_asan_link_order=0"};
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
    std::vector<std::unique_ptr<QProcess>> shells;
    for (int writer = 1; writer <= writers; ++writer) {
        shells.push_back(std::make_unique<QProcess>());
        shells.back()->start("sh", {"-c", QStringLiteral("failed=0; for i in $(seq 1 %1); do \"%2\" user-section add "
                                                         "\"Z%3*$i\" --project \"%4\" --type 9 --weight 1 --area 1 "
                                                         ">/dev/null || failed=$((failed+1)); done; exit $failed")
                                              .arg(adds).arg(BXQ_BINARY).arg(writer).arg(m_project)});
    }
    for (const auto& shell : shells) {
        ASSERT_TRUE(shell->waitForFinished(600000));
        EXPECT_EQ(shell->exitCode(), 0) << shell->readAllStandardError().constData();
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
    writeCatalogue(m_catalogue);
    for (const auto& [verb, message] : QList<QPair<QStringList, QString>>{
             {{"parse", "--json", "H" + QString(400, '9') + "*200*8*13"}, "dimension 9999"},
             {{"parse", "TY400*7760*3e46*150*10"}, "section 'TY400*7760*3e46*150*10': dimension 3e46 is beyond 1000000 mm"},
             {{"outline", "--section", "TY400*7760*3e46*150*10"}, "dimension 3e46 is beyond 1000000 mm"},
             {{"outline", "0,0,1e200,50"}, "loop 1 of the outline reaches beyond 1000000 mm"},
             {{"outline", "--json", "71,0,190,0,00,0;79,0,0,0;79,190,0,0;9,0,0,0;79,190,0,0;150,;0,200,0,0;0,190,0,0;71,190,0,0"},
              "the outline text cannot be read: loop 1, record 6: '' is not a number"},
             {{"outline", "--json", "0,0,0,0;10,10,0,0;10,0,0,0;0,10,0,0"}, "loop 1 of the outline crosses itself near"}}) {
        SCOPED_TRACE(verb.join(' ').left(80).toStdString());
        expectRefused(bxq(m_data.path(), verb), QString(), message);
    }
}
