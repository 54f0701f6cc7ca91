// Printing a specification from a type and its key=value parameters, and reading it back: every
// welded and ball type, in its long and its short written form, whatever the order of the keys
// and the spaces and empty pieces of the parameter text.
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "section_spec/QtPrinters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

using Given = std::vector<std::pair<const char*, const char*>>;

QString paramText(const Given& given) {
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

}  // namespace

TEST(StandardName, PrintedTextParsesBackToTypeAndParametersWhateverTheKeyOrderAndSpacing) {
    // Short forms leave out the parameter that the parser completes from another one.
    const struct {
        int type;
        int rib;
        Given given;               // what the caller passes
        QVector<double> params;    // what the parser reads back
    } rows[] = {
        {11, 0, {{"h", "400"}, {"b", "200"}, {"tw", "8"}, {"t1", "13"}, {"t2", "12"}}, {400, 200, 8, 13, 12}},
        {11, 0, {{"h", "400"}, {"b", "200"}, {"tw", "8"}, {"t1", "13"}}, {400, 200, 8, 13, 13}},
        {11, 0, {{"h", "400.5"}, {"b", "200.25"}, {"tw", "8"}, {"t1", "13.5"}}, {400.5, 200.25, 8, 13.5, 13.5}},
        {12, 0, {{"h", "400"}, {"b1", "200"}, {"b2", "300"}, {"tw", "8"}, {"t1", "10"}, {"t2", "12"}},
         {400, 200, 300, 8, 10, 12}},
        {12, 0, {{"h", "400"}, {"b1", "200"}, {"b2", "300"}, {"tw", "8"}, {"t1", "10"}}, {400, 200, 300, 8, 10, 10}},
        {13, 0, {{"b1", "300"}, {"b2", "200"}, {"t1", "10"}, {"t2", "12"}}, {300, 200, 10, 12}},
        {13, 0, {{"b1", "300"}, {"t1", "10"}, {"t2", "12"}}, {300, 300, 10, 12}},
        {14, 0, {{"d", "300"}, {"t", "10"}}, {300, 10}},
        {15, 0, {{"h1", "400"}, {"b1", "200"}, {"tw1", "8"}, {"t1", "13"}, {"t2", "12"},
                 {"h2", "300"}, {"b2", "150"}, {"tw2", "6"}, {"t3", "10"}, {"t4", "9"}},
         {400, 200, 8, 13, 12, 300, 150, 6, 10, 9}},
        {15, 0, {{"h1", "400"}, {"b1", "200"}, {"tw1", "8"}, {"t1", "13"}, {"h2", "300"}, {"b2", "150"},
                 {"tw2", "6"}, {"t3", "10"}},
         {400, 200, 8, 13, 13, 300, 150, 6, 10, 10}},
        {15, 0, {{"h1", "400"}, {"b1", "200"}, {"tw1", "8"}, {"t1", "13"}, {"h2", "300"}, {"b2", "150"},
                 {"tw2", "6"}, {"t3", "10"}, {"t4", "9"}},
         {400, 200, 8, 13, 13, 300, 150, 6, 10, 9}},
        {16, 0, {{"h", "400"}, {"b", "200"}, {"t1", "10"}, {"t2", "12"}}, {400, 200, 10, 12}},
        // The parser does not complete the welded T: its short form reads back as three values.
        {16, 0, {{"h", "400"}, {"b", "200"}, {"t1", "10"}}, {400, 200, 10}},
        {17, 0, {{"h1", "400"}, {"h2", "300"}, {"b", "200"}, {"tw", "8"}, {"t1", "10"}, {"t2", "12"}},
         {400, 300, 200, 8, 10, 12}},
        {17, 0, {{"h1", "400"}, {"h2", "300"}, {"b", "200"}, {"tw", "8"}, {"t1", "10"}}, {400, 300, 200, 8, 10, 10}},
        {18, 0, {{"R1", "500"}, {"R2", "400"}, {"t", "10"}}, {500, 400, 10}},
        {19, 0, {{"B1", "400"}, {"B2", "300"}, {"b1", "200"}, {"b2", "150"}, {"t1", "10"}, {"t2", "12"}},
         {400, 300, 200, 150, 10, 12}},
        // Held in ascending order of the names: b, h1, h2, t1, t2, tw.
        {20, 0, {{"h1", "400"}, {"h2", "300"}, {"b", "200"}, {"tw", "8"}, {"t1", "10"}, {"t2", "12"}},
         {200, 400, 300, 10, 12, 8}},
        {21, 0, {{"R1", "400"}, {"R2", "300"}, {"r1", "200"}, {"r2", "150"}, {"t", "10"}}, {400, 300, 200, 150, 10}},
        {1012, 0, {{"D", "300"}}, {300}}, {1013, 0, {{"D", "300"}, {"t", "8"}}, {300, 8}},
        {1013, 1, {{"D", "300"}, {"t", "8"}}, {300, 8}},
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
            EXPECT_EQ(info.typeIndex, positionInGroup(row.type));
            EXPECT_EQ(info.params, row.params);
            EXPECT_EQ(info.paramCount, row.params.size());
        }
    }
}
