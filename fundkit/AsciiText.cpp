#include "fundkit/AsciiText.h"

namespace tunadm {

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
