// What is read from a text prints to a text that reads as the same.
#include "fuzz/Fuzz.h"
#include "json/JsonParser.h"
#include "json/JsonPrinter.h"
#include "json/JsonSequencer.h"

namespace tunadm {

static std::string printed(const ScopedJson& value) {
  std::string text;
  printJson(value.get(), &text);
  return text;
}

static ScopedJson parsed(const std::string& text) {
  return ScopedJson(parseJson(text.data(), static_cast<std::ptrdiff_t>(text.size())));
}

void checkInput(const std::string& text) {
  const ScopedJson value = parsed(text);
  const ScopedJson sequence(
      parseJsonSequence(text.data(), static_cast<std::ptrdiff_t>(text.size())));
  const std::vector<std::string> objects = arrayToWords(sequence.get());
  require(!isObject(value.get()) || objects == std::vector{printed(value)}, "a sequence of one");

  // Deliberately, a printed backslash need not be read as it was.
  std::string plain = text;
  std::replace(plain.begin(), plain.end(), '\\', '/');
  const std::string once = printed(parsed(plain));
  const std::string twice = printed(parsed(once));
  require(printed(parsed(twice)) == twice, "the second print is final");
  // Not to be read back, or so near to a whole number that rounding may have gone there.
  for (const char* unstable : {"\\u00", "inf", "nan", "000010", "999990"})
    if (once.find(unstable) != once.npos) return;
  require(twice == once, "what is read back is what was printed");
}

}  // namespace tunadm
