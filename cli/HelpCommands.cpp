#include "cli/HelpCommands.h"

namespace tunadm {

// The work of these commands is not built yet: their status stays the failure that it starts with.
void Hipcmd_Usage::execute(StatusCodeResultField&) {}
void Hipcmd_SimpleHelp::execute(StatusCodeResultField&) {}
void Hipcmd_ReferenceHelp::execute(StatusCodeResultField&) {}

}  // namespace tunadm
