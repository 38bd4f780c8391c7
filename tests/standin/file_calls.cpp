// What the tests of the file functions run as a separate program. Without an argument it prints the
// paths that its environment leads to, with "record" it makes calls for strace to record, and with
// "remove" it removes a deep tree.
#include <cstdio>
#include <string>

#include "fundkit/FileUtils.h"
#include "fundkit/LockFile.h"
#include "fundkit/ProgramDirectories.h"
#include "fundkit/RemoveTree.h"
#include "fundkit/UniqueFile.h"

int main(int count, char** arguments) {
  using namespace tunadm;
  if (count == 1) {
    const LockFile lock("n", Blocking::kNo);
    std::printf("%s %s %d", tempPath("n").c_str(), lockPath("n").c_str(), lock.held() ? 1 : 0);
    return 0;
  }
  if (arguments[1] == std::string("remove")) return removeTree("deep").ok() ? 0 : 1;
  const FileContent two[] = {{"/tmp/d/two", "x", 0640}, {"/tmp/e/three", "x", 0640}};
  std::string text;
  const bool done = replaceFile("/tmp/d/one", "x").ok() && replaceFiles(two).ok() &&
                    writeLines("/tmp/fs/four", {std::string(61000, 'x')}).ok() &&
                    replaceFile("/tmp/fs/four", std::string(61000, 'y')).ok() &&
                    flushTree("/tmp/t").ok() &&
                    readFirstLine("/tmp/e/line", &text) == LineRead::kRead &&
                    makeUniqueFile("/tmp/e/unique", &text) != nullptr;
  return done ? 0 : 1;
}
