#include "cli/HelpCommands.h"

#include "cli/HelpPages.h"

namespace tunadm {

void HelpCommand::execute(StatusCodeResultField& result) {
  helptext_.lines() = page();
  result.status().reset();
}

std::vector<std::string> Hipcmd_Usage::page() const { return usagePage(); }

std::vector<std::string> Hipcmd_SimpleHelp::page() const { return helpPage(words()); }

std::vector<std::string> Hipcmd_ReferenceHelp::page() const { return referencePage(); }

}  // namespace tunadm
