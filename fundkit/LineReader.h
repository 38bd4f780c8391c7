// Texts as seen by a reader that takes lines into a fixed C buffer.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tunadm {

// Deliberate: a line that does not fit the buffer comes as several pieces, each a line of its own.
struct LinePiece {
  std::string_view raw;   // Every byte, with the line feed if it is there.
  std::string_view text;  // The part before the first NUL byte: what C string functions see.
};

// Walks over a text in the pieces that fgets with a buffer of `buffer_size` bytes (at least 2)
// would give. The text must outlive the reader and its pieces.
class LineReader {
 public:
  LineReader(std::string_view text, std::size_t buffer_size)
      : rest_(text), longest_(buffer_size - 1) {}

  // False at the end of the text; `piece` is then unchanged.
  bool next(LinePiece* piece);

 private:
  std::string_view rest_;
  std::size_t longest_;
};

// True for the bytes that isgraph accepts in the C locale, whatever the current locale is.
constexpr bool isGraphic(char byte) { return byte > ' ' && byte < '\x7f'; }

// `text` without its leading and trailing bytes that are not graphic.
std::string_view trimGraphic(std::string_view text);

// A copy with '?' in the place of each byte of 128 and above.
std::string maskNonAscii(std::string_view text);

}  // namespace tunadm
