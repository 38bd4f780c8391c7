#include "cli/CatalogueParams.h"

#include <cstddef>
#include <cstdlib>
#include <iterator>

#include "fundkit/LogLevel.h"
#include "profiles/ConfigText.h"
#include "service/InitSystems.h"

namespace tunadm {
namespace {

constexpr std::string_view kOfferedLevels[] = {"info", "warn", "error", "debug", "trace"};

}  // namespace

bool OptionalLogLevelParam::setFromText(std::string_view text) {
  given_ = text;
  value_ = loglevel_fullname(parseLevel(text));
  return accept();
}

void OptionalLogLevelParam::appendHint(std::string* text) const {
  for (const std::string_view level : kOfferedLevels) {
    if (level != kOfferedLevels[0]) text->append(" | ");
    text->append(level);
  }
}

std::vector<std::string_view> OptionalLogLevelParam::values() const {
  return {std::begin(kOfferedLevels), std::end(kOfferedLevels)};
}

HelmsmanParam::HelmsmanParam(ParamList* list, Required required)
    : InputParamBase(list, "helmsman", required), port_(kHelmsmanPort) {}

bool HelmsmanParam::setFromText(std::string_view text) {
  const std::size_t colon = text.find(':');
  host_ = text.substr(0, colon);
  port_ = kHelmsmanPort;
  if (text.empty()) return false;
  if (colon != std::string_view::npos) {
    // Like atoi, but defined for every number. Whether it is a port is checked where it is used.
    const std::string digits(text.substr(colon + 1));
    port_ = static_cast<int>(std::strtol(digits.c_str(), nullptr, 10));
  }
  return accept();
}

bool SysImplParam::setFromText(std::string_view text) {
  value_ = text.empty() ? probeInitSystem() : text;
  return accept();
}

std::vector<std::string_view> SysImplParam::values() const { return systemNames(); }

const std::string& SysImplParam::resolve() {
  if (value_.empty()) value_ = probeInitSystem();
  if (value_.empty()) value_ = "null";
  markPresented();
  return value_;
}

}  // namespace tunadm
