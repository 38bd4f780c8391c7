// The index of the names in one large object.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "json/JsonPool.h"

namespace tunadm {

// A hash table from names to the positions of their members. It holds no names: the caller compares
// those of the positions that it proposes. A slot has only 8 bytes, so that much of the table of
// a large object stays in the processor's caches. A position takes 32 bits: so many members would
// need 100 GB.
class NameIndex {
 public:
  using Hash = std::uint32_t;

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  static Hash hashOf(std::string_view name);

  // Returns the first position of that hash for which `matches` is true, or kNone.
  template <typename Matches>
  std::size_t find(Hash hash, const Matches& matches) const {
    for (std::size_t slot = home(hash); slots_[slot].used(); slot = after(slot)) {
      if (slots_[slot].hash == hash && matches(slots_[slot].position())) {
        return slots_[slot].position();
      }
    }
    return kNone;
  }

  // The position must not be in the index yet.
  void insert(Hash hash, std::size_t position);

  // The position must be in the index, under that hash.
  void erase(Hash hash, std::size_t position);

 private:
  struct Slot {
    Hash hash = 0;
    std::uint32_t position_plus_one = 0;  // 0 in an unused slot

    bool used() const { return position_plus_one != 0; }
    std::size_t position() const { return position_plus_one - 1; }
  };

  std::size_t home(Hash hash) const { return hash & (slots_.size() - 1); }
  std::size_t after(std::size_t slot) const { return (slot + 1) & (slots_.size() - 1); }
  void place(Slot slot);
  void grow();

  using Slots = std::vector<Slot, JsonAllocator<Slot>>;

  // A power of two, at most four fifths of them used, so that a search soon meets an unused one.
  Slots slots_ = Slots(64);
  std::size_t used_ = 0;
};

}  // namespace tunadm
