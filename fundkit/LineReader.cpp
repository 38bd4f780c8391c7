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

std::string_view trimGraphic(std::string_view text) {
  while (!text.empty() && !isGraphic(text.front())) text.remove_prefix(1);
  while (!text.empty() && !isGraphic(text.back())) text.remove_suffix(1);
  return text;
}

std::string maskNonAscii(std::string_view text) {
  std::string masked(text);
  for (char& byte : masked) {
    if ((static_cast<unsigned char>(byte) & 0x80U) != 0) byte = '?';
  }
  return masked;
}

}  // namespace tunadm
