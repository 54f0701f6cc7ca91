// The outline of a section specification text: a catalogue section with the radii of its
// catalogue row (when the registered catalogue lists its name), any other section from the
// dimensions its text gives.
#pragma once

#include "section_geometry/SKROutlineBuilder.h"

#include <QMap>
#include <QString>

namespace skr {
namespace geometry {

// False, with the reason, for a text that is no section or whose values make no outline. note
// receives a remark when a rolled shape that only the catalogue gives radii is drawn without them.
bool specificationOutline(const QString& specification, SKROutline& outline, QString* error, QString* note = nullptr);
// The same outline as text.
bool specificationOutline(const QString& specification, QString& outline, QString* error, QString* note = nullptr);
// The section type and the dimensions by code that specificationOutline draws the outline from.
bool specificationOutlineParams(const QString& specification, int& sectionType, QMap<QString, double>& params,
                                QString* error, QString* note = nullptr);

}  // namespace geometry
}  // namespace skr
