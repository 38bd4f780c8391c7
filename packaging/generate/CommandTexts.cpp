#include "packaging/generate/CommandTexts.h"

#include <cstddef>

#include "service/InitSystems.h"

namespace tunadm {
namespace {

// Separates the words of a hint that offers several.
constexpr std::string_view kOr = " | ";

std::vector<std::string> splitHint(std::string_view hint) {
  std::vector<std::string> words;
  for (std::size_t bar = hint.find(kOr); bar != std::string_view::npos; bar = hint.find(kOr)) {
    words.emplace_back(hint.substr(0, bar));
    hint.remove_prefix(bar + kOr.size());
  }
  words.emplace_back(hint);
  return words;
}

}  // namespace

std::vector<std::string> valuesOf(const InputParamBase& param) {
  const std::string hint = param.hint();
  if (hint == "boolean") return {"true", "false"};
  if (hint == "sys-impl") {
    const std::vector<std::string_view> names = systemNames();
    return {names.begin(), names.end()};
  }
  std::vector<std::string> values = splitHint(hint);
  if (values.size() == 1) return {};
  for (std::string& value : values) {
    if (value == "interface") value = kInterfaceValues;
  }
  return values;
}

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
  std::string text;
  for (const std::string& part : parts) {
    if (&part != &parts.front()) text += separator;
    text += part;
  }
  return text;
}

}  // namespace tunadm
