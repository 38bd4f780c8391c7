// What tests put at the paths of a host's init-system commands. Each run appends to /tmp/calls a
// line of the path that the program was run by and of all its arguments, the name that it was
// given first; then it prints what /tmp/stand-in-output holds. It ends as the first line of
// /tmp/stand-in-end tells ("exit 7", "signal 15") and takes that line away; without a line, with 0.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

namespace {

void recordCall(char** arguments) {
  std::error_code unknown;  // shows as a line that begins with a blank
  std::ofstream calls("/tmp/calls", std::ios::app);
  calls << std::filesystem::read_symlink("/proc/self/exe", unknown).string();
  for (; *arguments != nullptr; ++arguments) calls << ' ' << *arguments;
  calls << '\n';
}

// An order that cannot be read is not a success.
int endAsOrdered() {
  constexpr const char* path = "/tmp/stand-in-end";
  std::ifstream orders(path);
  std::string order;
  if (!std::getline(orders, order)) return 0;
  std::ostringstream rest;
  rest << orders.rdbuf();
  std::ofstream(path) << rest.str();
  std::string kind;
  int number = 0;
  std::istringstream(order) >> kind >> number;
  if (kind == "signal") raise(number);
  return kind == "exit" ? number : 125;
}

}  // namespace

int main(int, char** arguments) {
  recordCall(arguments);
  std::cout << std::ifstream("/tmp/stand-in-output").rdbuf() << std::flush;
  return endAsOrdered();
}
