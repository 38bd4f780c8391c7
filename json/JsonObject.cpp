// Objects: reading and changing them.
#include <string_view>

#include "json/AsciiCase.h"
#include "json/JsonNode.h"
#include "json/JsonValue.h"

namespace tunadm {
namespace {

std::size_t positionOf(const jsObject* object, std::string_view name) {
  return isObject(object) && !name.empty() ? object->members().find(name) : JsonMembers::kNone;
}

}  // namespace

std::size_t objectSize(const jsObject* object) {
  return isObject(object) ? object->members().list().size() : 0;
}

std::string_view memberName(const jsObject* object, std::size_t index) {
  if (index >= objectSize(object)) return std::string_view();
  return object->members().list()[index].name.view();
}

const jsObject* memberValue(const jsObject* object, std::size_t index) {
  return index < objectSize(object) ? object->members().list()[index].value : nullptr;
}

jsObject* memberValue(jsObject* object, std::size_t index) {
  return index < objectSize(object) ? object->members().list()[index].value : nullptr;
}

std::ptrdiff_t findMember(const jsObject* object, std::string_view name) {
  const std::size_t position = positionOf(object, name);
  return position == JsonMembers::kNone ? -1 : static_cast<std::ptrdiff_t>(position);
}

std::ptrdiff_t findMemberIgnoringCase(const jsObject* object, std::string_view name) {
  if (!isObject(object) || name.empty()) return -1;
  std::ptrdiff_t index = 0;
  for (const JsonMember& member : object->members().list()) {
    if (equalIgnoringCase(member.name.view(), name)) return index;
    ++index;
  }
  return -1;
}

void setMember(jsObject* object, std::string_view name, jsObject* value) {
  if (!isObject(object) || name.empty()) return releaseJson(value);
  if (value == nullptr) return releaseJson(detachMember(object, name));
  jsObject* const old = object->members().put(name, value);
  if (old != value) releaseJson(old);
}

jsObject* setStringMember(jsObject* object, std::string_view name, std::string_view text) {
  jsObject* value = makeString(text);
  setMember(object, name, value);
  return isObject(object) && !name.empty() ? value : nullptr;
}

jsObject* setStringMember(jsObject* object, std::string_view name, const char* text) {
  return setStringMember(object, name,
                         text == nullptr ? std::string_view() : std::string_view(text));
}

jsObject* detachMember(jsObject* object, std::string_view name) {
  const std::size_t position = positionOf(object, name);
  return position == JsonMembers::kNone ? nullptr : object->members().remove(position);
}

}  // namespace tunadm
