// The host's init systems: one adapter each, which knows how it is told to start, stop and restart
// the service.
#pragma once

#include <string_view>
#include <vector>

#include "service/ChildProcess.h"

namespace tunadm {

enum class ServiceVerb { kStart, kStop, kRestart };

// Start, stop and restart are for a child process: they replace its image by the init system's
// command, or end it with exit code 101 when that cannot be run.
class SystemSpecificImpl {
 public:
  SystemSpecificImpl() = default;
  SystemSpecificImpl(const SystemSpecificImpl&) = delete;
  SystemSpecificImpl& operator=(const SystemSpecificImpl&) = delete;
  virtual ~SystemSpecificImpl() = default;

  virtual std::string_view name() const = 0;
  [[noreturn]] virtual void start() const { becomeCommand(ServiceVerb::kStart); }
  [[noreturn]] virtual void stop() const { becomeCommand(ServiceVerb::kStop); }
  [[noreturn]] virtual void restart() const { becomeCommand(ServiceVerb::kRestart); }

  // What these run. Without a path where there is nothing to run.
  virtual ProgramCall command(ServiceVerb verb) const = 0;

 private:
  [[noreturn]] void becomeCommand(ServiceVerb verb) const;
};

// The names that selectSystem knows.
std::vector<std::string_view> systemNames();

// Installs the adapter of that name for the process, in the place of the old one. An empty name
// changes nothing; an unknown one leaves none installed.
void selectSystem(std::string_view name);

// The installed adapter; systemd's is installed first when there is none. The reference is good
// until the next selectSystem.
const SystemSpecificImpl& currentSystem();

// The name of the init system by the marker files of the installation, "systemd" or "initd"; empty
// when neither is there.
std::string_view probeInitSystem();

}  // namespace tunadm
