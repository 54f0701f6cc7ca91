// bxq export as a user runs it: the options that change what is written (grade, element class,
// unit) and the refusals, each leaving an existing file as it was.
#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include "support/BxqProcess.h"

namespace {

using bxqtest::BxqRun;

BxqRun bxq(const QStringList& arguments) {
    return bxqtest::runBxq(arguments, {QStringLiteral(BXQ_SHIPPED_DATA_DIR), {}, {}, false});
}

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class ExportCommand : public ::testing::Test {
protected:
    void SetUp() override {
        // A 6 m beam and a 3 m column of welded H; the beam cut 500 mm in at its head.
        for (const QStringList& member : {QStringList{"0,0,0", "6000,0,0"}, QStringList{"0,0,0", "0,0,3000"}})
            ASSERT_EQ(bxq({"member", "add", "--project", m_project, "--section", "H400*200*8*13", "--from", member[0],
                           "--to", member[1]})
                          .exitCode,
                      0);
        ASSERT_EQ(bxq({"cut-plane", "add", "--project", m_project, "--id", "1", "--head", "--origin", "0,0,500",
                       "--normal", "0,0,1"})
                      .exitCode,
                  0);
    }
    QTemporaryDir m_dir;
    const QString m_project = m_dir.filePath("frame.KDB");
    const QString m_ifc = m_dir.filePath("frame.ifc");
};

TEST_F(ExportCommand, GradeClassAndQuantitiesAreWrittenAsAsked) {
    const BxqRun run = bxq({"export", "--project", m_project, "--ifc", m_ifc, "--grade", "Q355B", "--as", "2=member",
                            "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const QJsonArray members = QJsonDocument::fromJson(run.out).object().value("members").toArray();
    ASSERT_EQ(members.size(), 2);
    EXPECT_EQ(members[0].toObject().value("entity").toString(), "IFCBEAM");
    EXPECT_EQ(members[1].toObject().value("entity").toString(), "IFCMEMBER");  // upright, but as asked
    const QByteArray text = contents(m_ifc);
    EXPECT_TRUE(text.contains("IFCMATERIAL('Q355B',$,'Steel');"));
    EXPECT_EQ(text.count("=IFCMEMBER("), 1);
    EXPECT_EQ(text.count("=IFCCOLUMN("), 0);
    // The cut beam's quantities: 5.5 m of solid after the cut, its weight, the whole axis length.
    const double area = 2 * 200 * 13 + (400 - 26) * 8;
    const double weight = members[0].toObject().value("weight").toDouble();
    EXPECT_NEAR(weight, area * 5500 * 7.85e-6, 1e-6 * weight);
    const QRegularExpression quantity(QStringLiteral("IFCQUANTITY[A-Z]+\\('([A-Za-z]+)',\\$,\\$,([^,]+),\\$\\)"));
    QMap<QString, QList<double>> values;
    for (auto m = quantity.globalMatch(QString::fromUtf8(text)); m.hasNext();) {
        const auto match = m.next();
        values[match.captured(1)] << match.captured(2).toDouble();
    }
    ASSERT_EQ(values.value("NetWeight").size(), 2);
    EXPECT_NEAR(values["NetWeight"][0], weight, 1e-9 * weight);
    EXPECT_EQ(values["Length"], (QList<double>{6000, 3000}));
    EXPECT_NEAR(values["NetVolume"][0], area * 5500 * 1e-9, 1e-12);
    EXPECT_NEAR(values["OuterSurfaceArea"][1], (4 * 200 + 2 * 400 - 2 * 8) * 3000 * 1e-6, 1e-9);

    // In metres the lengths are a thousandth, the weights stay.
    ASSERT_EQ(bxq({"export", "--project", m_project, "--ifc", m_ifc, "--unit", "m"}).exitCode, 0);
    const QByteArray metres = contents(m_ifc);
    EXPECT_TRUE(metres.contains("IFCQUANTITYLENGTH('Length',$,$,6.,$)")) << metres.constData();
    EXPECT_TRUE(metres.contains("IFCEXTRUDEDAREASOLID(") && metres.contains(",3.);"));
}

TEST_F(ExportCommand, RefusalsNameWhatWasWrongAndLeaveTheFile) {
    ASSERT_EQ(bxq({"export", "--project", m_project, "--ifc", m_ifc}).exitCode, 0);
    const QByteArray before = contents(m_ifc);
    const struct {
        QStringList arguments;
        int exitCode;
        const char* message;
    } cases[] = {
        {{"--ifc", m_ifc}, 2, "export needs --project FILE and --ifc FILE"},
        {{"--project", m_project}, 2, "export needs --project FILE and --ifc FILE"},
        {{"--project", m_project, "--ifc", m_ifc, "--unit", "cm"}, 2, "--unit is mm or m, not 'cm'"},
        {{"--project", m_project, "--ifc", m_ifc, "--as", "1=truss"}, 2, "not '1=truss'"},
        {{"--project", m_project, "--ifc", m_ifc, "--as", "9=beam"}, 1, "has no member 9"},
        {{"--project", m_dir.filePath("none.KDB"), "--ifc", m_ifc}, 1, "none.KDB does not exist"},
        {{"--project", m_project, "--ifc", m_dir.filePath("no/such/folder/x.ifc")}, 1, "no/such/folder/x.ifc"},
    };
    for (const auto& c : cases) {
        const BxqRun run = bxq(QStringList{"export"} + c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.message;
        EXPECT_EQ(run.err.count('\n'), 1) << run.err.constData();
        EXPECT_TRUE(run.err.contains(c.message)) << run.err.constData();
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_EQ(contents(m_ifc), before) << c.message;
    }
}

}  // namespace
