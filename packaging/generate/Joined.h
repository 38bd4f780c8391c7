// The joining of texts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tunadm {

// `parts` with `separator` between them.
inline std::string joined(const std::vector<std::string_view>& parts, std::string_view separator) {
  std::string text;
  for (const std::string_view& part : parts) {
    if (&part != &parts.front()) text += separator;
    text += part;
  }
  return text;
}

}  // namespace tunadm
