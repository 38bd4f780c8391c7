// The replacement of one file, step by step; replaceFile() and its like put the steps together.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

#include "core/Status.h"
#include "fundkit/ScopedFd.h"

namespace tunadm {

// Writes the new text of `path` into a work file, `path` + ".temp", and moves it over `path`. Until
// then, and for good if a step fails, `path` stays as it was; the destructor removes a work file
// that was not moved. Where there can be no work file (see replaceFile), moving means writing in
// place. The steps are to be taken in order, each only after a success of the one before.
class WorkFile {
 public:
  // `text` must outlive the work file.
  WorkFile(std::string path, std::string_view text, std::optional<mode_t> mode);
  ~WorkFile();
  WorkFile(const WorkFile&) = delete;
  WorkFile& operator=(const WorkFile&) = delete;

  // Writes the text and takes over the attributes of the open file `replaced`, -1 for none. What an
  // earlier run left at the work file's path is removed first, unless it is a directory; a link
  // there is not followed. Errors: kOpenFailed, kWriteFailed.
  Status write(int replaced);

  // Optional: makes the text survive a power cut. Error: kWriteFailed.
  Status flush();

  // Tells whether all has been written. Error: kWriteFailed.
  Status close();

  // Errors: kRenameFailed, kOpenFailed (a directory in its place); in place, where the text is
  // flushed in any case, kOpenFailed and kWriteFailed.
  Status move();

 private:
  Status fail(StatusCode failure, std::string_view operation);
  void discard();
  Status writeInPlace() const;

  std::string path_;
  std::string work_path_;
  std::string_view text_;
  std::optional<mode_t> mode_;
  ScopedFd file_;
  bool work_exists_ = false;
  bool in_place_ = false;
  Status refusal_{kSuccess};  // why there could be no work file
};

}  // namespace tunadm
