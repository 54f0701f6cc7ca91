// WeldSectionNormParser: the norms of welded built-up sections and ball nodes.
#pragma once

#include "section_spec/SectionNormParser.h"

namespace skr {
namespace section {

class WeldSectionNormParser : public SectionNormParser {
public:
    WeldSectionNormParser();

    // True when the text starts with the key of at least one welded or ball norm.
    bool isValid(const QString& text) const override;

    // The welded and ball norm entries, in matching order.
    static QVector<SectionNormEntry> weldedNorms();
};

}  // namespace section
}  // namespace skr
