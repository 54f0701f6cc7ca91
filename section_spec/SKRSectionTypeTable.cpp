// The section-type table.
#include "section_spec/SKRSectionTypeTable.h"

#include <QHash>

#include <algorithm>

namespace skr {
namespace section {
namespace {

using S = SKRStarRule;
using P = SKRPadRule;

// clang-format off
const std::vector<SKRSectionTypeDescriptor> kTable = {
//  type               group       codes               sel  stars    pieces pad            when params                              mark  ribbed layout                                                               dims   named  radii  norm
    {stI,              sgStandard, "I",                "", S::Any,  "",    P::None,        0, "h,b,d,t,r,r1",                       "",   "",    "",                                                                  false, true,  true,  false},
    {stChannel,        sgStandard, "[",                "", S::Any,  "",    P::None,        0, "h,b,d,t,r,r1",                       "",   "",    "",                                                                  false, true,  true,  false},
    {stEqualAngle,     sgStandard, "L",                "", S::One,  "",    P::None,        0, "b,d,r",                              "",   "",    "",                                                                  true,  false, true,  false},
    {stUnequalAngle,   sgStandard, "L",                "", S::Two,  "",    P::None,        0, "B,b,d,r",                            "",   "",    "",                                                                  true,  false, true,  false},
    {stPipe,           sgStandard, "D",                "", S::Some, "",    P::None,        0, "D,t",                                "",   "",    "",                                                                  true,  false, false, false},
    {stRoundBar,       sgStandard, "D",                "", S::None, "",    P::None,        0, "d",                                  "",   "",    "",                                                                  true,  false, false, false},
    {stHotRolledH,     sgStandard, "HW,HM,HT,HN,HP",   "", S::Any,  "",    P::None,        0, "h,b,tw,t,r",                         "",   "",    "",                                                                  false, false, true,  false},
    {stCSection,       sgStandard, "C",                "", S::Any,  "",    P::None,        0, "h,b,c,t",                            "",   "",    "",                                                                  true,  false, false, false},
    {stZSection,       sgStandard, "Z",                "", S::Any,  "",    P::None,        0, "h,b,c,t",                            "",   "",    "",                                                                  true,  false, false, false},
    {stHotRolledT,     sgStandard, "TN,TW,TM",         "", S::Any,  "",    P::None,        0, "h,b,tw,t,r",                         "",   "",    "",                                                                  false, false, true,  false},
    {stBoxTube,        sgStandard, "□",                "", S::Any,  "",    P::None,        0, "h,b,t",                              "",   "",    "",                                                                  true,  false, false, false},
    {stBoltBall,       sgStandard, "BS",               "", S::Any,  "",    P::None,        0, "D",                                  "BS", "",    ":D|d",                                                              false, false, false, true},
    {stWeldBall,       sgStandard, "WS,WSR",           "", S::Any,  "",    P::None,        0, "D,t",                                "WS", "WSR", ":D|d *:t",                                                          false, false, false, true},
    // The H codes: a cross, a tapered and an unequal-flange H are told by a mark in their dimensions.
    {stWeldedCross,    sgWelded,   "H",                "+", S::Any, "+H",  P::RepeatLast,  4, "h1,b1,tw1,t1,t2,h2,b2,tw2,t3,t4",    "H",  "",    ":h1 *:b1 *:tw1 *:t1 *:t2 +H:h2 *:b2 *:tw2 *:t3 *:t4",               false, false, false, true},
    {stWeldedTaperedH, sgWelded,   "H",                "~", S::Any, "~",   P::RepeatLast,  4, "h1,h2,b,tw,t1,t2",                   "H",  "",    "(:h1 ~:h2 )*:b *:tw *:t1 *:t2",                                     false, false, false, true},
    {stWeldedHUnequal, sgWelded,   "H",                "/", S::Any, "/",   P::RepeatLast,  3, "h,b1,b2,tw,t1,t2",                   "H",  "",    ":h *:b1 /:b2 *:tw *:t1 *:t2",                                       false, false, false, true},
    {stWeldedH,        sgWelded,   "H",                "", S::Any,  "",    P::RepeatLast,  4, "h,b,tw,t1,t2",                       "H",  "",    ":h *:b *:tw *:t1 *:t2",                                             false, false, false, true},
    {stWeldedBox,      sgWelded,   "B",                "", S::Any,  "",    P::RepeatFirst, 3, "b1,b2,t1,t2",                        "B",  "",    ":b1 *:b2 *:t1 *:t2",                                                false, false, false, true},
    {stWeldedPipe,     sgWelded,   "HD",               "", S::Any,  "",    P::None,        0, "d,t",                                "HD", "",    ":d|D *:t",                                                          false, false, false, true},
    {stWeldedT,        sgWelded,   "T",                "", S::Any,  "",    P::None,        0, "h,b,t1,t2",                          "T",  "",    ":h *:b *:t1 *:t2",                                                  false, false, false, true},
    // Recognised by their norms alone; their values come sorted by name.
    {stWeldedD,        sgWelded,   "",                 "", S::Any,  "",    P::None,        0, "R1,R2,t",                            "D",  "",    ":R1 ~:R2 *:t",                                                      false, false, false, true},
    {stWeldedBB,       sgWelded,   "",                 "", S::Any,  "",    P::None,        0, "B1,B2,b1,b2,t1,t2",                  "BB", "",    ":B1 *:B2 *:b1 *:b2 *:t1 *:t2",                                      false, false, false, true},
    {stWeldedHVariant, sgWelded,   "",                 "", S::Any,  "",    P::None,        0, "b,h1,h2,t1,t2,tw",                   "H",  "",    ":h1 /:h2 *:b *:tw *:t1 *:t2",                                       false, false, false, true},
    {stWeldedTY,       sgWelded,   "",                 "", S::Any,  "",    P::None,        0, "R1,R2,r1,r2,t",                      "TY", "",    ":R1 *:R2 *:r1 *:r2 *:t",                                            false, false, false, true},
};
// clang-format on

}  // namespace

const std::vector<SKRSectionTypeDescriptor>& sectionTypeTable() { return kTable; }

const SKRSectionTypeDescriptor* sectionTypeDescriptor(int sectionType) {
    for (const SKRSectionTypeDescriptor& row : kTable)
        if (row.type == sectionType) return &row;
    return nullptr;
}

EnSKRSectionGroupType sectionTypeGroup(int sectionType) {
    if (const SKRSectionTypeDescriptor* row = sectionTypeDescriptor(sectionType)) return row->group;
    if (sectionType == stNone || sectionType == stPlainNumber) return sgNone;
    if (sectionType >= stCustomBase) return sgCustom;
    return sgInvalid;
}

std::vector<EnSKRSectionType> sectionTypesOfGroup(EnSKRSectionGroupType group) {
    std::vector<EnSKRSectionType> types;
    for (const SKRSectionTypeDescriptor& row : kTable)
        if (row.group == group) types.push_back(row.type);
    std::sort(types.begin(), types.end());
    return types;
}

int sectionTypeIndex(int sectionType) {
    // Built once: the parser asks on every keystroke.
    static const QHash<int, int> indexes = [] {
        QHash<int, int> all;
        for (EnSKRSectionGroupType group : {sgStandard, sgWelded}) {
            const std::vector<EnSKRSectionType> types = sectionTypesOfGroup(group);
            for (size_t i = 0; i < types.size(); ++i) all.insert(types[i], static_cast<int>(i));
        }
        return all;
    }();
    return indexes.value(sectionType, -1);
}

bool isBallType(int sectionType) {
    const SKRSectionTypeDescriptor* row = sectionTypeDescriptor(sectionType);
    return row && row->group == sgStandard && row->normChecked;
}

QStringList sectionTypeParamCodes(int sectionType) {
    const SKRSectionTypeDescriptor* row = sectionTypeDescriptor(sectionType);
    if (!row) return {};
    return QString::fromLatin1(row->paramCodes).split(QLatin1Char(','));
}

const QVector<const SKRSectionTypeDescriptor*>& sectionTypesOfCode(const QString& code) {
    // Built once: the parser asks on every keystroke.
    static const QHash<QString, QVector<const SKRSectionTypeDescriptor*>> byCode = [] {
        QHash<QString, QVector<const SKRSectionTypeDescriptor*>> index;
        for (const SKRSectionTypeDescriptor& row : kTable)
            for (const QString& written : QString::fromUtf8(row.codes).split(QLatin1Char(','), Qt::SkipEmptyParts))
                index[written].append(&row);
        return index;
    }();
    static const QVector<const SKRSectionTypeDescriptor*> none;
    const auto found = byCode.constFind(code);
    return found == byCode.constEnd() ? none : *found;
}

}  // namespace section
}  // namespace skr
