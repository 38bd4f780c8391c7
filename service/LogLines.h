// The lines of an answer that is found from its end.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "core/TextLines.h"

namespace tunadm {

// Takes lines from the last to the first and hands them out the other way round. Their texts are
// copied into large blocks, each filled from its end, so that a hundred thousand lines cost little
// more memory than their bytes.
class LogLines {
 public:
  std::size_t count() const { return count_; }

  // Puts `line`, of less than a block's size, before all others. It must hold no line feed.
  void addBefore(std::string_view line);

  // Hands out the lines, the first one first, many at a time.
  void print(const LineReceiver& out) const;

 private:
  static constexpr std::size_t kBlockSize = std::size_t{256} * 1024;

  // Texts with a line feed behind each fill it from `start` to its end.
  struct Block {
    std::unique_ptr<char[]> bytes;
    std::size_t start;
  };

  std::vector<Block> blocks_;  // the last one in the order of the lines first
  std::size_t count_ = 0;
};

}  // namespace tunadm
