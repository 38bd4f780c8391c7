// PROGRAM CORPUS DICTIONARY [SEED]: gives a fuzz target the files of its corpus, then random inputs
// made of their lines and of the words of its dictionary: a short test of its properties where
// there is no fuzzer. The same seed makes the same inputs; without one it is always the same.
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "fuzz/Fuzz.h"

namespace {

constexpr int kRounds = 10000;
constexpr const char* kUsualSeed = "1";
constexpr std::size_t kLineBuffers[] = {1024, 4096, 8000};

// What is being checked, and the file for it if it ends the program; read by the signal handler.
std::string current_input, current_name, found_path;

// Keeps the input that ends the program as a file for the corpus; calls only what a signal handler
// may. What cannot be written is lost.
extern "C" void keepInput(int) {
  const int file = open(found_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  (void)!write(file, current_input.data(), current_input.size());
  for (const std::string* text : {&current_name, &found_path})
    (void)!write(STDERR_FILENO, text->data(), text->size());
}

// Any end by a signal keeps the input first; then the signal does what it does by default.
void watchForEnds() {
  struct sigaction action = {};
  action.sa_handler = &keepInput;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int number : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL})
    (void)sigaction(number, &action, nullptr);  // without it, an end shows less
}

void check(const std::string& name, const std::string& input) {
  current_name = name + ": the input is in ";
  current_input = input;
  tunadm::checkInput(input);
}

std::string contentOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Checks the files of the corpus, and returns what random inputs are made of.
std::vector<std::string> checkCorpus(const char* corpus, const char* dictionary) {
  std::vector<std::string> pieces = {"\n", "\r\n", " ", "#", "\\", "\"", "\xff", std::string(1, 0)};
  for (std::string word : tunadm::fgetsLines(contentOf(dictionary), 1000)) {
    word = word.substr(1, word.size() - 3);  // without its quotes
    for (auto at = word.find("\\x"); at != word.npos; at = word.find("\\x", at + 1))
      word.replace(at, 4, 1, static_cast<char>(std::stoi(word.substr(at + 2, 2), nullptr, 16)));
    pieces.push_back(word);
  }
  for (const auto& file : std::filesystem::directory_iterator(corpus)) {
    const std::string content = contentOf(file);
    check(file.path(), content);
    for (const std::string& line : tunadm::fgetsLines(content, 1000)) pieces.push_back(line);
  }
  return pieces;
}

}  // namespace

int main(int count, char** arguments) {
  found_path = "found-" + std::filesystem::path(arguments[1]).filename().string();
  watchForEnds();
  const std::vector<std::string> pieces = checkCorpus(arguments[1], arguments[2]);
  const std::string seed = count > 3 ? arguments[3] : kUsualSeed;
  std::printf("seed: %s\n", seed.c_str());
  std::mt19937 random(static_cast<unsigned>(std::stoul(seed)));
  for (int round = 0; round < kRounds; ++round) {
    std::string text;
    for (auto left = random() % 40; left > 0; --left) {
      text += pieces[random() % pieces.size()];
      // Now and then about as much as one of the readers' buffers takes.
      if (random() % 50 == 0) text.append(kLineBuffers[random() % 3] - random() % 3, 'x');
    }
    check("seed " + seed + ", round " + std::to_string(round), text);
  }
}
