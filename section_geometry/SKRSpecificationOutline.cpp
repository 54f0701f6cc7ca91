// The outline of a section specification text, with catalogue radii where the catalogue has them.
#include "section_geometry/SKRSpecificationOutline.h"

#include "section_data/SKRDatabaseError.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_spec/SKRSectionParams.h"
#include "section_spec/SKRSectionPolyInfoParser.h"
#include "section_spec/SKRSectionTypeTable.h"

#include <exception>

namespace skr {
namespace geometry {
namespace {

bool hasCatalogueRadii(int sectionType) {
    const section::SKRSectionTypeDescriptor* row = section::sectionTypeDescriptor(sectionType);
    return row && row->catalogueRadii;
}

section::SKRHotRollingLookup catalogueRow(const QString& name, QString* error) {
    auto* catalogue = util::FetchInstance<section::SKRHotRollingSectionDBProvider>();
    try {
        if (catalogue) return catalogue->findByName(name.toStdWString());
    } catch (const std::exception& failure) {
        *error = section::failureText(catalogue->table(), failure);
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
    const section::SKRHotRollingLookup row = catalogueRow(info.name, &reason);
    if (!reason.isEmpty()) {
        if (error) *error = QStringLiteral("'%1': %2").arg(specification, reason);
        return false;
    }
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

bool specificationOutline(const QString& specification, SKROutline& outline, QString* error, QString* note) {
    int sectionType = -1;
    QMap<QString, double> params;
    if (!specificationOutlineParams(specification, sectionType, params, error, note)) return false;
    QString reason;
    if (!sectionOutline(sectionType, params, outline, &reason)) {
        if (error) *error = QStringLiteral("'%1': %2").arg(specification, reason);
        return false;
    }
    return true;
}

bool specificationOutline(const QString& specification, QString& outline, QString* error, QString* note) {
    SKROutline drawn;
    if (!specificationOutline(specification, drawn, error, note)) return false;
    outline = outlineText(drawn);
    return true;
}

}  // namespace geometry
}  // namespace skr
