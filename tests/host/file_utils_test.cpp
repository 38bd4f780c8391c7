#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <optional>
#include <regex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "fundkit/DirectoryListing.h"
#include "fundkit/FileUtils.h"
#include "fundkit/LockFile.h"
#include "fundkit/ProgramDirectories.h"
#include "fundkit/RemoveTree.h"
#include "fundkit/UniqueFile.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

using namespace std::string_literals;

// The umask for the scope.
struct Umask {
  explicit Umask(mode_t mask) : before(umask(mask)) {}
  ~Umask() { (void)umask(before); }
  mode_t before;
};

// A file system for the scope, of few bytes.
struct SmallDisk {
  explicit SmallDisk(const char* where) : path(where) {
    EXPECT_TRUE(makeDirectory(path, 0755).ok());
    EXPECT_EQ(mount("none", path, "tmpfs", 0, "size=64k"), 0);
  }
  ~SmallDisk() { EXPECT_EQ(umount(path), 0); }
  const char* path;
};

ino_t inodeOf(const char* path) {
  struct stat found {};
  EXPECT_EQ(lstat(path, &found), 0) << path;
  return found.st_ino;
}

std::string attributeOf(const char* path, const char* name) {
  char value[200];
  const ssize_t size = getxattr(path, name, value, sizeof(value));
  return size < 0 ? "none" : std::string(value, static_cast<std::size_t>(size));
}

// Runs one of the tests named DISABLED_... of this file as a program of its own.
Outcome runSelf(const TestHost& host, std::vector<std::string> words, const std::string& test) {
  char self[4096];
  const ssize_t length = readlink("/proc/self/exe", self, sizeof(self));
  words.emplace_back(self, static_cast<std::size_t>(length));
  words.push_back("--gtest_also_run_disabled_tests");
  words.push_back("--gtest_filter=Child.DISABLED_" + test);
  return host.runWords(words);
}

TEST(FileUtils, Copy) {
  TestHost host;
  for (const unsigned size : {0U, 4096U, 70000U}) {
    const std::string content(size, '\0');
    host.file("/tmp/to", "longer than nothing", 0600).file("/tmp/from", content);
    EXPECT_TRUE(copyFile("/tmp/from", "/tmp/to").ok());
    EXPECT_EQ(host.read("/tmp/to"), content);
    EXPECT_EQ(host.mode("/tmp/to"), 0644U);
  }
  EXPECT_TRUE(copyFile("/tmp/from", "/dev/null").ok());
  const struct {
    const char* from;
    const char* to;
    StatusCode code;
    const char* details;
  } failures[] = {{"/tmp/to", "/tmp/to", kInvalidArgument, "/tmp/to"},
                  {"/tmp/none", "/tmp/to", kInvalidArgument, "/tmp/none"},
                  {"", "/tmp/to", kInvalidArgument, ""},
                  {"/tmp/from", "", kInvalidArgument, ""},
                  {"/tmp", "/tmp/to", kReadFailed, "/tmp"},
                  {"/tmp/from", "/tmp/no/to", kOpenFailed, "/tmp/no/to"},
                  {"/tmp/from", "/dev/full", kWriteFailed, "/dev/full"}};
  for (const auto& c : failures) {
    const Status status = copyFile(c.from, c.to);
    EXPECT_EQ(status.code(), c.code) << c.to;
    EXPECT_EQ(status.details(), c.details);
    EXPECT_EQ(status.context(), "copyFile");
  }
  EXPECT_EQ(host.read("/tmp/to").size(), 70000U);
}

int leased = -1;

// The destination is under a lease, whose holder cuts the source when it is told to let go.
TEST(FileUtils, CopyOfAShrinkingSourceToALeasedFile) {
  TestHost host;
  host.file("/tmp/from", std::string(9000, 'x')).file("/tmp/to", "");
  leased = open("/tmp/to", O_RDWR | O_CLOEXEC);
  (void)std::signal(SIGIO, [](int) {
    (void)!truncate("/tmp/from", 5000);
    (void)fcntl(leased, F_SETLEASE, F_UNLCK);
  });
  ASSERT_EQ(fcntl(leased, F_SETLEASE, F_WRLCK), 0);
  const Status status = copyFile("/tmp/from", "/tmp/to");
  EXPECT_EQ(status.code(), kReadFailed);
  EXPECT_EQ(status.details(), "/tmp/from");
  (void)close(leased);
  (void)std::signal(SIGIO, SIG_DFL);
}

TEST(FileUtils, Move) {
  TestHost host;
  host.file("/tmp/from", "1").file("/tmp/to", "2").link("/none", "/tmp/dead");
  EXPECT_EQ(moveFile("/tmp/from", "/tmp/to", Overwrite::kNo).code(), kRenameFailed);
  EXPECT_EQ(moveFile("/tmp/from", "/tmp/dead", Overwrite::kNo).code(), kRenameFailed);
  EXPECT_EQ(moveFile("/tmp/from", "", Overwrite::kYes).code(), kInvalidArgument);
  EXPECT_EQ(host.read("/tmp/from") + host.read("/tmp/to"), "12");
  EXPECT_TRUE(moveFile("/tmp/from", "/tmp/to", Overwrite::kYes).ok());
  EXPECT_EQ(moveFile("/tmp/from", "/tmp/to", Overwrite::kYes).code(), kRenameFailed);
  const SmallDisk disk("/tmp/fs");
  EXPECT_TRUE(moveFile("/tmp/to", "/tmp/fs/to", Overwrite::kNo).ok());
  EXPECT_EQ(host.read("/tmp/fs/to"), "1");
  EXPECT_FALSE(host.exists("/tmp/from"));
  EXPECT_FALSE(host.exists("/tmp/to"));
  host.file("/tmp/dir/x", "").file("/tmp/file", "kept").file("/tmp/fs/file", "kept");
  for (const char* file : {"/tmp/file", "/tmp/fs/file"}) {
    EXPECT_EQ(moveFile("/tmp/dir", file, Overwrite::kYes).code(), kRenameFailed);
    EXPECT_EQ(host.read(file), "kept");
  }
  EXPECT_TRUE(host.exists("/tmp/dir/x"));
}

TEST(FileUtils, EntriesAndModes) {
  TestHost host;
  const Umask mask(027);
  EXPECT_TRUE(makeNewDirectory("/tmp/dir", 0777).ok());
  EXPECT_EQ(host.mode("/tmp/dir"), 0750U);
  EXPECT_TRUE(makeDirectory("/tmp/dir", 0700).ok());
  EXPECT_EQ(makeNewDirectory("/tmp/dir", 0700).code(), kMkdirFailed);
  EXPECT_EQ(makeDirectory("/tmp/no/dir", 0700).code(), kMkdirFailed);
  host.file("/tmp/dir/file", "");
  EXPECT_TRUE(changeMode("/tmp/dir/file", 0604).ok());
  EXPECT_EQ(host.mode("/tmp/dir/file"), 0604U);
  EXPECT_EQ(changeMode("/tmp/none", 0604).code(), kChmodFailed);
  const SmallDisk disk("/tmp/fs");
  host.file("/tmp/fs/file", "", 0604);
  ASSERT_EQ(mount("none", disk.path, "", MS_REMOUNT | MS_RDONLY, nullptr), 0);
  EXPECT_TRUE(changeMode("/tmp/fs/file", 0604).ok());  // chmod itself is refused
  EXPECT_EQ(changeMode("/tmp/fs/file", 0644).code(), kChmodFailed);
  EXPECT_EQ(removeFile("/tmp/dir").code(), kUnlinkFailed);
  EXPECT_EQ(removeEmptyDirectory("/tmp/dir").code(), kRmdirFailed);
  EXPECT_EQ(removeEntry("/tmp/dir").code(), kRmdirFailed);
  for (int round = 0; round < 2; ++round) {  // the second time nothing is there
    EXPECT_TRUE(removeEntry("/tmp/dir/file").ok());
    EXPECT_TRUE(removeEntry("/tmp/dir").ok());
    EXPECT_TRUE(removeFile("/tmp/dir").ok());
    EXPECT_TRUE(removeEmptyDirectory("/tmp/dir").ok());
    EXPECT_TRUE(isMissing("/tmp/dir"));
  }
  for (const Status& empty :
       {removeFile(""), removeEmptyDirectory(""), removeEntry(""), makeDirectory("", 0),
        makeNewDirectory("", 0), changeMode("", 0), replaceFile("", ""), overwriteFile("", ""),
        writeLines("", {}), flushTree(""), flushDirectory("")})
    EXPECT_EQ(empty.code(), kInvalidArgument);
}

// A test that hangs here waits for the other end of the FIFO.
TEST(FileUtils, LinesAndWhatIsNotReadable) {
  TestHost host;
  host.file("/tmp/kept", "longer than that", 0600);
  EXPECT_TRUE(writeLines("/tmp/kept", {"a", "", "b\0c"s}).ok());
  EXPECT_EQ(host.read("/tmp/kept"), "a\n\nb\n");
  EXPECT_EQ(host.mode("/tmp/kept"), 0640U);
  EXPECT_TRUE(overwriteFile("/tmp/kept", "x").ok());
  EXPECT_EQ(host.read("/tmp/kept"), "x");
  ASSERT_EQ(mkfifo("/tmp/fifo", 0600), 0);
  std::string text;
  host.file("/tmp/huge", "");
  EXPECT_EQ(truncate("/tmp/huge", (64 << 20) + 1), 0);
  for (const char* path : {"/tmp/none", "/tmp/fifo", "/tmp", "", "/tmp/huge"}) {
    text = "before";
    EXPECT_FALSE(readFile(path, &text).ok()) << path;
    EXPECT_EQ(text, "");
  }
  EXPECT_EQ(writeLines("/tmp/fifo", {"x"}).code(), kOpenFailed);
}

TEST(FileUtils, FirstLine) {
  TestHost host;
  const std::string mebi(1048576, 'x');
  host.file("/tmp/mebi", mebi).file("/tmp/more", mebi + "x\n").file("/tmp/empty", "");
  host.file("/tmp/nul", "a\0b\n"s).file("/tmp/line", "b\r\nc").file("/tmp/chunk", mebi + "\nx");
  host.link("/none", "/tmp/dead").link("loop", "/tmp/loop").link("line", "/tmp/link");
  ASSERT_EQ(mkfifo("/tmp/fifo", 0600), 0);
  const struct {
    const char* path;
    LineRead result;
    std::string line;
  } cases[] = {{"mebi", LineRead::kRead, mebi},    {"chunk", LineRead::kRead, mebi},
               {"empty", LineRead::kRead, ""},     {"nul", LineRead::kRead, "a"},
               {"link", LineRead::kRead, "b\r"},   {"none", LineRead::kNothing, ""},
               {"fifo", LineRead::kNothing, ""},   {".", LineRead::kNothing, ""},
               {"dead", LineRead::kNothing, ""},   {"loop", LineRead::kNothing, ""},
               {"line/x", LineRead::kNothing, ""}, {"", LineRead::kNothing, ""},
               {"more", LineRead::kError, ""},     {"/dev/zero", LineRead::kNothing, ""}};
  const int directory = open("/tmp", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  for (const auto& c : cases) {
    std::string line = "before";
    EXPECT_EQ(readFirstLine(directory, c.path, &line), c.result) << c.path;
    EXPECT_TRUE(line == c.line) << c.path;
  }
  std::string line = "before";
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit none{0, limit.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  EXPECT_EQ(readFirstLine("/tmp/line", &line), LineRead::kError);
  EXPECT_EQ(errno, EMFILE);
  EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  (void)close(directory);
}

TEST(DirectoryListing, KindsOfEntries) {
  TestHost host;
  host.file("/tmp/d/dir/x", "").file("/tmp/d/file", "").link("/tmp", "/tmp/d/to-dir");
  host.link("tmp/d/file", "/tmp/d/from-here").link("file", "/tmp/d/from-there");
  host.link("/dev/null", "/tmp/d/to-device");
  const DirectoryListing listing = listDirectory("/tmp/d");
  using Names = std::vector<std::string>;
  EXPECT_TRUE(listing.status.ok());
  EXPECT_EQ(listing.subdirectories, Names{"dir"});
  EXPECT_EQ(listing.files, Names{"file"});
  EXPECT_EQ(listing.file_links, Names{"from-here"});
  EXPECT_EQ(listing.directory_links, Names{"to-dir"});
  EXPECT_EQ(listing.others, Names{"to-device"});
  EXPECT_EQ(listDirectory("/tmp/d/file").status.code(), kOpendirFailed);
  EXPECT_EQ(listDirectory("").status.code(), kInvalidArgument);
}

TEST(ReplaceFile, ModesUnderUmasks) {
  const struct {
    mode_t umask;
    mode_t old;  // 0: there is none
    std::optional<mode_t> given;
    mode_t after;
  } cases[] = {{0, 0, {}, 0644},     {022, 0, {}, 0644},      {077, 0, {}, 0600},
               {0, 0606, {}, 0606},  {022, 0666, {}, 0644},   {077, 0777, {}, 0700},
               {077, 0, 0666, 0666}, {077, 0600, 0640, 0640}, {0, 0666, 0640, 0640}};
  for (const auto& c : cases) {
    TestHost host;
    if (c.old != 0) host.file("/tmp/file", "old", c.old);
    const Umask mask(c.umask);
    EXPECT_TRUE(replaceFile("/tmp/file", "new", c.given).ok());
    EXPECT_EQ(host.read("/tmp/file"), "new");
    EXPECT_EQ(host.mode("/tmp/file"), c.after) << c.umask << " " << c.old;
    EXPECT_TRUE(isMissing("/tmp/file.temp"));
  }
}

// The binary form of an access list: user::rw- user:65534:r-- group::--- mask::r-- other::---
const std::string kAccessList =
    "\2\0\0\0\1\0\6\0\xff\xff\xff\xff\2\0\4\0\xfe\xff\0\0\4\0\0\0\xff\xff\xff\xff"
    "\20\0\4\0\xff\xff\xff\xff\40\0\0\0\xff\xff\xff\xff"s;

TEST(ReplaceFile, KeepsOwnersAndAttributes) {
  TestHost host;
  host.file("/tmp/file", "old", 0640);
  // Without root on the machine there is nobody to give the file to.
  const bool root = chown("/tmp/file", 65534, 65534) == 0;
  const bool listed = root && setxattr("/tmp/file", "system.posix_acl_access", kAccessList.data(),
                                       kAccessList.size(), 0) == 0;
  const bool attributed = setxattr("/tmp/file", "user.color", "red", 3, 0) == 0;
  for (const bool rewritten : {false, true}) {
    const Status changed =
        rewritten
            ? rewriteFile("/tmp/file", [](std::string_view old) { return std::string(old) + "er"; })
            : replaceFile("/tmp/file", "new");
    EXPECT_TRUE(changed.ok());
    EXPECT_EQ(host.mode("/tmp/file"), 0640U);
    EXPECT_EQ(attributeOf("/tmp/file", "user.color"), attributed ? "red" : "none");
    EXPECT_EQ(attributeOf("/tmp/file", "system.posix_acl_access"), listed ? kAccessList : "none");
    struct stat found {};
    EXPECT_EQ(stat("/tmp/file", &found), 0);
    EXPECT_EQ(found.st_uid, root ? 65534 : geteuid());
    EXPECT_EQ(found.st_gid, root ? 65534 : getegid());
  }
  EXPECT_EQ(host.read("/tmp/file"), "newer");
  // An access list that the directory gives to new files is not that of the old one.
  if (!listed ||
      setxattr("/tmp", "system.posix_acl_default", kAccessList.data(), kAccessList.size(), 0) != 0)
    return;
  (void)removexattr("/tmp/file", "system.posix_acl_access");
  EXPECT_TRUE(replaceFile("/tmp/file", "new").ok());
  EXPECT_EQ(attributeOf("/tmp/file", "system.posix_acl_access"), "none");
  EXPECT_EQ(removexattr("/tmp", "system.posix_acl_default"), 0);
}

TEST(ReplaceFile, WhatIsInItsPlace) {
  TestHost host;
  host.file("/tmp/private", "kept", 0600).link("private", "/tmp/link").link("loop", "/tmp/loop");
  host.file("/tmp/victim", "kept").link("victim", "/tmp/link.temp").link("none", "/tmp/dead");
  host.file("/tmp/dead.temp", "left by an earlier run").block("/tmp/dir").block("/tmp/x.temp");
  host.file("/tmp/x", "kept");
  ASSERT_EQ(mkfifo("/tmp/fifo", 0606), 0);
  for (const auto& [path, mode] : {std::pair{"/tmp/link", 0600U}, std::pair{"/tmp/loop", 0644U},
                                   std::pair{"/tmp/dead", 0644U}, std::pair{"/tmp/fifo", 0644U}}) {
    EXPECT_TRUE(replaceFile(path, "new").ok()) << path;
    EXPECT_TRUE(isRealFile(path)) << path;
    EXPECT_EQ(host.read(path), "new");
    EXPECT_EQ(host.mode(path), mode) << path;
  }
  for (const char* path : {"/tmp/dir", "/tmp/x", "/tmp/no/file"})
    EXPECT_EQ(replaceFile(path, "new").code(), kOpenFailed) << path;
  EXPECT_TRUE(isMissing("/tmp/dir.temp"));
  EXPECT_EQ(host.read("/tmp/private") + host.read("/tmp/victim") + host.read("/tmp/x"),
            "keptkeptkept");
}

TEST(ReplaceFile, Rewriting) {
  TestHost host;
  host.file("/tmp/private", "old", 0600).link("private", "/tmp/link").link("none", "/tmp/dead");
  std::string seen = "nothing";
  const auto change = [&seen](std::string_view old) {
    seen = old;
    return seen + "new";
  };
  EXPECT_TRUE(rewriteFile("/tmp/link", change).ok());
  EXPECT_EQ(seen, "old");
  EXPECT_TRUE(isRealFile("/tmp/link"));
  EXPECT_EQ(host.read("/tmp/link") + " " + host.read("/tmp/private"), "oldnew old");
  EXPECT_EQ(host.mode("/tmp/link"), 0600U);
  EXPECT_TRUE(rewriteFile("/tmp/missing", change).ok());
  EXPECT_EQ(seen, "");
  EXPECT_EQ(host.mode("/tmp/missing"), 0644U);
  seen = "not called";
  EXPECT_EQ(rewriteFile("/tmp", change).code(), kReadFailed);
  EXPECT_EQ(rewriteFile("/tmp/dead", change).code(), kOpenFailed);
  EXPECT_EQ(rewriteFile("/tmp/no/file", change).code(), kOpenFailed);
  EXPECT_EQ(rewriteFile("", change).code(), kInvalidArgument);
}

TEST(ReplaceFile, InPlaceWithoutRoom) {
  TestHost host;
  const SmallDisk disk("/tmp/fs");
  const std::string old(50000, 'o');
  host.file("/tmp/fs/file", old, 0604).file("/tmp/fs/filler", std::string(8192, 'f'));
  const ino_t inode = inodeOf("/tmp/fs/file");
  // Begins to overwrite the file, and finds no room for all of it.
  EXPECT_EQ(replaceFile("/tmp/fs/file", std::string(70000, 'n')).code(), kWriteFailed);
  EXPECT_TRUE(host.read("/tmp/fs/file") == old);
  for (const std::string& text : {std::string(50001, 'm'), "short"s}) {
    EXPECT_TRUE(replaceFile("/tmp/fs/file", text, 0640).ok());
    EXPECT_TRUE(host.read("/tmp/fs/file") == text) << text.size();
    EXPECT_EQ(host.mode("/tmp/fs/file"), 0640U);
    EXPECT_EQ(inodeOf("/tmp/fs/file") == inode, text.size() > 5) << text.size();
    EXPECT_TRUE(isMissing("/tmp/fs/file.temp"));
  }
  host.file("/tmp/fs/filler", std::string(60000, 'f'));
  EXPECT_EQ(replaceFile("/tmp/fs/new", old).code(), kWriteFailed);
  EXPECT_TRUE(isMissing("/tmp/fs/new"));
  EXPECT_TRUE(isMissing("/tmp/fs/new.temp"));
}

TEST(ReplaceFile, InPlaceWithoutTheDirectory) {
  TestHost host;
  host.file("/tmp/dir/file", "longer", 0622).file("/tmp/dir/victim", "kept", 0666);
  host.link("victim", "/tmp/dir/link").file("/tmp/dir/others", "kept", 0644);
  host.file("/tmp/dir/file.temp", "left by an earlier run");
  host.file("/tmp/open/file", "of root's group", 0664);
  EXPECT_TRUE(changeMode("/tmp/open", 0777).ok());
  const ino_t inode = inodeOf("/tmp/dir/file");
  // Without root on the machine there is no other user to become.
  if (setegid(65534) + seteuid(65534) != 0) GTEST_SKIP() << "no other user here";
  const Status results[] = {
      replaceFile("/tmp/dir/file", "new"),          replaceFile("/tmp/dir/file", "newer", 0622),
      replaceFile("/tmp/dir/file", "newest", 0644), replaceFile("/tmp/dir/link", "new", 0666),
      replaceFile("/tmp/dir/others", "new"),        replaceFile("/tmp/dir/missing", "new"),
      replaceFile("/tmp/open/file", "new")};
  ASSERT_EQ(seteuid(0) + setegid(0), 0);
  EXPECT_TRUE(results[0].ok());
  EXPECT_TRUE(results[1].ok());
  EXPECT_EQ(results[2].code(), kWriteFailed);  // not the owner
  for (int i = 3; i < 6; ++i) EXPECT_EQ(results[i].code(), kOpenFailed) << i;
  EXPECT_EQ(host.read("/tmp/dir/file"), "newer");
  EXPECT_EQ(host.read("/tmp/dir/victim") + host.read("/tmp/dir/others"), "keptkept");
  EXPECT_EQ(host.mode("/tmp/dir/file"), 0622U);
  EXPECT_TRUE(results[6].ok());
  EXPECT_EQ(host.mode("/tmp/open/file"), 0604U);
  EXPECT_EQ(inodeOf("/tmp/dir/file"), inode);
}

TEST(ReplaceFile, ManyStopAtTheFirstFailure) {
  TestHost host;
  host.file("/tmp/a", "old", 0600).block("/tmp/c").file("/tmp/d/x", "");
  EXPECT_TRUE(replaceFiles({}).ok());
  const std::vector<FileContent> good = {{"/tmp/a", "1", 0640}, {"/tmp/d/b", "2", 0666}};
  EXPECT_TRUE(replaceFiles(good).ok());
  EXPECT_EQ(host.read("/tmp/a") + host.read("/tmp/d/b"), "12");
  EXPECT_EQ(host.mode("/tmp/a"), 0640U);
  EXPECT_EQ(host.mode("/tmp/d/b"), 0666U);
  for (const char* path : {"/tmp/c", "/tmp/none/c", ""}) {
    const std::vector<FileContent> bad = {{"/tmp/a", "3", 0640}, {path, "4", 0666}};
    EXPECT_EQ(replaceFiles(bad).code(), *path == '\0' ? kInvalidArgument : kOpenFailed) << path;
    EXPECT_EQ(host.read("/tmp/a"), "1");
    EXPECT_TRUE(isMissing("/tmp/a.temp"));
  }
}

// Run by the next test, under strace.
TEST(Child, DISABLED_Replacements) {
  EXPECT_TRUE(replaceFile("/tmp/d/one", "x").ok());
  const FileContent two[] = {{"/tmp/d/two", "x", 0640}, {"/tmp/e/three", "x", 0640}};
  EXPECT_TRUE(replaceFiles(two).ok());
  const SmallDisk disk("/tmp/fs");
  EXPECT_TRUE(overwriteFile("/tmp/fs/four", std::string(61000, 'x')).ok());
  EXPECT_TRUE(replaceFile("/tmp/fs/four", std::string(61000, 'y')).ok());
  EXPECT_TRUE(flushTree("/tmp/d").ok());
  std::string text;
  EXPECT_EQ(readFirstLine("/tmp/e/line", &text), LineRead::kRead);
  EXPECT_NE(makeUniqueFile("/tmp/e/unique", &text), nullptr);
}

// What survives a power cut is what was flushed before it was moved, and whose directory was
// flushed afterwards.
TEST(ReplaceFile, FlushesBeforeAndAfterTheMove) {
  TestHost host;
  host.file("/tmp/d/sub/deep", "").file("/tmp/e/line", "line\n").link("/tmp/e", "/tmp/d/link");
  const Outcome child =
      runSelf(host, {"/usr/bin/strace", "-y", "-o", "/run/trace"}, "Replacements");
  if (child.err.find("ptrace") != std::string::npos) GTEST_SKIP() << "no tracing: " << child.err;
  ASSERT_EQ(child.exit, 0) << child.out;
  std::vector<std::string> flushes;
  std::string reads, created;
  std::ifstream trace("/run/trace");
  const std::regex flush("(fsync|syncfs|rename)\\((\\d+<|.*, \")([^>\"]*).*= 0");
  for (std::string line; std::getline(trace, line);) {
    std::smatch parts;
    if (std::regex_match(line, parts, flush)) flushes.push_back(parts.str(1) + " " + parts.str(3));
    if (line.find("/tmp/e/line") != line.npos) reads += line.substr(0, line.find('('));
    for (const char* name : {"/tmp/d/one.temp\"", "/tmp/e/unique."})
      if (line.find("O_CREAT") != line.npos && line.find(name) != line.npos) created += line;
  }
  ASSERT_EQ(flushes.size(), 14U);
  std::sort(flushes.begin() + 9, flushes.end() - 1);  // in the order of the directory's entries
  EXPECT_EQ(flushes, (std::vector<std::string>{
                         "fsync /tmp/d/one.temp", "rename /tmp/d/one", "fsync /tmp/d",  //
                         "syncfs /tmp/d", "rename /tmp/d/two", "rename /tmp/e/three",
                         "syncfs /tmp/d",                        //
                         "fsync /tmp/fs/four", "fsync /tmp/fs",  // in place
                         "fsync /tmp/d/one", "fsync /tmp/d/sub", "fsync /tmp/d/sub/deep",
                         "fsync /tmp/d/two", "fsync /tmp/d"}));
  EXPECT_EQ(reads, "openatreadclose");
  EXPECT_TRUE(std::regex_search(
      created, std::regex("WRONLY.*EXCL.*CLOEXEC, 0600.*RDWR.*EXCL.*CLOEXEC, 0644")))
      << created;
}

TEST(UniqueFile, NameModeAndAttempts) {
  TestHost host;
  std::string name;
  {
    const ScopedStream stream = makeUniqueFile("/tmp/unique", &name);
    ASSERT_NE(stream, nullptr);
    EXPECT_GE(std::fputs("text", stream.get()), 0);
    std::rewind(stream.get());
    EXPECT_EQ(std::fgetc(stream.get()), 't');
  }
  EXPECT_TRUE(std::regex_match(name, std::regex("/tmp/unique\\.[a-zA-Z0-9]{6}"))) << name;
  EXPECT_EQ(host.read(name), "text");
  EXPECT_EQ(host.mode(name), 0644U);
  name = "unchanged";
  for (const auto& [length, attempts] : {std::pair{4088U, 11}, std::pair{4089U, 0}}) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(makeUniqueFile(std::string(length, 'x'), &name), nullptr);
    std::string log;
    for (int i = 0; i < attempts; ++i)
      log +=
          "E~ fundkit FileUtils makeUniqueFile: failed to open file; error = No such file or "
          "directory\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), log);
  }
  EXPECT_EQ(makeUniqueFile("", &name), nullptr);
  EXPECT_EQ(name, "unchanged");
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
  EXPECT_TRUE(removeTree("/tmp/link/").ok());
  EXPECT_TRUE(isMissing("/tmp/link"));

  // A directory that is exchanged for a link again and again while it is being removed.
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

TEST(RemoveTree, LastEntry) {
  TestHost host;
  for (const char* name : {"a", "m", "z"}) {
    host.file("/tmp/tree/a", "").file("/tmp/tree/m", "").file("/tmp/tree/z", "");
    host.file("/tmp/tree/sub/"s + name, "");
    {
      const SmallDisk disk("/tmp/tree/busy");  // cannot be removed
      const Status refused = emptyDirectory("/tmp/tree", name);
      EXPECT_EQ(refused.code(), kRmdirFailed);
      EXPECT_EQ(refused.cause(), "rmdir /tmp/tree/busy: Device or resource busy");
      EXPECT_TRUE(host.exists("/tmp/tree/"s + name));
    }
    EXPECT_TRUE(emptyDirectory("/tmp/tree", name).ok());
    EXPECT_TRUE(removeEmptyDirectory("/tmp/tree").ok());
  }
}

// Makes a directory below the open one, with a file and again a directory below, and so on.
void makeDeepTree(int directory, int levels) {
  for (int level = 0; level < levels; ++level) {
    EXPECT_EQ(mkdirat(directory, "a", 0755) + mkdirat(directory, "b", 0755), 0);
    (void)close(openat(directory, "c", O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
    const int below = openat(directory, level % 2 == 0 ? "a" : "b", O_RDONLY | O_CLOEXEC);
    (void)close(directory);
    directory = below;
  }
  (void)close(directory);
}

TEST(RemoveTree, NeedsNeitherStackNorDescriptorsForTheDepth) {
  const TestHost host;
  ASSERT_TRUE(makeDirectory("/tmp/deep", 0755).ok());
  makeDeepTree(open("/tmp/deep", O_RDONLY | O_CLOEXEC), 4000);
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit few{64, limit.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
  pthread_attr_t small;
  pthread_t thread;
  (void)pthread_attr_init(&small);
  EXPECT_EQ(pthread_attr_setstacksize(&small, 256 * 1024), 0);
  const auto remove = [](void*) -> void* {
    EXPECT_TRUE(removeTree("/tmp/deep").ok());
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &small, remove, nullptr), 0);
  EXPECT_EQ(pthread_join(thread, nullptr), 0);
  EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  EXPECT_TRUE(isMissing("/tmp/deep"));
}

TEST(LockFile, NeverTwoHolders) {
  TestHost host;
  const Umask before(022);  // the threads' changes of it mix
  host.file("/tmp/dir/x", "").link("dir", "/tmp/link");
  {
    const LockFile lock("/tmp/link/", "some/dir\\n", Blocking::kNo);
    EXPECT_EQ(LockFile("/tmp/link/", "n", Blocking::kNo).state(), LockState::kBusy);
    EXPECT_TRUE(lock.held());
    EXPECT_EQ(host.mode("/tmp/dir/n.lock"), 0666U);
    (void)umask(077);
    const LockFile shared("/tmp/dir/", "shared", Blocking::kYes);
    const LockFile own("/tmp/dir/", "own", Blocking::kYes, 0600);
    EXPECT_EQ(host.mode("/tmp/dir/shared.lock"), 0666U);
    EXPECT_EQ(host.mode("/tmp/dir/own.lock"), 0600U);
    EXPECT_EQ(umask(022), 077U);
  }
  EXPECT_FALSE(host.exists("/tmp/dir/n.lock"));
  std::atomic<int> holders{0};
  std::vector<std::thread> threads(6);
  for (std::thread& thread : threads) {
    thread = std::thread([&] {
      for (int round = 0; round < 400; ++round) {
        const LockFile lock("/tmp/dir/", "n", Blocking::kYes);
        EXPECT_TRUE(lock.held());
        EXPECT_EQ(++holders, 1);
        (void)sched_yield();
        --holders;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(LockFile, NotWhereOthersRule) {
  TestHost host;
  host.file("/tmp/dir/x", "").link("/tmp/file", "/tmp/dir/link.lock").file("/tmp/file", "kept");
  host.block("/tmp/dir/blocked.lock").link("/tmp/dir", "/tmp/others-link");
  EXPECT_EQ(LockFile("/tmp/dir/", "", Blocking::kYes).state(), LockState::kUnavailable);
  EXPECT_EQ(LockFile("/tmp/no/", "n", Blocking::kYes).state(), LockState::kUnavailable);
  EXPECT_EQ(LockFile("/tmp/dir/", "link", Blocking::kYes).state(), LockState::kUnavailable);
  EXPECT_EQ(LockFile("/tmp/dir/", "blocked", Blocking::kYes).state(), LockState::kUnavailable);
  // Without root on the machine there is nobody else.
  if (lchown("/tmp/others-link", 65534, 0) != 0) return;
  EXPECT_EQ(LockFile("/tmp/others-link/", "n", Blocking::kYes).state(), LockState::kUnavailable);
  EXPECT_EQ(chown("/tmp/dir", 65534, 0), 0);
  EXPECT_EQ(LockFile("/tmp/dir/", "n", Blocking::kYes).state(), LockState::kUnavailable);
}

TEST(LockFile, SaysWhoIsWaitedFor) {
  TestHost host;
  host.file("/tmp/dir/x", "");
  for (const int milliseconds : {500, 1300}) {
    testing::internal::CaptureStderr();
    std::optional<LockFile> held(std::in_place, "/tmp/dir/", "n", Blocking::kYes);
    std::thread waiter([] { EXPECT_TRUE(LockFile("/tmp/dir/", "n", Blocking::kYes).held()); });
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    held.reset();
    waiter.join();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              milliseconds < 1000 ? ""
                                  : "W~ tunadm LockFile LockFile: waiting for the lock held by "
                                    "process " +
                                        std::to_string(getpid()) + "\n");
  }
}

// Run by the next test, in several environments.
TEST(Child, DISABLED_Directories) {
  const LockFile lock("n", Blocking::kNo);
  std::printf("[%s %s %d]", tempPath("n").c_str(), lockPath("n").c_str(), lock.held() ? 1 : 0);
}

TEST(ProgramDirectories, FromTheEnvironment) {
  TestHost host;
  const std::pair<const char*, const char*> cases[] = {
      {"VRX_TMP_DIR=", "[/tmp/n /tmp/lock/n 1]"},
      {"VRX_TMP_DIR=/tmp/x", "[/tmp/x/n /tmp/lock/n 1]"},
      {"VRX_LOCK_DIR=/tmp/y/", "[/tmp/n /tmp/y/n 1]"},
      {"VRX_LOCK_DIR=", "[/tmp/n /tmp/lock/n 1]"}};
  for (const auto& [variable, expected] : cases) {
    const Outcome child = runSelf(host, {"/usr/bin/env", variable}, "Directories");
    EXPECT_NE(child.out.find(expected), std::string::npos) << variable << child.out;
  }
  for (const char* directory : {"/tmp/x", "/tmp/y", "/tmp/lock"})
    EXPECT_EQ(host.mode(directory), 0750U) << directory;
}

}  // namespace
}  // namespace tunadm
