// Printing of lines in few system calls.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tunadm {

// Collects lines for a descriptor and writes them in large pieces, the last one on destruction.
// After a failed write nothing more is written, so that the output never has a hole; the failure is
// logged, unless it only means that the reader has gone (EPIPE).
class LinePrinter {
 public:
  // `descriptor` remains the caller's, who keeps it open as long as the printer lives.
  explicit LinePrinter(int descriptor) : descriptor_(descriptor) {}
  LinePrinter(const LinePrinter&) = delete;
  LinePrinter& operator=(const LinePrinter&) = delete;
  ~LinePrinter() { flush(); }

  // Prints one line, or several with line feeds between them, and a line feed after it.
  void print(std::string_view lines);
  // Prints a piece of a line, which may be of any length.
  void append(std::string_view text);

 private:
  void flush();
  void write(std::string_view text);

  int descriptor_;
  std::string text_;
  bool broken_ = false;
};

}  // namespace tunadm
