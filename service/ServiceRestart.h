// A stop of the service and the start that belongs to it, with a change between the two.
#pragma once

#include <string>
#include <string_view>

#include "core/Status.h"
#include "service/ServiceControl.h"

namespace tunadm {

// Use: stop() if the service must not run during the change, make the change, then finish(), which
// starts the service if it was stopped or a start was asked for. No failure of the change leaves
// the service stopped.
class ServiceRestart {
 public:
  // `system` and `check` as for startService.
  ServiceRestart(std::string_view system, RootCheck check) : system_(system), check_(check) {}
  ServiceRestart(const ServiceRestart&) = delete;
  ServiceRestart& operator=(const ServiceRestart&) = delete;

  // Stops the service, and makes a start due whatever comes of it. Fails as stopService.
  Status stop();

  // Makes a start due.
  void requestStart() { start_is_due_ = true; }

  // Starts the service if a start is due. Returns `changed`, the outcome of the change, if that is
  // a failure, else the outcome of the start.
  Status finish(Status changed);

 private:
  std::string system_;
  RootCheck check_;
  bool start_is_due_ = false;
};

}  // namespace tunadm
