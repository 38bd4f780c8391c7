#include "profiles/ProfilePaths.h"

namespace tunadm {

bool isDirName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

bool rootDirectory(std::string* path) {
  path->assign(kInstallRoot);
  return true;
}

bool profileDirectory(std::string_view dir_name, std::string* path) {
  path->clear();
  if (dir_name.empty()) return false;
  path->append(kProfilesRoot).append(dir_name);
  return true;
}

bool factoryDirectory(std::string* path) { return profileDirectory(kFactoryName, path); }

bool currentMarkerPath(std::string* path) { return profileDirectory(kCurrentMarker, path); }

bool profileFile(std::string_view dir_name, std::string_view file_name, std::string* path) {
  path->clear();
  if (file_name.empty() || !profileDirectory(dir_name, path)) return false;
  path->append("/").append(file_name);
  return true;
}

}  // namespace tunadm
