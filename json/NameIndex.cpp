#include "json/NameIndex.h"

#include <functional>
#include <utility>

namespace tunadm {

NameIndex::Hash NameIndex::hashOf(std::string_view name) {
  return static_cast<Hash>(std::hash<std::string_view>()(name));
}

void NameIndex::insert(Hash hash, std::size_t position) {
  if (5 * ++used_ > 4 * slots_.size()) grow();
  place({hash, static_cast<std::uint32_t>(position + 1)});
}

void NameIndex::erase(Hash hash, std::size_t position) {
  std::size_t gap = home(hash);
  while (slots_[gap].position() != position) gap = after(gap);
  --used_;
  // Later slots move into the gap unless that is before their home, where no search begins.
  for (std::size_t slot = after(gap); slots_[slot].used(); slot = after(slot)) {
    const std::size_t from_home = (slot - home(slots_[slot].hash)) & (slots_.size() - 1);
    const std::size_t from_gap = (slot - gap) & (slots_.size() - 1);
    if (from_home < from_gap) continue;
    slots_[gap] = slots_[slot];
    gap = slot;
  }
  slots_[gap] = Slot();
}

void NameIndex::place(Slot slot) {
  std::size_t free = home(slot.hash);
  while (slots_[free].used()) free = after(free);
  slots_[free] = slot;
}

void NameIndex::grow() {
  const Slots old = std::exchange(slots_, Slots(2 * slots_.size()));
  for (const Slot& slot : old) {
    if (slot.used()) place(slot);
  }
}

}  // namespace tunadm
