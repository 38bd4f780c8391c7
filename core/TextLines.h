// Text lines, handed over one at a time, so that a list need not be in memory as a whole.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tunadm {

// Takes one line, or several with line feeds between them. The view is valid only during the call.
using LineReceiver = std::function<void(std::string_view line)>;

// Takes the next piece of a text, which may end anywhere. The view is valid only during the call.
using TextReceiver = std::function<void(std::string_view text)>;

// Hands the lines of a list to `out`, the first one first.
using LineSource = std::function<void(const LineReceiver& out)>;

// `lines` must outlive the source.
inline LineSource linesOf(const std::vector<std::string>& lines) {
  return [&lines](const LineReceiver& out) {
    for (const std::string& line : lines) out(line);
  };
}

}  // namespace tunadm
