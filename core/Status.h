// Status codes and the status value that every operation fills and returns.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tunadm {

// A status code carries its own category: bits 31-24 category, 23-12 module (who owns its text),
// 11-0 number. It is a success exactly when the category is 0.
using StatusCode = std::int32_t;

inline constexpr StatusCode kSuccess = 0x00000001;
inline constexpr StatusCode kSuccessWithWarnings = 0x00000002;
inline constexpr StatusCode kClientError = 0x10000001;
inline constexpr StatusCode kInvalidCommand = 0x10000002;
inline constexpr StatusCode kInvalidArgument = 0x10000003;
inline constexpr StatusCode kApplicationError = 0x12000001;
inline constexpr StatusCode kAuthRequired = 0x12000002;
inline constexpr StatusCode kHostError = 0x14000001;
inline constexpr StatusCode kOpendirFailed = 0x14000002;
inline constexpr StatusCode kReadlinkFailed = 0x14000003;
inline constexpr StatusCode kStatFailed = 0x14000004;
inline constexpr StatusCode kOpenFailed = 0x14000005;
inline constexpr StatusCode kReadFailed = 0x14000006;
inline constexpr StatusCode kWriteFailed = 0x14000007;
inline constexpr StatusCode kChmodFailed = 0x14000008;
inline constexpr StatusCode kGetifaddrsFailed = 0x14000009;
inline constexpr StatusCode kForkFailed = 0x1400000a;
inline constexpr StatusCode kWaitpidFailed = 0x1400000b;
inline constexpr StatusCode kUnlinkFailed = 0x1400000c;
inline constexpr StatusCode kUnlinkDirectoryFailed = 0x1400000d;
inline constexpr StatusCode kRmdirFailed = 0x1400000e;
inline constexpr StatusCode kMkdirFailed = 0x1400000f;
inline constexpr StatusCode kRenameFailed = 0x14000010;
inline constexpr StatusCode kCopyfileFailed = 0x14000011;
inline constexpr StatusCode kGetcwdFailed = 0x14000012;
inline constexpr StatusCode kSystemFailed = 0x14000013;
inline constexpr StatusCode kExternalError = 0x16000001;
inline constexpr StatusCode kMultipleResults = 0x20000001;
inline constexpr StatusCode kInternalError = 0x24000001;
inline constexpr StatusCode kUnimplemented = 0x24000002;

// True when the category of `code` is 0, so for code 0 too, whose text is "invalid status code".
[[nodiscard]] constexpr bool isSuccess(StatusCode code) {
  return (static_cast<std::uint32_t>(code) >> 24) == 0;
}

// A status code with two texts that belong to the result: what exactly went wrong, and what was
// being done. A third one is for the log only: the cause, what the system refused and why.
class [[nodiscard]] Status {
 public:
  explicit Status(StatusCode code) : code_(code) {}
  Status(StatusCode code, std::string_view details, std::string_view context)
      : code_(code), details_(details), context_(context) {}

  StatusCode code() const { return code_; }
  const std::string& details() const { return details_; }
  const std::string& context() const { return context_; }
  const std::string& cause() const { return cause_; }
  bool ok() const { return isSuccess(code_); }

  // Replaces the code and leaves all texts.
  void setCode(StatusCode code) { code_ = code; }

  // Replaces the cause: "open /opt/vrx/profiles/.factory: No such file or directory".
  Status& because(std::string_view cause) {
    cause_ = cause;
    return *this;
  }

  // Back to success. Deliberate: the context of an earlier step survives, the other texts do not.
  void reset() {
    code_ = kSuccess;
    details_.clear();
    cause_.clear();
  }

 private:
  StatusCode code_;
  std::string details_;
  std::string context_;
  std::string cause_;
};

}  // namespace tunadm
