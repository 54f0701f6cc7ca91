// Parsed sections by parameter code: every type printed from distinct values reads back under the
// same codes, the codes agree with the shipped parameter table, and refusals. Printed names of
// short forms, with the keys in any order and spaces and empty pieces, read back too.
#include "section_spec/SKRSectionParams.h"
#include "section_spec/GSectionPolyInfo.h"
#include "section_spec/SKRSectionPolyInfoParser.h"
#include "section_spec/SKRSectionTypeTable.h"

#include "section_spec/QtPrinters.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

using namespace skr::section;

namespace {

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

}  // namespace

TEST(SectionParams, TheCodesAreTheShippedParameterTables) {
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
}

TEST(SectionParams, UnknownTypesMissingOrSurplusValuesAreRefused) {
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
}

// Every type of the section-type table printed from distinct values reads back as the same type
// with the same values under the same codes: the table's codes, layouts and completion rules agree.
TEST(SectionParams, EveryTypePrintedFromItsCodesParsesBackToThem) {
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
}

// Short forms leave out the parameter that the parser completes from another one; the printed
// name leaves out its separator too.
TEST(StandardName, ShortFormsPrintedFromKeysInAnyOrderAndSpacingParseBack) {
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
