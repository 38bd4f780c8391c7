#include "fundkit/FileUtils.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>

#include "fundkit/DescriptorIo.h"
#include "fundkit/SystemFailure.h"

namespace tunadm {
namespace {

constexpr std::size_t kCopyChunk = 4096;
constexpr mode_t kCopyMode = 0644;
constexpr mode_t kPermissionBits = 0777;

Status copyFailure(StatusCode code, std::string_view operation, const std::string& path) {
  return Status(code, path, "copyFile").because(systemCause(operation, path));
}

// The status of a system call's result; `accepted` is the errno of what is as wanted already.
Status outcome(int result, int accepted, StatusCode failure, std::string_view operation,
               const std::string& path) {
  if (result == 0 || errno == accepted) return Status(kSuccess);
  return systemFailure(failure, operation, path);
}

bool anythingAt(const std::string& path) {
  struct stat found {};
  return lstat(path.c_str(), &found) == 0;
}

// Empties the open destination, unless it is the source itself or has no length.
StatusCode emptyDestination(int destination, const struct stat& found, const struct stat& source) {
  if (found.st_dev == source.st_dev && found.st_ino == source.st_ino) {
    errno = EINVAL;
    return kInvalidArgument;
  }
  return !S_ISREG(found.st_mode) || cutFile(destination, 0) ? kSuccess : kWriteFailed;
}

StatusCode copyContent(int source, int destination, off_t size) {
  char chunk[kCopyChunk];
  for (off_t left = size; left > 0;) {
    const off_t wanted = std::min(left, static_cast<off_t>(sizeof(chunk)));
    const ssize_t count = readSome(source, chunk, static_cast<std::size_t>(wanted));
    if (count == 0) errno = ENODATA;
    if (count <= 0) return kReadFailed;
    if (!writeAll(destination, {chunk, static_cast<std::size_t>(count)})) return kWriteFailed;
    left -= count;
  }
  return kSuccess;
}

// Takes from the source as many bytes as it had when its size was looked up. errno tells why it
// failed.
StatusCode copyOpened(int source, off_t size, ScopedFd* destination) {
  struct stat from {};
  struct stat to {};
  if (fstat(source, &from) != 0) return kReadFailed;
  if (fstat(destination->get(), &to) != 0) return kWriteFailed;
  if (StatusCode code = emptyDestination(destination->get(), to, from); code != kSuccess)
    return code;
  if (StatusCode code = copyContent(source, destination->get(), size); code != kSuccess)
    return code;
  // The content counts whatever the mode; that of a device is not ours to change.
  if (S_ISREG(to.st_mode)) (void)fchmod(destination->get(), kCopyMode);
  errno = destination->close();
  return errno == 0 ? kSuccess : kWriteFailed;
}

}  // namespace

Status copyFile(const std::string& source, const std::string& destination) {
  if (source.empty() || destination.empty()) return Status(kInvalidArgument, "", "copyFile");
  struct stat found {};
  if (stat(source.c_str(), &found) != 0) return copyFailure(kInvalidArgument, "stat", source);
  const ScopedFd input = openDescriptor(source, O_RDONLY);
  if (!input.valid()) return copyFailure(kOpenFailed, "open", source);
  // Reading it would fail only after the destination has been emptied.
  if (S_ISDIR(found.st_mode)) {
    errno = EISDIR;
    return copyFailure(kReadFailed, "read", source);
  }
  // Not truncated by the open: nothing would be left of a file that is copied onto itself.
  ScopedFd output = openDescriptor(destination, O_WRONLY | O_CREAT, kCopyMode);
  if (!output.valid()) return copyFailure(kOpenFailed, "open", destination);
  const StatusCode copied = copyOpened(input.get(), found.st_size, &output);
  if (copied == kSuccess) return Status(kSuccess);
  return copied == kReadFailed ? copyFailure(copied, "read", source)
                               : copyFailure(copied, "write", destination);
}

Status moveFile(const std::string& source, const std::string& destination, Overwrite overwrite) {
  if (source.empty() || destination.empty()) return Status(kInvalidArgument);
  if (overwrite != Overwrite::kYes && anythingAt(destination)) {
    errno = EEXIST;
    return systemFailure(kRenameFailed, "rename", destination);
  }
  if (rename(source.c_str(), destination.c_str()) == 0) return Status(kSuccess);
  if (errno != EXDEV) return systemFailure(kRenameFailed, "rename", source);
  Status moved = copyFile(source, destination);
  if (moved.ok()) moved = removeFile(source);
  return moved.ok() ? moved : Status(kRenameFailed).because(moved.cause());
}

Status removeFile(const std::string& path) {
  if (path.empty()) return Status(kInvalidArgument);
  return outcome(unlink(path.c_str()), ENOENT, kUnlinkFailed, "unlink", path);
}

Status removeEmptyDirectory(const std::string& path) {
  if (path.empty()) return Status(kInvalidArgument);
  return outcome(rmdir(path.c_str()), ENOENT, kRmdirFailed, "rmdir", path);
}

Status removeEntry(const std::string& path) {
  Status removed = removeFile(path);
  return removed.ok() ? removed : removeEmptyDirectory(path);
}

Status makeDirectory(const std::string& path, mode_t mode) {
  if (path.empty()) return Status(kInvalidArgument);
  return outcome(mkdir(path.c_str(), mode), EEXIST, kMkdirFailed, "mkdir", path);
}

Status makeNewDirectory(const std::string& path, mode_t mode) {
  if (path.empty()) return Status(kInvalidArgument);
  if (mkdir(path.c_str(), mode) == 0) return Status(kSuccess);
  return systemFailure(kMkdirFailed, "mkdir", path);
}

Status changeMode(const std::string& path, mode_t mode) {
  if (path.empty()) return Status(kInvalidArgument);
  if (chmod(path.c_str(), mode) == 0) return Status(kSuccess);
  Status refused = systemFailure(kChmodFailed, "chmod", path);
  struct stat found {};
  const bool equal = stat(path.c_str(), &found) == 0 && (found.st_mode & kPermissionBits) == mode;
  return equal ? Status(kSuccess) : refused;
}

Status currentDirectory(std::string* path) {
  path->clear();
  char buffer[PATH_MAX];
  if (getcwd(buffer, sizeof(buffer)) == nullptr) return systemFailure(kGetcwdFailed, "getcwd", "");
  path->assign(buffer);
  return Status(kSuccess);
}

Status changeDirectory(const std::string& path) {
  if (path.empty()) return Status(kInvalidArgument);
  if (chdir(path.c_str()) == 0) return Status(kSuccess);
  return systemFailure(kHostError, "chdir", path);
}

bool pathExists(const std::string& path) {
  struct stat found {};
  return stat(path.c_str(), &found) == 0;
}

bool isRegularFile(const std::string& path) {
  struct stat found {};
  return stat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode);
}

bool isRealDirectory(const std::string& path) {
  struct stat found {};
  return lstat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode);
}

bool isRealFile(const std::string& path) {
  struct stat found {};
  return lstat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode);
}

bool isMissing(const std::string& path) {
  struct stat found {};
  return lstat(path.c_str(), &found) != 0 && errno == ENOENT;
}

}  // namespace tunadm
