// Removal of directories with everything below them. Symbolic links are removed and never
// followed, not even when a directory is exchanged for a link while the removal runs.
#pragma once

#include <string>

#include "core/Status.h"

namespace tunadm {

// Removes whatever is at the path: a directory with everything below it, or a single entry. Nothing
// there is a success. Stops at the first failure: kInvalidArgument (empty path), kOpendirFailed,
// kUnlinkFailed, kRmdirFailed.
Status removeTree(const std::string& path);

// Removes everything below the directory and keeps the directory itself. Statuses as for
// removeTree; a path that is not a directory, also a link to one, is kOpendirFailed.
Status emptyDirectory(const std::string& path);

}  // namespace tunadm
