// GSectionPolyInfo: a section specification resolved into type, group and dimensions.
#pragma once

#include "section_spec/EnSKRSectionType.h"

#include <QString>
#include <QVector>

struct GSectionPolyInfo {
    QString name;       // normalised specification text
    QString typeCode;   // letters in front of the dimensions ("HN", "[", "ZDY", ...)
    QString valueText;  // dimension part after the type code
    std::int32_t paramCount = 0;
    std::int32_t typeIndex = -1;  // position of sectionType in its group's type list
    std::int32_t weldBallCode = 0;
    EnSKRSectionGroupType groupType = sgNone;
    EnSKRSectionType sectionType = stInvalid;
    QVector<double> params;  // millimetres, in the order the specification writes them
};
