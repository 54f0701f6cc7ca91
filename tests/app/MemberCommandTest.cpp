// bxq member and bxq cut-plane as a user runs them: member solids of catalogue and welded
// sections, trimmed by the cutting planes added to a project, exported as STEP and STL, and the
// exit status of bad input.
#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <cmath>

namespace {

struct BxqRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

BxqRun bxq(const QStringList& arguments) {
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("BXQ_DATA_DIR"), QStringLiteral(BXQ_SHIPPED_DATA_DIR));
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(BXQ_BINARY), arguments);
    process.closeWriteChannel();
    process.waitForFinished(120000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
            process.readAllStandardError()};
}

QJsonObject member(const QStringList& arguments) {
    const BxqRun run = bxq(QStringList{"member", "--json"} + arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err.constData();
    return QJsonDocument::fromJson(run.out).object();
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
    for (const char* y : {"0", "5000"})
        ASSERT_EQ(bxq({"member", "add", "--project", project, "--section", "H400*200*8*13", "--from",
                       QString("0,%1,0").arg(y), "--to", QString("6000,%1,0").arg(y)})
                      .exitCode,
                  0);
    ASSERT_EQ(bxq({"cut-plane", "add", "--project", project, "--id", "2", "--head", "--origin", "0,0,1000",
                   "--normal", "0,0,1"})
                  .exitCode,
              0);
    // No plane on member 1: the whole member.
    EXPECT_NEAR(member({"H400*200*8*13", "--length", "6000", "--project", project, "--id", "1"}).value("volume").toDouble(),
                full, 1e-6 * full);
    // Member 2: a head cut 1000 in, then a tail cut 1000 back from the end.
    EXPECT_NEAR(member({"H400*200*8*13", "--length", "6000", "--project", project, "--id", "2"}).value("volume").toDouble(),
                full * 5 / 6, 1e-6 * full);
    const BxqRun tail = bxq({"cut-plane", "add", "--project", project, "--id", "2", "--tail", "--origin", "0,0,-1000",
                             "--normal", "0,0,-1"});
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
