// Owner, group, permission bits and extended attributes of a file that replaces another.
#pragma once

#include <sys/types.h>

#include <optional>

namespace tunadm {

// Sets on the open file, which the caller has just created, what replaceFile() promises: the owner,
// group and extended attributes of the open file `replaced` (-1 for none) as far as possible, and
// the permission bits. False when the bits cannot be set.
[[nodiscard]] bool takeOverAttributes(int file, int replaced, std::optional<mode_t> mode);

// The bits that new files of this process lack.
[[nodiscard]] mode_t callersUmask();

}  // namespace tunadm
