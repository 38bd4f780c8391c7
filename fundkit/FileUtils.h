// Operations on files and directories by path.
//
// Unless a comment says otherwise, an empty path is kInvalidArgument and touches nothing. No
// operation waits for the other end of a FIFO, and none leaks a descriptor into a child process.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/Status.h"

namespace tunadm {

enum class Overwrite { kNo, kYes };

// Copies the whole content; the destination is created or truncated and has mode 0644 afterwards. A
// destination that is not a regular file, such as /dev/null, is only written to.
// A failed status has the path concerned as details and "copyFile" as context: kInvalidArgument
// (also when the source's size cannot be read, or when both are the same file), kOpenFailed,
// kReadFailed (also when the source shrinks meanwhile or is a directory), kWriteFailed.
Status copyFile(const std::string& source, const std::string& destination);

// Renames; across file systems copies and removes the source. With Overwrite::kNo an existing
// destination (a dead link too) is kRenameFailed and both files stay. Any other failure to rename
// is kRenameFailed.
Status moveFile(const std::string& source, const std::string& destination, Overwrite overwrite);

// Both succeed when nothing is there. Errors: kUnlinkFailed; kRmdirFailed.
Status removeFile(const std::string& path);
Status removeEmptyDirectory(const std::string& path);

// Removes a file or, if that fails, an empty directory. Error: kRmdirFailed.
Status removeEntry(const std::string& path);

// `mode` is subject to the umask. Anything that exists at the path counts as made. Error:
// kMkdirFailed.
Status makeDirectory(const std::string& path, mode_t mode);

// As makeDirectory, but anything that exists at the path is kMkdirFailed, with EEXIST in errno.
Status makeNewDirectory(const std::string& path, mode_t mode);

// Makes the permission bits equal to `mode`. Succeeds when they are equal at the end, even if chmod
// itself was refused. Error: kChmodFailed.
Status changeMode(const std::string& path, mode_t mode);

// Replaces the file at `path`, or creates it: the text goes into a work file, `path` + ".temp",
// which is flushed and moved over the file, and the directory is flushed. At every moment the file
// has all of its old or all of its new text, and after a success the new one survives a power cut.
//
// Permission bits: exactly `mode` if given. Otherwise those of the replaced file, or 0644 for a new
// one, without the bits in the umask. Owner, group and extended attributes (ACLs, security labels)
// of the replaced file are kept as far as the file system and the caller's rights allow; without
// `mode`, the group loses its access where group or ACL cannot be kept.
// A symbolic link at `path` is replaced; what it leads to stays as it is, and counts as the
// replaced file for permissions. What an earlier run left at the work file's path is removed.
//
// The file is written in place only where the caller may not create the work file, or where there
// is no room for it. That never follows a link, needs no permission to read, and puts the old text
// back if it fails, but a kill or a power cut may then leave a mixture.
//
// Errors: kOpenFailed (also for a directory at `path` or at the work file's path, and when the
// permissions of the replaced file cannot be examined), kWriteFailed, kRenameFailed. The file keeps
// its old text on failure, unless only the flush of the directory failed (kWriteFailed).
Status replaceFile(const std::string& path, std::string_view text,
                   std::optional<mode_t> mode = std::nullopt);

struct FileContent {
  std::string path;
  std::string text;
  mode_t mode;
};

// The same for many files at little more than the cost of one: all work files are written first and
// flushed at once, then moved in order, and the directories are flushed at once. All files must be
// on the file system of the first. Stops at the first failure: files before it may have been
// replaced already. Errors: as replaceFile.
Status replaceFiles(std::span<const FileContent> files);

// Replaces the text of a file by what `change` makes of it, as replaceFile does without a mode. A
// missing file counts as empty. A link is read through and replaced by a file that has the
// permissions of the one that was read; these come from the open file, so exchanging the link
// meanwhile cannot make a private text public. Errors: as readFile (then nothing is written), as
// replaceFile.
Status rewriteFile(const std::string& path,
                   const std::function<std::string(std::string_view old)>& change);

// Creates the file or replaces its content, in place, by each line, up to its first NUL byte, and a
// line feed. The mode is 0640 afterwards (a failure to set it is ignored). The old content is kept
// when nothing can be written. Errors: kOpenFailed, kWriteFailed.
Status writeLines(const std::string& path, const std::vector<std::string>& lines);

// Makes the entries of a directory survive a power cut: what was created, moved or removed in it. A
// file system that cannot flush directories counts as one that need not. Errors: kOpenFailed,
// kWriteFailed.
Status flushDirectory(const std::string& path);

// Flushes every regular file and directory below the directory, and the directory itself. Links are
// not followed. Errors: kOpenFailed (also for what is not a directory), kWriteFailed.
Status flushTree(const std::string& path);

// Error: kGetcwdFailed, with `path` cleared.
Status currentDirectory(std::string* path);

// Error: kHostError, with the working directory as it was.
Status changeDirectory(const std::string& path);

// False as well when the path cannot be examined.
[[nodiscard]] bool pathExists(const std::string& path);       // a dead link does not exist
[[nodiscard]] bool isRegularFile(const std::string& path);    // links are followed
[[nodiscard]] bool isRealDirectory(const std::string& path);  // a link to a directory is not one
[[nodiscard]] bool isRealFile(const std::string& path);       // a link to a file is not one
[[nodiscard]] bool isMissing(const std::string& path);        // only if surely nothing is there

// Reads a regular file whole, up to 64 MiB. On failure `content` is cleared. Errors: kOpenFailed,
// kReadFailed (also when it is not a regular file, or larger).
Status readFile(const std::string& path, std::string* content);

enum class LineRead {
  kRead,
  kNothing,  // nothing is there, or not a regular file: a directory, a FIFO, a dead link
  kError,    // a file that could not be read; errno tells why (EFBIG: the line exceeds 1 MiB)
};

// Reads what precedes the first line feed or NUL byte, or else the whole of a regular file; an
// empty file has an empty line. `path` is relative to the open directory `directory`. `line` is
// cleared unless kRead is returned. A usual file takes three system calls.
[[nodiscard]] LineRead readFirstLine(int directory, const char* path, std::string* line);
[[nodiscard]] LineRead readFirstLine(const std::string& path, std::string* line);

}  // namespace tunadm
