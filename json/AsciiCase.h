// Comparing texts without regard to ASCII letter case, whatever the locale. Other bytes are equal
// only to themselves.
//
// Here because json/ is the lowest folder: every other one may use this header too.
#pragma once

#include <cstddef>
#include <string_view>

namespace tunadm {

[[nodiscard]] constexpr char asciiLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

[[nodiscard]] constexpr bool equalIgnoringCase(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (asciiLower(left[i]) != asciiLower(right[i])) return false;
  }
  return true;
}

}  // namespace tunadm
