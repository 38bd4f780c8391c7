#include "json/JsonMembers.h"

#include <utility>

namespace tunadm {
namespace {

// Up to this many, comparing the names one by one is faster than hashing, and needs no memory.
constexpr std::size_t kMostUnindexed = 16;

// Most objects have a few members. This saves growing the list twice.
constexpr std::size_t kFirstCapacity = 4;

}  // namespace

std::size_t JsonMembers::find(std::string_view name) const {
  if (index_) {
    return index_->find(NameIndex::hashOf(name),
                        [&](std::size_t position) { return list_[position].name == name; });
  }
  for (std::size_t position = 0; position < list_.size(); ++position) {
    if (list_[position].name == name) return position;
  }
  return kNone;
}

void JsonMembers::addToIndex(std::size_t position) {
  index_->insert(NameIndex::hashOf(list_[position].name.view()), position);
}

void JsonMembers::removeFromIndex(std::size_t position) {
  index_->erase(NameIndex::hashOf(list_[position].name.view()), position);
}

void JsonMembers::append(JsonText&& name, jsObject* value) {
  if (list_.empty()) list_.reserve(kFirstCapacity);
  list_.emplace_back(std::move(name), value);
  if (index_) {
    addToIndex(list_.size() - 1);
  } else if (list_.size() > kMostUnindexed) {
    index_ = std::make_unique<NameIndex>();
    for (std::size_t position = 0; position < list_.size(); ++position) addToIndex(position);
  }
}

jsObject* JsonMembers::put(JsonText name, jsObject* value) {
  const std::size_t position = find(name.view());
  if (position != kNone) return std::exchange(list_[position].value, value);
  append(std::move(name), value);
  return nullptr;
}

jsObject* JsonMembers::remove(std::size_t position) {
  const std::size_t last = list_.size() - 1;
  if (index_) {
    // Both must leave while their names are in place; the moved one is inserted again below.
    removeFromIndex(position);
    if (position != last) removeFromIndex(last);
  }
  jsObject* const removed = list_[position].value;
  if (position != last) list_[position] = std::move(list_[last]);
  list_.pop_back();
  if (index_ && position != last) addToIndex(position);
  return removed;
}

}  // namespace tunadm
