#include <gtest/gtest.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "fundkit/FileUtils.h"
#include "fundkit/LockFile.h"
#include "fundkit/RemoveTree.h"
#include "fundkit/WorkFile.h"
#include "tests/support/TempDirectory.h"

namespace tunadm {
namespace {

using namespace std::string_literals;

constexpr uid_t kStranger = 65534;

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
}

// A test that hangs here waits for the other end of the FIFO.
TEST(FileUtils, LinesAndWhatIsNotReadable) {
  const TempDirectory temp;
  EXPECT_TRUE(writeLines(temp.write("kept", "longer than that"), {"a", "", "b\0c"s}).ok());
  EXPECT_EQ(temp.read("kept"), "a\n\nb\n");
  std::string text;
  const std::string mebi(1048576, 'x');
  EXPECT_TRUE(readFirstLine(temp.write("file", mebi), &text).ok() && text == mebi);
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

  // A directory that somebody exchanges for a link while it is being removed.
  std::atomic<bool> done{false};
  std::thread other([&] {
    const std::string entry = temp.at("tree/entry");
    while (!done) (void)renameat2(-1, entry.c_str(), -1, temp.at("spare").c_str(), RENAME_EXCHANGE);
  });
  for (int round = 0; round < 1000; ++round) {
    (void)makeDirectory(temp.at("tree"), 0755);
    (void)makeDirectory(temp.at("tree/entry"), 0755);
    (void)removeTree(temp.at("spare"));
    // The other may have come in between; then this round is lost.
    if (symlink(outside.path().c_str(), temp.at("spare").c_str()) == 0)
      (void)removeTree(temp.at("tree"));
  }
  done = true;
  other.join();
  EXPECT_EQ(outside.read("keep"), "kept");
}

TEST(LockFile, NeverTwoHolders) {
  const TempDirectory temp;
  temp.directory("dir");
  const std::string directory = temp.link("dir", "link") + "/";
  {
    const LockFile lock(directory, "some/dir\\n", Blocking::kNo);
    EXPECT_EQ(LockFile(directory, "n", Blocking::kNo).state(), LockState::kBusy);
    EXPECT_TRUE(lock.held() && temp.mode("dir/n.lock") == 0666);
  }
  EXPECT_FALSE(pathExists(temp.at("dir/n.lock")));
  std::atomic<int> holders{0};
  std::vector<std::thread> threads(6);
  for (std::thread& thread : threads) {
    thread = std::thread([&] {
      for (int round = 0; round < 400; ++round) {
        const LockFile lock(directory, "n", Blocking::kYes);
        EXPECT_TRUE(lock.held() && ++holders == 1);
        (void)sched_yield();
        --holders;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
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

}  // namespace
}  // namespace tunadm
