// generate TEMPLATE OUTPUT: writes a template with its marks replaced by what the catalogue of
// commands says, so that the manual page and the completions know what the program knows.
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>

#include "packaging/generate/Pieces.h"

namespace {

struct Mark {
  std::string_view name;
  std::string (*piece)();
};

constexpr Mark kMarks[] = {
    {"@COMMANDS@", &tunadm::manualCommands},      {"@STATUSES@", &tunadm::manualStatuses},
    {"@DETAIL_KEYS@", &tunadm::manualDetailKeys}, {"@TABLE@", &tunadm::completionTable},
    {"@OPTIONS@", &tunadm::completionOptions},
};

// Returns whether the mark stood there.
bool replaceMark(const Mark& mark, std::string* text) {
  const std::size_t at = text->find(mark.name);
  if (at == std::string::npos) return false;
  text->replace(at, mark.name.size(), mark.piece());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: generate TEMPLATE OUTPUT\n";
    return EXIT_FAILURE;
  }
  std::ifstream input(argv[1]);
  std::string text(std::istreambuf_iterator<char>(input), {});
  bool replaced = false;
  for (const Mark& mark : kMarks) replaced |= replaceMark(mark, &text);
  std::ofstream output(argv[2]);
  output << text;
  output.close();
  if (!replaced || !output) {
    std::cerr << "generate: not a template, or not written: " << argv[1] << ", " << argv[2] << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
