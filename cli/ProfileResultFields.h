// The result field that shows a profile's settings.
#pragma once

#include <string>
#include <string_view>

#include "core/ResultParam.h"
#include "profiles/ProfileControl.h"

namespace tunadm {

// A record of the details. The helmsman is left out when there is no host, and the text form does
// not show the candidate interfaces.
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
