// What a command knows of the store.
#pragma once

#include <optional>

#include "profiles/CurrentProfile.h"
#include "profiles/ProfileRef.h"
#include "service/ServiceStatus.h"

namespace tunadm {

// One look at the store. Whatever is asked for is read once, on first use, and then kept, so that a
// command cannot get two answers to one question. A command that looks once before it has the
// profile lock and once under it makes two of these.
class StoreView {
 public:
  const ProfileIdentity& current();

  // The profiles as enumerateProfiles lists them; null when it fails.
  const ProfileList* profiles();

  // Whether the daemon runs, which it does with the current profile.
  [[nodiscard]] TriState daemon();

  // False also when there is no current profile.
  [[nodiscard]] bool isCurrent(const ProfileRef& profile);

 private:
  std::optional<ProfileIdentity> current_;
  std::optional<TriState> daemon_;
  std::optional<ProfileList> profiles_;
  bool profiles_failed_ = false;
};

}  // namespace tunadm
