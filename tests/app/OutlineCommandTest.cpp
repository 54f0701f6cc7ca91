// bxq outline as a user runs it: outline texts and section specifications in, area, perimeter,
// box, centroid and second moments out (text or JSON), a picture with true arcs, and the exit
// status of bad input.
#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cmath>
#include "support/BxqProcess.h"

namespace {

using bxqtest::BxqRun;

BxqRun bxq(const QStringList& arguments, const QString& dataDir = QStringLiteral(BXQ_SHIPPED_DATA_DIR)) {
    return bxqtest::runBxq(QStringList{QStringLiteral("outline")} + arguments, {dataDir, {}, {}, false});
}

QJsonObject json(const BxqRun& run) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(run.out, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << run.out.constData();
    return document.object();
}

QVector<double> numbers(const QJsonValue& value) {
    QVector<double> out;
    for (const QJsonValue& v : value.toArray()) out << v.toDouble();
    return out;
}

// What a fillet of radius r turning the outline through theta adds or takes off.
double filletArea(double r, double theta = M_PI / 2) { return r * r * (std::tan(theta / 2) - theta / 2); }

}  // namespace

TEST(BxqOutlineText, ARectangleReportsItsTextbookFigures) {
    const BxqRun run = bxq({"--json", "0,0,0,0;100,0,0,0;100,50,0,0;0,50,0,0"});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const QJsonObject o = json(run);
    EXPECT_DOUBLE_EQ(o.value("area").toDouble(), 5000);
    EXPECT_DOUBLE_EQ(o.value("perimeter").toDouble(), 300);
    EXPECT_EQ(numbers(o.value("bbox")), (QVector<double>{0, 0, 100, 50}));
    EXPECT_EQ(numbers(o.value("centroid")), (QVector<double>{50, 25}));
    EXPECT_NEAR(o.value("ix").toDouble(), 100 * std::pow(50, 3) / 12, 1e-6);
    EXPECT_NEAR(o.value("iy").toDouble(), 50 * std::pow(100, 3) / 12, 1e-6);
}

TEST(BxqOutlineText, ArcsAndHolesCountExactly) {
    // A ring written as two circles, and a slot written with two half-circle arcs.
    BxqRun run = bxq({"--json", "50,50,50,50|||50,50,40,50"});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    QJsonObject o = json(run);
    EXPECT_NEAR(o.value("area").toDouble(), M_PI * (2500 - 1600), 1e-9);
    EXPECT_NEAR(o.value("perimeter").toDouble(), 2 * M_PI * 90, 1e-9);
    EXPECT_NEAR(o.value("outerPerimeter").toDouble(), 2 * M_PI * 50, 1e-9);
    EXPECT_NEAR(o.value("ix").toDouble(), M_PI / 4 * (std::pow(50, 4) - std::pow(40, 4)), 1e-3);

    run = bxq({"--json", "0,0,0,0;100,0,20,1;100,40,0,0;0,40,20,1"});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    o = json(run);
    EXPECT_NEAR(o.value("area").toDouble(), 100 * 40 + M_PI * 400, 1e-9);
    EXPECT_EQ(numbers(o.value("bbox")), (QVector<double>{-20, 0, 120, 40}));
}

TEST(BxqOutlineSection, ACatalogueIBeamIsDrawnWithItsRadii) {
    // I20a: h 200, b 100, d 7, t 11.4, r 9, r1 4.5 in the catalogue; published 27.9 kg/m.
    const BxqRun run = bxq({"--json", "--section", "I20a"});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const QJsonObject o = json(run);
    const double turn = M_PI / 2 - std::atan(1.0 / 6);
    const double area = 200 * 7 + 2 * 11.4 * 93 + 4 * filletArea(9, turn) - 4 * filletArea(4.5, turn);
    EXPECT_NEAR(o.value("area").toDouble(), area, 1e-9 * area);  // the outline text has twelve digits
    EXPECT_NEAR(o.value("area").toDouble() * 0.00785, 27.9, 0.01 * 27.9);
    EXPECT_EQ(numbers(o.value("bbox")), (QVector<double>{0, 0, 100, 200}));
    const QVector<double> centroid = numbers(o.value("centroid"));
    ASSERT_EQ(centroid.size(), 2);
    EXPECT_NEAR(centroid[0], 50, 1e-9);
    EXPECT_NEAR(centroid[1], 100, 1e-9);
    // Eight fillets: records of arc kinds 1 (toes) and 2 (roots) with their radii.
    const QStringList records = o.value("outline").toString().split(QLatin1Char(';'));
    EXPECT_EQ(records.filter(QRegularExpression(QStringLiteral(",4.5,1$"))).size(), 4);
    EXPECT_EQ(records.filter(QRegularExpression(QStringLiteral(",9,2$"))).size(), 4);
}

TEST(BxqOutlineSection, ARolledSizeOutsideTheCatalogueIsDrawnWithoutRadiiAndSaysSo) {
    const BxqRun run = bxq({"--json", "--section", "HN400*200*8*14"});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    EXPECT_NEAR(json(run).value("area").toDouble(), 2 * 200 * 14 + (400 - 28) * 8, 1e-9);
    EXPECT_TRUE(run.err.contains("HN400*200*8*14 is not in the catalogue")) << run.err.constData();
}

TEST(BxqOutlineSvg, ThePictureHasTrueArcsFilledWithHolesCut) {
    QTemporaryDir dir;
    const QString path = dir.filePath("i20a.svg");
    const BxqRun run = bxq({"--section", "I20a", "--svg", path});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString svg = QString::fromUtf8(file.readAll());
    EXPECT_TRUE(svg.startsWith(QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\"")));
    // The picture's y axis points down: counter-clockwise arcs of the outline are drawn with sweep 0.
    EXPECT_EQ(svg.count(QRegularExpression(QStringLiteral("A 4.5 4.5 0 0 0 "))), 4);  // toes, counter-clockwise
    EXPECT_EQ(svg.count(QRegularExpression(QStringLiteral("A 9 9 0 0 1 "))), 4);      // roots, clockwise
    EXPECT_TRUE(svg.contains(QStringLiteral("fill-rule=\"evenodd\"")));
    EXPECT_TRUE(svg.contains(QRegularExpression(QStringLiteral(">A = 3555.\\d+ mm2</text>")))) << svg.toStdString();

    const QString tube = dir.filePath("tube.svg");
    ASSERT_EQ(bxq({"--section", "D89*4", "--svg", tube}).exitCode, 0);
    QFile tubeFile(tube);
    ASSERT_TRUE(tubeFile.open(QIODevice::ReadOnly));
    const QString tubeSvg = QString::fromUtf8(tubeFile.readAll());
    // Two loops of two half circles each; the hole runs the other way.
    EXPECT_EQ(tubeSvg.count(QStringLiteral(" Z")), 2);
    EXPECT_EQ(tubeSvg.count(QStringLiteral("A 44.5 44.5 0 0 0 ")), 2);
    EXPECT_EQ(tubeSvg.count(QStringLiteral("A 40.5 40.5 0 0 1 ")), 2);
}

TEST(BxqOutlineErrors, BadInputEndsWithOneLineAndItsExitStatus) {
    const struct {
        const char* why;
        QStringList arguments;
        int exitCode;
    } cases[] = {
        {"nothing to draw", {}, 2},
        {"both a text and a section", {"0,0,0,0;1,0,0,0;1,1,0,0", "--section", "I20a"}, 2},
        {"two texts", {"0,0,0,0;1,0,0,0;1,1,0,0", "0,0,0,0;2,0,0,0;2,2,0,0"}, 2},
        {"an unknown option", {"--colour", "red", "0,0,0,0;1,0,0,0;1,1,0,0"}, 2},
        {"a specification that is none", {"--section", "nonsense"}, 1},
        {"a section whose values make none", {"--section", "H20*200*8*13"}, 1},
        {"a text that draws no area", {"garbage"}, 1},
        {"a loop that does not close", {"0,0,0,0;10,0,0,7;10,10,0,0"}, 1},
        {"a hole as large as the outline", {"0,0,5,50|||0,0,5,50"}, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        const BxqRun run = bxq(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err.constData();
        EXPECT_TRUE(run.out.isEmpty()) << run.out.constData();
        EXPECT_EQ(run.err.count('\n'), 1) << run.err.constData();
        EXPECT_TRUE(run.err.startsWith("bxq: ")) << run.err.constData();
    }
}

TEST(BxqOutlineErrors, AMissingCatalogueOrAnUnwritablePictureLosesNothing) {
    QTemporaryDir empty;
    BxqRun run = bxq({"--section", "I20a"}, empty.path());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.out.isEmpty());
    EXPECT_TRUE(run.err.contains("SKRSectionPolyDB.KDB")) << run.err.constData();

    run = bxq({"--svg", empty.filePath("no/such/folder/x.svg"), "0,0,0,0;1,0,0,0;1,1,0,0"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.out.isEmpty());
    EXPECT_TRUE(run.err.contains("x.svg")) << run.err.constData();
}
