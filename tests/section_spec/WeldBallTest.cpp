// Ball nodes parsed with their expression: the named dimensions, the result code, the variables
// the expression adds, and the parameters rebuilt from them.
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "section_spec/QtPrinters.h"

#include <gtest/gtest.h>

namespace {

using BallValues = std::map<std::wstring, double>;

}  // namespace

TEST(WeldBall, WithoutExpressionOnlyTheDiameterIsNamed) {
    for (const char* text : {"WS300*8", "WSR300*8", "BS300"}) {
        SCOPED_TRACE(text);
        SKRSectionPolyInfoParser parser;
        const SKRWeldBallInfo ball = parser.parser(QString::fromLatin1(text), QString());
        EXPECT_EQ(ball.values, (BallValues{{L"D", 300}}));
        const GSectionPolyInfo info = parser.sectionPolyInfo();
        EXPECT_EQ(info.params, QVector<double>{300});
        EXPECT_EQ(info.paramCount, 1);
        EXPECT_EQ(info.weldBallCode, 0);
        EXPECT_EQ(info.groupType, sgStandard);
    }
}

TEST(WeldBall, ExpressionSeesDiameterAndThicknessAndGivesTheCode) {
    const struct {
        const char* text;
        int type;
        const char* expression;
        int code;
    } rows[] = {
        {"WS300*8", stWeldBall, "D > 2*t ? 1 : 2", 1},
        {"WS16*8", stWeldBall, "D > 2*t ? 1 : 2", 2},
        {"WSR300*8", stWeldBall, "D - 10*t", 220},
        {"ws 300 * 8", stWeldBall, "t", 8},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        SKRSectionPolyInfoParser parser;
        const SKRWeldBallInfo ball = parser.parser(QString::fromLatin1(row.text), QString::fromLatin1(row.expression));
        EXPECT_EQ(ball.code, row.code);
        const GSectionPolyInfo info = parser.sectionPolyInfo();
        EXPECT_EQ(info.sectionType, row.type);
        EXPECT_EQ(info.groupType, sgStandard);
        EXPECT_EQ(info.weldBallCode, row.code);
        EXPECT_EQ(ball.values.size(), 2u);
        EXPECT_EQ(ball.values.at(L"D"), info.params.value(0));
        EXPECT_EQ(ball.values.at(L"t"), info.params.value(1));
    }
}

TEST(WeldBall, BoltBallHasNoThicknessToOffer) {
    SKRSectionPolyInfoParser parser;
    const SKRWeldBallInfo ball = parser.parser(QStringLiteral("BS300"), QStringLiteral("D == 300 ? 3 : 4"));
    EXPECT_EQ(ball.code, 3);
    EXPECT_EQ(ball.values, (BallValues{{L"D", 300}}));
    EXPECT_EQ(parser.sectionPolyInfo().sectionType, stBoltBall);
}

TEST(WeldBall, NumericVariablesOfTheExpressionJoinTheValuesAndParametersFollowKeyOrder) {
    SKRSectionPolyInfoParser parser;
    const SKRWeldBallInfo ball = parser.parser(QStringLiteral("WS300*8"),
                                               QStringLiteral("var area = D * t; var note = 'thin'; 5"));
    EXPECT_EQ(ball.code, 5);
    EXPECT_EQ(ball.values, (BallValues{{L"D", 300}, {L"area", 2400}, {L"t", 8}}));
    const GSectionPolyInfo info = parser.sectionPolyInfo();
    // "D" < "area" < "t": capitals sort first.
    EXPECT_EQ(info.params, (QVector<double>{300, 2400, 8}));
    EXPECT_EQ(info.paramCount, 3);
    EXPECT_EQ(info.weldBallCode, 5);
}

TEST(WeldBall, ExpressionThatFailsGivesCodeMinusOne) {
    for (const char* expression : {"undefinedName * 2", "throw 1", "D +", "null.x"}) {
        SCOPED_TRACE(expression);
        SKRSectionPolyInfoParser parser;
        const SKRWeldBallInfo ball = parser.parser(QStringLiteral("WS300*8"), QString::fromLatin1(expression));
        EXPECT_EQ(ball.code, -1);
        EXPECT_EQ(parser.sectionPolyInfo().weldBallCode, -1);
        EXPECT_EQ(ball.values, (BallValues{{L"D", 300}, {L"t", 8}}));
        EXPECT_EQ(parser.sectionPolyInfo().params, (QVector<double>{300, 8}));
    }
}

TEST(WeldBall, TextThatIsNoBallGivesAnEmptyMapAndAnUntouchedRecord) {
    for (const char* text : {"H400*200*8*13", "D89*4", "200*300", "", "WS300*8(ZDY)", "X1"}) {
        SCOPED_TRACE(text);
        SKRSectionPolyInfoParser plain;
        plain.parser(QString::fromLatin1(text));
        SKRSectionPolyInfoParser withExpression;
        const SKRWeldBallInfo ball = withExpression.parser(QString::fromLatin1(text), QStringLiteral("var k = 1; 9"));
        EXPECT_TRUE(ball.values.empty());
        const GSectionPolyInfo expected = plain.sectionPolyInfo();
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
