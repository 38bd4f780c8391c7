// Looking at what the JSON scanner makes of a text.
#pragma once

#include <cstddef>
#include <string_view>

#include "json/JsonScanner.h"

namespace tunadm {

// Writes each token and a blank to the standard output: strings in quotes, but not escaped again;
// numbers with six decimals and cut after 99 bytes; an error as "error: " and its message. A string
// is shown up to its first NUL byte.
class TokenPrinter final : public TokenReceiver {
 public:
  void onError(const char* message) override;
  void onLeftBracket() override;
  void onLeftCurly() override;
  void onRightBracket() override;
  void onRightCurly() override;
  void onComma() override;
  void onColon() override;
  using TokenReceiver::onValue;  // keeps the deleted one in sight
  void onValue(double number) override;
  void onValue(std::string_view text) override;
  void onNull() override;
  void onValue(bool boolean) override;
  void onName(std::string_view word) override;
};

// Runs a TokenPrinter over `text`; writes no newline. A `length` below zero stands for that of the
// C string.
void printJsonTokens(const char* text, std::ptrdiff_t length);

}  // namespace tunadm
