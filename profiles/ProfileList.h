// The set of profiles on disk, and the rule that keeps their friendly names unique.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tunadm {

struct ProfileEntry {
  std::string dir_name;
  std::string profile_name;  // the friendly name
};

using ProfileList = std::vector<ProfileEntry>;

// The friendly names that are taken already. Finding free names for ever more equal bases does not
// try the same numbers again.
class TakenNames {
 public:
  bool contains(std::string_view name) const { return names_.contains(std::string(name)); }
  void add(std::string_view name) { names_.emplace(name); }

  // `base` if it is free, else the first free one of base#2, base#3, ... base#999999, else `base`
  // all the same. Does not take the name.
  std::string uniqueName(const std::string& base);

 private:
  std::unordered_set<std::string> names_;
  std::unordered_map<std::string, int> next_number_;  // per base; all below are taken
};

// Appends every profile to `list`, sorted by friendly name (bytewise). Entries whose names begin
// with "." are no profiles, and neither are symbolic links. `left_out` is neither counted nor named
// (a profile in the making).
//
// A profile without a friendly name, or with one that an earlier profile has, is given a unique one
// on disk. For that the profile lock is taken, so that a profile which is just being created keeps
// its name. Returns false, with `list` as it was, when the store cannot be listed or a name cannot
// be written.
bool enumerateProfiles(ProfileList* list, std::string_view left_out = {});

}  // namespace tunadm
