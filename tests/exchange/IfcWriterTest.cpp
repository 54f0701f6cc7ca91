// The IFC writer's own rules, which a lenient reader would not catch: Part 21 number and string
// forms, the GlobalId alphabet, and in a whole exported project every entity with the attribute
// count of its IFC4 definition, every reference defined, every GlobalId well-formed and unique,
// and the same project giving the same bytes.
#include "exchange/SKRIfcProjectExport.h"
#include "exchange/SKRStepWriter.h"

#include "body_builder/SKRMemberSolidShape.h"
#include "solid_split/SKRCuttingPlaneStore.h"
#include "vmp/VMPMembers.h"

#include "data/ShippedRepository.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <cstdlib>
#include <map>

using namespace skr::exchange;

namespace {

TEST(StepWriter, RealsAreShortestExactAndHaveAPoint) {
    const struct {
        double value;
        const char* text;
    } cases[] = {{0.0, "0."},       {-0.0, "0."},           {1.0, "1."},           {400.0, "400."},
                 {0.25, "0.25"},    {0.1, "0.1"},           {-13.5, "-13.5"},      {1e-5, "1.E-05"},
                 {2.5e20, "2.5E+20"}, {1.0 / 3, "0.3333333333333333"}, {6283.185307179586, "6283.185307179586"}};
    for (const auto& c : cases) EXPECT_EQ(stepReal(c.value).text, QByteArray(c.text)) << c.value;
    // Every real reads back as itself.
    std::srand(17);
    for (int i = 0; i < 2000; ++i) {
        const double value = (std::rand() - RAND_MAX / 2) * std::pow(10.0, std::rand() % 40 - 20) / 7.0;
        const QByteArray text = stepReal(value).text;
        EXPECT_EQ(std::strtod(text.constData(), nullptr), value) << text.constData();
        EXPECT_TRUE(text.contains('.')) << text.constData();
    }
    EXPECT_THROW(stepReal(std::nan("")), std::invalid_argument);
}

TEST(StepWriter, StringsAreEscaped) {
    const struct {
        QString value;
        const char* text;
    } cases[] = {
        {QStringLiteral("H400*200*8*13"), "'H400*200*8*13'"},
        {QStringLiteral("it's"), "'it''s'"},
        {QStringLiteral("a\\b"), "'a\\\\b'"},
        {QStringLiteral("热轧H型钢"), "'\\X2\\70ED8F67\\X0\\H\\X2\\578B94A2\\X0\\'"},
        {QStringLiteral("\u25a1150*150*6"), "'\\X2\\25A1\\X0\\150*150*6'"},
        {QString::fromUcs4(U"a\U0001F600b"), "'a\\X4\\0001F600\\X0\\b'"},
        {QStringLiteral("line\nbreak"), "'line\\X2\\000A\\X0\\break'"},
    };
    for (const auto& c : cases) EXPECT_EQ(stepString(c.value).text, QByteArray(c.text)) << c.value.toStdString();
}

const QRegularExpression kGlobalId(QStringLiteral("^[0-3][0-9A-Za-z_$]{21}$"));

TEST(StepWriter, GlobalIdsComeFromTheirKeys) {
    QSet<QString> ids;
    for (int i = 0; i < 5000; ++i) {
        const QByteArray key = "p/member/" + QByteArray::number(i);
        const QString id = stepGlobalId(key);
        EXPECT_TRUE(kGlobalId.match(id).hasMatch()) << id.toStdString();
        EXPECT_EQ(stepGlobalId(key), id);
        ids.insert(id);
    }
    EXPECT_EQ(ids.size(), 5000);
}

// The attribute counts of the IFC4 entities, from the schema.
const std::map<QString, int> kAttributeCounts{
    {"IFCCARTESIANPOINT", 1}, {"IFCDIRECTION", 1}, {"IFCAXIS2PLACEMENT3D", 3}, {"IFCAXIS2PLACEMENT2D", 2},
    {"IFCLOCALPLACEMENT", 2}, {"IFCCARTESIANPOINTLIST2D", 1}, {"IFCINDEXEDPOLYCURVE", 3}, {"IFCPLANE", 1},
    {"IFCISHAPEPROFILEDEF", 10}, {"IFCUSHAPEPROFILEDEF", 10}, {"IFCLSHAPEPROFILEDEF", 9}, {"IFCTSHAPEPROFILEDEF", 12},
    {"IFCCSHAPEPROFILEDEF", 8}, {"IFCZSHAPEPROFILEDEF", 9}, {"IFCCIRCLEPROFILEDEF", 4},
    {"IFCCIRCLEHOLLOWPROFILEDEF", 5}, {"IFCRECTANGLEPROFILEDEF", 5}, {"IFCRECTANGLEHOLLOWPROFILEDEF", 8},
    {"IFCARBITRARYCLOSEDPROFILEDEF", 3}, {"IFCARBITRARYPROFILEDEFWITHVOIDS", 4}, {"IFCEXTRUDEDAREASOLID", 4},
    {"IFCHALFSPACESOLID", 2}, {"IFCBOOLEANCLIPPINGRESULT", 3}, {"IFCGEOMETRICREPRESENTATIONCONTEXT", 6},
    {"IFCGEOMETRICREPRESENTATIONSUBCONTEXT", 10}, {"IFCSHAPEREPRESENTATION", 4}, {"IFCPRODUCTDEFINITIONSHAPE", 3},
    {"IFCSIUNIT", 4}, {"IFCUNITASSIGNMENT", 1}, {"IFCPROJECT", 9}, {"IFCSITE", 14}, {"IFCBUILDING", 12},
    {"IFCBUILDINGSTOREY", 10}, {"IFCBEAM", 9}, {"IFCCOLUMN", 9}, {"IFCMEMBER", 9}, {"IFCRELAGGREGATES", 6},
    {"IFCRELCONTAINEDINSPATIALSTRUCTURE", 6}, {"IFCMATERIAL", 3}, {"IFCRELASSOCIATESMATERIAL", 6},
    {"IFCQUANTITYLENGTH", 5}, {"IFCQUANTITYAREA", 5}, {"IFCQUANTITYVOLUME", 5}, {"IFCQUANTITYWEIGHT", 5},
    {"IFCELEMENTQUANTITY", 6}, {"IFCRELDEFINESBYPROPERTIES", 6}, {"IFCMATERIALPROFILE", 6},
    {"IFCMATERIALPROFILESET", 4}, {"IFCMATERIALPROFILESETUSAGE", 3}};

// The entities that carry a GlobalId first (besides the relations).
const QSet<QString> kRooted{"IFCPROJECT", "IFCSITE", "IFCBUILDING", "IFCBUILDINGSTOREY", "IFCBEAM", "IFCCOLUMN",
                            "IFCMEMBER", "IFCELEMENTQUANTITY"};

// The top-level arguments of an entity's argument text, strings and nested lists kept whole.
QStringList topLevelArguments(const QString& text) {
    QStringList arguments;
    QString current;
    int depth = 0;
    bool quoted = false;
    for (const QChar c : text) {
        if (quoted) {
            current += c;
            if (c == QLatin1Char('\'')) quoted = false;  // a doubled quote reopens at once
            continue;
        }
        if (c == QLatin1Char('\'')) quoted = true;
        if (c == QLatin1Char('(')) ++depth;
        if (c == QLatin1Char(')')) --depth;
        if (c == QLatin1Char(',') && depth == 0) {
            arguments << current;
            current.clear();
            continue;
        }
        current += c;
    }
    arguments << current;
    return arguments;
}

class IfcExport : public ShippedRepositoryTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_model.open(m_dir.filePath("frame.KDB")));
        m_model.setSolidShapeFactory([](const QString& section, double length, const ndp::CoordinateSystem3& head) {
            return std::unique_ptr<IVMPSolidShape>(new skr::body::SKRMemberSolidShape(section, length, head));
        });
        // A beam of every kind of profile the writer has: parametric, with voids, with arcs.
        const char* sections[] = {"I20a", "[20a", "L100*80*10", "D89*4", "D20", "HN400*200*8*13", "C200*70*20*3",
                                  "TN200*200*8*13", "\u25a1150*150*6", "Z250*75*25*3", "B400*300*10*12",
                                  "TY600*400*400*300*10"};
        double y = 0;
        for (const char* section : sections) addMember(QString::fromUtf8(section), {0, y, 0}, {6000, y, 0});
        addMember(QStringLiteral("H400*200*8*13"), {0, 0, 0}, {0, 0, 4000});    // a column
        addMember(QStringLiteral("H400*200*8*13"), {0, 0, 0}, {3000, 0, 3000});  // a brace
        skr::split::CuttingPlaneRecord cut;
        cut.elementId = 1;
        cut.local = ndp::MakeFrame({0, 0, 500}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
        ASSERT_TRUE(skr::split::AddCuttingPlaneRecord(m_model.getProjectDB(), cut, nullptr));
    }
    void addMember(const QString& section, const ndp::CVector3& from, const ndp::CVector3& to) {
        VMPMember member;
        member.section = section;
        member.start = from;
        member.end = to;
        ASSERT_TRUE(VMPAddMember(m_model.getProjectDB(), member, nullptr));
    }
    QByteArray exported(const QString& folder, SKRIfcExportOptions options = {}) {
        QDir().mkpath(m_dir.filePath(folder));
        const QString path = m_dir.filePath(folder + QStringLiteral("/frame.ifc"));
        QString error;
        EXPECT_TRUE(exportProjectIfc(&m_model, path, options, nullptr, &error)) << error.toStdString();
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    QTemporaryDir m_dir;
    VMPProjectModel m_model;
};

TEST_F(IfcExport, EveryEntityHasItsAttributesAndEveryReferenceIsDefined) {
    const QString text = QString::fromUtf8(exported(QStringLiteral("a")));
    ASSERT_TRUE(text.startsWith(QLatin1String("ISO-10303-21;")));
    ASSERT_TRUE(text.contains(QLatin1String("FILE_SCHEMA(('IFC4'));")));
    const QRegularExpression line(QStringLiteral("^#(\\d+)=([A-Z0-9]+)\\((.*)\\);$"), QRegularExpression::MultilineOption);
    QSet<int> defined;
    QSet<QString> globalIds;
    QMap<QString, int> seen;
    QStringList referenced;
    for (auto m = line.globalMatch(text); m.hasNext();) {
        const auto match = m.next();
        const QString entity = match.captured(2);
        defined.insert(match.captured(1).toInt());
        ++seen[entity];
        const QStringList arguments = topLevelArguments(match.captured(3));
        const auto expected = kAttributeCounts.find(entity);
        ASSERT_NE(expected, kAttributeCounts.end()) << "unexpected entity " << entity.toStdString();
        EXPECT_EQ(arguments.size(), expected->second) << match.captured(0).toStdString();
        // Rooted entities start with their GlobalId.
        if (kRooted.contains(entity) || entity.startsWith(QLatin1String("IFCREL"))) {
            EXPECT_EQ(arguments.first().size(), 24) << arguments.first().toStdString();
            const QString id = arguments.first().mid(1, 22);
            EXPECT_TRUE(kGlobalId.match(id).hasMatch()) << id.toStdString();
            EXPECT_FALSE(globalIds.contains(id)) << "GlobalId used twice: " << id.toStdString();
            globalIds.insert(id);
        }
        for (auto r = QRegularExpression(QStringLiteral("#(\\d+)")).globalMatch(match.captured(3)); r.hasNext();)
            referenced << r.next().captured(1);
    }
    for (const QString& r : referenced) EXPECT_TRUE(defined.contains(r.toInt())) << "#" << r.toStdString();
    EXPECT_EQ(seen.value("IFCBEAM"), 12);
    EXPECT_EQ(seen.value("IFCCOLUMN"), 1);
    EXPECT_EQ(seen.value("IFCMEMBER"), 1);
    EXPECT_EQ(seen.value("IFCBOOLEANCLIPPINGRESULT"), 1);
    EXPECT_EQ(seen.value("IFCARBITRARYPROFILEDEFWITHVOIDS"), 2);  // the box of two walls, the oval tube
    EXPECT_EQ(seen.value("IFCELEMENTQUANTITY"), 14);
    // Every section's parametric profile names it, filleted rolled shapes included.
    EXPECT_EQ(seen.value("IFCMATERIALPROFILE"), 13);
    for (const char* parametric : {"IFCISHAPEPROFILEDEF", "IFCUSHAPEPROFILEDEF", "IFCLSHAPEPROFILEDEF",
                                   "IFCCIRCLEHOLLOWPROFILEDEF", "IFCCIRCLEPROFILEDEF", "IFCCSHAPEPROFILEDEF",
                                   "IFCTSHAPEPROFILEDEF", "IFCRECTANGLEHOLLOWPROFILEDEF"})
        EXPECT_GT(seen.value(parametric), 0) << parametric;
    // Project, site, building, storey; three aggregations; each member with its quantity set and
    // their relation; the containment; one material relation per section.
    EXPECT_EQ(globalIds.size(), 4 + 3 + 14 * 3 + 1 + 13);
}

TEST_F(IfcExport, TheSameProjectGivesTheSameBytes) {
    const QByteArray first = exported(QStringLiteral("a"));
    EXPECT_EQ(exported(QStringLiteral("b")), first);
    SKRIfcExportOptions metres;
    metres.metres = true;
    const QByteArray inMetres = exported(QStringLiteral("c"), metres);
    EXPECT_NE(inMetres, first);
    EXPECT_TRUE(inMetres.contains("IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.)"));
    EXPECT_TRUE(first.contains("IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.)"));
}

TEST(IfcElementKind, ColumnsBeamsAndBracesBySlope) {
    const struct {
        std::array<double, 3> to;
        EnIfcElementKind kind;
    } cases[] = {{{0, 0, 3000}, EnIfcElementKind::Column},   {{100, 0, 3000}, EnIfcElementKind::Column},
                 {{300, 0, 3000}, EnIfcElementKind::Member}, {{3000, 0, 3000}, EnIfcElementKind::Member},
                 {{6000, 0, 0}, EnIfcElementKind::Beam},     {{6000, 6000, 400}, EnIfcElementKind::Beam},
                 {{6000, 0, -600}, EnIfcElementKind::Member}, {{0, 0, -3000}, EnIfcElementKind::Column}};
    for (const auto& c : cases)
        EXPECT_EQ(ifcElementKindOfAxis({0, 0, 0}, c.to), c.kind) << c.to[0] << "," << c.to[1] << "," << c.to[2];
}

}  // namespace
