// Operations on files and directories by path.
//
// An empty path gives kInvalidArgument and touches nothing. No operation waits for the other end of
// a FIFO, and none leaves a descriptor that a child process would inherit.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

#include "core/Status.h"

namespace tunadm {

enum class Overwrite { kNo, kYes };

// Copies the whole content; the destination is created or truncated and has mode 0644 afterwards.
// A failed status has the path concerned as details and "copyFile" as context: kInvalidArgument
// (also when the source's size cannot be read), kOpenFailed, kReadFailed (also when the source
// shrinks meanwhile), kWriteFailed. A file is not copied onto itself: kInvalidArgument.
Status copyFile(const std::string& source, const std::string& destination);

// Renames; across file systems copies and removes the source. With Overwrite::kNo an existing
// destination (a dead link too) is kRenameFailed and both files stay. Any other failure to rename
// is kRenameFailed.
Status moveFile(const std::string& source, const std::string& destination, Overwrite overwrite);

// Each succeeds when nothing is there. Errors: kUnlinkFailed; kRmdirFailed.
Status removeFile(const std::string& path);
Status removeEmptyDirectory(const std::string& path);

// Removes a file or, if that fails, an empty directory. Error: kRmdirFailed.
Status removeEntry(const std::string& path);

// `mode` is subject to the umask. Anything that exists at the path counts as made. Error:
// kMkdirFailed.
Status makeDirectory(const std::string& path, mode_t mode);

// As makeDirectory, but anything that exists at the path is kMkdirFailed.
Status makeNewDirectory(const std::string& path, mode_t mode);

// Makes the permission bits equal to `mode`. Succeeds when they are so at the end, even if chmod
// itself was refused. Error: kChmodFailed.
Status changeMode(const std::string& path, mode_t mode);

// Creates the file or replaces its content, in place, by `text`; an existing file keeps its mode,
// and its content when nothing can be written. Errors: kOpenFailed, kWriteFailed.
Status overwriteFile(const std::string& path, std::string_view text);

// The same for each line, up to its first NUL byte, and a line feed; the mode is 0640 afterwards (a
// failure to set it is ignored). Errors: kOpenFailed, kWriteFailed.
Status writeLines(const std::string& path, const std::vector<std::string>& lines);

// Error: kGetcwdFailed, with `path` cleared.
Status currentDirectory(std::string* path);

// Error: kHostError, with the working directory as it was.
Status changeDirectory(const std::string& path);

// False as well when the path cannot be examined.
bool pathExists(const std::string& path);       // A dead link does not exist.
bool isRegularFile(const std::string& path);    // Links are followed.
bool isRealDirectory(const std::string& path);  // A link to a directory is none.
bool isRealFile(const std::string& path);       // A link to a file is none.
bool isMissing(const std::string& path);        // Only when nothing at all is there for sure.

// Reads a regular file whole, up to 64 MiB. On failure `content` is cleared. Errors: kOpenFailed,
// kReadFailed (also when it is no regular file, or larger).
Status readFile(const std::string& path, std::string* content);

enum class LineRead {
  kRead,
  kNothing,  // Nothing is there, or not a regular file: a directory, a FIFO, a dead link.
  kError,    // A file that could not be read; errno tells why (EFBIG: the line exceeds 1 MiB).
};

// Reads what precedes the first line feed or NUL byte, or else the whole of a regular file; an
// empty file has an empty line. `path` is relative to the open directory `directory`. `line` is
// cleared unless kRead is returned. A usual file takes three system calls.
[[nodiscard]] LineRead readFirstLine(int directory, const char* path, std::string* line);
[[nodiscard]] LineRead readFirstLine(const std::string& path, std::string* line);

}  // namespace tunadm
