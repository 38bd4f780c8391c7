#include "json/JsonMembers.h"

#include <functional>
#include <utility>

namespace tunadm {

namespace {

// Up to here a walk over the names is faster than hashing, and needs no further memory.
constexpr std::size_t kMostUnindexed = 16;

// Most objects have a few members; this saves the first two regrowths.
constexpr std::size_t kFirstCapacity = 4;

}  // namespace

std::size_t JsonMembers::NameHash::operator()(std::string_view name) const {
  return std::hash<std::string_view>()(name);
}

std::size_t JsonMembers::find(std::string_view name) const {
  if (index_) {
    const auto found = index_->find(name);
    return found == index_->end() ? kNone : *found;
  }
  for (std::size_t position = 0; position < names_.size(); ++position) {
    if (names_[position] == name) return position;
  }
  return kNone;
}

void JsonMembers::makeIndex() {
  index_.reset(new NameIndex(4 * kMostUnindexed, NameHash{&names_}, NameEqual{&names_}));
  for (std::size_t position = 0; position < names_.size(); ++position) index_->insert(position);
}

void JsonMembers::append(std::string_view name, jsObject* value) {
  if (names_.empty()) {
    names_.reserve(kFirstCapacity);
    values_.reserve(kFirstCapacity);
  }
  names_.emplace_back(name);
  values_.push_back(value);
  if (index_) {
    index_->insert(names_.size() - 1);
  } else if (names_.size() > kMostUnindexed) {
    makeIndex();
  }
}

jsObject* JsonMembers::replace(std::size_t position, jsObject* value) {
  return std::exchange(values_[position], value);
}

jsObject* JsonMembers::remove(std::size_t position) {
  const std::size_t last = names_.size() - 1;
  if (index_) {
    // Both leave the index under the names they have now; the moved one comes back under its own.
    index_->erase(position);
    index_->erase(last);
  }
  jsObject* removed = std::exchange(values_[position], values_[last]);
  std::swap(names_[position], names_[last]);
  names_.pop_back();
  values_.pop_back();
  if (index_ && position != last) index_->insert(position);
  return removed;
}

}  // namespace tunadm
