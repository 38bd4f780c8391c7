// Removal of directories with everything below them. Symbolic links are removed and never
// followed, not even when a directory is exchanged for a link during the removal. The depth of the
// tree is limited by memory only.
#pragma once

#include <string>
#include <string_view>

#include "core/Status.h"

namespace tunadm {

// Removes what is at the path: a directory with everything below it, or a single entry. Nothing
// there is a success. Stops at the first failure: kInvalidArgument (empty path), kOpendirFailed,
// kUnlinkFailed, kRmdirFailed.
Status removeTree(const std::string& path);

// Removes everything below the directory and keeps the directory itself. The entry `last`, if there
// is one, is removed after all others: while it is there, the directory can be found by it.
// Statuses as for removeTree; a path that is not a directory, also a link to one, is
// kOpendirFailed.
Status emptyDirectory(const std::string& path, std::string_view last = {});

}  // namespace tunadm
