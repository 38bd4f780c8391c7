// Reading the text of single tokens. Only the scanner uses these.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace tunadm {

inline bool isLetter(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

inline bool isWordByte(char byte) { return isLetter(byte) || byte == '.' || byte == '_'; }

inline bool startsNumber(char byte) {
  return (byte >= '0' && byte <= '9') || byte == '-' || byte == '+' || byte == '.';
}

// The lowest byte of `word` that equals `byte` has its high bit set in the result; those below it
// are 0.
constexpr std::uint64_t markBytes(std::uint64_t word, char byte) {
  constexpr std::uint64_t kLowBits = 0x0101010101010101;
  constexpr std::uint64_t kHighBits = kLowBits << 7;
  const std::uint64_t difference = word ^ (kLowBits * static_cast<unsigned char>(byte));
  return (difference - kLowBits) & ~difference & kHighBits;
}

// The first quote or backslash in a text, or its end. Looks at eight bytes at a time, as most bytes
// of a document belong to strings.
[[nodiscard]] inline const char* findQuoteOrBackslash(const char* begin, const char* end) {
  for (std::uint64_t word = 0; end - begin >= static_cast<std::ptrdiff_t>(sizeof(word));
       begin += sizeof(word)) {
    std::memcpy(&word, begin, sizeof(word));
    const std::uint64_t marks = markBytes(word, '"') | markBytes(word, '\\');
    if (marks != 0 && std::endian::native != std::endian::little) break;
    if (marks != 0) return begin + std::countr_zero(marks) / 8;
  }
  return std::find_if(begin, end, [](char byte) { return byte == '"' || byte == '\\'; });
}

// Replaces `out` by `content` with each escape replaced by the byte that it stands for.
void unescape(std::string_view content, std::string* out);

// Reads the number at `*next`, as strtod(3) would, and moves `*next` to the delimiter after it.
[[nodiscard]] double readNumber(const char** next, const char* end);

}  // namespace tunadm
