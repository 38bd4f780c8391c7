// Texts as seen by a reader that takes lines into a fixed C buffer.
#pragma once

#include <cstddef>
#include <string_view>

namespace tunadm {

// Deliberate: a line that does not fit the buffer comes as several pieces, each a line of its own.
struct LinePiece {
  std::string_view raw;   // every byte, with the line feed if it is there
  std::string_view text;  // the part before the first NUL byte: what C string functions see
};

// Walks over a text in the pieces that fgets with a buffer of `buffer_size` bytes (at least 2)
// would return. The text must outlive the reader and its pieces.
class LineReader {
 public:
  LineReader(std::string_view text, std::size_t buffer_size)
      : rest_(text), longest_(buffer_size - 1) {}

  // False at the end of the text; `piece` is then unchanged.
  [[nodiscard]] bool next(LinePiece* piece);

 private:
  std::string_view rest_;
  std::size_t longest_;
};

}  // namespace tunadm
