#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
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
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

using namespace std::string_literals;

TEST(FileUtils, Copy) {
  TestHost host;
  for (const unsigned size : {0U, 4096U, 70000U}) {
    const std::string content(size, '\0');
    host.file("/tmp/to", "longer than nothing", 0600).file("/tmp/from", content);
    EXPECT_TRUE(copyFile("/tmp/from", "/tmp/to").ok());
    EXPECT_EQ(host.read("/tmp/to"), content);
    EXPECT_EQ(host.mode("/tmp/to"), 0644U);
  }
  EXPECT_EQ(copyFile("/tmp/to", "/tmp/to").code(), kInvalidArgument);
  EXPECT_EQ(copyFile("/tmp/none", "/tmp/to").code(), kInvalidArgument);
  EXPECT_EQ(copyFile("/tmp/from", "/tmp/no/to").details(), "/tmp/no/to");
  EXPECT_EQ(host.read("/tmp/to").size(), 70000U);
}

TEST(FileUtils, Move) {
  TestHost host;
  host.file("/tmp/from", "1").file("/tmp/to", "2").file("/tmp/fs/x", "");
  EXPECT_EQ(moveFile("/tmp/from", "/tmp/to", Overwrite::kNo).code(), kRenameFailed);
  EXPECT_EQ(host.read("/tmp/from") + host.read("/tmp/to"), "12");
  EXPECT_TRUE(moveFile("/tmp/from", "/tmp/to", Overwrite::kYes).ok());
  ASSERT_EQ(mount("none", "/tmp/fs", "tmpfs", 0, nullptr), 0);
  EXPECT_TRUE(moveFile("/tmp/to", "/tmp/fs/to", Overwrite::kNo).ok());
  EXPECT_EQ(host.read("/tmp/fs/to"), "1");
  EXPECT_FALSE(host.exists("/tmp/from") || host.exists("/tmp/to"));
  EXPECT_EQ(umount("/tmp/fs"), 0);
}

// A test that hangs here waits for the other end of the FIFO.
TEST(FileUtils, LinesAndWhatIsNotReadable) {
  TestHost host;
  host.file("/tmp/kept", "longer than that");
  EXPECT_TRUE(writeLines("/tmp/kept", {"a", "", "b\0c"s}).ok());
  EXPECT_EQ(host.read("/tmp/kept"), "a\n\nb\n");
  std::string text;
  const std::string mebi(1048576, 'x');
  host.file("/tmp/mebi", mebi).file("/tmp/more", mebi + "x\n");
  EXPECT_TRUE(readFirstLine("/tmp/mebi", &text) == LineRead::kRead && text == mebi);
  EXPECT_EQ(readFirstLine("/tmp/more", &text), LineRead::kError);
  ASSERT_EQ(mkfifo("/tmp/fifo", 0600), 0);
  for (const char* path : {"/tmp/none", "/tmp/fifo", "/tmp", ""}) {
    text = "before";
    EXPECT_TRUE(!readFile(path, &text).ok() && text.empty()) << path;
  }
  EXPECT_EQ(writeLines("/tmp/fifo", {"x"}).code(), kOpenFailed);
}

TEST(RemoveTree, RemovesAllAndFollowsNothing) {
  TestHost host;
  host.file("/tmp/outside/keep", "kept").link("/tmp/outside", "/tmp/link");
  for (const bool whole : {true, false}) {
    const auto remove = [whole](const char* path) {
      return whole ? removeTree(path) : emptyDirectory(path);
    };
    host.file("/tmp/tree/sub/file", "x").link("/tmp/outside", "/tmp/tree/sub/link");
    EXPECT_TRUE(remove("/tmp/tree/").ok());
    EXPECT_EQ(isRealDirectory("/tmp/tree"), !whole);
    EXPECT_TRUE(remove("/tmp/none").ok());
    EXPECT_EQ(remove("").code(), kInvalidArgument);
  }
  EXPECT_EQ(emptyDirectory("/tmp/link/").code(), kOpendirFailed);
  EXPECT_TRUE(removeTree("/tmp/link/").ok() && isMissing("/tmp/link"));

  // A directory that somebody exchanges for a link while it is being removed.
  std::atomic<bool> done{false};
  std::thread other([&] {
    while (!done) (void)renameat2(-1, "/tmp/tree/entry", -1, "/tmp/spare", RENAME_EXCHANGE);
  });
  for (int round = 0; round < 1000; ++round) {
    (void)makeDirectory("/tmp/tree", 0755);
    (void)makeDirectory("/tmp/tree/entry", 0755);
    (void)removeTree("/tmp/spare");
    // The other may have come in between; then this round is lost.
    if (symlink("/tmp/outside", "/tmp/spare") == 0) (void)removeTree("/tmp/tree");
  }
  done = true;
  other.join();
  EXPECT_EQ(host.read("/tmp/outside/keep"), "kept");
}

TEST(LockFile, NeverTwoHolders) {
  TestHost host;
  host.file("/tmp/dir/x", "").link("dir", "/tmp/link");
  {
    const LockFile lock("/tmp/link/", "some/dir\\n", Blocking::kNo);
    EXPECT_EQ(LockFile("/tmp/link/", "n", Blocking::kNo).state(), LockState::kBusy);
    EXPECT_TRUE(lock.held() && host.mode("/tmp/dir/n.lock") == 0666);
  }
  EXPECT_FALSE(host.exists("/tmp/dir/n.lock"));
  std::atomic<int> holders{0};
  std::vector<std::thread> threads(6);
  for (std::thread& thread : threads) {
    thread = std::thread([&] {
      for (int round = 0; round < 400; ++round) {
        const LockFile lock("/tmp/dir/", "n", Blocking::kYes);
        EXPECT_TRUE(lock.held() && ++holders == 1);
        (void)sched_yield();
        --holders;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(ReplaceFile, WorkFileAndAttributes) {
  TestHost host;
  host.file("/tmp/file", "old").file("/tmp/victim", "kept").link("victim", "/tmp/file.temp");
  // Without root on the machine there is nobody to give the file to.
  const uid_t owner = chown("/tmp/file", 65534, 0) == 0 ? 65534 : geteuid();
  ASSERT_TRUE(changeMode("/tmp/file", 0604).ok());
  EXPECT_TRUE(replaceFile("/tmp/file", "new\0"s).ok());
  EXPECT_EQ(host.read("/tmp/file"), "new\0"s);
  EXPECT_EQ(host.read("/tmp/victim"), "kept");
  EXPECT_FALSE(host.exists("/tmp/file.temp"));
  EXPECT_EQ(host.mode("/tmp/file"), 0604U);
  struct stat found {};
  EXPECT_TRUE(stat("/tmp/file", &found) == 0 && found.st_uid == owner);

  host.block("/tmp/in-place").block("/tmp/file.temp");
  EXPECT_EQ(replaceFile("/tmp/in-place", "").code(), kOpenFailed);
  EXPECT_FALSE(host.exists("/tmp/in-place.temp"));
  EXPECT_EQ(replaceFile("/tmp/file", "").code(), kOpenFailed);
  EXPECT_EQ(host.read("/tmp/file"), "new\0"s);
}

}  // namespace
}  // namespace tunadm
