#include "fundkit/DirectoryListing.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <utility>

#include "fundkit/DescriptorIo.h"
#include "fundkit/DirectoryStream.h"
#include "fundkit/SystemFailure.h"

namespace tunadm {
namespace {

// The list for a link; null when it cannot be classified.
std::vector<std::string>* listForLink(int directory, const char* name, DirectoryListing* listing) {
  char target[4096];
  const ssize_t length = readlinkat(directory, name, target, sizeof(target));
  // A result that fills the buffer may have been cut.
  if (length < 1 || static_cast<std::size_t>(length) >= sizeof(target)) return nullptr;
  target[length] = '\0';
  // Deliberate: the text as it stands, so a relative one starts at the working directory.
  struct stat found {};
  if (stat(target, &found) != 0) return nullptr;
  if (S_ISREG(found.st_mode)) return &listing->file_links;
  return S_ISDIR(found.st_mode) ? &listing->directory_links : &listing->others;
}

std::vector<std::string>* listForEntry(const DirectoryStream& stream, const dirent& entry,
                                       DirectoryListing* listing) {
  switch (stream.kindOf(entry)) {
    case DT_DIR:
      return &listing->subdirectories;
    case DT_REG:
      return &listing->files;
    case DT_LNK:
      return listForLink(stream.descriptor(), entry.d_name, listing);
    case DT_UNKNOWN:
      return nullptr;
    default:
      return &listing->others;
  }
}

}  // namespace

DirectoryListing listDirectory(const std::string& path) {
  DirectoryListing listing;
  if (path.empty()) {
    listing.status = Status(kInvalidArgument);
    return listing;
  }
  DirectoryStream stream(openDescriptor(path, O_RDONLY | O_DIRECTORY));
  if (!stream.valid()) {
    listing.status = systemFailure(kOpendirFailed, "open", path);
    return listing;
  }
  while (const dirent* entry = stream.next()) {
    std::vector<std::string>* list = listForEntry(stream, *entry, &listing);
    if (list != nullptr) list->emplace_back(entry->d_name);
  }
  if (stream.failed()) listing.status = systemFailure(kReadFailed, "read", path);
  return listing;
}

}  // namespace tunadm
