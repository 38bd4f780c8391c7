#include "cli/ProfileCommands.h"

#include <string>

#include "profiles/ProfileControl.h"
#include "profiles/ProfileCreate.h"

namespace tunadm {

Hipcmd_CreateProfile::Hipcmd_CreateProfile(std::string_view method, const CommandWords& words)
    : TunadmCommandInstance(method),
      new_name_(paramList(), "new_name", words.target, Required::kNo) {
  new_name_.hide();
}

void Hipcmd_CreateProfile::execute(StatusCodeResultField& result) {
  CreateRequest request;
  request.name = new_name_.value();
  request.allow_rename = allow_rename_.value();
  request.activate = activate_.present();
  request.network = network_.value();
  request.helmsman_host = helmsman_.host();
  request.helmsman_port = helmsman_.port();
  request.invitation = invitation_.value();

  ProfileRef created;
  result.status() = createProfile(request, &created);
  if (!result.status().ok()) return;
  profile_name_.set(created.profile_name);
  // What is missing stays empty; the profile has been made all the same.
  (void)cmdGetProfileDetails("dir=" + created.dir_name, &details_.details());
}

void Hipcmd_ShowProfile::execute(StatusCodeResultField& result) {
  result.status() = cmdGetProfileDetails(selector(), &details_.details());
}

Hipcmd_ModifyProfile::Hipcmd_ModifyProfile(std::string_view method, const CommandWords& words)
    : ProfileCommand(method, words) {
  helmsman_.makeOptional();
}

// The work of the following commands is not built yet: their status stays the failure that it
// starts with.
void Hipcmd_ActivateProfile::execute(StatusCodeResultField&) {}
void Hipcmd_DeleteProfile::execute(StatusCodeResultField&) {}
void Hipcmd_RenameProfile::execute(StatusCodeResultField&) {}
void Hipcmd_ModifyProfile::execute(StatusCodeResultField&) {}
void Hipcmd_ProfileReset::execute(StatusCodeResultField&) {}

}  // namespace tunadm
