// Parsed sections by parameter code: every type printed from distinct values reads back under the
// same codes, the codes agree with the shipped parameter table, and refusals. Printed names of
// short forms, with the keys in any order and spaces and empty pieces, read back too. And the
// section dialog's parameter manager on the shipped section database: parameters and defaults,
// the specification text, the insertion point, catalogue positioning, and the check with its
// messages and the offending parameter.
#include "section_spec/SKRPolyParamManger.h"
#include "section_spec/SKRSectionParams.h"
#include "section_spec/GSectionPolyInfo.h"
#include "section_spec/SKRSectionPolyInfoParser.h"
#include "section_spec/SKRSectionTypeTable.h"

#include "section_spec/QtPrinters.h"
#include "data/ShippedRepository.h"

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

class ParamManager : public ShippedRepositoryTest {};

QStringList codes(const SKRPolyParamManger& manager) {
    QStringList out;
    for (int i = 0; i < manager.paramCount(); ++i) out << manager.paramDef(i).paramCode;
    return out;
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

TEST_F(ParamManager, TypeComesWithItsParametersDefaultsTextAndInsertionPointAndTheCheckNamesWhatFails) {
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
}

TEST_F(ParamManager, SpecificationsPositionOnCatalogueRowsOrOnTheirType) {
    SKRPolyParamManger manager;
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
