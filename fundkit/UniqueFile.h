// New files with names that nobody else uses.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace tunadm {

struct StreamCloser {
  // Whoever needs to know whether the data arrived calls fflush before.
  void operator()(FILE* stream) const { (void)std::fclose(stream); }
};
using ScopedStream = std::unique_ptr<FILE, StreamCloser>;

// Creates a file named after `base` with a dot and six further characters, mode 0644, open for
// reading and writing. Gives none, and leaves `name` unchanged, when the base is empty or longer
// than the name buffer, or after 11 attempts; each failed open is logged.
ScopedStream makeUniqueFile(const std::string& base, std::string* name);

}  // namespace tunadm
