// SKRCatalogueLookup: catalogue questions of the specification parser.
#include "section_data/SKRCatalogueLookup.h"

namespace skr {
namespace section {

// The catalogue providers come with the section database; until they are registered every
// look-up finds nothing, which the parser treats like a name missing from the catalogue.
bool SKRCatalogueLookup::hotRolledDimensions(const QString&, int, QVector<double>*) { return false; }

bool SKRCatalogueLookup::userSectionId(const QString&, int*) { return false; }

}  // namespace section
}  // namespace skr
