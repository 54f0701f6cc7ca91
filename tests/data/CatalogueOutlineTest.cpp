// Every catalogue row drawn with its radii: the outline's area gives the published weight per
// metre within 1 % and its outer perimeter the published surface per metre within 2 %. The worst
// rows of each family are printed, and recorded as test properties.
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SectionRepository.h"
#include "section_geometry/SKROutlineCheck.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include "ndp/NDPPolygon.h"
#include "section_geometry/SKRSectionProperties.h"
#include "vmp/VMPNDDBManager.h"
#include "vmp/VMPProjectModel.h"

#include "ShippedRepository.h"

#include <gtest/gtest.h>

#include <QSet>
#include <QTemporaryDir>

#include <cmath>
#include <cstdio>
#include <map>

using namespace skr::section;
using skr::util::FetchInstance;

namespace {

const int kCatalogueTypes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 1011};

// Hollow sections whose published weights were worked out with a corner radius of 2t rather than
// the 2.5t of their wall thickness (data/README.md, "Deviations shipped as published").
const QSet<QString> kHollowRowsWithTheSmallerRadius{
    QStringLiteral("□120*120*8"), QStringLiteral("□140*140*8"), QStringLiteral("□160*160*8"),
    QStringLiteral("□150*100*8"), QStringLiteral("□160*80*8"),  QStringLiteral("□180*100*8"),
    QStringLiteral("□200*100*8")};

struct Deviation {
    QString name;
    double value = 0;  // outline figure / published figure - 1
};

struct FamilyWorst {
    Deviation weight, surface;
    Deviation weightWithUsualBends;  // cold-formed rows drawn with bends of 2t instead
    int rows = 0;
};

void keepWorse(Deviation& worst, const QString& name, double value) {
    if (std::abs(value) >= std::abs(worst.value)) worst = {name, value};
}

class CatalogueOutline : public ShippedRepositoryTest {
protected:

    static QVector<SKRHotRollingSection> rowsOf(int type) {
        auto* catalogue = FetchInstance<SKRHotRollingSectionDBProvider>();
        if (!catalogue) return {};
        QVector<SKRHotRollingSection> rows;
        for (const SKRHotRollingSection& row : catalogue->listByType(type)) rows << row;
        return rows;
    }

    static QMap<QString, double> dimensionsOf(const SKRHotRollingSection& row) {
        QMap<QString, double> dimensions;
        for (const auto& param : row.params) dimensions.insert(QString::fromStdWString(param.first), param.second);
        return dimensions;
    }

    static bool propertiesOf(int type, const QMap<QString, double>& params, skr::geometry::SKRSectionProperties& out,
                             QString* error) {
        QString text;
        if (!skr::geometry::sectionOutlineText(type, params, text, error)) return false;
        const auto polygon = skr::geometry::ParseSectionPolygon(text);
        if (!polygon || !skr::geometry::checkSectionOutline(*polygon, error)) return false;
        out = skr::geometry::SectionProperties(*polygon);
        return true;
    }

};

}  // namespace

TEST_F(CatalogueOutline, EveryRowsOutlineGivesItsPublishedWeightAndSurface) {
    ASSERT_NE(FetchInstance<SKRHotRollingSectionDBProvider>(), nullptr)
        << "the section database was not opened from " BXQ_SHIPPED_DATA_DIR;
    std::map<int, FamilyWorst> worst;
    int drawn = 0;
    for (int type : kCatalogueTypes) {
        const QVector<SKRHotRollingSection> rows = rowsOf(type);
        EXPECT_FALSE(rows.isEmpty()) << "no catalogue rows of type " << type;
        for (const SKRHotRollingSection& row : rows) {
            const QString name = QString::fromStdWString(row.standardName);
            SCOPED_TRACE(name.toStdString());
            QMap<QString, double> params =
                skr::geometry::catalogueOutlineParams(type, dimensionsOf(row), row.weightMeter);
            skr::geometry::SKRSectionProperties p;
            QString error;
            ASSERT_TRUE(propertiesOf(type, params, p, &error)) << error.toStdString();
            ++drawn;
            const double weight = p.area * skr::geometry::kSteelKgPerMetrePerMm2 / row.weightMeter - 1;
            const double surface = p.outerPerimeter / 1000 / row.area - 1;
            FamilyWorst& family = worst[type];
            ++family.rows;
            keepWorse(family.surface, name, surface);
            EXPECT_LE(std::abs(surface), 0.02) << "outer perimeter " << p.outerPerimeter << " mm";
            if (type == 8 || type == 9) {
                // These rows take their bend radius from their weight, so their weight agrees by
                // construction; their surface is the independent check. How far the usual bends
                // of 2t would stray is reported.
                QMap<QString, double> usual = params;
                usual.remove(QStringLiteral("r"));
                skr::geometry::SKRSectionProperties withUsualBends;
                ASSERT_TRUE(propertiesOf(type, usual, withUsualBends, &error)) << error.toStdString();
                keepWorse(family.weightWithUsualBends, name,
                          withUsualBends.area * skr::geometry::kSteelKgPerMetrePerMm2 / row.weightMeter - 1);
            }
            if (!kHollowRowsWithTheSmallerRadius.contains(name)) {
                keepWorse(family.weight, name, weight);
                EXPECT_LE(std::abs(weight), 0.01) << "area " << p.area << " mm2";
                continue;
            }
            // The outline keeps the radius of its wall thickness, 1 to 2 % short of the printed
            // weight; with the radius the weight was worked out with it agrees.
            EXPECT_LT(weight, -0.01);
            EXPECT_GT(weight, -0.02);
            params.insert(QStringLiteral("r"), params.value(QStringLiteral("t")));  // outer radius 2t
            ASSERT_TRUE(propertiesOf(type, params, p, &error)) << error.toStdString();
            EXPECT_NEAR(p.area * skr::geometry::kSteelKgPerMetrePerMm2 / row.weightMeter, 1.0, 0.01);
        }
    }
    EXPECT_GT(drawn, 1200);

    std::printf("Catalogue outlines against the published figures (worst row per family):\n");
    for (const auto& entry : worst) {
        const FamilyWorst& f = entry.second;
        QString line = QStringLiteral("  type %1 (%2 rows): weight %3 % (%4), surface %5 % (%6)")
                           .arg(entry.first)
                           .arg(f.rows)
                           .arg(100 * f.weight.value, 0, 'f', 3)
                           .arg(f.weight.name)
                           .arg(100 * f.surface.value, 0, 'f', 3)
                           .arg(f.surface.name);
        if (!f.weightWithUsualBends.name.isEmpty())
            line += QStringLiteral("; with bends of 2t: weight %1 % (%2)")
                        .arg(100 * f.weightWithUsualBends.value, 0, 'f', 3)
                        .arg(f.weightWithUsualBends.name);
        std::printf("%s\n", qUtf8Printable(line));
        RecordProperty(QStringLiteral("type%1").arg(entry.first).toStdString(), line.trimmed().toStdString());
    }
}
