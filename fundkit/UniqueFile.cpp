#include "fundkit/UniqueFile.h"

#include <fcntl.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "fundkit/BasicLog.h"
#include "fundkit/DescriptorIo.h"
#include "fundkit/FileUtils.h"

namespace tunadm {
namespace {

constexpr int kAttempts = 11;
constexpr std::size_t kNameBufferSize = 4096;
constexpr mode_t kUniqueFileMode = 0644;

ScopedStream createUnique(const char* path) {
  ScopedFd file = openDescriptor(AT_FDCWD, path, O_RDWR | O_CREAT | O_EXCL, kUniqueFileMode);
  if (!file.valid()) {
    const int error = errno;
    TUNADM_LOG(fundkitLogger(), kLogError, "FileUtils", "makeUniqueFile", "failed to open file")
        .detail("error = %s", std::strerror(error));
    return nullptr;
  }
  ScopedStream stream(fdopen(file.get(), "w+"));
  if (stream == nullptr) {
    (void)removeFile(path);  // empty and unused; the attempt has failed already
    return nullptr;
  }
  (void)file.take();  // the stream closes it from now on
  return stream;
}

}  // namespace

ScopedStream makeUniqueFile(const std::string& base, std::string* name) {
  if (base.empty()) return nullptr;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    char path[kNameBufferSize];
    const int length = std::snprintf(path, sizeof(path), "%s.XXXXXX", base.c_str());
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof(path)) return nullptr;
    // Safe although it only proposes a name: the exclusive open refuses one that exists by then.
    (void)mktemp(path);  // NOLINT(clang-analyzer-security.insecureAPI.mktemp): see above.
    ScopedStream stream = createUnique(path);
    if (stream != nullptr) {
      *name = path;
      return stream;
    }
  }
  return nullptr;
}

}  // namespace tunadm
