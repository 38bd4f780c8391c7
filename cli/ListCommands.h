// The commands that list what is on the host.
#pragma once

#include <string>
#include <string_view>

#include "cli/CommandWords.h"
#include "cli/ProfileCommands.h"
#include "core/CommandCore.h"
#include "profiles/ProfileRef.h"
#include "service/LogExtract.h"

namespace tunadm {

class Hipcmd_GetProfiles final : public TunadmCommandInstance {
 public:
  Hipcmd_GetProfiles(std::string_view method, const CommandWords&)
      : TunadmCommandInstance(method) {}
  void execute(StatusCodeResultField& result) override;

 private:
  // A record for each profile; in text, a line "<dir name>: <friendly name>".
  class ProfileListResultField final : public ResultParamBase {
   public:
    ProfileListResultField(ResultList* list, std::string_view name) : ResultParamBase(list, name) {}

    ProfileList& profiles() { return profiles_; }

    void render(ValueBinder& out) const override;
    void typeName(std::string* text) const override { text->append("profile-list"); }

   private:
    ProfileList profiles_;
  };

  ProfileListResultField profiles_{resultList(), "_profiles"};
  StringResult current_dir_{resultList(), "current_dir"};
  StringResult current_name_{resultList(), "current_name"};
  StringResult root_dir_{resultList(), "root_dir"};
};

class Hipcmd_GetInterfaces final : public TunadmCommandInstance {
 public:
  Hipcmd_GetInterfaces(std::string_view method, const CommandWords&)
      : TunadmCommandInstance(method) {}
  void execute(StatusCodeResultField& result) override;

 private:
  StringVectorResultField interfaces_{resultList(), "_interfaces"};
};

class Hipcmd_GetVersions final : public TunadmCommandInstance {
 public:
  Hipcmd_GetVersions(std::string_view method, const CommandWords&)
      : TunadmCommandInstance(method) {}
  void execute(StatusCodeResultField& result) override;

 private:
  StringResult hipapp_version_{resultList(), "hipapp_version"};
  StringResult tunadm_version_{resultList(), "tunadm_version"};
};

class Hipcmd_GetHipLog final : public ProfileCommand {
 public:
  using ProfileCommand::ProfileCommand;
  void execute(StatusCodeResultField& result) override;

 private:
  class LogResultField final : public ResultParamBase {
   public:
    LogResultField(ResultList* list, std::string_view name) : ResultParamBase(list, name) {}

    LogExtract& extract() { return extract_; }

    void render(ValueBinder& out) const override;
    void typeName(std::string* text) const override { text->append(name()); }

   private:
    LogExtract extract_;
  };

  IntParam max_lines_{paramList(), "max_lines", kDefaultLogLines, Required::kNo};
  OptionalLogLevelParam log_level_{paramList()};
  LogResultField log_{resultList(), "_log"};
  StringResult profile_name_{resultList(), "profile_name"};
};

}  // namespace tunadm
