// The index of the names in one large object.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "json/JsonPool.h"

namespace tunadm {

// A hash table from names to the positions of their members. It holds no names: the caller compares
// those of the positions that it proposes. A search of a large object misses the processor's cache
// about once, so a slot has only 4 bytes: the low bits are a position plus one, and those above
// them are bits of the hash. The full hashes are kept in a separate list, read only when the index
// grows or a member is removed. A position takes 32 bits: so many members would need 100 GB.
class NameIndex {
 public:
  using Hash = std::uint32_t;

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  static Hash hashOf(std::string_view name);

  // Returns the first position that agrees with `hash` in the bits kept and for which `matches` is
  // true, or kNone.
  template <typename Matches>
  std::size_t find(Hash hash, const Matches& matches) const {
    for (std::size_t slot = home(hash); used(slot); slot = after(slot)) {
      const std::size_t position = positionIn(slot);
      if (((slots_[slot] ^ hash) & ~mask()) == 0 && matches(position)) return position;
    }
    return kNone;
  }

  // Adds the position after the last one.
  void append(Hash hash);

  // Removes a position. The last position takes its number.
  void remove(std::size_t position);

 private:
  // 0 in the bits of the position if it is unused, else the position plus one.
  using Slot = std::uint32_t;

  Slot mask() const { return static_cast<Slot>(slots_.size() - 1); }
  std::size_t home(Hash hash) const { return hash & mask(); }
  std::size_t after(std::size_t slot) const { return (slot + 1) & mask(); }
  bool used(std::size_t slot) const { return (slots_[slot] & mask()) != 0; }
  std::size_t positionIn(std::size_t slot) const { return (slots_[slot] & mask()) - 1; }
  Slot content(Hash hash, std::size_t position) const {
    return (hash & ~mask()) | static_cast<Slot>(position + 1);
  }
  std::size_t slotOf(std::size_t position) const;
  void place(std::size_t position);
  void vacate(std::size_t gap);
  void grow();

  // A power of two, at most four fifths of them used, so that a search soon meets an unused one.
  std::vector<Slot, JsonAllocator<Slot>> slots_ = std::vector<Slot, JsonAllocator<Slot>>(64);
  std::vector<Hash, JsonAllocator<Hash>> hashes_;  // by position
};

}  // namespace tunadm
