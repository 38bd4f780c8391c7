#include "profiles/FlatForms.h"

#include <algorithm>
#include <string>

#include "profiles/CurrentProfile.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

bool copyOut(bool found, const std::string& text, char* buffer, std::size_t size) {
  if (size == 0) return false;
  const std::size_t length = std::min(text.size(), size - 1);
  std::copy_n(text.begin(), length, buffer);
  buffer[length] = '\0';
  return found && length == text.size();
}

}  // namespace

bool rootDirectory(char* buffer, std::size_t size) {
  std::string path;
  const bool found = rootDirectory(&path);
  return copyOut(found, path, buffer, size);
}

bool profileDirectory(std::string_view dir_name, char* buffer, std::size_t size) {
  std::string path;
  const bool found = profileDirectory(dir_name, &path);
  return copyOut(found, path, buffer, size);
}

bool factoryDirectory(char* buffer, std::size_t size) {
  std::string path;
  const bool found = factoryDirectory(&path);
  return copyOut(found, path, buffer, size);
}

bool currentMarkerPath(char* buffer, std::size_t size) {
  std::string path;
  const bool found = currentMarkerPath(&path);
  return copyOut(found, path, buffer, size);
}

bool currentProfileDirectory(char* buffer, std::size_t size) {
  std::string path;
  const bool found = currentProfileDirectory(&path);
  return copyOut(found, path, buffer, size);
}

bool profileFile(std::string_view dir_name, std::string_view file_name, char* buffer,
                 std::size_t size) {
  std::string path;
  const bool found = profileFile(dir_name, file_name, &path);
  return copyOut(found, path, buffer, size);
}

bool currentProfileFile(std::string_view file_name, char* buffer, std::size_t size) {
  std::string path;
  const bool found = currentProfileFile(file_name, &path);
  return copyOut(found, path, buffer, size);
}

bool enterCurrentProfile(char* buffer, std::size_t size) {
  std::string path;
  const bool found = enterCurrentProfile(&path);
  return copyOut(found, path, buffer, size);
}

bool uniqueName(std::string_view base, TakenNames* taken, char* buffer, std::size_t size) {
  return copyOut(true, taken->uniqueName(std::string(base)), buffer, size);
}

}  // namespace tunadm
