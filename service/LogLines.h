// Lines of a log that are found from the last one to the first.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "core/TextLines.h"

namespace tunadm {

// Keeps lines in large blocks, each filled from its end. The log is read into the room that is left
// in a block: where all its lines are wanted, they are in their place already.
class LogLines {
 public:
  // What room() has at least.
  static constexpr std::size_t kLeastRoom = std::size_t{128} * 1024;

  // Memory right before the first line. A block with less room than that is given up for a new one.
  std::span<char> room();

  // Puts `line` before all others. It holds no line feed, and lies in the room that was handed out
  // last, so far from its end that the line and a line feed fit after its first byte.
  void addBefore(std::string_view line);

  std::size_t count() const { return count_; }
  void clear();

  // Hands out the lines in the order of the log, each by itself.
  void forEachLine(const LineReceiver& out) const;

  // The same for long runs of lines, with a line feed between each two.
  void forEachRun(const LineReceiver& out) const;

 private:
  // The lines, with a line feed after each, fill it from `start` to its end.
  struct Block {
    std::unique_ptr<char, void (*)(void*)> bytes;
    std::size_t size;
    std::size_t start;
  };

  void addBlock(std::size_t size);

  std::vector<Block> blocks_;  // in the order in which they were filled
  std::size_t count_ = 0;
};

}  // namespace tunadm
