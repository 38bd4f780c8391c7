#include "service/LogWindow.h"

#include <algorithm>
#include <cstring>

#include "fundkit/DescriptorIo.h"

namespace tunadm {

void LogWindow::load(off_t start, off_t end) {
  buffer_.resize(kSize);
  start_ = start;
  length_ = 0;
  const auto wanted = static_cast<std::size_t>(end - start);
  while (length_ < wanted) {
    const ssize_t count =
        readAt(log_.get(), this->end(), buffer_.data() + length_, wanted - length_);
    failed_ = failed_ || count < 0;
    if (count <= 0) return;
    length_ += static_cast<std::size_t>(count);
  }
}

void LogWindow::loadBefore(off_t end) { load(std::max<off_t>(0, end - kSize), end); }

std::string_view LogWindow::bytes(off_t from, off_t to) const {
  return std::string_view(buffer_).substr(static_cast<std::size_t>(from - start_),
                                          static_cast<std::size_t>(to - from));
}

off_t LogWindow::behindLastFeed(off_t end) const {
  const std::string_view before = bytes(start_, end);
  const void* const feed = memrchr(before.data(), '\n', before.size());
  if (feed == nullptr) return -1;
  return start_ + (static_cast<const char*>(feed) - before.data()) + 1;
}

}  // namespace tunadm
