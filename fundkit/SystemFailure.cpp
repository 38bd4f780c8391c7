#include "fundkit/SystemFailure.h"

#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstring>

namespace tunadm {
namespace {

// Empty where there is no /proc.
std::string pathOf(int directory) {
  char target[PATH_MAX];
  const std::string link = "/proc/self/fd/" + std::to_string(directory);
  const ssize_t length = readlink(link.c_str(), target, sizeof(target));
  return length < 0 ? "" : std::string(target, static_cast<std::size_t>(length));
}

std::string causeOf(int error, std::string_view operation, std::string_view path) {
  std::string text(operation);
  if (!path.empty()) text.append(" ").append(shownPath(path));
  return text.append(": ").append(error == 0 ? "not a regular file" : std::strerror(error));
}

}  // namespace

// The store's paths hold a doubled slash, which would only puzzle the reader of a message.
std::string shownPath(std::string_view path) {
  std::string text;
  for (const char byte : path) {
    if (byte != '/' || !text.ends_with('/')) text += byte;
  }
  return text;
}

std::string systemCause(std::string_view operation, std::string_view path) {
  const int error = errno;
  std::string cause = causeOf(error, operation, path);
  errno = error;
  return cause;
}

std::string systemCause(std::string_view operation, int directory, std::string_view name) {
  const int error = errno;
  std::string path = pathOf(directory);
  if (!path.empty() && !name.empty()) path += '/';
  std::string cause = causeOf(error, operation, path.append(name));
  errno = error;
  return cause;
}

Status systemFailure(StatusCode code, std::string_view operation, std::string_view path) {
  return Status(code).because(systemCause(operation, path));
}

Status systemFailure(StatusCode code, std::string_view operation, int directory,
                     std::string_view name) {
  return Status(code).because(systemCause(operation, directory, name));
}

}  // namespace tunadm
