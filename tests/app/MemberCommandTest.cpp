// bxq member and bxq cut-plane as a user runs them: member solids of catalogue and welded
// sections, trimmed by the cutting planes added to a project, exported as STEP and STL, and the
// exit status of bad input.
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

#include <cmath>

namespace {

using bxqtest::BxqRun;

BxqRun bxq(const QStringList& arguments) {
    return bxqtest::runBxq(arguments, {QStringLiteral(BXQ_SHIPPED_DATA_DIR), {}, {}, false});
}

QJsonObject member(const QStringList& arguments) {
    const BxqRun run = bxq(QStringList{"member", "--json"} + arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err.constData();
    return QJsonDocument::fromJson(run.out).object();
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

}  // namespace

TEST(BxqMember, WeightOfCatalogueAndWeldedMembersFollowsTheirSections) {
    // Catalogue sections with their radii weigh what the catalogue says per metre (within 1 %).
    const struct {
        const char* spec;
        double kgPerMetre;
    } catalogue[] = {{"HN400*200*8*13", 65.4}, {"I20a", 27.9}, {"[20a", 22.6}, {"L100*80*10", 13.5}};
    for (const auto& c : catalogue) {
        SCOPED_TRACE(c.spec);
        const QJsonObject o = member({c.spec, "--length", "2000"});
        EXPECT_NEAR(o.value("weight").toDouble(), 2 * c.kgPerMetre, 0.02 * c.kgPerMetre);
        EXPECT_NEAR(o.value("weight").toDouble(), o.value("volume").toDouble() * 7.85e-6, 1e-9);
    }
    // A welded H is its exact plate area times the length, centred on the axis.
    const QJsonObject h = member({"H400*200*8*13", "--length", "6000"});
    const double area = 2 * 200 * 13 + (400 - 26) * 8;
    EXPECT_NEAR(h.value("volume").toDouble(), area * 6000, 1e-6 * area * 6000);
    const QVector<double> box = numbers(h.value("bbox"));
    ASSERT_EQ(box.size(), 6);
    EXPECT_NEAR(box[0], -100, 1e-6);
    EXPECT_NEAR(box[4], 200, 1e-6);
    EXPECT_NEAR(box[5], 6000, 1e-6);
}

TEST(BxqMember, CuttingPlanesOfTheElementTrimItsSolid) {
    QTemporaryDir dir;
    const QString project = dir.filePath("cuts.KDB");
    const double full = member({"H400*200*8*13", "--length", "6000"}).value("volume").toDouble();

    // Two stored members; the second gets the planes.
    addBeam(project);
    addBeam(project, "0,5000,0", "6000,5000,0");
    ASSERT_EQ(addPlane(project, "2", "--head", "0,0,1000", "0,0,1").exitCode, 0);
    // No plane on member 1: the whole member.
    EXPECT_NEAR(member({"H400*200*8*13", "--length", "6000", "--project", project, "--id", "1"}).value("volume").toDouble(),
                full, 1e-6 * full);
    // Member 2: a head cut 1000 in, then a tail cut 1000 back from the end.
    EXPECT_NEAR(member({"H400*200*8*13", "--length", "6000", "--project", project, "--id", "2"}).value("volume").toDouble(),
                full * 5 / 6, 1e-6 * full);
    const BxqRun tail = addPlane(project, "2", "--tail", "0,0,-1000", "0,0,-1");
    ASSERT_EQ(tail.exitCode, 0) << tail.err.constData();
    EXPECT_EQ(tail.out, "added cutting plane to member 2 (tail), id 2\n");
    const QJsonObject cut = member({"H400*200*8*13", "--length", "6000", "--project", project, "--id", "2", "--step",
                                    dir.filePath("m.step"), "--stl", dir.filePath("m.stl")});
    EXPECT_NEAR(cut.value("volume").toDouble(), full * 4 / 6, 1e-6 * full);
    EXPECT_NEAR(numbers(cut.value("bbox"))[2], 1000, 1e-6);
    EXPECT_NEAR(numbers(cut.value("bbox"))[5], 5000, 1e-6);

    // The exports exist: STEP text and a binary STL of 84 + 50 bytes per triangle.
    QFile step(dir.filePath("m.step")), stl(dir.filePath("m.stl"));
    ASSERT_TRUE(step.open(QIODevice::ReadOnly));
    EXPECT_TRUE(step.readAll().startsWith("ISO-10303-21;"));
    ASSERT_TRUE(stl.open(QIODevice::ReadOnly));
    const QByteArray bytes = stl.readAll();
    ASSERT_GT(bytes.size(), 84);
    const quint32 triangles = *reinterpret_cast<const quint32*>(bytes.constData() + 80);
    EXPECT_GT(triangles, 0u);
    EXPECT_EQ(bytes.size(), 84 + 50 * static_cast<int>(triangles));
}

TEST(BxqMember, BadInputIsRefusedWithOneLine) {
    QTemporaryDir dir;
    const struct {
        QStringList arguments;
        int exitCode;
    } cases[] = {
        {{"member", "H400*200*8*13"}, 2},                                       // no length
        {{"member", "H400*200*8*13", "--length", "-5"}, 2},                     // not positive
        {{"member", "H400*200*8*13", "--length", "100", "--id", "3"}, 2},       // id without project
        {{"member", "XYZ", "--length", "100"}, 1},                              // not a section
        {{"member", "H20*200*8*13", "--length", "100"}, 1},                     // flanges meet
        {{"member", "H400*200*8*13", "--length", "100", "--project", dir.filePath("none.KDB"), "--id", "1"}, 1},
        {{"cut-plane", "add", "--project", dir.filePath("p.KDB"), "--id", "1", "--head", "--origin", "0,0,0",
          "--normal", "0,0,0"},
         2},
        {{"cut-plane", "add", "--project", dir.filePath("p.KDB"), "--id", "1", "--origin", "0,0,0", "--normal", "0,0,1"},
         2},
        {{"cut-plane", "remove", "--project", dir.filePath("p.KDB")}, 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        const BxqRun run = bxq(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err.constData();
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_EQ(run.err.count('\n'), 1) << run.err.constData();
    }
    EXPECT_FALSE(QFile::exists(dir.filePath("none.KDB")));
    EXPECT_FALSE(QFile::exists(dir.filePath("p.KDB")));
}

TEST(BxqMember, StoredMembersAndTheirPlanesAreAddedListedMovedAndRemoved) {
    QTemporaryDir dir;
    const QString project = dir.filePath("model.KDB");
    const BxqRun added = bxq({"member", "add", "--project", project, "--section", "H400*200*8*13", "--from", "0,0,0",
                              "--to", "6000,0,0"});
    ASSERT_EQ(added.exitCode, 0) << added.err.constData();
    EXPECT_TRUE(added.out.endsWith(" 1\n")) << added.out.constData();
    ASSERT_EQ(bxq({"member", "add", "--project", project, "--section", "I20a", "--from", "0,3000,0", "--to",
                   "0,3000,4000", "--roll", "90"})
                  .exitCode,
              0);
    const BxqRun plane = addPlane(project, "1", "--tail", "0,0,-1000", "0,0,-1");
    ASSERT_EQ(plane.exitCode, 0) << plane.err.constData();

    // The list weighs each member after its cuts: the welded H is 5/6 of its plate area x 6 m.
    const BxqRun listed = bxq({"member", "list", "--project", project, "--json"});
    ASSERT_EQ(listed.exitCode, 0) << listed.err.constData();
    const QJsonArray members = QJsonDocument::fromJson(listed.out).array();
    ASSERT_EQ(members.size(), 2);
    const double area = 2 * 200 * 13 + (400 - 26) * 8;
    EXPECT_NEAR(members[0].toObject().value("weight").toDouble(), area * 5000 * 7.85e-6, 1e-6);
    EXPECT_EQ(members[0].toObject().value("length").toDouble(), 6000);
    EXPECT_EQ(members[1].toObject().value("section").toString(), "I20a");
    EXPECT_EQ(members[1].toObject().value("roll").toDouble(), 90);
    EXPECT_NEAR(members[1].toObject().value("weight").toDouble(), 4 * 27.9, 0.02 * 4 * 27.9);

    // Moving the plane 500 further along its normal (towards the head) shortens the member.
    ASSERT_EQ(bxq({"cut-plane", "move", "--project", project, "1", "--by", "500"}).exitCode, 0);
    const QJsonArray planes =
        QJsonDocument::fromJson(bxq({"cut-plane", "list", "--project", project, "--id", "1", "--json"}).out).array();
    ASSERT_EQ(planes.size(), 1);
    EXPECT_EQ(planes[0].toObject().value("end").toString(), "tail");
    EXPECT_EQ(numbers(planes[0].toObject().value("origin")), (QVector<double>{0, 0, -1500}));
    EXPECT_EQ(planes[0].toObject().value("offset").toDouble(), 500);
    const QJsonArray shorter = QJsonDocument::fromJson(bxq({"member", "list", "--project", project, "--json"}).out).array();
    EXPECT_NEAR(shorter[0].toObject().value("weight").toDouble(), area * 4500 * 7.85e-6, 1e-6);

    // Removing a member takes its planes with it.
    ASSERT_EQ(bxq({"member", "remove", "--project", project, "1"}).exitCode, 0);
    EXPECT_EQ(bxq({"cut-plane", "list", "--project", project}).out, "");
    EXPECT_EQ(QJsonDocument::fromJson(bxq({"member", "list", "--project", project, "--json"}).out).array().size(), 1);
}

TEST(BxqMember, StoredMemberVerbsRefuseWhatTheyCannotDo) {
    QTemporaryDir dir;
    const QString project = dir.filePath("model.KDB");
    addBeam(project);
    QFile file(project);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    file.close();
    const struct {
        QStringList arguments;
        int exitCode;
    } cases[] = {
        {{"member", "add", "--project", project, "--section", "XYZ", "--from", "0,0,0", "--to", "1,0,0"}, 1},
        {{"member", "add", "--project", project, "--section", "H20*200*8*13", "--from", "0,0,0", "--to", "1,0,0"}, 1},
        {{"member", "add", "--project", project, "--section", "I20a", "--from", "5,5,5", "--to", "5,5,5"}, 2},
        {{"member", "add", "--project", project, "--section", "I20a", "--from", "0,0", "--to", "5,5,5"}, 2},
        {{"member", "remove", "--project", project, "7"}, 1},
        {{"member", "list", "--project", dir.filePath("none.KDB")}, 1},
        {{"cut-plane", "add", "--project", project, "--id", "7", "--head", "--origin", "0,0,0", "--normal", "0,0,1"}, 1},
        {{"cut-plane", "list", "--project", project, "--id", "7"}, 1},
        {{"cut-plane", "move", "--project", project, "3", "--by", "10"}, 1},
        {{"cut-plane", "move", "--project", project, "3"}, 2},
        {{"cut-plane", "remove", "--project", project, "3"}, 1},
        {{"view", "--project", project, "--size", "10x10"}, 2},
        {{"view", "--project", project, "--view", "under"}, 2},
        {{"member", "frobnicate", "--project", project}, 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        const BxqRun run = bxq(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err.constData();
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_EQ(run.err.count('\n'), 1) << run.err.constData();
    }
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), before);
    EXPECT_FALSE(QFile::exists(dir.filePath("none.KDB")));
}

TEST(BxqMember, EveryVerbAndSubVerbAnswersHelpWithAnExample) {
    const QStringList verbs[] = {{"parse"},          {"catalogue"},         {"wpm"},
                                 {"apm"},            {"user-section", "add"}, {"face-steel"},
                                 {"outline"},        {"member", "add"},     {"member", "list"},
                                 {"member", "remove"}, {"member"},          {"cut-plane", "add"},
                                 {"cut-plane", "list"}, {"cut-plane", "move"}, {"cut-plane", "remove"},
                                 {"view"}};
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
    const QString project = dir.filePath("view.KDB");
    addBeam(project);
    for (const QStringList& plane : {QStringList{"--head", "--origin", "0,0,1000", "--normal", "0,0,1"},
                                     QStringList{"--tail", "--origin", "0,0,-1000", "--normal", "0,0,-1"}})
        ASSERT_EQ(bxq(QStringList{"cut-plane", "add", "--project", project, "--id", "1"} + plane).exitCode, 0);

    const QString png = dir.filePath("iso.png");
    const BxqRun run = bxq({"view", "--project", project, "--json", "--select", "2", "--png", png, "--size", "400x300",
                            "--view", "iso"});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const QJsonArray nodes = QJsonDocument::fromJson(run.out).object().value("nodes").toArray();
    ASSERT_EQ(nodes.size(), 2);
    const struct {
        double centreX;
        bool selected;
    } expected[] = {{1000, false}, {5000, true}};
    for (int i = 0; i < 2; ++i) {
        const QJsonObject node = nodes[i].toObject();
        EXPECT_EQ(node.value("record").toInt(), i + 1);
        EXPECT_EQ(node.value("objectId").toString(), QString::number(76861433354125312LL + i + 1));
        EXPECT_EQ(node.value("element").toInt(), 1);
        EXPECT_NEAR(numbers(node.value("centre"))[0], expected[i].centreX, 1e-6);
        EXPECT_NEAR(std::min(node.value("width").toDouble(), node.value("height").toDouble()), 500, 1e-6);
        EXPECT_NEAR(std::max(node.value("width").toDouble(), node.value("height").toDouble()), 700, 1e-6);
        EXPECT_EQ(node.value("selected").toBool(), expected[i].selected);
    }

    // Seen from the south-east corner above, the member runs left to right: the head plane
    // (yellow) left of the middle, the selected tail plane (blue) right of it.
    QImage image(png);
    ASSERT_EQ(image.size(), QSize(400, 300));
    int yellowLeft = 0, yellowRight = 0, blueLeft = 0, blueRight = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            const bool yellow = c.red() > 2 * c.blue() + 40 && c.green() > 2 * c.blue() + 30;
            const bool blue = c.blue() > 2 * c.red() + 40 && c.blue() > c.green() + 40;
            (x < 200 ? yellowLeft : yellowRight) += yellow;
            (x < 200 ? blueLeft : blueRight) += blue;
        }
    }
    EXPECT_GT(yellowLeft, 200);
    EXPECT_GT(blueRight, 200);
    EXPECT_EQ(yellowRight, 0);
    EXPECT_EQ(blueLeft, 0);
}

TEST(BxqMember, ADamagedPlaneRowIsAnErrorNotAnUncutMember) {
    QTemporaryDir dir;
    const QString project = dir.filePath("damaged.KDB");
    addBeam(project);
    ASSERT_EQ(addPlane(project, "1", "--head", "0,0,1000", "0,0,1").exitCode, 0);
    // The plane's frame spilled over overflow pages, then their chain broken.
    QProcess sqlite;
    sqlite.start("sqlite3", {project, "UPDATE \"CuttingPlane\" SET \"LocalCoordinate\" = '" + bxqtest::longNumberText("1") + "'"});
    ASSERT_TRUE(sqlite.waitForFinished(30000));
    ASSERT_EQ(sqlite.exitCode(), 0) << sqlite.readAllStandardError().constData();
    ASSERT_TRUE(bxqtest::damageLongRow(project));
    for (const QStringList& verb : {QStringList{"member", "list", "--project", project},
                                    QStringList{"cut-plane", "list", "--project", project},
                                    QStringList{"view", "--project", project, "--json"}}) {
        SCOPED_TRACE(verb.join(' ').toStdString());
        const BxqRun run = bxq(verb);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.out.isEmpty()) << run.out.constData();
        EXPECT_EQ(run.err.count('\n'), 1) << run.err.constData();
        EXPECT_TRUE(run.err.contains("damaged.KDB")) << run.err.constData();
    }
}

TEST(BxqMember, ProjectsThatCannotBeReadAreNamedAndLeftAsTheyWere) {
    QTemporaryDir dir;
    const QString whole = dir.filePath("whole.KDB");
    addBeam(whole);
    QFile file(whole);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    file.close();
    const struct {
        const char* name;
        QByteArray content;  // empty with folder: a folder in the file's place
        bool folder;
    } faults[] = {
        {"truncated.KDB", bytes.left(bytes.size() / 2), false},
        {"garbage.KDB", QByteArray(8192, '\x5a'), false},
        {"folder.KDB", QByteArray(), true},
    };
    for (const auto& fault : faults) {
        const QString path = dir.filePath(fault.name);
        if (fault.folder) {
            ASSERT_TRUE(QDir().mkpath(path));
        } else {
            QFile damaged(path);
            ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
            damaged.write(fault.content);
        }
        for (const QStringList& verb :
             {QStringList{"member", "list", "--project", path}, QStringList{"cut-plane", "list", "--project", path},
              QStringList{"view", "--project", path, "--json"},
              QStringList{"member", "add", "--project", path, "--section", "I20a", "--from", "0,0,0", "--to", "1,0,0"},
              QStringList{"cut-plane", "add", "--project", path, "--id", "1", "--head", "--origin", "0,0,0", "--normal",
                          "0,0,1"}}) {
            SCOPED_TRACE((QString(fault.name) + ": " + verb.join(' ')).toStdString());
            const BxqRun run = bxq(verb);
            EXPECT_EQ(run.exitCode, 1);
            EXPECT_TRUE(run.out.isEmpty());
            EXPECT_EQ(run.err.count('\n'), 1) << run.err.constData();
            EXPECT_TRUE(run.err.contains(fault.name)) << run.err.constData();
        }
        if (!fault.folder) {
            QFile after(path);
            ASSERT_TRUE(after.open(QIODevice::ReadOnly));
            EXPECT_EQ(after.readAll(), fault.content);
        }
        EXPECT_FALSE(QFile::exists(path + "-journal"));
    }
    // A zero-byte project (a creation cut short) is taken as a new one.
    const QString empty = dir.filePath("empty.KDB");
    QFile(empty).open(QIODevice::WriteOnly);
    EXPECT_EQ(bxq({"member", "list", "--project", empty}).exitCode, 0);
    EXPECT_EQ(bxq({"member", "add", "--project", empty, "--section", "H400*200*8*13", "--from", "0,0,0", "--to",
                   "1000,0,0"})
                  .exitCode,
              0);
    EXPECT_EQ(QJsonDocument::fromJson(bxq({"member", "list", "--project", empty, "--json"}).out).array().size(), 1);
}
