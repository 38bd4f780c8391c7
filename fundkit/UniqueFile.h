// New files with names that were not in use.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace tunadm {

struct StreamCloser {
  // A failure goes unnoticed here: to know whether the data has been written, call fflush first.
  void operator()(FILE* stream) const { (void)std::fclose(stream); }
};
using ScopedStream = std::unique_ptr<FILE, StreamCloser>;

// Creates a file named after `base` with a dot and six further characters, mode 0644, open for
// reading and writing. Null, with `name` unchanged, when the base is empty or the name would exceed
// 4095 bytes, and after 11 attempts; each failed open is logged.
[[nodiscard]] ScopedStream makeUniqueFile(const std::string& base, std::string* name);

}  // namespace tunadm
