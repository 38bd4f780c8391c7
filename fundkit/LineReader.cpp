#include "fundkit/LineReader.h"

namespace tunadm {

bool LineReader::next(LinePiece* piece) {
  if (rest_.empty()) return false;
  std::string_view raw = rest_.substr(0, longest_);
  if (const std::size_t end = raw.find('\n'); end != raw.npos) raw = raw.substr(0, end + 1);
  rest_.remove_prefix(raw.size());
  piece->raw = raw;
  piece->text = raw.substr(0, raw.find('\0'));
  return true;
}

}  // namespace tunadm
