// bxq properties as a user runs it: catalogue rows against their published GB tables, the exact
// JSON keys, units, CSV, outline texts, standard input and the exit status of bad texts.
#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <cmath>
#include "support/BxqProcess.h"

namespace {

using bxqtest::BxqRun;

BxqRun bxq(const QStringList& arguments, const QByteArray& input = QByteArray()) {
    return bxqtest::runBxq(QStringList{QStringLiteral("properties")} + arguments,
                           {QStringLiteral(BXQ_SHIPPED_DATA_DIR), input, {}, false});
}

std::vector<QJsonObject> jsonLines(const QByteArray& out) {
    std::vector<QJsonObject> objects;
    for (const QByteArray& line : out.split('\n')) {
        if (line.isEmpty()) continue;
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(line, &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << line.constData();
        objects.push_back(document.object());
    }
    return objects;
}

// A row of a published table (GB/T 706, GB/T 11263, GB/T 6728), cm units.
struct Published {
    const char* section;
    double a, ix, iy, rx, ry, wx, wy;
};

// The tables give ix, iy to three figures; their other figures to three or four.
const Published kPublished[] = {
    {"I10", 14.345, 245, 33.0, 4.14, 1.52, 49.0, 9.72},
    {"I14", 21.516, 712, 64.4, 5.76, 1.73, 102, 16.1},
    {"I20a", 35.578, 2370, 158, 8.15, 2.12, 237, 31.5},
    {"I32a", 67.156, 11100, 460, 12.8, 2.62, 692, 70.8},
    {"[10", 12.748, 198, 25.6, 3.95, 1.41, 39.7, 7.80},
    {"[14a", 18.516, 564, 53.2, 5.52, 1.70, 80.5, 13.0},
    {"[20a", 28.837, 1780, 128, 7.86, 2.11, 178, 24.2},
    {"L50*5", 4.803, 11.21, 11.21, 1.53, 1.53, 3.13, 3.13},
    {"L100*10", 19.261, 179.51, 179.51, 3.05, 3.05, 25.06, 25.06},
    {"HW200*200*8*12", 63.53, 4720, 1600, 8.61, 5.02, 472, 160},
    {"HN300*150*6.5*9", 46.78, 7210, 508, 12.4, 3.29, 481, 67.7},
    {"HN400*200*8*13", 83.37, 23500, 1740, 16.8, 4.56, 1170, 174},
    {"D114*4", 13.82, 209.35, 209.35, 3.89, 3.89, 36.73, 36.73},
};

TEST(PropertiesCommand, CatalogueRowsMatchTheirPublishedTables) {
    QStringList specs;
    for (const Published& p : kPublished) specs << QLatin1String(p.section);
    const BxqRun run = bxq(QStringList{QStringLiteral("--json"), QStringLiteral("--units"), QStringLiteral("cm")} + specs);
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const std::vector<QJsonObject> rows = jsonLines(run.out);
    ASSERT_EQ(rows.size(), std::size(kPublished));
    for (size_t i = 0; i < rows.size(); ++i) {
        const Published& p = kPublished[i];
        const QJsonObject& row = rows[i];
        SCOPED_TRACE(p.section);
        EXPECT_EQ(row.value("section").toString(), QLatin1String(p.section));
        const std::pair<const char*, double> figures[] = {{"A", p.a},   {"Ix", p.ix}, {"Iy", p.iy}, {"rx", p.rx},
                                                          {"ry", p.ry}, {"Wx", p.wx}, {"Wy", p.wy}};
        for (const auto& f : figures)
            EXPECT_NEAR(row.value(QLatin1String(f.first)).toDouble(), f.second, 0.01 * f.second) << f.first;
        EXPECT_NEAR(row.value("massPerMetre").toDouble(), 0.785 * row.value("A").toDouble(), 1e-9 * p.a) << "7.85 t/m3";
    }
}

TEST(PropertiesCommand, JsonHasExactlyTheTableKeysInMillimetresByDefault) {
    const BxqRun run = bxq({QStringLiteral("--json"), QStringLiteral("--outline"), QStringLiteral("0,0,0,0;100,0,0,0;100,10,0,0;0,10,0,0")});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const std::vector<QJsonObject> rows = jsonLines(run.out);
    ASSERT_EQ(rows.size(), 1u);
    QStringList keys = rows[0].keys();
    QStringList expected{"section", "A",   "perimeter", "outerPerimeter", "massPerMetre", "xc",    "yc",       "Ix",
                         "Iy",      "Ixy", "I1",        "I2",             "alpha",        "rx",    "ry",       "Wx",
                         "Wy",      "WxTop", "WxBottom", "WyLeft",        "WyRight",      "Zx",    "Zy",       "J",
                         "Iw",      "xs",  "ys",        "Asx",            "Asy"};
    keys.sort();
    expected.sort();
    EXPECT_EQ(keys, expected);
    const QJsonObject& r = rows[0];
    EXPECT_DOUBLE_EQ(r.value("A").toDouble(), 1000);
    EXPECT_DOUBLE_EQ(r.value("perimeter").toDouble(), 220);
    EXPECT_DOUBLE_EQ(r.value("xc").toDouble(), 50);
    EXPECT_NEAR(r.value("Zx").toDouble(), 2500, 1e-9);
    EXPECT_NEAR(r.value("alpha").toDouble(), 90, 1e-9) << "axis 1 is the stiffer one, y";
}

TEST(PropertiesCommand, BadTextsAreReportedAndTheOthersStillPrint) {
    const BxqRun run = bxq({QStringLiteral("--csv"), QStringLiteral("-")}, "I20a\nX12*q\nHN400*200*8*13\n");
    EXPECT_EQ(run.exitCode, 1);
    const QList<QByteArray> lines = run.out.trimmed().split('\n');
    ASSERT_EQ(lines.size(), 3) << run.out.constData();
    EXPECT_TRUE(lines[0].startsWith("section,A,perimeter,outerPerimeter,massPerMetre,"));
    EXPECT_TRUE(lines[1].startsWith("I20a,"));
    EXPECT_TRUE(lines[2].startsWith("HN400*200*8*13,"));
    const QList<QByteArray> errors = run.err.trimmed().split('\n');
    ASSERT_EQ(errors.size(), 1) << run.err.constData();
    EXPECT_TRUE(errors[0].startsWith("bxq: ")) << errors[0].constData();
    EXPECT_TRUE(errors[0].contains("X12*q")) << "names the text";
}

TEST(PropertiesCommand, UsageErrors) {
    EXPECT_EQ(bxq({QStringLiteral("--units"), QStringLiteral("in"), QStringLiteral("I20a")}).exitCode, 2);
    EXPECT_EQ(bxq({QStringLiteral("--json"), QStringLiteral("--csv"), QStringLiteral("I20a")}).exitCode, 2);
    EXPECT_EQ(bxq({}).exitCode, 2);
}

}  // namespace
