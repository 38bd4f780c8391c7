#include "cli/Catalogue.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <typeinfo>
#include <vector>

#include "cli/CatalogueParams.h"
#include "cli/HelpCommands.h"
#include "cli/JsonCommand.h"
#include "cli/ListCommands.h"
#include "cli/ProfileCommands.h"
#include "cli/ServiceCommands.h"
#include "cli/SupportCommands.h"

namespace tunadm {
namespace {

using Words = std::vector<std::string>;

Words split(const std::string& line) {
  std::istringstream stream(line);
  Words words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

// The parameters ("-" hidden, "!" required) and, behind a bar, the result fields, as help and
// output list them; the ones that every command has are left out when they are as they should be.
std::string declaration(const TunadmCommandInstance& command) {
  std::string text;
  for (const InputParamBase* param : command.params()) {
    text += (param->hidden() ? "-" : param->required() ? "!" : "") + param->name() + " ";
  }
  text += "|";
  for (const ResultParamBase* field : command.results()) text += " " + field->name();
  const std::string common = "-auth -requestID -output ";
  if (text.rfind(common, 0) == 0) text.erase(0, common.size());
  const std::size_t status = text.find("| status");
  return status == std::string::npos ? text : text.erase(status + 1, 7);
}

TEST(Catalogue, WaysToNameACommand) {
  const char* const modify =
      "-profile new_name helmsman network invitation log_level sys activate | details";
  const char* const log = "-profile max_lines log_level | _log profile_name";
  const char* const profiles = "| _profiles current_dir current_name root_dir";
  const char* const versions = "| hipapp_version tunadm_version";
  const struct {
    const char* line;
    int consumed;
    const std::type_info& type;
    const char* method;
    const char* declaration;
  } cases[] = {
      {"profile create x helmsman=h", 3, typeid(Hipcmd_CreateProfile), "profile create",
       "-new_name allow_rename !helmsman network invitation log_level sys activate | details "
       "profile_name"},
      {"profile activate x", 3, typeid(Hipcmd_ActivateProfile), "profile activate",
       "-profile sys | profile_name"},
      {"profile delete x", 3, typeid(Hipcmd_DeleteProfile), "profile delete", "-profile |"},
      {"profile details x", 3, typeid(Hipcmd_ShowProfile), "profile details", "-profile | details"},
      {"profile modify x", 3, typeid(Hipcmd_ModifyProfile), "profile modify", modify},
      {"profile rename details", 3, typeid(Hipcmd_RenameProfile), "profile rename",
       "-profile !new_name | profile_name"},
      {"profile x modify y", 3, typeid(Hipcmd_ModifyProfile), "profile modify", modify},
      {"list log x", 3, typeid(Hipcmd_GetHipLog), "list log", log},
      {"show log x", 3, typeid(Hipcmd_GetHipLog), "list log", log},
      {"support reset x", 3, typeid(Hipcmd_ProfileReset), "support reset",
       "-profile | profile_name"},
      {"json {} x", 2, typeid(Hipcmd_JsonCommand), "json <object>", "-object | subcommand"},
      {"service start", 2, typeid(Hipcmd_ServiceStart), "service start", "sys |"},
      {"service stop", 2, typeid(Hipcmd_ServiceStop), "service stop", "sys |"},
      {"service restart", 2, typeid(Hipcmd_ServiceBounce), "service restart", "sys full |"},
      {"service bounce", 2, typeid(Hipcmd_ServiceBounce), "service restart", "sys full |"},
      {"service status", 2, typeid(Hipcmd_ShowStatus), "service status",
       "| running helmsman tunnel"},
      {"list interfaces", 2, typeid(Hipcmd_GetInterfaces), "list interfaces", "| _interfaces"},
      {"show interfaces", 2, typeid(Hipcmd_GetInterfaces), "list interfaces", "| _interfaces"},
      {"list profiles", 2, typeid(Hipcmd_GetProfiles), "list profiles", profiles},
      {"tunadm show profiles", 2, typeid(Hipcmd_GetProfiles), "list profiles", profiles},
      {"list versions", 2, typeid(Hipcmd_GetVersions), "list versions", versions},
      {"show versions", 2, typeid(Hipcmd_GetVersions), "list versions", versions},
      {"support bundle", 2, typeid(Hipcmd_SupportBundle), "support bundle", "| output"},
      {"usage --quiet x", 3, typeid(Hipcmd_Usage), "usage", "| _helptext"},
      {"help", 1, typeid(Hipcmd_SimpleHelp), "help", "| _helptext"},
      {"reference", 1, typeid(Hipcmd_ReferenceHelp), "reference", "| _helptext"},
      {"tunadm", 0, typeid(Hipcmd_Usage), "usage", "| _helptext"},
  };
  for (const auto& c : cases) {
    Words words = split(c.line);
    int consumed = 99;
    const ScopedPtr<TunadmCommandInstance> command = lookUpCommand(&words, &consumed);
    EXPECT_EQ(consumed, c.consumed) << c.line;
    ASSERT_TRUE(command) << c.line;
    const TunadmCommandInstance& made = *command;
    EXPECT_EQ(typeid(made), c.type) << c.line;
    EXPECT_EQ(command->statusField().method(), c.method) << c.line;
    EXPECT_EQ(declaration(made), c.declaration) << c.line;
  }
  for (const char* line : {"profile create", "Profile create x", "profile x y", "list log",
                           "list x log", "json", "tunadm tunadm", "service", "Usage"}) {
    Words words = split(line);
    int consumed = 99;
    EXPECT_FALSE(lookUpCommand(&words, &consumed)) << line;
    EXPECT_EQ(consumed, -1) << line;
  }
}

TEST(Catalogue, TargetsAndDefaults) {
  for (const char* line : {"profile create x", "profile x rename", "list log x", "json x"}) {
    Words words = split(line);
    int consumed = 0;
    const ScopedPtr<TunadmCommandInstance> command = lookUpCommand(&words, &consumed);
    EXPECT_EQ(dynamic_cast<StringParam&>(*command->params()[3]).value(), "x") << line;
    if (consumed == 3 && words[1] == "log") {
      EXPECT_EQ(dynamic_cast<IntParam&>(*command->params()[4]).value(), 50);
    }
  }
  Words words = {"support", "bundle"};
  int consumed = 0;
  const ScopedPtr<TunadmCommandInstance> bundle = lookUpCommand(&words, &consumed);
  bundle->statusField().status().reset();
  Words lines;
  bundle->render([&lines](std::string_view line) { lines.emplace_back(line); });
  EXPECT_EQ(lines, Words());
}

TEST(CatalogueParams, Helmsman) {
  const struct {
    const char* text;
    bool taken;
    const char* host;
    int port;
  } cases[] = {{"10.0.0.1:9000", true, "10.0.0.1", 9000},
               {"h", true, "h", 8096},
               {"h:", true, "h", 0},
               {"h:abc", true, "h", 0},
               {"h:12:34", true, "h", 12},
               {":9000", true, "", 9000},
               {"", false, "", 8096}};
  for (const auto& c : cases) {
    ParamList list;
    HelmsmanParam param(&list, Required::kYes);
    EXPECT_EQ(param.setFromText(c.text), c.taken) << c.text;
    EXPECT_EQ(param.isSatisfied(), c.taken) << c.text;
    EXPECT_EQ(param.host(), c.host) << c.text;
    EXPECT_EQ(param.port(), c.port) << c.text;
  }
}

TEST(CatalogueParams, LogLevelKeepsBothForms) {
  ParamList list;
  OptionalLogLevelParam level(&list);
  EXPECT_EQ(level.value() + level.given(), "info");
  EXPECT_TRUE(level.setFromText("warn"));
  EXPECT_EQ(level.value() + level.given(), "WARNINGwarn");
}

}  // namespace
}  // namespace tunadm
