#include "core/StatusText.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace tunadm {
namespace {

struct CodeText {
  StatusCode code;
  const char* text;
};

constexpr CodeText kGenericTexts[] = {
    {kSuccess, "success"},
    {kSuccessWithWarnings, "success with warnings"},
    {kClientError, "client error"},
    {kInvalidCommand, "invalid command"},
    {kInvalidArgument, "invalid argument"},
    {kApplicationError, "application error"},
    {kAuthRequired, "authentication error (tunadm requires sudo for this command)"},
    {kHostError, "error on host system"},
    {kExternalError, "error on external system"},
    {kMultipleResults, "multiple results"},
    {kInternalError, "internal error"},
    {kUnimplemented, "unimplemented"},
    {kOpendirFailed, "stdlib error: opendir"},
    {kReadlinkFailed, "stdlib error: readlink"},
    {kStatFailed, "stdlib error: file stat"},
    {kOpenFailed, "stdlib error: file open"},
    {kReadFailed, "stdlib error: file read"},
    {kWriteFailed, "stdlib error: file write"},
    {kChmodFailed, "stdlib error: chmod"},
    {kGetifaddrsFailed, "stdlib error: getifaddrs"},
    {kForkFailed, "stdlib error: fork"},
    {kWaitpidFailed, "stdlib error: waitpid"},
    {kUnlinkFailed, "stdlib error: unlink"},
    {kUnlinkDirectoryFailed, "stdlib error: unlink(directory)"},
    {kRmdirFailed, "stdlib error: rmdir"},
    {kMkdirFailed, "stdlib error: mkdir"},
    {kRenameFailed, "stdlib error: rename"},
    {kCopyfileFailed, "stdlib error: copyfile"},
    {kGetcwdFailed, "stdlib error: getcwd"},
    {kSystemFailed, "stdlib error: system"},
    // Code 0 tests as a success, but nothing reports it on purpose.
    {0, "invalid status code"},
};

// Bits 23-12.
int moduleOf(StatusCode code) {
  return static_cast<int>((static_cast<std::uint32_t>(code) >> 12) & 0xfff);
}

const char* genericText(StatusCode code) {
  if (moduleOf(code) != 0) return nullptr;
  for (const CodeText& row : kGenericTexts) {
    if (row.code == code) return row.text;
  }
  return nullptr;
}

using Registry = std::vector<std::pair<int, StatusTextProvider>>;

Registry& registry() {
  static Registry providers{{0, &genericText}};
  return providers;
}

const char* categoryText(StatusCode code) {
  const std::uint32_t category = static_cast<std::uint32_t>(code) >> 24;
  switch (category) {
    case 0x00:
      return "generic success";
    case 0x10:
      return "generic client error";
    case 0x12:
      return "generic application error";
    case 0x14:
      return "generic host error";
    case 0x16:
      return "generic external-dependency error";
    case 0x20:
      return "unrecognized informational status code";
    case 0x22:
      return "unrecognized transient-error status code";
    case 0x24:
      return "unrecognized internal-error status code";
    default:
      break;
  }
  if (category > 0x10 && category < 0x16) return "generic error code";
  return code > 0 ? "unrecognized status code value" : "integer is not a status code";
}

}  // namespace

void registerStatusTexts(int module, StatusTextProvider provider) {
  if (provider == nullptr) return;
  registry().emplace_back(module, provider);
}

const char* statusText(StatusCode code) {
  const int module = moduleOf(code);
  for (const auto& [owner, provider] : registry()) {
    if (owner != module) continue;
    if (const char* text = provider(code); text != nullptr) return text;
  }
  return categoryText(code);
}

}  // namespace tunadm
