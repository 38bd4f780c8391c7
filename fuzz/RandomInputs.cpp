// PROGRAM CORPUS DICTIONARY [SEED]: gives a fuzz target the files of its corpus, then random inputs
// made of their lines and of the words of its dictionary: a short test of its properties where
// there is no fuzzer. The same seed makes the same inputs; without one it is always the same.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "fuzz/Fuzz.h"

namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 10000;
constexpr const char* kUsualSeed = "1";
constexpr std::size_t kLineBuffers[] = {1024, 4096, 8000};

// Each input is in the file while it is checked, so one that ends the program is still there
// afterwards. It is a new file each time: some file systems flush one that is cut and rewritten.
void check(const fs::path& found, const std::string& input) {
  fs::remove(found);
  std::ofstream(found, std::ios::binary) << input;
  tunadm::checkInput(input);
}

std::string contentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Checks the files of the corpus, and returns what random inputs are made of.
std::vector<std::string> checkCorpus(const char* corpus, const char* dictionary,
                                     const fs::path& found) {
  std::vector<std::string> pieces = {"\n", "\r\n", " ", "#", "\\", "\"", "\xff", std::string(1, 0)};
  for (std::string word : tunadm::fgetsLines(contentOf(dictionary), 1000)) {
    word = word.substr(1, word.size() - 3);  // without its quotes
    for (auto at = word.find("\\x"); at != word.npos; at = word.find("\\x", at + 1))
      word.replace(at, 4, 1, static_cast<char>(std::stoi(word.substr(at + 2, 2), nullptr, 16)));
    pieces.push_back(word);
  }
  for (const auto& file : fs::directory_iterator(corpus)) {
    const std::string content = contentOf(file);
    check(found, content);
    for (const std::string& line : tunadm::fgetsLines(content, 1000)) pieces.push_back(line);
  }
  return pieces;
}

}  // namespace

int main(int count, char** arguments) {
  const fs::path found = fs::absolute("found-" + fs::path(arguments[1]).filename().string());
  const std::string seed = count > 3 ? arguments[3] : kUsualSeed;
  (void)std::fprintf(stderr, "seed %s; an input that ends this program is kept in %s\n",
                     seed.c_str(), found.c_str());
  const std::vector<std::string> pieces = checkCorpus(arguments[1], arguments[2], found);
  std::mt19937 random(static_cast<unsigned>(std::stoul(seed)));
  for (int round = 0; round < kRounds; ++round) {
    std::string text;
    for (auto left = random() % 40; left > 0; --left) {
      text += pieces[random() % pieces.size()];
      // Now and then about as much as one of the readers' buffers takes.
      if (random() % 50 == 0) text.append(kLineBuffers[random() % 3] - random() % 3, 'x');
    }
    check(found, text);
  }
  fs::remove(found);
}
