#include "profiles/PassedFailure.h"

#include <string>

#include "fundkit/BasicLog.h"

namespace tunadm {

void logPassedFailure(std::string_view what, const Status& outcome) {
  if (outcome.ok()) return;
  std::string text(what);
  if (!outcome.cause().empty()) text.append(": ").append(outcome.cause());
  TUNADM_LOG(programLogger(), kLogWarning, sourceFileName(__FILE__), __func__, text);
}

}  // namespace tunadm
