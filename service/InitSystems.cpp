#include "service/InitSystems.h"

#include <memory>

#include "fundkit/FileUtils.h"
#include "service/ChildProcess.h"

namespace tunadm {
namespace {

// For a host without an init system: nothing is run.
class NullSystem final : public SystemSpecificImpl {
 public:
  std::string_view name() const override { return "null"; }
  [[noreturn]] void start() const override { endUnstartedChild(); }
  [[noreturn]] void stop() const override { endUnstartedChild(); }
  [[noreturn]] void restart() const override { endUnstartedChild(); }
};

class SystemdSystem final : public SystemSpecificImpl {
 public:
  std::string_view name() const override { return "systemd"; }
  [[noreturn]] void start() const override { systemctl("start"); }
  [[noreturn]] void stop() const override { systemctl("stop"); }
  [[noreturn]] void restart() const override { systemctl("restart"); }

 private:
  [[noreturn]] static void systemctl(const char* verb) {
    becomeProgram({"/bin/systemctl", {"systemctl", verb, "quenlay"}});
  }
};

class InitdSystem final : public SystemSpecificImpl {
 public:
  std::string_view name() const override { return "initd"; }
  [[noreturn]] void start() const override { script("start"); }
  // Deliberate: the daemon is stopped by its program's name, not through its script.
  [[noreturn]] void stop() const override {
    becomeProgram({"/usr/bin/killall", {"killall", "/usr/sbin/quenlay"}});
  }
  [[noreturn]] void restart() const override { script("restart"); }

 private:
  [[noreturn]] static void script(const char* verb) {
    becomeProgram({"/etc/init.d/quenlay", {"quenlay", verb}});
  }
};

class UpstartSystem final : public SystemSpecificImpl {
 public:
  std::string_view name() const override { return "upstart"; }
  [[noreturn]] void start() const override { initctl("start"); }
  [[noreturn]] void stop() const override { initctl("stop"); }
  [[noreturn]] void restart() const override { initctl("restart"); }

 private:
  // The job has a name of its own.
  [[noreturn]] static void initctl(const char* verb) {
    becomeProgram({"/sbin/initctl", {"initctl", verb, "hip"}});
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
