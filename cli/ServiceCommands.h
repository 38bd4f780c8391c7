// The commands on the service.
#pragma once

#include <string>
#include <string_view>

#include "cli/CatalogueParams.h"
#include "cli/CommandWords.h"
#include "core/CommandCore.h"

namespace tunadm {

// The base of the commands that run the host's init system.
class ServiceCommand : public TunadmCommandInstance {
 public:
  ServiceCommand(std::string_view method, const CommandWords&) : TunadmCommandInstance(method) {}

 protected:
  // The name of the init system to use.
  const std::string& system() { return sys_.resolve(); }

 private:
  SysImplParam sys_{paramList()};
};

class Hipcmd_ServiceStart final : public ServiceCommand {
 public:
  using ServiceCommand::ServiceCommand;
  void execute(StatusCodeResultField& result) override;
};

class Hipcmd_ServiceStop final : public ServiceCommand {
 public:
  using ServiceCommand::ServiceCommand;
  void execute(StatusCodeResultField& result) override;
};

class Hipcmd_ServiceBounce final : public ServiceCommand {
 public:
  using ServiceCommand::ServiceCommand;
  void execute(StatusCodeResultField& result) override;

 private:
  SingleWordParam full_{paramList(), "full"};  // accepted, but a restart is always the same
};

class Hipcmd_ShowStatus final : public TunadmCommandInstance {
 public:
  Hipcmd_ShowStatus(std::string_view method, const CommandWords&) : TunadmCommandInstance(method) {}
  void execute(StatusCodeResultField& result) override;

 private:
  BoolResult running_{resultList(), "running"};
  BoolResult helmsman_{resultList(), "helmsman"};
  BoolResult tunnel_{resultList(), "tunnel"};
};

}  // namespace tunadm
