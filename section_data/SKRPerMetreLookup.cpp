// Per-metre look-ups in the user and then the system hot-rolled catalogue.
#include "section_data/SKRPerMetreLookup.h"

#include "section_data/SKRDatabaseError.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"

#include <QtGlobal>

#include <exception>

namespace skr {
namespace section {

// User sections shadow system sections of the same name; an absent provider finds nothing.
SKRHotRollingLookup SKRPerMetreLookup::lookUp(const QString& norm) {
    const std::wstring name = norm.toStdWString();
    if (auto* user = util::FetchInstance<SKRUserHotRollingSectionDBProvider>()) {
        SKRHotRollingLookup found = readOrExplain(user, name);
        if (found.first) return found;
    }
    if (auto* system = util::FetchInstance<SKRHotRollingSectionDBProvider>()) return readOrExplain(system, name);
    return {false, SKRHotRollingSection()};
}

SKRHotRollingLookup SKRPerMetreLookup::readOrExplain(SKRHotRollingSectionDBProvider* provider, const std::wstring& name) {
    try {
        return provider->findByName(name);
    } catch (const std::exception& failure) {
        throw SKRDatabaseError(failureText(provider->table(), failure).toStdString());
    }
}

SKRHotRollingLookup SKRPerMetreLookup::findSection(const QString& norm, QString* error) {
    try {
        return lookUp(norm);
    } catch (const std::exception& failure) {
        if (error) *error = QString::fromLocal8Bit(failure.what());
    }
    return {false, SKRHotRollingSection()};
}

// The host asks these for quantities and has no channel for a failure: it gets 0, and the reason
// goes to the log.
double SKRPerMetreLookup::weightPerMetre(const QString& norm) {
    QString error;
    const SKRHotRollingLookup found = findSection(norm, &error);
    if (!error.isEmpty()) qWarning("%s", qUtf8Printable(error));
    return found.first ? found.second.weightMeter : 0.0;
}

double SKRPerMetreLookup::surfacePerMetre(const QString& norm) {
    QString error;
    const SKRHotRollingLookup found = findSection(norm, &error);
    if (!error.isEmpty()) qWarning("%s", qUtf8Printable(error));
    return found.first ? found.second.area : 0.0;
}

}  // namespace section
}  // namespace skr
