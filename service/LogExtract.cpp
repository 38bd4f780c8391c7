#include "service/LogExtract.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "fundkit/AsciiText.h"
#include "fundkit/DescriptorIo.h"
#include "fundkit/FileUtils.h"
#include "service/LogWindow.h"

namespace tunadm {
namespace {

// What fgets with a buffer of 4,096 bytes reads at most.
constexpr off_t kPieceSize = 4095;

constexpr int kMostLines = 100000;

std::size_t wantedLines(int max_lines) {
  return static_cast<std::size_t>(max_lines < 0 ? kDefaultLogLines
                                                : std::min(max_lines, kMostLines));
}

// Takes the answer from its last line to its first.
class Search {
 public:
  Search(std::size_t max_lines, LogLevel threshold, LogLines* found)
      : max_lines_(max_lines), threshold_(threshold), found_(*found) {}

  bool full() const { return found_.count() >= max_lines_; }

  // A NUL byte ends a piece. The level is asked for first: it takes a look at the beginning only,
  // and in most logs decides about most lines.
  void take(std::string_view piece) {
    if (full() || parseLevel(piece) < threshold_) return;
    const std::string_view text = trimGraphic(piece.substr(0, piece.find('\0')));
    if (!text.empty()) found_.addBefore(text);
  }

 private:
  std::size_t max_lines_;
  LogLevel threshold_;
  LogLines& found_;
};

// Where the last piece of a line starts; pieces are counted from the start of the line.
off_t lastPiece(off_t line_start, off_t end) {
  return line_start + (end - line_start - 1) / kPieceSize * kPieceSize;
}

// Takes the lines before `end` that start in the window, and returns where the first of them
// starts; `end` itself when there is none.
off_t takeLines(const LogWindow& window, off_t end, Search* search) {
  while (end > window.start() && !search->full()) {
    // The byte before `end` is the line's own feed, or the last of a file without one.
    off_t line_start = window.behindLastFeed(end - 1);
    if (line_start < 0 && window.start() > 0) break;
    line_start = std::max<off_t>(line_start, 0);
    for (off_t start = end; start > line_start; end = start) {
      start = lastPiece(line_start, end);
      search->take(window.bytes(start, end));
    }
  }
  return end;
}

// Takes the line before `end`, which starts before the window, piece by piece.
off_t takeLongLine(LogWindow* window, off_t end, Search* search) {
  off_t line_start = -1;
  while (line_start < 0 && window->start() > 0) {
    window->loadBefore(window->start());
    line_start = window->behindLastFeed(window->end());
  }
  line_start = std::max<off_t>(line_start, 0);
  while (end > line_start && !search->full()) {
    const off_t start = lastPiece(line_start, end);
    window->load(start, end);
    search->take(window->bytes(start, window->end()));
    end = start;
  }
  return end;
}

bool readBackward(LogWindow* window, off_t end, Search* search) {
  while (end > 0 && !search->full() && !window->failed()) {
    window->loadBefore(end);
    end = window->end();
    const off_t rest = takeLines(*window, end, search);
    end = rest < end || end == window->start() ? rest : takeLongLine(window, end, search);
  }
  return !window->failed();
}

}  // namespace

Status LogExtract::find(const std::string& path, int max_lines, LogLevel threshold) {
  ScopedFd log = openRegularFile(path);
  struct stat at_start {};
  if (!log.valid() || fstat(log.get(), &at_start) != 0) {
    if (isRegularFile(path)) return Status(kOpenFailed);
    notice_ = "no logfile available for this profile";
    return Status(kSuccessWithWarnings);
  }
  LogWindow window(std::move(log));
  Search search(wantedLines(max_lines), threshold, &found_);
  const bool read = readBackward(&window, at_start.st_size, &search);
  return Status(read ? kSuccess : kReadFailed);
}

void LogExtract::print(const LineReceiver& out) const {
  if (!notice_.empty()) out(notice_);
  found_.print(out);
}

}  // namespace tunadm
