#include "fundkit/LinePrinter.h"

#include <cerrno>
#include <cstring>

#include "fundkit/BasicLog.h"
#include "fundkit/DescriptorIo.h"

namespace tunadm {
namespace {

constexpr std::size_t kLargestWrite = std::size_t{64} * 1024;

}  // namespace

void LinePrinter::print(std::string_view lines) {
  append(lines);
  text_ += '\n';
}

void LinePrinter::append(std::string_view text) {
  if (text_.size() + text.size() >= kLargestWrite) flush();
  if (text.size() >= kLargestWrite) {
    write(text);
  } else {
    text_ += text;
  }
}

void LinePrinter::flush() {
  write(text_);
  text_.clear();
}

void LinePrinter::write(std::string_view text) {
  if (broken_ || writeOutput(descriptor_, text)) return;
  const int error = errno;
  broken_ = true;
  if (error == EPIPE) return;
  TUNADM_LOG(programLogger(), kLogError, sourceFileName(__FILE__), __func__,
             std::string("write output: ") + std::strerror(error));
}

}  // namespace tunadm
