#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cli/Catalogue.h"
#include "cli/CatalogueParams.h"
#include "cli/HelpPages.h"

namespace tunadm {
namespace {

using Pair = std::pair<const char*, const char*>;

std::vector<std::string> split(const std::string& line) {
  std::istringstream stream(line);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

std::string joined(const HelpLines& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

TEST(Catalogue, WaysToNameACommand) {
  const Pair cases[] = {
      // How many words lead to which command.
      {"profile create x helmsman=h", "3 profile create x"},
      {"profile activate x", "3 profile activate x"},
      {"profile delete x", "3 profile delete x"},
      {"profile details x", "3 profile details x"},
      {"profile modify x", "3 profile modify x"},
      {"profile rename details", "3 profile rename details"},
      {"profile x modify y", "3 profile modify x"},
      {"list log x", "3 list log x"},
      {"show log x", "3 list log x"},
      {"support reset x", "3 support reset x"},
      {"json {} x", "2 json <object> {}"},
      {"service start", "2 service start"},
      {"service stop", "2 service stop"},
      {"service restart", "2 service restart"},
      {"service bounce", "2 service restart"},
      {"service status", "2 service status"},
      {"list interfaces", "2 list interfaces"},
      {"show interfaces", "2 list interfaces"},
      {"list profiles", "2 list profiles"},
      {"tunadm show profiles", "2 list profiles"},
      {"list versions", "2 list versions"},
      {"show versions", "2 list versions"},
      {"support bundle", "2 support bundle"},
      {"usage --quiet x", "3 usage"},
      {"help", "1 help"},
      {"reference", "1 reference"},
      {"tunadm", "0 usage"},
      {"profile create", "-1"},
      {"Profile create x", "-1"},
      {"profile x y", "-1"},
      {"list x log", "-1"},
      {"json", "-1"},
      {"tunadm tunadm", "-1"},
      {"service", "-1"},
  };
  for (const auto& [line, expected] : cases) {
    std::vector<std::string> words = split(line);
    int consumed = 99;
    const ScopedPtr<TunadmCommandInstance> command = lookUpCommand(&words, &consumed);
    std::string shown = std::to_string(consumed);
    if (command) {
      shown += " " + command->statusField().method();
      // The target is the default of the first parameter behind those that every command has.
      const bool more = command->params().size() > 3;
      const auto* target = more ? dynamic_cast<StringParam*>(command->params()[3]) : nullptr;
      if (target != nullptr) shown += " " + target->value();
    }
    EXPECT_EQ(shown, expected) << line;
  }
}

TEST(CatalogueParams, Helmsman) {
  const struct {
    const char* text;
    bool taken;
    const char* host;
    int port;
  } cases[] = {{"10.0.0.1:9000", true, "10.0.0.1", 9000},
               {"h", true, "h", 8096},
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

TEST(Help, WordsLeadToPages) {
  const Pair cases[] = {
      // What the page is about.
      {"", "tunadm help for command: help"},
      {"settings", "tunadm help for command: help"},
      {"profile create", "profile create"},
      {"profile activate", "profile activate"},
      {"profile delete", "profile delete"},
      {"profile details", "profile details"},
      {"profile modify", "profile modify"},
      {"profile rename", "profile rename"},
      {"profile rename x", "tunadm help for 'profile' commands:"},
      {"profiles rename", "tunadm help for 'profile' commands:"},
      {"service start", "service start"},
      {"service stop", "service stop"},
      {"services bounce x", "service restart"},
      {"service status", "service status"},
      {"services", "tunadm help for 'service' commands:"},
      {"list interfaces", "list interfaces"},
      {"list profiles", "list profiles"},
      {"list versions", "list versions"},
      {"show log", "list log"},
      {"show", "tunadm help for 'list' commands:"},
      {"support reset", "support reset"},
      {"support bundle", "support bundle"},
      {"internal", "tunadm help for 'internal' commands:"},
      {"log list", "tunadm help for 'log' commands:"},
  };
  for (const auto& [words, subject] : cases) {
    const HelpLines page = helpPage(split(std::string("help ") + words));
    EXPECT_EQ(page[0].empty() ? page[2].substr(0, page[2].find(" - ")) : page[0], subject);
  }
  EXPECT_EQ(joined(helpPage(split("help service restart"))),
            "\nNAME\nservice restart - Stops the vrx-hipd background process if it is running, and "
            "then starts it up again.\n\nUSAGE\nservice restart [sys=<sys-impl>] [full]\n\n"
            "PARAMETERS\nsys                 sys impl name\nfull                single word\n");
  EXPECT_EQ(joined(helpPage(split("help json"))),
            "\nNAME\njson <object> - Executes a command given in JSON form.\n\nUSAGE\njson "
            "<object> <json object>\n");
  EXPECT_EQ(joined(helpPage(split("help support x"))),
            "tunadm help for 'support' commands:\n"
            "    'support reset' clean temporary data from a profile\n"
            "    'support bundle' generate a support bundle\n");
  const std::string general = joined(helpPage(split("help")));
  EXPECT_NE(general.find("\n    'help log' to display or manage log files\n"), general.npos);
  EXPECT_NE(general.find("\n    'profile create' makes a new profile\n"), general.npos);
}

// Names every parameter and result of every command.
TEST(Help, ReferenceAndItsPrintout) {
  const std::string changes =
      "[helmsman=<addr:port>] [network=<interface | auto>] [invitation=<invitation>] "
      "[log_level=<info | warn | error | debug | trace>] [sys=<sys-impl>] [activate]\n";
  const std::string none = "         <no additional result data>\n\n";
  const std::string name = "         profile_name=<string>\n\n";
  const std::string page =
      "this is the help full reference page\n"
      "  profile details <profile name>\n         details=<profile-details>\n\n"
      "  profile modify <profile name> [new_name=<string>] " +
      changes +
      "         details=<profile-details>\n\n"
      "  profile activate <profile name> [sys=<sys-impl>]\n" +
      name + "  profile create <new profile name> [allow_rename=<boolean>] " +
      changes.substr(1, 20) + changes.substr(22) +
      "         details=<profile-details> profile_name=<string>\n\n"
      "  profile delete <profile name>\n" +
      none + "  profile rename <profile name> new_name=<string>\n" + name +
      "  service start [sys=<sys-impl>]\n" + none + "  service stop [sys=<sys-impl>]\n" + none +
      "  service restart [sys=<sys-impl>] [full]\n" + none +
      "  service status\n         running=<bool> helmsman=<bool> tunnel=<bool>\n\n"
      "  list interfaces\n         _interfaces=<_interfaces>\n\n"
      "  list profiles\n         _profiles=<profile-list> current_dir=<string> "
      "current_name=<string> root_dir=<string>\n\n"
      "  list versions\n         hipapp_version=<string> tunadm_version=<string>\n\n"
      "  list log <profile name> [max_lines=<integer>] "
      "[log_level=<info | warn | error | debug | trace>]\n"
      "         _log=<_log> profile_name=<string>\n\n"
      "  support reset <profile name>\n" +
      name + "  support bundle\n         output=<string>\n\n";
  testing::internal::CaptureStdout();
  printReference();
  const std::string printed = testing::internal::GetCapturedStdout();
  EXPECT_EQ(printed.substr(0, page.size()), page);
  EXPECT_NE(printed.find("\n  deviceID: <string, the device ID for a managed profile\n"),
            printed.npos);
}

}  // namespace
}  // namespace tunadm
