#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "fundkit/DirectoryListing.h"
#include "fundkit/FileUtils.h"
#include "fundkit/KeyValueFile.h"
#include "fundkit/LineReader.h"
#include "fundkit/LockFile.h"
#include "fundkit/RemoveTree.h"
#include "fundkit/UniqueFile.h"
#include "fundkit/WorkDirectories.h"
#include "fundkit/WorkFile.h"
#include "tests/support/TempDirectory.h"

namespace tunadm {
namespace {

using namespace std::string_literals;
using Names = std::vector<std::string>;

constexpr int kCannotRun = 77;
constexpr uid_t kStranger = 65534;

// Runs `body` in a child process of its own and gives the child's process ID.
pid_t startChild(const std::function<int()>& body) {
  const pid_t child = fork();
  if (child == 0) _exit(body());
  return child;
}

int exitOf(pid_t child) {
  int status = 0;
  if (waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

int inChild(const std::function<int()>& body) { return exitOf(startChild(body)); }

Names sorted(Names names) {
  std::sort(names.begin(), names.end());
  return names;
}

// Makes further writes beyond 4096 bytes of a file fail, as on a full disk.
void limitFileSize() {
  (void)signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{4096, 4096};
  (void)setrlimit(RLIMIT_FSIZE, &limit);
}

TEST(FileUtils, EmptyPathIsRefused) {
  std::string text = "before";
  for (Status (*operation)(const std::string&) :
       {removeFile, removeEmptyDirectory, removeEntry, removeTree, emptyDirectory}) {
    EXPECT_EQ(operation("").code(), kInvalidArgument);
  }
  EXPECT_EQ(copyFile("/nowhere", "").code(), kInvalidArgument);
  EXPECT_EQ(moveFile("/nowhere", "", Overwrite::kYes).code(), kInvalidArgument);
  EXPECT_EQ(makeDirectory("", 0755).code(), kInvalidArgument);
  EXPECT_EQ(makeNewDirectory("", 0755).code(), kInvalidArgument);
  EXPECT_EQ(changeMode("", 0755).code(), kInvalidArgument);
  EXPECT_EQ(writeLines("", {}).code(), kInvalidArgument);
  EXPECT_EQ(readFile("", &text).code(), kInvalidArgument);
  EXPECT_EQ(listDirectory("").status.code(), kInvalidArgument);
  EXPECT_EQ(WorkFile("").commit().code(), kInvalidArgument);
  EXPECT_EQ(makeUniqueFile("", &text), nullptr);
}

TEST(FileUtils, Copy) {
  const TempDirectory temp;
  for (const std::size_t size : {0U, 1U, 4096U, 4097U, 70000U}) {
    std::string content(size, 'x');
    if (size > 0) content.back() = '\0';
    temp.write("to", "longer than what comes");
    ASSERT_TRUE(changeMode(temp.at("to"), 0600).ok());
    EXPECT_TRUE(copyFile(temp.write("from", content), temp.at("to")).ok());
    EXPECT_EQ(temp.read("to"), content);
    EXPECT_EQ(temp.mode("to"), 0644U);
  }
  ASSERT_TRUE(makeDirectory(temp.at("dir"), 0755).ok());
  const struct {
    const char *from, *to;
    StatusCode code;
    const char* details;
  } cases[] = {{"none", "a", kInvalidArgument, "none"},
               {"from", "no/b", kOpenFailed, "no/b"},
               {"dir", "c", kReadFailed, "dir"}};
  for (const auto& c : cases) {
    const Status status = copyFile(temp.at(c.from), temp.at(c.to));
    EXPECT_EQ(status.code(), c.code);
    EXPECT_EQ(status.details() + status.context(), temp.at(c.details) + "copyFile");
  }
}

TEST(FileUtils, Move) {
  const TempDirectory temp;
  const std::string from = temp.write("from", "1");
  const std::string to = temp.write("to", "2");
  EXPECT_EQ(moveFile(from, to, Overwrite::kNo).code(), kRenameFailed);
  EXPECT_EQ(temp.read("from") + temp.read("to"), "12");
  ASSERT_EQ(symlink("nowhere", temp.at("dead").c_str()), 0);
  EXPECT_EQ(moveFile(from, temp.at("dead"), Overwrite::kNo).code(), kRenameFailed);
  EXPECT_TRUE(moveFile(from, to, Overwrite::kYes).ok());
  EXPECT_EQ(temp.read("from") + temp.read("to"), "<none>1");
  EXPECT_TRUE(moveFile(to, temp.at("new"), Overwrite::kNo).ok());
  EXPECT_EQ(moveFile(to, temp.at("new"), Overwrite::kYes).code(), kRenameFailed);
}

TEST(FileUtils, MoveAcrossFileSystems) {
  const TempDirectory temp;
  const std::string from = temp.write("from", "content");
  ASSERT_TRUE(makeDirectory(temp.at("other"), 0755).ok());
  const int result = inChild([&] {
    if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) ||
        mount("none", temp.at("other").c_str(), "tmpfs", 0, nullptr) != 0) {
      return kCannotRun;
    }
    if (moveFile(from, temp.at("other/gone/to"), Overwrite::kNo).code() != kRenameFailed) return 1;
    if (!moveFile(from, temp.at("other/to"), Overwrite::kNo).ok()) return 2;
    return temp.read("from") == "<none>" && temp.read("other/to") == "content" ? 0 : 3;
  });
  if (result == kCannotRun) GTEST_SKIP() << "no private mounts here";
  EXPECT_EQ(result, 0);
}

TEST(FileUtils, RemoveAndMake) {
  const TempDirectory temp;
  const std::string file = temp.write("file", "");
  const std::string dir = temp.at("dir");
  EXPECT_TRUE(removeFile(temp.at("none")).ok());
  EXPECT_TRUE(removeEmptyDirectory(temp.at("none")).ok());
  EXPECT_EQ(makeDirectory(temp.at("none/dir"), 0755).code(), kMkdirFailed);
  EXPECT_TRUE(makeNewDirectory(dir, 0700).ok());
  EXPECT_EQ(temp.mode("dir"), 0700U);
  EXPECT_EQ(makeNewDirectory(dir, 0700).code(), kMkdirFailed);
  EXPECT_TRUE(makeDirectory(dir, 0755).ok());
  EXPECT_EQ(temp.mode("dir"), 0700U);
  EXPECT_EQ(removeFile(dir).code(), kUnlinkFailed);
  EXPECT_EQ(removeEmptyDirectory(file).code(), kRmdirFailed);
  EXPECT_EQ(removeEmptyDirectory(temp.path()).code(), kRmdirFailed);
  EXPECT_EQ(removeEntry(temp.path()).code(), kRmdirFailed);
  EXPECT_TRUE(removeEntry(dir).ok());
  EXPECT_TRUE(removeEntry(file).ok());
  EXPECT_FALSE(pathExists(dir) || pathExists(file));
}

TEST(FileUtils, ChangeModeSucceedsWhenItIsSoAlready) {
  const TempDirectory temp;
  const std::string file = temp.write("file", "");
  EXPECT_TRUE(changeMode(file, 0604).ok());
  EXPECT_EQ(temp.mode("file"), 0604U);
  EXPECT_EQ(changeMode(temp.at("none"), 0604).code(), kChmodFailed);
  if (geteuid() != 0) GTEST_SKIP() << "needs a file of another user";
  ASSERT_TRUE(changeMode(temp.path(), 0755).ok());
  EXPECT_EQ(inChild([&] {
              if (setuid(kStranger) != 0) return 1;
              if (!changeMode(file, 0604).ok()) return 2;
              return changeMode(file, 0644).code() == kChmodFailed ? 0 : 3;
            }),
            0);
}

TEST(FileUtils, WriteLines) {
  const TempDirectory temp;
  const std::string file = temp.write("file", "much longer than the new content");
  EXPECT_TRUE(writeLines(file, {"a", "", "b\0c"s}).ok());
  EXPECT_EQ(temp.read("file"), "a\n\nb\n");
  EXPECT_EQ(temp.mode("file"), 0640U);
  EXPECT_EQ(writeLines(temp.at("no/file"), {}).code(), kOpenFailed);
}

TEST(FileUtils, FullDisk) {
  const TempDirectory temp;
  const std::string big = temp.write("big", std::string(10000, 'x'));
  temp.write("kept", "old");
  EXPECT_EQ(inChild([&] {
              limitFileSize();
              if (writeLines(temp.at("a"), {std::string(5000, 'x')}).code() != kWriteFailed)
                return 1;
              const Status copied = copyFile(big, temp.at("b"));
              if (copied.code() != kWriteFailed || copied.details() != temp.at("b")) return 2;
              WorkFile work(temp.at("kept"));
              work.put(std::string(5000, 'x'));
              if (work.commit().code() != kWriteFailed) return 3;
              return pathExists(temp.at("kept.temp")) ? 4 : 0;
            }),
            0);
  EXPECT_EQ(temp.read("kept"), "old");
}

TEST(FileUtils, Questions) {
  const TempDirectory temp;
  temp.write("file", "");
  ASSERT_TRUE(makeDirectory(temp.at("dir"), 0755).ok());
  ASSERT_EQ(symlink("file", temp.at("to_file").c_str()), 0);
  ASSERT_EQ(symlink("dir", temp.at("to_dir").c_str()), 0);
  ASSERT_EQ(symlink("none", temp.at("dead").c_str()), 0);
  const std::pair<const char*, const char*> cases[] = {{"file", "er"},    {"dir", "ed"},
                                                       {"to_file", "er"}, {"to_dir", "e"},
                                                       {"dead", ""},      {"none", ""}};
  for (const auto& [name, expected] : cases) {
    std::string answers = pathExists(temp.at(name)) ? "e" : "";
    if (isRegularFile(temp.at(name))) answers += 'r';
    if (isRealDirectory(temp.at(name))) answers += 'd';
    EXPECT_EQ(answers, expected) << name;
  }
  EXPECT_EQ(inChild([&] {
              std::string path = "x";
              if (chdir(temp.at("to_dir").c_str()) != 0 || !currentDirectory(&path).ok()) return 1;
              if (path != temp.at("dir") || rmdir(path.c_str()) != 0) return 2;
              return currentDirectory(&path).code() == kGetcwdFailed && path.empty() ? 0 : 3;
            }),
            0);
}

TEST(FileUtils, ReadFirstLine) {
  const TempDirectory temp;
  const std::string mebi(1048576, 'x');
  const std::string chunk(16384, 'x');
  const std::pair<std::string, std::string> cases[] = {{"", ""},
                                                       {"name", "name"},
                                                       {"name\nmore\n", "name"},
                                                       {"\nname", ""},
                                                       {"na\0me\n"s, "na"},
                                                       {"\xff \t\r\n", "\xff \t\r"},
                                                       {chunk + "y\nz", chunk + "y"},
                                                       {mebi, mebi}};
  std::string line;
  for (const auto& [content, expected] : cases) {
    EXPECT_TRUE(readFirstLine(temp.write("file", content), &line).ok());
    EXPECT_TRUE(line == expected) << content.size();
    EXPECT_TRUE(readFile(temp.at("file"), &line).ok());
    EXPECT_TRUE(line == content) << content.size();
  }
  for (const char* rest : {"x", "x\n"}) {
    EXPECT_EQ(readFirstLine(temp.write("file", mebi + rest), &line).code(), kReadFailed);
    EXPECT_EQ(line, "");
  }
}

// A test that hangs here waits for the other end of the FIFO.
TEST(FileUtils, UnreadableIsNoContent) {
  const TempDirectory temp;
  ASSERT_EQ(mkfifo(temp.at("fifo").c_str(), 0600), 0);
  const struct {
    std::string path;
    StatusCode code;
  } cases[] = {
      {temp.at("none"), kOpenFailed}, {temp.at("fifo"), kReadFailed}, {temp.path(), kReadFailed}};
  for (const auto& c : cases) {
    std::string text = "before";
    EXPECT_EQ(readFirstLine(c.path, &text).code(), c.code);
    EXPECT_EQ(text, "");
    text = "before";
    EXPECT_EQ(readFile(c.path, &text).code(), c.code);
    EXPECT_EQ(text, "");
    KeyValueTable table;
    table.parse("a=b", '=', {});
    EXPECT_FALSE(readKeyValueFile(c.path, '=', {}, &table));
    EXPECT_EQ(table.find("a"), -1);
  }
  EXPECT_EQ(writeLines(temp.at("fifo"), {"x"}).code(), kOpenFailed);
  ASSERT_EQ(truncate(temp.write("huge", "").c_str(), (64 << 20) + 1), 0);
  std::string text;
  EXPECT_EQ(readFile(temp.at("huge"), &text).code(), kReadFailed);
}

TEST(RemoveTree, RemovesAllAndFollowsNothing) {
  const TempDirectory temp;
  const TempDirectory outside;
  outside.write("keep", "kept");
  for (Status (*operation)(const std::string&) : {removeTree, emptyDirectory}) {
    for (const char* name : {"tree", "tree/sub", "tree/sub/deep", "tree/empty"}) {
      ASSERT_TRUE(makeDirectory(temp.at(name), 0755).ok());
    }
    temp.write("tree/sub/deep/file", "x");
    ASSERT_EQ(symlink(outside.path().c_str(), temp.at("tree/sub/link").c_str()), 0);
    ASSERT_EQ(symlink("nowhere", temp.at("tree/dead").c_str()), 0);
    EXPECT_TRUE(operation(temp.at("tree/")).ok());
    EXPECT_EQ(isRealDirectory(temp.at("tree")), operation == emptyDirectory);
    EXPECT_TRUE(operation(temp.at("none")).ok());
  }
  ASSERT_TRUE(listDirectory(temp.at("tree")).subdirectories.empty());
  ASSERT_EQ(symlink(outside.path().c_str(), temp.at("link").c_str()), 0);
  EXPECT_EQ(emptyDirectory(temp.at("link/")).code(), kOpendirFailed);
  EXPECT_TRUE(removeTree(temp.at("link/")).ok());
  EXPECT_EQ(temp.mode("link"), 0U);
  EXPECT_TRUE(removeTree(temp.write("file", "")).ok());
  EXPECT_EQ(temp.read("file"), "<none>");
  EXPECT_EQ(outside.read("keep"), "kept");
}

TEST(RemoveTree, ExchangedDirectoryLeadsNowhere) {
  const TempDirectory temp;
  const TempDirectory outside;
  outside.write("keep", "kept");
  const std::string entry = temp.at("tree/entry");
  const std::string spare = temp.at("spare");
  const pid_t child = startChild([&] {
    for (;;) {
      (void)renameat2(AT_FDCWD, entry.c_str(), AT_FDCWD, spare.c_str(), RENAME_EXCHANGE);
    }
    return 0;
  });
  for (int round = 0; round < 1000; ++round) {
    (void)makeDirectory(temp.at("tree"), 0755);
    (void)makeDirectory(entry, 0755);
    (void)removeTree(spare);
    // The child may have come in between; then this round is lost.
    if (symlink(outside.path().c_str(), spare.c_str()) != 0) continue;
    (void)removeTree(temp.at("tree"));
  }
  ASSERT_EQ(kill(child, SIGKILL), 0);
  EXPECT_EQ(exitOf(child), -1);
  EXPECT_EQ(outside.read("keep"), "kept");
}

TEST(DirectoryListing, KindsAndTheLinkRule) {
  const TempDirectory temp;
  const std::string list = temp.at("list");
  for (const char* name : {"list", "list/dir", "list/.hidden", "target"}) {
    ASSERT_TRUE(makeDirectory(temp.at(name), 0755).ok());
  }
  temp.write("list/file", "");
  temp.write("list/target", "");
  ASSERT_EQ(mkfifo((list + "/fifo").c_str(), 0600), 0);
  const struct {
    std::string name, target;
  } links[] = {{"to_file", list + "/file"}, {"to_dir", list + "/dir"}, {"to_fifo", list + "/fifo"},
               {"dead", "nowhere"},         {"beside", "file"},        {"from_cwd", "target"}};
  for (const auto& link : links) {
    ASSERT_EQ(symlink(link.target.c_str(), (list + "/" + link.name).c_str()), 0);
  }
  const int old_directory = open(".", O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(chdir(temp.path().c_str()), 0);
  const DirectoryListing listing = listDirectory("list");
  ASSERT_EQ(fchdir(old_directory), 0);
  close(old_directory);
  EXPECT_EQ(listing.path, "list");
  EXPECT_EQ(listing.status.code(), kSuccess);
  EXPECT_EQ(sorted(listing.subdirectories), (Names{".hidden", "dir"}));
  EXPECT_EQ(sorted(listing.files), (Names{"file", "target"}));
  EXPECT_EQ(listing.file_links, (Names{"to_file"}));
  // A directory by the working directory, though the file beside the link has the same name.
  EXPECT_EQ(sorted(listing.directory_links), (Names{"from_cwd", "to_dir"}));
  EXPECT_EQ(sorted(listing.others), (Names{"fifo", "to_fifo"}));
  EXPECT_EQ(listDirectory(temp.at("list/file")).status.code(), kOpendirFailed);
  EXPECT_EQ(listDirectory(temp.at("none")).status.code(), kOpendirFailed);
}

TEST(UniqueFile, NamesAndFailures) {
  const TempDirectory temp;
  std::string first = "before";
  std::string second;
  const ScopedStream stream = makeUniqueFile(temp.at("base"), &first);
  ASSERT_NE(stream, nullptr);
  ASSERT_NE(makeUniqueFile(temp.at("base"), &second), nullptr);
  EXPECT_NE(first, second);
  EXPECT_EQ(first.size(), temp.at("base.XXXXXX").size());
  const std::string made = first.substr(temp.path().size() + 1);
  EXPECT_EQ(temp.mode(made), 0644U);
  EXPECT_TRUE(std::fputs("text", stream.get()) >= 0 && std::fflush(stream.get()) == 0);
  EXPECT_EQ(temp.read(made), "text");

  std::string name = "before";
  testing::internal::CaptureStderr();
  EXPECT_EQ(makeUniqueFile(temp.at("none/base"), &name), nullptr);
  std::string expected;
  for (int attempt = 0; attempt < 11; ++attempt) {
    expected +=
        "E~ fundkit FileUtils makeUniqueFile: failed to open file; error = No such file or "
        "directory\n";
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), expected);

  std::string longest = temp.path();
  while (longest.size() < 4086) longest += "/.";
  longest += std::string(4088 - longest.size(), '/');
  testing::internal::CaptureStderr();
  EXPECT_EQ(makeUniqueFile(longest + "b", &name), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(name, "before");
  EXPECT_NE(makeUniqueFile(longest, &name), nullptr);
}

TEST(WorkDirectories, FromTheEnvironment) {
  const struct {
    const char *value, *directory;
  } cases[] = {{nullptr, "/tmp/"}, {"", "/tmp/"}, {"/a", "/a/"}, {"/a/", "/a/"}, {"b", "b/"}};
  for (const auto& c : cases) {
    EXPECT_EQ(directoryFromEnvironment(c.value, "/tmp/"), c.directory);
  }
  const TempDirectory temp;
  EXPECT_EQ(inChild([&] {  // The first use in a process decides for its whole life.
              (void)setenv("VRX_TMP_DIR", temp.at("tmp").c_str(), 1);
              (void)setenv("VRX_LOCK_DIR", temp.at("lock/").c_str(), 1);
              if (tempPath("x") != temp.at("tmp/x") || lockPath("y") != temp.at("lock/y")) return 1;
              if (temp.mode("tmp") != 0750 || temp.mode("lock") != 0750) return 2;
              (void)unsetenv("VRX_TMP_DIR");
              const LockFile lock("some/dir\\name", Blocking::kNo);
              if (!lock.held() || !pathExists(temp.at("lock/name.lock"))) return 3;
              return temporaryDirectory() == temp.at("tmp/") ? 0 : 4;
            }),
            0);
}

TEST(LockFile, HeldBusyReleased) {
  const TempDirectory temp;
  const std::string directory = temp.path() + "/";
  {
    const mode_t old_umask = umask(027);
    const LockFile lock(directory, "n", Blocking::kNo);
    EXPECT_EQ(umask(old_umask), 027U);
    EXPECT_TRUE(lock.held());
    EXPECT_EQ(temp.mode("n.lock"), 0666U);
    EXPECT_EQ(LockFile(directory, "n", Blocking::kNo).state(), LockState::kBusy);
    EXPECT_TRUE(pathExists(temp.at("n.lock")));
    EXPECT_TRUE(LockFile(directory, "m", Blocking::kNo).held());
  }
  EXPECT_FALSE(pathExists(temp.at("n.lock")));
  EXPECT_TRUE(LockFile(directory, "n", Blocking::kYes).held());
}

TEST(LockFile, NeverTwoHolders) {
  const TempDirectory temp;
  const auto work = [&] {
    for (int round = 0; round < 400; ++round) {
      const LockFile lock(temp.path() + "/", "n", Blocking::kYes);
      const int mark = open(temp.at("mark").c_str(), O_CREAT | O_EXCL | O_CLOEXEC, 0600);
      if (!lock.held() || mark < 0) return 1;
      close(mark);
      (void)sched_yield();
      if (unlink(temp.at("mark").c_str()) != 0) return 2;
    }
    return 0;
  };
  pid_t children[6] = {};
  for (pid_t& child : children) child = startChild(work);
  for (const pid_t child : children) EXPECT_EQ(exitOf(child), 0);
}

TEST(LockFile, NotTrusted) {
  const TempDirectory temp;
  const std::string victim = temp.at("victim");
  ASSERT_TRUE(makeDirectory(temp.at("dir"), 0755).ok());
  ASSERT_EQ(symlink(victim.c_str(), temp.at("dir/link.lock").c_str()), 0);
  ASSERT_EQ(mkfifo(temp.at("dir/fifo.lock").c_str(), 0666), 0);
  ASSERT_TRUE(makeDirectory(temp.at("dir/sub.lock"), 0755).ok());
  ASSERT_EQ(symlink("dir", temp.at("own").c_str()), 0);
  ASSERT_EQ(symlink("dir", temp.at("other").c_str()), 0);
  temp.write("file", "");
  EXPECT_TRUE(LockFile(temp.at("own/"), "n", Blocking::kYes).held());
  std::vector<std::pair<std::string, std::string>> refused = {{"dir/", ""},     {"dir/", "link"},
                                                              {"dir/", "fifo"}, {"dir/", "sub"},
                                                              {"file/", "n"},   {"none/", "n"}};
  if (geteuid() == 0) {
    ASSERT_EQ(lchown(temp.at("other").c_str(), kStranger, 0), 0);
    ASSERT_TRUE(makeDirectory(temp.at("theirs"), 0777).ok());
    ASSERT_EQ(chown(temp.at("theirs").c_str(), kStranger, 0), 0);
    ASSERT_EQ(symlink("theirs", temp.at("to_theirs").c_str()), 0);
    for (const char* directory : {"other/", "theirs/", "to_theirs/"}) {
      refused.emplace_back(directory, "n");
    }
  }
  for (const auto& [directory, name] : refused) {
    EXPECT_EQ(LockFile(temp.at(directory), name, Blocking::kYes).state(), LockState::kUnavailable)
        << directory << name;
  }
  EXPECT_FALSE(pathExists(victim));
  EXPECT_TRUE(listDirectory(temp.at("theirs")).files.empty());
}

TEST(WorkFile, CommitAndAbandon) {
  const TempDirectory temp;
  const std::string file = temp.write("file", "old");
  ASSERT_TRUE(changeMode(file, 0606).ok());
  const bool is_root = geteuid() == 0;
  ASSERT_TRUE(!is_root || chown(file.c_str(), 1234, 2345) == 0);
  temp.write("file.temp", "left over by an earlier run, and longer");
  {
    WorkFile work(file);
    work.put("abandoned");
    EXPECT_EQ(temp.mode("file.temp"), 0600U);
  }
  EXPECT_EQ(temp.read("file") + temp.read("file.temp"), "old<none>");
  WorkFile work(file);
  work.put("new\0"s);
  work.put(std::string(200000, 'x'));
  EXPECT_EQ(temp.read("file"), "old");
  EXPECT_TRUE(work.commit().ok());
  EXPECT_EQ(temp.read("file"), "new\0"s + std::string(200000, 'x'));
  EXPECT_EQ(temp.mode("file"), 0606U);
  EXPECT_EQ(temp.mode("file.temp"), 0U);
  struct stat found {};
  ASSERT_EQ(stat(file.c_str(), &found), 0);
  EXPECT_TRUE(!is_root || (found.st_uid == 1234 && found.st_gid == 2345));

  const mode_t old_umask = umask(037);
  EXPECT_TRUE(WorkFile(temp.at("made")).commit().ok());
  EXPECT_EQ(umask(old_umask), 037U);
  EXPECT_EQ(temp.mode("made"), 0640U);
}

TEST(WorkFile, RefusalsLeaveTheFile) {
  const TempDirectory temp;
  const std::string file = temp.write("file", "old");
  temp.write("victim", "kept");
  ASSERT_EQ(symlink("victim", temp.at("file.temp").c_str()), 0);
  WorkFile work(file);
  work.put("new");
  EXPECT_TRUE(work.commit().ok());
  EXPECT_EQ(temp.read("victim") + temp.read("file"), "keptnew");
  EXPECT_TRUE(isRealDirectory(temp.path()) && temp.mode("file.temp") == 0);

  ASSERT_TRUE(makeDirectory(temp.at("file.temp"), 0755).ok());
  WorkFile blocked(file);
  EXPECT_EQ(blocked.status().code(), kOpenFailed);
  blocked.put("lost");
  EXPECT_EQ(blocked.commit().code(), kOpenFailed);
  EXPECT_EQ(temp.read("file"), "new");
  ASSERT_TRUE(makeDirectory(temp.at("dir"), 0755).ok());
  EXPECT_EQ(WorkFile(temp.at("dir")).commit().code(), kRenameFailed);
  EXPECT_EQ(temp.mode("dir.temp"), 0U);
}

TEST(LineReader, PiecesAsOfABuffer) {
  const std::string x7998(7998, 'x');
  const std::string whole = "\n\na\0b\n"s + x7998 + "\n" + x7998 + "x\n" + x7998 + "xx\n" + "end";
  std::string joined;
  std::string sizes;
  LineReader reader(whole, 8000);
  for (LinePiece piece; reader.next(&piece);) {
    joined += piece.raw;
    sizes += std::to_string(piece.raw.size()) + "/" + std::to_string(piece.text.size()) + " ";
  }
  EXPECT_EQ(joined, whole);
  EXPECT_EQ(sizes, "1/1 1/1 4/1 7999/7999 7999/7999 1/1 7999/7999 2/2 3/3 ");
  LinePiece none;
  EXPECT_FALSE(LineReader("", 8000).next(&none));
  EXPECT_EQ(trimGraphic(" \t\xff! \xff b\x7f\r\n"), "! \xff b");
  EXPECT_EQ(trimGraphic("\n\x80"), "");
  EXPECT_EQ(maskNonAscii("a\x7f\x80\xff\tb"), "a\x7f??\tb");
}

std::string shown(const KeyValueTable& table) {
  std::string text;
  for (std::size_t i = 0; i < table.keys().size(); ++i) {
    text += table.keys()[i] + ":" + table.values()[i] + " ";
    EXPECT_EQ(table.find(table.keys()[i]), static_cast<int>(i));
  }
  return text;
}

TEST(KeyValueFile, Rules) {
  const TempDirectory temp;
  KeyValueTable table;
  table.parse("old=1", '=', {});
  const std::string longest(1018, 'x');
  const std::string file =
      temp.write("file",
                 "none\n=v\n \xff=v\n k\t = v w \xff\r\nb=c=d\nz\0=1\nA=1\0x\na=#2\nb=3\nc=\n"s
                 "long=" +
                     longest + "b=4\nlast=5");
  ASSERT_TRUE(readKeyValueFile(file, '=', {}, &table));
  EXPECT_EQ(shown(table), "k:v w b:4 A:1 a:#2 c: long:" + longest + " last:5 ");
  EXPECT_EQ(table.find("old"), -1);
  ASSERT_TRUE(readKeyValueFile(temp.write("file", "a=1#2#3\nb#=1#2\nc=1"), '=', '#', &table));
  EXPECT_EQ(shown(table), "a:1 b#:1#2 c:1 ");
  EXPECT_FALSE(readKeyValueFile("", '=', {}, &table));
}

}  // namespace
}  // namespace tunadm
