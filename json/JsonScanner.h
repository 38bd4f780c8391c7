// The scanner: cuts JSON text into tokens.
//
// The language is looser than standard JSON (RFC 8259). Bare words are tokens, so member names need
// no quotes; a number runs to the next delimiter; unknown escapes are accepted. No encoding is
// assumed.
#pragma once

#include <cstddef>
#include <string_view>

namespace tunadm {

// Receives the tokens of a text, in their order. The views that are passed are valid only during
// the call.
class TokenReceiver {
 public:
  TokenReceiver() = default;
  TokenReceiver(const TokenReceiver&) = delete;
  TokenReceiver& operator=(const TokenReceiver&) = delete;
  virtual ~TokenReceiver() = default;

  // A byte that cannot begin a token. The scan continues after it.
  virtual void onError(const char* message) = 0;

  virtual void onLeftBracket() = 0;
  virtual void onLeftCurly() = 0;
  virtual void onRightBracket() = 0;
  virtual void onRightCurly() = 0;
  virtual void onComma() = 0;
  virtual void onColon() = 0;
  virtual void onValue(double number) = 0;

  // A quoted string, unescaped.
  virtual void onValue(std::string_view text) = 0;

  // The bare words null, true and false; any other one goes to onName.
  virtual void onNull() = 0;
  virtual void onValue(bool boolean) = 0;
  virtual void onName(std::string_view word) = 0;

  // A C string would silently become a boolean.
  void onValue(const char* text) = delete;
};

// Passes the tokens of `text` to `receiver`, in time linear in the length. A negative `length`
// means that `text` is a C string. Returns false, without a call, if `text` is null or empty;
// otherwise true after the whole text, even after errors. A string without a closing quote ends the
// scan silently. Numbers are read as by strtod(3).
[[nodiscard]] bool scanJson(const char* text, std::ptrdiff_t length, TokenReceiver* receiver);

}  // namespace tunadm
