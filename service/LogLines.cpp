#include "service/LogLines.h"

#include <algorithm>

namespace tunadm {

void LogLines::addBefore(std::string_view line) {
  constexpr std::size_t kBlockSize = std::size_t{64} * 1024;
  const std::size_t needed = line.size() + 1;
  if (blocks_.empty() || blocks_.back().start < needed) {
    const std::size_t size = std::max(needed, kBlockSize);
    blocks_.push_back({std::make_unique_for_overwrite<char[]>(size), size, size});
  }
  Block& block = blocks_.back();
  block.start -= needed;
  char* const text = block.bytes.get() + block.start;
  std::copy(line.begin(), line.end(), text);
  text[line.size()] = '\n';
  ++count_;
}

void LogLines::print(const LineReceiver& out) const {
  for (auto block = blocks_.rbegin(); block != blocks_.rend(); ++block) {
    std::string_view rest(block->bytes.get() + block->start, block->size - block->start);
    while (!rest.empty()) {
      const std::size_t end = rest.find('\n');
      out(rest.substr(0, end));
      rest.remove_prefix(end + 1);
    }
  }
}

}  // namespace tunadm
