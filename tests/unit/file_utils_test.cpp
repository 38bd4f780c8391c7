#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "fundkit/FileUtils.h"
#include "fundkit/KeyValueFile.h"
#include "fundkit/LockFile.h"
#include "fundkit/RemoveTree.h"
#include "fundkit/WorkDirectories.h"
#include "fundkit/WorkFile.h"
#include "tests/support/TempDirectory.h"

namespace tunadm {
namespace {

using namespace std::string_literals;

constexpr uid_t kStranger = 65534;

pid_t startChild(const std::function<int()>& body) {
  const pid_t child = fork();
  if (child == 0) _exit(body());
  return child;
}

// The exit code of the child, or -1 when a signal ended it.
int exitOf(pid_t child) {
  int status = 0;
  (void)waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(FileUtils, Copy) {
  const TempDirectory temp;
  for (const unsigned size : {0U, 4096U, 70000U}) {
    const std::string content(size, '\0');
    ASSERT_TRUE(changeMode(temp.write("to", "longer than nothing"), 0600).ok());
    EXPECT_TRUE(copyFile(temp.write("from", content), temp.at("to")).ok());
    EXPECT_EQ(temp.read("to"), content);
    EXPECT_EQ(temp.mode("to"), 0644U);
  }
  EXPECT_EQ(copyFile(temp.at("to"), temp.at("to")).code(), kInvalidArgument);
  EXPECT_EQ(copyFile(temp.at("none"), temp.at("to")).code(), kInvalidArgument);
  EXPECT_EQ(copyFile(temp.at("from"), temp.at("no/to")).details(), temp.at("no/to"));
  EXPECT_EQ(temp.read("to").size(), 70000U);
}

TEST(FileUtils, Move) {
  const TempDirectory temp;
  const std::string from = temp.write("from", "1");
  const std::string to = temp.write("to", "2");
  EXPECT_EQ(moveFile(from, to, Overwrite::kNo).code(), kRenameFailed);
  EXPECT_EQ(temp.read("from") + temp.read("to"), "12");
  EXPECT_TRUE(moveFile(from, to, Overwrite::kYes).ok());
  EXPECT_EQ(temp.read("from") + temp.read("to"), "<none>1");
  const int result = exitOf(startChild([&] {  // across file systems
    if (unshare(CLONE_NEWNS) || mount("", "/", nullptr, MS_REC | MS_PRIVATE, nullptr)) return 77;
    if (mount("", temp.directory("fs").c_str(), "tmpfs", 0, nullptr) != 0) return 77;
    if (!moveFile(to, temp.at("fs/to"), Overwrite::kNo).ok()) return 1;
    return temp.read("to") + temp.read("fs/to") == "<none>1" ? 0 : 2;
  }));
  if (result == 77) GTEST_SKIP() << "no private mounts here";
  EXPECT_EQ(result, 0);
}

TEST(FileUtils, MakeAndRemove) {
  const TempDirectory temp;
  const std::string dir = temp.at("dir");
  EXPECT_TRUE(makeNewDirectory(dir, 0700).ok() && makeDirectory(dir, 0755).ok());
  EXPECT_FALSE(makeNewDirectory(dir, 0755).ok() || removeFile(dir).ok());
  EXPECT_EQ(temp.mode("dir"), 0700U);
  EXPECT_EQ(removeEntry(temp.path()).code(), kRmdirFailed);
  EXPECT_TRUE(removeEntry(dir).ok() && removeFile(dir).ok() && !pathExists(dir));
}

TEST(FileUtils, WriteLinesAndFullDisk) {
  const TempDirectory temp;
  const std::string kept = temp.write("kept", "longer than the new content");
  EXPECT_TRUE(writeLines(kept, {"a", "", "b\0c"s}).ok());
  const std::string much(10000, 'x');
  const pid_t child = startChild([&] {
    const rlimit limit{4096, 4096};
    if (signal(SIGXFSZ, SIG_IGN) == SIG_ERR || setrlimit(RLIMIT_FSIZE, &limit) != 0) return 1;
    if (writeLines(temp.at("to"), {much}).code() != kWriteFailed) return 2;
    if (copyFile("/proc/self/exe", temp.at("to")).code() != kWriteFailed) return 3;
    WorkFile work(kept);
    work.put(much);
    return work.commit().code() == kWriteFailed ? 0 : 4;
  });
  EXPECT_EQ(exitOf(child), 0);
  EXPECT_EQ(temp.read("kept") + temp.read("kept.temp"), "a\n\nb\n<none>");
}

// A test that hangs here waits for the other end of the FIFO.
TEST(FileUtils, ReadingAndWhatIsNotReadable) {
  const TempDirectory temp;
  const std::string mebi(1048576, 'x');
  const std::pair<std::string, std::string> cases[] = {
      {"", ""}, {"\nab", ""}, {"a\0b\n"s, "a"}, {"\xff \t\r\nx\n", "\xff \t\r"}, {mebi, mebi}};
  std::string text;
  for (const auto& [content, line] : cases) {
    EXPECT_TRUE(readFirstLine(temp.write("file", content), &text).ok() && text == line);
    EXPECT_TRUE(readFile(temp.at("file"), &text).ok() && text == content);
  }
  EXPECT_EQ(readFirstLine(temp.write("file", mebi + "x\n"), &text).code(), kReadFailed);
  ASSERT_EQ(mkfifo(temp.at("fifo").c_str(), 0600), 0);
  for (const std::string& path : {temp.at("none"), temp.at("fifo"), temp.path(), ""s}) {
    text = "before";
    EXPECT_TRUE(!readFile(path, &text).ok() && text.empty()) << path;
  }
  EXPECT_EQ(writeLines(temp.at("fifo"), {"x"}).code(), kOpenFailed);
}

TEST(RemoveTree, RemovesAllAndFollowsNothing) {
  const TempDirectory temp, outside;
  outside.write("keep", "kept");
  for (Status (*operation)(const std::string&) : {removeTree, emptyDirectory}) {
    temp.directory("tree/sub");
    temp.write("tree/sub/file", "x");
    temp.link(outside.path(), "tree/sub/link");
    EXPECT_TRUE(operation(temp.at("tree/")).ok());
    EXPECT_EQ(isRealDirectory(temp.at("tree")), operation == emptyDirectory);
    EXPECT_TRUE(operation(temp.at("none")).ok());
    EXPECT_EQ(operation("").code(), kInvalidArgument);
  }
  EXPECT_TRUE(removeEmptyDirectory(temp.at("tree")).ok());
  temp.link(outside.path(), "link");
  EXPECT_EQ(emptyDirectory(temp.at("link/")).code(), kOpendirFailed);
  EXPECT_TRUE(removeTree(temp.at("link/")).ok() && temp.mode("link") == 0);

  // A directory that another process exchanges for a link while it is being removed.
  const std::string entry = temp.at("tree/entry");
  const std::string spare = temp.at("spare");
  const pid_t child = startChild([&] {
    for (;;) (void)renameat2(-1, entry.c_str(), -1, spare.c_str(), RENAME_EXCHANGE);
    return 0;
  });
  for (int round = 0; round < 1000; ++round) {
    (void)makeDirectory(temp.at("tree"), 0755);
    (void)makeDirectory(entry, 0755);
    (void)removeTree(spare);
    // The child may have come in between; then this round is lost.
    if (symlink(outside.path().c_str(), spare.c_str()) == 0) (void)removeTree(temp.at("tree"));
  }
  ASSERT_EQ(kill(child, SIGKILL), 0);
  EXPECT_EQ(exitOf(child), -1);
  EXPECT_EQ(outside.read("keep"), "kept");
}

TEST(LockFile, NeverTwoHolders) {
  const TempDirectory temp;
  const std::string directory = temp.path() + "/";
  {
    const LockFile lock(directory, "some/dir\\n", Blocking::kNo);
    EXPECT_EQ(LockFile(directory, "n", Blocking::kNo).state(), LockState::kBusy);
    EXPECT_TRUE(lock.held() && temp.mode("n.lock") == 0666);
  }
  EXPECT_FALSE(pathExists(temp.at("n.lock")));
  const auto work = [&] {
    for (int round = 0; round < 400; ++round) {
      const LockFile lock(directory, "n", Blocking::kYes);
      if (!lock.held() || mkdir(temp.at("mark").c_str(), 0700) != 0) return 1;
      (void)sched_yield();
      if (rmdir(temp.at("mark").c_str()) != 0) return 2;
    }
    return 0;
  };
  pid_t children[6] = {};
  for (pid_t& child : children) child = startChild(work);
  for (const pid_t child : children) EXPECT_EQ(exitOf(child), 0);
}

TEST(LockFile, DirectoriesAndFilesThatAreNotTrusted) {
  EXPECT_EQ(directoryFromEnvironment("/a", "/tmp/"), "/a/");
  EXPECT_EQ(directoryFromEnvironment("", "/tmp/"), "/tmp/");
  const TempDirectory temp;
  temp.directory("dir");
  temp.link(temp.at("victim"), "dir/link.lock");
  ASSERT_EQ(mkfifo(temp.at("dir/fifo.lock").c_str(), 0666), 0);
  EXPECT_TRUE(LockFile(temp.link("dir", "own") + "/", "n", Blocking::kYes).held());
  if (geteuid() == 0) {  // For anyone else these two are merely missing.
    ASSERT_EQ(lchown(temp.link("dir", "other").c_str(), kStranger, 0), 0);
    ASSERT_EQ(chown(temp.directory("theirs").c_str(), kStranger, 0), 0);
  }
  const std::pair<const char*, const char*> refused[] = {
      {"dir/", ""}, {"dir/", "link"}, {"dir/", "fifo"}, {"other/", "n"}, {"theirs/", "n"}};
  for (const auto& [dir, name] : refused) {
    const LockFile lock(temp.at(dir), name, Blocking::kYes);
    EXPECT_EQ(lock.state(), LockState::kUnavailable) << dir << name;
  }
  EXPECT_FALSE(pathExists(temp.at("victim")));
}

TEST(WorkFile, CommitAndAbandon) {
  const TempDirectory temp;
  const std::string file = temp.write("file", "old");
  const uid_t owner = geteuid() == 0 ? kStranger : geteuid();
  ASSERT_EQ(chown(file.c_str(), owner, getegid()), 0);
  ASSERT_TRUE(changeMode(file, 0606).ok());
  temp.link(temp.write("victim", "kept"), "file.temp");
  {
    WorkFile work(file);
    work.put("abandoned");
    EXPECT_EQ(temp.mode("file.temp"), 0600U);
  }
  EXPECT_EQ(temp.read("file") + temp.read("file.temp") + temp.read("victim"), "old<none>kept");
  temp.write("file.temp", "left over by an earlier run");
  WorkFile work(file);
  work.put("new\0"s);
  EXPECT_TRUE(work.commit().ok());
  EXPECT_EQ(temp.read("file") + temp.read("file.temp"), "new\0<none>"s);
  EXPECT_EQ(temp.mode("file"), 0606U);
  struct stat found {};
  EXPECT_TRUE(stat(file.c_str(), &found) == 0 && found.st_uid == owner);

  EXPECT_EQ(WorkFile(temp.directory("in-place")).commit().code(), kRenameFailed);
  EXPECT_FALSE(pathExists(temp.at("in-place.temp")));
  temp.directory("file.temp");
  EXPECT_EQ(WorkFile(file).commit().code(), kOpenFailed);
  EXPECT_EQ(temp.read("file"), "new\0"s);
}

TEST(KeyValueFile, Rules) {
  const TempDirectory temp;
  const std::string x1018(1018, 'x');
  const std::pair<std::string, std::string> cases[] = {
      {"none\n=v\n \xff=v\n k\t = v w \xff\r\nz\0=1\nA=1\0x\nc="s, "k:v w A:1 c: "},
      {"a=1\nb=c=d\nA=0\na=2\nb=3\n", "a:2 b:3 A:0 "},
      {"long=" + x1018 + "b=4\nlast=5", "long:" + x1018 + " b:4 last:5 "},
      {"a=1#2#3\nb#=1#2\nc=1", "a:1 b#:1#2 c:1 "}};
  KeyValueTable table;
  for (const auto& [content, expected] : cases) {
    ASSERT_TRUE(readKeyValueFile(temp.write("file", content), '=', '#', &table));
    std::string shown;
    for (const std::string& key : table.keys()) {
      shown += key + ":" + table.values()[static_cast<unsigned>(table.find(key))] + " ";
    }
    EXPECT_EQ(shown, expected);
  }
}

}  // namespace
}  // namespace tunadm
