// The host that a test of the whole program runs in, and the store that it begins with. It includes
// the headers of the libraries that such tests need.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tunadm {

// What a program printed, and how it ended: the exit code is -1 after a signal.
struct Outcome {
  int exit = -1;
  int signal = 0;
  std::string out;
  std::string err;
};

enum class RunAs { kRoot, kOrdinaryUser };

// Stands for the one host that a test executable runs in; only one may exist at a time. Its own
// failures are test failures. A path without a leading slash is relative to the profiles directory.
class TestHost {
 public:
  // Leaves an empty store in /opt/vrx/profiles, an empty /tmp and no stand-ins for the host's
  // init-system commands, and enters "/".
  TestHost();
  TestHost(const TestHost&) = delete;
  TestHost& operator=(const TestHost&) = delete;

  // Makes the factory profile: a file of every kind that the daemon's packages install.
  TestHost& factory();
  // Makes a profile that has only a hip.conf, which makes it usable, and a name if one is given.
  TestHost& profile(const std::string& dir_name, const std::string& friendly_name = "");
  // Writes a file, with the directories above it.
  TestHost& file(const std::string& path, const std::string& content, mode_t mode = 0644);
  TestHost& link(const std::string& target, const std::string& path);
  TestHost& remove(const std::string& path);
  // Puts a directory at `path` that no file can replace.
  TestHost& block(const std::string& path);
  // Puts a program there that records its calls and ends as it is told (standin/stand_in.cpp).
  TestHost& standIn(const std::string& path);

  // What does not exist reads as "" and has the mode 0.
  std::string read(const std::string& path) const;
  bool exists(const std::string& path) const;
  mode_t mode(const std::string& path) const;
  // What lies below a directory, in order: "<path> <mode> <content>" for a plain file, its line
  // feeds as '|', "<path> <mode>/" for a directory, and "<path> -> <target>" for a link.
  std::vector<std::string> tree(const std::string& directory) const;
  // The contents of all plain files of the store, by path.
  std::map<std::string, std::string> files() const;

  // Runs a command line, split at each single blank, to its end. An ordinary user is one whose
  // user IDs are not 0. On a host made without root, that user still owns root's files, so only a
  // missing mode bit keeps it out.
  Outcome run(const std::string& line, RunAs user = RunAs::kRoot) const;
  // The same for words that may hold blanks.
  Outcome runWords(const std::vector<std::string>& words, RunAs user = RunAs::kRoot) const;
  // What tunadm prints when it is run so.
  std::string says(const std::string& words, RunAs user = RunAs::kRoot) const;
  // What a shell prints that runs this in the profiles directory, on both outputs.
  std::string shell(const std::string& commands) const;
};

// What tunadm prints on a failure.
std::string failure(const std::string& text, const std::string& code);

}  // namespace tunadm
