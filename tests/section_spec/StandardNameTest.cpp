// Printing a specification from a type and its key=value parameters, and reading it back: every
// welded and ball type, in its long and its short written form.
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "section_spec/QtPrinters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

struct RoundTrip {
    const char* label;
    int type;
    int rib;
    std::vector<std::pair<const char*, const char*>> given;  // what the caller passes
    QVector<double> params;                                   // what the parser reads back
};

std::ostream& operator<<(std::ostream& out, const RoundTrip& row) { return out << row.label; }

QString paramText(const std::vector<std::pair<const char*, const char*>>& given) {
    QStringList pieces;
    for (const auto& pair : given)
        pieces << QStringLiteral("%1=%2").arg(QString::fromLatin1(pair.first), QString::fromLatin1(pair.second));
    return pieces.join(QLatin1Char(';'));
}

int positionInGroup(int type) {
    const QVector<int> standard{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 1011, 1012, 1013};
    const QVector<int> welded{11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21};
    return welded.contains(type) ? welded.indexOf(type) : standard.indexOf(type);
}

class StandardNameRoundTrip : public ::testing::TestWithParam<RoundTrip> {
protected:
    void expectRoundTrip(const QString& text) {
        const RoundTrip& row = GetParam();
        SCOPED_TRACE(text.toStdString());
        const QString printed = SKRSectionPolyInfoParser::parseStandardName(row.type, row.rib, text);
        SCOPED_TRACE(printed.toStdString());
        EXPECT_TRUE(printed.startsWith(SKRSectionPolyInfoParser::weldingSteelMark(row.type, row.rib)));
        for (QChar bracket : {QLatin1Char('('), QLatin1Char(')'), QLatin1Char('['), QLatin1Char(']')})
            EXPECT_FALSE(printed.contains(bracket));

        SKRSectionPolyInfoParser parser;
        parser.parser(printed);
        const GSectionPolyInfo info = parser.sectionPolyInfo();
        EXPECT_EQ(info.sectionType, row.type);
        EXPECT_EQ(info.groupType, SKRSectionPolyInfoParser::polyGroupType(row.type));
        EXPECT_EQ(info.typeIndex, positionInGroup(row.type));
        EXPECT_EQ(info.params, row.params);
        EXPECT_EQ(info.paramCount, row.params.size());
    }
};

TEST_P(StandardNameRoundTrip, PrintedTextParsesBackToTypeAndParameters) {
    expectRoundTrip(paramText(GetParam().given));
}

TEST_P(StandardNameRoundTrip, OrderOfTheKeysDoesNotMatter) {
    auto reversed = GetParam().given;
    std::reverse(reversed.begin(), reversed.end());
    expectRoundTrip(paramText(reversed));
}

TEST_P(StandardNameRoundTrip, SpacesAndEmptyPiecesInTheParameterTextDoNotMatter) {
    expectRoundTrip(QStringLiteral(" ;") + paramText(GetParam().given).replace(QLatin1Char(';'), QStringLiteral(" ;; ")) +
                    QStringLiteral("; "));
}

// Short forms leave out the parameter that the parser completes from another one.
const RoundTrip kRoundTrips[] = {
    {"WeldedH", 11, 0, {{"h", "400"}, {"b", "200"}, {"tw", "8"}, {"t1", "13"}, {"t2", "12"}}, {400, 200, 8, 13, 12}},
    {"WeldedHShort", 11, 0, {{"h", "400"}, {"b", "200"}, {"tw", "8"}, {"t1", "13"}}, {400, 200, 8, 13, 13}},
    {"WeldedHDecimals", 11, 0, {{"h", "400.5"}, {"b", "200.25"}, {"tw", "8"}, {"t1", "13.5"}},
     {400.5, 200.25, 8, 13.5, 13.5}},
    {"WeldedHUnequal", 12, 0, {{"h", "400"}, {"b1", "200"}, {"b2", "300"}, {"tw", "8"}, {"t1", "10"}, {"t2", "12"}},
     {400, 200, 300, 8, 10, 12}},
    {"WeldedHUnequalShort", 12, 0, {{"h", "400"}, {"b1", "200"}, {"b2", "300"}, {"tw", "8"}, {"t1", "10"}},
     {400, 200, 300, 8, 10, 10}},
    {"WeldedBox", 13, 0, {{"b1", "300"}, {"b2", "200"}, {"t1", "10"}, {"t2", "12"}}, {300, 200, 10, 12}},
    {"WeldedBoxShort", 13, 0, {{"b1", "300"}, {"t1", "10"}, {"t2", "12"}}, {300, 300, 10, 12}},
    {"WeldedPipe", 14, 0, {{"d", "300"}, {"t", "10"}}, {300, 10}},
    {"WeldedCross", 15, 0,
     {{"h1", "400"}, {"b1", "200"}, {"tw1", "8"}, {"t1", "13"}, {"t2", "12"},
      {"h2", "300"}, {"b2", "150"}, {"tw2", "6"}, {"t3", "10"}, {"t4", "9"}},
     {400, 200, 8, 13, 12, 300, 150, 6, 10, 9}},
    {"WeldedCrossShort", 15, 0,
     {{"h1", "400"}, {"b1", "200"}, {"tw1", "8"}, {"t1", "13"}, {"h2", "300"}, {"b2", "150"}, {"tw2", "6"}, {"t3", "10"}},
     {400, 200, 8, 13, 13, 300, 150, 6, 10, 10}},
    {"WeldedCrossFirstShort", 15, 0,
     {{"h1", "400"}, {"b1", "200"}, {"tw1", "8"}, {"t1", "13"},
      {"h2", "300"}, {"b2", "150"}, {"tw2", "6"}, {"t3", "10"}, {"t4", "9"}},
     {400, 200, 8, 13, 13, 300, 150, 6, 10, 9}},
    {"WeldedT", 16, 0, {{"h", "400"}, {"b", "200"}, {"t1", "10"}, {"t2", "12"}}, {400, 200, 10, 12}},
    // The parser does not complete the welded T: its short form reads back as three values.
    {"WeldedTShort", 16, 0, {{"h", "400"}, {"b", "200"}, {"t1", "10"}}, {400, 200, 10}},
    {"WeldedTaperedH", 17, 0, {{"h1", "400"}, {"h2", "300"}, {"b", "200"}, {"tw", "8"}, {"t1", "10"}, {"t2", "12"}},
     {400, 300, 200, 8, 10, 12}},
    {"WeldedTaperedHShort", 17, 0, {{"h1", "400"}, {"h2", "300"}, {"b", "200"}, {"tw", "8"}, {"t1", "10"}},
     {400, 300, 200, 8, 10, 10}},
    {"WeldedD", 18, 0, {{"R1", "500"}, {"R2", "400"}, {"t", "10"}}, {500, 400, 10}},
    {"WeldedBB", 19, 0, {{"B1", "400"}, {"B2", "300"}, {"b1", "200"}, {"b2", "150"}, {"t1", "10"}, {"t2", "12"}},
     {400, 300, 200, 150, 10, 12}},
    // Held in ascending order of the names: b, h1, h2, t1, t2, tw.
    {"WeldedHVariant", 20, 0, {{"h1", "400"}, {"h2", "300"}, {"b", "200"}, {"tw", "8"}, {"t1", "10"}, {"t2", "12"}},
     {200, 400, 300, 10, 12, 8}},
    {"WeldedTY", 21, 0, {{"R1", "400"}, {"R2", "300"}, {"r1", "200"}, {"r2", "150"}, {"t", "10"}},
     {400, 300, 200, 150, 10}},
    {"BoltBall", 1012, 0, {{"D", "300"}}, {300}},
    {"WeldBall", 1013, 0, {{"D", "300"}, {"t", "8"}}, {300, 8}},
    {"WeldBallWithRib", 1013, 1, {{"D", "300"}, {"t", "8"}}, {300, 8}},
};

INSTANTIATE_TEST_SUITE_P(EveryWeldedAndBallType, StandardNameRoundTrip, ::testing::ValuesIn(kRoundTrips),
                         [](const ::testing::TestParamInfo<RoundTrip>& info) {
                             return std::string(info.param.label);
                         });

TEST(StandardName, RibFlagChoosesBetweenWsAndWsr) {
    const QString params = QStringLiteral("D=300;t=8");
    EXPECT_TRUE(SKRSectionPolyInfoParser::parseStandardName(1013, 0, params).startsWith(QStringLiteral("WS3")));
    EXPECT_TRUE(SKRSectionPolyInfoParser::parseStandardName(1013, 2, params).startsWith(QStringLiteral("WSR3")));
}

TEST(StandardName, CrossJoinsItsTwoHPartsWithPlusH) {
    const QString printed = SKRSectionPolyInfoParser::parseStandardName(
        15, 0, QStringLiteral("h1=400;b1=200;tw1=8;t1=13;h2=300;b2=150;tw2=6;t3=10"));
    EXPECT_EQ(printed.count(QStringLiteral("+H")), 1);
    EXPECT_TRUE(printed.startsWith(QLatin1Char('H')));
}

}  // namespace
