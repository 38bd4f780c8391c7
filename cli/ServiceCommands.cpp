#include "cli/ServiceCommands.h"

namespace tunadm {

// The work of these commands is not built yet: their status stays the failure that it starts with.
void Hipcmd_ServiceStart::execute(StatusCodeResultField&) {}
void Hipcmd_ServiceStop::execute(StatusCodeResultField&) {}
void Hipcmd_ServiceBounce::execute(StatusCodeResultField&) {}
void Hipcmd_ShowStatus::execute(StatusCodeResultField&) {}

}  // namespace tunadm
