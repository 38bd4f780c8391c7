// The search for the last lines of a log, from its end.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "fundkit/LogLevel.h"
#include "service/LogFile.h"
#include "service/LogLines.h"

namespace tunadm {

// One search of a marked log; for one call of run().
class LogSearch {
 public:
  // `log` and `found` must outlive the search.
  LogSearch(const LogFile& log, std::size_t max_lines, LogLevel threshold, LogLines* found);

  // Adds the last lines at or above the threshold to `found`, until that holds `max_lines`. False
  // when the log could not be read.
  [[nodiscard]] bool run();

 private:
  bool full() const { return found_.count() >= max_lines_; }

  // False only for a line whose first two bytes show that its level is below the threshold.
  bool mayBeWanted(std::string_view line) const {
    const auto first = static_cast<unsigned char>(line.front());
    return line.size() > 1 && line[1] == '~' ? wanted_before_tilde_[first] : may_begin_[first];
  }

  [[nodiscard]] bool load(off_t start, off_t end);
  [[nodiscard]] bool loadBefore(off_t end);
  void takeLines();
  [[nodiscard]] bool takeLine(std::string_view line);
  [[nodiscard]] bool windowHasNul();
  void take(std::string_view piece);
  [[nodiscard]] bool takeHugeLine();

  const LogFile& log_;
  const std::size_t max_lines_;
  const LogLevel threshold_;
  LogLines& found_;
  // By first byte: mayBeginLevel. With a tilde next, only a short name is possible, so parseLevel
  // can decide.
  std::array<bool, 256> may_begin_;
  std::array<bool, 256> wanted_before_tilde_;

  off_t end_;                           // what follows in the log has been looked at
  off_t window_start_ = 0;              // the place of the window in the log
  std::string_view window_;             // the part of the log that is in memory
  std::optional<bool> window_has_nul_;  // not looked for where no line is wanted
  std::size_t next_size_;               // of the window
  std::size_t slack_ = 0;               // kept free between the window and the lines found
};

}  // namespace tunadm
