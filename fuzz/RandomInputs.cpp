// Gives a fuzz target the files of its corpus, then random inputs made of their lines and of the
// words of its dictionary: a short test of its properties where there is no fuzzer.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "fuzz/Fuzz.h"

namespace {

constexpr int kRounds = 10000;
constexpr std::size_t kLineBuffers[] = {1024, 4096, 8000};

std::string contentOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

int main(int, char** arguments) {
  std::vector<std::string> pieces = {"\n", "\r\n", " ", "#", "\\", "\"", "\xff", std::string(1, 0)};
  for (std::string word : tunadm::fgetsLines(contentOf(arguments[2]), 1000)) {
    word = word.substr(1, word.size() - 3);  // without its quotes
    for (auto at = word.find("\\x"); at != word.npos; at = word.find("\\x", at + 1))
      word.replace(at, 4, 1, static_cast<char>(std::stoi(word.substr(at + 2, 2), nullptr, 16)));
    pieces.push_back(word);
  }
  for (const auto& file : std::filesystem::directory_iterator(arguments[1])) {
    const std::string content = contentOf(file);
    tunadm::checkInput(content);
    for (const std::string& line : tunadm::fgetsLines(content, 1000)) pieces.push_back(line);
  }
  std::mt19937 random(1);
  for (int round = 0; round < kRounds; ++round) {
    std::string text;
    for (auto count = random() % 40; count > 0; --count) {
      text += pieces[random() % pieces.size()];
      // Now and then about as much as one of the readers' buffers takes.
      if (random() % 50 == 0) text.append(kLineBuffers[random() % 3] - random() % 3, 'x');
    }
    tunadm::checkInput(text);
  }
}
