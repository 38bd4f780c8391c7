#include "cli/JsonCommand.h"

namespace tunadm {

Hipcmd_JsonCommand::Hipcmd_JsonCommand(std::string_view method, const CommandWords& words)
    : TunadmCommandInstance(method), object_(paramList(), "object", words.target, Required::kNo) {
  object_.hide();
}

// Its work is not built yet: its status stays the failure that it starts with.
void Hipcmd_JsonCommand::execute(StatusCodeResultField&) {}

}  // namespace tunadm
