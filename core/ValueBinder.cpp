#include "core/ValueBinder.h"

#include <string>

namespace tunadm {

bool ValueBinder::addText(std::string_view, std::string_view) { return false; }
bool ValueBinder::addInteger(std::string_view, std::int32_t) { return false; }
bool ValueBinder::addBoolean(std::string_view, bool) { return false; }
bool ValueBinder::addList(std::string_view, const LineSource&) { return false; }

bool StringVectorValueBinder::addText(std::string_view name, std::string_view text) {
  std::string line;
  line.reserve(name.size() + 2 + text.size());
  line.append(name).append(": ").append(text);
  out_(line);
  return true;
}

bool StringVectorValueBinder::addInteger(std::string_view name, std::int32_t number) {
  return addText(name, std::to_string(number));
}

bool StringVectorValueBinder::addBoolean(std::string_view name, bool truth) {
  return addText(name, truth ? "true" : "false");
}

bool StringVectorValueBinder::addList(std::string_view name, const LineSource& items) {
  if (!name.empty() && name.front() != '_') out_(std::string(name) + ":");
  items(out_);
  return true;
}

}  // namespace tunadm
