#include "cli/Catalogue.h"

#include <gtest/gtest.h>

#include "cli/CatalogueParams.h"
#include "json/ScopedRelease.h"

namespace tunadm {
namespace {

using Words = std::vector<std::string>;

TEST(Lookup, Words) {
  const struct {
    Words words;
    int consumed;
    const char* method;  // null: no such command
  } cases[] = {
      {{"profile", "create", "x", "helmsman=h"}, 3, "profile create"},
      {{"profile", "rename", "details", "new_name=y"}, 3, "profile rename"},
      {{"profile", "x", "details"}, 3, "profile details"},
      {{"profile", "x", "y"}, -1, nullptr},
      {{"profile", "create"}, -1, nullptr},
      {{"Profile", "create", "x"}, -1, nullptr},
      {{"list", "log"}, -1, nullptr},
      {{"list", "x", "log"}, -1, nullptr},
      {{"show", "log", "x"}, 3, "list log"},
      {{"support", "reset", "x"}, 3, "support reset"},
      {{"json"}, -1, nullptr},
      {{"json", "{}", "x"}, 2, "json <object>"},
      {{"service", "bounce", "full"}, 2, "service restart"},
      {{"show", "versions"}, 2, "list versions"},
      {{"tunadm", "list", "profiles"}, 2, "list profiles"},
      {{"tunadm"}, 0, "usage"},
      {{"tunadm", "tunadm"}, -1, nullptr},
      {{"usage", "--quiet", "x"}, 3, "usage"},
      {{"reference"}, 1, "reference"},
      {{"", ""}, -1, nullptr},
  };
  for (const auto& c : cases) {
    Words words = c.words;
    int consumed = 99;
    const ScopedPtr<TunadmCommandInstance> command(lookUpCommand(&words, &consumed));
    EXPECT_EQ(consumed, c.consumed) << c.words.front();
    ASSERT_EQ(command.get() != nullptr, c.method != nullptr) << c.words.front();
    if (command) {
      EXPECT_EQ(command->statusField().method(), c.method);
    }
  }
}

// Names of the parameters ("-" hidden, "!" required) and fields behind the common ones.
std::string declaration(Words words) {
  int consumed = 0;
  const ScopedPtr<TunadmCommandInstance> command(lookUpCommand(&words, &consumed));
  std::string text;
  for (std::size_t i = 3; i < command->params().size(); ++i) {
    const InputParamBase& param = *command->params()[i];
    text += (param.hidden() ? "-" : param.required() ? "!" : "") + param.name() + " ";
  }
  text += "|";
  for (std::size_t i = 1; i < command->results().size(); ++i) {
    text += " " + command->results()[i]->name();
  }
  return text;
}

TEST(Catalogue, Declarations) {
  EXPECT_EQ(declaration({"profile", "create", "x"}),
            "-new_name allow_rename !helmsman network invitation log_level sys activate | details "
            "profile_name");
  EXPECT_EQ(declaration({"profile", "modify", "x"}),
            "-profile new_name helmsman network invitation log_level sys activate | details");
  EXPECT_EQ(declaration({"profile", "rename", "x"}), "-profile !new_name | profile_name");
  EXPECT_EQ(declaration({"profile", "delete", "x"}), "-profile |");
  EXPECT_EQ(declaration({"list", "log", "x"}), "-profile max_lines log_level | _log profile_name");
  EXPECT_EQ(declaration({"list", "profiles"}), "| _profiles current_dir current_name root_dir");
  EXPECT_EQ(declaration({"service", "restart"}), "sys full |");
  EXPECT_EQ(declaration({"service", "status"}), "| running helmsman tunnel");
  EXPECT_EQ(declaration({"json", "{}"}), "-object | subcommand");
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
  EXPECT_EQ(level.value(), "info");
  EXPECT_EQ(level.given(), "");
  EXPECT_TRUE(level.setFromText("warn"));
  EXPECT_EQ(level.value(), "WARNING");
  EXPECT_EQ(level.given(), "warn");
}

}  // namespace
}  // namespace tunadm
