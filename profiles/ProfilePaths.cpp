#include "profiles/ProfilePaths.h"

#include <utility>

namespace tunadm {
namespace {

bool store(std::string found, std::string* path) {
  *path = std::move(found);
  return !path->empty();
}

}  // namespace

bool isDirName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

std::string profileDirectory(std::string_view dir_name) {
  if (dir_name.empty()) return "";
  return std::string(kProfilesRoot).append(dir_name);
}

std::string profileFile(std::string_view dir_name, std::string_view file_name) {
  if (dir_name.empty() || file_name.empty()) return "";
  return profileDirectory(dir_name).append("/").append(file_name);
}

std::string factoryDirectory() { return profileDirectory(kFactoryName); }

std::string currentMarkerPath() { return profileDirectory(kCurrentMarker); }

bool rootDirectory(std::string* path) { return store(std::string(kInstallRoot), path); }

bool profileDirectory(std::string_view dir_name, std::string* path) {
  return store(profileDirectory(dir_name), path);
}

bool factoryDirectory(std::string* path) { return store(factoryDirectory(), path); }

bool currentMarkerPath(std::string* path) { return store(currentMarkerPath(), path); }

bool profileFile(std::string_view dir_name, std::string_view file_name, std::string* path) {
  return store(profileFile(dir_name, file_name), path);
}

}  // namespace tunadm
