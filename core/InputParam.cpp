#include "core/InputParam.h"

#include <charconv>
#include <cstddef>

#include "json/AsciiCase.h"

namespace tunadm {
namespace {

// The bytes that isspace takes in the C locale.
constexpr std::string_view kBlanks = " \t\n\v\f\r";

bool parseInteger(std::string_view text, std::int32_t* number) {
  const std::size_t start = text.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return false;
  text.remove_prefix(start);
  // from_chars takes a minus sign but no plus sign, and must not see both.
  if (text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return false;
  }
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, *number);
  return error == std::errc() && stop == end;
}

bool isOneOf(std::string_view text, std::string_view a, std::string_view b, std::string_view c) {
  return equalIgnoringCase(text, a) || equalIgnoringCase(text, b) || equalIgnoringCase(text, c);
}

}  // namespace

bool NamedValueBinder::setFromText(std::string_view) { return false; }
bool NamedValueBinder::setFromInteger(std::int32_t) { return false; }
bool NamedValueBinder::setFromBoolean(bool) { return false; }
bool NamedValueBinder::setFromNamedText(std::string_view, std::string_view) { return false; }

InputParamBase::InputParamBase(ParamList* list, std::string_view name, Required required)
    : required_(required), name_(name) {
  list->push_back(this);
}

std::string InputParamBase::hint() const {
  std::string text;
  appendHint(&text);
  return text;
}

bool StringParam::setFromText(std::string_view text) {
  value_ = text;
  return accept();
}

bool IntParam::setFromText(std::string_view text) {
  std::int32_t number = 0;
  return parseInteger(text, &number) && setFromInteger(number);
}

bool IntParam::setFromInteger(std::int32_t number) {
  value_ = number;
  return accept();
}

bool BoolParam::setFromText(std::string_view text) {
  if (isOneOf(text, "true", "yes", "on")) return setFromBoolean(true);
  if (isOneOf(text, "false", "no", "off")) return setFromBoolean(false);
  return false;
}

bool BoolParam::setFromBoolean(bool truth) {
  value_ = truth;
  return accept();
}

bool SingleWordParam::setFromText(std::string_view text) {
  if (text.empty() || text == kWordAbsent || equalIgnoringCase(text, "false")) {
    value_ = kWordAbsent;
    return accept();
  }
  if (text == kWordPresent || equalIgnoringCase(text, "true")) {
    value_ = kWordPresent;
    return accept();
  }
  return false;
}

}  // namespace tunadm
