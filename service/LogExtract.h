// The last lines of the daemon's log.
#pragma once

#include <string>
#include <vector>

#include "core/Status.h"
#include "fundkit/LogLevel.h"

namespace tunadm {

// Appends to `lines` the last `max_lines` lines of the log at `path` whose level is at or above
// `threshold`, in the order of the file, without unprintable bytes and blanks at their ends. Empty
// lines do not count, and a line of 4,096 bytes or more counts as several, of 4,095 bytes each.
//
// The log is read from its end, as far as the answer needs, and only what was there at the start; a
// log that is cut meanwhile gives what is left. Beyond the answer, a fixed 256 KiB of memory is
// needed. A `max_lines` of 0 or below asks for nothing, which succeeds.
// Without a regular file at `path` there is one line that says so, and the status is
// kSuccessWithWarnings. Fails with kOpenFailed or kReadFailed, which give no lines.
Status extractLog(const std::string& path, int max_lines, LogLevel threshold,
                  std::vector<std::string>* lines);

}  // namespace tunadm
