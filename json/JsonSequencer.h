// Reading JSON objects that follow one another in one text.
#pragma once

#include <cstddef>
#include <string_view>

#include "json/JsonParser.h"
#include "json/JsonScanner.h"
#include "json/ScopedRelease.h"

namespace tunadm {

// Appends each object that the tokens complete to an array. Only a closing brace completes
// anything: an array or a scalar at the top is not collected, and makes what follows it fail.
class sequencer final : public TokenReceiver {
 public:
  // `output` stays the caller's and must outlive this object.
  explicit sequencer(jsObject* output);

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

 private:
  jsObject* output_;
  ScopedPtr<parserinfo> parser_;  // a parser serves one value
};

// An array, owned by the caller, of the objects that follow one another in `text`; it may be empty.
// Null for a null or empty text. A `length` below zero stands for that of the C string.
[[nodiscard]] jsObject* parseJsonSequence(const char* text, std::ptrdiff_t length);

}  // namespace tunadm
