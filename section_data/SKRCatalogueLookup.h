// SKRCatalogueLookup: the catalogue questions the specification parser asks, answered by the
// hot-rolled providers found in the object registry; an absent provider finds nothing.
#pragma once

#include <QString>
#include <QVector>

namespace skr {
namespace section {

class SKRCatalogueLookup {
public:
    // Fields "h", "b", "d", "t" of the system catalogue section of that name and type.
    static bool hotRolledDimensions(const QString& name, int sectionType, QVector<double>* dimensions);
    // Section id of the user hot-rolled section stored under that name.
    static bool userSectionId(const QString& name, int* sectionId);
    // The one-line reason (naming the file) of the last look-up that failed on a row or a
    // database that cannot be read, cleared by asking; empty when none failed since.
    static QString takeFailure();
};

}  // namespace section
}  // namespace skr
