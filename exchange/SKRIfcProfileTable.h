// SKRIfcProfileTable: which IFC parametric profile definition describes the outline of a section
// type exactly, and its dimensions from the values the outline is drawn from. Sections of other
// types, or whose values leave the parametric form (a welded H with unequal flanges), have only
// their exact outline.
#pragma once

#include "exchange/SKRStepWriter.h"

#include <QMap>
#include <QString>

namespace skr {
namespace exchange {

struct SKRIfcProfileRow {
    int sectionType;
    const char* entity;  // the IFC entity written, in upper case
    // Whether readers draw the profile as exactly as the outline: false for the rolled shapes whose
    // root and toe fillets and flange slopes readers approximate (web-ifc draws a fillet as its
    // chord, 2 % of an HN400's area, and a C-shape not at all). Their solids are extruded from the
    // exact outline; the parametric profile still names the section in the material profile set.
    bool drawnExactly;
    // Writes the profile centred on its bounding box (as members are placed) from the outline's
    // values; an unset reference when these values do not fit the parametric form.
    StepRef (*write)(SKRStepWriter& writer, const QString& name, const QMap<QString, double>& values, double scale);
};

// The row of a section type, or null for one written as its outline.
const SKRIfcProfileRow* ifcProfileRow(int sectionType);

}  // namespace exchange
}  // namespace skr
