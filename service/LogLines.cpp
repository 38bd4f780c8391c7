#include "service/LogLines.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace tunadm {
namespace {

// Most answers fit in the first block. The further ones are huge pages: to get as much memory
// in ordinary ones takes the kernel as long as to read the log.
constexpr std::size_t kFirstBlock = 2 * LogLines::kLeastRoom;
constexpr std::size_t kFurtherBlock = std::size_t{2} * 1024 * 1024;

}  // namespace

std::span<char> LogLines::room() {
  if (blocks_.empty()) {
    addBlock(kFirstBlock);
  } else if (blocks_.back().start < kLeastRoom) {
    addBlock(kFurtherBlock);
  }
  return {blocks_.back().bytes.get(), blocks_.back().start};
}

void LogLines::addBefore(std::string_view line) {
  Block& block = blocks_.back();
  char* const feed = block.bytes.get() + block.start - 1;
  const char* const text = feed - line.size();
  // The line may overlap its new place, which is never below the old one.
  if (text != line.data()) std::copy_backward(line.begin(), line.end(), feed);
  *feed = '\n';
  block.start -= line.size() + 1;
  ++count_;
}

void LogLines::addBlock(std::size_t size) {
  blocks_.reserve(blocks_.size() + 1);
  char* const bytes = static_cast<char*>(std::aligned_alloc(size, size));
  if (bytes == nullptr) throw std::bad_alloc();
  if (size == kFurtherBlock) madvise(bytes, size, MADV_HUGEPAGE);  // not everywhere to be had
  blocks_.push_back({{bytes, &std::free}, size, size});
}

void LogLines::clear() {
  blocks_.clear();
  count_ = 0;
}

void LogLines::forEachLine(const LineReceiver& out) const {
  forEachRun([&out](std::string_view lines) {
    std::size_t end = 0;
    for (std::size_t start = 0; start <= lines.size(); start = end + 1) {
      end = std::min(lines.find('\n', start), lines.size());
      out(lines.substr(start, end - start));
    }
  });
}

void LogLines::forEachRun(const LineReceiver& out) const {
  for (auto block = blocks_.rbegin(); block != blocks_.rend(); ++block) {
    if (block->start == block->size) continue;
    // The receiver puts the last line feed.
    out({block->bytes.get() + block->start, block->size - block->start - 1});
  }
}

}  // namespace tunadm
