// The shipped databases as the build generates them: every catalogue name parses back to its own
// section type, every weight agrees with its dimensions, every row drawn with its radii gives its
// published weight and surface, and the section types, their parameters, examples and ball forms
// agree with the parser and the welded norms. The section pictures of the dialog as the picture
// generator draws them: every section type at its default values names each of its parameters on
// a tag clear of the steel and of the other tags; a tapered type shows both its ends.
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SectionSchemeProvider.h"
#include "section_geometry/SKROutlineCheck.h"
#include "section_geometry/SKRSectionPainter.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPolygonParser.h"
#include "section_geometry/SKRSectionProperties.h"
#include "section_spec/SKRSectionPolyInfoParser.h"
#include "section_spec/SKRSectionTypeTable.h"
#include "section_spec/WeldSectionNormParser.h"

#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPPolygon.h"
#include "vmp/VMPDBRecord.h"

#include "ShippedRepository.h"

#include <QPainterPath>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <map>

using namespace skr::section;
using skr::util::FetchInstance;

namespace {

// Half a unit of the last digit with which a figure is written (27.9 -> 0.05, 8.395 -> 0.0005).
double halfUnit(double value) {
    const QString text = QString::number(value, 'g', 15);
    const int point = text.indexOf(QLatin1Char('.'));
    return 0.5 * std::pow(10.0, point < 0 ? 0 : -(text.size() - point - 1));
}

class ShippedDatabase : public ShippedRepositoryTest {
protected:
    void SetUp() override {
        m_catalogue = FetchInstance<SKRHotRollingSectionDBProvider>();
        ASSERT_NE(m_catalogue, nullptr) << "the section database was not opened from " BXQ_SHIPPED_DATA_DIR;
    }

    SKRHotRollingSectionDBProvider* m_catalogue = nullptr;
};

// Hollow sections whose published weights were worked out with a corner radius of 2t rather than
// the 2.5t of their wall thickness (data/README.md, "Deviations shipped as published").
const QSet<QString> kHollowRowsWithTheSmallerRadius{"□120*120*8", "□140*140*8", "□160*160*8", "□150*100*8",
                                                    "□160*80*8",  "□180*100*8", "□200*100*8"};

bool propertiesOf(int type, const QMap<QString, double>& params, skr::geometry::SKRSectionProperties& out, QString* error) {
    QString text;
    if (!skr::geometry::sectionOutlineText(type, params, text, error)) return false;
    const auto polygon = skr::geometry::ParseSectionPolygon(text);
    if (!polygon || !skr::geometry::checkSectionOutline(*polygon, error)) return false;
    out = skr::geometry::SectionProperties(*polygon);
    return true;
}

}  // namespace

// Every catalogue row: its name parses back to its type and dimensions; its weight agrees with its
// dimensions; drawn with its radii, the outline's area gives the published weight per metre within
// 1 % and its outer perimeter the published surface per metre within 2 %.
TEST_F(ShippedDatabase, EveryCatalogueRowParsesBackWeighsWhatItsDimensionsSayAndItsOutlineGivesItsFigures) {
    std::vector<SKRHotRollingSection> rows;
    for (int type : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 1011}) {
        const auto ofType = m_catalogue->listByType(type);
        EXPECT_FALSE(ofType.empty()) << "no catalogue rows of type " << type;
        rows.insert(rows.end(), ofType.begin(), ofType.end());
    }
    EXPECT_EQ(m_catalogue->listAll().size(), rows.size());
    QSet<QString> names;
    const double steel = 0.00785, drawnSteel = skr::geometry::kSteelKgPerMetrePerMm2;  // kg/m per mm2 of section
    int checked = 0, drawn = 0;
    for (const SKRHotRollingSection& row : rows) {
        const QString name = QString::fromStdWString(row.standardName);
        SCOPED_TRACE(name.toStdString());
        EXPECT_FALSE(names.contains(name)) << "listed twice";
        names << name;
        SKRSectionPolyInfoParser parser;
        parser.parser(name);
        const GSectionPolyInfo info = parser.sectionPolyInfo();
        EXPECT_EQ(info.sectionType, row.sectionType);
        EXPECT_EQ(info.name, name) << "the name is not written as users type it";
        std::map<std::wstring, double> p(row.params.begin(), row.params.end());  // absent dimensions read as zero
        QList<double> expected;
        if (row.sectionType == 1 || row.sectionType == 2) {
            expected = {p[L"h"], p[L"b"], p[L"d"], p[L"t"]};
        } else {
            for (const QString& number : info.valueText.split(QLatin1Char('*'))) expected << number.toDouble();
            // The dimensions in the name are the row's own, in the order the name writes them.
            static const std::map<int, std::vector<const wchar_t*>> kNameOrder{
                {3, {L"b", L"d"}},         {4, {L"B", L"b", L"d"}},         {5, {L"D", L"t"}},
                {6, {L"d"}},               {7, {L"h", L"b", L"tw", L"t"}},  {8, {L"h", L"b", L"c", L"t"}},
                {9, {L"h", L"b", L"c", L"t"}}, {10, {L"h", L"b", L"tw", L"t"}}, {1011, {L"h", L"b", L"t"}}};
            QList<double> dimensions;
            for (const wchar_t* code : kNameOrder.at(row.sectionType)) dimensions << p[code];
            EXPECT_EQ(dimensions, expected);
        }
        EXPECT_EQ(info.params, expected.toVector());

        QMap<QString, double> dimensions;
        for (const auto& param : row.params) dimensions.insert(QString::fromStdWString(param.first), param.second);
        QMap<QString, double> params = skr::geometry::catalogueOutlineParams(row.sectionType, dimensions, row.weightMeter);
        skr::geometry::SKRSectionProperties outline;
        QString error;
        ASSERT_TRUE(propertiesOf(row.sectionType, params, outline, &error)) << error.toStdString();
        ++drawn;
        if (row.sectionType == 8 || row.sectionType == 9) {  // drawn with the usual bends of 2t too
            QMap<QString, double> usual = params;
            usual.remove(QStringLiteral("r"));
            skr::geometry::SKRSectionProperties withUsualBends;
            ASSERT_TRUE(propertiesOf(row.sectionType, usual, withUsualBends, &error)) << error.toStdString();
        }
        EXPECT_LE(std::abs(outline.outerPerimeter / 1000 / row.area - 1), 0.02) << "outer perimeter " << outline.outerPerimeter << " mm";
        // Cold-formed rows (8, 9) take their bend radius from their weight, so their weight agrees
        // by construction; their surface is the independent check.
        const double drawnWeight = outline.area * drawnSteel / row.weightMeter - 1;
        if (!kHollowRowsWithTheSmallerRadius.contains(name)) {
            EXPECT_LE(std::abs(drawnWeight), 0.01) << "area " << outline.area << " mm2";
        } else {
            // The outline keeps the radius of its wall thickness, 1 to 2 % short of the printed
            // weight; with the radius the weight was worked out with it agrees.
            EXPECT_LT(drawnWeight, -0.01);
            EXPECT_GT(drawnWeight, -0.02);
            params.insert(QStringLiteral("r"), params.value(QStringLiteral("t")));  // outer radius 2t
            ASSERT_TRUE(propertiesOf(row.sectionType, params, outline, &error)) << error.toStdString();
            EXPECT_NEAR(outline.area * drawnSteel / row.weightMeter, 1.0, 0.01);
        }

        // The weight from the dimensions by the published tables' own formulas.
        const double w = row.weightMeter;
        const double h = p[L"h"], b = p[L"b"], d = p[L"d"], t = p[L"t"], r = p[L"r"], r1 = p[L"r1"];
        double area = 0;        // mm2 from the dimensions
        double tolerance = 0;   // relative, besides the rounding of the printed weight
        switch (row.sectionType) {
        case 1: area = h * d + 2 * t * (b - d) + 0.615 * (r * r - r1 * r1), tolerance = 0.0015; break;
        case 2: area = h * d + 2 * t * (b - d) + 0.349 * (r * r - r1 * r1), tolerance = 0.0015; break;
        case 3: area = d * (2 * b - d) + 0.215 * (r * r - 2 * d * d / 9), tolerance = 0.001; break;
        case 4: area = d * (p[L"B"] + b - d) + 0.215 * (r * r - 2 * d * d / 9), tolerance = 0.001; break;
        case 7: area = p[L"tw"] * (h - 2 * t) + 2 * b * t + 0.858 * r * r, tolerance = 0.001; break;
        case 10: area = p[L"tw"] * (h - t) + b * t + 0.429 * r * r, tolerance = 0.001; break;
        // The tube and bar tables use the rounded factors 0.0246615 = pi x 0.00785 and 0.006165.
        case 5: area = 0.0246615 * (p[L"D"] - t) * t / steel, tolerance = row.subId == 1 ? 0.002 : 0.0; break;
        case 6: area = 0.006165 * d * d / steel, tolerance = 0.0; break;
        case 1011: {
            // Outer corner radius by wall thickness; a few published weights use 2t throughout
            // (listed in data/README.md), so either radius is accepted.
            const double byWall = t <= 6 ? 2 * t : t <= 10 ? 2.5 * t : 3 * t;
            const auto hollow = [&](double radius) {
                return 2 * t * (h + b) - 4 * t * t - (4 - M_PI) * (radius * radius - (radius - t) * (radius - t));
            };
            const bool rectangular160 = name.startsWith(QStringLiteral("□160*80*"));
            tolerance = rectangular160 ? 0.0025 : 0.002;
            area = std::abs(hollow(2 * t) * steel - w) < std::abs(hollow(byWall) * steel - w) ? hollow(2 * t) : hollow(byWall);
            break;
        }
        case 8:
        case 9: {
            // Cold-formed: the bend radius that the weight implies must be a plausible 1.4t to 2.6t.
            const double c = p[L"c"];
            const double centreLine = w / steel / t;
            const double radius = ((h - t) + 2 * (b - t) + 2 * (c - t / 2) - centreLine) / (4 * (2 - M_PI / 2)) - t / 2;
            EXPECT_GE(radius, 1.4 * t);
            EXPECT_LE(radius, 2.6 * t);
            ++checked;
            continue;
        }
        default: ADD_FAILURE() << "unexpected type " << row.sectionType; continue;
        }
        EXPECT_NEAR(w, area * steel, tolerance * w + halfUnit(w) + 1e-9);
        ++checked;
    }
    EXPECT_GT(checked, 1000);
    EXPECT_GT(drawn, 1200);
}

// The section picture of every type at its default values names each of its parameters on a tag
// clear of the steel and of the other tags.
TEST_F(ShippedDatabase, EveryTypeExampleParsesToItsTypeWeldedDefaultsHoldTheirRulesAndThePicturesNameEachParameter) {
    auto* schemes = FetchInstance<SectionSchemeProvider>();
    auto* params = FetchInstance<SectionParamProvider>();
    ASSERT_TRUE(schemes && params);
    const auto all = schemes->allSchemes();
    ASSERT_EQ(all.size(), 24u);
    const auto norms = WeldSectionNormParser::weldedNorms();
    int drawn = 0;
    for (const SectionScheme& scheme : all) {
        SCOPED_TRACE(scheme.polyId);
        if (sectionTypeDescriptor(scheme.polyId)) {  // custom and user sections have no type row
            QMap<QString, double> values;
            QStringList codes;
            int subClass = -1;
            for (const SectionParam& param : params->paramsOf(scheme.polyId)) {
                if (subClass == -1) subClass = param.subClassId;
                if (param.subClassId != subClass) continue;
                codes << param.paramCode;
                values.insert(param.paramCode, param.defVal.toDouble());
            }
            for (const QString& code : sectionTypeParamCodes(scheme.polyId))
                EXPECT_TRUE(codes.contains(code)) << "the database lists no parameter " << code.toStdString();
            QString error;
            const skr::geometry::SKRSectionDrawing drawing =
                skr::geometry::drawSection(scheme.polyId, values, codes, QSize(240, 240), &error);
            ASSERT_FALSE(drawing.image.isNull()) << error.toStdString();
            ++drawn;
            const QRectF picture(QPointF(0, 0), QSizeF(drawing.image.size()));
            for (const QString& code : codes) {
                const bool named = std::any_of(drawing.labels.begin(), drawing.labels.end(),
                                               [&](const auto& label) { return label.code == code; });
                EXPECT_TRUE(named) << "no tag names " << code.toStdString();
            }
            for (int i = 0; i < drawing.labels.size(); ++i) {
                const auto& label = drawing.labels[i];
                EXPECT_TRUE(codes.contains(label.code)) << label.code.toStdString();
                EXPECT_TRUE(picture.contains(label.box)) << label.code.toStdString() << " leaves the picture";
                EXPECT_FALSE(drawing.steel.intersects(label.box))
                    << label.code.toStdString() << " at " << label.box.x() << "," << label.box.y() << " " << label.box.width() << "x"
                    << label.box.height() << " covers the steel";
                for (int k = 0; k < i; ++k)
                    EXPECT_FALSE(label.box.intersects(drawing.labels[k].box))
                        << label.code.toStdString() << " covers " << drawing.labels[k].code.toStdString();
            }
        }
        const QString hint = scheme.hintMsg;
        const QString example = hint.section(QStringLiteral("："), 1);
        ASSERT_FALSE(example.isEmpty()) << hint.toStdString();
        SKRSectionPolyInfoParser parser;
        parser.parser(example);
        EXPECT_EQ(parser.sectionPolyInfo().sectionType, scheme.polyId) << example.toStdString();
        EXPECT_EQ(static_cast<int>(SKRSectionPolyInfoParser::polyGroupType(scheme.polyId)), scheme.groupId);
        EXPECT_FALSE(scheme.sectionPoly.isEmpty());

        QStringList codes;
        for (const SectionParam& param : params->paramsOf(scheme.polyId)) {
            codes << param.paramCode;
            EXPECT_EQ(param.unit, QStringLiteral("mm"));
            const QString& valid = param.validExpr;
            EXPECT_TRUE(QRegularExpression(QStringLiteral("^\\(%1 >= [0-9.]+\\) And \\( %1 <=[0-9.]+\\)$")).match(valid).hasMatch())
                << valid.toStdString();
        }
        ASSERT_FALSE(codes.isEmpty());
        codes.sort();
        // Welded and ball types: exactly the norm's parameters, and the example holds every rule.
        for (const SectionNormEntry& norm : norms) {
            QStringList names = norm.paramNames;
            names.sort();
            if (norm.sectionType == scheme.polyId) {
                EXPECT_EQ(codes, names);
            }
        }
        if (scheme.groupId == 2) {
            WeldSectionNormParser norm;
            ASSERT_TRUE(norm.match(example)) << example.toStdString();
            QStringList failed;
            EXPECT_TRUE(norm.checkRules(&failed)) << failed.join(' ').toStdString();
        }
        // Catalogue types: the parameters are the dimensions the catalogue rows carry.
        for (const SKRHotRollingSection& row : scheme.groupId == 1 && scheme.polyId < 1012
                                                   ? m_catalogue->listByType(scheme.polyId)
                                                   : std::vector<SKRHotRollingSection>()) {
            QStringList carried;
            for (const auto& param : row.params)
                if (param.second != 0) carried << QString::fromStdWString(param.first);
            carried.sort();
            ASSERT_EQ(carried, codes) << QString::fromStdWString(row.standardName).toStdString();
        }
    }
    EXPECT_GE(drawn, 24);

    // The ball forms evaluate their expressions on their examples.
    ndp::CDBTable* table = VMPNDDBManager::nddbMgr()->getNDDB("SKRSectionPolyDB.KDB", true)->GetTable(L"SectionBallType");
    ASSERT_NE(table, nullptr);
    ndp::CFileAddressList balls;
    ASSERT_TRUE(table->ListAll(balls));
    ASSERT_EQ(balls.GetCount(), 3);
    for (int i = 0; i < balls.GetCount(); ++i) {
        const VMPDBRecord row(table, balls.GetItem(i));
        const QString expression = row.getString(QStringLiteral("Expression"), QString());
        EXPECT_FALSE(row.getString(QStringLiteral("TypeName"), QString()).isEmpty());
        const int type = row.getInteger(QStringLiteral("PolyID"), -1);
        const QString text = type == 1012 ? QStringLiteral("BS100") : QStringLiteral("WS300*8");
        SKRSectionPolyInfoParser parser;
        const SKRWeldBallInfo ball = parser.parser(text, expression);
        SCOPED_TRACE(expression.toStdString());
        EXPECT_EQ(ball.code, 0);
        const double d = type == 1012 ? 100 : 300, t = type == 1012 ? d / 2 : 8;
        const double weight = M_PI / 6 * (std::pow(d, 3) - std::pow(d - 2 * t, 3)) * 7.85e-6;
        ASSERT_EQ(ball.values.count(L"W"), 1u);
        EXPECT_NEAR(ball.values.at(L"W"), weight, 1e-9 * weight);
    }
    SKRSectionPolyInfoParser parser;
    const VMPDBRecord welded(table, balls.GetItem(1));
    EXPECT_EQ(parser.parser(QStringLiteral("WS300*14"), welded.getString(QStringLiteral("Expression"), QString())).code, 1);  // D/t < 25
    EXPECT_EQ(parser.parser(QStringLiteral("WS300*6"), welded.getString(QStringLiteral("Expression"), QString())).code, 2);   // D/t > 45

    // The picture of a tapered H shows its two ends at one scale, the first left: swapping the depths
    // swaps the shapes, and an H with equal depths shows two equal shapes.
    for (const auto& [h1, h2] : {std::pair{600.0, 400.0}, {400.0, 600.0}, {500.0, 500.0}}) {
        const QMap<QString, double> values{{"h1", h1}, {"h2", h2}, {"b", 200}, {"tw", 8}, {"t1", 12}, {"t2", 12}};
        QString error;
        const QPainterPath path = skr::geometry::sectionPicturePath(stWeldedTaperedH, values, &error);
        ASSERT_FALSE(path.isEmpty()) << error.toStdString();
        const QList<QPolygonF> shapes = path.toSubpathPolygons();
        ASSERT_EQ(shapes.size(), 2);
        const QRectF first = shapes[0].boundingRect(), second = shapes[1].boundingRect();
        EXPECT_LT(first.right(), second.left());
        EXPECT_NEAR(first.height(), h1, 1e-6);
        EXPECT_NEAR(second.height(), h2, 1e-6);
        EXPECT_NEAR(first.center().y(), second.center().y(), 1e-6) << "centred on one axis";
        EXPECT_NEAR(first.width(), 200, 1e-6);
        EXPECT_NEAR(second.width(), 200, 1e-6);
    }
}
