#include "core/JsonString.h"

#include <cstddef>

namespace tunadm {
namespace {

constexpr std::string_view kReplacement = "\xef\xbf\xbd";  // U+FFFD

unsigned char byteAt(std::string_view text, std::size_t at) {
  return static_cast<unsigned char>(text[at]);
}

bool isPlain(unsigned char byte) {
  return byte >= 0x20 && byte < 0x80 && byte != '"' && byte != '\\';
}

void appendEscape(unsigned char byte, std::string* json) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  constexpr std::string_view kBytes = "\"\\\b\f\n\r\t";
  constexpr std::string_view kLetters = "\"\\bfnrt";
  *json += '\\';
  if (const std::size_t at = kBytes.find(static_cast<char>(byte)); at != std::string_view::npos) {
    *json += kLetters[at];
  } else {
    json->append("u00").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 0xf]);
  }
}

// The well-formed sequences of more than one byte that begin with a range of bytes (table 3-7 of
// the Unicode standard). All bytes after the second range from 80 to bf.
struct Sequence {
  unsigned char first_from, first_to;
  unsigned char second_from, second_to;
  std::size_t length;
};

constexpr Sequence kSequences[] = {
    {0xc2, 0xdf, 0x80, 0xbf, 2}, {0xe0, 0xe0, 0xa0, 0xbf, 3}, {0xe1, 0xec, 0x80, 0xbf, 3},
    {0xed, 0xed, 0x80, 0x9f, 3}, {0xee, 0xef, 0x80, 0xbf, 3}, {0xf0, 0xf0, 0x90, 0xbf, 4},
    {0xf1, 0xf3, 0x80, 0xbf, 4}, {0xf4, 0xf4, 0x80, 0x8f, 4},
};

// How many bytes at the start of `text` are the start of a sequence, or all of it.
std::size_t matchingBytes(std::string_view text, const Sequence& sequence) {
  std::size_t count = 1;
  for (; count < sequence.length && count < text.size(); ++count) {
    const unsigned char from = count == 1 ? sequence.second_from : 0x80;
    const unsigned char to = count == 1 ? sequence.second_to : 0xbf;
    if (byteAt(text, count) < from || byteAt(text, count) > to) break;
  }
  return count;
}

// Appends the character above 7f that `text` begins with, or what replaces it. Returns how many
// bytes that took.
std::size_t appendCharacter(std::string_view text, std::string* json) {
  for (const Sequence& sequence : kSequences) {
    const unsigned char first = byteAt(text, 0);
    if (first < sequence.first_from || first > sequence.first_to) continue;
    const std::size_t count = matchingBytes(text, sequence);
    json->append(count == sequence.length ? text.substr(0, count) : kReplacement);
    return count;
  }
  json->append(kReplacement);
  return 1;
}

}  // namespace

void appendJsonString(std::string_view text, std::string* json) {
  *json += '"';
  while (!text.empty()) {
    std::size_t count = 0;
    while (count < text.size() && isPlain(byteAt(text, count))) ++count;
    json->append(text.substr(0, count));
    text.remove_prefix(count);
    if (text.empty()) break;
    if (byteAt(text, 0) < 0x80) {
      appendEscape(byteAt(text, 0), json);
      text.remove_prefix(1);
    } else {
      text.remove_prefix(appendCharacter(text, json));
    }
  }
  *json += '"';
}

}  // namespace tunadm
