// One reading of the profiles directory.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/Status.h"
#include "profiles/ProfileRef.h"
#include "profiles/TakenNames.h"

namespace tunadm {

// The profiles on disk and their friendly names. Entries whose names begin with "." are not
// profiles, and neither are symbolic links.
class StoreScan {
 public:
  StoreScan() = default;
  StoreScan(const StoreScan&) = delete;
  StoreScan& operator=(const StoreScan&) = delete;

  // Reads the directory and the names afresh. Fails with kOpendirFailed when the directory cannot
  // be listed, and with kReadFailed when a name that is there cannot be read: it must not be taken
  // for none, and be replaced.
  Status read();

  // True when every profile has a friendly name that no other has. Sorts them to see that.
  [[nodiscard]] bool sound();

  // Gives a unique name, on disk, to each profile that has none or shares it with one before it in
  // the order of the directory. The caller holds the profile lock, and has read under it. Fails
  // as replaceFiles.
  Status repair();

  // The names of all entries of the directory, of whatever kind; good as long as the scan.
  std::vector<std::string_view> entryNames() const;

  // The friendly names of a sound store that begin with `base`: all that can be in the way of a
  // name made from it.
  TakenNames takenNames(std::string_view base) const;

  // Moves the profiles to the end of `list`, sorted by friendly name (bytewise).
  void takeSorted(ProfileList* list);

 private:
  void sortByName();

  // In the order of the directory. The name is empty where there is none.
  ProfileList profiles_;
  std::vector<ProfileRef*> by_name_;  // the same; empty until it is needed
  std::vector<std::string> others_;   // entries that are not profiles
};

}  // namespace tunadm
