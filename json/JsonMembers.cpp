#include "json/JsonMembers.h"

#include <utility>

namespace tunadm {
namespace {

// Up to this many, comparing the names one by one is faster than hashing, and needs no memory.
constexpr std::size_t kMostUnindexed = 16;

// Most objects have a few members. This saves growing the list twice.
constexpr std::size_t kFirstCapacity = 4;

}  // namespace

NameIndex::Hash JsonMembers::hashOf(std::string_view name) const {
  return index_ ? NameIndex::hashOf(name) : 0;
}

std::size_t JsonMembers::find(std::string_view name) const { return find(name, hashOf(name)); }

std::size_t JsonMembers::find(std::string_view name, NameIndex::Hash hash) const {
  if (index_) {
    return index_->find(hash, [&](std::size_t position) { return list_[position].name == name; });
  }
  for (std::size_t position = 0; position < list_.size(); ++position) {
    if (list_[position].name == name) return position;
  }
  return kNone;
}

void JsonMembers::makeIndex() {
  index_ = std::make_unique<NameIndex>();
  for (const JsonMember& member : list_) index_->append(NameIndex::hashOf(member.name.view()));
}

jsObject* JsonMembers::put(std::string_view name, jsObject* value) {
  const NameIndex::Hash hash = hashOf(name);
  const std::size_t position = find(name, hash);
  if (position != kNone) return std::exchange(list_[position].value, value);
  if (list_.empty()) list_.reserve(kFirstCapacity);
  list_.emplace_back(name, value);
  if (index_) {
    index_->append(hash);
  } else if (list_.size() > kMostUnindexed) {
    makeIndex();
  }
  return nullptr;
}

jsObject* JsonMembers::remove(std::size_t position) {
  jsObject* const removed = list_[position].value;
  if (position + 1 < list_.size()) list_[position] = std::move(list_.back());
  list_.pop_back();
  if (index_) index_->remove(position);
  return removed;
}

}  // namespace tunadm
