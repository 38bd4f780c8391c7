// The host that a test of the whole program runs in, and the store that it begins with.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace tunadm {

// How a program ended and what it printed. `exit` is -1 after a signal, `signal` 0 without one.
struct Outcome {
  int exit = -1;
  int signal = 0;
  std::string out;
  std::string err;
};

enum class RunAs { kRoot, kOrdinaryUser };

// Stands for the one host that a test executable runs in; it is not to be had twice at a time.
// Failures of its own are test failures.
class TestHost {
 public:
  // Leaves an empty store in /opt/vrx/profiles, an empty /tmp and no stand-ins for the host's
  // init-system commands, enters "/" and takes the program's variables out of the environment.
  TestHost();
  TestHost(const TestHost&) = delete;
  TestHost& operator=(const TestHost&) = delete;

  // Makes the factory profile: a file of every kind that the daemon's packages bring along.
  TestHost& factory();

  // Makes a profile in `dir_name` that has only a hip.conf, which makes it usable.
  TestHost& profile(const std::string& dir_name);

  // Gives the profile made last its friendly name.
  TestHost& named(const std::string& friendly_name);

  // Writes a file, with the directories above it. A `path` without a slash in front is one of the
  // profiles directory.
  TestHost& file(const std::string& path, const std::string& content, mode_t mode = 0644);

  // Puts at `path` a program that records its calls and ends as it is told (standin/stand_in.cpp).
  TestHost& standIn(const std::string& path);

  // The lines of all stand-ins so far: "<path> <argument 0> <argument 1> ...".
  std::vector<std::string> calls() const;

  // The same paths serve here. What is not there reads as "" and has the mode 0.
  std::string read(const std::string& path) const;
  bool exists(const std::string& path) const;
  mode_t mode(const std::string& path) const;

  // Runs tunadm, or with runProgram the program `words[0]`, to its end. `environment` adds
  // "NAME=value" entries. An ordinary user is one whose user IDs are not 0; where the machine
  // gave no root it owns root's files all the same, so only a missing mode bit shuts it out.
  Outcome run(const std::vector<std::string>& words, RunAs user = RunAs::kRoot,
              const std::vector<std::string>& environment = {}) const;
  // What tunadm prints for a command line, split at its blanks.
  std::string says(const std::string& line, RunAs user = RunAs::kRoot) const;
  Outcome runProgram(const std::vector<std::string>& words, RunAs user = RunAs::kRoot,
                     const std::vector<std::string>& environment = {}) const;

 private:
  std::string last_profile_;
};

}  // namespace tunadm
