// Reading and writing descriptors where a signal or a short count is not a failure.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "fundkit/ScopedFd.h"

namespace tunadm {

// openat that is repeated after EINTR; O_CLOEXEC, O_NOCTTY and O_NONBLOCK are added to `flags`, so
// that neither a terminal nor a FIFO at the path does harm. A file that another process holds a
// lease on (fcntl(2)) is waited for. Not valid on failure; errno tells why.
ScopedFd openDescriptor(int directory, const char* path, int flags, mode_t mode = 0);
ScopedFd openDescriptor(const std::string& path, int flags, mode_t mode = 0);

// As openDescriptor for reading, but not valid, with errno 0, for what is not a regular file.
ScopedFd openRegularFile(const std::string& path);

// read and pread that are repeated after EINTR.
ssize_t readSome(int descriptor, char* buffer, std::size_t size);
ssize_t readAt(int descriptor, off_t offset, char* buffer, std::size_t size);

// Appends what follows in a regular file to `text`. False on failure and when `text` would grow
// beyond `largest` bytes (EFBIG); errno tells why.
[[nodiscard]] bool readAll(int descriptor, std::size_t largest, std::string* text);

// Writes all of `text`, in one call of write where the system takes it; waits where a non-blocking
// descriptor is full. False on failure; errno tells why.
[[nodiscard]] bool writeAll(int descriptor, std::string_view text);

// ftruncate and fsync that are repeated after EINTR. False on failure; errno tells why.
[[nodiscard]] bool cutFile(int descriptor, off_t length);
[[nodiscard]] bool syncToDisk(int descriptor);

// Flushes the whole file system that the descriptor is on, repeated after EINTR. False on failure;
// errno tells why.
[[nodiscard]] bool syncFileSystem(int descriptor);

// As writeAll, for standard output and error. If the reader has gone, SIGPIPE does not end the
// process. False when not all has been written; errno tells why.
bool writeOutput(int descriptor, std::string_view text);

// Opens /dev/null for each standard descriptor that the caller has closed; otherwise a file that is
// opened later would take its number and receive what is meant as output.
void fillStandardDescriptors();

}  // namespace tunadm
