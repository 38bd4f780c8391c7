// The layout of a value. Only the sources of this folder look at it.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "json/JsonMembers.h"
#include "json/JsonPool.h"
#include "json/JsonText.h"
#include "json/JsonValue.h"

namespace tunadm {

// The elements of one array.
using JsonElements = std::vector<jsObject*, JsonAllocator<jsObject*>>;

// What values of all kinds share. Each kind adds its payload in a class of its own below, so that a
// value is one block of memory that is no larger than its kind needs.
class jsObject : public JsonPooled {
 public:
  jsObject(const jsObject&) = delete;
  jsObject& operator=(const jsObject&) = delete;

  JsonKind kind() const { return kind_; }
  bool isContainer() const { return kind_ == kJsonArray || kind_ == kJsonObject; }

  // Each only for a value of its kind.
  bool boolean() const;
  double number() const;
  const JsonText& text() const;
  const JsonElements& elements() const;
  JsonElements& elements();
  const JsonMembers& members() const;
  JsonMembers& members();

  // Only for an array or object: the values in it.
  std::size_t childCount() const {
    return kind_ == kJsonArray ? elements().size() : members().list().size();
  }
  jsObject* child(std::size_t index) const {
    return kind_ == kJsonArray ? elements()[index] : members().list()[index].value;
  }

 protected:
  constexpr explicit jsObject(JsonKind kind) : kind_(kind) {}
  ~jsObject() = default;  // releaseJson knows the class to delete

 private:
  JsonKind kind_;
};

struct JsonNull final : jsObject {
  constexpr JsonNull() : jsObject(kJsonNull) {}
};

struct JsonBoolean final : jsObject {
  constexpr explicit JsonBoolean(bool value) : jsObject(kJsonBoolean), boolean(value) {}
  const bool boolean;
};

struct JsonNumber final : jsObject {
  constexpr explicit JsonNumber(double value) : jsObject(kJsonNumber), number(value) {}
  const double number;
};

struct JsonString final : jsObject {
  constexpr JsonString() : jsObject(kJsonString) {}
  explicit JsonString(std::string_view value) : jsObject(kJsonString), text(value) {}
  const JsonText text;
};

// Arrays and objects do not own the values in them: releaseJson frees those, without recursing.
struct JsonArray final : jsObject {
  // Most arrays have a few elements. This saves growing the list twice.
  JsonArray() : jsObject(kJsonArray) { elements.reserve(4); }
  JsonElements elements;
};

struct JsonObject final : jsObject {
  JsonObject() : jsObject(kJsonObject) {}
  JsonMembers members;
};

inline bool jsObject::boolean() const { return static_cast<const JsonBoolean*>(this)->boolean; }

inline double jsObject::number() const { return static_cast<const JsonNumber*>(this)->number; }

inline const JsonText& jsObject::text() const { return static_cast<const JsonString*>(this)->text; }

inline const JsonElements& jsObject::elements() const {
  return static_cast<const JsonArray*>(this)->elements;
}

inline JsonElements& jsObject::elements() { return static_cast<JsonArray*>(this)->elements; }

inline const JsonMembers& jsObject::members() const {
  return static_cast<const JsonObject*>(this)->members;
}

inline JsonMembers& jsObject::members() { return static_cast<JsonObject*>(this)->members; }

// A place in a walk over a tree: the children of `container` before `next` are done. A walk keeps a
// list of these instead of recursing, because a tree may be deeper than the stack.
struct JsonWalkPlace {
  const jsObject* container;
  std::size_t next;
};

}  // namespace tunadm
