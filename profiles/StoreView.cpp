#include "profiles/StoreView.h"

#include "fundkit/SystemFailure.h"
#include "profiles/ProfileList.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {

const ProfileIdentity& StoreView::current() {
  if (!current_) current_ = lookUpCurrentProfile();
  return *current_;
}

Status StoreView::profiles(const ProfileList** profiles) {
  if (!listed_) listed_ = listStore(&profiles_);
  *profiles = &profiles_;
  return *listed_;
}

Status StoreView::knowsCurrent() {
  if (current().valid || !isMarkerUnreadable()) return Status(kSuccess);
  return systemFailure(kApplicationError, "read", currentMarkerPath());
}

TriState StoreView::daemon() {
  if (!daemon_) daemon_ = isDaemonRunning(profileFile(current().dir_name, kStatusFile));
  return *daemon_;
}

bool StoreView::isCurrent(const ProfileRef& profile) {
  return isCurrentProfile(profile, current()) == TriState::kYes;
}

}  // namespace tunadm
