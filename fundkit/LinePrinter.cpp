#include "fundkit/LinePrinter.h"

#include "fundkit/DescriptorIo.h"

namespace tunadm {
namespace {

constexpr std::size_t kLargestWrite = std::size_t{64} * 1024;

}  // namespace

void LinePrinter::print(std::string_view lines) {
  if (text_.size() + lines.size() >= kLargestWrite) flush();
  if (lines.size() >= kLargestWrite) {
    write(lines);
    lines = {};
  }
  text_.append(lines).push_back('\n');
}

void LinePrinter::flush() {
  write(text_);
  text_.clear();
}

void LinePrinter::write(std::string_view text) {
  broken_ = broken_ || !writeOutput(descriptor_, text);
}

}  // namespace tunadm
