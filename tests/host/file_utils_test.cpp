#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/xattr.h>

#include <algorithm>
#include <atomic>
#include <initializer_list>
#include <optional>
#include <regex>
#include <thread>

#include "fundkit/DirectoryListing.h"
#include "fundkit/FileUtils.h"
#include "fundkit/LockFile.h"
#include "fundkit/ProgramDirectories.h"
#include "fundkit/RemoveTree.h"
#include "fundkit/UniqueFile.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

using namespace std::literals;

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

// At most so many descriptors for the scope.
struct DescriptorLimit {
  explicit DescriptorLimit(rlim_t count) {
    EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit limit{count, before.rlim_max};
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  }
  ~DescriptorLimit() { EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0); }
  rlimit before{};
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

// All calls, made in this order, have ended so.
void expectAll(StatusCode code, std::initializer_list<Status> ends) {
  for (const Status& end : ends) EXPECT_EQ(end.code(), code) << &end - ends.begin();
}

void expectFile(const TestHost& host, const std::string& path, const std::string& content,
                mode_t mode) {
  EXPECT_TRUE(host.read(path) == content) << path << ": " << host.read(path).substr(0, 100);
  EXPECT_EQ(host.mode(path), mode) << path;
}

// The program of standin/file_calls.cpp.
std::string fileCalls() {
  return std::filesystem::read_symlink("/proc/self/exe").replace_filename("file_calls");
}

TEST(FileUtils, Copy) {
  TestHost host;
  for (const unsigned size : {0U, 4096U, 70000U}) {
    const std::string content(size, '\0');
    host.file("/tmp/to", "longer than nothing", 0600).file("/tmp/from", content);
    EXPECT_TRUE(copyFile("/tmp/from", "/tmp/to").ok());
    expectFile(host, "/tmp/to", content, 0644);
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

TEST(FileUtils, Move) {
  TestHost host;
  host.file("/tmp/from", "1").file("/tmp/to", "2").link("/none", "/tmp/dead");
  expectAll(kRenameFailed, {moveFile("/tmp/from", "/tmp/to", Overwrite::kNo),
                            moveFile("/tmp/from", "/tmp/dead", Overwrite::kNo)});
  EXPECT_EQ(host.read("/tmp/from") + host.read("/tmp/to"), "12");
  EXPECT_TRUE(moveFile("/tmp/from", "/tmp/to", Overwrite::kYes).ok());
  const SmallDisk disk("/tmp/fs");
  EXPECT_TRUE(moveFile("/tmp/to", "/tmp/fs/to", Overwrite::kNo).ok());
  EXPECT_EQ(host.read("/tmp/fs/to"), "1");
  EXPECT_FALSE(host.exists("/tmp/from") || host.exists("/tmp/to"));
  host.file("/tmp/dir/x", "").file("/tmp/file", "kept").file("/tmp/fs/file", "kept");
  expectAll(kRenameFailed, {moveFile("/tmp/from", "/tmp/to", Overwrite::kYes),
                            moveFile("/tmp/dir", "/tmp/file", Overwrite::kYes),
                            moveFile("/tmp/dir", "/tmp/fs/file", Overwrite::kYes)});
  EXPECT_EQ(host.read("/tmp/file") + host.read("/tmp/fs/file"), "keptkept");
  EXPECT_TRUE(host.exists("/tmp/dir/x"));
}

TEST(FileUtils, EntriesAndModes) {
  TestHost host;
  const Umask mask(027);
  EXPECT_TRUE(makeNewDirectory("/tmp/dir", 0777).ok());
  EXPECT_EQ(host.mode("/tmp/dir"), 0750U);
  EXPECT_TRUE(makeDirectory("/tmp/dir", 0700).ok());
  expectAll(kMkdirFailed, {makeNewDirectory("/tmp/dir", 0), makeDirectory("/tmp/no/dir", 0700)});
  host.file("/tmp/dir/file", "");
  EXPECT_TRUE(changeMode("/tmp/dir/file", 0604).ok());
  EXPECT_EQ(host.mode("/tmp/dir/file"), 0604U);
  const SmallDisk disk("/tmp/fs");
  host.file("/tmp/fs/file", "", 0604);
  ASSERT_EQ(mount("none", disk.path, "", MS_REMOUNT | MS_RDONLY, nullptr), 0);
  EXPECT_TRUE(changeMode("/tmp/fs/file", 0604).ok());  // chmod itself is refused
  expectAll(kChmodFailed, {changeMode("/tmp/none", 0604), changeMode("/tmp/fs/file", 0644)});
  EXPECT_EQ(removeFile("/tmp/dir").code(), kUnlinkFailed);
  expectAll(kRmdirFailed, {removeEmptyDirectory("/tmp/dir"), removeEntry("/tmp/dir")});
  for (int round = 0; round < 2; ++round)  // the second time nothing is there
    expectAll(kSuccess, {removeEntry("/tmp/dir/file"), removeEntry("/tmp/dir"),
                         removeFile("/tmp/dir"), removeEmptyDirectory("/tmp/dir")});
  EXPECT_TRUE(isMissing("/tmp/dir"));
  expectAll(kInvalidArgument,
            {removeFile(""), removeEmptyDirectory(""), removeEntry(""), makeDirectory("", 0),
             makeNewDirectory("", 0), changeMode("", 0), replaceFile("", ""), writeLines("", {}),
             flushTree(""), flushDirectory(""), removeTree(""), emptyDirectory(""),
             moveFile("/tmp/fs/file", "", Overwrite::kYes),
             rewriteFile("", [](std::string_view) { return ""s; }), listDirectory("").status});
}

// A test that hangs here waits for the other end of the FIFO.
TEST(FileUtils, LinesAndWhatIsNotReadable) {
  TestHost host;
  host.file("/tmp/kept", "longer than that", 0600).file("/tmp/huge", "");
  EXPECT_TRUE(writeLines("/tmp/kept", {"a", "", "b\0c"s}).ok());
  expectFile(host, "/tmp/kept", "a\n\nb\n", 0640);
  ASSERT_EQ(mkfifo("/tmp/fifo", 0600) + truncate("/tmp/huge", (64 << 20) + 1), 0);
  for (const char* path : {"/tmp/none", "/tmp/fifo", "/tmp", "", "/tmp/huge"}) {
    std::string text = "before";
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
  const int directory = open("/tmp", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  std::string line;
  for (const auto& [path, expected] :
       {std::pair{"mebi", mebi}, {"chunk", mebi}, {"empty", ""}, {"nul", "a"}, {"link", "b\r"}}) {
    EXPECT_EQ(readFirstLine(directory, path, &line), LineRead::kRead) << path;
    EXPECT_TRUE(line == expected) << path;
  }
  for (const char* path :
       {"none", "fifo", ".", "dead", "loop", "line/x", "", "/dev/zero", "more"}) {
    line = "before";
    EXPECT_EQ(readFirstLine(directory, path, &line),
              path == "more"sv ? LineRead::kError : LineRead::kNothing);
    EXPECT_EQ(line, "") << path;
  }
  (void)close(directory);
  const DescriptorLimit none(0);
  EXPECT_EQ(readFirstLine("/tmp/line", &line), LineRead::kError);
  EXPECT_EQ(errno, EMFILE);
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
    expectFile(host, "/tmp/file", "new", c.after);
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
    const auto change = [](std::string_view old) { return std::string(old) + "er"; };
    expectAll(kSuccess,
              {rewritten ? rewriteFile("/tmp/file", change) : replaceFile("/tmp/file", "new")});
    expectFile(host, "/tmp/file", rewritten ? "newer" : "new", 0640);
    EXPECT_EQ(attributeOf("/tmp/file", "user.color"), attributed ? "red" : "none");
    EXPECT_EQ(attributeOf("/tmp/file", "system.posix_acl_access"), listed ? kAccessList : "none");
    struct stat found {};
    EXPECT_EQ(stat("/tmp/file", &found), 0);
    EXPECT_EQ(found.st_uid, root ? 65534 : geteuid());
    EXPECT_EQ(found.st_gid, root ? 65534 : getegid());
  }
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
  host.file("/tmp/x", "kept").link("private", "/tmp/again").link("none", "/tmp/unseen");
  ASSERT_EQ(mkfifo("/tmp/fifo", 0606), 0);
  for (const auto& [path, mode] : {std::pair{"/tmp/link", 0600U},
                                   {"/tmp/loop", 0644U},
                                   {"/tmp/dead", 0644U},
                                   {"/tmp/fifo", 0644U}}) {
    EXPECT_TRUE(replaceFile(path, "new").ok()) << path;
    EXPECT_TRUE(isRealFile(path)) << path;
    expectFile(host, path, "new", mode);
  }
  const auto change = [](std::string_view old) { return std::string(old) + "er"; };
  expectAll(kOpenFailed, {replaceFile("/tmp/dir", "new"), replaceFile("/tmp/x", "new"),
                          replaceFile("/tmp/no/file", "new"), rewriteFile("/tmp/no/file", change)});
  EXPECT_EQ(rewriteFile("/tmp", change).code(), kReadFailed);
  expectAll(kSuccess, {rewriteFile("/tmp/again", change), rewriteFile("/tmp/missing", change),
                       rewriteFile("/tmp/unseen", change)});
  expectFile(host, "/tmp/again", "kepter", 0600);
  EXPECT_TRUE(isRealFile("/tmp/again"));
  expectFile(host, "/tmp/missing", "er", 0644);
  expectFile(host, "/tmp/unseen", "er", 0644);
  EXPECT_TRUE(isMissing("/tmp/dir.temp"));
  EXPECT_EQ(host.read("/tmp/private") + host.read("/tmp/victim") + host.read("/tmp/x"),
            "keptkeptkept");
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
    expectFile(host, "/tmp/fs/file", text, 0640);
    EXPECT_EQ(inodeOf("/tmp/fs/file") == inode, text.size() > 5) << text.size();
    EXPECT_TRUE(isMissing("/tmp/fs/file.temp"));
  }
  host.file("/tmp/fs/filler", std::string(60000, 'f'));
  EXPECT_EQ(replaceFile("/tmp/fs/new", old).code(), kWriteFailed);
  EXPECT_TRUE(isMissing("/tmp/fs/new") && isMissing("/tmp/fs/new.temp"));
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
  expectAll(kSuccess, {results[0], results[1], results[6]});
  EXPECT_EQ(results[2].code(), kWriteFailed);  // not the owner
  expectAll(kOpenFailed, {results[3], results[4], results[5]});
  expectFile(host, "/tmp/dir/file", "newer", 0622);
  EXPECT_EQ(host.read("/tmp/dir/victim") + host.read("/tmp/dir/others"), "keptkept");
  expectFile(host, "/tmp/open/file", "new", 0604);
  EXPECT_EQ(inodeOf("/tmp/dir/file"), inode);
}

TEST(ReplaceFile, ManyStopAtTheFirstFailure) {
  TestHost host;
  host.file("/tmp/a", "old", 0600).block("/tmp/c").file("/tmp/d/x", "");
  EXPECT_TRUE(replaceFiles({}).ok());
  const std::vector<FileContent> good = {{"/tmp/a", "1", 0640}, {"/tmp/d/b", "2", 0666}};
  EXPECT_TRUE(replaceFiles(good).ok());
  expectFile(host, "/tmp/a", "1", 0640);
  expectFile(host, "/tmp/d/b", "2", 0666);
  for (const char* path : {"/tmp/c", "/tmp/none/c", ""}) {
    const std::vector<FileContent> bad = {{"/tmp/a", "3", 0640}, {path, "4", 0666}};
    EXPECT_EQ(replaceFiles(bad).code(), *path == '\0' ? kInvalidArgument : kOpenFailed) << path;
    EXPECT_EQ(host.read("/tmp/a"), "1");
    EXPECT_TRUE(isMissing("/tmp/a.temp"));
  }
}

// What survives a power cut is what was flushed before it was moved, and whose directory was
// flushed afterwards.
TEST(ReplaceFile, FlushesBeforeAndAfterTheMove) {
  TestHost host;
  host.file("/tmp/d/sub/deep", "").file("/tmp/e/line", "line\n").link("/tmp/e", "/tmp/d/link");
  const SmallDisk disk("/tmp/fs");
  const Outcome child = host.run("/usr/bin/strace -y -o /run/trace " + fileCalls() + " record");
  if (child.err.find("ptrace") != std::string::npos) GTEST_SKIP() << "no tracing: " << child.err;
  ASSERT_EQ(child.exit, 0) << child.err;
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
  expectFile(host, name, "text", 0644);
  testing::internal::CaptureStderr();
  for (const std::string& path : {std::string(4088, 'x'), std::string(4089, 'x'), ""s})
    EXPECT_EQ(makeUniqueFile(path, &(name = "unchanged")), nullptr);
  EXPECT_EQ(name, "unchanged");
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 11) << log;  // only of the first
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

TEST(RemoveTree, NeedsNeitherStackNorDescriptorsForTheDepth) {
  const TestHost host;
  for (int level = 0; level < 4000; ++level) {
    for (const char* name : {"/tmp/above", "/tmp/above/b"})
      EXPECT_TRUE(makeDirectory(name, 0755).ok());
    EXPECT_EQ(level > 0 ? rename("/tmp/deep", "/tmp/above/a") : 0, 0);
    EXPECT_EQ(rename("/tmp/above", "/tmp/deep"), 0);
  }
  const DescriptorLimit few(64);
  EXPECT_EQ(host.runWords({"/bin/sh", "-c", "ulimit -s 256; exec " + fileCalls() + " remove"}).exit,
            0);
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
}

TEST(LockFile, NotWhereOthersRule) {
  TestHost host;
  host.file("/tmp/dir/x", "").link("/tmp/file", "/tmp/dir/link.lock").file("/tmp/file", "kept");
  host.block("/tmp/dir/blocked.lock").link("/tmp/dir", "/tmp/others-link");
  const auto expectNone = [](const char* directory, const char* name) {
    EXPECT_EQ(LockFile(directory, name, Blocking::kYes).state(), LockState::kUnavailable) << name;
  };
  for (const char* name : {"", "link", "blocked"}) expectNone("/tmp/dir/", name);
  expectNone("/tmp/no/", "n");
  // Without root on the machine there is nobody else.
  if (lchown("/tmp/others-link", 65534, 0) != 0) return;
  expectNone("/tmp/others-link/", "n");
  EXPECT_EQ(chown("/tmp/dir", 65534, 0), 0);
  expectNone("/tmp/dir/", "n");
}

TEST(ProgramDirectories, FromTheEnvironment) {
  TestHost host;
  for (const auto& [variable, expected] : {std::pair{"VRX_TMP_DIR=", "/tmp/n /tmp/lock/n 1"},
                                           {"VRX_TMP_DIR=/tmp/x", "/tmp/x/n /tmp/lock/n 1"},
                                           {"VRX_LOCK_DIR=/tmp/y/", "/tmp/n /tmp/y/n 1"},
                                           {"VRX_LOCK_DIR=", "/tmp/n /tmp/lock/n 1"}})
    EXPECT_EQ(host.run(std::string("/usr/bin/env ") + variable + " " + fileCalls()).out, expected)
        << variable;
  for (const char* directory : {"/tmp/x", "/tmp/y", "/tmp/lock"})
    EXPECT_EQ(host.mode(directory), 0750U) << directory;
}

}  // namespace
}  // namespace tunadm
