// The commands that explain the others.
#pragma once

#include <string_view>

#include "cli/CommandWords.h"
#include "core/CommandCore.h"

namespace tunadm {

// The base of the commands whose result is lines of text.
class HelpCommand : public TunadmCommandInstance {
 public:
  HelpCommand(std::string_view method, const CommandWords&) : TunadmCommandInstance(method) {}

 private:
  StringVectorResultField helptext_{resultList(), "_helptext"};
};

class Hipcmd_Usage final : public HelpCommand {
 public:
  using HelpCommand::HelpCommand;
  void execute(StatusCodeResultField& result) override;
};

class Hipcmd_SimpleHelp final : public HelpCommand {
 public:
  using HelpCommand::HelpCommand;
  void execute(StatusCodeResultField& result) override;
};

class Hipcmd_ReferenceHelp final : public HelpCommand {
 public:
  using HelpCommand::HelpCommand;
  void execute(StatusCodeResultField& result) override;
};

}  // namespace tunadm
