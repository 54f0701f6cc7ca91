// The specification parser: normalising, splitting off the type code, deciding type, group and
// position in the group, reading and completing the dimensions, refusing sizes beyond the bound;
// its static helpers (the group of every type value, welded marks, values, key=value texts); and
// ball nodes parsed with their expression (the named dimensions, the result code, the variables
// the expression adds, and the parameters rebuilt from them). Section norms: the welded and ball
// formats with their captures and completions, the order in which entries are tried, the validity
// test, matching by hand against the expressions, and catalogue norms built from parameter lists.
// Rule evaluation: declaring matched values as script variables, judging every rule of a norm,
// refusing broken scripts, evaluating expressions, and stopping scripts that do not finish.
// Parsed sections by parameter code: every type printed from distinct values reads back under the
// same codes, the codes agree with the shipped parameter table, and refusals. Printed names of
// short forms, with the keys in any order and spaces and empty pieces, read back too. And the
// section dialog's parameter manager on the shipped section database: parameters and defaults,
// the specification text, the insertion point, catalogue positioning, and the check with its
// messages and the offending parameter.
#include "plugin/BXQTranslations.h"
#include "section_spec/GSectionPolyInfo.h"
#include "section_spec/HotRollingSectionNormParser.h"
#include "section_spec/SKRPolyParamManger.h"
#include "section_spec/SKRScriptEvaluator.h"
#include "section_spec/SKRSectionParams.h"
#include "section_spec/SKRSectionPolyInfoParser.h"
#include "section_spec/SKRSectionTypeTable.h"
#include "section_spec/WeldSectionNormParser.h"

#include "data/ShippedRepository.h"
#include "section_spec/QtPrinters.h"
#include "support/ChineseAfterwards.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTextStream>

#include <algorithm>
#include <climits>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

using namespace skr::section;

namespace {

using BallValues = std::map<std::wstring, double>;

struct Case { const char *text, *name, *typeCode, *valueText; int type, group, typeIndex; QVector<double> params; };

using Values = QMap<QString, QString>;

Values matchedValues(SectionNormParser& parser) {
    Values values;
    parser.namedValues(values);
    return values;
}

// "h=400 b=200" as a map.
Values valuesOf(const char* pairs) {
    Values values;
    for (const QString& pair : QString::fromLatin1(pairs).split(QLatin1Char(' '), Qt::SkipEmptyParts))
        values.insert(pair.section(QLatin1Char('='), 0, 0), pair.section(QLatin1Char('='), 1));
    return values;
}

// Short enough to keep the suite quick, long enough for any honest rule.
constexpr int kShortTimeoutMs = 200;
// Far above kShortTimeoutMs; only catches an evaluation that is never stopped.
constexpr qint64 kGenerousBoundMs = 60000;

using Params = QMap<QString, double>;

std::string describe(const Params& params) {
    std::string out;
    for (auto it = params.constBegin(); it != params.constEnd(); ++it)
        out += it.key().toStdString() + "=" + QString::number(it.value()).toStdString() + " ";
    return out;
}

using Given = std::vector<std::pair<const char*, const char*>>;

QString paramText(const Given& given) {
    QStringList pieces;
    for (const auto& pair : given)
        pieces << QStringLiteral("%1=%2").arg(QString::fromLatin1(pair.first), QString::fromLatin1(pair.second));
    return pieces.join(QLatin1Char(';'));
}

class ParamManager : public ShippedRepositoryTest {};

QStringList codes(const SKRPolyParamManger& manager) {
    QStringList out;
    for (int i = 0; i < manager.paramCount(); ++i) out << manager.paramDef(i).paramCode;
    return out;
}

}  // namespace

TEST(ParseRecords, EveryTextAndBallExpressionGivesEveryFieldOfTheRecord) {
    const Case rows[] = {
        // Standard, bare and unknown texts.
        {"hn 400*200*8*13", "HN400*200*8*13", "HN", "400*200*8*13", 7, 1, 6, {400, 200, 8, 13}},
        {"L100*10", "L100*10", "L", "100*10", 3, 1, 2, {100, 10}},
        {"L100*80*10", "L100*80*10", "L", "100*80*10", 4, 1, 3, {100, 80, 10}},
        {"D20", "D20", "D", "20", 6, 1, 5, {20}}, {"D89*4", "D89*4", "D", "89*4", 5, 1, 4, {89, 4}},
        {"c 200*70*20*2", "C200*70*20*2", "C", "200*70*20*2", 8, 1, 7, {200, 70, 20, 2}},
        {"Z270*80*8*3", "Z270*80*8*3", "Z", "270*80*8*3", 9, 1, 8, {270, 80, 8, 3}},
        {"TN200*200*8*12", "TN200*200*8*12", "TN", "200*200*8*12", 10, 1, 9, {200, 200, 8, 12}},
        {"□200*100*8", "□200*100*8", "□", "200*100*8", 1011, 1, 10, {200, 100, 8}},
        {"BS300", "BS300", "BS", "300", 1012, 1, 11, {300}},
        {"WS300*8", "WS300*8", "WS", "300*8", 1013, 1, 12, {300, 8}},
        {"wsr 300*8", "WSR300*8", "WSR", "300*8", 1013, 1, 12, {300, 8}},
        // I and channel take their dimensions only from a catalogue, and none is registered.
        {"i20a", "I20a", "I", "20a", 1, 1, 0, {}}, {"[ 20b", "[20b", "[", "20b", 2, 1, 1, {}},
        {"I400*200", "I400*200", "I", "400*200", 1, 1, 0, {}},
        // An angle without one or two stars is invalid but stays in the standard group.
        {"L100", "L100", "L", "100", -1, 1, -1, {100}},
        {"L100*80*10*5", "L100*80*10*5", "L", "100*80*10*5", -1, 1, -1, {100, 80, 10, 5}},
        // A star makes bare dimensions; a single number is plain.
        {"200*300", "200*300", "", "200*300", 0, 0, 0, {200, 300}},
        {" 200 * 300 ", "200*300", "", "200*300", 0, 0, 0, {200, 300}}, {"250", "250", "", "250", 6001, 0, -1, {250}},
        {"7自定义截面", "7自定义截面", "", "7自定义截面", 6001, 0, -1, {0}},
        // The code ends at the first digit within three characters, else it is three long.
        {"AB1", "AB1", "AB", "1", -1, -1, -1, {1}}, {"ABC12", "ABC12", "ABC", "12", -1, -1, -1, {12}},
        {"ABCD5", "ABCD5", "ABC", "D5", -1, -1, -1, {0}}, {"H", "H", "H", "", 11, 2, 0, {0}},
        {"HN", "HN", "", "", 6001, 0, -1, {0}},  // two characters, no digit: read as a bare number
        {"", "", "", "", 6001, 0, -1, {0}},
        // Dimensions that are not numbers read as zero.
        {"H400*abc*8*13", "H400*ABC*8*13", "H", "400*ABC*8*13", 11, 2, 0, {400, 0, 8, 13, 13}},
        {"C200**20*2", "C200**20*2", "C", "200**20*2", 8, 1, 7, {200, 0, 20, 2}},
        {"X100*10", "X100*10", "X", "100*10", -1, -1, -1, {100, 10}},
        // Welded short forms are completed and norm-only types take their values in name order.
        {"H400*200*8*13", "H400*200*8*13", "H", "400*200*8*13", 11, 2, 0, {400, 200, 8, 13, 13}},
        {"H400*200*8*13*12", "H400*200*8*13*12", "H", "400*200*8*13*12", 11, 2, 0, {400, 200, 8, 13, 12}},
        {"H400.5*200*8*13", "H400.5*200*8*13", "H", "400.5*200*8*13", 11, 2, 0, {400.5, 200, 8, 13, 13}},
        {"H400*200/300*8*10", "H400*200/300*8*10", "H", "400*200/300*8*10", 12, 2, 1, {400, 200, 300, 8, 10, 10}},
        {"H400*200/300*8*10*12", "H400*200/300*8*10*12", "H", "400*200/300*8*10*12", 12, 2, 1,
         {400, 200, 300, 8, 10, 12}},
        {"B300*10*12", "B300*10*12", "B", "300*10*12", 13, 2, 2, {300, 300, 10, 12}},
        {"B300*200*10*12", "B300*200*10*12", "B", "300*200*10*12", 13, 2, 2, {300, 200, 10, 12}},
        {"HD300*10", "HD300*10", "HD", "300*10", 14, 2, 3, {300, 10}},
        {"H400*200*8*13+H300*150*6*10", "H400*200*8*13+H300*150*6*10", "H", "400*200*8*13+H300*150*6*10", 15, 2,
         4, {400, 200, 8, 13, 13, 300, 150, 6, 10, 10}},
        {"H400*200*8*13*12+H300*150*6*10*9", "H400*200*8*13*12+H300*150*6*10*9", "H",
         "400*200*8*13*12+H300*150*6*10*9", 15, 2, 4, {400, 200, 8, 13, 12, 300, 150, 6, 10, 9}},
        {"T400*200*10*12", "T400*200*10*12", "T", "400*200*10*12", 16, 2, 5, {400, 200, 10, 12}},
        // The welded T has no completion of its own in the parser: its short form keeps three values.
        {"T400*200*10", "T400*200*10", "T", "400*200*10", 16, 2, 5, {400, 200, 10}},
        {"H(400~300)*200*8*10", "H400~300*200*8*10", "H", "400~300*200*8*10", 17, 2, 6, {400, 300, 200, 8, 10, 10}},
        {"H(400~300)*200*8*10*12", "H400~300*200*8*10*12", "H", "400~300*200*8*10*12", 17, 2, 6,
         {400, 300, 200, 8, 10, 12}},
        {"D500~400*10", "D500~400*10", "D", "500~400*10", 18, 2, 7, {500, 400, 10}},
        // B1, B2, b1, b2, t1, t2: capitals sort first.
        {"BB400*300*200*150*10*12", "BB400*300*200*150*10*12", "BB", "400*300*200*150*10*12", 19, 2, 8,
         {400, 300, 200, 150, 10, 12}},
        // Written h1/h2*b*tw*t1*t2, held as b, h1, h2, t1, t2, tw.
        {"H400/300*200*8*10*12", "H400/300*200*8*10*12", "H", "400/300*200*8*10*12", 20, 2, 9,
         {200, 400, 300, 10, 12, 8}},
        {"TY400*300*200*150*10", "TY400*300*200*150*10", "TY", "400*300*200*150*10", 21, 2, 10,
         {400, 300, 200, 150, 10}},
        // User sections end in ZDY and custom sections start with the keyword. No user catalogue is
        // registered, so a user name is not found: type -1 in the standard group.
        {"Z270*80*8*3(ZDY)", "Z270*80*8*3(ZDY)", "ZDY", "270*80*8*3", -1, 1, -1, {270, 80, 8, 3}},
        {"my z 270 * 80(ZDY)", "myz270*80(ZDY)", "ZDY", "270*80", -1, 1, -1, {270, 80}},
        {"ABC(ZDY)", "ABC(ZDY)", "ZDY", "", -1, 1, -1, {0}},
        // At the start it is no user section: the parentheses go and "ZDY" is an unknown code.
        {"(ZDY)H400*200*8*13", "ZDYH400*200*8*13", "ZDY", "H400*200*8*13", -1, 1, -1, {0, 200, 8, 13}},
        {"(ZDY)", "ZDY", "ZDY", "", -1, 1, -1, {0}}, {"自定义截面7", "自定义截面7", "自定义截面", "7", 7007, 3, -1, {7}},
        {"自定义截面 12", "自定义截面12", "自定义截面", "12", 7012, 3, -1, {12}}, {"自定义截面", "自定义截面", "自定义截面", "", 7000, 3, -1, {0}},
        {"自定义截面abc", "自定义截面ABc", "自定义截面", "ABc", 7000, 3, -1, {0}},
    };
    for (const Case& row : rows) {
        SCOPED_TRACE(row.text);
        // A ball expression changes nothing of a text that is no ball.
        const QString text = QString::fromUtf8(row.text);
        const bool ball = row.type == stBoltBall || row.type == stWeldBall;
        SKRSectionPolyInfoParser withExpression;
        EXPECT_TRUE(ball || withExpression.parser(text, QStringLiteral("var k = 1; 9")).values.empty());
        for (const GSectionPolyInfo& info : {parse(text), ball ? parse(text) : withExpression.sectionPolyInfo()}) {
            EXPECT_EQ(info.name, QString::fromUtf8(row.name));
            EXPECT_EQ(info.typeCode, QString::fromUtf8(row.typeCode));
            EXPECT_EQ(info.valueText, QString::fromUtf8(row.valueText));
            EXPECT_EQ(info.sectionType, row.type);
            EXPECT_EQ(info.groupType, row.group);
            EXPECT_EQ(info.typeIndex, row.typeIndex);
            EXPECT_EQ(info.params, row.params);
            EXPECT_EQ(info.paramCount, row.params.size());
            EXPECT_EQ(info.weldBallCode, 0);
        }
    }

    // Ball nodes: the expression sees the dimensions and gives the code and its numeric variables.
    // Code -1: the expression failed.
    const struct {
        const char *text, *expression; int type, code; BallValues values; QVector<double> params;
    } balls[] = {
        {"WS300*8", "D > 2*t ? 1 : 2", stWeldBall, 1, {{L"D", 300}, {L"t", 8}}, {300, 8}},
        {"WS16*8", "D > 2*t ? 1 : 2", stWeldBall, 2, {{L"D", 16}, {L"t", 8}}, {16, 8}},
        {"WSR300*8", "D - 10*t", stWeldBall, 220, {{L"D", 300}, {L"t", 8}}, {300, 8}},
        {"ws 300 * 8", "t", stWeldBall, 8, {{L"D", 300}, {L"t", 8}}, {300, 8}},
        // A bolt ball has no thickness to offer.
        {"BS300", "D == 300 ? 3 : 4", stBoltBall, 3, {{L"D", 300}}, {300}},
        // Numeric variables join the values; the parameters follow key order, capitals first.
        {"WS300*8", "var area = D * t; var note = 'thin'; 5", stWeldBall, 5,
         {{L"D", 300}, {L"area", 2400}, {L"t", 8}}, {300, 2400, 8}},
        {"WS300*8", "undefinedName * 2", stWeldBall, -1, {{L"D", 300}, {L"t", 8}}, {300, 8}},
        {"WS300*8", "throw 1", stWeldBall, -1, {{L"D", 300}, {L"t", 8}}, {300, 8}},
        {"WS300*8", "D +", stWeldBall, -1, {{L"D", 300}, {L"t", 8}}, {300, 8}},
        {"WS300*8", "null.x", stWeldBall, -1, {{L"D", 300}, {L"t", 8}}, {300, 8}},
        {"WS300*8", "7", stWeldBall, 7, {{L"D", 300}, {L"t", 8}}, {300, 8}},
        // Without an expression only the diameter is named, and no earlier code is kept.
        {"WS300*8", "", stWeldBall, 0, {{L"D", 300}}, {300}}, {"WSR300*8", "", stWeldBall, 0, {{L"D", 300}}, {300}},
        {"BS300", "", stBoltBall, 0, {{L"D", 300}}, {300}},
    };
    SKRSectionPolyInfoParser parser;  // one parser for all: each text is parsed anew
    for (const auto& row : balls) {
        SCOPED_TRACE(std::string(row.text) + " / " + row.expression);
        const SKRWeldBallInfo ball = parser.parser(QString::fromLatin1(row.text), QString::fromLatin1(row.expression));
        EXPECT_EQ(ball.code, row.code);
        EXPECT_EQ(ball.values, row.values);
        const GSectionPolyInfo info = parser.sectionPolyInfo();
        EXPECT_EQ(info.sectionType, row.type);
        EXPECT_EQ(info.groupType, sgStandard);
        EXPECT_EQ(info.weldBallCode, row.code);
        EXPECT_EQ(info.params, row.params);
        EXPECT_EQ(info.paramCount, row.params.size());
    }
}

// Welded short forms are completed only at their exact count; code H is decided by the separators,
// plus first, then tilde, then slash; spaces and parentheses go and all but the last character is
// upper-cased. A null name, a type 0 or no parameters are not checked.
TEST(ParseTexts, ShortFormsSeparatorsNormalisationTypeCodesGroupsBoundsAndEachLanguagesKeyword) {
    const struct { const char* text; const char* name; int type; QVector<double> params; } rows[] = {
        {"H400*200*8", nullptr, 11, {400, 200, 8}}, {"H400*200*8*13*12*11", nullptr, 11, {400, 200, 8, 13, 12, 11}},
        {"B300*10", nullptr, 13, {300, 10}},        {"B300*200*10*12*5", nullptr, 13, {300, 200, 10, 12, 5}},
        {"H400*200/300*8", nullptr, 12, {400, 200, 300, 8}}, {"H(400~300)*200*8", nullptr, 17, {400, 300, 200, 8}},
        {"HD300*10*5", nullptr, 14, {300, 10, 5}}, {"H400*200*8+H300*150*6", nullptr, 15, {400, 200, 8, 300, 150, 6}},
        {"H1*2*3+4~5/6", nullptr, 15, {}}, {"H1*2/3+4", nullptr, 15, {}}, {"H1~2/3*4", nullptr, 17, {}},
        {"H1*2/3", nullptr, 12, {}},       {"H1*2*3", nullptr, 11, {}},
        {"h 400 * 200 * 8 * 13", "H400*200*8*13", 11, {}}, {"\th400*200*8*13\n", "H400*200*8*13", 11, {}},
        {"hn400*200*8*13", "HN400*200*8*13", 7, {}},       {"i20a", "I20a", 1, {}}, {"i20A", "I20A", 1, {}},
        {"h(400~300)*200*8*10", "H400~300*200*8*10", 17, {}}, {"((c))200", "C200", 0, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const GSectionPolyInfo info = parse(QString::fromLatin1(row.text));
        if (row.name) {
            EXPECT_EQ(info.name, QString::fromLatin1(row.name));
        }
        if (row.type) {
            EXPECT_EQ(info.sectionType, row.type);
            EXPECT_EQ(info.groupType, SKRSectionPolyInfoParser::polyGroupType(row.type));
        }
        if (!row.params.isEmpty()) {
            EXPECT_EQ(info.params, row.params);
        }
    }

    // Every type code gives its type and group.
    const struct { const char* code; int type; int group; } codes[] = {
        {"I", 1, 1},     {"[", 2, 1},     {"D", 5, 1},     {"HW", 7, 1},   {"HM", 7, 1},    {"HT", 7, 1},
        {"HN", 7, 1},    {"HP", 7, 1},    {"C", 8, 1},     {"Z", 9, 1},    {"TN", 10, 1},   {"TW", 10, 1},
        {"TM", 10, 1},   {"□", 1011, 1},  {"BS", 1012, 1}, {"WS", 1013, 1}, {"WSR", 1013, 1}, {"H", 11, 2},
        {"T", 16, 2},    {"B", 13, 2},    {"HD", 14, 2},   {"X", -1, -1},  {"HX", -1, -1},  {"WSX", -1, -1},
    };
    for (const auto& row : codes) {
        const QString text = QString::fromUtf8(row.code) + QStringLiteral("100*50*5*8");
        SCOPED_TRACE(text.toStdString());
        const GSectionPolyInfo info = parse(text);
        EXPECT_EQ(info.typeCode, QString::fromUtf8(row.code));
        EXPECT_EQ(info.valueText, QStringLiteral("100*50*5*8"));
        EXPECT_EQ(info.sectionType, row.type);
        EXPECT_EQ(info.groupType, row.group);
    }

    // The group analysed answers for the type code, not for the norm's result.
    const struct { const char* text; EnSKRSectionGroupType codeGroup; EnSKRSectionGroupType recordGroup; } groups[] = {
        {"D500~400*10", sgStandard, sgWelded},  // code "D", but the welded norm decides
        {"WS300*8", sgStandard, sgStandard},  {"HD300*10", sgWelded, sgWelded},
        {"BB400*300*200*150*10*12", sgInvalid, sgWelded},
        {"200*300", sgNone, sgNone},          {"X1", sgInvalid, sgInvalid},
        {"自定义截面7", sgCustom, sgCustom},  {"Z1(ZDY)", sgStandard, sgStandard},
    };
    for (const auto& row : groups) {
        SCOPED_TRACE(row.text);
        SKRSectionPolyInfoParser parser;
        parser.parser(QString::fromUtf8(row.text));
        EXPECT_EQ(parser.analyseGroupType(), row.codeGroup);
        EXPECT_EQ(parser.sectionPolyInfo().groupType, row.recordGroup);
    }

    // Dimensions beyond the bound are refused as unreadable texts.
    const QString huge = QString(400, QLatin1Char('9'));
    const struct { QString text, dimension; } cases[] = {
        {"TY400*7760*3e46*150*10", "3e46"}, {"H" + huge + "*200*8*13", huge}, {"D1000000.5", "1000000.5"}};
    for (const auto& refused : cases) {
        SCOPED_TRACE(refused.text.toStdString());
        const GSectionPolyInfo info = parse(refused.text);
        EXPECT_EQ(info.sectionType, -1);
        EXPECT_EQ(info.groupType, -1);
        for (double value : info.params) EXPECT_EQ(value, 0.0);
        EXPECT_EQ(SKRSectionPolyInfoParser::outOfRangeDimension(refused.text), refused.dimension);
        EXPECT_TRUE(SKRSectionPolyInfoParser::rangeRefusal(refused.text).contains(refused.text.left(20)));
    }
    // The bound itself is a size still taken.
    EXPECT_EQ(parse("D1000000").params, QVector<double>{1e6});
    EXPECT_TRUE(SKRSectionPolyInfoParser::rangeRefusal("H400*200*8*13").isEmpty());

    // Each interface language recognises only its own custom-section keyword.
    ASSERT_EQ(SKRSectionPolyInfoParser::customSectionKeyword(), QStringLiteral("自定义截面"));
    GSectionPolyInfo info = parse(QStringLiteral("CustomSection7"));
    EXPECT_EQ(info.sectionType, stInvalid);
    EXPECT_EQ(info.groupType, sgInvalid);

    bxqtest::ChineseAfterwards chinese;
    ASSERT_TRUE(BXQInstallTranslation(QStringLiteral("en")));
    ASSERT_EQ(SKRSectionPolyInfoParser::customSectionKeyword(), QStringLiteral("CustomSection"));
    info = parse(QStringLiteral("CustomSection7"));
    EXPECT_EQ(info.typeCode, QStringLiteral("CustomSection"));
    EXPECT_EQ(info.valueText, QStringLiteral("7"));
    EXPECT_EQ(info.sectionType, 7007);
    EXPECT_EQ(info.groupType, sgCustom);
    // The keyword is found whatever its case; the code is the keyword itself.
    info = parse(QStringLiteral("customsection 9"));
    EXPECT_EQ(info.typeCode, QStringLiteral("CustomSection"));
    EXPECT_EQ(info.sectionType, 7009);
    info = parse(QStringLiteral("自定义截面7"));
    EXPECT_NE(info.sectionType, 7007);
    EXPECT_NE(info.groupType, sgCustom);
}

TEST(ParserValue, EverySeparatorStartsAValueBadPiecesReadAsZeroAndKeysKeepTheirLastValue) {
    const struct { const char* text; char separator; QList<double> values; } rows[] = {
        {"200**8", '*', {200, 0, 8}}, {"", '*', {0}},       {"*", '*', {0, 0}},
        {" 12 * 3.5 ", '*', {12, 3.5}},  {"400.5*.5*8.", '*', {400.5, 0.5, 8}},
        {"nan*inf*-inf*NaN", '*', {0, 0, 0, 0}}, {"abc*12a", '*', {0, 0}},
        {"1/2/3", '/', {1, 2, 3}},    {"1*2", '/', {0}},    {"-5*1e3", '*', {-5, 1000}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const QString text = QString::fromLatin1(row.text);
        const QList<double> values = SKRSectionPolyInfoParser::parserValue(text, QLatin1Char(row.separator));
        EXPECT_EQ(values, row.values);
        EXPECT_EQ(values.size(), text.count(QLatin1Char(row.separator)) + 1);
        for (double value : values) EXPECT_TRUE(std::isfinite(value));
    }

    // Key=value texts: keys are listed as written and held once, with the last value up to the
    // next equals sign.
    QList<QString> keys;
    QMap<QString, QString> map = SKRSectionPolyInfoParser::parserParamEqualString(
        QStringLiteral("h=400;b=200;h=500"), QStringLiteral(";"), keys);
    EXPECT_EQ(keys, (QList<QString>{"h", "b", "h"}));
    EXPECT_EQ(map, (QMap<QString, QString>{{"h", "500"}, {"b", "200"}}));
    keys.clear();
    map = SKRSectionPolyInfoParser::parserParamEqualString(QStringLiteral("a=1=2;b"), QStringLiteral(";"), keys);
    EXPECT_EQ(keys, (QList<QString>{"a", "b"}));
    EXPECT_EQ(map, (QMap<QString, QString>{{"a", "1"}, {"b", ""}}));
}

// Every type value from -100 to 7100 has the group of its range; welded and ball types have their
// mark, the weld ball an R for any rib, and others none.
TEST(TypeHelpers, EveryTypeHasTheGroupOfItsRangeAndWeldedAndBallTypesTheirMark) {
    const struct { int first; int last; EnSKRSectionGroupType group; } ranges[] = {
        {-100, -1, sgInvalid},   {0, 0, sgNone},         {1, 10, sgStandard},     {11, 21, sgWelded},
        {22, 1010, sgInvalid},   {1011, 1013, sgStandard}, {1014, 6000, sgInvalid}, {6001, 6001, sgNone},
        {6002, 6999, sgInvalid}, {7000, 7100, sgCustom},
    };
    for (const auto& range : ranges) {
        for (int type = range.first; type <= range.last; ++type) {
            SCOPED_TRACE(type);
            EXPECT_EQ(SKRSectionPolyInfoParser::polyGroupType(type), range.group);
        }
    }
    const struct { int type; const char* mark; } rows[] = {
        {11, "H"}, {12, "H"},  {13, "B"}, {14, "HD"}, {15, "H"},    {16, "T"},    {17, "H"},
        {18, "D"}, {19, "BB"}, {20, "H"}, {21, "TY"}, {1012, "BS"}, {1013, "WS"},
    };
    QList<int> others{INT_MIN, 7000, 7001, 6001, INT_MAX};
    for (int type = -3; type <= 1100; ++type) others << type;
    for (const auto& row : rows) others.removeAll(row.type);
    for (int rib : {0, 1, 7, -1, INT_MAX, INT_MIN}) {
        SCOPED_TRACE(rib);
        for (const auto& row : rows) {
            const QString mark = QLatin1String(row.mark) + QLatin1String(row.type == 1013 && rib != 0 ? "R" : "");
            EXPECT_EQ(SKRSectionPolyInfoParser::weldingSteelMark(row.type, rib), mark) << row.type;
        }
        for (int type : others) EXPECT_TRUE(SKRSectionPolyInfoParser::weldingSteelMark(type, rib).isEmpty()) << type;
    }
}

// The first entry whose format matches decides the type; the values are those after completion.
TEST(WeldedNormFormats, EachFormatAcceptsItsTextAndCapturesTheNamedValuesOthersAreRefusedValidityIsTheKey) {
    const struct { const char* text; int type; const char* values; } rows[] = {
        {"H400*200*8*13", 11, "h=400 b=200 tw=8 t1=13 t2=13"}, {"H400*200*8*13*12", 11, "h=400 b=200 tw=8 t1=13 t2=12"},
        // Values need a leading digit and may end with a point.
        {"H400*200*8.*13", 11, "h=400 b=200 tw=8. t1=13 t2=13"},
        {"H400.5*200*8*13", 11, "h=400.5 b=200 tw=8 t1=13 t2=13"},
        {"H400*200/300*8*10", 12, "h=400 b1=200 b2=300 tw=8 t1=10 t2=10"},
        {"H400*200/300*8*10*12", 12, "h=400 b1=200 b2=300 tw=8 t1=10 t2=12"},
        {"B300*10*12", 13, "b1=300 b2=300 t1=10 t2=12"}, {"B300*200*10*12", 13, "b1=300 b2=200 t1=10 t2=12"},
        {"HD300*10", 14, "d=300 t=10"},
        {"H400*200*8*13+H300*150*6*10", 15, "h1=400 b1=200 tw1=8 t1=13 t2=13 h2=300 b2=150 tw2=6 t3=10 t4=10"},
        {"H400*200*8*13*12+H300*150*6*10", 15, "h1=400 b1=200 tw1=8 t1=13 t2=12 h2=300 b2=150 tw2=6 t3=10 t4=10"},
        {"H400*200*8*13+H300*150*6*10*9", 15, "h1=400 b1=200 tw1=8 t1=13 t2=13 h2=300 b2=150 tw2=6 t3=10 t4=9"},
        {"H400*200*8*13*12+H300*150*6*10*9", 15, "h1=400 b1=200 tw1=8 t1=13 t2=12 h2=300 b2=150 tw2=6 t3=10 t4=9"},
        {"T400*200*10", 16, "h=400 b=200 t1=10 t2=10"}, {"T400*200*10*12", 16, "h=400 b=200 t1=10 t2=12"},
        {"H(400~300)*200*8*10", 17, "h1=400 h2=300 b=200 tw=8 t1=10 t2=10"},
        {"H(400~300)*200*8*10*12", 17, "h1=400 h2=300 b=200 tw=8 t1=10 t2=12"}, {"BS300", 1012, "D=300"},
        {"WS300*8", 1013, "D=300 t=8"}, {"WSR300*8", 1013, "D=300 t=8"}, {"D500~400*10", 18, "R1=500 R2=400 t=10"},
        {"BB400*300*200*150*10*12", 19, "B1=400 B2=300 b1=200 b2=150 t1=10 t2=12"},
        {"TY400*300*200*150*10", 21, "R1=400 R2=300 r1=200 r2=150 t=10"},
        {"H400/300*200*8*10*12", 20, "h1=400 h2=300 b=200 tw=8 t1=10 t2=12"},  // slash between depths, not widths
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        WeldSectionNormParser parser;
        const QString text = QString::fromLatin1(row.text);
        EXPECT_TRUE(parser.isValid(text));
        ASSERT_TRUE(parser.match(text));
        EXPECT_EQ(parser.matchedType(), row.type);
        EXPECT_EQ(matchedValues(parser), valuesOf(row.values));
    }

    // Texts outside every format are refused; each refusal follows a successful match, which it
    // must forget.
    const char* refused[] = {
        "", "H", "H400*200*8", "H400*200*8*13*12*11",  // too few values, too many
        "H400*200*8*13 ",                               // the caller removes spaces, the norm does not
        "h400*200*8*13", "XH400*200*8*13", "H400*200*8*13X",  // upper-case marks at the start, nothing after
        "H400~300*200*8*10", "H(400~300*200*8*10",      // the tapered H needs its brackets
        "H400**8*13", "H-400*200*8*13", "D89*4" /* a catalogue pipe */, "D500*400*10", "HN400*200*8*13", "BS300*8",
        "WS300", "H400/300*200*8*10" /* the two-depth H has one, long format */, "HD300", "BB400*300*200*150*10",
        "TY400*300*200*150", "H400*200*8*13+300*150*6*10",
        // Values need a leading digit and at most one point.
        "H.5*200*8*13", "H400*200*.8*13", "B.300*10*12", "WS300*.8", "H400*200*8*13.5.", "H400*200*8..5*13",
    };
    WeldSectionNormParser parser;
    for (const char* text : refused) {
        SCOPED_TRACE(text);
        ASSERT_TRUE(parser.match(QStringLiteral("H400*200*8*13")));
        EXPECT_FALSE(parser.match(QString::fromLatin1(text)));
        EXPECT_EQ(parser.matchedType(), -1);
        EXPECT_EQ(parser.matchedEntry(), nullptr);
        EXPECT_TRUE(matchedValues(parser).isEmpty());
    }

    // A text is valid when it starts with the key of some entry.
    const struct { const char* text; bool valid; } keys[] = {
        {"H400*200*8*13", true}, {"HN400*200*8*13", true}, {"H", true},          {"B", true},
        {"T", true},             {"D20", true},            {"BS", true},         {"WSR", true},
        {"WS", true},            {"BB", true},             {"TY", true},         {"HD", true},
        {"", false},             {"I20a", false},          {"h400", false},      {"b300", false},
        {"XH400", false},        {"(H400", false},         {" H400", false},     {"W", false},
        {"C200", false},         {"L100*10", false},
    };
    for (const auto& row : keys) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(WeldSectionNormParser().isValid(QString::fromLatin1(row.text)), row.valid);
    }
}

// The example of every entry matches that entry and keeps its rules. The norms match texts without
// running their expressions; every text, well or badly formed, gets the entry and values the
// expressions give.
TEST(WeldedNormTable, ExamplesMatchTheirEntriesMatchingByHandAgreesWithTheExpressionsAndRulesAreListed) {
    const SectionNormTable table(WeldSectionNormParser::weldedNorms());
    ASSERT_EQ(table.entries().size(), 14);
    QStringList texts;
    for (const SectionNormEntry& entry : table.entries()) {
        const QString example = SectionNormParser::exampleText(entry);
        WeldSectionNormParser own;
        QStringList failed;
        ASSERT_TRUE(own.match(example)) << example.toStdString();
        EXPECT_EQ(own.matchedEntry() - own.entries().data(), &entry - table.entries().data()) << example.toStdString();
        EXPECT_TRUE(own.checkRules(&failed)) << example.toStdString() << ": " << failed.join(' ').toStdString();
        texts << example << example + QStringLiteral(".5") << example + QStringLiteral("*") << example.chopped(1)
              << QString(example).replace(QStringLiteral("*"), QStringLiteral(".5*"))
              << QString(example).replace(QStringLiteral("*"), QStringLiteral("*.5"))
              << QString(example).replace(QStringLiteral("0"), QStringLiteral("0.")) << example + QStringLiteral("x");
    }
    texts << QStringLiteral("H") << QStringLiteral("H(600~400)*200*8*12") << QStringLiteral("H(600~400*200*8*12")
          << QStringLiteral("WSR300*8") << QStringLiteral("BS100.") << QStringLiteral("H400*200*8*13+H");
    for (const QString& text : texts) {
        int expectedEntry = -1;
        Values expected;
        for (int e = 0; e < table.entries().size() && expectedEntry < 0; ++e)
            for (const auto& format : table.formatsOf(e)) {
                const QRegularExpressionMatch found = format.expression.match(text);
                if (!found.hasMatch()) continue;
                expectedEntry = e;
                for (const QString& name : table.entries()[e].paramNames)
                    if (!found.captured(name).isNull()) expected.insert(name, found.captured(name));
                break;
            }
        WeldSectionNormParser parser;
        const bool matched = parser.match(text);
        Values values = matchedValues(parser);
        // Completions fill values a short form leaves out; compare what the text itself gave.
        for (auto it = values.begin(); it != values.end();)
            it = expected.contains(it.key()) ? std::next(it) : values.erase(it);
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(matched, expectedEntry >= 0);
        EXPECT_EQ(parser.matchedType(), expectedEntry < 0 ? -1 : table.entries()[expectedEntry].sectionType);
        EXPECT_EQ(values, expected);
    }

    // Sound sections hold, and every broken rule is listed in the entry's order.
    const struct { const char* text; QStringList failed; } rules[] = {
        {"H400*200*8*13", {}}, {"H400.5*200*8*13", {}}, {"B300*10*12", {}}, {"H(400~300)*200*8*10", {}},
        {"WSR300*8", {}}, {"BS300", {}}, {"H400*200*8*13+H300*150*6*10", {}}, {"T400*200*10*12", {}},
        {"H20*200*8*13", {"h>2*t2", "h>2*t1"}}, {"H20*200*8*13*5", {"h>2*t1"}}, {"H400*200*300*13", {"b>tw"}},
        {"B300*200*160*10", {"b2>2*t1"}},      {"B300*10*160", {"b1>2*t2"}},  {"HD20*10", {"d>2*t"}},
        {"WS16*8", {"D>2*t"}},                 {"T10*200*300*12", {"h>t2", "b>t1"}},
        {"H(300~400)*200*8*10", {"h1>h2"}},    {"D400~500*300", {"R1>R2", "R1>2*t", "R2>2*t"}},
        {"BB100*100*200*200*10*12", {"B1>b1", "B2>b2"}}, {"TY400*300*200*150*100", {"r1>2*t", "r2>2*t"}},
        {"H300/400*200*8*10*12", {"h1>h2"}},
        // Values compare as numbers: as texts "9" > "10", and 400.5 > 2*200.2 only with the decimals.
        {"H400*9*10*13", {"b>tw"}}, {"H400.5*200*8*200.2", {}}, {"H400.3*200*8*200.2", {"h>2*t2", "h>2*t1"}},
    };
    for (const auto& row : rules) {
        SCOPED_TRACE(row.text);
        WeldSectionNormParser parser;
        ASSERT_TRUE(parser.match(QString::fromLatin1(row.text)));
        QStringList failed;
        EXPECT_EQ(parser.checkRules(&failed), row.failed.isEmpty());
        EXPECT_EQ(failed, row.failed);
    }
    // Nothing matched means no check.
    WeldSectionNormParser parser;
    QStringList failed;
    EXPECT_FALSE(parser.checkRules(&failed));
    EXPECT_FALSE(parser.match(QStringLiteral("I20a")));
    EXPECT_FALSE(parser.checkRules(&failed));
    EXPECT_TRUE(failed.isEmpty());
}

TEST(NormExpression, LiteralTokensMatchThemselvesNamesCaptureNumbersAndCatalogueNormsMatchTheirOwnTexts) {
    SectionNormEntry entry;
    entry.paramNames = QStringList{"a", "b"};
    const QRegularExpression expression(
        SectionNormParser::expressionOf(entry, QStringList{"X(", "a", "+H", "b", ")*"}));
    ASSERT_TRUE(expression.isValid()) << expression.errorString().toStdString();
    const QRegularExpressionMatch found = expression.match(QStringLiteral("X(12.5+H3)*"));
    ASSERT_TRUE(found.hasMatch());
    EXPECT_EQ(found.captured("a"), QStringLiteral("12.5"));
    EXPECT_EQ(found.captured("b"), QStringLiteral("3"));
    for (const char* text : {"X12.5+H3)*", "X(12.5H3)*", "X(12.5++H3)*", "X(12.5+H3)", "X(12.5+H3)**",
                             "X(12.5+H3)*)", "YX(1+H3)*", "X(+H3)*", "X(1+H.3)*"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(expression.match(QString::fromLatin1(text)).hasMatch());
    }

    // A catalogue norm takes every text as valid, but star-separated norms match their own texts only.
    HotRollingSectionNormParser empty({});
    for (const char* text : {"", "H400*200*8*13", "I20a", "anything at all", "(ZDY)"})
        EXPECT_TRUE(empty.isValid(QString::fromLatin1(text))) << text;
    EXPECT_FALSE(empty.match(QStringLiteral("HN400*200*8*13")));
    EXPECT_EQ(empty.matchedType(), -1);

    HotRollingSectionNormParser parser({
        HotRollingSectionNormParser::starSeparatedNorm("HN", stHotRolledH, {"h", "b", "tw", "t"}, {"h>2*t"}),
        HotRollingSectionNormParser::starSeparatedNorm("C", stCSection, {"h", "b", "c", "t"}),
        HotRollingSectionNormParser::starSeparatedNorm("", stNone, {"a", "b"}),
    });
    ASSERT_TRUE(parser.match(QStringLiteral("HN400*200*8*13")));
    EXPECT_EQ(parser.matchedType(), stHotRolledH);
    EXPECT_EQ(matchedValues(parser), valuesOf("h=400 b=200 tw=8 t=13"));
    EXPECT_TRUE(parser.checkRules());
    ASSERT_TRUE(parser.match(QStringLiteral("HN20*200*8*13")));
    QStringList failed;
    EXPECT_FALSE(parser.checkRules(&failed));
    EXPECT_EQ(failed, QStringList{"h>2*t"});
    ASSERT_TRUE(parser.match(QStringLiteral("C200*70*20*2")));
    EXPECT_EQ(parser.matchedType(), stCSection);
    EXPECT_TRUE(parser.checkRules());  // no rules
    ASSERT_TRUE(parser.match(QStringLiteral("200*300")));
    EXPECT_EQ(parser.matchedType(), stNone);
    EXPECT_EQ(matchedValues(parser), valuesOf("a=200 b=300"));
    for (const char* text : {"HN400*200*8", "HN400*200*8*13*1", "HN400/200*8*13", "C200*70*20", "200", "200*300*4"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(parser.match(QString::fromLatin1(text)));
        EXPECT_EQ(parser.matchedType(), -1);
        EXPECT_FALSE(parser.checkRules());
    }
    // A broken rule in a table fails the check of every match.
    HotRollingSectionNormParser broken(
        {HotRollingSectionNormParser::starSeparatedNorm("C", stCSection, {"h", "b"}, {"h>b", "h>"})});
    ASSERT_TRUE(broken.match(QStringLiteral("C200*70")));
    EXPECT_FALSE(broken.checkRules());
}

TEST(ScriptEvaluator, DeclaredNumbersReadBackExactlyRulesAreJudgedAndBrokenOrEndlessScriptsReported) {
    for (double value : {0.1 + 0.2, 1.0 / 3.0, 400.5, 1e-7, 123456789012.5, 0.0}) {
        SCOPED_TRACE(value);
        const QString line = SKRScriptEvaluator::declarations({{"x", value}});
        ASSERT_TRUE(line.startsWith(QStringLiteral("var x = ")));
        ASSERT_TRUE(line.endsWith(QStringLiteral(";\n")));
        const QString number = line.mid(8, line.size() - 10);
        bool ok = false;
        EXPECT_EQ(number.toDouble(&ok), value);
        EXPECT_TRUE(ok);
        EXPECT_LE(number.size(), QString::number(value, 'g', 17).size());
    }

    // Every rule is judged: false or throwing ones are listed. A script that is not valid (broken
    // syntax, a name that is no identifier or is a keyword) fails the whole check and lists no rule.
    const struct { QMap<QString, double> values; QStringList rules, failed; bool invalid = false; } rows[] = {
        {{{"h", 400}}, {"h>2*x", "h>0"}, {"h>2*x"}},  // an undeclared name
        {{{"a", 1}, {"b", 2}}, {"a>b", "a<b", "a==b", "b==2", "undefinedName", "a+b==3"},
         {"a>b", "a==b", "undefinedName"}},
        // Checks do not share variables.
        {{{"h", 1}}, {"h==1", "(x = 5) == 5"}, {}}, {{{"h", 1}}, {"x==5"}, {"x==5"}},
        {{{"h", 400}}, {"h>", "h>0"}, {"h>"}},     {{{"h", 400}}, {"h>0", "h>1", "(h>2"}, {}, true},
        {{{"1h", 400}}, {"true"}, {}, true},       {{{"var", 1}}, {"true"}, {}, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rules.join(QLatin1Char(' ')).toStdString());
        QStringList failed;
        EXPECT_EQ(SKRScriptEvaluator::checkRules(row.values, row.rules, &failed), !row.invalid && row.failed.isEmpty());
        EXPECT_EQ(failed, row.failed);
    }
    // A rule that never finishes is stopped and counts as failed; later rules are still judged.
    QElapsedTimer clock;
    clock.start();
    QStringList failed;
    EXPECT_FALSE(SKRScriptEvaluator::checkRules({{"h", 1}}, {"h>0", "while(true){}"}, &failed, kShortTimeoutMs));
    EXPECT_LT(clock.elapsed(), kGenerousBoundMs);
    EXPECT_EQ(failed, QStringList{"while(true){}"});
    failed.clear();
    EXPECT_FALSE(SKRScriptEvaluator::checkRules({{"h", 1}}, {"while(true){}", "h>0", "h>5"}, &failed,
                                                kShortTimeoutMs));
    EXPECT_EQ(failed, (QStringList{"while(true){}", "h>5"}));

    // Broken, throwing or endless expressions are reported, not thrown.
    for (const char* expression : {"D +", "undefinedName + 1", "throw 5", "null.x", "while(true){}"}) {
        SCOPED_TRACE(expression);
        clock.restart();
        const auto result =
            SKRScriptEvaluator::evaluate({{"D", 300}}, QString::fromLatin1(expression), kShortTimeoutMs);
        EXPECT_LT(clock.elapsed(), kGenerousBoundMs);
        EXPECT_FALSE(result.ok);
        EXPECT_FALSE(result.error.isEmpty());
    }
}

TEST(SectionParams, TheCodesAreTheShippedTablesBadInputIsRefusedAndEveryTypeAndShortFormPrintedParsesBack) {
    QFile file(QStringLiteral(BXQ_SECTION_PARAMS_CSV));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text)) << BXQ_SECTION_PARAMS_CSV;
    QTextStream in(&file);
    std::map<int, QStringList> shipped;  // PolyID -> codes in ParamID order
    while (!in.atEnd()) {
        const QString line = in.readLine().trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')) || line.startsWith(QStringLiteral("PolyID,"))) continue;
        const QStringList fields = line.split(QLatin1Char(','));
        shipped[fields[0].toInt()].append(fields[3]);
    }
    ASSERT_FALSE(shipped.empty());
    for (const auto& type : shipped) {
        SCOPED_TRACE(type.first);
        QStringList codes = sectionParamCodes(type.first);
        if (type.first == stWeldedHVariant) {
            // Delivered sorted by name; the same codes.
            QStringList expected = type.second;
            std::sort(expected.begin(), expected.end());
            EXPECT_EQ(codes, expected);
        } else {
            EXPECT_EQ(codes, type.second);
        }
    }

    // Unknown types, missing or surplus values are refused.
    const Params untouched{{"x", 1}};
    struct Refusal { const char* why; int type; QVector<double> values; } refusals[] = {
                    {"invalid type", stInvalid, {1, 2}}, {"custom section", stCustomBase + 1, {1, 2}},
                    {"no values", stWeldedH, {}},       {"too many values", stWeldedH, {400, 200, 8, 13, 13, 13}}};
    for (const Refusal& r : refusals) {
        SCOPED_TRACE(r.why);
        GSectionPolyInfo info;
        info.sectionType = static_cast<EnSKRSectionType>(r.type);
        info.params = r.values;
        Params params = untouched;
        QString error;
        EXPECT_FALSE(sectionParamsByCode(info, params, &error));
        EXPECT_FALSE(error.isEmpty());
        EXPECT_EQ(params, untouched);
    }

    // Every type of the section-type table printed from distinct values reads back as the same
    // type with the same values under the same codes: the table's codes, layouts and completion
    // rules agree.
    for (const SKRSectionTypeDescriptor& row : sectionTypeTable()) {
        if (row.catalogueNamed) continue;  // named by the catalogue, not by dimensions
        const QStringList codes = sectionTypeParamCodes(row.type);
        // Values that every norm accepts: larger ones first in the layout's usual order of sizes.
        Params values;
        QStringList pieces;
        for (int i = 0; i < codes.size(); ++i) {
            const QString& code = codes[i];
            if (row.catalogueRadii && code.startsWith(QLatin1Char('r'))) continue;  // radii: catalogue only
            const bool thickness = code.startsWith(QLatin1Char('t')) || code == QLatin1String("d") ||
                                   code == QLatin1String("c");
            double value = thickness ? 6 + i : 300 - 10 * i;
            if (row.type == stEqualAngle || row.type == stUnequalAngle || row.type == stRoundBar) value = 100 - 10 * i;
            values.insert(code, value);
            pieces << code + QLatin1Char('=') + QString::number(value);
        }
        QString name = SKRSectionPolyInfoParser::parseStandardName(row.type, 0, pieces.join(QLatin1Char(';')));
        if (!*row.nameLayout) {  // written as the code and the dimensions
            QStringList dimensions;
            for (const QString& code : codes)
                if (values.contains(code)) dimensions << QString::number(values.value(code));
            name = QString::fromUtf8(row.codes).section(QLatin1Char(','), 0, 0) + dimensions.join(QLatin1Char('*'));
        }
        const GSectionPolyInfo info = parse(name);
        SCOPED_TRACE(name.toStdString());
        EXPECT_EQ(info.sectionType, row.type);
        EXPECT_EQ(info.groupType, row.group);
        Params back;
        ASSERT_TRUE(sectionParamsByCode(info, back));
        EXPECT_EQ(describe(back), describe(values));
    }

    // Short forms leave out the parameter that the parser completes from another one; the printed
    // name leaves out its separator too.
    // What the caller passes (given) and what the parser reads back (params).
    const struct { int type, rib, typeIndex; Given given; QVector<double> params; } rows[] = {
        {11, 0, 0, {{"h", "400"}, {"b", "200"}, {"tw", "8"}, {"t1", "13"}}, {400, 200, 8, 13, 13}},
        {11, 0, 0, {{"h", "400.5"}, {"b", "200.25"}, {"tw", "8"}, {"t1", "13.5"}}, {400.5, 200.25, 8, 13.5, 13.5}},
        {12, 0, 1, {{"h", "400"}, {"b1", "200"}, {"b2", "300"}, {"tw", "8"}, {"t1", "10"}}, {400, 200, 300, 8, 10, 10}},
        {13, 0, 2, {{"b1", "300"}, {"t1", "10"}, {"t2", "12"}}, {300, 300, 10, 12}},
        {15, 0, 4, {{"h1", "400"}, {"b1", "200"}, {"tw1", "8"}, {"t1", "13"}, {"h2", "300"}, {"b2", "150"},
                    {"tw2", "6"}, {"t3", "10"}},
         {400, 200, 8, 13, 13, 300, 150, 6, 10, 10}},
        {15, 0, 4, {{"h1", "400"}, {"b1", "200"}, {"tw1", "8"}, {"t1", "13"}, {"h2", "300"}, {"b2", "150"},
                    {"tw2", "6"}, {"t3", "10"}, {"t4", "9"}},
         {400, 200, 8, 13, 13, 300, 150, 6, 10, 9}},
        // The parser does not complete the welded T: its short form reads back as three values.
        {16, 0, 5, {{"h", "400"}, {"b", "200"}, {"t1", "10"}}, {400, 200, 10}},
        {17, 0, 6, {{"h1", "400"}, {"h2", "300"}, {"b", "200"}, {"tw", "8"}, {"t1", "10"}}, {400, 300, 200, 8, 10, 10}},
        {1013, 1, 12, {{"D", "300"}, {"t", "8"}}, {300, 8}},  // a ribbed weld ball
    };
    for (const auto& row : rows) {
        Given reversed = row.given;
        std::reverse(reversed.begin(), reversed.end());
        const QString spaced =
            QStringLiteral(" ;") + paramText(row.given).replace(QLatin1Char(';'), QStringLiteral(" ;; ")) + "; ";
        for (const QString& text : {paramText(row.given), paramText(reversed), spaced}) {
            const QString printed = SKRSectionPolyInfoParser::parseStandardName(row.type, row.rib, text);
            SCOPED_TRACE((text + QStringLiteral(" -> ") + printed).toStdString());
            EXPECT_TRUE(printed.startsWith(SKRSectionPolyInfoParser::weldingSteelMark(row.type, row.rib)));
            for (QChar bracket : {QLatin1Char('('), QLatin1Char(')'), QLatin1Char('['), QLatin1Char(']')})
                EXPECT_FALSE(printed.contains(bracket));
            const GSectionPolyInfo info = parse(printed);
            EXPECT_EQ(info.sectionType, row.type);
            EXPECT_EQ(info.groupType, SKRSectionPolyInfoParser::polyGroupType(row.type));
            EXPECT_EQ(info.typeIndex, row.typeIndex);
            EXPECT_EQ(info.params, row.params);
            EXPECT_EQ(info.paramCount, row.params.size());
        }
    }
}

TEST_F(ParamManager, TypeOrSpecificationComesWithParametersDefaultsTextAndInsertionPointAndTheCheckNamesWhatFails) {
    SKRPolyParamManger manager;
    EXPECT_FALSE(manager.setSectionType(999));
    ASSERT_TRUE(manager.setSectionType(11));
    EXPECT_EQ(codes(manager), (QStringList{"h", "b", "tw", "t1", "t2"}));
    EXPECT_EQ(manager.paramValue(0), QStringLiteral("400"));
    EXPECT_EQ(manager.insertPoint(), QStringLiteral("100,200"));
    ASSERT_TRUE(manager.setParamValue(0, QStringLiteral(" 500 ")));
    EXPECT_EQ(manager.insertPoint(), QStringLiteral("100,250"));

    // The text parses back to the same section.
    SKRSectionPolyInfoParser parser;
    parser.parser(manager.specification());
    EXPECT_EQ(parser.sectionPolyInfo().sectionType, 11);
    EXPECT_EQ(parser.sectionPolyInfo().params, (QVector<double>{500, 200, 8, 13, 13}));
    EXPECT_NE(manager.specificationKey(), 0);
    const qint64 key = manager.specificationKey();
    manager.setParamValue(0, QStringLiteral("501"));
    EXPECT_NE(manager.specificationKey(), key);

    // The cross's insertion point uses the script's Math.max.
    ASSERT_TRUE(manager.setSectionType(15));
    EXPECT_EQ(manager.insertPoint(), QStringLiteral("200,200"));

    // The check names the range or the norm that fails.
    ASSERT_TRUE(manager.setSectionType(11));
    QString message;
    int index = 7;
    EXPECT_TRUE(manager.checkParams(&message, &index));
    EXPECT_EQ(index, -1);

    manager.setParamValue(0, QStringLiteral("0"));
    EXPECT_FALSE(manager.checkParams(&message, &index));
    EXPECT_EQ(message, manager.paramDef(0).invalidMsg);
    EXPECT_EQ(message, QStringLiteral("h的取值范围为1~10000mm"));
    EXPECT_EQ(index, 0);
    manager.setParamValue(0, QStringLiteral("abc"));
    EXPECT_FALSE(manager.checkParams(&message, &index));
    EXPECT_EQ(index, 0);

    manager.setParamValue(0, QStringLiteral("20"));  // in range, but h > 2*t1 fails
    EXPECT_FALSE(manager.checkParams(&message, &index));
    EXPECT_EQ(message, QStringLiteral("截面规格输入错误，请重新输入截面信息"));
    EXPECT_EQ(index, -1);

    ASSERT_TRUE(manager.setSectionType(17));
    manager.setParamValue(1, QStringLiteral("600"));  // h2 = h1
    EXPECT_FALSE(manager.checkParams(&message, &index));
    EXPECT_EQ(message, QStringLiteral("截面规格输入错误，h1必须大于h2"));
    EXPECT_EQ(manager.paramDef(index).paramCode, QStringLiteral("h1"));

    // A specification positions on its catalogue row or on its type.
    ASSERT_TRUE(manager.setSpecification(QStringLiteral("hn400*200*8*13")));
    EXPECT_TRUE(manager.isCatalogueSection());
    EXPECT_EQ(manager.sectionType(), 7);
    EXPECT_EQ(manager.specification(), QStringLiteral("HN400*200*8*13"));
    EXPECT_EQ(manager.specificationKey(), (qint64(7) << 32) | 3);
    EXPECT_EQ(manager.paramValue(codes(manager).indexOf("tw")), QStringLiteral("8"));
    EXPECT_EQ(manager.insertPoint(), QStringLiteral("100,200"));
    EXPECT_TRUE(manager.checkParams(nullptr, nullptr));

    ASSERT_TRUE(manager.setSpecification(QStringLiteral("WSR300*8")));
    EXPECT_FALSE(manager.isCatalogueSection());
    EXPECT_EQ(manager.sectionType(), 1013);
    EXPECT_EQ(manager.specification(), QStringLiteral("WSR300*8"));

    ASSERT_TRUE(manager.setSpecification(QStringLiteral("D90*4")));  // no such catalogue pipe
    EXPECT_FALSE(manager.isCatalogueSection());
    EXPECT_EQ(manager.specification(), QStringLiteral("D90*4"));

    // A rolled H that is not in the catalogue makes no specification text.
    ASSERT_TRUE(manager.setSpecification(QStringLiteral("HN401*200*8*13")));
    EXPECT_TRUE(manager.specification().isEmpty());
    EXPECT_EQ(manager.specificationKey(), 0);

    EXPECT_FALSE(manager.setSpecification(QStringLiteral("not a section")));
    EXPECT_EQ(manager.sectionType(), 7);  // unchanged
}
