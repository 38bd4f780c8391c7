// The sequence reader: JSON objects that follow one another in one text.
#pragma once

#include <cstddef>
#include <string_view>

#include "json/JsonParser.h"
#include "json/JsonScanner.h"
#include "json/ScopedRelease.h"

namespace tunadm {

// Appends each object that the tokens complete to an array. Only a closing brace completes an
// object: an array or a scalar at the top level is not collected, and the tokens after it fail.
class sequencer final : public TokenReceiver {
 public:
  // The caller keeps owning `output`, which must outlive this object.
  explicit sequencer(jsObject* output);

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

 private:
  jsObject* output_;
  ScopedPtr<parserinfo> parser_;  // a parser serves one value
};

// Returns an array, owned by the caller, of the objects in `text`; it may be empty. Null for a null
// or empty text. A negative `length` means that `text` is a C string.
[[nodiscard]] jsObject* parseJsonSequence(const char* text, std::ptrdiff_t length);

}  // namespace tunadm
