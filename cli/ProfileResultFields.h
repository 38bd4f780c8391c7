// The result field that shows a profile's settings.
#pragma once

#include <string>
#include <string_view>

#include "core/ResultParam.h"
#include "profiles/ProfileControl.h"

namespace tunadm {

// Shown as a list of "key=value" lines; only the helmsman line is left out when there is no host,
// and the candidate interfaces are not shown.
class ProfileDetailsResultField final : public ResultParamBase {
 public:
  ProfileDetailsResultField(ResultList* list, std::string_view name)
      : ResultParamBase(list, name) {}

  ProfileDetails& details() { return details_; }

  void render(ValueBinder& out) const override;
  void typeName(std::string* text) const override { text->append("profile-details"); }

 private:
  ProfileDetails details_;
};

}  // namespace tunadm
