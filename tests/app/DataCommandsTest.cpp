// The data verbs of bxq as a user runs them: catalogue, wpm and apm, user-section and face-steel
// on small databases made here, their refusals and exit statuses, and the same verbs on the
// shipped databases. Then the same verbs under faults of their files, grouped by fault: a damaged
// row, a flipped byte of the shipped catalogue, a file held by another program, no permission (as
// an ordinary user), a full disk, many writers at once. A refused verb exits with 1, says in one
// line what went wrong and names the file, prints nothing on standard output and leaves the file
// byte for byte as it was, with no journal.
#include "section_data/SKRProjectSchema.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"

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
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QSet>
#include <QTemporaryDir>

#include <optional>

using ndp::EnDBFieldKind;
using skr::section::SKRHotRollingSection;

namespace {

using bxqtest::BxqRun;

BxqRun bxq(const QString& dataDir, const QStringList& arguments, const QByteArray& input = {},
           const QStringList& environment = {}, bool ordinaryUser = false) {
    return bxqtest::runBxq(arguments, {dataDir, input, QStringList{"BXQ_BUSY_TIMEOUT=300"} + environment, ordinaryUser});
}

QByteArray digest(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256) : "";
}

QString shortest(double value) { return QString::number(value, 'g', QLocale::FloatingPointShortest); }

// What every refusal must show.
void expectRefused(const BxqRun& run, const QString& file, const QString& reason = {}) {
    const QString err = QString::fromUtf8(run.err);
    EXPECT_EQ(run.exitCode, 1) << qPrintable(err);
    EXPECT_TRUE(run.out.isEmpty()) << run.out.constData();
    EXPECT_EQ(err.count('\n'), 1) << qPrintable(err);
    EXPECT_TRUE(err.contains(file) && err.contains(reason)) << qPrintable(err);
}

// One record of a table, each value set as its type: int, double, or text.
void addRecord(ndp::CDBTable* table, const QVariantList& values) {
    ndp::CDBRecord* record = table->CreateRecord();
    for (int i = 0; i < values.size(); ++i) {
        if (values[i].userType() == QMetaType::Int) record->SetInt(i, values[i].toInt());
        else if (values[i].userType() == QMetaType::Double) record->SetDouble(i, values[i].toDouble());
        else record->SetString(i, values[i].toString().toStdWString());
    }
    ASSERT_NE(table->AddRecord(record), ndp::kNullAddress);
    record->Release();
}

// A small catalogue in the shipped layout: type, sub, name, kg/m, m2/m, then h, b, d, t, r, r1, B,
// tw, c, D as texts. The h of the row named damaged is a long text that damageLongRow makes unreadable.
void writeCatalogue(const QString& path, const QString& damaged = {}) {
    const QVariantList rows[] = {
        {1, 1, "I20a", 27.929, 0.742, "200", "100", "7", "11.4", "9", "4.5", "0", "0", "0", "0"},
        {1, 1, "I20b", 31.069, 0.746, "200", "102", "9", "11.4", "9", "4.5", "0", "0", "0", "0"},
        {2, 1, "[20a", 22.637, 0.77, "200", "73", "7", "11", "11", "5.5", "0", "0", "0", "0"},
        {3, 1, "L100*10", 15.12, 0.39, "0", "100", "10", "0", "12", "0", "0", "0", "0", "0"},
        {7, 3, "HN400*200*8*13", 65.4, 1.36, "400", "200", "0", "13", "16", "0", "0", "8", "0", "0"},
        {1011, 1, "\u25A1150*150*6", 26.402, 0.5794, "150", "150", "0", "6", "0", "0", "0", "0", "0", "0"},
    };
    ndp::CDatabase db;
    ASSERT_TRUE(db.Create(path));
    std::vector<ndp::CDBField> fields = bxqtest::systemCatalogueFields();
    for (const wchar_t* field : {L"r", L"r1", L"B", L"tw", L"c", L"D"})
        fields.emplace_back(field, EnDBFieldKind::Text);
    ndp::CDBTable* table = db.CreateTable(L"SectionPolyInfor", fields);
    ASSERT_NE(table, nullptr);
    for (QVariantList row : rows) {
        if (row[2] == damaged) row[5] = bxqtest::longNumberText("200");
        addRecord(table, row);
    }
    ASSERT_TRUE(db.Flush());
    if (!damaged.isEmpty()) { ASSERT_TRUE(bxqtest::damageLongRow(path)); }
}

void writePlates(const QString& path) {
    ndp::CDatabase db;
    ASSERT_TRUE(db.Create(path));
    ndp::CDBTable* table = db.CreateTable(
        L"FaceSteelInfo", {{L"Class", EnDBFieldKind::Int32, true}, {L"Thickness", EnDBFieldKind::Double}, {L"Weight", EnDBFieldKind::Double}});
    ASSERT_NE(table, nullptr);
    for (const QVariantList& row : {QVariantList{1, 20.0, 157.0}, {1, 4.5, 35.325}, {2, 0.5, 3.925}})
        addRecord(table, row);
    ASSERT_TRUE(db.Flush());
}

// The user sections of a project file, read back by another connection.
std::vector<SKRHotRollingSection> userSections(const QString& path) {
    ndp::CDatabase db;
    std::vector<SKRHotRollingSection> sections;
    ndp::CFileAddressList all;
    ndp::CDBTable* table = db.Open(path, true) ? db.GetTable(skr::section::schema::user_section::table) : nullptr;
    if (!table || !table->ListAll(all)) return sections;
    skr::section::SKRUserHotRollingSectionDBProvider reader(table);
    for (int i = 0; i < all.GetCount(); ++i) {
        ndp::CDBRecord* record = table->GetRecord(all.GetItem(i));
        sections.push_back(reader.fromRecord(record));
        record->Release();
    }
    return sections;
}

// A stored section as one line: type/sub, name, kg/m, m2/m and the params, every number exact.
QString described(const SKRHotRollingSection& s) {
    QString text = QStringLiteral("%1/%2 %3 ").arg(s.sectionType).arg(s.subId).arg(QString::fromStdWString(s.standardName));
    text += shortest(s.weightMeter) + ' ' + shortest(s.area);
    for (const auto& [name, value] : s.params) text += ' ' + QString::fromStdWString(name) + '=' + shortest(value);
    return text;
}

// A project of three user sections of type 9, subs 1 to 3; the one named damaged unreadable.
void writeProject(const QString& path, const QString& damaged = {}) {
    VMPProjectModel model;
    ASSERT_TRUE(model.open(path));
    ndp::CDBTable* table = model.getProjectDB()->GetTable(skr::section::schema::user_section::table);
    for (int sub = 1; sub <= 3; ++sub) {
        const QString name = QStringLiteral("Z%1(ZDY)").arg(sub);
        addRecord(table, {9, sub, name, 12.5, 0.6, "h=" + (name == damaged ? bxqtest::longNumberText("270") : "270")});
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

class BxqDataTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_data.isValid() && m_work.isValid());
        writeCatalogue(m_catalogue);
        writePlates(m_data.filePath("SysInfo.KDB"));
    }
    BxqRun run(const QStringList& arguments, const QByteArray& input = {}) const { return bxq(m_data.path(), arguments, input); }
    QString text(const QStringList& arguments) const { return run(arguments).text(); }

    QTemporaryDir m_data, m_work;
    const QString m_catalogue = m_data.filePath("SKRSectionPolyDB.KDB");
    const QString m_project = m_work.filePath("project.KDB");
};

class BxqFaultTest : public BxqDataTest {};

}  // namespace

TEST_F(BxqDataTest, CatalogueTypeFilterListsOnlyThatTypeWithoutAbsentDimensions) {
    const BxqRun beams = run({"catalogue", "--type", "1"});
    ASSERT_EQ(beams.exitCode, 0) << beams.err.constData();
    const QStringList lines = beams.lines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].startsWith("I20a ")) << qPrintable(lines[0]);
    EXPECT_TRUE(lines[1].startsWith("I20b ")) << qPrintable(lines[1]);
    for (const QString& line : lines) {
        EXPECT_TRUE(line.contains(" type=1 sub=1 ") && line.contains(" h=200 ")) << qPrintable(line);
        EXPECT_FALSE(line.contains(" tw=") || line.contains(" B=")) << qPrintable(line);
    }
    EXPECT_TRUE(lines[0].contains(" kg/m=27.929 m2/m=0.742 ")) << qPrintable(lines[0]);
    EXPECT_TRUE(lines[0].endsWith(" r=9 r1=4.5")) << qPrintable(lines[0]);
    EXPECT_EQ(run({"catalogue"}).lines().size(), 6);
    EXPECT_TRUE(run({"catalogue", "--type", "42"}).out.isEmpty());
}

TEST_F(BxqDataTest, PerMetreFiguresAndPlateWeightsComeOneLinePerNameInShortestForm) {
    const std::pair<QStringList, QString> cases[] = {
        {{"wpm", "I20a", "HN400*200*8*13", "\u25A1150*150*6", "I99", "i20a"}, "27.929\n65.4\n26.402\n0\n0\n"},
        {{"apm", "I20a", "\u25A1150*150*6", "nothing"}, "0.742\n0.5794\n0\n"},
        // By class name or number; no such plate weighs 0, as the host's query answers.
        {{"face-steel", "热轧钢板", "20"}, "157\n"},
        {{"face-steel", "1", "4.5"}, "35.325\n"},
        {{"face-steel", "冷轧钢板", "0.5"}, "3.925\n"},
        {{"face-steel", "热轧钢板", "21"}, "0\n"},
        {{"face-steel", "不锈钢板", "20"}, "0\n"},
    };
    for (const auto& [arguments, out] : cases) {
        const BxqRun result = run(arguments);
        EXPECT_EQ(result.exitCode, 0) << result.err.constData();
        EXPECT_EQ(result.text(), out) << qPrintable(arguments.join(' '));
    }
    // "-" reads one name per line; every line gives one line, an empty one 0.
    const BxqRun piped = run({"wpm", "I20b", "-", "[20a"}, "L100*10\r\n\nI20a\n");
    EXPECT_EQ(piped.exitCode, 0);
    EXPECT_EQ(piped.text(), "31.069\n15.12\n0\n27.929\n22.637\n");
}

TEST_F(BxqDataTest, UserSectionsOfTheProjectComeFirst) {
    // Written through the library as the host's dialog does.
    for (const SKRHotRollingSection& section : {SKRHotRollingSection{1, 1, L"I20a", 30.5, 0.8, {}},
                                                SKRHotRollingSection{9, 1, L"Z270*80*8*3(ZDY)", 12.25, 0.61, {}}}) {
        VMPProjectModel model;
        ASSERT_TRUE(model.open(m_project));
        skr::section::SKRUserHotRollingSectionDBProvider provider(
            model.getProjectDB()->GetTable(skr::section::schema::user_section::table));
        ASSERT_TRUE(provider.addSection(section));
        ASSERT_TRUE(model.save());
    }
    EXPECT_EQ(text({"wpm", "--project", m_project, "I20a", "Z270*80*8*3(ZDY)", "I20b", "Z1(ZDY)"}), "30.5\n12.25\n31.069\n0\n");
    EXPECT_EQ(text({"apm", "--project", m_project, "I20a", "Z270*80*8*3(ZDY)"}), "0.8\n0.61\n");
    // Without the project only the catalogue answers.
    EXPECT_EQ(text({"wpm", "I20a", "Z270*80*8*3(ZDY)"}), "27.929\n0\n");
}

TEST_F(BxqDataTest, UserSectionIsAddedListedUpdatedAndRemovedInTheProjectFile) {
    const QStringList project{"--project", m_project};
    const BxqRun added = run(QStringList{"user-section", "add", "Z 270*80*8*3"} + project +
                             QStringList{"--type", "9", "--weight", "12.5", "--area", "0.6", "--param", "h=270", "--param", "b=80"});
    ASSERT_EQ(added.exitCode, 0) << added.err.constData();
    EXPECT_TRUE(added.text().startsWith("Z270*80*8*3(ZDY)")) << added.out.constData();
    auto stored = userSections(m_project);
    ASSERT_EQ(stored.size(), 1u);
    EXPECT_EQ(described(stored[0]), "9/1 Z270*80*8*3(ZDY) 12.5 0.6 h=270 b=80");  // blanks gone, the mark appended

    // The next section of the same type takes the next sub number unless one is given.
    for (const QStringList& more : {QStringList{"Z300*80*8*3(ZDY)", "--type", "9", "--weight", "14", "--area", "0.65"},
                                    QStringList{"L100*10", "--type", "3", "--sub", "7", "--weight", "15", "--area", "0.39"}})
        ASSERT_EQ(run(QStringList{"user-section", "add"} + more + project).exitCode, 0);
    stored = userSections(m_project);
    ASSERT_EQ(stored.size(), 3u);
    EXPECT_EQ(stored[1].subId, 2);
    EXPECT_EQ(stored[2].subId, 7);

    const QStringList listed = run(QStringList{"user-section", "list"} + project).lines();
    ASSERT_EQ(listed.size(), 3);
    EXPECT_TRUE(listed[0].contains("type=9 sub=1 kg/m=12.5 m2/m=0.6 h=270 b=80")) << qPrintable(listed[0]);
    const QJsonArray json = QJsonDocument::fromJson(run(QStringList{"user-section", "list", "--json"} + project).out).array();
    ASSERT_EQ(json.size(), 3);
    EXPECT_EQ(json[2].toObject().value("name").toString(), "L100*10(ZDY)");
    // The parser finds the added section by the name a user types.
    const QJsonObject parsed = QJsonDocument::fromJson(run(QStringList{"parse", "--json", "Z270*80*8*3(ZDY)"} + project).out).object();
    EXPECT_EQ(parsed.value("sectionType").toInt(), 9);

    // Update changes the figures given, nothing else; the name may be typed without the mark.
    ASSERT_EQ(run(QStringList{"user-section", "update", "Z270*80*8*3", "--weight", "13"} + project).exitCode, 0);
    EXPECT_EQ(described(userSections(m_project).at(0)), "9/1 Z270*80*8*3(ZDY) 13 0.6 h=270 b=80");
    EXPECT_EQ(text(QStringList{"wpm", "Z270*80*8*3(ZDY)"} + project), "13\n");
    const BxqRun unknown = run(QStringList{"user-section", "update", "Z1", "--area", "1"} + project);
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_TRUE(unknown.out.isEmpty());

    const QStringList remove = QStringList{"user-section", "remove", "--type", "9", "--sub", "1"} + project;
    const BxqRun removed = run(remove);
    ASSERT_EQ(removed.exitCode, 0) << removed.err.constData();
    EXPECT_TRUE(removed.text().startsWith("Z270*80*8*3(ZDY)"));
    stored = userSections(m_project);
    ASSERT_EQ(stored.size(), 2u);
    EXPECT_EQ(stored[0].standardName, L"Z300*80*8*3(ZDY)");
    EXPECT_EQ(run(remove).exitCode, 1);
    EXPECT_EQ(userSections(m_project).size(), 2u);
}

TEST_F(BxqDataTest, BadArgumentsAreUsageErrorsThatTouchNoFile) {
    const QString fresh = m_work.filePath("fresh.KDB");
    const auto add = [&fresh](const QString& name, const QStringList& options) {
        return QStringList{"user-section", "add", name, "--project", fresh} + options;
    };
    const QStringList figures{"--type", "9", "--weight", "1", "--area", "1"}, beam{"--type", "1", "--weight", "1", "--area", "1"};
    const QList<QStringList> cases{
        {"catalogue", "--type", "x"}, {"catalogue", "I20a"}, {"wpm"}, {"apm", "--project"}, {"face-steel", "1"},
        {"face-steel", "1", "thick"}, {"user-section"}, {"user-section", "rename", "X1", "--project", fresh},
        {"user-section", "list"}, add("Z1", {"--weight", "1", "--area", "1"}),
        add("Z1", {"--type", "11", "--weight", "1", "--area", "1"}), add("Z1", figures + QStringList{"--param", "h"}),
        add("Z1", {"--type", "9", "--weight", "heavy", "--area", "1"}), add("a\"b", beam), add("(ZDY)", beam),
        add("Z1", {"--type", "9", "--weight", "-1", "--area", "1"}), add("I20a\") OR 1=1 --", beam),
        add("Z1", figures + QStringList{"--param", "h;x=1"}), add("x'; DROP TABLE SectionPolyInfor; --", beam),
        {"user-section", "update", "Z1", "--project", fresh},
        {"user-section", "update", "Z1", "--project", fresh, "--type", "3", "--weight", "1"},
        {"user-section", "remove", "--project", fresh, "--type", "9"},
    };
    for (const QStringList& arguments : cases) {
        const BxqRun result = run(arguments);
        EXPECT_EQ(result.exitCode, 2) << qPrintable(arguments.join(' '));
        EXPECT_TRUE(result.out.isEmpty());
        EXPECT_EQ(result.err.count('\n'), 1) << result.err.constData();
    }
    EXPECT_FALSE(QFile::exists(fresh));
}

TEST_F(BxqDataTest, ParseTakesCatalogueDimensionsOnlyForNamesThatNeedThemAndMissingOrCorruptFilesAreNamed) {
    const QJsonObject beam = QJsonDocument::fromJson(run({"parse", "--json", "I20a"}).out).object();
    EXPECT_EQ(beam.value("params").toArray(), (QJsonArray{200, 100, 7, 11.4}));

    // Without any database, texts that need no catalogue parse as before, silently; a catalogue
    // name is parsed without dimensions and the missing file is said once.
    QTemporaryDir empty;
    const QString catalogue = empty.filePath("SKRSectionPolyDB.KDB"), plates = empty.filePath("SysInfo.KDB");
    const BxqRun welded = bxq(empty.path(), {"parse", "--json", "H400*200*8*13", "D114*4"});
    EXPECT_TRUE(welded.exitCode == 0 && welded.lines().size() == 2 && welded.err.isEmpty()) << welded.err.constData();
    const BxqRun names = bxq(empty.path(), {"parse", "--json", "I20a", "[20a", "I20b"});
    EXPECT_TRUE(names.exitCode == 0 && names.lines().size() == 3);
    EXPECT_EQ(names.err.count('\n'), 1);
    EXPECT_TRUE(QString::fromUtf8(names.err).contains(catalogue));
    EXPECT_TRUE(QJsonDocument::fromJson(names.out.split('\n').value(0)).object().value("params").toArray().isEmpty());

    // The verbs that need a file refuse, naming it, whether it is missing or not a database.
    const QString project = m_work.filePath("broken.KDB");
    const auto refused = [](const QString& dataDir, const QStringList& arguments, const QString& file) {
        SCOPED_TRACE(arguments.join(' ').toStdString());
        expectRefused(bxq(dataDir, arguments), file);
    };
    const auto refusedAll = [&](const QList<QPair<QStringList, QString>>& cases) {
        for (const auto& [arguments, file] : cases) refused(empty.path(), arguments, file);
    };
    refusedAll({{{"wpm", "I20a"}, catalogue}, {{"catalogue"}, catalogue}, {{"face-steel", "1", "20"}, plates}});
    EXPECT_EQ(QString::fromUtf8(bxq(empty.path(), {"apm", "I20a"}).err).trimmed(),
              QStringLiteral("bxq: [%1]文件不存在 (looked in BXQ_DATA_DIR=%2)").arg(catalogue, empty.path()));

    for (const QString& path : {catalogue, plates, project}) {
        QFile garbage(path);
        ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
        garbage.write(path == project ? QByteArray("not a database at all, just some text that is long enough to be a header...")
                                      : QByteArray(4096, '\x5a'));
    }
    refusedAll({{{"wpm", "I20a"}, catalogue}, {{"apm", "-"}, catalogue}, {{"catalogue", "--json"}, catalogue},
                {{"face-steel", "1", "20"}, plates}});

    // A project that cannot be opened is named too, and left as it was.
    const QByteArray before = digest(project);
    for (const QStringList& arguments :
         {QStringList{"wpm", "--project", project, "I20a"}, QStringList{"user-section", "list", "--project", project},
          QStringList{"user-section", "add", "Z1", "--project", project, "--type", "9", "--weight", "1", "--area", "1"},
          QStringList{"parse", "--project", project, "I20a"}})
        refused(m_data.path(), arguments, project);
    EXPECT_EQ(digest(project), before);
    EXPECT_EQ(run({"wpm", "--project", m_work.filePath("none.KDB"), "I20a"}).exitCode, 1);
    EXPECT_FALSE(QFile::exists(m_work.filePath("none.KDB")));
}

// The shipped catalogue: the figures bxq prints are those of the file; with one byte of it
// flipped, catalogue and wpm either print exactly what the intact file gives or refuse naming it.
TEST(BxqShippedDatabases, PrintTheCatalogueFiguresAndAFlippedByteIsRefusedOrChangesNothing) {
#if !BXQ_SHIPPED_DATABASES
    GTEST_SKIP() << "this tree generates no databases";
#else
    const QString shipped = QStringLiteral(BXQ_SHIPPED_DATA_DIR);
    ndp::CDatabase db;
    ASSERT_TRUE(db.Open(shipped + "/SKRSectionPolyDB.KDB", true)) << qPrintable(db.GetLastError());
    skr::section::SKRHotRollingSectionDBProvider catalogue(db.GetTable(L"SectionPolyInfor"));
    const QStringList names{"I20a", "[20a", "HN400*200*8*13", "L100*10", "\u25A1150*150*6", "D114*4"};
    QString weights, surfaces;
    for (const QString& name : names) {
        const auto row = catalogue.findByName(name.toStdWString());
        ASSERT_TRUE(row.first) << qPrintable(name);
        weights += shortest(row.second.weightMeter) + '\n';
        surfaces += shortest(row.second.area) + '\n';
    }
    EXPECT_EQ(bxq(shipped, QStringList{"apm"} + names).text(), surfaces);
    QJsonArray dimensions;
    for (const wchar_t* field : {L"h", L"b", L"d", L"t"})
        for (const auto& param : catalogue.findByName(L"I20a").second.params)
            if (param.first == field) dimensions.append(param.second);
    EXPECT_EQ(QJsonDocument::fromJson(bxq(shipped, {"parse", "--json", "I20a"}).out).object().value("params").toArray(), dimensions);

    const QStringList verbs[] = {{"catalogue", "--json"}, QStringList{"wpm"} + names};
    const BxqRun intact[] = {bxq(shipped, verbs[0]), bxq(shipped, verbs[1])};
    ndp::CFileAddressList all;
    ASSERT_TRUE(db.GetTable(L"SectionPolyInfor")->ListAll(all));
    EXPECT_EQ(QJsonDocument::fromJson(intact[0].out).array().size(), all.GetCount());
    EXPECT_EQ(intact[1].text(), weights);
    QFile original(shipped + "/SKRSectionPolyDB.KDB");
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    const QByteArray bytes = original.readAll();
    ASSERT_GT(bytes.size(), 4096);
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
                expectRefused(run, "SKRSectionPolyDB.KDB");
            }
        }
    }
    // Flips in a page's unused space change nothing; the rest are content and must be noticed.
    EXPECT_GE(refused, positions);
#endif
}

TEST_F(BxqFaultTest, ADamagedRowIsAnErrorForEveryVerbThatReadsIt) {
    ASSERT_TRUE(QFile::remove(m_catalogue));
    writeCatalogue(m_catalogue, "I20a");
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
    EXPECT_EQ(bxq(m_data.path(), {"wpm", "I20b", "--project", m_project, "Z1(ZDY)"}).out, "31.069\n12.5\n");
    EXPECT_EQ(digest(m_catalogue), catalogueBefore);
    EXPECT_EQ(digest(m_project), projectBefore);
}

// A project held by another program (its write transaction: reading goes on, changes wait; every
// lock: reading waits too), without write permission (as an ordinary user), or on a full disk.
TEST_F(BxqFaultTest, AChangeThatCannotBeWrittenSaysWhyAndLeavesTheProjectAsItWas) {
    const QStringList full{QStringLiteral("LD_PRELOAD=" BXQ_NOSPACE_SHIM), "ASAN_OPTIONS=verify_asan_link_order=0"};
    const QString fresh = m_work.filePath("fresh.KDB");
    expectRefused(bxq(m_data.path(), addArguments(fresh, "Z1"), {}, full), fresh, "full");
    EXPECT_TRUE(QDir(m_work.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).isEmpty());
    // With space again the project is made as if never tried.
    EXPECT_EQ(bxq(m_data.path(), addArguments(fresh, "Z1")).exitCode, 0);

    writeProject(m_project);
    const QByteArray before = digest(m_project);
    const QFile::Permissions readable = QFile::ReadOwner | QFile::ReadOther, all = readable | QFile::WriteOwner |
                                        QFile::WriteOther, folder = all | QFile::ExeOwner | QFile::ExeOther;
    QFile::setPermissions(m_data.path(), readable | QFile::ExeOwner | QFile::ExeOther);
    const struct { const char* lock; QFile::Permissions folder, file; QStringList environment; bool ordinaryUser, reads;
                   const char* reason; } faults[] = {
        {"BEGIN IMMEDIATE", folder, all, {}, false, true, "busy"},
        {"BEGIN EXCLUSIVE", folder, all, {}, false, false, "busy"},
        {nullptr, folder, readable, {}, true, true, "no permission to write the file"},
        {nullptr, readable | QFile::ExeOwner | QFile::ExeOther, all, {}, true, true, "no permission to write in its folder"},
        {nullptr, folder, all, full, false, true, "full"},
    };
    for (const auto& fault : faults) {
        SCOPED_TRACE(fault.reason);
        QFile::setPermissions(m_project, fault.file);
        QFile::setPermissions(m_work.path(), fault.folder);
        std::optional<bxqtest::LockHolder> holder;
        if (fault.lock) holder.emplace(m_project, fault.lock);
        for (const QStringList& verb : changeVerbs(m_project)) {
            SCOPED_TRACE(verb.join(' ').toStdString());
            const BxqRun run = bxq(m_data.path(), verb, {}, fault.environment, fault.ordinaryUser);
            expectRefused(run, m_project, fault.reason);
            if (fault.lock) { EXPECT_TRUE(run.err.contains("sqlite3 (process")) << run.err.constData(); }
        }
        const BxqRun read = bxq(m_data.path(), {"user-section", "list", "--project", m_project}, {}, fault.environment,
                                fault.ordinaryUser);
        if (fault.reads) {
            EXPECT_EQ(read.exitCode, 0) << read.err.constData();
            EXPECT_EQ(read.out.count('\n'), 3);
        } else {
            expectRefused(read, m_project, "busy");
        }
        holder.reset();
        QFile::setPermissions(m_work.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        EXPECT_EQ(digest(m_project), before);
        EXPECT_TRUE(QDir(m_work.path()).entryList({"*-journal"}, QDir::Files | QDir::Hidden).isEmpty());
    }
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
    const std::vector<SKRHotRollingSection> rows = userSections(m_project);
    EXPECT_EQ(rows.size(), size_t(writers * adds));
    QSet<int> subs;
    QSet<QString> names;
    for (const SKRHotRollingSection& row : rows) {
        subs.insert(row.subId);
        names.insert(QString::fromStdWString(row.standardName));
    }
    EXPECT_EQ(subs.size(), writers * adds);
    EXPECT_EQ(names.size(), writers * adds);
}
