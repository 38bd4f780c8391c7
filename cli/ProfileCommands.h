// The commands on one profile.
#pragma once

#include <string>
#include <string_view>

#include "cli/CatalogueParams.h"
#include "cli/CommandWords.h"
#include "cli/ProfileResultFields.h"
#include "core/CommandCore.h"

namespace tunadm {

class Hipcmd_CreateProfile final : public TunadmCommandInstance {
 public:
  Hipcmd_CreateProfile(std::string_view method, const CommandWords& words);
  void execute(StatusCodeResultField& result) override;

 private:
  StringParam new_name_;
  BoolParam allow_rename_{paramList(), "allow_rename", true, Required::kNo};
  HelmsmanParam helmsman_{paramList(), Required::kYes};
  OptionalNetworkParam network_{paramList()};
  OptionalActivationParam invitation_{paramList()};
  OptionalLogLevelParam log_level_{paramList()};
  SysImplParam sys_{paramList()};
  SingleWordParam activate_{paramList(), "activate"};
  ProfileDetailsResultField details_{resultList(), "details"};
  StringResult profile_name_{resultList(), "profile_name"};
};

// The base of the commands that act on an existing profile.
class ProfileCommand : public TunadmCommandInstance {
 public:
  ProfileCommand(std::string_view method, const CommandWords& words)
      : TunadmCommandInstance(method), profile_(paramList(), words.target) {}

 protected:
  const std::string& selector() const { return profile_.value(); }

 private:
  OptionalProfileParam profile_;
};

class Hipcmd_ShowProfile final : public ProfileCommand {
 public:
  using ProfileCommand::ProfileCommand;
  void execute(StatusCodeResultField& result) override;

 private:
  ProfileDetailsResultField details_{resultList(), "details"};
};

class Hipcmd_ActivateProfile final : public ProfileCommand {
 public:
  using ProfileCommand::ProfileCommand;
  void execute(StatusCodeResultField& result) override;

 private:
  SysImplParam sys_{paramList()};
  StringResult profile_name_{resultList(), "profile_name"};
};

class Hipcmd_DeleteProfile final : public ProfileCommand {
 public:
  using ProfileCommand::ProfileCommand;
  void execute(StatusCodeResultField& result) override;
};

class Hipcmd_RenameProfile final : public ProfileCommand {
 public:
  using ProfileCommand::ProfileCommand;
  void execute(StatusCodeResultField& result) override;

 private:
  StringParam new_name_{paramList(), "new_name", "", Required::kYes};
  StringResult profile_name_{resultList(), "profile_name"};
};

class Hipcmd_ModifyProfile final : public ProfileCommand {
 public:
  Hipcmd_ModifyProfile(std::string_view method, const CommandWords& words);
  void execute(StatusCodeResultField& result) override;

 private:
  StringParam new_name_{paramList(), "new_name", "", Required::kNo};
  HelmsmanParam helmsman_{paramList(), Required::kYes};
  OptionalNetworkParam network_{paramList()};
  OptionalActivationParam invitation_{paramList()};
  OptionalLogLevelParam log_level_{paramList()};
  SysImplParam sys_{paramList()};
  SingleWordParam activate_{paramList(), "activate"};
  ProfileDetailsResultField details_{resultList(), "details"};
};

class Hipcmd_ProfileReset final : public ProfileCommand {
 public:
  using ProfileCommand::ProfileCommand;
  void execute(StatusCodeResultField& result) override;

 private:
  StringResult profile_name_{resultList(), "profile_name"};
};

}  // namespace tunadm
