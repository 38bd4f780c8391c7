
#include <iterator>
#include <sstream>

#include "cli/CatalogueParams.h"
#include "cli/CommandLookup.h"
#include "cli/HelpPages.h"
#include "tests/support/Rows.h"

namespace tunadm {
namespace {

std::vector<std::string> split(const std::string& line) {
  std::istringstream stream(line);
  return {std::istream_iterator<std::string>(stream), {}};
}

// How many words of the line name a command, which command, and its target.
std::string lookedUp(const std::string& line) {
  std::vector<std::string> words = split(line);
  int consumed = 99;
  const ScopedPtr<TunadmCommandInstance> command = lookUpCommand(&words, &consumed);
  std::string shown = std::to_string(consumed);
  if (!command) return shown;
  shown += " " + command->statusField().method();
  // The target is the default of the first parameter after those that every command has.
  if (consumed < 3 || command->params().size() < 4) return shown;
  return shown + " " + dynamic_cast<StringParam&>(*command->params()[3]).value();
}

// What the page is about: a command or, by its first line, a category.
std::string helpedWith(const std::string& words) {
  const HelpLines page = helpPage(split("help " + words));
  return page[0].empty() ? page[2].substr(0, page[2].find(" - ")) : page[0];
}

TEST(Catalogue, WaysToNameACommandAndItsHelp) {
  for (const std::string name :
       {"profile create", "profile activate", "profile delete", "profile details", "profile modify",
        "profile rename", "list log", "support reset", "service start", "service stop",
        "service restart", "service status", "list interfaces", "list profiles", "list versions",
        "support bundle"})
    EXPECT_EQ(helpedWith(name), name);
  expectRows({"profile create x more -> 3 profile create x", "service stop x -> 2 service stop",
              "profile x modify y -> 3 profile modify x", "show log x -> 3 list log x",
              "profile rename create -> 3 profile rename create",
              "service bounce -> 2 service restart", "show interfaces -> 2 list interfaces",
              "tunadm show profiles -> 2 list profiles", "show versions -> 2 list versions",
              "json {} x -> 2 json <object>", "usage --quiet -> 2 usage", "help -> 1 help",
              "reference -> 1 reference", "tunadm -> 0 usage",
              // No command is named by these.
              "profile details -> -1", "Profile create x -> -1", "profile x y -> -1",
              "list x log -> -1", "json -> -1", "tunadm tunadm -> -1"},
             &lookedUp);
  expectRows({"settings -> tunadm help for command: help", "services bounce x -> service restart",
              "profile rename x -> tunadm help for 'profile' commands:", "show log -> list log",
              "profiles rename -> tunadm help for 'profile' commands:", "json -> json <object>",
              "services -> tunadm help for 'service' commands:",
              "show -> tunadm help for 'list' commands:",
              "internal -> tunadm help for 'internal' commands:",
              "log x -> tunadm help for 'log' commands:"},
             &helpedWith);
  EXPECT_EQ(helpPage(std::vector<std::string>{"help", ""}), helpPage(split("help")));
}

TEST(CatalogueParams, Helmsman) {
  expectRows({"10.0.0.1:9000 -> 10.0.0.1 9000", "h -> h 8096", "h:abc -> h 0", "h:12:34 -> h 12",
              ":9000 ->  9000", " -> refused"},
             [](const std::string& text) {
               ParamList list;
               HelmsmanParam param(&list, Required::kYes);
               const bool taken = param.setFromText(text);
               return taken ? param.host() + " " + std::to_string(param.port()) : "refused";
             });
}

TEST(Help, PrintsTheReferenceAndItsTrailer) {
  testing::internal::CaptureStdout();
  printReference();
  const std::string printed = testing::internal::GetCapturedStdout();
  EXPECT_TRUE(printed.starts_with("this is the help full reference page\n  profile details <"));
  for (const char* line : {"\n\nCommands also return standard fields for result status:\n",
                           "\n  deviceID: <string, the device ID for a managed profile\n"})
    EXPECT_NE(printed.find(line), printed.npos) << line;
}

}  // namespace
}  // namespace tunadm
