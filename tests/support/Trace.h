// A command under strace: which system calls it makes, and how one of them is spoiled.
#pragma once

#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/support/TestHost.h"

namespace tunadm {

// What a traced command line begins with; strace's options follow.
constexpr const char* kStrace = "/usr/bin/strace -o /run/trace -e raw=recvmsg";

struct Call {
  std::string name;  // "---" is a signal, "+++" the end
  int number;        // among those of the name
  int forks;         // how many there were before it
  std::string text;  // as strace shows it

  bool holds(const char* part) const { return text.find(part) != text.npos; }
  bool isOneOf(const std::set<std::string>& names) const { return names.contains(name); }
  // The option that does this to the call: "error=EIO", "signal=SIGKILL".
  std::string injection(const std::string& fault) const {
    return "inject=" + name + ":" + fault + ":when=" + std::to_string(number);
  }
};

inline std::vector<Call> lastTrace() {
  std::ifstream stream("/run/trace");
  std::map<std::string, int> counts;
  std::vector<Call> calls;
  int forks = 0;
  for (std::string line; std::getline(stream, line);) {
    if (line.find("ERESTART") != line.npos) continue;  // a child's end came between
    std::string name = line.substr(0, line.find('('));
    name.erase(0, name.rfind(' ') + 1);  // the process ID that may stand before it
    calls.push_back({name, ++counts[name], forks, line});
    if (calls.back().isOneOf({"clone", "clone3", "fork", "vfork"})) ++forks;
  }
  return calls;
}

inline void skipUnlessTracing() {
  const Outcome strace = TestHost().run("/usr/bin/strace -o /dev/null true");
  if (strace.exit == 0) return;
  std::printf("skipped, no program can be traced here: %s\n", strace.err.c_str());
  std::exit(77);
}

}  // namespace tunadm
