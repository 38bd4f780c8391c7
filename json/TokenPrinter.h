// The token printer: shows what the scanner makes of a text.
#pragma once

#include <cstddef>
#include <string_view>

#include "json/JsonScanner.h"

namespace tunadm {

// Writes each token, then a blank, to standard output: strings in quotes but not escaped again, up
// to their first NUL byte; numbers with six decimals, cut after 99 bytes; an error as "error: "
// with its message.
class TokenPrinter final : public TokenReceiver {
 public:
  void onError(const char* message) override;
  void onLeftBracket() override;
  void onLeftCurly() override;
  void onRightBracket() override;
  void onRightCurly() override;
  void onComma() override;
  void onColon() override;
  using TokenReceiver::onValue;  // the deleted one too
  void onValue(double number) override;
  void onValue(std::string_view text) override;
  void onNull() override;
  void onValue(bool boolean) override;
  void onName(std::string_view word) override;
};

// Runs a TokenPrinter over `text`. Writes no newline. A negative `length` means that `text` is a C
// string.
void printJsonTokens(const char* text, std::ptrdiff_t length);

}  // namespace tunadm
