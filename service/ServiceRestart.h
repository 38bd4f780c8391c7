// A stop of the service and the start that belongs to it, with a change between the two.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/Status.h"
#include "fundkit/SignalHold.h"
#include "service/ServiceControl.h"
#include "service/StartKeeper.h"

namespace tunadm {

// Use: stop() if the service must not run during the change, make the change, then finish(), which
// starts the service if it was stopped or a start was asked for. Neither a failure of the change
// nor the end of this process leaves the service stopped: a StartKeeper starts it then.
class ServiceRestart {
 public:
  // `system` and `check` as for startService.
  ServiceRestart(std::string_view system, RootCheck check) : system_(system), check_(check) {}
  ServiceRestart(const ServiceRestart&) = delete;
  ServiceRestart& operator=(const ServiceRestart&) = delete;

  // Stops the service, and makes a start due even if the stop fails as stopService does. Without a
  // keeper nothing is stopped: kForkFailed, or kAuthRequired, and no start is due.
  Status stop();

  // Makes a start due.
  void requestStart() { start_is_due_ = true; }
  [[nodiscard]] bool startIsDue() const { return start_is_due_; }

  // Starts the service if a start is due. Returns `changed`, the outcome of the change, if that is
  // a failure, else the outcome of the start. The caller holds no lock that a start script of the
  // host might wait for.
  Status finish(Status changed);

 private:
  std::string system_;
  RootCheck check_;
  bool start_is_due_ = false;
  // Both exist while the service may be stopped. The keeper waits for this process to go on or to
  // end, so it must not be suspended.
  std::optional<SignalHold> hold_;
  std::optional<StartKeeper> keeper_;
};

}  // namespace tunadm
