#include "json/JsonPrinter.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "json/JsonNode.h"

namespace tunadm {
namespace {

// Deliberate: a backslash is as plain as a letter and is not doubled.
bool isPlain(char byte) { return byte >= 0x20 && byte <= 0x7e && byte != '"'; }

void appendEscape(char byte, std::string* out) {
  constexpr char kHexDigits[] = "0123456789ABCDEF";
  const unsigned char code = static_cast<unsigned char>(byte);
  if (code >= 0x80) {
    out->push_back('?');
    return;
  }
  out->push_back('\\');
  switch (byte) {
    case '\b':
      return out->push_back('b');
    case '\t':
      return out->push_back('t');
    case '\n':
      return out->push_back('n');
    case '\r':
      return out->push_back('r');
    case '"':
      return out->push_back('"');
    default:  // the form feed too, which has no short form here
      out->append("u00");
      out->push_back(kHexDigits[code >> 4]);
      out->push_back(kHexDigits[code & 0xf]);
  }
}

void printString(std::string_view text, std::string* out) {
  out->push_back('"');
  std::size_t plain_start = 0;
  for (std::size_t index = 0; index < text.size(); ++index) {
    if (isPlain(text[index])) continue;
    out->append(text.substr(plain_start, index - plain_start));
    appendEscape(text[index], out);
    plain_start = index + 1;
  }
  out->append(text.substr(plain_start));
  out->push_back('"');
}

// Deliberate: the truncation of `raised` rounds negative numbers the wrong way, so they print with
// decimals, whole ones too. Only those next to 0 print as 0.
void printNumber(double number, std::string* out) {
  constexpr double kNear = 1e-5;
  constexpr std::size_t kBufferSize = 500;  // the longest, -DBL_MAX, takes 317
  constexpr int kDecimals = 6;
  char buffer[kBufferSize];
  const double raised = number + 0.5;
  // Outside these limits the conversion to an integer is undefined. NaN fails both comparisons.
  if (raised > -2147483649.0 && raised < 2147483648.0) {
    const std::int32_t rounded = static_cast<std::int32_t>(raised);
    if (std::fabs(rounded - number) < kNear) {
      out->append(buffer, std::to_chars(buffer, buffer + kBufferSize, rounded).ptr);
      return;
    }
  }
  // The same digits as from "%f".
  const auto printed =
      std::to_chars(buffer, buffer + kBufferSize, number, std::chars_format::fixed, kDecimals);
  out->append(buffer, printed.ptr);
}

void printScalar(const jsObject& value, std::string* out) {
  switch (value.kind()) {
    case kJsonString:
      return printString(value.text().view(), out);
    case kJsonNumber:
      return printNumber(value.number(), out);
    case kJsonBoolean:
      out->append(value.boolean() ? "true" : "false");
      return;
    default:
      out->append("null");
  }
}

// Prints a scalar whole, but only the opening of a container, which it adds to `path`.
void printStart(const jsObject& value, std::string* out, std::vector<JsonWalkPlace>* path) {
  if (!value.isContainer()) return printScalar(value, out);
  out->append(value.kind() == kJsonObject ? "{ " : "[ ");
  path->push_back({&value, 0});
}

// Prints what comes before the child at `index`.
void printSeparator(const jsObject& container, std::size_t index, std::string* out) {
  if (index != 0) out->append(", ");
  if (container.kind() != kJsonObject) return;
  // Deliberate: the name is not escaped, and no blank follows the colon.
  out->push_back('"');
  out->append(container.members().list()[index].name.view()).append("\":");
}

}  // namespace

void printJson(const jsObject* value, std::string* out) {
  if (value == nullptr) return;
  std::vector<JsonWalkPlace> path;
  printStart(*value, out, &path);
  while (!path.empty()) {
    const jsObject& container = *path.back().container;
    const std::size_t index = path.back().next++;
    if (index < container.childCount()) {
      printSeparator(container, index, out);
      printStart(*container.child(index), out, &path);
      continue;
    }
    // An empty container has only the blank of its opening.
    if (index != 0) out->push_back(' ');
    out->push_back(container.kind() == kJsonObject ? '}' : ']');
    path.pop_back();
  }
}

std::vector<std::string> arrayToWords(const jsObject* array) {
  std::vector<std::string> words;
  words.reserve(arraySize(array));
  for (std::size_t index = 0; index < arraySize(array); ++index) {
    const jsObject* element = arrayAt(array, index);
    std::string word(stringView(element));
    if (!isString(element)) printJson(element, &word);
    words.push_back(std::move(word));
  }
  return words;
}

}  // namespace tunadm
