#include "profiles/LineBreaks.h"

namespace tunadm {

Status refuseLineBreaks(std::initializer_list<std::string_view> values, std::string_view context) {
  for (const std::string_view value : values) {
    if (value.find('\n') != std::string_view::npos) {
      return Status(kInvalidArgument, "value holds a line break", context);
    }
  }
  return Status(kSuccess);
}

}  // namespace tunadm
