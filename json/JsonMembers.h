// The members of one JSON object.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "json/JsonPool.h"
#include "json/JsonText.h"
#include "json/NameIndex.h"

namespace tunadm {

class jsObject;

struct JsonMember {
  JsonMember(std::string_view its_name, jsObject* its_value) : name(its_name), value(its_value) {}

  JsonText name;
  jsObject* value;
};

// Unique names, each with a value that this class does not own, in the order in which they were
// added, except after a removal. Large objects also have an index of the names, so that building
// and searching one does not compare every name with every other.
class JsonMembers {
 public:
  using MemberList = std::vector<JsonMember, JsonAllocator<JsonMember>>;

  static constexpr std::size_t kNone = NameIndex::kNone;

  JsonMembers() = default;
  JsonMembers(const JsonMembers&) = delete;
  JsonMembers& operator=(const JsonMembers&) = delete;

  const MemberList& list() const { return list_; }

  // Returns the position of the member, or kNone.
  std::size_t find(std::string_view name) const;

  // Adds a member at the end, or replaces the value of the member of that name. Returns the old
  // value, or null.
  jsObject* put(std::string_view name, jsObject* value);

  // Removes a member and returns its value. The last member takes its place.
  jsObject* remove(std::size_t position);

 private:
  // Returns 0 while there is no index: nothing else needs the hash.
  NameIndex::Hash hashOf(std::string_view name) const;
  std::size_t find(std::string_view name, NameIndex::Hash hash) const;
  void makeIndex();

  MemberList list_;
  std::unique_ptr<NameIndex> index_;  // empty while the object is small
};

}  // namespace tunadm
