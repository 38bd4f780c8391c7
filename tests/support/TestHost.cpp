#include "tests/support/TestHost.h"

#include <grp.h>
#include <sched.h>
#include <sys/mman.h>

#include <algorithm>

#include "fundkit/ScopedFd.h"

namespace tunadm {
namespace {

namespace fs = std::filesystem;

constexpr const char* kProfiles = "/opt/vrx/profiles/";
constexpr uid_t kOrdinaryUser = 1000;
constexpr int kNotStarted = 126;  // exit code of a child that did not get as far as the program

fs::path located(const std::string& path) { return fs::path(kProfiles) / path; }

// A host made without root has no user but root: there the process enters a user namespace without
// a mapping, which gives it the system's overflow user ID.
bool becomeOrdinaryUser() {
  if (setgroups(0, nullptr) == 0) {
    return setresgid(kOrdinaryUser, kOrdinaryUser, kOrdinaryUser) == 0 &&
           setresuid(kOrdinaryUser, kOrdinaryUser, kOrdinaryUser) == 0;
  }
  return unshare(CLONE_NEWUSER) == 0 && geteuid() != 0;
}

// The child's part of a run; any failure ends it.
[[noreturn]] void becomeProgram(std::vector<std::string> words, RunAs user, int out, int err) {
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const bool ready = dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO) >= 0 &&
                     dup2(out, STDOUT_FILENO) >= 0 && dup2(err, STDERR_FILENO) >= 0 &&
                     (user == RunAs::kRoot || becomeOrdinaryUser());
  if (ready) execv(arguments[0], arguments.data());
  _exit(kNotStarted);
}

}  // namespace

TestHost::TestHost() {
  fs::current_path("/");
  for (const char* directory : {"/opt", "/tmp", "/etc/init.d"}) {
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
      std::error_code ignored;  // the tests' own build tree may lie here, bound read-only
      fs::remove_all(entry.path(), ignored);
    }
  }
  for (const char* path : {"/bin/systemctl", "/usr/bin/killall", "/sbin/initctl"}) fs::remove(path);
  fs::create_directories(kProfiles);
}

TestHost& TestHost::factory() {
  file(".factory/hip.conf", "master_interface=auto\n");
  file(".factory/endbox.conf", "device_ip=1.2.3.4\ndevice_mask=255.0.0.0\nlog_level=info\n");
  file(".factory/mapconfig.static", "map_uri=\n").file(".factory/device_id", "device-1\n");
  file(".factory/firmware_revision", "3.1.0\n");
  return file(".factory/ca-certs/root.pem", "certificate\n");
}

TestHost& TestHost::profile(const std::string& dir_name, const std::string& friendly_name) {
  if (!friendly_name.empty()) file(dir_name + "/profile_name", friendly_name + "\n", 0640);
  return file(dir_name + "/hip.conf", "");
}

TestHost& TestHost::file(const std::string& path, const std::string& content, mode_t mode) {
  const fs::path whole = located(path);
  fs::create_directories(whole.parent_path());
  std::ofstream stream(whole, std::ios::binary);
  stream << content;
  stream.close();
  EXPECT_TRUE(stream.good()) << "not written: " << whole;
  EXPECT_EQ(chmod(whole.c_str(), mode), 0) << whole;
  return *this;
}

TestHost& TestHost::link(const std::string& target, const std::string& path) {
  EXPECT_EQ(symlink(target.c_str(), located(path).c_str()), 0) << path;
  return *this;
}

TestHost& TestHost::remove(const std::string& path) {
  EXPECT_NE(fs::remove_all(located(path)), 0u) << path;
  return *this;
}

TestHost& TestHost::block(const std::string& path) {
  if (exists(path)) remove(path);
  return file(path + "/in-its-place", "");
}

TestHost& TestHost::standIn(const std::string& path) {
  const fs::path tests = fs::read_symlink("/proc/self/exe").parent_path();
  fs::copy_file(tests / "stand_in", path, fs::copy_options::overwrite_existing);
  return *this;
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

std::vector<std::string> TestHost::tree(const std::string& directory) const {
  std::vector<std::string> lines;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
    std::ostringstream line;
    line << entry.path().string().substr(directory.size() + 1) << ' ';
    if (entry.is_symlink()) {
      line << "-> " << fs::read_symlink(entry).string();
    } else {
      line << std::oct << mode(entry.path()) << (entry.is_directory() ? "/" : " ");
      if (entry.is_regular_file()) line << read(entry.path());
    }
    std::ranges::replace(lines.emplace_back(line.str()), '\n', '|');
  }
  std::ranges::sort(lines);
  return lines;
}

std::map<std::string, std::string> TestHost::files() const {
  std::map<std::string, std::string> found;
  for (const auto& entry : fs::recursive_directory_iterator(kProfiles))
    if (entry.is_regular_file()) found[entry.path()] = read(entry.path());
  return found;
}

Outcome TestHost::run(const std::string& line, RunAs user) const {
  std::istringstream stream(line + ' ');
  std::vector<std::string> words;
  for (std::string word; std::getline(stream, word, ' ');) words.push_back(word);
  return runWords(words, user);
}

Outcome TestHost::runWords(const std::vector<std::string>& words, RunAs user) const {
  // Files without a name take any amount of output, so nothing has to be read meanwhile.
  const ScopedFd out(memfd_create("out", MFD_CLOEXEC));
  const ScopedFd err(memfd_create("err", MFD_CLOEXEC));
  const pid_t child = fork();
  if (child == 0) becomeProgram(words, user, out.get(), err.get());
  int status = 0;
  EXPECT_GT(child, 0) << "not run: " << words[0];
  EXPECT_EQ(waitpid(child, &status, 0), child) << words[0];
  Outcome outcome;
  if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
  if (WIFEXITED(status)) outcome.exit = WEXITSTATUS(status);
  EXPECT_NE(outcome.exit, kNotStarted) << "not run: " << words[0];
  outcome.out = read("/proc/self/fd/" + std::to_string(out.get()));
  outcome.err = read("/proc/self/fd/" + std::to_string(err.get()));
  return outcome;
}

std::string TestHost::says(const std::string& words, RunAs user) const {
  return run("/usr/sbin/tunadm " + words, user).out;
}

std::string TestHost::shell(const std::string& commands) const {
  return runWords({"/bin/sh", "-c", "exec 2>&1; cd /opt/vrx/profiles\n" + commands}).out;
}

std::string failure(const std::string& text, const std::string& code) {
  return "status_text: " + text + "\nstatus_code: " + code + "\n";
}

}  // namespace tunadm

// The tests remove and replace what lies at the program's real paths, so they run only in a marked
// host. Elsewhere their names can be listed.
int main(int argc, char** argv) {
  // A background job of a shell ignores some of them, and so would the programs run here.
  for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGTSTP, SIGPIPE})
    std::signal(number, SIG_DFL);
  testing::InitGoogleTest(&argc, argv);
  if (!testing::GTEST_FLAG(list_tests) && access("/.throwaway-host", F_OK) != 0) {
    fputs("These tests change the host that they run in: start them by scripts/throwaway-host.\n",
          stderr);
    return 1;
  }
  return RUN_ALL_TESTS();
}
