// What a command knows of the store.
#pragma once

#include <optional>

#include "core/Status.h"
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

  // kApplicationError when an error keeps the marker from being read: any profile may be running.
  Status knowsCurrent();

  // Makes `profiles` point to the profiles as listStore lists them, and fails as that does.
  Status profiles(const ProfileList** profiles);

  // Whether the daemon runs, which it does with the current profile.
  [[nodiscard]] TriState daemon();

  // False also when there is no current profile.
  [[nodiscard]] bool isCurrent(const ProfileRef& profile);

 private:
  std::optional<ProfileIdentity> current_;
  std::optional<TriState> daemon_;
  std::optional<Status> listed_;
  ProfileList profiles_;
};

}  // namespace tunadm
