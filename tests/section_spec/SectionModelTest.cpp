// The section model: the group of every type value, the welded and ball marks, and the position
// of each type inside its group's list.
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "section_spec/QtPrinters.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

struct GroupRange {
    int first;
    int last;
    EnSKRSectionGroupType group;
};

// The whole line of type values cut into the ranges of the group column.
const GroupRange kGroupRanges[] = {
    {-100, -1, sgInvalid},     {0, 0, sgNone},           {1, 10, sgStandard},
    {11, 21, sgWelded},        {22, 1010, sgInvalid},    {1011, 1013, sgStandard},
    {1014, 6000, sgInvalid},   {6001, 6001, sgNone},     {6002, 6999, sgInvalid},
    {7000, 7100, sgCustom},
};

}  // namespace

TEST(PolyGroupType, EveryValueOfEveryRangeHasTheRangesGroup) {
    for (const GroupRange& range : kGroupRanges) {
        for (int type = range.first; type <= range.last; ++type) {
            SCOPED_TRACE(type);
            EXPECT_EQ(SKRSectionPolyInfoParser::polyGroupType(type), range.group);
        }
    }
}

TEST(PolyGroupType, BoundariesAndExtremes) {
    const struct {
        int type;
        EnSKRSectionGroupType group;
    } rows[] = {
        {INT_MIN, sgInvalid}, {-2, sgInvalid},   {-1, sgInvalid},      {0, sgNone},
        {1, sgStandard},      {10, sgStandard},  {11, sgWelded},       {21, sgWelded},
        {22, sgInvalid},      {1010, sgInvalid}, {1011, sgStandard},   {1013, sgStandard},
        {1014, sgInvalid},    {6000, sgInvalid}, {6001, sgNone},       {6002, sgInvalid},
        {6999, sgInvalid},    {7000, sgCustom},  {123456, sgCustom},   {INT_MAX, sgCustom},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(SKRSectionPolyInfoParser::polyGroupType(row.type), row.group);
    }
}

TEST(WeldingSteelMark, EachWeldedAndBallTypeHasItsMarkWhateverTheRibFlag) {
    const struct {
        int type;
        const char* mark;
    } rows[] = {
        {11, "H"}, {12, "H"}, {13, "B"}, {14, "HD"}, {15, "H"}, {16, "T"},
        {17, "H"}, {18, "D"}, {19, "BB"}, {20, "H"}, {21, "TY"}, {1012, "BS"},
    };
    for (const auto& row : rows) {
        for (int rib : {0, 1, 7, -1}) {
            SCOPED_TRACE(QStringLiteral("type %1 rib %2").arg(row.type).arg(rib).toStdString());
            EXPECT_EQ(SKRSectionPolyInfoParser::weldingSteelMark(row.type, rib), QLatin1String(row.mark));
        }
    }
}

TEST(WeldingSteelMark, WeldBallIsWsWithoutRibAndWsrWithAnyNonZeroRib) {
    EXPECT_EQ(SKRSectionPolyInfoParser::weldingSteelMark(1013, 0), QStringLiteral("WS"));
    for (int rib : {1, 5, -1, INT_MAX, INT_MIN}) {
        SCOPED_TRACE(rib);
        EXPECT_EQ(SKRSectionPolyInfoParser::weldingSteelMark(1013, rib), QStringLiteral("WSR"));
    }
}

TEST(WeldingSteelMark, TypesWithoutAWeldedMarkGiveAnEmptyText) {
    const QList<int> marked{11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 1012, 1013};
    QList<int> others{INT_MIN, 7000, 7001, 6001, INT_MAX};
    for (int type = -3; type <= 1100; ++type)
        if (!marked.contains(type)) others << type;
    for (int type : others) {
        SCOPED_TRACE(type);
        EXPECT_TRUE(SKRSectionPolyInfoParser::weldingSteelMark(type, 0).isEmpty());
        EXPECT_TRUE(SKRSectionPolyInfoParser::weldingSteelMark(type, 1).isEmpty());
    }
}

// One text per type of the standard and welded lists; the parsed typeIndex is the type's
// position in its list (standard: 1..10, 1011, 1012, 1013; welded: 11..21).
TEST(TypeIndex, EachTypeSitsAtItsPositionInItsGroupList) {
    const struct {
        const char* text;
        int type;
        EnSKRSectionGroupType group;
        int typeIndex;
    } rows[] = {
        {"I20a", 1, sgStandard, 0},
        {"[20a", 2, sgStandard, 1},
        {"L100*10", 3, sgStandard, 2},
        {"L100*80*10", 4, sgStandard, 3},
        {"D89*4", 5, sgStandard, 4},
        {"D20", 6, sgStandard, 5},
        {"HN400*200*8*13", 7, sgStandard, 6},
        {"C200*70*20*2", 8, sgStandard, 7},
        {"Z270*80*8*3", 9, sgStandard, 8},
        {"TN200*200*8*12", 10, sgStandard, 9},
        {"□200*100*8", 1011, sgStandard, 10},
        {"BS300", 1012, sgStandard, 11},
        {"WS300*8", 1013, sgStandard, 12},
        {"H400*200*8*13", 11, sgWelded, 0},
        {"H400*200/300*8*10", 12, sgWelded, 1},
        {"B300*200*10*12", 13, sgWelded, 2},
        {"HD300*10", 14, sgWelded, 3},
        {"H400*200*8*13+H300*150*6*10", 15, sgWelded, 4},
        {"T400*200*10*12", 16, sgWelded, 5},
        {"H(400~300)*200*8*10", 17, sgWelded, 6},
        {"D500~400*10", 18, sgWelded, 7},
        {"BB400*300*200*150*10*12", 19, sgWelded, 8},
        {"H400/300*200*8*10*12", 20, sgWelded, 9},
        {"TY400*300*200*150*10", 21, sgWelded, 10},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const GSectionPolyInfo info = parse(QString::fromUtf8(row.text));
        EXPECT_EQ(info.sectionType, row.type);
        EXPECT_EQ(info.groupType, row.group);
        EXPECT_EQ(info.typeIndex, row.typeIndex);
    }
}

TEST(TypeIndex, TypesOutsideBothListsHaveNoPosition) {
    EXPECT_EQ(parse(QStringLiteral("200*300")).typeIndex, 0);   // bare dimensions: 0
    EXPECT_EQ(parse(QStringLiteral("250")).typeIndex, -1);      // a single number
    EXPECT_EQ(parse(QStringLiteral("L100")).typeIndex, -1);     // an angle with no "*"
    EXPECT_EQ(parse(QStringLiteral("X100*10")).typeIndex, -1);  // unknown code
    EXPECT_EQ(parse(SKRSectionPolyInfoParser::customSectionKeyword() + QStringLiteral("3")).typeIndex, -1);
}

TEST(SectionRecord, CopiedParserGivesTheSameRecordAndStaysIndependent) {
    SKRSectionPolyInfoParser original;
    original.parser(QStringLiteral("H400*200*8*13"));
    SKRSectionPolyInfoParser copy(original);
    SKRSectionPolyInfoParser assigned;
    assigned = original;
    for (const SKRSectionPolyInfoParser* p : {&copy, &assigned}) {
        const GSectionPolyInfo info = p->sectionPolyInfo();
        EXPECT_EQ(info.name, QStringLiteral("H400*200*8*13"));
        EXPECT_EQ(info.sectionType, stWeldedH);
        EXPECT_EQ(info.params, (QVector<double>{400, 200, 8, 13, 13}));
    }
    copy.parser(QStringLiteral("D20"));
    EXPECT_EQ(copy.sectionPolyInfo().sectionType, stRoundBar);
    EXPECT_EQ(original.sectionPolyInfo().sectionType, stWeldedH);
}
