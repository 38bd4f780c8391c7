// The entries of a directory by kind.
#pragma once

#include <string>
#include <vector>

#include "core/Status.h"

namespace tunadm {

// Names without the directory, in the order in which the system returns them.
struct DirectoryListing {
  Status status{kSuccess};
  std::vector<std::string> subdirectories;
  std::vector<std::string> files;
  std::vector<std::string> file_links;       // links whose target is a regular file
  std::vector<std::string> directory_links;  // links whose target is a directory
  std::vector<std::string> others;           // everything else, and links to such things
};

// Lists a directory. The status is kInvalidArgument (empty path), kOpendirFailed, kReadFailed (the
// lists then hold what was read before) or kSuccess. An entry that cannot be classified, such as a
// dead link, is left out. Deliberate: the target of a relative link is looked up from the current
// working directory, not from the listed one.
DirectoryListing listDirectory(const std::string& path);

}  // namespace tunadm
