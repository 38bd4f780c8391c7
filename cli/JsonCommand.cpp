#include "cli/JsonCommand.h"

namespace tunadm {

Hipcmd_JsonCommand::Hipcmd_JsonCommand(std::string_view method, const CommandWords& words)
    : TunadmCommandInstance(method), object_(paramList(), "object", words.target, Required::kNo) {
  object_.hide();
}

// Deliberate: the object is accepted, but neither parsed nor carried out.
void Hipcmd_JsonCommand::execute(StatusCodeResultField& result) { result.status().reset(); }

}  // namespace tunadm
