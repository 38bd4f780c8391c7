// The program's own status codes (module 1) and their texts.
#pragma once

#include "core/Status.h"

namespace tunadm {

inline constexpr int kProgramModule = 1;

// Successes that carry information: the profile was found, and it is the current one.
inline constexpr StatusCode kProfileActive = 0x00001001;
inline constexpr StatusCode kProfileRunning = 0x00001002;

inline constexpr StatusCode kProfileNotFound = 0x12001001;
inline constexpr StatusCode kRefusedWhileRunning = 0x12001002;
inline constexpr StatusCode kChildExitedNonzero = 0x16001001;
inline constexpr StatusCode kChildSignalled = 0x16001002;

// The text of one of the codes above, else null. Register it for kProgramModule at start.
const char* programStatusText(StatusCode code);

}  // namespace tunadm
