// HotRollingSectionNormParser: norms of catalogue sections, whose parameter names come from
// the section parameter table; every text is acceptable to it.
#pragma once

#include "section_spec/SectionNormParser.h"

namespace skr {
namespace section {

class HotRollingSectionNormParser : public SectionNormParser {
public:
    explicit HotRollingSectionNormParser(QVector<SectionNormEntry> entries);

    bool isValid(const QString& text) const override;

    // A catalogue norm written as key followed by the parameters separated by "*".
    static SectionNormEntry starSeparatedNorm(const QString& key, EnSKRSectionType sectionType,
                                              const QStringList& paramNames,
                                              const QStringList& rules = {});
};

}  // namespace section
}  // namespace skr
