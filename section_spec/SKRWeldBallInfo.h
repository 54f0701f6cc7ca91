// SKRWeldBallInfo: the result of parsing a ball-node specification with its expression.
#pragma once

#include <cstdint>
#include <map>
#include <string>

struct SKRWeldBallInfo {
    std::int32_t code = 0;                   // result of the ball's expression
    std::map<std::wstring, double> values;   // "D", "t" and what the expression defined
};
