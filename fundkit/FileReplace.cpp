// The functions of FileUtils.h that write whole files.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <deque>

#include "fundkit/DescriptorIo.h"
#include "fundkit/FileUtils.h"
#include "fundkit/InPlace.h"
#include "fundkit/SystemFailure.h"
#include "fundkit/WorkFile.h"

namespace tunadm {
namespace {

constexpr mode_t kLinesMode = 0640;
constexpr std::size_t kLargestFile = std::size_t{64} << 20;

std::string directoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == path.npos ? "." : path.substr(0, slash + 1);
}

// Opens the file that is to be replaced, for its attributes; leaves `file` invalid where there is
// nothing to take over. Error: kOpenFailed.
Status openReplaced(const std::string& path, ScopedFd* file) {
  *file = openDescriptor(path, O_RDONLY);
  // Owner and mode of a file that may not be read, or not be opened at all, can still be seen.
  if (!file->valid() && (errno == EACCES || errno == ENXIO)) *file = openDescriptor(path, O_PATH);
  if (!file->valid() && (errno == ENOENT || errno == ELOOP)) return Status(kSuccess);
  struct stat found {};
  if (!file->valid() || fstat(file->get(), &found) != 0) {
    return systemFailure(kOpenFailed, "open", path);
  }
  if (S_ISREG(found.st_mode)) return Status(kSuccess);
  (void)file->close();  // only looked at
  if (!isRealDirectory(path)) return Status(kSuccess);
  errno = EISDIR;
  return systemFailure(kOpenFailed, "open", path);
}

Status closeWritten(const std::string& path, ScopedFd* file) {
  errno = file->close();
  return errno == 0 ? Status(kSuccess) : systemFailure(kWriteFailed, "close", path);
}

// The change is made. A caller who may change the directory but not read it cannot flush it.
Status flushChanged(const std::string& directory) {
  Status flushed = flushDirectory(directory);
  if (flushed.code() == kOpenFailed && errno == EACCES) return Status(kSuccess);
  if (flushed.code() == kOpenFailed) flushed.setCode(kWriteFailed);
  return flushed;
}

Status replaceOpened(const std::string& path, std::string_view text, std::optional<mode_t> mode,
                     int replaced) {
  WorkFile work(path, text, mode);
  if (Status written = work.write(replaced); !written.ok()) return written;
  if (Status flushed = work.flush(); !flushed.ok()) return flushed;
  if (Status closed = work.close(); !closed.ok()) return closed;
  if (Status moved = work.move(); !moved.ok()) return moved;
  return flushChanged(directoryOf(path));
}

Status writeAllOf(std::span<const FileContent> files, std::deque<WorkFile>* works) {
  for (const FileContent& content : files) {
    if (content.path.empty()) return Status(kInvalidArgument);
    ScopedFd replaced;
    if (Status opened = openReplaced(content.path, &replaced); !opened.ok()) return opened;
    WorkFile& work = works->emplace_back(content.path, content.text, content.mode);
    if (Status written = work.write(replaced.get()); !written.ok()) return written;
    if (Status closed = work.close(); !closed.ok()) return closed;
  }
  return Status(kSuccess);
}

}  // namespace

Status replaceFile(const std::string& path, std::string_view text, std::optional<mode_t> mode) {
  if (path.empty()) return Status(kInvalidArgument);
  ScopedFd replaced;
  if (Status opened = openReplaced(path, &replaced); !opened.ok()) return opened;
  return replaceOpened(path, text, mode, replaced.get());
}

Status replaceFiles(std::span<const FileContent> files) {
  if (files.empty()) return Status(kSuccess);
  const FileContent& first = files.front();
  if (files.size() == 1) return replaceFile(first.path, first.text, first.mode);
  std::deque<WorkFile> works;  // its elements never move
  if (Status written = writeAllOf(files, &works); !written.ok()) return written;
  const std::string parent = directoryOf(first.path);
  const ScopedFd directory = openDescriptor(parent, O_RDONLY | O_DIRECTORY);
  if (!directory.valid()) return systemFailure(kOpenFailed, "open", parent);
  if (!syncFileSystem(directory.get())) return systemFailure(kWriteFailed, "syncfs", parent);
  for (WorkFile& work : works) {
    if (Status moved = work.move(); !moved.ok()) return moved;
  }
  if (syncFileSystem(directory.get())) return Status(kSuccess);
  return systemFailure(kWriteFailed, "syncfs", parent);
}

Status rewriteFile(const std::string& path,
                   const std::function<std::string(std::string_view old)>& change) {
  if (path.empty()) return Status(kInvalidArgument);
  const ScopedFd file = openRegularFile(path);
  if (!file.valid() && errno == 0) return systemFailure(kReadFailed, "open", path);
  if (!file.valid() && errno != ENOENT) return systemFailure(kOpenFailed, "open", path);
  std::string old;
  if (file.valid() && !readAll(file.get(), kLargestFile, &old)) {
    return systemFailure(kReadFailed, "read", path);
  }
  return replaceOpened(path, change(old), std::nullopt, file.get());
}

Status writeLines(const std::string& path, const std::vector<std::string>& lines) {
  if (path.empty()) return Status(kInvalidArgument);
  std::string text;
  for (const std::string& line : lines) text.append(line, 0, line.find('\0')).append("\n");
  ScopedFd file = openInPlace(path, O_CREAT, kLinesMode);
  if (!file.valid()) return systemFailure(kOpenFailed, "open", path);
  if (!replaceContent(file.get(), text, Flush::kNo)) {
    return systemFailure(kWriteFailed, "write", path);
  }
  (void)fchmod(file.get(), kLinesMode);  // the content is complete whatever the mode
  return closeWritten(path, &file);
}

}  // namespace tunadm
