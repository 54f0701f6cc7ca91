// The verbs of bxq as a user runs them. The section verbs on the shipped catalogue: parse, outline
// and properties (records, norm checks and figures as text, JSON lines, CSV, SVG); member, cut-plane
// and view (member solids trimmed by the cutting planes of a project, exported as STEP and STL,
// drawn with their planes); every verb's help; the exit status and one-line message of bad input
// (numbers past any building, outlines that are not one region) and of projects that cannot be read.
// The data verbs (catalogue, wpm and apm, user-section and face-steel) on small databases made here,
// their refusals and exit statuses, and the same verbs on the shipped databases; then under faults
// of their files, grouped by fault: a damaged row, a flipped byte of the shipped catalogue, a file
// held by another program, no permission (as an ordinary user), a full disk, many writers at once.
// A refused verb exits with 1, says in one line what went wrong and names the file, prints nothing
// on standard output and leaves the file byte for byte as it was, with no journal.
#include "section_data/SKRProjectSchema.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"

#include "vmp/VMPProjectModel.h"

#include "support/BxqProcess.h"
#include "support/CatalogueTables.h"
#include "support/DamagedDatabase.h"
#include "support/LockHolder.h"
#include "support/SmallDatabases.h"

#include <gtest/gtest.h>

#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <cmath>
#include <optional>
#include <tuple>

namespace {

using bxqtest::BxqRun;
using bxqtest::addRecord;
using bxqtest::contents;
using ndp::EnDBFieldKind;
using skr::section::SKRHotRollingSection;

// bxq on the shipped databases unless told otherwise; a held project is waited for 300 ms.
BxqRun bxq(const QStringList& arguments, const QByteArray& input = {}, const QString& dataDir = BXQ_SHIPPED_DATA_DIR,
           const QStringList& environment = {}, bool ordinaryUser = false) {
    return bxqtest::runBxq(arguments, {dataDir, input, QStringList{"BXQ_BUSY_TIMEOUT=300"} + environment, ordinaryUser});
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

QJsonDocument json(const QStringList& arguments) {
    const BxqRun run = bxq(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err.constData();
    return QJsonDocument::fromJson(run.out);
}

QJsonObject member(const QStringList& arguments) { return json(QStringList{"member", "--json"} + arguments).object(); }

// A 6 m welded H along X stored in the project (its id is 1 in a new project).
void addBeam(const QString& project, const QString& from = "0,0,0", const QString& to = "6000,0,0") {
    const BxqRun run = bxq({"member", "add", "--project", project, "--section", "H400*200*8*13", "--from", from, "--to", to});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    EXPECT_TRUE(run.out.endsWith(" 1\n")) << run.out.constData();
}

// A cutting plane of a stored member, relative to its head or tail frame.
BxqRun addPlane(const QString& project, const QString& member, const QString& end, const QString& origin,
                const QString& normal) {
    return bxq({"cut-plane", "add", "--project", project, "--id", member, end, "--origin", origin, "--normal", normal});
}

// What every refusal must show; reason, when given, is said besides the message.
void expectRefused(const BxqRun& run, int exitCode, const QString& message, const QString& reason = {}) {
    EXPECT_EQ(run.exitCode, exitCode) << run.err.constData();
    EXPECT_TRUE(run.out.isEmpty()) << run.out.constData();
    EXPECT_EQ(run.err.count('\n'), 1) << run.err.constData();
    EXPECT_TRUE(run.err.startsWith("bxq: ")) << run.err.constData();
    EXPECT_TRUE(QString::fromUtf8(run.err).contains(message) && QString::fromUtf8(run.err).contains(reason))
        << run.err.constData();
}

const double kWeldedHArea = 2 * 200 * 13 + (400 - 26) * 8;  // H400*200*8*13, mm2

// What a fillet of radius r turning the outline through theta adds or takes off.
double filletArea(double r, double theta) { return r * r * (std::tan(theta / 2) - theta / 2); }

struct Expected { size_t line; const char* path; QJsonValue value; };

QString shortest(double value) { return QString::number(value, 'g', QLocale::FloatingPointShortest); }

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

class BxqDataTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_data.isValid() && m_work.isValid());
        writeCatalogue(m_catalogue);
        bxqtest::writePlates(m_data.filePath("SysInfo.KDB"), {{1, 20.0, 157.0}, {1, 4.5, 35.325}, {2, 0.5, 3.925}});
    }
    BxqRun run(const QStringList& arguments, const QByteArray& input = {}) const { return bxq(arguments, input, m_data.path()); }
    QString text(const QStringList& arguments) const { return run(arguments).text(); }

    QTemporaryDir m_data, m_work;
    const QString m_catalogue = m_data.filePath("SKRSectionPolyDB.KDB"), m_project = m_work.filePath("project.KDB");
};

}  // namespace

// Every object carries exactly the record's keys (and the ball's when asked); the text form says the rules.
TEST(SectionCommands, ParseOutlineAndPropertiesGiveTheRecordsFiguresPicturesAndPublishedTables) {
    const struct { QStringList arguments; QByteArray input; size_t lines; std::vector<Expected> expected; } runs[] = {
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
        {{"I20a", "garbage text"}, {}, 2, {{0, "sectionType", 1}}},
    };
    for (const auto& run : runs) {
        SCOPED_TRACE(run.arguments.join(' ').toStdString());
        const BxqRun result = bxq(QStringList{"parse", "--json"} + run.arguments, run.input);
        ASSERT_EQ(result.exitCode, 0) << result.err.constData();
        const std::vector<QJsonObject> objects = jsonLines(result);
        ASSERT_EQ(objects.size(), run.lines);
        for (const Expected& e : run.expected) EXPECT_EQ(at(objects[e.line], e.path), e.value) << e.line << " " << e.path;
        for (const QJsonObject& object : objects) {
            QStringList keys{"groupType", "name", "norm", "paramCount", "params", "sectionType", "text", "typeCode",
                             "typeIndex", "valueText", "weldBallCode"};
            if (run.arguments.contains("--ball-expr")) keys.insert(keys.size() - 1, "weldBall");
            EXPECT_EQ(sortedKeys(object), keys);
            EXPECT_EQ(sortedKeys(object.value("norm").toObject()),
                      (QStringList{"failedRules", "matched", "rulesOk", "type", "valid", "values"}));
        }
    }
    const QString text = bxq({"parse", "B300*10*12"}).text();
    EXPECT_TRUE(text.startsWith("B300*10*12\n"));
    for (const char* part : {"300, 300, 10, 12", "all hold"}) EXPECT_TRUE(text.contains(part)) << qPrintable(text);

    // outline: figures of rectangles, rings, arcs and catalogue sections, and the picture.
    const double turn = M_PI / 2 - std::atan(1.0 / 6);  // the 1:6 flange slope of GB I-beams
    // I20a: h 200, b 100, d 7, t 11.4, r 9, r1 4.5 in the catalogue.
    const double i20a = 200 * 7 + 2 * 11.4 * 93 + 4 * filletArea(9, turn) - 4 * filletArea(4.5, turn);
    // Figures as name, value, tolerance.
    struct Case { QStringList arguments; std::vector<std::tuple<const char*, double, double>> figures;
                  QVector<double> bbox, centroid; double centroidTolerance; };
    const Case cases[] = {
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
        const std::vector<QJsonObject> objects = jsonLines(run);
        ASSERT_EQ(objects.size(), 1u);
        const QJsonObject& o = objects[0];
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

    // The picture has true arcs, filled with the holes cut.
    QTemporaryDir dir;
    for (const auto& [section, file] : {std::pair{"I20a", "i.svg"}, {"D89*4", "d.svg"}})
        ASSERT_EQ(bxq({"outline", "--section", section, "--svg", dir.filePath(file)}).exitCode, 0);
    const QString svg = contents(dir.filePath("i.svg")), tube = contents(dir.filePath("d.svg"));
    EXPECT_TRUE(svg.startsWith(QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\"")));
    // The picture's y axis points down: counter-clockwise arcs of the outline are drawn with sweep 0.
    // Toes counter-clockwise, roots clockwise; the tube's two loops of two half circles each, the hole the other way.
    for (const auto& [picture, part, count] : {std::tuple{svg, "A 4.5 4.5 0 0 0 ", 4}, {svg, "A 9 9 0 0 1 ", 4},
                                               {tube, " Z", 2}, {tube, "A 44.5 44.5 0 0 0 ", 2}, {tube, "A 40.5 40.5 0 0 1 ", 2}})
        EXPECT_EQ(picture.count(QLatin1String(part)), count) << part;
    EXPECT_TRUE(svg.contains(QStringLiteral("fill-rule=\"evenodd\"")));
    EXPECT_TRUE(svg.contains(QRegularExpression(QStringLiteral(">A = 3555.\\d+ mm2</text>")))) << svg.toStdString();

    // properties: catalogue rows match their published tables; JSON has the table keys; CSV goes on past bad texts.
    // A row of a published table (GB/T 706, GB/T 11263, GB/T 6728), cm units; ix, iy to three
    // figures, the others to three or four.
    const struct { const char* section; double a, ix, iy, rx, ry, wx, wy; } published[] = {
        {"I10", 14.345, 245, 33.0, 4.14, 1.52, 49.0, 9.72},         {"I14", 21.516, 712, 64.4, 5.76, 1.73, 102, 16.1},
        {"I20a", 35.578, 2370, 158, 8.15, 2.12, 237, 31.5},        {"I32a", 67.156, 11100, 460, 12.8, 2.62, 692, 70.8},
        {"[10", 12.748, 198, 25.6, 3.95, 1.41, 39.7, 7.80},         {"[14a", 18.516, 564, 53.2, 5.52, 1.70, 80.5, 13.0},
        {"[20a", 28.837, 1780, 128, 7.86, 2.11, 178, 24.2},        {"L50*5", 4.803, 11.21, 11.21, 1.53, 1.53, 3.13, 3.13},
        {"L100*10", 19.261, 179.51, 179.51, 3.05, 3.05, 25.06, 25.06},
        {"HW200*200*8*12", 63.53, 4720, 1600, 8.61, 5.02, 472, 160}, {"HN300*150*6.5*9", 46.78, 7210, 508, 12.4, 3.29, 481, 67.7},
        {"HN400*200*8*13", 83.37, 23500, 1740, 16.8, 4.56, 1170, 174}, {"D114*4", 13.82, 209.35, 209.35, 3.89, 3.89, 36.73, 36.73},
    };
    QStringList arguments{"properties", "--json", "--units", "cm"};
    for (const auto& p : published) arguments << QLatin1String(p.section);
    const BxqRun run = bxq(arguments);
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

    // JSON has exactly the table keys, in millimetres; CSV goes on past bad texts.
    const std::vector<QJsonObject> strip = jsonLines(bxq({"properties", "--json", "--outline", "0,0,0,0;100,0,0,0;100,10,0,0;0,10,0,0"}));
    ASSERT_EQ(strip.size(), 1u);
    QStringList expected{"section", "A", "perimeter", "outerPerimeter", "massPerMetre", "xc", "yc", "Ix", "Iy", "Ixy",
                         "I1", "I2", "alpha", "rx", "ry", "Wx", "Wy", "WxTop", "WxBottom", "WyLeft", "WyRight", "Zx",
                         "Zy", "J", "Iw", "xs", "ys", "Asx", "Asy"};
    expected.sort();
    EXPECT_EQ(sortedKeys(strip[0]), expected);
    // Axis 1 is the stiffer one, y: alpha 90.
    for (const auto& [key, value] :
         {std::pair<const char*, double>{"A", 1000}, {"perimeter", 220}, {"xc", 50}, {"Zx", 2500}, {"alpha", 90}})
        EXPECT_NEAR(strip[0].value(key).toDouble(), value, 1e-9) << key;

    const BxqRun csv = bxq({"properties", "--csv", "-"}, "I20a\nX12*q\nHN400*200*8*13\n");
    EXPECT_EQ(csv.exitCode, 1);
    const QList<QByteArray> lines = csv.out.trimmed().split('\n');
    ASSERT_EQ(lines.size(), 3) << csv.out.constData();
    for (const auto& [i, start] : {std::pair{0, "section,A,perimeter,outerPerimeter,massPerMetre,"}, {1, "I20a,"}, {2, "HN400*200*8*13,"}})
        EXPECT_TRUE(lines[i].startsWith(start)) << lines[i].constData();
    EXPECT_EQ(csv.err.count('\n'), 1) << csv.err.constData();
    EXPECT_TRUE(csv.err.startsWith("bxq: ") && csv.err.contains("X12*q")) << csv.err.constData();
}

TEST(SectionCommands, BadInputEndsWithOneLineAndItsExitStatusAndTouchesNoFile) {
    QTemporaryDir dir;
    const QString project = dir.filePath("model.KDB"), none = dir.filePath("none.KDB"), fresh = dir.filePath("p.KDB");
    addBeam(project);
    const QByteArray before = contents(project);
    const char* square = "0,0,0,0;1,0,0,0;1,1,0,0";
    const QStringList length{"H400*200*8*13", "--length", "100"}, toOrigin{"--origin", "0,0,0", "--normal", "0,0,1"};
    const struct { QStringList arguments; int exitCode; QString message; QString dataDir = BXQ_SHIPPED_DATA_DIR; } cases[] = {
        {{"parse"}, 2, "parse needs at least one TEXT"}, {{"parse", "--bogus", "H1"}, 2, "bogus"},
        {{"frobnicate"}, 2, "unknown verb 'frobnicate'"}, {{"view", "--project", project, "--view", "under"}, 2, ""},
        {{"parse", "--lang", "xx", "H1"}, 2, "no translation for language 'xx'"},
        {{"outline"}, 2, "outline takes one outline TEXT or --section"},
        {{"outline", square, "--section", "I20a"}, 2, "outline takes one"},
        {{"outline", square, "0,0,0,0;2,0,0,0;2,2,0,0"}, 2, "outline takes one"},
        {{"outline", "--colour", "red", square}, 2, "colour"}, {{"outline", "--section", "nonsense"}, 1, ""},
        {{"outline", "garbage"}, 1, ""}, {{"outline", "--section", "H20*200*8*13"}, 1, ""},  // flanges meet
        {{"outline", "0,0,0,0;10,0,0,7;10,10,0,0"}, 1, ""},  // a loop that does not close
        {{"outline", "0,0,5,50|||0,0,5,50"}, 1, ""},         // a hole as large as the outline
        {{"parse", "--json", "H" + QString(400, '9') + "*200*8*13"}, 1, "dimension 9999"},
        {{"parse", "TY400*7760*3e46*150*10"}, 1, "section 'TY400*7760*3e46*150*10': dimension 3e46 is beyond 1000000 mm"},
        {{"outline", "--section", "TY400*7760*3e46*150*10"}, 1, "dimension 3e46 is beyond 1000000 mm"},
        {{"outline", "0,0,1e200,50"}, 1, "loop 1 of the outline reaches beyond 1000000 mm"},
        {{"outline", "--json", "71,0,190,0,00,0;79,0,0,0;79,190,0,0;9,0,0,0;79,190,0,0;150,;0,200,0,0;0,190,0,0;71,190,0,0"},
         1, "the outline text cannot be read: loop 1, record 6: '' is not a number"},
        {{"outline", "--json", "0,0,0,0;10,10,0,0;10,0,0,0;0,10,0,0"}, 1, "loop 1 of the outline crosses itself near"},
        {{"outline", "--section", "I20a"}, 1, "SKRSectionPolyDB.KDB", dir.path()},  // no catalogue there
        {{"outline", "--svg", dir.filePath("no/such/folder/x.svg"), square}, 1, "x.svg"},
        {{"properties", "--units", "in", "I20a"}, 2, "--units takes mm or cm, not 'in'"},
        {{"properties", "--json", "--csv", "I20a"}, 2, "properties takes --json or --csv, not both"},
        {{"properties"}, 2, "or --outline TEXT"}, {{"member", "H400*200*8*13"}, 2, ""},  // no length
        {{"member", "H400*200*8*13", "--length", "-5"}, 2, ""}, {QStringList{"member", "--id", "3"} + length, 2, ""},
        {{"member", "XYZ", "--length", "100"}, 1, ""}, {{"member", "H20*200*8*13", "--length", "100"}, 1, ""},
        {QStringList{"member", "--project", none, "--id", "1"} + length, 1, ""},
        {{"cut-plane", "add", "--project", fresh, "--id", "1", "--head", "--origin", "0,0,0", "--normal", "0,0,0"}, 2, ""},
        {QStringList{"cut-plane", "add", "--project", fresh, "--id", "1"} + toOrigin, 2, ""},  // neither head nor tail
        {{"cut-plane", "remove", "--project", fresh}, 2, ""}, {{"member", "list", "--project", none}, 1, ""},
        {{"member", "add", "--project", project, "--section", "XYZ", "--from", "0,0,0", "--to", "1,0,0"}, 1, ""},
        {{"member", "add", "--project", project, "--section", "H20*200*8*13", "--from", "0,0,0", "--to", "1,0,0"}, 1, ""},
        {{"member", "add", "--project", project, "--section", "I20a", "--from", "5,5,5", "--to", "5,5,5"}, 2, ""},
        {{"member", "add", "--project", project, "--section", "I20a", "--from", "0,0", "--to", "5,5,5"}, 2, ""},
        {{"member", "remove", "--project", project, "7"}, 1, ""},
        {{"cut-plane", "move", "--project", project, "3"}, 2, ""},
        {{"member", "frobnicate", "--project", project}, 2, ""},
        {QStringList{"cut-plane", "add", "--project", project, "--id", "7", "--head"} + toOrigin, 1, ""},
        {{"cut-plane", "list", "--project", project, "--id", "7"}, 1, ""},
        {{"cut-plane", "move", "--project", project, "3", "--by", "10"}, 1, ""},
        {{"cut-plane", "remove", "--project", project, "3"}, 1, ""},
        {{"view", "--project", project, "--size", "10x10"}, 2, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        expectRefused(bxq(c.arguments, {}, c.dataDir), c.exitCode, c.message);
    }
    EXPECT_EQ(contents(project), before);
    EXPECT_FALSE(QFile::exists(none) || QFile::exists(fresh));
    // Without any verb the usage goes to standard error.
    const BxqRun usage = bxq({});
    EXPECT_EQ(usage.exitCode, 2);
    EXPECT_TRUE(usage.out.isEmpty());
    EXPECT_TRUE(usage.err.startsWith("usage: bxq VERB")) << usage.err.constData();
}

TEST(BxqMember, WeightFollowsTheSectionEveryVerbAnswersHelpAndStoredMembersAreTrimmedByTheirOwnPlanes) {
    // Catalogue sections with their radii weigh what the catalogue says per metre (within 1 %).
    for (const auto& [section, kgPerMetre] : {std::pair<const char*, double>{"HN400*200*8*13", 65.4}, {"I20a", 27.9},
                                           {"[20a", 22.6}, {"L100*80*10", 13.5}}) {
        SCOPED_TRACE(section);
        const QJsonObject o = member({section, "--length", "2000"});
        EXPECT_NEAR(o.value("weight").toDouble(), 2 * kgPerMetre, 0.02 * kgPerMetre);
        EXPECT_NEAR(o.value("weight").toDouble(), o.value("volume").toDouble() * 7.85e-6, 1e-9);
    }
    // A welded H is its exact plate area times the length, centred on the axis.
    const QJsonObject h = member({"H400*200*8*13", "--length", "6000"});
    EXPECT_NEAR(h.value("volume").toDouble(), kWeldedHArea * 6000, 1e-6 * kWeldedHArea * 6000);
    const QVector<double> box = numbers(h.value("bbox"));
    ASSERT_EQ(box.size(), 6);
    for (const auto& [i, value] : {std::pair{0, -100.0}, {4, 200.0}, {5, 6000.0}}) EXPECT_NEAR(box[i], value, 1e-6) << i;

    // Stored members are trimmed by their own planes, listed, moved, exported and removed.
    QTemporaryDir dir;
    const QString project = dir.filePath("model.KDB");
    const double full = kWeldedHArea * 6000;
    addBeam(project);
    ASSERT_EQ(bxq({"member", "add", "--project", project, "--section", "I20a", "--from", "0,3000,0", "--to",
                   "0,3000,4000", "--roll", "90"}).exitCode, 0);
    // A head cut 1000 in trims member 1 only.
    ASSERT_EQ(addPlane(project, "1", "--head", "0,0,1000", "0,0,1").exitCode, 0);
    const QStringList beam{"H400*200*8*13", "--length", "6000", "--project", project, "--id", "1"};
    EXPECT_NEAR(member(beam).value("volume").toDouble(), full * 5 / 6, 1e-6 * full);
    const double rolled = member({"I20a", "--length", "4000"}).value("volume").toDouble();
    EXPECT_NEAR(member({"I20a", "--length", "4000", "--project", project, "--id", "2"}).value("volume").toDouble(), rolled, 1e-6 * rolled);
    // Then a tail cut 1000 back from the end; the solid exported as STEP text and a binary STL of
    // 84 + 50 bytes per triangle.
    const BxqRun tail = addPlane(project, "1", "--tail", "0,0,-1000", "0,0,-1");
    ASSERT_EQ(tail.exitCode, 0) << tail.err.constData();
    EXPECT_EQ(tail.out, "added cutting plane to member 1 (tail), id 2\n");
    const QJsonObject cut = member(beam + QStringList{"--step", dir.filePath("m.step"), "--stl", dir.filePath("m.stl")});
    EXPECT_NEAR(cut.value("volume").toDouble(), full * 4 / 6, 1e-6 * full);
    EXPECT_NEAR(numbers(cut.value("bbox")).value(2), 1000, 1e-6);
    EXPECT_NEAR(numbers(cut.value("bbox")).value(5), 5000, 1e-6);
    EXPECT_TRUE(contents(dir.filePath("m.step")).startsWith("ISO-10303-21;"));
    const QByteArray stl = contents(dir.filePath("m.stl"));
    ASSERT_GT(stl.size(), 84);
    const quint32 triangles = *reinterpret_cast<const quint32*>(stl.constData() + 80);
    EXPECT_GT(triangles, 0u);
    EXPECT_EQ(stl.size(), 84 + 50 * static_cast<int>(triangles));

    // The list weighs each member after its cuts.
    const QStringList list{"member", "list", "--project", project, "--json"};
    const QJsonArray members = json(list).array();
    ASSERT_EQ(members.size(), 2);
    EXPECT_NEAR(members[0].toObject().value("weight").toDouble(), kWeldedHArea * 4000 * 7.85e-6, 1e-6);
    EXPECT_EQ(members[0].toObject().value("length").toDouble(), 6000);
    EXPECT_EQ(members[1].toObject().value("section").toString(), "I20a");
    EXPECT_EQ(members[1].toObject().value("roll").toDouble(), 90);
    EXPECT_NEAR(members[1].toObject().value("weight").toDouble(), 4 * 27.9, 0.02 * 4 * 27.9);

    // Moving the tail plane 500 further along its normal (towards the head) shortens the member.
    ASSERT_EQ(bxq({"cut-plane", "move", "--project", project, "2", "--by", "500"}).exitCode, 0);
    const QJsonArray planes = json({"cut-plane", "list", "--project", project, "--id", "1", "--json"}).array();
    ASSERT_EQ(planes.size(), 2);
    EXPECT_EQ(planes[1].toObject().value("end").toString(), "tail");
    EXPECT_EQ(numbers(planes[1].toObject().value("origin")), (QVector<double>{0, 0, -1500}));
    EXPECT_EQ(planes[1].toObject().value("offset").toDouble(), 500);
    EXPECT_NEAR(json(list).array()[0].toObject().value("weight").toDouble(), kWeldedHArea * 3500 * 7.85e-6, 1e-6);

    // Removing a member takes its planes with it.
    ASSERT_EQ(bxq({"member", "remove", "--project", project, "1"}).exitCode, 0);
    EXPECT_EQ(bxq({"cut-plane", "list", "--project", project}).out, "");
    EXPECT_EQ(json(list).array().size(), 1);

    // Every verb and sub-verb answers --help with an example.
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

TEST(BxqView, PlanesAreSizedSelectedAndDrawnAndProjectsThatCannotBeReadAreNamedAndLeftAsTheyWere) {
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

    // Projects that cannot be read are named and left as they were; the sound one is this view's.
    const QString damaged = dir.filePath("damaged.KDB");
    const QByteArray bytes = contents(project);
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
    // A folder in the file's place has no content.
    const struct { const char* name; QByteArray content; bool folder; } faults[] = {
        {"truncated.KDB", bytes.left(bytes.size() / 2), false}, {"garbage.KDB", QByteArray(8192, '\x5a'), false}, {"folder.KDB", {}, true}};
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


TEST_F(BxqDataTest, CatalogueFilterPerMetreFiguresAndPlateWeightsWithTheProjectsSectionsFirst) {
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

    // Per-metre figures and plate weights come one line per name, in shortest form.
    const std::pair<QStringList, QString> cases[] = {
        {{"wpm", "I20a", "HN400*200*8*13", "\u25A1150*150*6", "I99", "i20a"}, "27.929\n65.4\n26.402\n0\n0\n"},
        {{"apm", "I20a", "\u25A1150*150*6", "nothing"}, "0.742\n0.5794\n0\n"},
        // By class name or number; no such plate weighs 0, as the host's query answers.
        {{"face-steel", "热轧钢板", "20"}, "157\n"}, {{"face-steel", "1", "4.5"}, "35.325\n"},
        {{"face-steel", "冷轧钢板", "0.5"}, "3.925\n"}, {{"face-steel", "热轧钢板", "21"}, "0\n"},
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

    // The user sections of the project come first.
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
    EXPECT_EQ(std::make_pair(stored[1].subId, stored[2].subId), std::make_pair(2, 7));

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
    expectRefused(run(QStringList{"user-section", "update", "Z1", "--area", "1"} + project), 1, "Z1");

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

TEST_F(BxqDataTest, BadArgumentsAreUsageErrorsMissingOrCorruptFilesAreNamedAndWritersWaitTheirTurn) {
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

    // parse takes catalogue dimensions only for names that need them; missing or corrupt files are named.
    const QJsonObject i20a = QJsonDocument::fromJson(run({"parse", "--json", "I20a"}).out).object();
    EXPECT_EQ(i20a.value("params").toArray(), (QJsonArray{200, 100, 7, 11.4}));

    // Without any database, texts that need no catalogue parse as before, silently; a catalogue
    // name is parsed without dimensions and the missing file is said once.
    QTemporaryDir empty;
    const QString catalogue = empty.filePath("SKRSectionPolyDB.KDB"), plates = empty.filePath("SysInfo.KDB");
    const BxqRun welded = bxq({"parse", "--json", "H400*200*8*13", "D114*4"}, {}, empty.path());
    EXPECT_TRUE(welded.exitCode == 0 && welded.lines().size() == 2 && welded.err.isEmpty()) << welded.err.constData();
    const BxqRun names = bxq({"parse", "--json", "I20a", "[20a", "I20b"}, {}, empty.path());
    EXPECT_TRUE(names.exitCode == 0 && names.lines().size() == 3);
    EXPECT_EQ(names.err.count('\n'), 1);
    EXPECT_TRUE(QString::fromUtf8(names.err).contains(catalogue));
    EXPECT_TRUE(QJsonDocument::fromJson(names.out.split('\n').value(0)).object().value("params").toArray().isEmpty());

    // The verbs that need a file refuse, naming it, whether it is missing or not a database.
    const QString project = m_work.filePath("broken.KDB");
    const auto refused = [](const QString& dataDir, const QList<QPair<QStringList, QString>>& cases) {
        for (const auto& [arguments, file] : cases) {
            SCOPED_TRACE(arguments.join(' ').toStdString());
            expectRefused(bxq(arguments, {}, dataDir), 1, file);
        }
    };
    refused(empty.path(), {{{"wpm", "I20a"}, catalogue}, {{"catalogue"}, catalogue}, {{"face-steel", "1", "20"}, plates}});
    EXPECT_EQ(QString::fromUtf8(bxq({"apm", "I20a"}, {}, empty.path()).err).trimmed(),
              QStringLiteral("bxq: [%1]文件不存在 (looked in BXQ_DATA_DIR=%2)").arg(catalogue, empty.path()));

    for (const QString& path : {catalogue, plates, project}) {
        QFile garbage(path);
        ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
        garbage.write(path == project ? QByteArray("not a database at all, just some text that is long enough to be a header...")
                                      : QByteArray(4096, '\x5a'));
    }
    refused(empty.path(), {{{"wpm", "I20a"}, catalogue}, {{"apm", "-"}, catalogue}, {{"catalogue", "--json"}, catalogue},
                           {{"face-steel", "1", "20"}, plates}});

    // A project that cannot be opened is named too, and left as it was.
    const QByteArray before = contents(project);
    refused(m_data.path(), {{{"wpm", "--project", project, "I20a"}, project}, {{"user-section", "list", "--project", project}, project},
                            {addArguments(project, "Z1"), project}, {{"parse", "--project", project, "I20a"}, project}});
    EXPECT_EQ(contents(project), before);
    EXPECT_EQ(run({"wpm", "--project", m_work.filePath("none.KDB"), "I20a"}).exitCode, 1);
    EXPECT_FALSE(QFile::exists(m_work.filePath("none.KDB")));

    // Eight writers adding fifty sections each all wait their turn.
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
    QSet<QString> sectionNames;
    for (const SKRHotRollingSection& row : rows) {
        subs.insert(row.subId);
        sectionNames.insert(QString::fromStdWString(row.standardName));
    }
    EXPECT_EQ(subs.size(), writers * adds);
    EXPECT_EQ(sectionNames.size(), writers * adds);
}

// The shipped catalogue: the figures bxq prints are those of the file; with one byte of it
// flipped, catalogue and wpm either print exactly what the intact file gives or refuse naming it.
TEST(BxqShippedDatabases, PrintTheCatalogueFiguresAndAFlippedByteIsRefusedOrChangesNothing) {
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
    EXPECT_EQ(bxq(QStringList{"apm"} + names).text(), surfaces);
    QJsonArray dimensions;
    for (const wchar_t* field : {L"h", L"b", L"d", L"t"})
        for (const auto& param : catalogue.findByName(L"I20a").second.params)
            if (param.first == field) dimensions.append(param.second);
    EXPECT_EQ(QJsonDocument::fromJson(bxq({"parse", "--json", "I20a"}).out).object().value("params").toArray(), dimensions);

    const QStringList verbs[] = {{"catalogue", "--json"}, QStringList{"wpm"} + names};
    const BxqRun intact[] = {bxq(verbs[0]), bxq(verbs[1])};
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
            const BxqRun run = bxq(verbs[v], {}, dir.path());
            if (run.exitCode == 0) {
                EXPECT_EQ(run.out, intact[v].out);
            } else {
                ++refused;
                expectRefused(run, 1, "SKRSectionPolyDB.KDB");
            }
        }
    }
    // Flips in a page's unused space change nothing; the rest are content and must be noticed.
    EXPECT_GE(refused, positions);
}

TEST_F(BxqDataTest, ADamagedRowIsAnErrorForEveryVerbThatReadsIt) {
    ASSERT_TRUE(QFile::remove(m_catalogue));
    writeCatalogue(m_catalogue, "I20a");
    writeProject(m_project, "Z2(ZDY)");
    const QByteArray catalogueBefore = contents(m_catalogue), projectBefore = contents(m_project);
    for (const auto& [verb, file] : QList<QPair<QStringList, QString>>{
             {{"catalogue"}, m_catalogue}, {{"catalogue", "--type", "1", "--json"}, m_catalogue}, {{"wpm", "I20a"}, m_catalogue},
             {{"apm", "I20a"}, m_catalogue}, {{"parse", "--json", "I20a"}, m_catalogue},
             {{"user-section", "list", "--project", m_project}, m_project}, {{"wpm", "--project", m_project, "Z2(ZDY)"}, m_project}}) {
        SCOPED_TRACE(verb.join(' ').toStdString());
        expectRefused(run(verb), 1, file, "malformed");
    }
    // Rows that are sound still answer.
    EXPECT_EQ(run({"wpm", "I20b", "--project", m_project, "Z1(ZDY)"}).out, "31.069\n12.5\n");
    EXPECT_EQ(contents(m_catalogue), catalogueBefore);
    EXPECT_EQ(contents(m_project), projectBefore);
}

// A project held by another program (its write transaction: reading goes on, changes wait; every
// lock: reading waits too), without write permission (as an ordinary user), or on a full disk.
TEST_F(BxqDataTest, AChangeThatCannotBeWrittenSaysWhyAndLeavesTheProjectAsItWas) {
    const QStringList full{QStringLiteral("LD_PRELOAD=" BXQ_NOSPACE_SHIM), "ASAN_OPTIONS=verify_asan_link_order=0"};
    const QString fresh = m_work.filePath("fresh.KDB");
    expectRefused(bxq(addArguments(fresh, "Z1"), {}, m_data.path(), full), 1, fresh, "full");
    EXPECT_TRUE(QDir(m_work.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).isEmpty());
    // With space again the project is made as if never tried.
    EXPECT_EQ(run(addArguments(fresh, "Z1")).exitCode, 0);

    writeProject(m_project);
    const QByteArray before = contents(m_project);
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
        // The verbs that change a project, each on a section the project of writeProject has.
        for (const QStringList& verb : QList<QStringList>{addArguments(m_project, "Z9"),
                                                          {"user-section", "update", "Z1", "--project", m_project, "--weight", "2"},
                                                          {"user-section", "remove", "--project", m_project, "--type", "9", "--sub", "1"}}) {
            SCOPED_TRACE(verb.join(' ').toStdString());
            const BxqRun run = bxq(verb, {}, m_data.path(), fault.environment, fault.ordinaryUser);
            expectRefused(run, 1, m_project, fault.reason);
            if (fault.lock) { EXPECT_TRUE(run.err.contains("sqlite3 (process")) << run.err.constData(); }
        }
        const BxqRun read =
            bxq({"user-section", "list", "--project", m_project}, {}, m_data.path(), fault.environment, fault.ordinaryUser);
        if (fault.reads) {
            EXPECT_EQ(read.exitCode, 0) << read.err.constData();
            EXPECT_EQ(read.out.count('\n'), 3);
        } else {
            expectRefused(read, 1, m_project, "busy");
        }
        holder.reset();
        QFile::setPermissions(m_work.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        EXPECT_EQ(contents(m_project), before);
        EXPECT_TRUE(QDir(m_work.path()).entryList({"*-journal"}, QDir::Files | QDir::Hidden).isEmpty());
    }
}
