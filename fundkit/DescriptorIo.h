// Reading and writing descriptors where a signal or a short count is no failure.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "fundkit/ScopedFd.h"

namespace tunadm {

// openat that starts again after EINTR; O_CLOEXEC, O_NOCTTY and O_NONBLOCK are added to `flags`, so
// neither a terminal nor a FIFO at the path does harm. On failure errno tells why.
ScopedFd openDescriptor(int directory, const char* path, int flags, mode_t mode = 0);
ScopedFd openDescriptor(const std::string& path, int flags, mode_t mode = 0);

// As openDescriptor for reading, but gives none, with errno 0, for what is no regular file.
ScopedFd openRegularFile(const std::string& path);

// read and pread that start again after EINTR.
ssize_t readSome(int descriptor, char* buffer, std::size_t size);
ssize_t readAt(int descriptor, off_t offset, char* buffer, std::size_t size);

// Writes all of `text`, in one call of write where the system takes it so; waits where a descriptor
// that does not block is full. False on failure.
bool writeAll(int descriptor, std::string_view text);

// ftruncate and fsync that start again after EINTR. False on failure.
bool cutFile(int descriptor, off_t length);
bool syncToDisk(int descriptor);

// As writeAll, for standard output and error. That nobody reads them (any more) is no failure:
// SIGPIPE does not end the process. False when not all has been written.
bool writeOutput(int descriptor, std::string_view text);

// Makes /dev/null stand in for each standard descriptor that the caller has closed; otherwise a
// file that is opened later would take its number, and be given what is meant to be output.
void fillStandardDescriptors();

}  // namespace tunadm
