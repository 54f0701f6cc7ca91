// Parameter codes of the section types, in the order the specification parser delivers values.
#include "section_spec/SKRSectionParams.h"

#include "section_spec/GSectionPolyInfo.h"
#include "section_spec/SKRSectionTypeTable.h"

namespace skr {
namespace section {

QStringList sectionParamCodes(int sectionType) { return sectionTypeParamCodes(sectionType); }

bool sectionParamsByCode(const GSectionPolyInfo& info, QMap<QString, double>& params, QString* error) {
    const QStringList codes = sectionParamCodes(info.sectionType);
    QString reason;
    if (codes.isEmpty())
        reason = QStringLiteral("section type %1 has no parameter codes").arg(info.sectionType);
    else if (info.params.isEmpty())
        reason = QStringLiteral("the section %1 has no dimensions").arg(info.name);
    else if (info.params.size() > codes.size())
        reason = QStringLiteral("the section %1 has %2 dimensions, section type %3 takes at most %4")
                     .arg(info.name)
                     .arg(info.params.size())
                     .arg(info.sectionType)
                     .arg(codes.size());
    if (!reason.isEmpty()) {
        if (error) *error = reason;
        return false;
    }
    QMap<QString, double> byCode;
    for (int i = 0; i < info.params.size(); ++i) byCode.insert(codes[i], info.params[i]);
    params = byCode;
    return true;
}

}  // namespace section
}  // namespace skr
