#include "cli/ProfileCommands.h"

#include <string>

#include "profiles/ProfileActivate.h"
#include "profiles/ProfileControl.h"
#include "profiles/ProfileCreate.h"
#include "profiles/ProfileDelete.h"
#include "profiles/ProfileModify.h"
#include "profiles/ProfileRename.h"
#include "profiles/SupportReset.h"

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
  request.system = sys_.resolve();

  ProfileRef created;
  result.status() = createProfile(request, &created);
  if (!result.status().ok()) return;
  profile_name_.set(created.profile_name);
  details_.details() = readProfileDetails(created);
}

void Hipcmd_ShowProfile::execute(StatusCodeResultField& result) {
  result.status() = cmdGetProfileDetails(selector(), &details_.details());
}

Hipcmd_ModifyProfile::Hipcmd_ModifyProfile(std::string_view method, const CommandWords& words)
    : ProfileCommand(method, words) {
  helmsman_.makeOptional();
}

void Hipcmd_ModifyProfile::execute(StatusCodeResultField& result) {
  ModifyRequest request;
  request.new_name = new_name_.value();
  request.log_level = log_level_.given();
  request.invitation = invitation_.value();
  request.activate = activate_.present();
  request.system = sys_.resolve();
  // The defaults of these two are for a new profile; here only what was given changes anything.
  if (network_.presented()) request.network = network_.value();
  if (helmsman_.presented()) {
    request.helmsman_host = helmsman_.host();
    request.helmsman_port = helmsman_.port();
  }
  ProfileRef profile;
  result.status() = modifyProfile(selector(), request, &profile);
  if (!result.status().ok()) return;
  details_.details() = readProfileDetails(profile);
}

void Hipcmd_ActivateProfile::execute(StatusCodeResultField& result) {
  std::string name;
  result.status() = activateProfile(selector(), sys_.resolve(), &name);
  profile_name_.set(name);
}

void Hipcmd_DeleteProfile::execute(StatusCodeResultField& result) {
  result.status() = deleteProfile(selector());
}

void Hipcmd_RenameProfile::execute(StatusCodeResultField& result) {
  result.status() = renameProfile(selector(), new_name_.value());
  profile_name_.set(new_name_.value());
}

void Hipcmd_ProfileReset::execute(StatusCodeResultField& result) {
  std::string name;
  result.status() = resetProfile(selector(), &name);
  profile_name_.set(name);
}

}  // namespace tunadm
