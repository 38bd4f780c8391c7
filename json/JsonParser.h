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

// The numbers are fixed.
enum ParserState : std::int32_t {
  kParserFinished = 0,    // a whole value was received, or an error was reported
  kParserWantsValue = 1,  // a value is expected
  kParserHasElement = 2,  // "," or "]" is expected
  kParserHasMember = 3,   // "," or "}" is expected
  kParserWantsName = 4,   // a member name is expected
  kParserWantsColon = 5,  // a name was read; ":" is expected
};

// Builds one value from tokens. A token that does not fit is reported to onError and dropped, and
// so is the result if there is one. The containers stay open, though: a closing bracket or brace is
// taken in any state and carries on from there, so that `{"a":1 x}` gives an object with a=1 after
// all. Deliberate, as is the trailing comma which that lets through.
//
// Nothing limits the depth, and no operation recurses on it.
class parserinfo : public TokenReceiver {
 public:
  // The finished value, the caller's from now on, or null: it is there only after the last token of
  // the value, and once.
  [[nodiscard]] jsObject* takeResult();

  // Also called by the parser itself; an override must call it. Nothing keeps the message.
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
  // `owned` is empty when the container is a member of the one below, which owns it then. An array
  // element comes to its array only when it closes.
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
  std::string name_;  // read, but not used yet; it belongs to the innermost container
};

// The value that the whole of `text` makes, owned by the caller, or null: for a null or empty text,
// for one that ends too early, and for errors that no closing bracket made good. A `length` below
// zero stands for that of the C string.
[[nodiscard]] jsObject* parseJson(const char* text, std::ptrdiff_t length);

}  // namespace tunadm
