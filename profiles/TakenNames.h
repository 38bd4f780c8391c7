// The rule that keeps friendly names unique.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace tunadm {

// The friendly names that are in use. Free names for one base are found in linear time in all: no
// number is tried twice.
class TakenNames {
 public:
  [[nodiscard]] bool contains(std::string_view name) const {
    return names_.contains(std::string(name));
  }
  void add(std::string_view name) { names_.emplace(name); }

  // `base` if it is free, else the first free one of base#2, base#3, ... base#999999, else `base`
  // all the same. Does not take the name.
  std::string uniqueName(const std::string& base);

 private:
  std::unordered_set<std::string> names_;
  std::unordered_map<std::string, int> next_number_;  // per base; all below are taken
};

}  // namespace tunadm
