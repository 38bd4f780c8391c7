// The command that takes a request in JSON form.
#pragma once

#include <string_view>

#include "cli/CommandWords.h"
#include "core/CommandCore.h"

namespace tunadm {

class Hipcmd_JsonCommand final : public TunadmCommandInstance {
 public:
  Hipcmd_JsonCommand(std::string_view method, const CommandWords& words);
  void execute(StatusCodeResultField& result) override;

 private:
  StringParam object_;
  StringVectorResultField subcommand_{resultList(), "subcommand"};
};

}  // namespace tunadm
