// The outline of a section specification text, with catalogue radii where the catalogue has them.
#include "section_geometry/SKRSpecificationOutline.h"

#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_spec/SKRSectionParams.h"
#include "section_spec/SKRSectionPolyInfoParser.h"

#include <exception>

namespace skr {
namespace geometry {
namespace {

// Rolled shapes whose root radius only the catalogue knows.
bool hasCatalogueRadii(int sectionType) {
    return sectionType == 1 || sectionType == 2 || sectionType == 3 || sectionType == 4 || sectionType == 7 ||
           sectionType == 10;
}

section::SKRHotRollingLookup catalogueRow(const QString& name) {
    try {
        if (auto* catalogue = util::FetchInstance<section::SKRHotRollingSectionDBProvider>())
            return catalogue->findByName(name.toStdWString());
    } catch (const std::exception&) {
    }
    return {false, section::SKRHotRollingSection()};
}

}  // namespace

bool specificationOutlineParams(const QString& specification, int& sectionType, QMap<QString, double>& params,
                                QString* error, QString* note) {
    SKRSectionPolyInfoParser parser;
    parser.parser(specification);
    const GSectionPolyInfo info = parser.sectionPolyInfo();
    QString reason = SKRSectionPolyInfoParser::rangeRefusal(specification);
    if (!reason.isEmpty()) {
        if (error) *error = reason;
        return false;
    }
    if (info.sectionType <= 0) {
        if (error) *error = QStringLiteral("'%1' is not a section specification").arg(specification);
        return false;
    }
    params.clear();
    sectionType = info.sectionType;
    const section::SKRHotRollingLookup row = catalogueRow(info.name);
    if (row.first && row.second.sectionType == info.sectionType) {
        QMap<QString, double> dimensions;
        for (const auto& param : row.second.params) dimensions.insert(QString::fromStdWString(param.first), param.second);
        params = catalogueOutlineParams(info.sectionType, dimensions, row.second.weightMeter);
    } else if (!section::sectionParamsByCode(info, params, &reason)) {
        if (error) *error = QStringLiteral("'%1': %2").arg(specification, reason);
        return false;
    } else if (hasCatalogueRadii(info.sectionType) && note) {
        *note = QStringLiteral("%1 is not in the catalogue; drawn without its root radius").arg(info.name);
    }
    return true;
}

bool specificationOutline(const QString& specification, QString& outline, QString* error, QString* note) {
    int sectionType = -1;
    QMap<QString, double> params;
    if (!specificationOutlineParams(specification, sectionType, params, error, note)) return false;
    QString reason;
    if (!sectionOutlineText(sectionType, params, outline, &reason)) {
        if (error) *error = QStringLiteral("'%1': %2").arg(specification, reason);
        return false;
    }
    return true;
}

}  // namespace geometry
}  // namespace skr
