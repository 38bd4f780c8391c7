#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "cli/HelpPages.h"
#include "core/RequestForm.h"
#include "json/JsonPrinter.h"
#include "json/ScopedJson.h"

namespace tunadm {
namespace {

std::string joined(const HelpLines& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

std::string help(const HelpLines& more) {
  HelpLines words = {"help"};
  words.insert(words.end(), more.begin(), more.end());
  return joined(helpPage(words));
}

const char kGeneral[] =
    "tunadm help for command: help\n"
    "Look up commands by category:\n"
    "    'help profile' for managing your HIP profiles\n"
    "    'help service' for starting and stopping HIP processes\n"
    "    'help list' to display details of various things\n"
    "    'help log' to display or manage log files\n"
    "    'help support' for advanced operations commands\n"
    "\n"
    "Try 'reference' for the complete list of all commands, or start with these common ones:\n"
    "    'profile activate' designates which profile is currently active\n"
    "    'profile create' makes a new profile\n"
    "    'profile delete' removes a profile\n"
    "    'profile rename' changes the user-friendly name attached to a profile\n"
    "    'service start' runs the HIP background process\n"
    "    'service stop' ends the background process\n"
    "    'list profiles' provides a list of the configured profiles\n";

const char kRename[] =
    "\nNAME\nprofile rename - Changes the name of the profile.  This is a shorthand for ‘profile "
    "modify <profile name> new_name=<string>’\n\nUSAGE\nprofile rename <profile name> "
    "new_name=<string>\n\nPARAMETERS\nnew_name            string\n";

const char kRestart[] =
    "\nNAME\nservice restart - Stops the vrx-hipd background process if it is running, and then "
    "starts it up again.\n\nUSAGE\nservice restart [sys=<sys-impl>] [full]\n\nPARAMETERS\n"
    "sys                 sys impl name\nfull                single word\n";

const char kSupport[] =
    "tunadm help for 'support' commands:\n"
    "    'support reset' clean temporary data from a profile\n"
    "    'support bundle' generate a support bundle\n";

const char kProfile[] =
    "tunadm help for 'profile' commands:\n"
    "    'profile activate' designates which profile is currently active\n"
    "    'profile create' makes a new profile\n"
    "    'profile delete' removes a profile\n"
    "    'profile rename' changes the user-friendly name attached to a profile\n"
    "    'profile modify' changes any of the profile details\n"
    "    'profile details' displays configured profile settings\n";

const char kService[] =
    "tunadm help for 'service' commands:\n"
    "    'service start' runs the HIP background process\n"
    "    'service stop' ends the background process\n"
    "    'service restart' stops and restarts the background process\n"
    "    'service status' displays the current process status\n";

const char kList[] =
    "tunadm help for 'list' commands:\n"
    "    'list profiles' displays a list of the configured profiles\n"
    "    'list interfaces' displays network interfaces available on the machine\n"
    "    'list versions' displays version numbers for the software\n"
    "    'list log' displays an excerpt of the active HIP log\n";

TEST(Help, EachCommandHasItsPage) {
  for (const HelpLines& words : {HelpLines{"profile", "create"},
                                 {"profile", "activate"},
                                 {"profile", "delete"},
                                 {"profile", "details"},
                                 {"profile", "modify"},
                                 {"service", "start"},
                                 {"service", "stop"},
                                 {"service", "status"},
                                 {"list", "interfaces"},
                                 {"list", "profiles"},
                                 {"list", "log"},
                                 {"support", "reset"},
                                 {"support", "bundle"}}) {
    const std::string start = "\nNAME\n" + words[0] + " " + words[1] + " - ";
    EXPECT_EQ(help(words).substr(0, start.size()), start);
  }
  EXPECT_EQ(joined(usagePage()),
            "tunadm usage:\n"
            "    <command name> <command-specific params> [--quiet | --verbose]\n    help\n"
            "    help <category>\n    help <command name>\n    reference\n"
            "    json <request object>\n");
}

TEST(Help, WordsLeadToPages) {
  const struct {
    HelpLines words;
    std::string page;
  } cases[] = {{{}, kGeneral},
               {{"nonsense"}, kGeneral},
               {{"settings"}, kGeneral},
               {{"profile", "rename"}, kRename},
               {{"profile", "rename", "x"}, kProfile},
               {{"profiles", "rename"}, kProfile},
               {{"services"}, kService},
               {{"show"}, kList},
               {{"service", "restart"}, kRestart},
               {{"services", "bounce", "x"}, kRestart},
               {{"support", "nonsense"}, kSupport},
               {{"show", "log"}, help({"list", "log"})},
               {{"list", "versions"},
                "\nNAME\nlist versions - Displays version numbers for various pieces of the "
                "installed HIP application.\n\nUSAGE\nlist versions\n"},
               {{"json"},
                "\nNAME\njson <object> - Executes a command given in JSON form.\n\nUSAGE\njson "
                "<object> <json object>\n"},
               {{"internal"}, "tunadm help for 'internal' commands:\n"},
               {{"log", "list"}, "tunadm help for 'log' commands:\n"}};
  for (const auto& c : cases) EXPECT_EQ(help(c.words), c.page);
}

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
  EXPECT_EQ(joined(referencePage()), page);
  testing::internal::CaptureStdout();
  printReference();
  const std::string printed = testing::internal::GetCapturedStdout();
  EXPECT_EQ(printed.substr(0, page.size()), page);
  const std::string trailer = printed.substr(page.size());
  EXPECT_EQ(trailer.rfind("\nCommands also return standard fields for result status:\n", 0), 0u);
  EXPECT_NE(trailer.find("\n  deviceID: <string, the device ID for a managed profile\n"),
            std::string::npos);
  EXPECT_EQ(std::count(trailer.begin(), trailer.end(), '\n'), 18);
}

TEST(RequestForm, BuiltFromWords) {
  const char* words[] = {"tunadm", "profile", "create", "p1", "helmsman=h:1=2", "--quiet"};
  ScopedJson request;
  EXPECT_EQ(buildRequest(2, words, &request).code(), 0x10000002);
  EXPECT_FALSE(request);
  EXPECT_EQ(buildRequest(6, words, &request).code(), 1);
  std::string text;
  printJson(request.get(), &text);
  EXPECT_EQ(text,
            "{ \"method\":\"profile create\", \"p1\":\"<single-word-command-present>\", "
            "\"helmsman\":\"h:1=2\", \"--quiet\":\"<single-word-command-present>\", "
            "\"command_args\":[ \"profile\", \"create\", \"p1\", \"helmsman=h:1=2\", \"--quiet\" ] "
            "}");
}

}  // namespace
}  // namespace tunadm
