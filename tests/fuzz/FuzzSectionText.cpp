// Fuzz target: a section text as a user types it, through the parser, the welded norms and their
// rules on Qt Script, as `bxq parse` runs them. Nothing may crash, hang or read out of bounds, and
// a parsed section holds only finite dimensions.
#include "tests/fuzz/FuzzTarget.h"

#include "section_spec/SKRSectionPolyInfoParser.h"
#include "section_spec/WeldSectionNormParser.h"

#include <QString>

#include <cmath>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 4096) return 0;  // longer texts only repeat what shorter ones reach
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    SKRSectionPolyInfoParser parser;
    parser.parser(text);
    const GSectionPolyInfo info = parser.sectionPolyInfo();
    for (double value : info.params)
        if (!std::isfinite(value)) std::abort();
    QString normText = text.simplified();
    normText.remove(QLatin1Char(' '));
    normText = normText.toUpper();
    skr::section::WeldSectionNormParser norms;
    if (norms.isValid(normText) && norms.match(normText)) {
        QStringList failed;
        norms.checkRules(&failed);
    }
    return 0;
}
