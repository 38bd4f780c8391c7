#include "fundkit/TerminalText.h"

#include <cstddef>

namespace tunadm {
namespace {

unsigned char byteAt(std::string_view text, std::size_t index) {
  return index < text.size() ? static_cast<unsigned char>(text[index]) : 0;
}

// The length of a sequence by its first byte; 0 for a byte that begins none.
std::size_t lengthBy(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xc2 && first <= 0xdf) return 2;
  if (first >= 0xe0 && first <= 0xef) return 3;
  return first >= 0xf0 && first <= 0xf4 ? 4 : 0;
}

// The length of the valid UTF-8 sequence that `text` begins with; 0 if there is none.
std::size_t sequenceLength(std::string_view text) {
  const unsigned char first = byteAt(text, 0);
  const unsigned char second = byteAt(text, 1);
  const std::size_t length = lengthBy(first);
  // Overlong sequences, surrogates, and what exceeds U+10FFFF show in the second byte.
  if ((first == 0xe0 && second < 0xa0) || (first == 0xed && second > 0x9f)) return 0;
  if ((first == 0xf0 && second < 0x90) || (first == 0xf4 && second > 0x8f)) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byteAt(text, i) & 0xc0U) != 0x80) return 0;
  }
  return length;
}

bool isControl(std::string_view sequence) {
  const unsigned char first = byteAt(sequence, 0);
  if (sequence.size() == 1) return first < 0x20 || (first >= 0x7f && first <= 0x9f);
  return first == 0xc2 && byteAt(sequence, 1) <= 0x9f;
}

}  // namespace

std::string withoutControls(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const std::size_t length = sequenceLength(text);
    const std::string_view sequence = text.substr(0, length == 0 ? 1 : length);
    if (isControl(sequence)) {
      shown.push_back('?');
    } else {
      shown.append(sequence);
    }
    text.remove_prefix(sequence.size());
  }
  return shown;
}

}  // namespace tunadm
