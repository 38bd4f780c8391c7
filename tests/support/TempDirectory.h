// A fresh directory for a test, removed with everything in it at the end.
#pragma once

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace tunadm {

class TempDirectory {
 public:
  TempDirectory() {
    char path[] = "/tmp/tunadm-test.XXXXXX";
    if (mkdtemp(path) == nullptr) abort();
    path_ = path;
  }
  ~TempDirectory() {
    std::error_code ignored;  // A left-over directory is no reason to fail a test.
    std::filesystem::remove_all(path_, ignored);
  }
  TempDirectory(const TempDirectory&) = delete;
  TempDirectory& operator=(const TempDirectory&) = delete;

  const std::string& path() const { return path_; }
  std::string at(const std::string& name) const { return path_ + "/" + name; }

  // Each of these makes an entry and gives its path.
  std::string write(const std::string& name, const std::string& content) const {
    std::ofstream(at(name), std::ios::binary) << content;
    return at(name);
  }
  std::string link(const std::string& target, const std::string& name) const {
    if (symlink(target.c_str(), at(name).c_str()) != 0) abort();
    return at(name);
  }
  std::string directory(const std::string& name) const {
    std::filesystem::create_directories(at(name));
    return at(name);
  }

  // The content of the file, or "<none>" when there is none.
  std::string read(const std::string& name) const {
    std::ifstream file(at(name), std::ios::binary);
    if (!file) return "<none>";
    return {std::istreambuf_iterator<char>(file), {}};
  }

  // The permission bits of the entry itself (no link followed), or 0 when there is none.
  mode_t mode(const std::string& name) const {
    struct stat found {};
    return lstat(at(name).c_str(), &found) == 0 ? found.st_mode & 07777U : 0;
  }

 private:
  std::string path_;
};

}  // namespace tunadm
