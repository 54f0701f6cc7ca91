// SKRCatalogueLookup: catalogue questions of the specification parser, answered by the
// registered providers. The parser never throws, so a row that cannot be read counts as not
// found for it, and the failure is kept for the caller to ask.
#include "section_data/SKRCatalogueLookup.h"

#include "section_data/SKRDatabaseError.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"

#include <exception>

namespace skr {
namespace section {
namespace {

QString& lastFailure() {
    static QString failure;
    return failure;
}

}  // namespace

QString SKRCatalogueLookup::takeFailure() {
    QString failure;
    failure.swap(lastFailure());
    return failure;
}

bool SKRCatalogueLookup::hotRolledDimensions(const QString& name, int sectionType, QVector<double>* dimensions) {
    auto* provider = util::FetchInstance<SKRHotRollingSectionDBProvider>();
    if (!provider) return false;
    try {
        const SKRHotRollingLookup found = provider->findByName(name.toStdWString());
        if (!found.first || found.second.sectionType != sectionType) return false;
        for (const wchar_t* field : {L"h", L"b", L"d", L"t"}) {
            double value = 0.0;
            for (const auto& param : found.second.params)
                if (param.first == field) value = param.second;
            dimensions->append(value);
        }
        return true;
    } catch (const std::exception& failure) {
        lastFailure() = failureText(provider->table(), failure);
        return false;
    }
}

bool SKRCatalogueLookup::userSectionId(const QString& name, int* sectionId) {
    auto* provider = util::FetchInstance<SKRUserHotRollingSectionDBProvider>();
    if (!provider) return false;
    try {
        const SKRHotRollingLookup found = provider->findByName(name.toStdWString());
        if (!found.first) return false;
        *sectionId = found.second.sectionType;
        return true;
    } catch (const std::exception& failure) {
        lastFailure() = failureText(provider->table(), failure);
        return false;
    }
}

}  // namespace section
}  // namespace skr
