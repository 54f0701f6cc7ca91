// Weight and surface per metre of a catalogue section named by its norm text: the user's own
// sections first, then the shipped catalogue; 0 when neither has it.
#pragma once

#include "section_data/SKRHotRollingSection.h"

#include <QString>

#include <string>

namespace skr {
namespace section {

class SKRHotRollingSectionDBProvider;

class SKRPerMetreLookup {
public:
    static double weightPerMetre(const QString& norm);   // kg/m
    static double surfacePerMetre(const QString& norm);  // m2/m
    // The catalogue row of that exact name: a user section first, then a shipped one; not found
    // when neither has it, a provider is absent or the row cannot be read (then error says why).
    static SKRHotRollingLookup findSection(const QString& norm, QString* error = nullptr);
    // The same, but a row or database that cannot be read throws SKRDatabaseError with one line
    // naming the file.
    static SKRHotRollingLookup lookUp(const QString& norm);

};

}  // namespace section
}  // namespace skr
