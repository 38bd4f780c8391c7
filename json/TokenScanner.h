// The scanner as a template. Calls to a receiver whose class is final need no virtual table, which
// makes the parser faster by a tenth; scanJson serves all other receivers.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "json/TokenText.h"

namespace tunadm {

// Passes the tokens of a text to a receiver, as JsonScanner.h describes.
template <typename Receiver>
class TokenScanner {
 public:
  TokenScanner(std::string_view text, Receiver* receiver)
      : next_(text.data()), end_(text.data() + text.size()), receiver_(*receiver) {}

  void run() {
    while (next_ != end_) scanToken();
  }

 private:
  // Each begins at next_ and moves it past the token.
  void scanToken() {
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

  void scanOther() {
    if (startsNumber(*next_)) return scanNumber();
    if (isLetter(*next_)) return scanWord();
    ++next_;
    receiver_.onError("scanner error");
  }

  void scanString() {
    const char* const begin = next_ + 1;
    const char* stop = findQuoteOrBackslash(begin, end_);
    if (stop != end_ && *stop == '"') {
      next_ = stop + 1;
      return receiver_.onValue(std::string_view(begin, static_cast<std::size_t>(stop - begin)));
    }
    // A backslash takes the byte after it along, a quote too.
    while (stop != end_ && *stop != '"') {
      stop = end_ - stop < 2 ? end_ : findQuoteOrBackslash(stop + 2, end_);
    }
    next_ = stop;
    if (stop == end_) return;
    ++next_;
    unescape(std::string_view(begin, static_cast<std::size_t>(stop - begin)), &buffer_);
    receiver_.onValue(std::string_view(buffer_));
  }

  void scanNumber() { receiver_.onValue(readNumber(&next_, end_)); }

  void scanWord() {
    const char* const begin = next_;
    next_ = std::find_if_not(begin, end_, isWordByte);
    const std::string_view word(begin, static_cast<std::size_t>(next_ - begin));
    if (word == "null") return receiver_.onNull();
    if (word == "true") return receiver_.onValue(true);
    if (word == "false") return receiver_.onValue(false);
    receiver_.onName(word);
  }

  const char* next_;
  const char* end_;
  Receiver& receiver_;
  std::string buffer_;  // for a string with escapes
};

// scanJson for one class of receivers.
template <typename Receiver>
[[nodiscard]] bool scanTokens(const char* text, std::ptrdiff_t length, Receiver* receiver) {
  if (text == nullptr) return false;
  const std::string_view whole = length < 0
                                     ? std::string_view(text)
                                     : std::string_view(text, static_cast<std::size_t>(length));
  if (whole.empty()) return false;
  TokenScanner<Receiver>(whole, receiver).run();
  return true;
}

}  // namespace tunadm
