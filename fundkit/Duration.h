// Durations as people write them: a whole number and a unit.
#pragma once

#include <string>

#include "fundkit/TimeUtils.h"

namespace tunadm {

// Reads a decimal number with an optional sign, blanks, and a unit word in any case: "5 s",
// "-2days". Text after the unit is ignored if a blank or control byte separates it. 0 for a null
// text, without a number, and for a missing (deliberate) or unknown unit. What does not fit becomes
// the largest or the smallest duration.
Duration parseDuration(const char* text);

// The duration in the one unit that suits it best; remainders are dropped: "90 secs", "-1 day",
// "0 seconds". Works for every value, the smallest one too.
std::string formatDuration(Duration duration);

}  // namespace tunadm
