#include "json/JsonScanner.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <system_error>

namespace tunadm {
namespace {

bool isLetter(char byte) { return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); }

bool isWordByte(char byte) { return isLetter(byte) || byte == '.' || byte == '_'; }

bool endsPlainText(char byte) { return byte == '"' || byte == '\\'; }

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

class Scanner {
 public:
  Scanner(std::string_view text, TokenReceiver* receiver)
      : next_(text.data()), end_(text.data() + text.size()), receiver_(*receiver) {}

  void run() {
    while (next_ != end_) scanToken();
  }

 private:
  // Each begins at next_ and moves it past the token.
  void scanToken();
  void scanOther();
  void scanString();
  void scanNumber();
  void scanWord();

  const char* next_;
  const char* end_;
  TokenReceiver& receiver_;
  std::string buffer_;  // for a string with escapes
};

void Scanner::scanToken() {
  switch (*next_) {
    case ' ':
    case '\t':
    case '\n':
    case '\r':
      ++next_;
      return;
    case '"':
      return scanString();
    case '[':
      ++next_;
      return receiver_.onLeftBracket();
    case '{':
      ++next_;
      return receiver_.onLeftCurly();
    case ']':
      ++next_;
      return receiver_.onRightBracket();
    case '}':
      ++next_;
      return receiver_.onRightCurly();
    case ',':
      ++next_;
      return receiver_.onComma();
    case ':':
      ++next_;
      return receiver_.onColon();
    default:
      return scanOther();
  }
}

void Scanner::scanOther() {
  const char byte = *next_;
  if (byte == '-' || byte == '+' || byte == '.' || isDigit(byte)) return scanNumber();
  if (isLetter(byte)) return scanWord();
  ++next_;
  receiver_.onError("scanner error");
}

void Scanner::scanString() {
  const char* const begin = next_ + 1;
  const char* stop = std::find_if(begin, end_, endsPlainText);
  const bool escapes = stop != end_ && *stop == '\\';
  while (stop != end_ && *stop != '"') {
    if (*stop == '\\' && ++stop == end_) break;  // skips an escaped quote
    ++stop;
  }
  if (stop == end_) {
    next_ = end_;
    return;
  }
  next_ = stop + 1;
  const std::string_view content(begin, static_cast<std::size_t>(stop - begin));
  if (!escapes) return receiver_.onValue(content);
  unescape(content, &buffer_);
  receiver_.onValue(std::string_view(buffer_));
}

void Scanner::scanNumber() {
  const char* const begin = next_;
  const char* const digits = begin + (*begin == '-' ? 1 : 0);
  std::uint64_t whole = 0;
  for (next_ = digits; next_ != end_ && isDigit(*next_); ++next_) {
    whole = 10 * whole + static_cast<std::uint64_t>(*next_ - '0');
  }
  const std::ptrdiff_t length = next_ - digits;
  if (length > 0 && length <= std::numeric_limits<double>::digits10 &&
      (next_ == end_ || endsNumber(*next_))) {
    // Most numbers are short and whole, and need nothing more.
    const auto number = static_cast<double>(whole);
    return receiver_.onValue(digits == begin ? number : -number);
  }
  next_ = std::find_if(next_, end_, endsNumber);
  receiver_.onValue(toNumber(std::string_view(begin, static_cast<std::size_t>(next_ - begin))));
}

void Scanner::scanWord() {
  const char* const begin = next_;
  next_ = std::find_if_not(begin, end_, isWordByte);
  const std::string_view word(begin, static_cast<std::size_t>(next_ - begin));
  if (word == "null") return receiver_.onNull();
  if (word == "true") return receiver_.onValue(true);
  if (word == "false") return receiver_.onValue(false);
  receiver_.onName(word);
}

}  // namespace

bool scanJson(const char* text, std::ptrdiff_t length, TokenReceiver* receiver) {
  if (text == nullptr) return false;
  const std::string_view whole = length < 0
                                     ? std::string_view(text)
                                     : std::string_view(text, static_cast<std::size_t>(length));
  if (whole.empty()) return false;
  Scanner(whole, receiver).run();
  return true;
}

}  // namespace tunadm
