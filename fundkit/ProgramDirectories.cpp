#include "fundkit/ProgramDirectories.h"

#include <sys/types.h>

#include <cstdlib>

#include "fundkit/FileUtils.h"

namespace tunadm {
namespace {

constexpr mode_t kDirectoryMode = 0750;

std::string prepareDirectory(const char* variable, const char* fallback) {
  std::string directory = directoryFromEnvironment(std::getenv(variable), fallback);
  (void)makeDirectory(directory, kDirectoryMode);  // Whoever uses it finds out.
  return directory;
}

}  // namespace

std::string directoryFromEnvironment(const char* value, const char* fallback) {
  std::string directory = value == nullptr || *value == '\0' ? fallback : value;
  if (directory.back() != '/') directory += '/';
  return directory;
}

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
