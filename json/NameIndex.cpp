#include "json/NameIndex.h"

#include <functional>

namespace tunadm {

NameIndex::Hash NameIndex::hashOf(std::string_view name) {
  return static_cast<Hash>(std::hash<std::string_view>()(name));
}

void NameIndex::append(Hash hash) {
  hashes_.push_back(hash);
  if (5 * hashes_.size() > 4 * slots_.size()) return grow();
  place(hashes_.size() - 1);
}

void NameIndex::remove(std::size_t position) {
  const std::size_t last = hashes_.size() - 1;
  vacate(slotOf(position));
  if (position != last) {
    slots_[slotOf(last)] = content(hashes_[last], position);
    hashes_[position] = hashes_[last];
  }
  hashes_.pop_back();
}

std::size_t NameIndex::slotOf(std::size_t position) const {
  std::size_t slot = home(hashes_[position]);
  while (positionIn(slot) != position) slot = after(slot);
  return slot;
}

void NameIndex::place(std::size_t position) {
  const Hash hash = hashes_[position];
  std::size_t free = home(hash);
  while (used(free)) free = after(free);
  slots_[free] = content(hash, position);
}

// Later slots move into the gap unless that is before their home, where no search begins.
void NameIndex::vacate(std::size_t gap) {
  for (std::size_t slot = after(gap); used(slot); slot = after(slot)) {
    const std::size_t from_home = (slot - home(hashes_[positionIn(slot)])) & mask();
    const std::size_t from_gap = (slot - gap) & mask();
    if (from_home < from_gap) continue;
    slots_[gap] = slots_[slot];
    gap = slot;
  }
  slots_[gap] = 0;
}

void NameIndex::grow() {
  slots_.assign(2 * slots_.size(), 0);
  for (std::size_t position = 0; position < hashes_.size(); ++position) place(position);
}

}  // namespace tunadm
