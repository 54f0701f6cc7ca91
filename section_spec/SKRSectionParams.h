// The dimensions of a parsed section by parameter code: the link between the specification
// parser's ordered values and the outline drawing, which takes its values by code.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

struct GSectionPolyInfo;

namespace skr {
namespace section {

// The parameter codes of a section type in the order the specification parser delivers its
// values: the order a specification text writes them, except for the welded H with two depths
// (20), whose values come from its norm sorted by name (b, h1, h2, t1, t2, tw). Empty for a type
// without parameters (custom sections, an unknown type).
QStringList sectionParamCodes(int sectionType);

// info's values by code: the i-th value under the i-th code. A text may leave trailing codes out
// (a catalogue I or channel gives h, b, d, t but no radii): they are simply absent. False, with
// the reason and params unchanged, for an invalid or unknown type, no values, or more values than
// the type has codes.
bool sectionParamsByCode(const GSectionPolyInfo& info, QMap<QString, double>& params, QString* error = nullptr);

}  // namespace section
}  // namespace skr
