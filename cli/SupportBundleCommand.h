// The command that writes a support bundle.
#pragma once

#include <string_view>

#include "cli/CommandWords.h"
#include "core/CommandCore.h"

namespace tunadm {

class Hipcmd_SupportBundle final : public TunadmCommandInstance {
 public:
  Hipcmd_SupportBundle(std::string_view method, const CommandWords&);
  void execute(StatusCodeResultField& result) override;

 private:
  StringResult output_{resultList(), "output"};
};

}  // namespace tunadm
