#include "fundkit/WorkFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>

#include "fundkit/DescriptorIo.h"
#include "fundkit/FileUtils.h"

namespace tunadm {
namespace {

constexpr std::size_t kBufferSize = 65536;
constexpr mode_t kPrivateMode = 0600;
constexpr mode_t kModeBits = 0777;

mode_t defaultMode() {
  const mode_t mask = umask(0);
  (void)umask(mask);  // Asking is possible only by setting.
  return 0666 & ~mask;
}

// Gives the open work file the owner, group and mode that the file at `path` is to have.
bool setAttributes(int work_file, const std::string& path) {
  struct stat replaced {};
  // A link gives way to a file as well protected as what it led to.
  if (stat(path.c_str(), &replaced) != 0 || !S_ISREG(replaced.st_mode)) {
    return fchmod(work_file, defaultMode()) == 0;
  }
  struct stat own {};
  if (fstat(work_file, &own) != 0) return false;
  const bool owned = own.st_uid == replaced.st_uid && own.st_gid == replaced.st_gid;
  if (!owned && fchown(work_file, replaced.st_uid, replaced.st_gid) != 0) return false;
  return fchmod(work_file, replaced.st_mode & kModeBits) == 0;  // Last: fchown clears bits.
}

void syncDirectoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const std::string directory = slash == path.npos ? "." : path.substr(0, slash + 1);
  const ScopedFd opened = openDescriptor(directory, O_RDONLY | O_DIRECTORY);
  // The file is replaced already; not every file system can do this, and none loses it for long.
  if (opened.valid()) (void)syncToDisk(opened.get());
}

}  // namespace

WorkFile::WorkFile(const std::string& path) : path_(path), work_path_(path + ".temp") {
  if (path.empty()) {
    status_ = Status(kInvalidArgument);
    return;
  }
  (void)removeFile(work_path_);  // The exclusive open tells whether it is gone.
  // Private until the final mode is set: the content must never show to more users than then.
  file_ = openDescriptor(work_path_, O_WRONLY | O_CREAT | O_EXCL, kPrivateMode);
  work_exists_ = file_.valid();
  if (!work_exists_) status_ = Status(kOpenFailed);
}

WorkFile::~WorkFile() {
  if (work_exists_) (void)removeFile(work_path_);  // The next work file removes it again.
}

void WorkFile::put(std::string_view text) {
  buffer_.append(text);
  if (buffer_.size() >= kBufferSize) flush();
}

void WorkFile::flush() {
  if (status_.ok() && !writeAll(file_.get(), buffer_)) status_ = Status(kWriteFailed);
  buffer_.clear();
}

Status WorkFile::commit() {
  flush();
  if (status_.ok()) status_ = finish();
  if (work_exists_) (void)removeFile(work_path_);  // The failure to report is the earlier one.
  work_exists_ = false;
  return status_;
}

Status WorkFile::finish() {
  if (!setAttributes(file_.get(), path_) || !syncToDisk(file_.get())) return Status(kWriteFailed);
  if (file_.close() != 0) return Status(kWriteFailed);
  if (Status moved = moveFile(work_path_, path_, Overwrite::kYes); !moved.ok()) return moved;
  work_exists_ = false;
  syncDirectoryOf(path_);
  return Status(kSuccess);
}

}  // namespace tunadm
