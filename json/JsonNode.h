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

// The elements of one array, which this does not own.
struct JsonElements : JsonPooled {
  std::vector<jsObject*, JsonAllocator<jsObject*>> list;
};

// Owns its payload, but not the values that an array or object points to; releaseJson frees those.
class jsObject : public JsonPooled {
 public:
  // Null, or an empty array or object.
  explicit jsObject(JsonKind kind);
  explicit jsObject(bool boolean) : kind_(kJsonBoolean), boolean_(boolean) {}
  explicit jsObject(double number) : kind_(kJsonNumber), number_(number) {}
  explicit jsObject(std::string_view text) : kind_(kJsonString), text_(text) {}
  jsObject(const jsObject&) = delete;
  jsObject& operator=(const jsObject&) = delete;
  ~jsObject() {
    if (kind_ == kJsonString) text_.~JsonText();
    if (kind_ == kJsonArray) delete elements_;
    if (kind_ == kJsonObject) delete members_;
  }

  JsonKind kind() const { return kind_; }
  bool isContainer() const { return kind_ == kJsonArray || kind_ == kJsonObject; }

  // Each only for a value of its kind.
  bool boolean() const { return boolean_; }
  double number() const { return number_; }
  const JsonText& text() const { return text_; }
  const auto& elements() const { return elements_->list; }
  auto& elements() { return elements_->list; }
  const JsonMembers& members() const { return *members_; }
  JsonMembers& members() { return *members_; }

  // Only for an array or object: the values in it.
  std::size_t childCount() const {
    return kind_ == kJsonArray ? elements().size() : members().list().size();
  }
  jsObject* child(std::size_t index) const {
    return kind_ == kJsonArray ? elements()[index] : members().list()[index].value;
  }

 private:
  JsonKind kind_;
  union {
    bool boolean_;
    double number_;
    JsonText text_;
    // Apart, because they would make every value twice as large.
    JsonElements* elements_;
    JsonMembers* members_;
  };
};

// A place in a walk over a tree: the children of `container` before `next` are done. A walk keeps a
// list of these instead of recursing, because a tree may be deeper than the stack.
struct JsonWalkPlace {
  const jsObject* container;
  std::size_t next;
};

}  // namespace tunadm
