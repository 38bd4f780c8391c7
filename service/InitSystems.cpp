#include "service/InitSystems.h"

#include <memory>

#include "fundkit/FileUtils.h"

namespace tunadm {
namespace {

const char* word(ServiceVerb verb) {
  switch (verb) {
    case ServiceVerb::kStart:
      return "start";
    case ServiceVerb::kStop:
      return "stop";
    case ServiceVerb::kRestart:
      break;
  }
  return "restart";
}

// For a host without an init system: nothing is run.
class NullSystem final : public SystemSpecificImpl {
 public:
  std::string_view name() const override { return "null"; }
  ProgramCall command(ServiceVerb /*verb*/) const override { return {}; }
};

class SystemdSystem final : public SystemSpecificImpl {
 public:
  std::string_view name() const override { return "systemd"; }
  ProgramCall command(ServiceVerb verb) const override {
    return {"/bin/systemctl", {"systemctl", word(verb), "quenlay"}};
  }
};

class InitdSystem final : public SystemSpecificImpl {
 public:
  std::string_view name() const override { return "initd"; }
  ProgramCall command(ServiceVerb verb) const override {
    // Deliberate: the daemon is stopped by its program's name, not through its script.
    if (verb == ServiceVerb::kStop) {
      return {"/usr/bin/killall", {"killall", "/usr/sbin/quenlay"}};
    }
    return {"/etc/init.d/quenlay", {"quenlay", word(verb)}};
  }
};

class UpstartSystem final : public SystemSpecificImpl {
 public:
  std::string_view name() const override { return "upstart"; }
  ProgramCall command(ServiceVerb verb) const override {
    // The job has a name of its own.
    return {"/sbin/initctl", {"initctl", word(verb), "hip"}};
  }
};

template <typename System>
std::unique_ptr<SystemSpecificImpl> make() {
  return std::make_unique<System>();
}

struct SystemRow {
  std::string_view name;
  std::unique_ptr<SystemSpecificImpl> (*make)();
};

constexpr SystemRow kSystems[] = {
    {"systemd", &make<SystemdSystem>}, {"initd", &make<InitdSystem>},
    {"upstart", &make<UpstartSystem>}, {"launchd", &make<NullSystem>},
    {"null", &make<NullSystem>},
};

std::unique_ptr<SystemSpecificImpl> current_system;

}  // namespace

void SystemSpecificImpl::becomeCommand(ServiceVerb verb) const {
  const ProgramCall call = command(verb);
  if (call.path == nullptr) endUnstartedChild();
  becomeProgram(call);
}

std::vector<std::string_view> systemNames() {
  std::vector<std::string_view> names;
  for (const SystemRow& row : kSystems) names.push_back(row.name);
  return names;
}

void selectSystem(std::string_view name) {
  if (name.empty()) return;
  current_system.reset();
  for (const SystemRow& row : kSystems) {
    if (row.name == name) current_system = row.make();
  }
}

const SystemSpecificImpl& currentSystem() {
  if (current_system == nullptr) current_system = std::make_unique<SystemdSystem>();
  return *current_system;
}

std::string_view probeInitSystem() {
  if (pathExists("/opt/vrx//.systemctl")) return "systemd";
  if (pathExists("/etc/init.d/quenlay")) return "initd";
  return "";
}

}  // namespace tunadm
