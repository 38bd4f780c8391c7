#include "profiles/StoreView.h"

#include "profiles/ProfileList.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {

const ProfileIdentity& StoreView::current() {
  if (!current_) current_ = lookUpCurrentProfile();
  return *current_;
}

const ProfileList* StoreView::profiles() {
  if (!profiles_ && !profiles_failed_) {
    profiles_failed_ = !enumerateProfiles(&profiles_.emplace());
  }
  return profiles_failed_ ? nullptr : &*profiles_;
}

TriState StoreView::daemon() {
  if (!daemon_) daemon_ = isDaemonRunning(profileFile(current().dir_name, kStatusFile));
  return *daemon_;
}

bool StoreView::isCurrent(const ProfileRef& profile) {
  return isCurrentProfile(profile, current()) == TriState::kYes;
}

}  // namespace tunadm
