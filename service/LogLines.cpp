#include "service/LogLines.h"

#include <algorithm>

namespace tunadm {

void LogLines::addBefore(std::string_view line) {
  const std::size_t needed = line.size() + 1;
  if (blocks_.empty() || blocks_.back().start < needed) {
    blocks_.push_back({std::make_unique_for_overwrite<char[]>(kBlockSize), kBlockSize});
  }
  Block& block = blocks_.back();
  block.start -= needed;
  char* const text = block.bytes.get() + block.start;
  *std::copy(line.begin(), line.end(), text) = '\n';
  ++count_;
}

void LogLines::print(const LineReceiver& out) const {
  for (auto block = blocks_.rbegin(); block != blocks_.rend(); ++block) {
    // The receiver puts the last line feed.
    out(std::string_view(block->bytes.get() + block->start, kBlockSize - block->start - 1));
  }
}

}  // namespace tunadm
