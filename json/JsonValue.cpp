// Making, reading, copying and releasing values of any kind; arrays and objects have their own
// files.
#include "json/JsonValue.h"

#include <cmath>
#include <cstddef>
#include <functional>
#include <vector>

#include "json/JsonNode.h"

namespace tunadm {
namespace {

enum SharedPlace : std::size_t {
  kPlaceOfNull,
  kPlaceOfFalse,
  kPlaceOfTrue,
  kPlaceOfNumbers,
  kPlaceOfEmptyString = kPlaceOfNumbers + 4,
  kSharedCount,
};

constexpr double kLeastSharedNumber = -1;
constexpr double kGreatestSharedNumber = 2;

// Made on first use, so that static initialisers can use them too. A release recognises them by
// their address in this table.
jsObject* sharedValues() {
  static jsObject values[kSharedCount] = {
      jsObject(kJsonNull), jsObject(false), jsObject(true), jsObject(-1.0),
      jsObject(0.0),       jsObject(1.0),   jsObject(2.0),  jsObject(std::string_view())};
  return values;
}

bool isShared(const jsObject* value) {
  const jsObject* const first = sharedValues();
  const std::less<> before;
  return !before(value, first) && before(value, first + kSharedCount);
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

jsObject::jsObject(JsonKind kind) : kind_(kind), boolean_(false) {
  if (kind == kJsonArray) elements_ = new JsonElements();
  if (kind == kJsonObject) members_ = new JsonMembers();
}

jsObject* makeNull() { return sharedValues() + kPlaceOfNull; }

jsObject* makeBoolean(bool boolean) {
  return sharedValues() + (boolean ? kPlaceOfTrue : kPlaceOfFalse);
}

jsObject* makeNumber(double number) {
  if (number >= kLeastSharedNumber && number <= kGreatestSharedNumber &&
      number == std::trunc(number)) {
    return sharedValues() + kPlaceOfNumbers + static_cast<int>(number - kLeastSharedNumber);
  }
  return new jsObject(number);
}

jsObject* makeString(std::string_view text) {
  return text.empty() ? sharedValues() + kPlaceOfEmptyString : new jsObject(text);
}

jsObject* makeString(const char* text) {
  return makeString(text == nullptr ? std::string_view() : std::string_view(text));
}

jsObject* makeArray() { return new jsObject(kJsonArray); }

jsObject* makeObject() { return new jsObject(kJsonObject); }

void releaseJson(jsObject* value) {
  if (value == nullptr || isShared(value)) return;
  if (!value->isContainer()) {
    delete value;
    return;
  }
  // In the order in which most trees are built, so that memory is read from front to back.
  std::vector<JsonWalkPlace> path = {{value, 0}};
  while (!path.empty()) {
    const jsObject* const container = path.back().container;
    if (path.back().next == container->childCount()) {
      delete container;
      path.pop_back();
      continue;
    }
    jsObject* const child = container->child(path.back().next++);
    if (child->isContainer()) {
      path.push_back({child, 0});
    } else if (!isShared(child)) {
      delete child;
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
