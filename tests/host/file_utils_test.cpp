#include <sys/file.h>
#include <sys/mount.h>
#include <sys/xattr.h>

#include <algorithm>
#include <atomic>
#include <initializer_list>
#include <optional>
#include <regex>
#include <thread>
#include <tuple>

#include "fundkit/DescriptorIo.h"
#include "fundkit/DirectoryListing.h"
#include "fundkit/FileUtils.h"
#include "fundkit/LockFile.h"
#include "fundkit/ProgramDirectories.h"
#include "fundkit/RemoveTree.h"
#include "fundkit/ScopedFd.h"
#include "fundkit/UniqueFile.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

using namespace std::literals;
using Lines = std::vector<std::string>;

// Enters its empty store, so that its functions and those under test take the same relative paths.
struct FileHost : TestHost {
  FileHost() { std::filesystem::current_path("/opt/vrx/profiles"); }
  void expectTree(const Lines& expected) const { EXPECT_EQ(tree("."), expected); }
};

// The umask for the scope.
struct Umask {
  explicit Umask(mode_t mask) : before(umask(mask)) {}
  ~Umask() { (void)umask(before); }
  mode_t before;
};

// A small file system for the scope.
struct SmallDisk {
  explicit SmallDisk(const char* where) : path(where) {
    EXPECT_TRUE(makeDirectory(path, 0755).ok());
    EXPECT_EQ(mount("none", path, "tmpfs", 0, "size=64k"), 0);
  }
  ~SmallDisk() { EXPECT_EQ(umount(path), 0); }
  const char* path;
};

// Owner, group and the extended attributes that the tests set.
std::string attributesOf(const char* path) {
  struct stat found {};
  EXPECT_EQ(stat(path, &found), 0);
  std::string text = std::to_string(found.st_uid) + " " + std::to_string(found.st_gid);
  for (const char* name : {"user.color", "system.posix_acl_access"}) {
    char value[200];
    const ssize_t size = getxattr(path, name, value, sizeof(value));
    text += size < 0 ? " none" : " " + std::string(value, static_cast<std::size_t>(size));
  }
  return text;
}

// All calls, made in this order, returned this code.
void expectAll(StatusCode code, std::initializer_list<Status> ends) {
  for (const Status& end : ends) EXPECT_EQ(end.code(), code) << &end - ends.begin();
}

std::string longer(std::string_view old) { return std::string(old) + "er"; }

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
  FileHost host;
  for (const unsigned size : {0U, 4096U, 70000U}) {
    const std::string content(size, '\0');
    host.file("to", "longer than nothing", 0600).file("from", content);
    EXPECT_TRUE(copyFile("from", "to").ok());
    expectFile(host, "to", content, 0644);
  }
  EXPECT_TRUE(copyFile("from", "/dev/null").ok());
  const std::tuple<Status, StatusCode, std::string> failures[] = {
      {copyFile("to", "to"), kInvalidArgument, "to"},
      {copyFile("none", "to"), kInvalidArgument, "none"},
      {copyFile("", "to"), kInvalidArgument, ""},
      {copyFile("from", ""), kInvalidArgument, ""},
      {copyFile(".", "to"), kReadFailed, "."},
      {copyFile("from", "no/to"), kOpenFailed, "no/to"},
      {copyFile("from", "/dev/full"), kWriteFailed, "/dev/full"}};
  for (const auto& [status, code, details] : failures) {
    EXPECT_EQ(status.code(), code) << details;
    EXPECT_EQ(status.details() + " " + status.context(), details + " copyFile");
  }
  EXPECT_EQ(host.read("to").size(), 70000U);
  // A source that shrinks while it is copied.
  host.file("to", "");
  ASSERT_EQ(truncate("from", 256 << 20), 0);
  const std::jthread cutter([](const std::stop_token& copied) {
    struct stat found {};
    while (found.st_size == 0 && !copied.stop_requested()) EXPECT_EQ(stat("to", &found), 0);
    EXPECT_EQ(truncate("from", 1), 0);
  });
  EXPECT_EQ(copyFile("from", "to").code(), kReadFailed);
}

TEST(FileUtils, Move) {
  FileHost host;
  const SmallDisk disk("fs");
  host.file("from", "1").file("to", "2").link("none", "dead");
  host.file("dir/x", "").file("file", "kept").file("fs/file", "kept");
  expectAll(kRenameFailed,
            {moveFile("from", "to", Overwrite::kNo), moveFile("from", "dead", Overwrite::kNo),
             moveFile("none", "file", Overwrite::kYes), moveFile("dir", "file", Overwrite::kYes),
             moveFile("dir", "fs/file", Overwrite::kYes)});
  EXPECT_EQ(host.read("to"), "2");
  expectAll(kSuccess,
            {moveFile("from", "to", Overwrite::kYes), moveFile("to", "fs/to", Overwrite::kNo)});
  host.expectTree({"dead -> none", "dir 755/", "dir/x 644 ", "file 644 kept", "fs 1777/",
                   "fs/file 644 kept", "fs/to 644 1"});
}

TEST(FileUtils, EntriesAndModes) {
  FileHost host;
  const Umask mask(027);
  const SmallDisk disk("fs");
  host.file("fs/file", "", 0604);
  ASSERT_EQ(mount("none", disk.path, "", MS_REMOUNT | MS_RDONLY, nullptr), 0);
  expectAll(kSuccess, {makeNewDirectory("dir", 0777), makeDirectory("dir", 0700)});
  expectAll(kMkdirFailed, {makeNewDirectory("dir", 0), makeDirectory("no/dir", 0700)});
  host.file("dir/file", "");
  // On the read-only disk, chmod itself is refused.
  expectAll(kSuccess, {changeMode("dir/file", 0604), changeMode("fs/file", 0604)});
  expectAll(kChmodFailed, {changeMode("none", 0604), changeMode("fs/file", 0644)});
  host.expectTree({"dir 750/", "dir/file 604 ", "fs 1777/", "fs/file 604 "});
  EXPECT_EQ(removeFile("dir").code(), kUnlinkFailed);
  expectAll(kRmdirFailed, {removeEmptyDirectory("dir"), removeEntry("dir")});
  for (int round = 0; round < 2; ++round)  // the second time nothing is there
    expectAll(kSuccess, {removeEntry("dir/file"), removeEntry("dir"), removeFile("dir"),
                         removeEmptyDirectory("dir")});
  EXPECT_TRUE(isMissing("dir"));
  expectAll(kInvalidArgument,
            {removeFile(""), removeEmptyDirectory(""), removeEntry(""), makeDirectory("", 0),
             makeNewDirectory("", 0), changeMode("", 0), replaceFile("", ""), writeLines("", {}),
             flushTree(""), flushDirectory(""), removeTree(""), emptyDirectory(""),
             moveFile("fs/file", "", Overwrite::kYes), rewriteFile("", longer),
             listDirectory("").status});
}

// A test that hangs here waits for the other end of the FIFO.
TEST(FileUtils, WhatIsRead) {
  FileHost host;
  const std::string mebi(1 << 20, 'x');
  host.file("mebi", mebi).file("more", mebi + "x\n").file("chunk", mebi + "\nx").file("empty", "");
  host.file("nul", "a\0b\n"s).file("line", "b\r\nc").link("line", "link").file("huge", "");
  host.link("none", "dead").link("loop", "loop").file("lines", "longer than that", 0600);
  ASSERT_EQ(mkfifo("fifo", 0600) + truncate("huge", 64 << 20), 0);
  std::string text;
  for (const auto& [path, expected] :
       {std::pair{"mebi", mebi}, {"chunk", mebi}, {"empty", ""}, {"nul", "a"}, {"link", "b\r"}}) {
    EXPECT_EQ(readFirstLine(path, &text), LineRead::kRead) << path;
    EXPECT_TRUE(text == expected) << path;
  }
  for (const char* path : {"none", "fifo", ".", "dead", "loop", "line/x", "", "/dev/zero"}) {
    EXPECT_EQ(readFirstLine(path, &(text = "before")), LineRead::kNothing) << path;
    EXPECT_EQ(text, "") << path;
    EXPECT_FALSE(readFile(path, &(text = "before")).ok()) << path;
    EXPECT_EQ(text, "") << path;
  }
  EXPECT_EQ(readFirstLine("more", &text), LineRead::kError);
  EXPECT_EQ(text, "");
  EXPECT_TRUE(readFile("huge", &text).ok() && text.size() == 64 << 20);
  ASSERT_EQ(truncate("huge", (64 << 20) + 1), 0);
  EXPECT_FALSE(readFile("huge", &text).ok());
  EXPECT_EQ(text, "");
  EXPECT_TRUE(writeLines("lines", {"a", "", "b\0c"s}).ok());
  expectFile(host, "lines", "a\n\nb\n", 0640);
  EXPECT_EQ(writeLines("fifo", {"x"}).code(), kOpenFailed);
}

int leased;

// The holder of a lease, such as a file server, lets go of the file when a signal tells it that
// another wants it; see fcntl(2).
TEST(FileUtils, AFileUnderALeaseIsWaitedFor) {
  FileHost host;
  host.file("file", "text\n");
  const ScopedFd holder(leased = open("file", O_RDWR | O_CLOEXEC));
  EXPECT_NE(std::signal(SIGIO, [](int) { (void)fcntl(leased, F_SETLEASE, F_UNLCK); }), SIG_ERR);
  ASSERT_EQ(fcntl(leased, F_SETLEASE, F_WRLCK), 0);
  std::string text;
  EXPECT_EQ(readFirstLine("file", &text), LineRead::kRead);
  EXPECT_EQ(text, "text");
}

TEST(DirectoryListing, KindsOfEntries) {
  FileHost host;
  host.file("d/dir/x", "").file("d/file", "").link("/tmp", "d/to-dir");
  host.link("d/file", "d/from-here").link("file", "d/from-there").link("/dev/null", "d/to-device");
  ASSERT_EQ(mkfifo("d/dir/fifo", 0600), 0);
  const auto& [status, directories, files, file_links, directory_links, others] =
      listDirectory("d");
  EXPECT_TRUE(status.ok());
  EXPECT_EQ((std::vector{directories, files, file_links, directory_links, others}),
            (std::vector<Lines>{{"dir"}, {"file"}, {"from-here"}, {"to-dir"}, {"to-device"}}));
  EXPECT_EQ(listDirectory("d/dir").others, Lines{"fifo"});
  EXPECT_EQ(listDirectory("d/file").status.code(), kOpendirFailed);
}

TEST(ReplaceFile, ModesUnderUmasks) {
  // The umask, the old mode (0: there is no file), the given mode, and that of the new file.
  const std::tuple<mode_t, mode_t, std::optional<mode_t>, std::string> cases[] = {
      {0, 0, {}, "644"},     {022, 0, {}, "644"},      {077, 0, {}, "600"},
      {0, 0606, {}, "606"},  {022, 0666, {}, "644"},   {077, 0777, {}, "700"},
      {077, 0, 0666, "666"}, {077, 0600, 0640, "640"}, {0, 0666, 0640, "640"}};
  for (const auto& [mask, old, given, after] : cases) {
    SCOPED_TRACE(testing::Message() << std::oct << mask << " " << old);
    FileHost host;
    if (old != 0) host.file("file", "old", old);
    const Umask scope(mask);
    EXPECT_TRUE(replaceFile("file", "new", given).ok());
    host.expectTree({"file " + after + " new"});
  }
}

// The binary form of an access list: user::rw- user:65534:r-- group::--- mask::r-- other::---
const std::string kAccessList =
    "\2\0\0\0\1\0\6\0\xff\xff\xff\xff\2\0\4\0\xfe\xff\0\0\4\0\0\0\xff\xff\xff\xff"
    "\20\0\4\0\xff\xff\xff\xff\40\0\0\0\xff\xff\xff\xff"s;

TEST(ReplaceFile, KeepsOwnersAndAttributes) {
  FileHost host;
  host.file("file", "old", 0640);
  const auto setList = [](const char* path, const char* name) {
    return setxattr(path, name, kAccessList.data(), kAccessList.size(), 0) == 0;
  };
  (void)setxattr("file", "user.color", "red", 3, 0);  // not every file system has these
  // Without root on the machine there is no other user to give the file to.
  const bool listed =
      chown("file", 65534, 65534) == 0 && setList("file", "system.posix_acl_access");
  const std::string before = attributesOf("file");
  for (const bool rewritten : {false, true}) {
    expectAll(kSuccess, {rewritten ? rewriteFile("file", longer) : replaceFile("file", "new")});
    expectFile(host, "file", rewritten ? "newer" : "new", 0640);
    EXPECT_EQ(attributesOf("file"), before);
  }
  // A list that cannot be kept may have given the group less than the mode says.
  host.profile("one", "one");
  if (listed && setList("one/hip.conf", "system.posix_acl_access")) {
    const std::string said = host.shell(
        "strace -qq -o /dev/null -e inject=fsetxattr:error=EPERM "
        "tunadm profile modify one network=x");
    const bool not_traced = said.find("ptrace") != said.npos;
    EXPECT_TRUE(not_traced || host.mode("one/hip.conf") == 0600U) << said;
  }
  // An access list that the directory gives to new files is not that of the old one.
  if (!listed || !setList(".", "system.posix_acl_default")) return;
  EXPECT_EQ(removexattr("file", "system.posix_acl_access"), 0);
  const std::string unlisted = attributesOf("file");
  EXPECT_TRUE(replaceFile("file", "new").ok());
  EXPECT_EQ(attributesOf("file"), unlisted);
  EXPECT_EQ(removexattr(".", "system.posix_acl_default"), 0);
}

TEST(ReplaceFile, WhatIsInItsPlace) {
  FileHost host;
  host.file("private", "kept", 0600).link("private", "link").link("private", "again");
  host.file("victim", "kept").link("victim", "link.temp").link("loop", "loop").link("none", "dead");
  host.file("dead.temp", "left by an earlier run").link("none", "unseen").block("dir");
  host.file("x", "kept").block("x.temp");
  ASSERT_EQ(mkfifo("fifo", 0606), 0);
  expectAll(kSuccess,
            {replaceFile("link", "new"), replaceFile("loop", "new"), replaceFile("dead", "new"),
             replaceFile("fifo", "new"), rewriteFile("again", longer),
             rewriteFile("missing", longer), rewriteFile("unseen", longer)});
  expectAll(kOpenFailed, {replaceFile("dir", "new"), replaceFile("x", "new"),
                          replaceFile("no/file", "new"), rewriteFile("no/file", longer)});
  EXPECT_EQ(rewriteFile(".", longer).code(), kReadFailed);
  host.expectTree({"again 600 kepter", "dead 644 new", "dir 755/", "dir/in-its-place 644 ",
                   "fifo 644 new", "link 600 new", "loop 644 new", "missing 644 er",
                   "private 600 kept", "unseen 644 er", "victim 644 kept", "x 644 kept",
                   "x.temp 755/", "x.temp/in-its-place 644 "});
}

TEST(ReplaceFile, InPlaceWithoutRoom) {
  FileHost host;
  const SmallDisk disk("fs");
  const std::string old(50000, 'o');
  host.file("fs/file", old, 0604).file("fs/filler", std::string(8192, 'f'));
  // Begins to overwrite the file, and finds no room for all of it.
  EXPECT_EQ(replaceFile("fs/file", std::string(70000, 'n')).code(), kWriteFailed);
  EXPECT_TRUE(host.read("fs/file") == old);
  for (const std::string& text : {std::string(50001, 'm'), "short"s}) {
    EXPECT_TRUE(replaceFile("fs/file", text, 0640).ok());
    expectFile(host, "fs/file", text, 0640);
  }
  host.file("fs/filler", std::string(60000, 'f'));
  EXPECT_EQ(replaceFile("fs/new", old).code(), kWriteFailed);
  host.remove("fs/filler");
  host.expectTree({"fs 1777/", "fs/file 640 short"});
}

TEST(ReplaceFile, InPlaceWithoutTheDirectory) {
  FileHost host;
  host.file("file", "longer", 0622).file("victim", "kept", 0666).link("victim", "link");
  host.file("others", "kept").file("file.temp", "left by an earlier run");
  host.file("open/file", "of root's group", 0664);
  EXPECT_TRUE(changeMode("open", 0777).ok());
  // Without root on the machine there is no other user to become.
  if (setegid(65534) + seteuid(65534) != 0) GTEST_SKIP() << "no other user here";
  expectAll(kSuccess, {replaceFile("file", "new"), replaceFile("file", "newer", 0622),
                       replaceFile("open/file", "new")});
  EXPECT_EQ(replaceFile("file", "newest", 0644).code(), kWriteFailed);  // not the owner
  expectAll(kOpenFailed, {replaceFile("link", "new", 0666), replaceFile("others", "new"),
                          replaceFile("missing", "new"), flushTree(".")});
  ASSERT_EQ(seteuid(0) + setegid(0), 0);
  host.expectTree({"file 622 newer", "file.temp 644 left by an earlier run", "link -> victim",
                   "open 777/", "open/file 604 new", "others 644 kept", "victim 666 kept"});
}

TEST(ReplaceFile, ManyStopAtTheFirstFailure) {
  FileHost host;
  host.file("a", "old", 0600).block("c");
  const std::vector<FileContent> good = {{"a", "1", 0640}, {"c/b", "2", 0666}};
  expectAll(kSuccess, {replaceFiles({}), replaceFiles(good)});
  for (const char* path : {"c", "none/c", ""}) {
    SCOPED_TRACE(path);
    const std::vector<FileContent> bad = {{"a", "3", 0640}, {path, "4", 0666}};
    EXPECT_EQ(replaceFiles(bad).code(), *path == '\0' ? kInvalidArgument : kOpenFailed);
    host.expectTree({"a 640 1", "c 755/", "c/b 666 2", "c/in-its-place 644 "});
  }
}

// What survives a power cut is what was flushed before it was moved, and whose directory was
// flushed afterwards.
TEST(ReplaceFile, FlushesBeforeAndAfterTheMove) {
  TestHost host;
  host.file("/tmp/d/one", "old").file("/tmp/e/line", "line\n");
  host.file("/tmp/t/sub/deep", "").link("/tmp/e", "/tmp/t/link");
  const SmallDisk disk("/tmp/fs");
  const Outcome child = host.run("/usr/bin/strace -y -o /run/trace " + fileCalls() + " record");
  if (child.err.find("ptrace") != std::string::npos) GTEST_SKIP() << "no tracing: " << child.err;
  ASSERT_EQ(child.exit, 0) << child.err;
  const char* const what_counts = R"sh(sed -nE '
    s/^(fsync|syncfs)\(.*<(.*)>.* = 0/\1 \2/p
    s/^rename\(.*, "(.*)".* = 0/rename \1/p
    s/^(openat|read|close)\(.*\/tmp\/e\/line.*/\1 line/p
    s/^openat\(.*"(.*)\.\w*", (\w*).*EXCL.*CLOEXEC, (\w*)\).*/new \1 \2 \3/p' /run/trace)sh";
  EXPECT_EQ(host.runWords({"/bin/sh", "-c", what_counts}).out,
            "new /tmp/d/one O_WRONLY 0600\nfsync /tmp/d/one.temp\nrename /tmp/d/one\n"
            "fsync /tmp/d\nnew /tmp/d/two O_WRONLY 0600\nnew /tmp/e/three O_WRONLY 0600\n"
            "syncfs /tmp/d\nrename /tmp/d/two\nrename /tmp/e/three\nsyncfs /tmp/d\n"
            "new /tmp/fs/four O_WRONLY 0600\nfsync /tmp/fs/four\nfsync /tmp/fs\n"  // in place
            "fsync /tmp/t/sub/deep\nfsync /tmp/t/sub\nfsync /tmp/t\n"
            "openat line\nread line\nclose line\nnew /tmp/e/unique O_RDWR 0644\n");
}

// Longer than the pipe takes at once.
TEST(WriteOutput, WaitsForASlowReader) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_NONBLOCK | O_CLOEXEC), 0);
  std::string got;
  std::thread reader([&] {
    usleep(50000);
    ASSERT_EQ(fcntl(ends[0], F_SETFL, 0), 0);
    EXPECT_TRUE(readAll(ends[0], std::size_t{1} << 20, &got));
  });
  const std::string text(1000000, 'x');
  EXPECT_TRUE(writeOutput(ends[1], text));
  EXPECT_EQ(close(ends[1]), 0);
  reader.join();
  EXPECT_EQ(close(ends[0]), 0);
  EXPECT_TRUE(got == text) << got.size();
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
  FileHost host;
  host.file("outside/keep", "kept").file("tree/sub/file", "x").file("kept/sub/file", "x");
  host.link("../../outside", "tree/sub/link")
      .link("../outside", "kept/link")
      .link("outside", "link");
  expectAll(kSuccess, {removeTree("tree/"), removeTree("none"), emptyDirectory("kept/"),
                       emptyDirectory("none")});
  EXPECT_EQ(emptyDirectory("link/").code(), kOpendirFailed);
  EXPECT_TRUE(removeTree("link/").ok());
  host.expectTree({"kept 755/", "outside 755/", "outside/keep 644 kept"});

  // A directory that is exchanged for a link again and again while it is being removed.
  std::atomic<bool> done{false};
  std::thread other([&] {
    while (!done) (void)renameat2(AT_FDCWD, "tree/entry", AT_FDCWD, "spare", RENAME_EXCHANGE);
  });
  for (int round = 0; round < 1000; ++round) {
    (void)makeDirectory("tree", 0755);
    (void)makeDirectory("tree/entry", 0755);
    (void)removeTree("spare");
    // The other may have come in between; then this round is lost.
    if (symlink("outside", "spare") == 0) (void)removeTree("tree");
  }
  done = true;
  other.join();
  EXPECT_EQ(host.read("outside/keep"), "kept");
}

TEST(RemoveTree, LastEntry) {
  FileHost host;
  for (const char* name : {"a", "m", "z"}) {
    host.file("tree/a", "").file("tree/m", "").file("tree/z", "").file("tree/sub/"s + name, "");
    {
      const SmallDisk disk("tree/busy");  // cannot be removed
      const Status refused = emptyDirectory("tree", name);
      EXPECT_EQ(refused.code(), kRmdirFailed);
      EXPECT_EQ(refused.cause(), "rmdir /opt/vrx/profiles/tree/busy: Device or resource busy");
      EXPECT_TRUE(host.exists("tree/"s + name));
    }
    expectAll(kSuccess, {emptyDirectory("tree", name), removeEmptyDirectory("tree")});
  }
}

TEST(RemoveTree, NeedsNeitherStackNorDescriptorsForTheDepth) {
  const FileHost host;
  for (int level = 0; level < 4000; ++level) {
    expectAll(kSuccess, {makeDirectory("above", 0755), makeDirectory("above/b", 0755)});
    EXPECT_EQ(level > 0 ? rename("deep", "above/a") : 0, 0);
    EXPECT_EQ(rename("above", "deep"), 0);
  }
  const std::string remove = "ulimit -s 256; ulimit -n 64; exec " + fileCalls() + " remove";
  EXPECT_EQ(host.runWords({"/bin/sh", "-c", remove}).exit, 0);
  host.expectTree({});
}

TEST(LockFile, NeverTwoHolders) {
  FileHost host;
  const Umask before(022);
  host.file("dir/x", "").link("dir", "link");
  {
    const LockFile lock("link/", "some/dir\\n", Blocking::kNo);
    EXPECT_EQ(LockFile("link/", "n", Blocking::kNo).state(), LockState::kBusy);
    EXPECT_TRUE(lock.held());
    (void)umask(077);
    const LockFile own("dir/", "own", Blocking::kYes, 0600);
    const LockFile shared("dir/", "shared", Blocking::kYes);
    EXPECT_EQ(umask(022), 077U);
    host.expectTree({"dir 755/", "dir/n.lock 666 ", "dir/own.lock 600 ", "dir/shared.lock 666 ",
                     "dir/x 644 ", "link -> dir"});
  }
  host.expectTree({"dir 755/", "dir/x 644 ", "link -> dir"});
}

// A holder that is killed leaves its file behind.
TEST(LockFile, AWaiterBecomesTheOnlyHolder) {
  FileHost host;
  ScopedFd killed(open("n.lock", O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  EXPECT_EQ(flock(killed.get(), LOCK_EX), 0);
  std::thread waiter([] {
    const LockFile lock("./", "n", Blocking::kYes);
    EXPECT_TRUE(lock.held());
    const ScopedFd file(open("n.lock", O_RDONLY | O_CLOEXEC));
    EXPECT_EQ(flock(file.get(), LOCK_SH | LOCK_NB), -1);
  });
  while (host.read("/proc/locks").find("->") == std::string::npos) usleep(1000);
  EXPECT_EQ(killed.close(), 0);
  waiter.join();
}

TEST(LockFile, OnlyInARegularFileOfATrustedDirectory) {
  FileHost host;
  host.file("dir/x", "").link("dir", "to-dir").link("x", "dir/link.lock").block("dir/blocked.lock");
  const auto state = [](const char* directory, const char* name) {
    return LockFile(directory, name, Blocking::kYes).state();
  };
  for (const char* name : {"", "link", "blocked"})
    EXPECT_EQ(state("dir/", name), LockState::kUnavailable) << name;
  // Without root on the machine, no other user can own the directory.
  if (chown("dir", 65534, 0) != 0) return;
  for (const char* directory : {"dir/", "to-dir/", "no/"})
    EXPECT_EQ(state(directory, "n"), LockState::kUnavailable) << directory;
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
