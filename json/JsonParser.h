// The parser: builds one value tree from JSON text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "json/JsonScanner.h"
#include "json/ScopedJson.h"

namespace tunadm {

// The numbers are part of the interface.
enum ParserState : std::int32_t {
  kParserFinished = 0,    // a whole value was received, or an error was reported
  kParserWantsValue = 1,  // a value is expected
  kParserHasElement = 2,  // "," or "]" is expected
  kParserHasMember = 3,   // "," or "}" is expected
  kParserWantsName = 4,   // a member name is expected
  kParserWantsColon = 5,  // a name was read; ":" is expected
};

// Builds one value from tokens. A token that does not fit is reported to onError and dropped, and
// so is a result that was finished. Containers stay open, though: a closing bracket or brace is
// accepted in any state and parsing continues from there, so `{"a":1 x}` still makes an object with
// a=1. This is deliberate, as is the trailing comma that it allows.
//
// The depth is not limited, and nothing recurses on it.
class parserinfo final : public TokenReceiver {
 public:
  // Returns the finished value, which the caller then owns; null before the last token of the value
  // and on a second call.
  [[nodiscard]] jsObject* takeResult();

  // Also called by the parser itself. The message is not kept; an override must call this one.
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
  // A container whose closing bracket is still to come. `owned` is empty if it is a member of the
  // object around it, which owns it; an element is added to its array only when it closes.
  struct OpenContainer {
    jsObject* container;
    ScopedJson owned;
  };

  void setName(std::string_view name);
  void addValue(jsObject* value);
  void addMember(jsObject* object, jsObject* value);
  void open(jsObject* container, ParserState next);
  void close();

  ParserState state_ = kParserWantsValue;
  ScopedJson result_;
  std::vector<OpenContainer> open_;
  std::string name_;  // of the innermost container's next member
};

// Returns the value that the whole of `text` makes, owned by the caller. Null for a null or empty
// text, for one that ends too early, and for errors without a closing bracket after them. A
// negative `length` means that `text` is a C string.
[[nodiscard]] jsObject* parseJson(const char* text, std::ptrdiff_t length);

}  // namespace tunadm
