#include "fundkit/ProgramDirectories.h"

#include <sys/types.h>

#include <cstdlib>

#include "fundkit/FileUtils.h"

namespace tunadm {
namespace {

constexpr mode_t kDirectoryMode = 0750;

std::string prepareDirectory(const char* variable, const char* fallback) {
  const char* value = secure_getenv(variable);
  std::string directory = value == nullptr || *value == '\0' ? fallback : value;
  if (directory.back() != '/') directory += '/';
  (void)makeDirectory(directory, kDirectoryMode);  // using it shows whether it is there
  return directory;
}

}  // namespace

const std::string& temporaryDirectory() {
  static const std::string directory = prepareDirectory("VRX_TMP_DIR", "/tmp/");
  return directory;
}

const std::string& lockDirectory() {
  static const std::string directory = prepareDirectory("VRX_LOCK_DIR", "/tmp/lock/");
  return directory;
}

std::string tempPath(std::string_view name) { return temporaryDirectory() + std::string(name); }

std::string lockPath(std::string_view name) { return lockDirectory() + std::string(name); }

}  // namespace tunadm
