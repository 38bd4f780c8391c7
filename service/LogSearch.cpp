#include "service/LogSearch.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "fundkit/AsciiText.h"

namespace tunadm {
namespace {

// What fgets with a buffer of 4,096 bytes reads at most.
constexpr std::size_t kPieceSize = 4095;

// The last fifty lines are mostly in the first window. The further ones stay in the processor's
// cache while they are looked through.
constexpr std::size_t kFirstWindow = std::size_t{32} * 1024;
constexpr std::size_t kLargestWindow = std::size_t{256} * 1024;

// Each piece of a line but the last gets a line feed that is not in the log.
constexpr std::size_t kSlack = 128;
static_assert(kSlack > kLargestWindow / kPieceSize + 1);

// How many bytes of a line stand before its last piece; pieces are counted from its start.
constexpr std::size_t beforeLastPiece(std::size_t length) {
  return (length - 1) / kPieceSize * kPieceSize;
}

}  // namespace

LogSearch::LogSearch(const LogFile& log, std::size_t max_lines, LogLevel threshold, LogLines* found)
    : log_(log),
      max_lines_(max_lines),
      threshold_(threshold),
      found_(*found),
      end_(log.size()),
      next_size_(kFirstWindow) {
  for (std::size_t byte = 0; byte < may_begin_.size(); ++byte) {
    const char begin[] = {static_cast<char>(byte), '~'};
    may_begin_[byte] = mayBeginLevel(begin[0], threshold);
    wanted_before_tilde_[byte] = parseLevel(std::string_view(begin, 2)) >= threshold;
  }
}

bool LogSearch::run() {
  while (end_ > 0 && !full()) {
    if (!loadBefore(end_)) return false;
    const std::size_t slack = slack_;
    const off_t end = end_;
    takeLines();
    if (end_ == end && slack_ == slack && !takeHugeLine()) return false;
  }
  return true;
}

bool LogSearch::load(off_t start, off_t end) {
  const std::span<char> room = found_.room();
  const auto length = static_cast<std::size_t>(end - start);
  const std::span<char> window = room.subspan(room.size() - slack_ - length, length);
  window_ = {window.data(), window.size()};
  window_start_ = start;
  window_has_nul_.reset();
  return log_.read(start, window);
}

bool LogSearch::loadBefore(off_t end) {
  const std::size_t size = std::min(next_size_, found_.room().size() - slack_);
  next_size_ = kLargestWindow;
  return load(std::max<off_t>(0, end - static_cast<off_t>(size)), end);
}

// Takes the lines that begin in the window, which ends at end_.
void LogSearch::takeLines() {
  const char* const begin = window_.data();
  const char* end = begin + window_.size();
  while (end > begin && !full()) {
    // The byte before `end` is the line's own feed, or the last of a log without one.
    const void* const feed = memrchr(begin, '\n', static_cast<std::size_t>(end - begin) - 1);
    if (feed == nullptr && window_start_ > 0) break;
    const char* const line = feed == nullptr ? begin : static_cast<const char*>(feed) + 1;
    const std::string_view text(line, static_cast<std::size_t>(end - line));
    // Nearly all lines end here where the level is rare.
    if ((mayBeWanted(text) || text.size() > kPieceSize) && !takeLine(text)) break;
    end = line;
  }
  end_ = window_start_ + (end - begin);
}

// False when there is no slack for the line feeds that the line needs: the window is to be loaded
// again with some.
bool LogSearch::takeLine(std::string_view line) {
  const bool grows = line.size() > kPieceSize || line.back() != '\n';
  if (grows && slack_ == 0) {
    slack_ = kSlack;
    return false;
  }
  while (!line.empty() && !full()) {
    const std::size_t start = beforeLastPiece(line.size());
    take(line.substr(start));
    line = line.substr(0, start);
  }
  return true;
}

bool LogSearch::windowHasNul() {
  if (!window_has_nul_) window_has_nul_ = window_.find('\0') != window_.npos;
  return *window_has_nul_;
}

// A NUL byte ends a piece.
void LogSearch::take(std::string_view piece) {
  if (threshold_ > kLogTrace && parseLevel(piece) < threshold_) return;
  if (windowHasNul()) piece = piece.substr(0, piece.find('\0'));
  const std::string_view text = trimGraphic(piece);
  if (!text.empty()) found_.addBefore(text);
}

// Takes the line before end_, which begins before the window.
bool LogSearch::takeHugeLine() {
  slack_ = kSlack;
  off_t line_start = 0;
  while (window_start_ > 0) {
    if (!loadBefore(window_start_)) return false;
    // The window holds nothing of the line's end, so that a feed at its end is another line's.
    const void* const feed = memrchr(window_.data(), '\n', window_.size());
    if (feed == nullptr) continue;
    line_start = window_start_ + (static_cast<const char*>(feed) - window_.data()) + 1;
    break;
  }
  while (end_ > line_start && !full()) {
    const auto length = static_cast<std::size_t>(end_ - line_start);
    const off_t start = line_start + static_cast<off_t>(beforeLastPiece(length));
    if (!load(start, end_)) return false;
    take(window_);
    end_ = start;
  }
  return true;
}

}  // namespace tunadm
