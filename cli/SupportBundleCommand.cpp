#include "cli/SupportBundleCommand.h"

#include "service/SupportBundle.h"

namespace tunadm {

Hipcmd_SupportBundle::Hipcmd_SupportBundle(std::string_view method, const CommandWords&)
    : TunadmCommandInstance(method) {
  output_.setEmit(false);
}

void Hipcmd_SupportBundle::execute(StatusCodeResultField& result) {
  result.status() = writeSupportBundle();
}

}  // namespace tunadm
