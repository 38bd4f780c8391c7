#include "service/Versions.h"

#include "fundkit/FileUtils.h"

namespace tunadm {

std::string readApplicationVersion(const std::string& revision_file) {
  std::string version;
  if (!readFirstLine(revision_file, &version).ok() && isRegularFile(revision_file)) {
    version = kTunadmVersion;
  }
  return version;
}

}  // namespace tunadm
