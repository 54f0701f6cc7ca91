// bxq member, cut-plane and view as a user runs them: member solids of catalogue and welded
// sections, trimmed by the cutting planes added to a project, exported as STEP and STL, drawn with
// their planes, every verb's help, and the exit status of bad input and unreadable projects.
#include <gtest/gtest.h>

#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include "support/BxqProcess.h"
#include "support/DamagedDatabase.h"

namespace {

using bxqtest::BxqRun;

BxqRun bxq(const QStringList& arguments) {
    return bxqtest::runBxq(arguments, {QStringLiteral(BXQ_SHIPPED_DATA_DIR), {}, {}, false});
}

QJsonDocument json(const QStringList& arguments) {
    const BxqRun run = bxq(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err.constData();
    return QJsonDocument::fromJson(run.out);
}

QJsonObject member(const QStringList& arguments) { return json(QStringList{"member", "--json"} + arguments).object(); }

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A 6 m welded H along X stored in the project (its id is 1 in a new project).
void addBeam(const QString& project, const QString& from = "0,0,0", const QString& to = "6000,0,0") {
    const BxqRun run = bxq({"member", "add", "--project", project, "--section", "H400*200*8*13", "--from", from, "--to", to});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
}

// A cutting plane of a stored member, relative to its head or tail frame.
BxqRun addPlane(const QString& project, const QString& member, const QString& end, const QString& origin,
                const QString& normal) {
    return bxq({"cut-plane", "add", "--project", project, "--id", member, end, "--origin", origin, "--normal", normal});
}

QVector<double> numbers(const QJsonValue& value) {
    QVector<double> out;
    for (const QJsonValue& v : value.toArray()) out << v.toDouble();
    return out;
}

void expectRefused(const BxqRun& run, int exitCode, const char* name = "") {
    EXPECT_EQ(run.exitCode, exitCode) << run.err.constData();
    EXPECT_TRUE(run.out.isEmpty()) << run.out.constData();
    EXPECT_EQ(run.err.count('\n'), 1) << run.err.constData();
    EXPECT_TRUE(run.err.contains(name)) << run.err.constData();
}

const double kWeldedHArea = 2 * 200 * 13 + (400 - 26) * 8;  // H400*200*8*13, mm2

}  // namespace

TEST(BxqMember, WeightOfCatalogueAndWeldedMembersFollowsTheirSections) {
    // Catalogue sections with their radii weigh what the catalogue says per metre (within 1 %).
    for (const auto& [spec, kgPerMetre] : {std::pair<const char*, double>{"HN400*200*8*13", 65.4}, {"I20a", 27.9},
                                           {"[20a", 22.6}, {"L100*80*10", 13.5}}) {
        SCOPED_TRACE(spec);
        const QJsonObject o = member({spec, "--length", "2000"});
        EXPECT_NEAR(o.value("weight").toDouble(), 2 * kgPerMetre, 0.02 * kgPerMetre);
        EXPECT_NEAR(o.value("weight").toDouble(), o.value("volume").toDouble() * 7.85e-6, 1e-9);
    }
    // A welded H is its exact plate area times the length, centred on the axis.
    const QJsonObject h = member({"H400*200*8*13", "--length", "6000"});
    EXPECT_NEAR(h.value("volume").toDouble(), kWeldedHArea * 6000, 1e-6 * kWeldedHArea * 6000);
    const QVector<double> box = numbers(h.value("bbox"));
    ASSERT_EQ(box.size(), 6);
    EXPECT_NEAR(box[0], -100, 1e-6);
    EXPECT_NEAR(box[4], 200, 1e-6);
    EXPECT_NEAR(box[5], 6000, 1e-6);
}

TEST(BxqMember, CuttingPlanesOfTheElementTrimItsSolid) {
    QTemporaryDir dir;
    const QString project = dir.filePath("cuts.KDB");
    const double full = kWeldedHArea * 6000;
    const QStringList beam{"H400*200*8*13", "--length", "6000", "--project", project, "--id"};
    // Two stored members; the second gets the planes.
    addBeam(project);
    addBeam(project, "0,5000,0", "6000,5000,0");
    ASSERT_EQ(addPlane(project, "2", "--head", "0,0,1000", "0,0,1").exitCode, 0);
    // No plane on member 1: the whole member; member 2: a head cut 1000 in.
    EXPECT_NEAR(member(beam + QStringList{"1"}).value("volume").toDouble(), full, 1e-6 * full);
    EXPECT_NEAR(member(beam + QStringList{"2"}).value("volume").toDouble(), full * 5 / 6, 1e-6 * full);
    // Then a tail cut 1000 back from the end.
    const BxqRun tail = addPlane(project, "2", "--tail", "0,0,-1000", "0,0,-1");
    ASSERT_EQ(tail.exitCode, 0) << tail.err.constData();
    EXPECT_EQ(tail.out, "added cutting plane to member 2 (tail), id 2\n");
    const QJsonObject cut = member(beam + QStringList{"2", "--step", dir.filePath("m.step"), "--stl", dir.filePath("m.stl")});
    EXPECT_NEAR(cut.value("volume").toDouble(), full * 4 / 6, 1e-6 * full);
    EXPECT_NEAR(numbers(cut.value("bbox")).value(2), 1000, 1e-6);
    EXPECT_NEAR(numbers(cut.value("bbox")).value(5), 5000, 1e-6);

    // The exports exist: STEP text and a binary STL of 84 + 50 bytes per triangle.
    EXPECT_TRUE(contents(dir.filePath("m.step")).startsWith("ISO-10303-21;"));
    const QByteArray stl = contents(dir.filePath("m.stl"));
    ASSERT_GT(stl.size(), 84);
    const quint32 triangles = *reinterpret_cast<const quint32*>(stl.constData() + 80);
    EXPECT_GT(triangles, 0u);
    EXPECT_EQ(stl.size(), 84 + 50 * static_cast<int>(triangles));
}

TEST(BxqMember, StoredMembersAndTheirPlanesAreAddedListedMovedAndRemoved) {
    QTemporaryDir dir;
    const QString project = dir.filePath("model.KDB");
    const BxqRun added = bxq({"member", "add", "--project", project, "--section", "H400*200*8*13", "--from", "0,0,0",
                              "--to", "6000,0,0"});
    ASSERT_EQ(added.exitCode, 0) << added.err.constData();
    EXPECT_TRUE(added.out.endsWith(" 1\n")) << added.out.constData();
    ASSERT_EQ(bxq({"member", "add", "--project", project, "--section", "I20a", "--from", "0,3000,0", "--to",
                   "0,3000,4000", "--roll", "90"}).exitCode, 0);
    ASSERT_EQ(addPlane(project, "1", "--tail", "0,0,-1000", "0,0,-1").exitCode, 0);

    // The list weighs each member after its cuts: the welded H is 5/6 of its plate area x 6 m.
    const QStringList list{"member", "list", "--project", project, "--json"};
    const QJsonArray members = json(list).array();
    ASSERT_EQ(members.size(), 2);
    EXPECT_NEAR(members[0].toObject().value("weight").toDouble(), kWeldedHArea * 5000 * 7.85e-6, 1e-6);
    EXPECT_EQ(members[0].toObject().value("length").toDouble(), 6000);
    EXPECT_EQ(members[1].toObject().value("section").toString(), "I20a");
    EXPECT_EQ(members[1].toObject().value("roll").toDouble(), 90);
    EXPECT_NEAR(members[1].toObject().value("weight").toDouble(), 4 * 27.9, 0.02 * 4 * 27.9);

    // Moving the plane 500 further along its normal (towards the head) shortens the member.
    ASSERT_EQ(bxq({"cut-plane", "move", "--project", project, "1", "--by", "500"}).exitCode, 0);
    const QJsonArray planes = json({"cut-plane", "list", "--project", project, "--id", "1", "--json"}).array();
    ASSERT_EQ(planes.size(), 1);
    EXPECT_EQ(planes[0].toObject().value("end").toString(), "tail");
    EXPECT_EQ(numbers(planes[0].toObject().value("origin")), (QVector<double>{0, 0, -1500}));
    EXPECT_EQ(planes[0].toObject().value("offset").toDouble(), 500);
    EXPECT_NEAR(json(list).array()[0].toObject().value("weight").toDouble(), kWeldedHArea * 4500 * 7.85e-6, 1e-6);

    // Removing a member takes its planes with it.
    ASSERT_EQ(bxq({"member", "remove", "--project", project, "1"}).exitCode, 0);
    EXPECT_EQ(bxq({"cut-plane", "list", "--project", project}).out, "");
    EXPECT_EQ(json(list).array().size(), 1);
}

TEST(BxqMember, BadInputIsRefusedWithOneLineAndTouchesNoFile) {
    QTemporaryDir dir;
    const QString project = dir.filePath("model.KDB"), none = dir.filePath("none.KDB"), fresh = dir.filePath("p.KDB");
    addBeam(project);
    const QByteArray before = contents(project);
    const QStringList length{"H400*200*8*13", "--length", "100"}, toOrigin{"--origin", "0,0,0", "--normal", "0,0,1"};
    const std::pair<QStringList, int> cases[] = {
        {{"member", "H400*200*8*13"}, 2},                              // no length
        {{"member", "H400*200*8*13", "--length", "-5"}, 2},            // not positive
        {QStringList{"member", "--id", "3"} + length, 2},             // id without project
        {{"member", "XYZ", "--length", "100"}, 1},                     // not a section
        {{"member", "H20*200*8*13", "--length", "100"}, 1},            // flanges meet
        {QStringList{"member", "--project", none, "--id", "1"} + length, 1},
        {{"cut-plane", "add", "--project", fresh, "--id", "1", "--head", "--origin", "0,0,0", "--normal", "0,0,0"}, 2},
        {QStringList{"cut-plane", "add", "--project", fresh, "--id", "1"} + toOrigin, 2},  // neither head nor tail
        {{"cut-plane", "remove", "--project", fresh}, 2},
        {{"member", "add", "--project", project, "--section", "XYZ", "--from", "0,0,0", "--to", "1,0,0"}, 1},
        {{"member", "add", "--project", project, "--section", "H20*200*8*13", "--from", "0,0,0", "--to", "1,0,0"}, 1},
        {{"member", "add", "--project", project, "--section", "I20a", "--from", "5,5,5", "--to", "5,5,5"}, 2},
        {{"member", "add", "--project", project, "--section", "I20a", "--from", "0,0", "--to", "5,5,5"}, 2},
        {{"member", "remove", "--project", project, "7"}, 1},
        {{"member", "list", "--project", none}, 1},
        {QStringList{"cut-plane", "add", "--project", project, "--id", "7", "--head"} + toOrigin, 1},
        {{"cut-plane", "list", "--project", project, "--id", "7"}, 1},
        {{"cut-plane", "move", "--project", project, "3", "--by", "10"}, 1},
        {{"cut-plane", "move", "--project", project, "3"}, 2},
        {{"cut-plane", "remove", "--project", project, "3"}, 1},
        {{"view", "--project", project, "--size", "10x10"}, 2},
        {{"view", "--project", project, "--view", "under"}, 2},
        {{"member", "frobnicate", "--project", project}, 2},
    };
    for (const auto& [arguments, exitCode] : cases) {
        SCOPED_TRACE(arguments.join(' ').toStdString());
        expectRefused(bxq(arguments), exitCode);
    }
    EXPECT_EQ(contents(project), before);
    EXPECT_FALSE(QFile::exists(none));
    EXPECT_FALSE(QFile::exists(fresh));
}

TEST(BxqMember, EveryVerbAndSubVerbAnswersHelpWithAnExample) {
    const QStringList verbs[] = {{"parse"}, {"catalogue"}, {"wpm"}, {"apm"}, {"user-section", "add"}, {"face-steel"},
                                 {"outline"}, {"member", "add"}, {"member", "list"}, {"member", "remove"}, {"member"},
                                 {"cut-plane", "add"}, {"cut-plane", "list"}, {"cut-plane", "move"},
                                 {"cut-plane", "remove"}, {"view"}};
    for (const QStringList& verb : verbs) {
        SCOPED_TRACE(verb.join(' ').toStdString());
        const BxqRun run = bxq(verb + QStringList{"--help"});
        EXPECT_EQ(run.exitCode, 0) << run.err.constData();
        EXPECT_TRUE(run.out.startsWith("Usage: bxq " + verb.first().toUtf8())) << run.out.constData();
        EXPECT_TRUE(run.out.contains("Example:\n  bxq " + verb.join(' ').toUtf8())) << run.out.constData();
    }
}

TEST(BxqView, PlanesAreSizedSelectedAndDrawnInTheirColours) {
    QTemporaryDir dir;
    const QString project = dir.filePath("view.KDB"), png = dir.filePath("iso.png");
    addBeam(project);
    ASSERT_EQ(addPlane(project, "1", "--head", "0,0,1000", "0,0,1").exitCode, 0);
    ASSERT_EQ(addPlane(project, "1", "--tail", "0,0,-1000", "0,0,-1").exitCode, 0);
    const QJsonArray nodes = json({"view", "--project", project, "--json", "--select", "2", "--png", png, "--size",
                                   "400x300", "--view", "iso"}).object().value("nodes").toArray();
    ASSERT_EQ(nodes.size(), 2);
    for (int i = 0; i < 2; ++i) {
        const QJsonObject node = nodes[i].toObject();
        EXPECT_EQ(node.value("record").toInt(), i + 1);
        EXPECT_EQ(node.value("objectId").toString(), QString::number(76861433354125312LL + i + 1));
        EXPECT_EQ(node.value("element").toInt(), 1);
        EXPECT_NEAR(numbers(node.value("centre")).value(0), i == 0 ? 1000 : 5000, 1e-6);
        EXPECT_NEAR(std::min(node.value("width").toDouble(), node.value("height").toDouble()), 500, 1e-6);
        EXPECT_NEAR(std::max(node.value("width").toDouble(), node.value("height").toDouble()), 700, 1e-6);
        EXPECT_EQ(node.value("selected").toBool(), i == 1);
    }
    // Seen from the south-east corner above, the member runs left to right: the head plane
    // (yellow) left of the middle, the selected tail plane (blue) right of it.
    const QImage image(png);
    ASSERT_EQ(image.size(), QSize(400, 300));
    int yellowLeft = 0, yellowRight = 0, blueLeft = 0, blueRight = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            (x < 200 ? yellowLeft : yellowRight) += c.red() > 2 * c.blue() + 40 && c.green() > 2 * c.blue() + 30;
            (x < 200 ? blueLeft : blueRight) += c.blue() > 2 * c.red() + 40 && c.blue() > c.green() + 40;
        }
    }
    EXPECT_GT(yellowLeft, 200);
    EXPECT_GT(blueRight, 200);
    EXPECT_EQ(yellowRight, 0);
    EXPECT_EQ(blueLeft, 0);
}

TEST(BxqMember, ProjectsThatCannotBeReadAreNamedAndLeftAsTheyWere) {
    QTemporaryDir dir;
    const QString whole = dir.filePath("whole.KDB"), damaged = dir.filePath("damaged.KDB");
    addBeam(whole);
    const QByteArray bytes = contents(whole);
    const auto verbs = [](const QString& path, bool changes) {
        QList<QStringList> list{{"member", "list", "--project", path}, {"cut-plane", "list", "--project", path},
                                {"view", "--project", path, "--json"}};
        if (changes)
            list += QList<QStringList>{
                {"member", "add", "--project", path, "--section", "I20a", "--from", "0,0,0", "--to", "1,0,0"},
                {"cut-plane", "add", "--project", path, "--id", "1", "--head", "--origin", "0,0,0", "--normal", "0,0,1"}};
        return list;
    };
    // A plane row whose frame spilled over overflow pages, then their chain broken: an error, not an uncut member.
    addBeam(damaged);
    ASSERT_EQ(addPlane(damaged, "1", "--head", "0,0,1000", "0,0,1").exitCode, 0);
    QProcess sqlite;
    sqlite.start("sqlite3", {damaged, "UPDATE \"CuttingPlane\" SET \"LocalCoordinate\" = '" + bxqtest::longNumberText("1") + "'"});
    ASSERT_TRUE(sqlite.waitForFinished(30000));
    ASSERT_EQ(sqlite.exitCode(), 0) << sqlite.readAllStandardError().constData();
    ASSERT_TRUE(bxqtest::damageLongRow(damaged));
    for (const QStringList& verb : verbs(damaged, false)) {
        SCOPED_TRACE(verb.join(' ').toStdString());
        expectRefused(bxq(verb), 1, "damaged.KDB");
    }
    const struct {
        const char* name;
        QByteArray content;  // empty with folder: a folder in the file's place
        bool folder;
    } faults[] = {{"truncated.KDB", bytes.left(bytes.size() / 2), false},
                  {"garbage.KDB", QByteArray(8192, '\x5a'), false},
                  {"folder.KDB", QByteArray(), true}};
    for (const auto& fault : faults) {
        const QString path = dir.filePath(fault.name);
        if (fault.folder) {
            ASSERT_TRUE(QDir().mkpath(path));
        } else {
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(fault.content) == fault.content.size());
        }
        for (const QStringList& verb : verbs(path, true)) {
            SCOPED_TRACE(verb.join(' ').toStdString());
            expectRefused(bxq(verb), 1, fault.name);
        }
        if (!fault.folder) { EXPECT_EQ(contents(path), fault.content); }
        EXPECT_FALSE(QFile::exists(path + "-journal"));
    }
    // A zero-byte project (a creation cut short) is taken as a new one.
    const QString empty = dir.filePath("empty.KDB");
    QFile(empty).open(QIODevice::WriteOnly);
    EXPECT_EQ(bxq({"member", "list", "--project", empty}).exitCode, 0);
    addBeam(empty);
    EXPECT_EQ(json({"member", "list", "--project", empty, "--json"}).array().size(), 1);
}
