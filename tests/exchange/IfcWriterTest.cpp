// The IFC writer's own rules, which a lenient reader would not catch: STEP number and string
// forms, the GlobalId alphabet, and in a whole exported project every entity with the attribute
// count of its IFC4 definition, every reference defined, every GlobalId well-formed and unique,
// and the same project giving the same bytes. Then bxq export as a user runs it: the options that
// change what is written (grade, element class, unit) and the refusals, each leaving the file.
#include "exchange/SKRIfcProjectExport.h"
#include "exchange/SKRStepWriter.h"

#include "body_builder/SKRMemberSolidShape.h"
#include "solid_split/SKRCuttingPlaneStore.h"
#include "vmp/VMPMembers.h"

#include "data/ShippedRepository.h"
#include "support/BxqProcess.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>

#include <cstdlib>
#include <map>

using namespace skr::exchange;
using bxqtest::contents;

namespace {

const QRegularExpression kGlobalId(QStringLiteral("^[0-3][0-9A-Za-z_$]{21}$"));

TEST(StepWriter, RealsAreShortestExactWithAPointStringsEscapedGlobalIdsFromTheirKeysAndElementsBySlope) {
    const std::pair<double, const char*> cases[] = {
        {0.0, "0."},     {-0.0, "0."},   {1.0, "1."},         {400.0, "400."},       {0.25, "0.25"},
        {0.1, "0.1"},    {-13.5, "-13.5"}, {1e-5, "1.E-05"}, {2.5e20, "2.5E+20"}, {1.0 / 3, "0.3333333333333333"},
        {6283.185307179586, "6283.185307179586"}};
    for (const auto& [value, text] : cases) EXPECT_EQ(stepReal(value).text, QByteArray(text)) << value;
    // Every real reads back as itself.
    std::srand(17);
    for (int i = 0; i < 2000; ++i) {
        const double value = (std::rand() - RAND_MAX / 2) * std::pow(10.0, std::rand() % 40 - 20) / 7.0;
        const QByteArray text = stepReal(value).text;
        EXPECT_EQ(std::strtod(text.constData(), nullptr), value) << text.constData();
        EXPECT_TRUE(text.contains('.')) << text.constData();
    }
    EXPECT_THROW(stepReal(std::nan("")), std::invalid_argument);

    // Strings are escaped; GlobalIds come from their keys.
    const std::pair<QString, const char*> strings[] = {
        {QStringLiteral("H400*200*8*13"), "'H400*200*8*13'"}, {QStringLiteral("it's"), "'it''s'"},
        {QStringLiteral("a\\b"), "'a\\\\b'"}, {QStringLiteral("\u25a1150*150*6"), "'\\X2\\25A1\\X0\\150*150*6'"},
        {QStringLiteral("热轧H型钢"), "'\\X2\\70ED8F67\\X0\\H\\X2\\578B94A2\\X0\\'"},
        {QString::fromUcs4(U"a\U0001F600b"), "'a\\X4\\0001F600\\X0\\b'"},
        {QStringLiteral("line\nbreak"), "'line\\X2\\000A\\X0\\break'"},
    };
    for (const auto& [value, text] : strings) EXPECT_EQ(stepString(value).text, QByteArray(text)) << value.toStdString();
    QSet<QString> ids;
    for (int i = 0; i < 5000; ++i) {
        const QByteArray key = "p/member/" + QByteArray::number(i);
        const QString id = stepGlobalId(key);
        EXPECT_TRUE(kGlobalId.match(id).hasMatch()) << id.toStdString();
        EXPECT_EQ(stepGlobalId(key), id);
        ids.insert(id);
    }
    EXPECT_EQ(ids.size(), 5000);

    // The element class of a member by the slope of its axis: columns, beams and braces.
    const std::pair<std::array<double, 3>, EnIfcElementKind> axes[] = {
        {{0, 0, 3000}, EnIfcElementKind::Column},   {{100, 0, 3000}, EnIfcElementKind::Column},
        {{300, 0, 3000}, EnIfcElementKind::Member}, {{3000, 0, 3000}, EnIfcElementKind::Member},
        {{6000, 0, 0}, EnIfcElementKind::Beam},     {{6000, 6000, 400}, EnIfcElementKind::Beam},
        {{6000, 0, -600}, EnIfcElementKind::Member}, {{0, 0, -3000}, EnIfcElementKind::Column}};
    for (const auto& [to, kind] : axes) EXPECT_EQ(ifcElementKindOfAxis({0, 0, 0}, to), kind) << to[0] << "," << to[2];
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
    QStringList arguments{QString()};
    int depth = 0;
    bool quoted = false;
    for (const QChar c : text) {
        if (quoted || c == QLatin1Char('\'')) quoted = quoted != (c == QLatin1Char('\''));  // '' closes and reopens
        else if (c == QLatin1Char('(')) ++depth;
        else if (c == QLatin1Char(')')) --depth;
        else if (c == QLatin1Char(',') && depth == 0) {
            arguments << QString();
            continue;
        }
        arguments.last() += c;
    }
    return arguments;
}

class IfcExport : public ShippedRepositoryTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_model.open(m_dir.filePath("frame.KDB")));
        m_model.setSolidShapeFactory([](const QString& section, double length, const ndp::CoordinateSystem3& head) {
            return std::unique_ptr<IVMPSolidShape>(new skr::body::SKRMemberSolidShape(section, length, head));
        });
        // A beam of every kind of profile the writer has: parametric, with voids, with arcs; a
        // column and a brace.
        const char* sections[] = {"I20a", "[20a", "L100*80*10", "D89*4", "D20", "HN400*200*8*13", "C200*70*20*3",
                                  "TN200*200*8*13", "\u25a1150*150*6", "Z250*75*25*3", "B400*300*10*12",
                                  "TY600*400*400*300*10"};
        for (const char* section : sections) addMember(QString::fromUtf8(section), {0, 0, 0}, {6000, 0, 0});
        addMember(QStringLiteral("H400*200*8*13"), {0, 0, 0}, {0, 0, 4000});
        addMember(QStringLiteral("H400*200*8*13"), {0, 0, 0}, {3000, 0, 3000});
        skr::split::CuttingPlaneRecord cut;
        cut.elementId = 1;
        cut.local = ndp::MakeFrame({0, 0, 500}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
        ASSERT_TRUE(skr::split::AddCuttingPlaneRecord(m_model.getProjectDB(), cut, nullptr));
    }
    void addMember(const QString& section, const ndp::CVector3& from, const ndp::CVector3& to) {
        VMPMember member{0, section, from, to};
        ASSERT_TRUE(VMPAddMember(m_model.getProjectDB(), member, nullptr));
    }
    // Each into a folder of its own under the same name, as the file's header names it.
    QByteArray exported(const QString& folder, SKRIfcExportOptions options = {}) {
        QDir().mkpath(m_dir.filePath(folder));
        const QString path = m_dir.filePath(folder + QStringLiteral("/frame.ifc"));
        QString error;
        EXPECT_TRUE(exportProjectIfc(&m_model, path, options, nullptr, &error)) << error.toStdString();
        return contents(path);
    }

    QTemporaryDir m_dir;
    VMPProjectModel m_model;
};

TEST_F(IfcExport, EveryEntityHasItsAttributesEveryReferenceIsDefinedAndTheBytesRepeat) {
    const QByteArray first = exported(QStringLiteral("a"));
    const QString text = QString::fromUtf8(first);
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
    // The box of two walls and the oval tube have voids; every section's parametric profile names
    // it, filleted rolled shapes included.
    const std::pair<const char*, int> counts[] = {{"IFCBEAM", 12}, {"IFCCOLUMN", 1}, {"IFCMEMBER", 1},
                                                  {"IFCBOOLEANCLIPPINGRESULT", 1}, {"IFCARBITRARYPROFILEDEFWITHVOIDS", 2},
                                                  {"IFCELEMENTQUANTITY", 14}, {"IFCMATERIALPROFILE", 13}};
    for (const auto& [entity, count] : counts) EXPECT_EQ(seen.value(entity), count) << entity;
    for (const char* parametric : {"IFCISHAPEPROFILEDEF", "IFCUSHAPEPROFILEDEF", "IFCLSHAPEPROFILEDEF",
                                   "IFCCIRCLEHOLLOWPROFILEDEF", "IFCCIRCLEPROFILEDEF", "IFCCSHAPEPROFILEDEF",
                                   "IFCTSHAPEPROFILEDEF", "IFCRECTANGLEHOLLOWPROFILEDEF"})
        EXPECT_GT(seen.value(parametric), 0) << parametric;
    // Project, site, building, storey; three aggregations; each member with its quantity set and
    // their relation; the containment; one material relation per section.
    EXPECT_EQ(globalIds.size(), 4 + 3 + 14 * 3 + 1 + 13);

    // The same project gives the same bytes; in metres the length unit is the metre.
    EXPECT_EQ(exported(QStringLiteral("b")), first);
    SKRIfcExportOptions metres;
    metres.metres = true;
    const QByteArray inMetres = exported(QStringLiteral("c"), metres);
    EXPECT_NE(inMetres, first);
    EXPECT_TRUE(inMetres.contains("IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.)"));
    EXPECT_TRUE(first.contains("IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.)"));
}

class ExportCommand : public ::testing::Test {
protected:
    static bxqtest::BxqRun bxq(const QStringList& arguments) { return bxqtest::runBxq(arguments, {BXQ_SHIPPED_DATA_DIR, {}, {}, false}); }
    void SetUp() override {
        // A 6 m beam and a 3 m column of welded H; the beam cut 500 mm in at its head.
        for (const char* to : {"6000,0,0", "0,0,3000"})
            ASSERT_EQ(bxq({"member", "add", "--project", m_project, "--section", "H400*200*8*13", "--from", "0,0,0", "--to", to}).exitCode, 0);
        ASSERT_EQ(bxq({"cut-plane", "add", "--project", m_project, "--id", "1", "--head", "--origin", "0,0,500", "--normal",
                       "0,0,1"}).exitCode, 0);
    }
    QTemporaryDir m_dir;
    const QString m_project = m_dir.filePath("frame.KDB"), m_ifc = m_dir.filePath("frame.ifc");
};

TEST_F(ExportCommand, GradeClassAndQuantitiesAreWrittenAsAskedAndRefusalsLeaveTheFile) {
    const bxqtest::BxqRun run = bxq({"export", "--project", m_project, "--ifc", m_ifc, "--grade", "Q355B", "--as", "2=member", "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.err.constData();
    const QJsonArray members = QJsonDocument::fromJson(run.out).object().value("members").toArray();
    ASSERT_EQ(members.size(), 2);
    EXPECT_EQ(members[0].toObject().value("entity").toString(), "IFCBEAM");
    EXPECT_EQ(members[1].toObject().value("entity").toString(), "IFCMEMBER");  // upright, but as asked
    const QByteArray text = contents(m_ifc);
    EXPECT_TRUE(text.contains("IFCMATERIAL('Q355B',$,'Steel');"));
    EXPECT_EQ(text.count("=IFCMEMBER("), 1);
    EXPECT_EQ(text.count("=IFCCOLUMN("), 0);
    // The cut beam's quantities: 5.5 m of solid after the cut, its weight, the whole axis length.
    const double area = 2 * 200 * 13 + (400 - 26) * 8;
    const double weight = members[0].toObject().value("weight").toDouble();
    EXPECT_NEAR(weight, area * 5500 * 7.85e-6, 1e-6 * weight);
    const QRegularExpression quantity(QStringLiteral("IFCQUANTITY[A-Z]+\\('([A-Za-z]+)',\\$,\\$,([^,]+),\\$\\)"));
    QMap<QString, QList<double>> values;
    for (auto m = quantity.globalMatch(QString::fromUtf8(text)); m.hasNext();) {
        const auto match = m.next();
        values[match.captured(1)] << match.captured(2).toDouble();
    }
    ASSERT_EQ(values.value("NetWeight").size(), 2);
    EXPECT_NEAR(values["NetWeight"][0], weight, 1e-9 * weight);
    EXPECT_EQ(values["Length"], (QList<double>{6000, 3000}));
    EXPECT_NEAR(values["NetVolume"][0], area * 5500 * 1e-9, 1e-12);
    EXPECT_NEAR(values["OuterSurfaceArea"][1], (4 * 200 + 2 * 400 - 2 * 8) * 3000 * 1e-6, 1e-9);

    // In metres the lengths are a thousandth, the weights stay.
    ASSERT_EQ(bxq({"export", "--project", m_project, "--ifc", m_ifc, "--unit", "m"}).exitCode, 0);
    const QByteArray metres = contents(m_ifc);
    EXPECT_TRUE(metres.contains("IFCQUANTITYLENGTH('Length',$,$,6.,$)")) << metres.constData();
    EXPECT_TRUE(metres.contains("IFCEXTRUDEDAREASOLID(") && metres.contains(",3.);"));

    // Refusals name what was wrong and leave the file.
    const QByteArray before = contents(m_ifc);
    const QStringList both{"--project", m_project, "--ifc", m_ifc};
    const std::tuple<QStringList, int, const char*> cases[] = {
        {{"--ifc", m_ifc}, 2, "export needs --project FILE and --ifc FILE"},
        {{"--project", m_project}, 2, "export needs --project FILE and --ifc FILE"},
        {both + QStringList{"--unit", "cm"}, 2, "--unit is mm or m, not 'cm'"},
        {both + QStringList{"--as", "1=truss"}, 2, "not '1=truss'"},
        {both + QStringList{"--as", "9=beam"}, 1, "has no member 9"},
        {{"--project", m_dir.filePath("none.KDB"), "--ifc", m_ifc}, 1, "none.KDB does not exist"},
        {{"--project", m_project, "--ifc", m_dir.filePath("no/such/folder/x.ifc")}, 1, "no/such/folder/x.ifc"},
    };
    for (const auto& [arguments, exitCode, message] : cases) {
        const bxqtest::BxqRun run = bxq(QStringList{"export"} + arguments);
        EXPECT_EQ(run.exitCode, exitCode) << message;
        EXPECT_EQ(run.err.count('\n'), 1) << run.err.constData();
        EXPECT_TRUE(run.err.contains(message)) << run.err.constData();
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_EQ(contents(m_ifc), before) << message;
    }
}

}  // namespace
