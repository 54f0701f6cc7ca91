// Parameter codes of the section types, in the order the specification parser delivers values.
#include "section_spec/SKRSectionParams.h"

#include "section_spec/GSectionPolyInfo.h"

namespace skr {
namespace section {

QStringList sectionParamCodes(int sectionType) {
    const char* codes = "";
    switch (sectionType) {
    case stI:
    case stChannel: codes = "h,b,d,t,r,r1"; break;
    case stEqualAngle: codes = "b,d,r"; break;
    case stUnequalAngle: codes = "B,b,d,r"; break;
    case stPipe: codes = "D,t"; break;
    case stRoundBar: codes = "d"; break;
    case stHotRolledH:
    case stHotRolledT: codes = "h,b,tw,t,r"; break;
    case stCSection:
    case stZSection: codes = "h,b,c,t"; break;
    case stWeldedH: codes = "h,b,tw,t1,t2"; break;
    case stWeldedHUnequal: codes = "h,b1,b2,tw,t1,t2"; break;
    case stWeldedBox: codes = "b1,b2,t1,t2"; break;
    case stWeldedPipe: codes = "d,t"; break;
    case stWeldedCross: codes = "h1,b1,tw1,t1,t2,h2,b2,tw2,t3,t4"; break;
    case stWeldedT: codes = "h,b,t1,t2"; break;
    case stWeldedTaperedH: codes = "h1,h2,b,tw,t1,t2"; break;
    case stWeldedD: codes = "R1,R2,t"; break;
    case stWeldedBB: codes = "B1,B2,b1,b2,t1,t2"; break;
    case stWeldedHVariant: codes = "b,h1,h2,t1,t2,tw"; break;
    case stWeldedTY: codes = "R1,R2,r1,r2,t"; break;
    case stBoxTube: codes = "h,b,t"; break;
    case stBoltBall: codes = "D"; break;
    case stWeldBall: codes = "D,t"; break;
    default: return {};
    }
    return QString::fromLatin1(codes).split(QLatin1Char(','));
}

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
