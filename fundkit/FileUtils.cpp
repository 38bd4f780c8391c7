#include "fundkit/FileUtils.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "fundkit/DescriptorIo.h"

namespace tunadm {
namespace {

constexpr std::size_t kCopyChunk = 4096;
constexpr mode_t kCopyMode = 0644;
constexpr mode_t kLinesMode = 0640;
constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kPermissionBits = 0777;

Status copyFailure(StatusCode code, const std::string& path) {
  return Status(code, path, "copyFile");
}

// The status of a system call's result; `accepted` is the errno that means "so already".
Status outcome(int result, int accepted, StatusCode failure) {
  return Status(result == 0 || errno == accepted ? kSuccess : failure);
}

bool anythingAt(const std::string& path) {
  struct stat found {};
  return lstat(path.c_str(), &found) == 0;
}

bool areSameFile(int left, int right) {
  struct stat first {};
  struct stat second {};
  return fstat(left, &first) == 0 && fstat(right, &second) == 0 && first.st_dev == second.st_dev &&
         first.st_ino == second.st_ino;
}

StatusCode copyContent(int source, int destination, off_t size) {
  char chunk[kCopyChunk];
  for (off_t left = size; left > 0;) {
    const off_t wanted = std::min(left, static_cast<off_t>(sizeof(chunk)));
    const ssize_t count = readSome(source, chunk, static_cast<std::size_t>(wanted));
    if (count <= 0) return kReadFailed;
    if (!writeAll(destination, {chunk, static_cast<std::size_t>(count)})) return kWriteFailed;
    left -= count;
  }
  return kSuccess;
}

// For reading, too, as replaceContent wants it. A FIFO opened so would take a text that nobody
// reads; it counts as not to be opened.
ScopedFd openForReplacing(const std::string& path, mode_t mode) {
  ScopedFd file = openDescriptor(path, O_RDWR | O_CREAT, mode);
  struct stat found {};
  if (file.valid() && (fstat(file.get(), &found) != 0 || S_ISFIFO(found.st_mode))) {
    (void)file.close();  // Nothing was written.
  }
  return file;
}

// The old content is cut off only behind the new one, and comes back when that cannot be written as
// a whole: emptied before, the file would stay empty on a full disk or after a kill. What is no
// regular file has no length to cut.
bool replaceContent(int file, std::string_view text) {
  std::string old(text.size(), '\0');
  const ssize_t length = readAt(file, 0, old.data(), old.size());
  if (writeAll(file, text))
    return cutFile(file, static_cast<off_t>(text.size())) || errno == EINVAL;
  if (length >= 0 && lseek(file, 0, SEEK_SET) == 0) {
    old.resize(static_cast<std::size_t>(length));
    // Room for it was there before. A file that was shorter than what has been written is cut.
    (void)(writeAll(file, old) && (old.size() == text.size() || cutFile(file, length)));
  }
  return false;
}

}  // namespace

Status copyFile(const std::string& source, const std::string& destination) {
  if (source.empty()) return copyFailure(kInvalidArgument, source);
  if (destination.empty()) return copyFailure(kInvalidArgument, destination);
  struct stat found {};
  if (stat(source.c_str(), &found) != 0) return copyFailure(kInvalidArgument, source);
  const ScopedFd input = openDescriptor(source, O_RDONLY);
  if (!input.valid()) return copyFailure(kOpenFailed, source);
  ScopedFd output = openDescriptor(destination, O_WRONLY | O_CREAT, kCopyMode);
  if (!output.valid()) return copyFailure(kOpenFailed, destination);
  // Not truncated by the open: of a file that is copied onto itself nothing would be left.
  if (areSameFile(input.get(), output.get())) return copyFailure(kInvalidArgument, destination);
  if (!cutFile(output.get(), 0)) return copyFailure(kWriteFailed, destination);
  const StatusCode copied = copyContent(input.get(), output.get(), found.st_size);
  if (copied != kSuccess) return copyFailure(copied, copied == kReadFailed ? source : destination);
  (void)fchmod(output.get(), kCopyMode);  // The content is complete whatever the mode.
  if (output.close() != 0) return copyFailure(kWriteFailed, destination);
  return Status(kSuccess);
}

Status moveFile(const std::string& source, const std::string& destination, Overwrite overwrite) {
  if (source.empty() || destination.empty()) return Status(kInvalidArgument);
  if (overwrite != Overwrite::kYes && anythingAt(destination)) return Status(kRenameFailed);
  if (rename(source.c_str(), destination.c_str()) == 0) return Status(kSuccess);
  if (errno != EXDEV) return Status(kRenameFailed);
  const bool moved = copyFile(source, destination).ok() && removeFile(source).ok();
  return Status(moved ? kSuccess : kRenameFailed);
}

Status removeFile(const std::string& path) {
  if (path.empty()) return Status(kInvalidArgument);
  return outcome(unlink(path.c_str()), ENOENT, kUnlinkFailed);
}

Status removeEmptyDirectory(const std::string& path) {
  if (path.empty()) return Status(kInvalidArgument);
  return outcome(rmdir(path.c_str()), ENOENT, kRmdirFailed);
}

Status removeEntry(const std::string& path) {
  Status removed = removeFile(path);
  return removed.ok() ? removed : removeEmptyDirectory(path);
}

Status makeDirectory(const std::string& path, mode_t mode) {
  if (path.empty()) return Status(kInvalidArgument);
  return outcome(mkdir(path.c_str(), mode), EEXIST, kMkdirFailed);
}

Status makeNewDirectory(const std::string& path, mode_t mode) {
  if (path.empty()) return Status(kInvalidArgument);
  return Status(mkdir(path.c_str(), mode) == 0 ? kSuccess : kMkdirFailed);
}

Status changeMode(const std::string& path, mode_t mode) {
  if (path.empty()) return Status(kInvalidArgument);
  if (chmod(path.c_str(), mode) == 0) return Status(kSuccess);
  struct stat found {};
  const bool so_already =
      stat(path.c_str(), &found) == 0 && (found.st_mode & kPermissionBits) == mode;
  return Status(so_already ? kSuccess : kChmodFailed);
}

Status overwriteFile(const std::string& path, std::string_view text) {
  if (path.empty()) return Status(kInvalidArgument);
  ScopedFd file = openForReplacing(path, kNewFileMode);
  if (!file.valid()) return Status(kOpenFailed);
  const bool written = replaceContent(file.get(), text);
  return Status(written && file.close() == 0 ? kSuccess : kWriteFailed);
}

Status writeLines(const std::string& path, const std::vector<std::string>& lines) {
  if (path.empty()) return Status(kInvalidArgument);
  std::string text;
  for (const std::string& line : lines) text.append(line, 0, line.find('\0')).append("\n");
  ScopedFd file = openForReplacing(path, kLinesMode);
  if (!file.valid()) return Status(kOpenFailed);
  if (!replaceContent(file.get(), text)) return Status(kWriteFailed);
  (void)fchmod(file.get(), kLinesMode);  // The content is complete whatever the mode.
  return Status(file.close() == 0 ? kSuccess : kWriteFailed);
}

Status currentDirectory(std::string* path) {
  path->clear();
  char buffer[PATH_MAX];
  if (getcwd(buffer, sizeof(buffer)) == nullptr) return Status(kGetcwdFailed);
  path->assign(buffer);
  return Status(kSuccess);
}

Status changeDirectory(const std::string& path) {
  if (path.empty()) return Status(kInvalidArgument);
  return Status(chdir(path.c_str()) == 0 ? kSuccess : kHostError);
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
