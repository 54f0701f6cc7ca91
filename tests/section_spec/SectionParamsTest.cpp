// Parsed sections by parameter code: what each specification text means, code by code, for every
// section type; the codes agree with the shipped parameter table; refusals.
#include "section_geometry/SKRSectionOutline.h"
#include "section_spec/SKRSectionParams.h"
#include "section_spec/GSectionPolyInfo.h"
#include "section_spec/SKRSectionPolyInfoParser.h"
#include "section_spec/SKRSectionTypeTable.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <map>

using namespace skr::section;
using namespace skr::geometry;

namespace {

using Params = QMap<QString, double>;

GSectionPolyInfo parsed(const QString& text) {
    SKRSectionPolyInfoParser parser;
    parser.parser(text);
    return parser.sectionPolyInfo();
}

std::string describe(const Params& params) {
    std::string out;
    for (auto it = params.constBegin(); it != params.constEnd(); ++it)
        out += it.key().toStdString() + "=" + QString::number(it.value()).toStdString() + " ";
    return out;
}

struct TextCase {
    const char* text;
    int type;
    Params expected;
};

}  // namespace

TEST(SectionParams, EachTextsValuesLandUnderTheirCodes) {
    const std::vector<TextCase> cases = {
        {"HN400*200*8*13", 7, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t", 13}}},
        {"TN200*200*8*13", 10, {{"h", 200}, {"b", 200}, {"tw", 8}, {"t", 13}}},
        {"L100*10", 3, {{"b", 100}, {"d", 10}}},
        {"L100*80*10", 4, {{"B", 100}, {"b", 80}, {"d", 10}}},
        {"D89*4", 5, {{"D", 89}, {"t", 4}}},
        {"D20", 6, {{"d", 20}}},
        {"C200*70*20*2", 8, {{"h", 200}, {"b", 70}, {"c", 20}, {"t", 2}}},
        {"Z250*75*25*3", 9, {{"h", 250}, {"b", 75}, {"c", 25}, {"t", 3}}},
        {"H400*200*8*13", 11, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t1", 13}, {"t2", 13}}},
        {"H400*200/250*8*13*16", 12, {{"h", 400}, {"b1", 200}, {"b2", 250}, {"tw", 8}, {"t1", 13}, {"t2", 16}}},
        {"B300*10*12", 13, {{"b1", 300}, {"b2", 300}, {"t1", 10}, {"t2", 12}}},
        {"HD325*10", 14, {{"d", 325}, {"t", 10}}},
        {"H400*200*8*13+H500*180*10*15",
         15,
         {{"h1", 400}, {"b1", 200}, {"tw1", 8}, {"t1", 13}, {"t2", 13}, {"h2", 500}, {"b2", 180}, {"tw2", 10},
          {"t3", 15}, {"t4", 15}}},
        {"T200*200*8*13", 16, {{"h", 200}, {"b", 200}, {"t1", 8}, {"t2", 13}}},
        {"H(600~400)*200*8*12", 17, {{"h1", 600}, {"h2", 400}, {"b", 200}, {"tw", 8}, {"t1", 12}, {"t2", 12}}},
        {"D600~400*10", 18, {{"R1", 600}, {"R2", 400}, {"t", 10}}},
        {"BB600*400*400*300*12*14", 19, {{"B1", 600}, {"B2", 400}, {"b1", 400}, {"b2", 300}, {"t1", 12}, {"t2", 14}}},
        {"H600/400*200*8*12*14", 20, {{"h1", 600}, {"h2", 400}, {"b", 200}, {"tw", 8}, {"t1", 12}, {"t2", 14}}},
        {"TY600*400*400*300*10", 21, {{"R1", 600}, {"R2", 400}, {"r1", 400}, {"r2", 300}, {"t", 10}}},
        {"BS100", 1012, {{"D", 100}}},
        {"WS300*8", 1013, {{"D", 300}, {"t", 8}}},
    };
    for (const TextCase& c : cases) {
        SCOPED_TRACE(c.text);
        const GSectionPolyInfo info = parsed(QString::fromUtf8(c.text));
        ASSERT_EQ(info.sectionType, c.type);
        Params params;
        QString error;
        ASSERT_TRUE(sectionParamsByCode(info, params, &error)) << error.toStdString();
        EXPECT_EQ(params, c.expected) << describe(params);
        // And the outline drawing takes them as they are.
        QString outline;
        EXPECT_TRUE(sectionOutlineText(info.sectionType, params, outline, &error)) << error.toStdString();
    }
}

TEST(SectionParams, TheCodesAreTheShippedParameterTables) {
    QFile file(QStringLiteral(BXQ_SECTION_PARAMS_CSV));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text)) << BXQ_SECTION_PARAMS_CSV;
    QTextStream in(&file);
    std::map<int, QStringList> shipped;  // PolyID -> codes in ParamID order
    bool header = true;
    while (!in.atEnd()) {
        const QString line = in.readLine().trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) continue;
        if (header) {
            header = false;
            continue;
        }
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
    struct Refusal {
        const char* why;
        int type;
        QVector<double> values;
    } refusals[] = {
        {"invalid type", stInvalid, {1, 2}},
        {"custom section", stCustomBase + 1, {1, 2}},
        {"no values", stWeldedH, {}},
        {"too many values", stWeldedH, {400, 200, 8, 13, 13, 13}},
    };
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
        const GSectionPolyInfo info = parsed(name);
        SCOPED_TRACE(name.toStdString());
        EXPECT_EQ(info.sectionType, row.type);
        EXPECT_EQ(info.groupType, row.group);
        Params back;
        ASSERT_TRUE(sectionParamsByCode(info, back));
        EXPECT_EQ(describe(back), describe(values));
    }
}
