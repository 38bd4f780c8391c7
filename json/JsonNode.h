// The layout of a value. Only the files of this folder that implement JsonValue.h look at it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "json/JsonMembers.h"
#include "json/JsonValue.h"

namespace tunadm {

// Owns its payload, but not the values that an array or object points to: releaseJson frees those.
class jsObject {
 public:
  // Null, or an empty array or object.
  explicit jsObject(JsonKind kind);
  explicit jsObject(bool boolean) : kind_(kJsonBoolean), boolean_(boolean) {}
  explicit jsObject(double number) : kind_(kJsonNumber), number_(number) {}
  explicit jsObject(std::string_view text) : kind_(kJsonString), text_(text) {}
  jsObject(const jsObject&) = delete;
  jsObject& operator=(const jsObject&) = delete;
  ~jsObject();

  JsonKind kind() const { return kind_; }

  // Each only for a value of its kind.
  bool boolean() const { return boolean_; }
  double number() const { return number_; }
  const std::string& text() const { return text_; }
  const std::vector<jsObject*>& elements() const { return elements_; }
  std::vector<jsObject*>& elements() { return elements_; }
  const JsonMembers& members() const { return *members_; }
  JsonMembers& members() { return *members_; }

 private:
  JsonKind kind_;
  union {
    bool boolean_;
    double number_;
    std::string text_;
    std::vector<jsObject*> elements_;
    JsonMembers* members_;  // apart, as it would triple the size of every value
  };
};

}  // namespace tunadm
