#include "fundkit/WorkFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "fundkit/DescriptorIo.h"
#include "fundkit/FileAttributes.h"
#include "fundkit/InPlace.h"
#include "fundkit/SystemFailure.h"

namespace tunadm {
namespace {

constexpr mode_t kPrivateMode = 0600;
constexpr mode_t kPermissionBits = 0777;

// The caller may not change the directory, or there is no room for a second file.
bool mayWorkInPlace(int error) {
  return error == EACCES || error == EPERM || error == EROFS || error == ENOSPC || error == EDQUOT;
}

// Leaves a file alone that has the bits already: an ordinary user may write `.current`, but only
// its owner may set its mode.
bool makeMode(int file, mode_t mode) {
  struct stat found {};
  if (fstat(file, &found) == 0 && (found.st_mode & kPermissionBits) == mode) return true;
  return fchmod(file, mode) == 0;
}

}  // namespace

WorkFile::WorkFile(std::string path, std::string_view text, std::optional<mode_t> mode)
    : path_(std::move(path)), work_path_(path_ + ".temp"), text_(text), mode_(mode) {}

WorkFile::~WorkFile() { discard(); }

Status WorkFile::write(int replaced) {
  if (unlink(work_path_.c_str()) != 0 && errno != ENOENT) return fail(kOpenFailed, "unlink");
  // Private until the final mode is set: the text must never be readable by more users than then.
  file_ = openDescriptor(work_path_, O_WRONLY | O_CREAT | O_EXCL, kPrivateMode);
  if (!file_.valid()) return fail(kOpenFailed, "open");
  work_exists_ = true;
  if (!writeAll(file_.get(), text_)) return fail(kWriteFailed, "write");
  if (takeOverAttributes(file_.get(), replaced, mode_)) return Status(kSuccess);
  return systemFailure(kWriteFailed, "chmod", work_path_);
}

Status WorkFile::flush() {
  if (in_place_ || syncToDisk(file_.get())) return Status(kSuccess);
  return fail(kWriteFailed, "fsync");
}

Status WorkFile::close() {
  errno = file_.close();
  return errno == 0 ? Status(kSuccess) : fail(kWriteFailed, "close");
}

Status WorkFile::move() {
  if (in_place_) return writeInPlace();
  if (std::rename(work_path_.c_str(), path_.c_str()) != 0) {
    return systemFailure(errno == EISDIR ? kOpenFailed : kRenameFailed, "rename", work_path_);
  }
  work_exists_ = false;
  return Status(kSuccess);
}

// A failure that writing in place may get around is kept for move().
Status WorkFile::fail(StatusCode failure, std::string_view operation) {
  Status refusal = systemFailure(failure, operation, work_path_);
  if (!mayWorkInPlace(errno)) return refusal;
  discard();
  in_place_ = true;
  refusal_ = refusal;
  return Status(kSuccess);
}

void WorkFile::discard() {
  (void)file_.close();                                 // its content is not wanted
  if (work_exists_) (void)unlink(work_path_.c_str());  // the next work file removes it again
  work_exists_ = false;
}

Status WorkFile::writeInPlace() const {
  ScopedFd file = openInPlace(path_, O_NOFOLLOW);
  struct stat found {};
  if (!file.valid() || fstat(file.get(), &found) != 0 || !S_ISREG(found.st_mode)) {
    return refusal_;
  }
  // The mode comes first: the new text must not be readable by more users than it is to be.
  const mode_t mode = mode_ ? *mode_ : found.st_mode & kPermissionBits & ~callersUmask();
  const bool written = (makeMode(file.get(), mode) || !mode_) &&
                       replaceContent(file.get(), text_, Flush::kYes) && file.close() == 0;
  return written ? Status(kSuccess) : systemFailure(kWriteFailed, "write", path_);
}

}  // namespace tunadm
