// Making, reading, copying and releasing values of any kind; arrays and objects have their own
// files.
#include "json/JsonValue.h"

#include <new>
#include <string>
#include <vector>

#include "json/JsonNode.h"

namespace tunadm {

namespace {

// Made at first use, so that they are there for static initialisers too.
jsObject* sharedNull() {
  static jsObject shared(kJsonNull);
  return &shared;
}

jsObject* sharedBoolean(bool boolean) {
  static jsObject shared[] = {jsObject(false), jsObject(true)};
  return &shared[boolean ? 1 : 0];
}

constexpr std::size_t kSharedNumberCount = 4;

jsObject (&sharedNumbers())[kSharedNumberCount] {
  static jsObject shared[kSharedNumberCount] = {jsObject(-1.0), jsObject(0.0), jsObject(1.0),
                                                jsObject(2.0)};
  return shared;
}

jsObject* sharedEmptyString() {
  static jsObject shared{std::string_view()};
  return &shared;
}

bool isShared(const jsObject* value) {
  switch (value->kind()) {
    case kJsonNull:
    case kJsonBoolean:
      return true;
    case kJsonNumber:
      for (const jsObject& shared : sharedNumbers()) {
        if (value == &shared) return true;
      }
      return false;
    case kJsonString:
      return value == sharedEmptyString();
    default:
      return false;
  }
}

bool isContainer(const jsObject* value) {
  return value->kind() == kJsonArray || value->kind() == kJsonObject;
}

const std::vector<jsObject*>& children(const jsObject* container) {
  return container->kind() == kJsonArray ? container->elements() : container->members().values();
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
      return makeString(value->text());
    case kJsonArray:
      return makeArray();
    case kJsonObject:
      return makeObject();
    default:
      return makeNull();
  }
}

struct CopyStep {
  const jsObject* source;
  jsObject* copy;
};

void copyChildren(const CopyStep& step, std::vector<CopyStep>* pending) {
  const std::vector<jsObject*>& sources = children(step.source);
  for (std::size_t index = 0; index < sources.size(); ++index) {
    jsObject* copy = copyWithoutChildren(sources[index]);
    if (isContainer(copy)) pending->push_back({sources[index], copy});
    if (step.source->kind() == kJsonArray) {
      appendValue(step.copy, copy);
    } else {
      setMember(step.copy, memberName(step.source, index), copy);
    }
  }
}

}  // namespace

jsObject::jsObject(JsonKind kind) : kind_(kind), members_(nullptr) {
  if (kind == kJsonArray) new (&elements_) std::vector<jsObject*>();
  if (kind == kJsonObject) members_ = new JsonMembers();
}

jsObject::~jsObject() {
  if (kind_ == kJsonString) text_.~basic_string();
  if (kind_ == kJsonArray) elements_.~vector();
  if (kind_ == kJsonObject) delete members_;
}

jsObject* makeNull() { return sharedNull(); }

jsObject* makeBoolean(bool boolean) { return sharedBoolean(boolean); }

jsObject* makeNumber(double number) {
  for (jsObject& shared : sharedNumbers()) {
    if (shared.number() == number) return &shared;
  }
  return new jsObject(number);
}

jsObject* makeString(std::string_view text) {
  return text.empty() ? sharedEmptyString() : new jsObject(text);
}

jsObject* makeString(const char* text) {
  return makeString(text == nullptr ? std::string_view() : std::string_view(text));
}

jsObject* makeArray() { return new jsObject(kJsonArray); }

jsObject* makeObject() { return new jsObject(kJsonObject); }

void releaseJson(jsObject* value) {
  if (value == nullptr || isShared(value)) return;
  // A list of the open containers instead of recursion: a tree may be deeper than the stack.
  std::vector<jsObject*> pending;
  for (jsObject* next = value; next != nullptr;) {
    if (isContainer(next)) {
      for (jsObject* child : children(next)) {
        if (isContainer(child)) {
          pending.push_back(child);
        } else if (!isShared(child)) {
          delete child;
        }
      }
    }
    delete next;
    next = nullptr;
    if (!pending.empty()) {
      next = pending.back();
      pending.pop_back();
    }
  }
}

jsObject* deepCopy(const jsObject* value) {
  if (value == nullptr) return nullptr;
  jsObject* copy = copyWithoutChildren(value);
  std::vector<CopyStep> pending;
  if (isContainer(value)) pending.push_back({value, copy});
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
  return isString(value) ? std::string_view(value->text()) : std::string_view();
}

}  // namespace tunadm
