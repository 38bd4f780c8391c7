// Printable ASCII: what counts as such, trimming to it, and masking everything else.
#pragma once

#include <string>
#include <string_view>

namespace tunadm {

// True for the bytes that isgraph accepts in the C locale, whatever the current locale is.
constexpr bool isGraphic(char byte) { return byte > ' ' && byte < '\x7f'; }

// `text` without its leading and trailing bytes that are not graphic.
std::string_view trimGraphic(std::string_view text);

// A copy with '?' in the place of each byte of 128 and above.
std::string maskNonAscii(std::string_view text);

}  // namespace tunadm
