// bxq parse, outline and properties as a user runs them on the shipped catalogue: section texts
// and outline texts in, records, norm checks and figures out (text, JSON lines, CSV, SVG), and
// the exit status and one-line message of bad input.
#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cmath>
#include <tuple>
#include "support/BxqProcess.h"

namespace {

using bxqtest::BxqRun;

BxqRun bxq(const QStringList& arguments, const QByteArray& input = {}, const QString& dataDir = BXQ_SHIPPED_DATA_DIR) {
    return bxqtest::runBxq(arguments, {dataDir, input, {}, false});
}

std::vector<QJsonObject> jsonLines(const BxqRun& run) {
    std::vector<QJsonObject> objects;
    for (const QString& line : run.lines()) {
        QJsonParseError error;
        objects.push_back(QJsonDocument::fromJson(line.toUtf8(), &error).object());
        EXPECT_EQ(error.error, QJsonParseError::NoError) << qPrintable(line);
    }
    return objects;
}

// The value at a path of keys such as "norm/values/t2".
QJsonValue at(QJsonObject object, const QString& path) {
    const QStringList keys = path.split(QLatin1Char('/'));
    for (int i = 0; i + 1 < keys.size(); ++i) object = object.value(keys[i]).toObject();
    return object.value(keys.last());
}

QStringList sortedKeys(const QJsonObject& object) {
    QStringList keys = object.keys();
    keys.sort();
    return keys;
}

QVector<double> numbers(const QJsonValue& value) {
    QVector<double> out;
    for (const QJsonValue& v : value.toArray()) out << v.toDouble();
    return out;
}

QString fileText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// What a fillet of radius r turning the outline through theta adds or takes off.
double filletArea(double r, double theta) { return r * r * (std::tan(theta / 2) - theta / 2); }

struct Expected {
    size_t line;
    const char* path;
    QJsonValue value;
};

}  // namespace

TEST(ParseCommand, JsonLinesCarryTheRecordTheNormCheckAndTheWeldBall) {
    const struct {
        QStringList arguments;
        QByteArray input;
        size_t lines;
        std::vector<Expected> expected;
    } runs[] = {
        {{"H400*200*8*13", "H20*200*8*13"}, {}, 2,
         {{0, "text", "H400*200*8*13"}, {0, "sectionType", 11}, {0, "groupType", 2}, {0, "paramCount", 5},
          {0, "params", QJsonArray{400, 200, 8, 13, 13}}, {0, "norm/valid", true}, {0, "norm/matched", true},
          {0, "norm/type", 11}, {0, "norm/values/t2", 13}, {0, "norm/rulesOk", true}, {0, "norm/failedRules", QJsonArray{}},
          {1, "norm/rulesOk", false}, {1, "norm/failedRules", QJsonArray{"h>2*t2", "h>2*t1"}}}},
        // A catalogue text starts with the welded mark "H" but matches no welded format.
        {{"hn 400 * 200 * 8 * 13"}, {}, 1,
         {{0, "name", "HN400*200*8*13"}, {0, "sectionType", 7}, {0, "norm/valid", true}, {0, "norm/matched", false},
          {0, "norm/type", -1}, {0, "norm/rulesOk", false}}},
        {{"--ball-expr", "r = D / t; D >= 300 ? 2 : 1", "WS300*8", "H400*200*8*13"}, {}, 2,
         {{0, "weldBall/code", 2}, {0, "weldBallCode", 2}, {0, "weldBall/values/r", 37.5}, {0, "weldBall/values/D", 300},
          {1, "weldBall/values", QJsonObject{}}}},
        // "-" reads one text per line; an empty line is a text too.
        {{"-"}, "D89*4\r\nL100*80*10\n\nH400*200*8*13\n", 4,
         {{0, "sectionType", 5}, {1, "sectionType", 4}, {2, "text", ""}, {3, "sectionType", 11}}},
        // Each language recognises its own custom keyword only.
        {{"--lang", "en", "CustomSection5", "自定义截面5"}, {}, 2,
         {{0, "sectionType", 7005}, {0, "groupType", 3}, {1, "sectionType", -1}}},
        {{"CustomSection5", "自定义截面5"}, {}, 2, {{0, "sectionType", -1}, {1, "sectionType", 7005}}},
    };
    for (const auto& run : runs) {
        SCOPED_TRACE(run.arguments.join(' ').toStdString());
        const BxqRun result = bxq(QStringList{"parse", "--json"} + run.arguments, run.input);
        ASSERT_EQ(result.exitCode, 0) << result.err.constData();
        const std::vector<QJsonObject> objects = jsonLines(result);
        ASSERT_EQ(objects.size(), run.lines);
        for (const Expected& e : run.expected) EXPECT_EQ(at(objects[e.line], e.path), e.value) << e.line << " " << e.path;
    }
}

TEST(ParseCommand, EveryObjectCarriesExactlyTheRecordKeysAndTheTextFormSaysTheRules) {
    const std::vector<QJsonObject> objects = jsonLines(bxq({"parse", "--json", "H400*200*8*13", "I20a", "garbage text"}));
    ASSERT_EQ(objects.size(), 3u);
    for (const QJsonObject& object : objects) {
        EXPECT_EQ(sortedKeys(object), (QStringList{"groupType", "name", "norm", "paramCount", "params", "sectionType",
                                                    "text", "typeCode", "typeIndex", "valueText", "weldBallCode"}));
        EXPECT_EQ(sortedKeys(object.value("norm").toObject()),
                  (QStringList{"failedRules", "matched", "rulesOk", "type", "valid", "values"}));
    }
    const QString text = bxq({"parse", "B300*10*12"}).text();
    EXPECT_TRUE(text.startsWith("B300*10*12\n"));
    EXPECT_TRUE(text.contains("300, 300, 10, 12")) << qPrintable(text);
    EXPECT_TRUE(text.contains("all hold")) << qPrintable(text);
}

TEST(OutlineCommand, FiguresOfRectanglesRingsArcsAndCatalogueSections) {
    const double turn = M_PI / 2 - std::atan(1.0 / 6);  // the 1:6 flange slope of GB I-beams
    // I20a: h 200, b 100, d 7, t 11.4, r 9, r1 4.5 in the catalogue.
    const double i20a = 200 * 7 + 2 * 11.4 * 93 + 4 * filletArea(9, turn) - 4 * filletArea(4.5, turn);
    const struct {
        QStringList arguments;
        std::vector<std::tuple<const char*, double, double>> figures;  // name, value, tolerance
        QVector<double> bbox, centroid;
        double centroidTolerance;
    } cases[] = {
        {{"0,0,0,0;100,0,0,0;100,50,0,0;0,50,0,0"},
         {{"area", 5000, 0}, {"perimeter", 300, 0}, {"ix", 100 * std::pow(50, 3) / 12, 1e-6},
          {"iy", 50 * std::pow(100, 3) / 12, 1e-6}},
         {0, 0, 100, 50}, {50, 25}, 0},
        // A ring written as two circles.
        {{"50,50,50,50|||50,50,40,50"},
         {{"area", M_PI * (2500 - 1600), 1e-9}, {"perimeter", 2 * M_PI * 90, 1e-9}, {"outerPerimeter", 2 * M_PI * 50, 1e-9},
          {"ix", M_PI / 4 * (std::pow(50, 4) - std::pow(40, 4)), 1e-3}}, {}, {}, 0},
        // A slot written with two half-circle arcs.
        {{"0,0,0,0;100,0,20,1;100,40,0,0;0,40,20,1"}, {{"area", 100 * 40 + M_PI * 400, 1e-9}}, {-20, 0, 120, 40}, {}, 0},
        // The outline text has twelve digits.
        {{"--section", "I20a"}, {{"area", i20a, 1e-9 * i20a}}, {0, 0, 100, 200}, {50, 100}, 1e-9},
        // Outside the catalogue a rolled size is drawn without radii (and says so, below).
        {{"--section", "HN400*200*8*14"}, {{"area", 2 * 200 * 14 + (400 - 28) * 8, 1e-9}}, {}, {}, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        const BxqRun run = bxq(QStringList{"outline", "--json"} + c.arguments);
        ASSERT_EQ(run.exitCode, 0) << run.err.constData();
        const QJsonObject o = jsonLines(run).at(0);
        for (const auto& [name, value, tolerance] : c.figures) EXPECT_NEAR(o.value(name).toDouble(), value, tolerance) << name;
        if (!c.bbox.isEmpty()) { EXPECT_EQ(numbers(o.value("bbox")), c.bbox); }
        if (!c.centroid.isEmpty()) { EXPECT_EQ(numbers(o.value("centroid")).size(), 2); }
        for (int i = 0; i < c.centroid.size(); ++i)
            EXPECT_NEAR(numbers(o.value("centroid")).value(i), c.centroid[i], c.centroidTolerance);
        if (c.arguments.contains("HN400*200*8*14")) {
            EXPECT_TRUE(run.err.contains("HN400*200*8*14 is not in the catalogue")) << run.err.constData();
        }
        if (c.arguments.contains("I20a")) {
            EXPECT_NEAR(o.value("area").toDouble() * 0.00785, 27.9, 0.01 * 27.9);  // published kg/m
            // Eight fillets: records of arc kinds 1 (toes) and 2 (roots) with their radii.
            const QStringList records = o.value("outline").toString().split(QLatin1Char(';'));
            EXPECT_EQ(records.filter(QRegularExpression(QStringLiteral(",4.5,1$"))).size(), 4);
            EXPECT_EQ(records.filter(QRegularExpression(QStringLiteral(",9,2$"))).size(), 4);
        }
    }
}

TEST(OutlineCommand, ThePictureHasTrueArcsFilledWithHolesCut) {
    QTemporaryDir dir;
    ASSERT_EQ(bxq({"outline", "--section", "I20a", "--svg", dir.filePath("i.svg")}).exitCode, 0);
    ASSERT_EQ(bxq({"outline", "--section", "D89*4", "--svg", dir.filePath("d.svg")}).exitCode, 0);
    const QString svg = fileText(dir.filePath("i.svg")), tube = fileText(dir.filePath("d.svg"));
    EXPECT_TRUE(svg.startsWith(QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\"")));
    // The picture's y axis points down: counter-clockwise arcs of the outline are drawn with sweep 0.
    EXPECT_EQ(svg.count(QStringLiteral("A 4.5 4.5 0 0 0 ")), 4);  // toes, counter-clockwise
    EXPECT_EQ(svg.count(QStringLiteral("A 9 9 0 0 1 ")), 4);      // roots, clockwise
    EXPECT_TRUE(svg.contains(QStringLiteral("fill-rule=\"evenodd\"")));
    EXPECT_TRUE(svg.contains(QRegularExpression(QStringLiteral(">A = 3555.\\d+ mm2</text>")))) << svg.toStdString();
    // Two loops of two half circles each; the hole runs the other way.
    EXPECT_EQ(tube.count(QStringLiteral(" Z")), 2);
    EXPECT_EQ(tube.count(QStringLiteral("A 44.5 44.5 0 0 0 ")), 2);
    EXPECT_EQ(tube.count(QStringLiteral("A 40.5 40.5 0 0 1 ")), 2);
}

// A row of a published table (GB/T 706, GB/T 11263, GB/T 6728), cm units; ix, iy to three
// figures, the others to three or four.
TEST(PropertiesCommand, CatalogueRowsMatchTheirPublishedTables) {
    const struct {
        const char* section;
        double a, ix, iy, rx, ry, wx, wy;
    } published[] = {
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
    QStringList specs{"properties", "--json", "--units", "cm"};
    for (const auto& p : published) specs << QLatin1String(p.section);
    const BxqRun run = bxq(specs);
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const std::vector<QJsonObject> rows = jsonLines(run);
    ASSERT_EQ(rows.size(), std::size(published));
    for (size_t i = 0; i < rows.size(); ++i) {
        const auto& p = published[i];
        SCOPED_TRACE(p.section);
        EXPECT_EQ(rows[i].value("section").toString(), QLatin1String(p.section));
        const std::pair<const char*, double> figures[] = {{"A", p.a},   {"Ix", p.ix}, {"Iy", p.iy}, {"rx", p.rx},
                                                          {"ry", p.ry}, {"Wx", p.wx}, {"Wy", p.wy}};
        for (const auto& f : figures) EXPECT_NEAR(rows[i].value(f.first).toDouble(), f.second, 0.01 * f.second) << f.first;
        EXPECT_NEAR(rows[i].value("massPerMetre").toDouble(), 0.785 * rows[i].value("A").toDouble(), 1e-9 * p.a) << "7.85 t/m3";
    }
}

TEST(PropertiesCommand, JsonHasExactlyTheTableKeysInMillimetresAndCsvGoesOnPastBadTexts) {
    const std::vector<QJsonObject> rows = jsonLines(bxq({"properties", "--json", "--outline", "0,0,0,0;100,0,0,0;100,10,0,0;0,10,0,0"}));
    ASSERT_EQ(rows.size(), 1u);
    QStringList expected{"section", "A", "perimeter", "outerPerimeter", "massPerMetre", "xc", "yc", "Ix", "Iy", "Ixy",
                         "I1", "I2", "alpha", "rx", "ry", "Wx", "Wy", "WxTop", "WxBottom", "WyLeft", "WyRight", "Zx",
                         "Zy", "J", "Iw", "xs", "ys", "Asx", "Asy"};
    expected.sort();
    EXPECT_EQ(sortedKeys(rows[0]), expected);
    EXPECT_DOUBLE_EQ(rows[0].value("A").toDouble(), 1000);
    EXPECT_DOUBLE_EQ(rows[0].value("perimeter").toDouble(), 220);
    EXPECT_DOUBLE_EQ(rows[0].value("xc").toDouble(), 50);
    EXPECT_NEAR(rows[0].value("Zx").toDouble(), 2500, 1e-9);
    EXPECT_NEAR(rows[0].value("alpha").toDouble(), 90, 1e-9) << "axis 1 is the stiffer one, y";

    const BxqRun csv = bxq({"properties", "--csv", "-"}, "I20a\nX12*q\nHN400*200*8*13\n");
    EXPECT_EQ(csv.exitCode, 1);
    const QStringList lines = csv.lines();
    ASSERT_EQ(lines.size(), 3) << csv.out.constData();
    EXPECT_TRUE(lines[0].startsWith("section,A,perimeter,outerPerimeter,massPerMetre,"));
    EXPECT_TRUE(lines[1].startsWith("I20a,"));
    EXPECT_TRUE(lines[2].startsWith("HN400*200*8*13,"));
    EXPECT_EQ(csv.err.count('\n'), 1) << csv.err.constData();
    EXPECT_TRUE(csv.err.startsWith("bxq: ") && csv.err.contains("X12*q")) << csv.err.constData();
}

TEST(SectionCommands, BadInputEndsWithOneLineAndItsExitStatus) {
    QTemporaryDir empty;
    const char* square = "0,0,0,0;1,0,0,0;1,1,0,0";
    const struct {
        QStringList arguments;
        int exitCode;
        QString message;
        QString dataDir = BXQ_SHIPPED_DATA_DIR;
    } cases[] = {
        {{"parse"}, 2, "parse needs at least one TEXT"},
        {{"parse", "--bogus", "H1"}, 2, "bogus"},
        {{"frobnicate"}, 2, "unknown verb 'frobnicate'"},
        {{"parse", "--lang", "xx", "H1"}, 2, "no translation for language 'xx'"},
        {{"outline"}, 2, "outline takes one outline TEXT or --section SPEC"},
        {{"outline", square, "--section", "I20a"}, 2, "outline takes one"},
        {{"outline", square, "0,0,0,0;2,0,0,0;2,2,0,0"}, 2, "outline takes one"},
        {{"outline", "--colour", "red", square}, 2, "colour"},
        {{"outline", "--section", "nonsense"}, 1, ""},
        {{"outline", "--section", "H20*200*8*13"}, 1, ""},  // flanges meet
        {{"outline", "garbage"}, 1, ""},
        {{"outline", "0,0,0,0;10,0,0,7;10,10,0,0"}, 1, ""},  // a loop that does not close
        {{"outline", "0,0,5,50|||0,0,5,50"}, 1, ""},         // a hole as large as the outline
        {{"outline", "--section", "I20a"}, 1, "SKRSectionPolyDB.KDB", empty.path()},
        {{"outline", "--svg", empty.filePath("no/such/folder/x.svg"), square}, 1, "x.svg"},
        {{"properties", "--units", "in", "I20a"}, 2, "--units takes mm or cm, not 'in'"},
        {{"properties", "--json", "--csv", "I20a"}, 2, "properties takes --json or --csv, not both"},
        {{"properties"}, 2, "properties takes section specifications or --outline TEXT"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        const BxqRun run = bxq(c.arguments, {}, c.dataDir);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err.constData();
        EXPECT_TRUE(run.out.isEmpty()) << run.out.constData();
        EXPECT_EQ(run.err.count('\n'), 1) << run.err.constData();
        EXPECT_TRUE(run.err.startsWith("bxq: ")) << run.err.constData();
        EXPECT_TRUE(QString::fromUtf8(run.err).contains(c.message)) << run.err.constData();
    }
    // Without any verb the usage goes to standard error.
    const BxqRun none = bxq({});
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_TRUE(none.out.isEmpty());
    EXPECT_TRUE(none.err.startsWith("usage: bxq VERB")) << none.err.constData();
}
