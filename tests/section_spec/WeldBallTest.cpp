// Ball nodes parsed with their expression: the named dimensions, the result code, the variables
// the expression adds, and the parameters rebuilt from them; texts that are no ball.
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "section_spec/QtPrinters.h"

#include <gtest/gtest.h>

namespace {

using BallValues = std::map<std::wstring, double>;

}  // namespace

TEST(WeldBall, ExpressionSeesTheDimensionsAndGivesTheCodeAndItsNumericVariables) {
    const struct {
        const char* text;
        const char* expression;
        int type;
        int code;  // -1: the expression failed
        BallValues values;
        QVector<double> params;
    } rows[] = {
        // Without an expression only the diameter is named.
        {"WS300*8", "", stWeldBall, 0, {{L"D", 300}}, {300}}, {"WSR300*8", "", stWeldBall, 0, {{L"D", 300}}, {300}},
        {"BS300", "", stBoltBall, 0, {{L"D", 300}}, {300}},
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
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " / " + row.expression);
        SKRSectionPolyInfoParser parser;
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

TEST(WeldBall, TextThatIsNoBallGivesAnEmptyMapAndAnUntouchedRecord) {
    for (const char* text : {"H400*200*8*13", "D89*4", "200*300", "", "WS300*8(ZDY)", "X1"}) {
        SCOPED_TRACE(text);
        SKRSectionPolyInfoParser withExpression;
        const SKRWeldBallInfo ball = withExpression.parser(QString::fromLatin1(text), QStringLiteral("var k = 1; 9"));
        EXPECT_TRUE(ball.values.empty());
        const GSectionPolyInfo expected = parse(QString::fromLatin1(text));
        const GSectionPolyInfo info = withExpression.sectionPolyInfo();
        EXPECT_EQ(info.sectionType, expected.sectionType);
        EXPECT_EQ(info.groupType, expected.groupType);
        EXPECT_EQ(info.params, expected.params);
        EXPECT_EQ(info.paramCount, expected.params.size());
        EXPECT_EQ(info.weldBallCode, 0);
    }
}

TEST(WeldBall, ABallParsedAfterAnExpressionDoesNotKeepItsCode) {
    SKRSectionPolyInfoParser parser;
    parser.parser(QStringLiteral("WS300*8"), QStringLiteral("7"));
    ASSERT_EQ(parser.sectionPolyInfo().weldBallCode, 7);
    parser.parser(QStringLiteral("WS300*8"));
    EXPECT_EQ(parser.sectionPolyInfo().weldBallCode, 0);
    EXPECT_EQ(parser.sectionPolyInfo().params, (QVector<double>{300, 8}));
}
