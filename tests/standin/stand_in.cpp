// What tests put at the paths of a host's init-system commands. Each run appends a line to
// /tmp/calls: its path and all its arguments, the name it was run by first. Then it prints what
// /tmp/stand-in-output holds. It ends as the first line of /tmp/stand-in-end says ("exit 7",
// "signal 15") and removes that line; without a line it ends with 0.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

// An order that cannot be read is not a success.
static int endAsOrdered() {
  constexpr const char* path = "/tmp/stand-in-end";
  std::ifstream orders(path);
  std::string kind;
  int number = 0;
  if (!(orders >> kind)) return 0;
  std::ostringstream later;
  orders >> number >> std::ws;
  later << orders.rdbuf();
  std::ofstream(path) << later.str();
  if (kind == "signal") raise(number);
  return kind == "exit" ? number : 125;
}

int main(int, char** arguments) {
  std::ofstream calls("/tmp/calls", std::ios::app);
  calls << std::filesystem::read_symlink("/proc/self/exe").string();
  for (; *arguments != nullptr; ++arguments) calls << ' ' << *arguments;
  calls << '\n' << std::flush;
  std::cout << std::ifstream("/tmp/stand-in-output").rdbuf() << std::flush;
  return endAsOrdered();
}
