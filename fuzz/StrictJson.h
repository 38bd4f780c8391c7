// A strict reader of JSON texts (RFC 8259), for what other programs must be able to read.
#pragma once

#include <cstddef>
#include <string_view>

namespace tunadm {

class StrictJson {
 public:
  explicit StrictJson(std::string_view text) : rest_(text) {}

  // Whether the text is one value, in UTF-8.
  bool isWhole() { return value() && rest_.empty(); }

 private:
  unsigned char next() const { return rest_.empty() ? 0 : static_cast<unsigned char>(rest_[0]); }

  bool take(std::string_view word) {
    if (!rest_.starts_with(word)) return false;
    rest_.remove_prefix(word.size());
    return true;
  }

  bool value() {
    if (next() == '{') return members('}', true);
    if (next() == '[') return members(']', false);
    return next() == '"' ? string() : take("true") || take("false") || take("null") || integer();
  }

  bool members(char end, bool named) {
    rest_.remove_prefix(1);
    if (next() == end) return take({&end, 1});
    do {
      if (named && !(string() && take(":"))) return false;
      if (!value()) return false;
    } while (take(","));
    return take({&end, 1});
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
    while (next() != '"') {
      if (next() < 0x20 || !(next() == '\\' ? escape() : character())) return false;
    }
    return take("\"");
  }

  bool escape() {
    rest_.remove_prefix(1);
    if (!take("u")) {
      const bool known = std::string_view("\"\\/bfnrt").find(rest_.substr(0, 1)) != rest_.npos;
      rest_.remove_prefix(rest_.empty() ? 0 : 1);
      return known;
    }
    const std::size_t digits = rest_.substr(0, 4).find_first_not_of("0123456789abcdefABCDEF");
    if (digits != rest_.npos || rest_.size() < 4) return false;
    rest_.remove_prefix(4);
    return true;
  }

  bool character() {
    const unsigned char first = next();
    rest_.remove_prefix(1);
    if (first < 0x80) return true;
    const int more = first >= 0xf0 ? 3 : first >= 0xe0 ? 2 : 1;
    if (first < 0xc0 || first >= 0xf8) return false;
    unsigned code = first & (0x3fu >> more);
    for (int i = 0; i < more; ++i) {
      if ((next() & 0xc0) != 0x80) return false;
      code = code << 6 | (next() & 0x3fu);
      rest_.remove_prefix(1);
    }
    constexpr unsigned kLeast[] = {0, 0x80, 0x800, 0x10000};
    return code >= kLeast[more] && code <= 0x10ffff && (code < 0xd800 || code > 0xdfff);
  }

  std::string_view rest_;
};

}  // namespace tunadm
