// Weight and surface per metre of a catalogue section named by its norm text: the user's own
// sections first, then the shipped catalogue; 0 when neither has it.
#pragma once

#include <QString>

namespace skr {
namespace section {

class SKRPerMetreLookup {
public:
    static double weightPerMetre(const QString& norm);   // kg/m
    static double surfacePerMetre(const QString& norm);  // m2/m
};

}  // namespace section
}  // namespace skr
