// The specification parser: normalising, splitting off the type code, deciding type, group and
// position in the group, reading and completing the dimensions, refusing sizes beyond the bound;
// its static helpers (the group of every type value, welded marks, values, key=value texts); and
// ball nodes parsed with their expression (the named dimensions, the result code, the variables
// the expression adds, and the parameters rebuilt from them).
#include "plugin/BXQTranslations.h"
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "section_spec/QtPrinters.h"
#include "support/ChineseAfterwards.h"

#include <gtest/gtest.h>


#include <climits>
#include <cmath>
#include <map>

namespace {

using BallValues = std::map<std::wstring, double>;

struct Case { const char *text, *name, *typeCode, *valueText; int type, group, typeIndex; QVector<double> params; };

}  // namespace

TEST(ParseRecords, EveryTextGivesEveryFieldOfTheRecord) {
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
}

// Welded short forms are completed only at their exact count; code H is decided by the separators,
// plus first, then tilde, then slash; spaces and parentheses go and all but the last character is
// upper-cased. A null name, a type 0 or no parameters are not checked.
TEST(ParseTexts, ShortFormsSeparatorsAndNormalisation) {
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
        if (row.name) EXPECT_EQ(info.name, QString::fromLatin1(row.name));
        if (row.type) EXPECT_EQ(info.sectionType, row.type);
        if (row.type) EXPECT_EQ(info.groupType, SKRSectionPolyInfoParser::polyGroupType(row.type));
        if (!row.params.isEmpty()) EXPECT_EQ(info.params, row.params);
    }
}

TEST(ParseTypeCodes, EveryCodeGivesItsTypeAndGroup) {
    const struct { const char* code; int type; int group; } rows[] = {
        {"I", 1, 1},     {"[", 2, 1},     {"D", 5, 1},     {"HW", 7, 1},   {"HM", 7, 1},    {"HT", 7, 1},
        {"HN", 7, 1},    {"HP", 7, 1},    {"C", 8, 1},     {"Z", 9, 1},    {"TN", 10, 1},   {"TW", 10, 1},
        {"TM", 10, 1},   {"□", 1011, 1},  {"BS", 1012, 1}, {"WS", 1013, 1}, {"WSR", 1013, 1}, {"H", 11, 2},
        {"T", 16, 2},    {"B", 13, 2},    {"HD", 14, 2},   {"X", -1, -1},  {"HX", -1, -1},  {"WSX", -1, -1},
    };
    for (const auto& row : rows) {
        const QString text = QString::fromUtf8(row.code) + QStringLiteral("100*50*5*8");
        SCOPED_TRACE(text.toStdString());
        const GSectionPolyInfo info = parse(text);
        EXPECT_EQ(info.typeCode, QString::fromUtf8(row.code));
        EXPECT_EQ(info.valueText, QStringLiteral("100*50*5*8"));
        EXPECT_EQ(info.sectionType, row.type);
        EXPECT_EQ(info.groupType, row.group);
    }
}

TEST(ParseCustomSections, EachInterfaceLanguageRecognisesOnlyItsOwnKeyword) {
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

TEST(AnalyseGroupType, AnswersForTheTypeCodeNotForTheNormResult) {
    const struct { const char* text; EnSKRSectionGroupType codeGroup; EnSKRSectionGroupType recordGroup; } rows[] = {
        {"D500~400*10", sgStandard, sgWelded},  // code "D", but the welded norm decides
        {"WS300*8", sgStandard, sgStandard},  {"HD300*10", sgWelded, sgWelded},
        {"BB400*300*200*150*10*12", sgInvalid, sgWelded},
        {"200*300", sgNone, sgNone},          {"X1", sgInvalid, sgInvalid},
        {"自定义截面7", sgCustom, sgCustom},  {"Z1(ZDY)", sgStandard, sgStandard},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        SKRSectionPolyInfoParser parser;
        parser.parser(QString::fromUtf8(row.text));
        EXPECT_EQ(parser.analyseGroupType(), row.codeGroup);
        EXPECT_EQ(parser.sectionPolyInfo().groupType, row.recordGroup);
    }
}

TEST(ParseNormalisation, DimensionsBeyondTheBoundAreRefusedAsUnreadableTexts) {
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
}

TEST(ParserValue, EverySeparatorStartsAValueAndBadPiecesReadAsZero) {
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
}

TEST(ParserParamEqualString, KeysAreListedAsWrittenAndHeldOnceWithTheLastValueUpToTheNextEqualsSign) {
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

// Every type value from -100 to 7100 has the group of its range.
TEST(PolyGroupType, EveryValueOfEveryRangeHasTheRangesGroup) {
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
}

TEST(WeldingSteelMark, WeldedAndBallTypesHaveTheirMarkTheWeldBallAnRForAnyRibAndOthersNone) {
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

TEST(WeldBall, ExpressionSeesTheDimensionsAndGivesTheCodeAndItsNumericVariables) {
    // Code -1: the expression failed.
    const struct {
        const char *text, *expression; int type, code; BallValues values; QVector<double> params;
    } rows[] = {
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
    for (const auto& row : rows) {
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
