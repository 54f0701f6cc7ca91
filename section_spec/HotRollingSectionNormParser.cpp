// HotRollingSectionNormParser: catalogue norms built from parameter lists.
#include "section_spec/HotRollingSectionNormParser.h"

namespace skr {
namespace section {

HotRollingSectionNormParser::HotRollingSectionNormParser(QVector<SectionNormEntry> entries)
    : SectionNormParser(QSharedPointer<const SectionNormTable>::create(std::move(entries))) {}

bool HotRollingSectionNormParser::isValid(const QString&) const { return true; }

SectionNormEntry HotRollingSectionNormParser::starSeparatedNorm(const QString& key, EnSKRSectionType sectionType,
                                                                const QStringList& paramNames,
                                                                const QStringList& rules) {
    SectionNormEntry entry;
    entry.key = key;
    entry.sectionType = sectionType;
    entry.paramNames = paramNames;
    entry.rules = rules;
    QStringList format;
    if (!key.isEmpty()) format << key;
    for (int i = 0; i < paramNames.size(); ++i) {
        if (i > 0) format << QStringLiteral("*");
        format << paramNames[i];
    }
    entry.formats.append(format);
    return entry;
}

}  // namespace section
}  // namespace skr
