#include "service/LogExtract.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <string_view>

#include "fundkit/DescriptorIo.h"
#include "fundkit/FileUtils.h"
#include "fundkit/LineReader.h"

namespace tunadm {
namespace {

// What fgets with a buffer of 4,096 bytes reads at most.
constexpr off_t kPieceSize = 4095;
constexpr std::size_t kWindowSize = std::size_t{256} * 1024;

// A part of the file in memory. What has been cut off the file since the start is not there.
class Window {
 public:
  explicit Window(int file) : file_(file), buffer_(kWindowSize, '\0') {}

  // Loads the bytes from `start` to `end`, kWindowSize at most.
  void load(off_t start, off_t end) {
    start_ = start;
    length_ = 0;
    const auto wanted = static_cast<std::size_t>(end - start);
    while (length_ < wanted) {
      const ssize_t count = pread(file_, buffer_.data() + length_, wanted - length_, this->end());
      if (count < 0 && errno == EINTR) continue;
      failed_ = failed_ || count < 0;
      if (count <= 0) return;
      length_ += static_cast<std::size_t>(count);
    }
  }

  // Loads the bytes before `end`, as many as fit.
  void loadBefore(off_t end) {
    load(std::max<off_t>(0, end - static_cast<off_t>(kWindowSize)), end);
  }

  bool failed() const { return failed_; }
  off_t start() const { return start_; }
  off_t end() const { return start_ + static_cast<off_t>(length_); }

  // The bytes from `from` to `to`, both inside.
  std::string_view bytes(off_t from, off_t to) const {
    return std::string_view(buffer_).substr(static_cast<std::size_t>(from - start_),
                                            static_cast<std::size_t>(to - from));
  }

  // The place behind the last line feed before `end`, or -1.
  off_t behindLastFeed(off_t end) const {
    const std::string_view before = bytes(start_, end);
    const void* const feed = memrchr(before.data(), '\n', before.size());
    if (feed == nullptr) return -1;
    return start_ + (static_cast<const char*>(feed) - before.data()) + 1;
  }

 private:
  int file_;
  std::string buffer_;
  off_t start_ = 0;
  std::size_t length_ = 0;
  bool failed_ = false;
};

// The answer, taken from its last line to its first.
class Extract {
 public:
  Extract(std::size_t max_lines, LogLevel threshold)
      : max_lines_(max_lines), threshold_(threshold) {}

  bool full() const { return found_.size() >= max_lines_; }

  // A NUL byte ends a piece. The level is asked for first: it takes a look at the start only, and
  // in most logs decides about most lines.
  void take(std::string_view piece) {
    if (full() || parseLevel(piece) < threshold_) return;
    const std::string_view text = trimGraphic(piece.substr(0, piece.find('\0')));
    if (!text.empty()) found_.emplace_back(text);
  }

  void moveTo(std::vector<std::string>* lines) {
    lines->insert(lines->end(), std::make_move_iterator(found_.rbegin()),
                  std::make_move_iterator(found_.rend()));
  }

 private:
  std::size_t max_lines_;
  LogLevel threshold_;
  std::vector<std::string> found_;
};

// Where the last piece of a line starts; pieces are counted from the start of the line.
off_t lastPiece(off_t line_start, off_t end) {
  return line_start + (end - line_start - 1) / kPieceSize * kPieceSize;
}

// Takes the lines before `end` that start in the window, and returns where the first of them
// starts; `end` itself when there is none.
off_t takeLines(const Window& window, off_t end, Extract* extract) {
  while (end > window.start() && !extract->full()) {
    // The byte before `end` is the line's own feed, or the last of a file without one.
    off_t line_start = window.behindLastFeed(end - 1);
    if (line_start < 0 && window.start() > 0) break;
    line_start = std::max<off_t>(line_start, 0);
    for (off_t start = end; start > line_start; end = start) {
      start = lastPiece(line_start, end);
      extract->take(window.bytes(start, end));
    }
  }
  return end;
}

// Takes the line before `end`, which starts before the window, piece by piece.
off_t takeLongLine(Window* window, off_t end, Extract* extract) {
  off_t line_start = -1;
  while (line_start < 0 && window->start() > 0) {
    window->loadBefore(window->start());
    line_start = window->behindLastFeed(window->end());
  }
  line_start = std::max<off_t>(line_start, 0);
  while (end > line_start && !extract->full()) {
    const off_t start = lastPiece(line_start, end);
    window->load(start, end);
    extract->take(window->bytes(start, window->end()));
    end = start;
  }
  return end;
}

bool readBackward(int file, off_t end, Extract* extract) {
  Window window(file);
  while (end > 0 && !extract->full() && !window.failed()) {
    window.loadBefore(end);
    end = window.end();
    const off_t rest = takeLines(window, end, extract);
    end = rest < end || end == window.start() ? rest : takeLongLine(&window, end, extract);
  }
  return !window.failed();
}

Status noLog(const std::string& path, std::vector<std::string>* lines) {
  if (isRegularFile(path)) return Status(kOpenFailed);
  lines->emplace_back("no logfile available for this profile");
  return Status(kSuccessWithWarnings);
}

}  // namespace

Status extractLog(const std::string& path, int max_lines, LogLevel threshold,
                  std::vector<std::string>* lines) {
  const ScopedFd file = openRegularFile(path);
  struct stat at_start {};
  if (!file.valid() || fstat(file.get(), &at_start) != 0) return noLog(path, lines);
  Extract extract(static_cast<std::size_t>(std::max(0, max_lines)), threshold);
  if (!readBackward(file.get(), at_start.st_size, &extract)) return Status(kReadFailed);
  extract.moveTo(lines);
  return Status(kSuccess);
}

}  // namespace tunadm
