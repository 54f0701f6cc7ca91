// The section type and section group enumerations of the section model.
#pragma once

#include <cstdint>

// A section type value doubles as the section's id ("PolyID") in the section database.
// Values outside the named ones are legal: 7000 + n for custom sections, catalogue ids for
// user hot-rolled sections.
enum EnSKRSectionType : std::int32_t {
    stInvalid = -1,
    stNone = 0,
    stI = 1,
    stChannel = 2,
    stEqualAngle = 3,
    stUnequalAngle = 4,
    stPipe = 5,
    stRoundBar = 6,
    stHotRolledH = 7,
    stCSection = 8,
    stZSection = 9,
    stHotRolledT = 10,
    stWeldedH = 11,
    stWeldedHUnequal = 12,
    stWeldedBox = 13,
    stWeldedPipe = 14,
    stWeldedCross = 15,
    stWeldedT = 16,
    stWeldedTaperedH = 17,
    stWeldedD = 18,
    stWeldedBB = 19,
    stWeldedHVariant = 20,
    stWeldedTY = 21,
    stBoxTube = 1011,
    stBoltBall = 1012,
    stWeldBall = 1013,
    stPlainNumber = 6001,
    stCustomBase = 7000,
};

enum EnSKRSectionGroupType : std::int32_t {
    sgInvalid = -1,
    sgNone = 0,
    sgStandard = 1,
    sgWelded = 2,
    sgCustom = 3,
};
