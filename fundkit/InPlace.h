// Changing the content of a file without replacing the file.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "fundkit/ScopedFd.h"

namespace tunadm {

// Opens for replaceContent(); `flags` are further ones of open(2). Permission to write is enough.
// Not valid on failure, and for a FIFO, whose text would be lost; errno tells why, 0 for a FIFO.
ScopedFd openInPlace(const std::string& path, int flags, mode_t mode = 0);

enum class Flush { kNo, kYes };

// Replaces the whole content of the file, which stands at its start. On failure (false; errno tells
// why) the old content is put back if it could be read and still has room. What is not a regular
// file is only written to.
[[nodiscard]] bool replaceContent(int file, std::string_view text, Flush flush);

}  // namespace tunadm
