// Replacement of a file as a whole.
#pragma once

#include <string>
#include <string_view>

#include "core/Status.h"
#include "fundkit/ScopedFd.h"

namespace tunadm {

// Collects the new content of `path` in a work file, `path` + ".temp", and moves it over `path` on
// commit. Until then, and for ever if anything fails, `path` stays as it was; the destructor
// removes a work file that was not committed. Whatever an earlier run left at the work file's path
// is removed first, unless it is a directory; a link there is not followed.
class WorkFile {
 public:
  explicit WorkFile(const std::string& path);
  ~WorkFile();
  WorkFile(const WorkFile&) = delete;
  WorkFile& operator=(const WorkFile&) = delete;

  // The first failure so far: kInvalidArgument (empty path), kOpenFailed (no work file),
  // kWriteFailed. Commit reports it too, so it need not be asked for.
  const Status& status() const { return status_; }

  // Appends text. Does nothing after a failure.
  void put(std::string_view text);

  // Makes the content durable and moves it over the file. The new file has the owner, group and
  // mode of the regular file that it replaces, otherwise the process's default mode. Once only.
  // Errors: those of status(), kRenameFailed.
  Status commit();

 private:
  void flush();
  Status finish();

  std::string path_;
  std::string work_path_;
  std::string buffer_;
  ScopedFd file_;
  Status status_{kSuccess};
  bool work_exists_ = false;
};

}  // namespace tunadm
