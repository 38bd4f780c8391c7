#include "cli/SupportCommands.h"

namespace tunadm {

Hipcmd_SupportBundle::Hipcmd_SupportBundle(std::string_view method, const CommandWords&)
    : TunadmCommandInstance(method) {
  output_.setEmit(false);
}

// Its work is not built yet: its status stays the failure that it starts with.
void Hipcmd_SupportBundle::execute(StatusCodeResultField&) {}

}  // namespace tunadm
