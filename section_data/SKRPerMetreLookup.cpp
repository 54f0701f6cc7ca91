// Per-metre look-ups in the user and then the system hot-rolled catalogue.
#include "section_data/SKRPerMetreLookup.h"

#include "section_data/SKRHotRollingSectionDBProvider.h"

#include <exception>

namespace skr {
namespace section {

// User sections shadow system sections of the same name. A provider that is absent, or a row
// that cannot be read, finds nothing: the host asks this for quantities and must not fail.
SKRHotRollingLookup SKRPerMetreLookup::findSection(const QString& norm) {
    const std::wstring name = norm.toStdWString();
    try {
        if (auto* user = util::FetchInstance<SKRUserHotRollingSectionDBProvider>()) {
            SKRHotRollingLookup found = user->findByName(name);
            if (found.first) return found;
        }
        if (auto* system = util::FetchInstance<SKRHotRollingSectionDBProvider>()) return system->findByName(name);
    } catch (const std::exception&) {
    }
    return {false, SKRHotRollingSection()};
}

double SKRPerMetreLookup::weightPerMetre(const QString& norm) {
    const SKRHotRollingLookup found = findSection(norm);
    return found.first ? found.second.weightMeter : 0.0;
}

double SKRPerMetreLookup::surfacePerMetre(const QString& norm) {
    const SKRHotRollingLookup found = findSection(norm);
    return found.first ? found.second.area : 0.0;
}

}  // namespace section
}  // namespace skr
