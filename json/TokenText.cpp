#include "json/TokenText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <system_error>

namespace tunadm {
namespace {

bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }

bool isBlank(char byte) { return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r'; }

// Any other byte belongs to the number, even a colon or a quote.
bool endsNumber(char byte) { return byte == ',' || byte == '}' || byte == ']' || isBlank(byte); }

// The byte that a backslash and `escaped` stand for. Deliberate: an unknown escape becomes a
// question mark, and so does the u of a code point; its digits stay as they are.
char unescapedByte(char escaped) {
  switch (escaped) {
    case '"':
    case '\\':
    case '/':
    case '\'':
      return escaped;
    case 'b':
      return '\b';
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    default:
      return '?';
  }
}

// As strtod(3). Plain forms are left to from_chars, which is several times as fast and reads them
// alike. Hexadecimal digits, a plus sign and numbers that overflow are not plain.
double toNumber(std::string_view token) {
  const char* const end = token.data() + token.size();
  const std::size_t sign = token.front() == '-' ? 1 : 0;
  if (token.size() > sign && isDigit(token[sign])) {
    double number = 0;
    const auto [stop, error] = std::from_chars(token.data(), end, number);
    if (error == std::errc() && (stop == end || (*stop | 0x20) != 'x')) return number;
  }
  // strtod needs a NUL to stop at, which the text need not have.
  return std::strtod(std::string(token).c_str(), nullptr);
}

// Powers of ten that a double holds exactly, as it does every whole number of 15 digits. The
// quotient of two such numbers is therefore rounded once, as strtod(3) rounds.
constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
constexpr std::ptrdiff_t kMostExactDigits = std::numeric_limits<double>::digits10;
static_assert(std::size(kPowersOfTen) == kMostExactDigits + 1);

// Moves `next` over digits and appends them to `number`.
const char* readDigits(const char* next, const char* end, std::uint64_t* number) {
  for (; next != end && isDigit(*next); ++next) {
    *number = 10 * *number + static_cast<std::uint64_t>(*next - '0');
  }
  return next;
}

}  // namespace

void unescape(std::string_view content, std::string* out) {
  out->clear();
  std::size_t begin = 0;
  for (;;) {
    const std::size_t backslash = content.find('\\', begin);
    out->append(content.substr(begin, backslash - begin));
    // A backslash at the very end is dropped.
    if (backslash == std::string_view::npos || backslash + 1 == content.size()) return;
    out->push_back(unescapedByte(content[backslash + 1]));
    begin = backslash + 2;
  }
}

double readNumber(const char** next, const char* end) {
  const char* const begin = *next;
  const char* const digits = begin + (*begin == '-' ? 1 : 0);
  std::uint64_t whole = 0;
  const char* const point = readDigits(digits, end, &whole);
  const char* stop = point;
  std::ptrdiff_t decimals = 0;
  if (point != end && *point == '.') {
    stop = readDigits(point + 1, end, &whole);
    decimals = stop - point - 1;
  }
  if (point > digits && point - digits + decimals <= kMostExactDigits &&
      (stop == end || endsNumber(*stop))) {
    // Most numbers are as short as that, and need nothing more.
    *next = stop;
    const double number = static_cast<double>(whole) / kPowersOfTen[decimals];
    return digits == begin ? number : -number;
  }
  *next = std::find_if(stop, end, endsNumber);
  return toNumber(std::string_view(begin, static_cast<std::size_t>(*next - begin)));
}

}  // namespace tunadm
