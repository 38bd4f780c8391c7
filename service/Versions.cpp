#include "service/Versions.h"

#include "fundkit/FileUtils.h"

namespace tunadm {

std::string readApplicationVersion(const std::string& revision_file) {
  std::string version;
  const LineRead read = readFirstLine(revision_file, &version);
  return read == LineRead::kError ? std::string(kTunadmVersion) : version;
}

}  // namespace tunadm
