// Making, reading, copying and releasing values of any kind; arrays and objects have their own
// files.
#include "json/JsonValue.h"

#include <cstddef>
#include <functional>
#include <vector>

#include "json/JsonNode.h"

namespace tunadm {
namespace {

// The instances that all trees share, which a release recognises by their address. Initialised at
// compile time, so that static initialisers can use them too.
struct SharedValues {
  JsonNull null;
  JsonBoolean no{false};
  JsonBoolean yes{true};
  JsonNumber numbers[4] = {JsonNumber(-1), JsonNumber(0), JsonNumber(1), JsonNumber(2)};
  JsonString empty_string;
};
constinit SharedValues shared_values;

bool isShared(const jsObject* value) {
  const std::less<const void*> before;
  return !before(value, &shared_values) && before(value, &shared_values + 1);
}

// Frees one value, but not the values in it.
void destroy(const jsObject* value) {
  switch (value->kind()) {
    case kJsonNumber:
      delete static_cast<const JsonNumber*>(value);
      return;
    case kJsonString:
      delete static_cast<const JsonString*>(value);
      return;
    case kJsonArray:
      delete static_cast<const JsonArray*>(value);
      return;
    case kJsonObject:
      delete static_cast<const JsonObject*>(value);
      return;
    case kJsonNull:
    case kJsonBoolean:
      return;  // always shared
  }
}

bool hasKind(const jsObject* value, JsonKind kind) {
  return value != nullptr && value->kind() == kind;
}

// The copy of a scalar; of a container an empty one of its kind.
jsObject* copyWithoutChildren(const jsObject* value) {
  switch (value->kind()) {
    case kJsonBoolean:
      return makeBoolean(value->boolean());
    case kJsonNumber:
      return makeNumber(value->number());
    case kJsonString:
      return makeString(value->text().view());
    case kJsonArray:
      return makeArray();
    case kJsonObject:
      return makeObject();
    default:
      return makeNull();
  }
}

// A container, and its copy that has no children yet.
struct CopyStep {
  const jsObject* source;
  jsObject* copy;
};

void copyChildren(const CopyStep& step, std::vector<CopyStep>* pending) {
  for (std::size_t index = 0; index < step.source->childCount(); ++index) {
    const jsObject* const source = step.source->child(index);
    jsObject* const copy = copyWithoutChildren(source);
    if (copy->isContainer()) pending->push_back({source, copy});
    if (step.source->kind() == kJsonArray) {
      appendValue(step.copy, copy);
    } else {
      setMember(step.copy, memberName(step.source, index), copy);
    }
  }
}

}  // namespace

jsObject* makeNull() { return &shared_values.null; }

jsObject* makeBoolean(bool boolean) { return boolean ? &shared_values.yes : &shared_values.no; }

jsObject* makeNumber(double number) {
  for (JsonNumber& shared : shared_values.numbers) {
    if (number == shared.number) return &shared;
  }
  return new JsonNumber(number);
}

jsObject* makeString(std::string_view text) {
  if (text.empty()) return &shared_values.empty_string;
  return new JsonString(text);
}

jsObject* makeString(const char* text) {
  return makeString(text == nullptr ? std::string_view() : std::string_view(text));
}

jsObject* makeArray() { return new JsonArray(); }

jsObject* makeObject() { return new JsonObject(); }

void releaseJson(jsObject* value) {
  if (value == nullptr || isShared(value)) return;
  if (!value->isContainer()) return destroy(value);
  // In the order in which most trees are built, so that memory is read from front to back.
  std::vector<JsonWalkPlace> path = {{value, 0}};
  while (!path.empty()) {
    const jsObject* const container = path.back().container;
    if (path.back().next == container->childCount()) {
      destroy(container);
      path.pop_back();
      continue;
    }
    jsObject* const child = container->child(path.back().next++);
    if (child->isContainer()) {
      path.push_back({child, 0});
    } else if (!isShared(child)) {
      destroy(child);
    }
  }
}

jsObject* deepCopy(const jsObject* value) {
  if (value == nullptr) return nullptr;
  jsObject* copy = copyWithoutChildren(value);
  std::vector<CopyStep> pending;
  if (value->isContainer()) pending.push_back({value, copy});
  while (!pending.empty()) {
    const CopyStep step = pending.back();
    pending.pop_back();
    copyChildren(step, &pending);
  }
  return copy;
}

bool isNull(const jsObject* value) { return hasKind(value, kJsonNull); }
bool isBoolean(const jsObject* value) { return hasKind(value, kJsonBoolean); }
bool isNumber(const jsObject* value) { return hasKind(value, kJsonNumber); }
bool isString(const jsObject* value) { return hasKind(value, kJsonString); }
bool isArray(const jsObject* value) { return hasKind(value, kJsonArray); }
bool isObject(const jsObject* value) { return hasKind(value, kJsonObject); }

const jsObject* asNull(const jsObject* value) { return isNull(value) ? value : nullptr; }
const jsObject* asBoolean(const jsObject* value) { return isBoolean(value) ? value : nullptr; }
const jsObject* asNumber(const jsObject* value) { return isNumber(value) ? value : nullptr; }
const jsObject* asString(const jsObject* value) { return isString(value) ? value : nullptr; }
const jsObject* asArray(const jsObject* value) { return isArray(value) ? value : nullptr; }
const jsObject* asObject(const jsObject* value) { return isObject(value) ? value : nullptr; }
jsObject* asNull(jsObject* value) { return isNull(value) ? value : nullptr; }
jsObject* asBoolean(jsObject* value) { return isBoolean(value) ? value : nullptr; }
jsObject* asNumber(jsObject* value) { return isNumber(value) ? value : nullptr; }
jsObject* asString(jsObject* value) { return isString(value) ? value : nullptr; }
jsObject* asArray(jsObject* value) { return isArray(value) ? value : nullptr; }
jsObject* asObject(jsObject* value) { return isObject(value) ? value : nullptr; }

bool booleanValue(const jsObject* value) { return isBoolean(value) && value->boolean(); }

double numberValue(const jsObject* value) { return isNumber(value) ? value->number() : 0.0; }

const char* stringText(const jsObject* value) {
  return isString(value) ? value->text().c_str() : "";
}

std::string_view stringView(const jsObject* value) {
  return isString(value) ? value->text().view() : std::string_view();
}

}  // namespace tunadm
