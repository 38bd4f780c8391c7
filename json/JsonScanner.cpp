#include "json/JsonScanner.h"

#include <cstdlib>
#include <string>

namespace tunadm {

namespace {

bool isLetter(char byte) { return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); }

bool isBlank(char byte) { return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r'; }

// Anything else belongs to the number, a colon and quotes too.
bool endsNumber(char byte) { return byte == ',' || byte == '}' || byte == ']' || isBlank(byte); }

// The byte that a backslash and `escaped` stand for. Deliberate: what is unknown becomes a question
// mark, and so does the u of a code point, whose digits then stay as they are.
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
    // A backslash at the very end stands for nothing.
    if (backslash == std::string_view::npos || backslash + 1 == content.size()) return;
    out->push_back(unescapedByte(content[backslash + 1]));
    begin = backslash + 2;
  }
}

class Scanner {
 public:
  Scanner(std::string_view text, TokenReceiver* receiver) : text_(text), receiver_(*receiver) {}

  void run() {
    while (position_ < text_.size()) scanToken();
  }

 private:
  // Each begins at position_ and leaves it behind the token.
  void scanToken();
  void scanPunctuation(char byte);
  void scanString();
  void scanNumber();
  void scanWord();

  std::string_view text_;
  TokenReceiver& receiver_;
  std::size_t position_ = 0;
  std::string buffer_;  // for what cannot be passed on as it stands in the text
};

void Scanner::scanToken() {
  const char byte = text_[position_];
  if (isBlank(byte)) {
    ++position_;
  } else if (byte == '"') {
    scanString();
  } else if (byte == '-' || byte == '+' || byte == '.' || (byte >= '0' && byte <= '9')) {
    scanNumber();
  } else if (isLetter(byte)) {
    scanWord();
  } else {
    ++position_;
    scanPunctuation(byte);
  }
}

void Scanner::scanPunctuation(char byte) {
  switch (byte) {
    case '[':
      return receiver_.onLeftBracket();
    case '{':
      return receiver_.onLeftCurly();
    case ']':
      return receiver_.onRightBracket();
    case '}':
      return receiver_.onRightCurly();
    case ',':
      return receiver_.onComma();
    case ':':
      return receiver_.onColon();
    default:
      return receiver_.onError("scanner error");
  }
}

void Scanner::scanString() {
  const std::size_t begin = position_ + 1;
  std::size_t end = begin;
  bool escapes = false;
  while (end < text_.size() && text_[end] != '"') {
    if (text_[end] == '\\') {
      escapes = true;
      ++end;  // also over a quote
    }
    ++end;
  }
  if (end >= text_.size()) {
    position_ = text_.size();
    return;
  }
  position_ = end + 1;
  const std::string_view content = text_.substr(begin, end - begin);
  if (!escapes) return receiver_.onValue(content);
  unescape(content, &buffer_);
  receiver_.onValue(std::string_view(buffer_));
}

void Scanner::scanNumber() {
  const std::size_t begin = position_;
  while (position_ < text_.size() && !endsNumber(text_[position_])) ++position_;
  // strtod needs an end to stop at, and the text need not have one.
  buffer_.assign(text_, begin, position_ - begin);
  receiver_.onValue(std::strtod(buffer_.c_str(), nullptr));
}

void Scanner::scanWord() {
  const std::size_t begin = position_;
  while (position_ < text_.size() &&
         (isLetter(text_[position_]) || text_[position_] == '.' || text_[position_] == '_')) {
    ++position_;
  }
  const std::string_view word = text_.substr(begin, position_ - begin);
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
