// A strict reader of JSON texts (RFC 8259), for what other programs must be able to read.
#pragma once

#include <algorithm>
#include <clocale>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <string_view>

namespace tunadm {

class StrictJson {
 public:
  explicit StrictJson(std::string_view text) : rest_(text) {}

  // Whether the text is one value, in UTF-8.
  bool isWhole() { return isUtf8() && value() && rest_.empty(); }

 private:
  // No value ends within a character, so what a character is missing shows in what follows it.
  bool isUtf8() const {
    (void)std::setlocale(LC_CTYPE, "C.UTF-8");
    std::mbstate_t state = {};
    const char* text = rest_.data();
    return mbsnrtowcs(nullptr, &text, rest_.size(), 0, &state) != static_cast<std::size_t>(-1);
  }

  unsigned char next() const { return rest_.empty() ? 0 : static_cast<unsigned char>(rest_[0]); }

  bool take(std::string_view word) {
    if (!rest_.starts_with(word)) return false;
    rest_.remove_prefix(word.size());
    return true;
  }

  bool value() {
    if (take("{")) return members("}", true);
    if (take("[")) return members("]", false);
    return next() == '"' ? string() : take("true") || take("false") || take("null") || integer();
  }

  bool members(std::string_view end, bool named) {
    if (take(end)) return true;
    do {
      if ((named && !(string() && take(":"))) || !value()) return false;
    } while (take(","));
    return take(end);
  }

  // The program writes no other numbers.
  bool integer() {
    (void)take("-");
    if (next() == '0') return take("0");
    const std::size_t digits = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
    rest_.remove_prefix(digits);
    return digits > 0;
  }

  bool string() {
    if (!take("\"")) return false;
    while (!take("\"")) {
      const bool escape = take("\\"), digits = escape && take("u");
      if (next() < 0x20 || (escape && !digits && std::strchr("\"\\/bfnrt", next()) == nullptr))
        return false;
      if (digits && (rest_.size() < 4 || rest_.find_first_not_of("0123456789abcdefABCDEF") < 4))
        return false;
      rest_.remove_prefix(digits ? 4 : 1);
    }
    return true;
  }

  std::string_view rest_;
};

}  // namespace tunadm
