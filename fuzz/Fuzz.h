// What the fuzz targets share.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace tunadm {

// Each target is one such function.
void checkInput(const std::string& text);

// The fuzzer reports and keeps an input that ends the program.
inline void require(bool holds, const char* what) {
  if (!holds && std::fprintf(stderr, "does not hold: %s\n", what) != 0) std::abort();
}

// What fgets with a buffer of `size` bytes makes of `text`, every byte of it.
inline std::vector<std::string> fgetsLines(std::string_view text, std::size_t size) {
  std::vector<std::string> lines;
  for (; !text.empty(); text.remove_prefix(lines.back().size())) {
    const std::string_view most = text.substr(0, size - 1);
    lines.emplace_back(most.substr(0, std::min(most.find('\n'), most.size() - 1) + 1));
  }
  return lines;
}

// `text` without the bytes at its ends that show nothing.
inline std::string_view trimmed(std::string_view text) {
  const auto shows = [](char byte) { return byte > 32 && byte < 127; };
  const auto begin = std::find_if(text.begin(), text.end(), shows);
  const auto end = std::find_if(text.rbegin(), text.rend(), shows).base();
  return begin < end ? std::string_view(begin, end) : std::string_view();
}

// The path of a file that holds `content` until the next call.
inline std::string fileWith(std::string_view content) {
  static const int file = memfd_create("input", MFD_CLOEXEC);
  const ssize_t written = pwrite(file, content.data(), content.size(), 0);
  require(written >= 0 && ftruncate(file, written) == 0, "the file can be written");
  return "/proc/self/fd/" + std::to_string(file);
}

}  // namespace tunadm
