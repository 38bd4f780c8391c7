#include "tests/support/TestHost.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace tunadm {

namespace {

namespace fs = std::filesystem;

constexpr const char* kProfiles = "/opt/vrx/profiles/";
constexpr uid_t kOrdinaryUser = 1000;

// Exit code of a child that did not come as far as the program.
constexpr int kNotStarted = 126;

fs::path located(const std::string& path) { return fs::path(kProfiles) / path; }

void emptyDirectory(const fs::path& directory) {
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    std::error_code ignored;  // the tests' own build tree may lie here, bound read-only
    fs::remove_all(entry.path(), ignored);
  }
}

// A host made without root knows no user but root: there the process goes into a user namespace
// that maps nobody, which leaves it the system's overflow user ID.
bool becomeOrdinaryUser() {
  if (setgroups(0, nullptr) == 0) {
    return setresgid(kOrdinaryUser, kOrdinaryUser, kOrdinaryUser) == 0 &&
           setresuid(kOrdinaryUser, kOrdinaryUser, kOrdinaryUser) == 0;
  }
  return unshare(CLONE_NEWUSER) == 0 && geteuid() != 0;
}

// The child's part of a run; anything that cannot be done ends it.
[[noreturn]] void becomeProgram(const std::vector<std::string>& words, RunAs user, int out,
                                int err) {
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  if (dup2(nothing, STDIN_FILENO) < 0 || dup2(out, STDOUT_FILENO) < 0 ||
      dup2(err, STDERR_FILENO) < 0) {
    _exit(kNotStarted);
  }
  if (user == RunAs::kOrdinaryUser && !becomeOrdinaryUser()) _exit(kNotStarted);
  execv(arguments[0], arguments.data());
  _exit(kNotStarted);
}

// A file without a name takes any amount of output, so nobody need read while the child writes.
FILE* outputFile() {
  FILE* file = tmpfile();
  if (file == nullptr) abort();
  return file;
}

std::string takeOutput(FILE* file) {
  std::string text;
  char part[4096];
  rewind(file);
  while (const size_t length = fread(part, 1, sizeof part, file)) text.append(part, length);
  (void)fclose(file);  // was only read from
  return text;
}

}  // namespace

TestHost::TestHost() {
  for (const char* directory : {"/opt", "/tmp", "/etc/init.d"}) emptyDirectory(directory);
  for (const char* stand_in : {"/bin/systemctl", "/usr/bin/killall", "/sbin/initctl"}) {
    fs::remove(stand_in);
  }
  fs::create_directories(kProfiles);
  fs::current_path("/");
  for (const char* name : {"VRX_TMP_DIR", "VRX_LOCK_DIR"}) unsetenv(name);
}

TestHost& TestHost::factory() {
  file(".factory/hip.conf", "master_interface=auto\n");
  file(".factory/endbox.conf", "device_ip=1.2.3.4\ndevice_mask=255.0.0.0\nlog_level=info\n");
  file(".factory/mapconfig.static", "map_uri=\n");
  file(".factory/device_id", "device-1\n");
  file(".factory/firmware_revision", "3.1.0\n");
  return file(".factory/ca-certs/root.pem", "certificate\n");
}

TestHost& TestHost::profile(const std::string& dir_name) {
  last_profile_ = dir_name;
  return file(dir_name + "/hip.conf", "");
}

TestHost& TestHost::named(const std::string& friendly_name) {
  return file(last_profile_ + "/profile_name", friendly_name + "\n");
}

TestHost& TestHost::file(const std::string& path, const std::string& content, mode_t mode) {
  const fs::path whole = located(path);
  fs::create_directories(whole.parent_path());
  std::ofstream stream(whole, std::ios::binary);
  stream << content;
  stream.close();
  EXPECT_TRUE(stream.good() && chmod(whole.c_str(), mode) == 0) << "not written: " << whole;
  return *this;
}

TestHost& TestHost::standIn(const std::string& path) {
  const fs::path tests = fs::read_symlink("/proc/self/exe").parent_path();
  fs::copy_file(tests / "stand_in", path, fs::copy_options::overwrite_existing);
  return *this;
}

std::vector<std::string> TestHost::calls() const {
  std::vector<std::string> lines;
  std::ifstream stream("/tmp/calls");
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string TestHost::read(const std::string& path) const {
  std::ifstream stream(located(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

bool TestHost::exists(const std::string& path) const { return fs::exists(located(path)); }

mode_t TestHost::mode(const std::string& path) const {
  struct stat entry = {};
  return stat(located(path).c_str(), &entry) == 0 ? entry.st_mode & 07777 : 0;
}

Outcome TestHost::run(const std::vector<std::string>& words, RunAs user,
                      const std::vector<std::string>& environment) const {
  std::vector<std::string> with_program = {"/usr/sbin/tunadm"};
  with_program.insert(with_program.end(), words.begin(), words.end());
  return runProgram(with_program, user, environment);
}

std::string TestHost::says(const std::string& line, RunAs user) const {
  std::istringstream stream(line);
  return run({std::istream_iterator<std::string>(stream), {}}, user).out;
}

Outcome TestHost::runProgram(const std::vector<std::string>& words, RunAs user,
                             const std::vector<std::string>& environment) const {
  FILE* const out = outputFile();
  FILE* const err = outputFile();
  const pid_t child = fork();
  if (child == 0) {
    for (const std::string& entry : environment) putenv(const_cast<char*>(entry.c_str()));
    becomeProgram(words, user, fileno(out), fileno(err));
  }
  int status = 0;
  const bool ended = child > 0 && waitpid(child, &status, 0) == child;
  Outcome outcome;
  outcome.out = takeOutput(out);
  outcome.err = takeOutput(err);
  EXPECT_TRUE(ended) << "not run: " << words[0];
  if (ended && WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
  if (ended && WIFEXITED(status)) outcome.exit = WEXITSTATUS(status);
  EXPECT_NE(outcome.exit, kNotStarted) << "not run: " << words[0];
  return outcome;
}

}  // namespace tunadm

// The tests remove and replace what lies at the program's real paths, so only a marked host will
// do.
int main(int argc, char** argv) {
  if (access("/.throwaway-host", F_OK) != 0) {
    fputs("These tests change the host that they run in: start them by scripts/throwaway-host.\n",
          stderr);
    return 1;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
