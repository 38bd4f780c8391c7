#include "cli/Catalogue.h"

#include <cstddef>

#include "cli/HelpCommands.h"
#include "cli/JsonCommand.h"
#include "cli/ListCommands.h"
#include "cli/ProfileCommands.h"
#include "cli/ServiceCommands.h"
#include "cli/SupportBundleCommand.h"

namespace tunadm {
namespace {

template <typename Command>
ScopedPtr<TunadmCommandInstance> make(std::string_view method, const CommandWords& words) {
  return ScopedPtr<TunadmCommandInstance>(new Command(method, words));
}

constexpr std::string_view kProfile = " <profile name>";

constexpr CommandEntry kSupportReset = {
    "support reset", kProfile,
    "Removes various temporary files associated with the profile, giving it a clean restart.",
    "clean temporary data from a profile", &make<Hipcmd_ProfileReset>};
constexpr CommandEntry kProfileModify = {
    "profile modify", kProfile, "Changes one or more of the configured properties of the profile.",
    "changes any of the profile details", &make<Hipcmd_ModifyProfile>};
constexpr CommandEntry kListInterfaces = {
    "list interfaces", "",
    "Reports the names of network interfaces on the system that are suitable for selection as the "
    "HIP underlay.",
    "displays network interfaces available on the machine", &make<Hipcmd_GetInterfaces>};
constexpr CommandEntry kListVersions = {
    "list versions", "",
    "Displays version numbers for various pieces of the installed HIP application.",
    "displays version numbers for the software", &make<Hipcmd_GetVersions>};
constexpr CommandEntry kProfileDetails = {
    "profile details", kProfile, "Displays the configuration associated with the given profile.",
    "displays configured profile settings", &make<Hipcmd_ShowProfile>};
constexpr CommandEntry kListProfiles = {
    "list profiles", "",
    "Displays a list of the configured profiles, showing the directory and profile name for each "
    "one.",
    "displays a list of the configured profiles", &make<Hipcmd_GetProfiles>};
constexpr CommandEntry kProfileActivate = {
    "profile activate", kProfile,
    "Makes the given profile the active profile, possibly restarting the service along the way.",
    "designates which profile is currently active", &make<Hipcmd_ActivateProfile>};
constexpr CommandEntry kProfileCreate = {
    "profile create", " <new profile name>",
    "Creates a new profile.   The name and helmsman settings are required.", "makes a new profile",
    &make<Hipcmd_CreateProfile>};
constexpr CommandEntry kProfileDelete = {"profile delete", kProfile, "Removes a profile.",
                                         "removes a profile", &make<Hipcmd_DeleteProfile>};
constexpr CommandEntry kProfileRename = {
    "profile rename", kProfile,
    "Changes the name of the profile.  This is a shorthand for ‘profile modify <profile name> "
    "new_name=<string>’",
    "changes the user-friendly name attached to a profile", &make<Hipcmd_RenameProfile>};
constexpr CommandEntry kServiceStart = {
    "service start", "", "Starts the vrx-hipd background process.",
    "runs the HIP background process", &make<Hipcmd_ServiceStart>};
constexpr CommandEntry kServiceStop = {"service stop", "", "Stops the vrx-hipd background process.",
                                       "ends the background process", &make<Hipcmd_ServiceStop>};
constexpr CommandEntry kServiceRestart = {
    "service restart", "",
    "Stops the vrx-hipd background process if it is running, and then starts it up again.",
    "stops and restarts the background process", &make<Hipcmd_ServiceBounce>};
constexpr CommandEntry kListLog = {
    "list log", kProfile, "Displays an extract from the hip.log file for the given profile.",
    "displays an excerpt of the active HIP log", &make<Hipcmd_GetHipLog>};
constexpr CommandEntry kServiceStatus = {
    "service status", "",
    "Displays a report about the vrx-hipd background process: whether it is running, and some "
    "information about its connections.",
    "displays the current process status", &make<Hipcmd_ShowStatus>};
constexpr CommandEntry kSupportBundle = {"support bundle", "",
                                         "Writes a new support bundle to the Logs directory.",
                                         "generate a support bundle", &make<Hipcmd_SupportBundle>};
constexpr CommandEntry kJson = {"json <object>", " <json object>",
                                "Executes a command given in JSON form.", "",
                                &make<Hipcmd_JsonCommand>};
constexpr CommandEntry kUsage = {"usage", "", "", "", &make<Hipcmd_Usage>};
constexpr CommandEntry kHelp = {"help", "", "", "", &make<Hipcmd_SimpleHelp>};
constexpr CommandEntry kReference = {"reference", "", "", "", &make<Hipcmd_ReferenceHelp>};

constexpr CommandRow kRows[] = {
    {"profile", "create", CommandForm::kTarget, &kProfileCreate},
    {"profile", "activate", CommandForm::kTarget, &kProfileActivate},
    {"profile", "delete", CommandForm::kTarget, &kProfileDelete},
    {"profile", "details", CommandForm::kTarget, &kProfileDetails},
    {"profile", "modify", CommandForm::kTarget, &kProfileModify},
    {"profile", "rename", CommandForm::kTarget, &kProfileRename},
    {"list", "log", CommandForm::kTarget, &kListLog},
    {"show", "log", CommandForm::kTarget, &kListLog},
    {"support", "reset", CommandForm::kTarget, &kSupportReset},
    {"json", "", CommandForm::kPair, &kJson},
    {"service", "start", CommandForm::kPair, &kServiceStart},
    {"service", "stop", CommandForm::kPair, &kServiceStop},
    {"service", "restart", CommandForm::kPair, &kServiceRestart},
    {"service", "bounce", CommandForm::kPair, &kServiceRestart},
    {"service", "status", CommandForm::kPair, &kServiceStatus},
    {"list", "interfaces", CommandForm::kPair, &kListInterfaces},
    {"show", "interfaces", CommandForm::kPair, &kListInterfaces},
    {"list", "profiles", CommandForm::kPair, &kListProfiles},
    {"show", "profiles", CommandForm::kPair, &kListProfiles},
    {"list", "versions", CommandForm::kPair, &kListVersions},
    {"show", "versions", CommandForm::kPair, &kListVersions},
    {"support", "bundle", CommandForm::kPair, &kSupportBundle},
    {"usage", "", CommandForm::kLine, &kUsage},
    {"help", "", CommandForm::kLine, &kHelp},
    {"reference", "", CommandForm::kLine, &kReference},
};

using Words = std::vector<std::string>;

std::size_t wordsNeeded(CommandForm form) {
  return form == CommandForm::kTarget ? 3 : form == CommandForm::kPair ? 2 : 1;
}

bool matches(const CommandRow& row, const Words& words) {
  return words.size() >= wordsNeeded(row.form) && words[0] == row.first &&
         (row.second.empty() || words[1] == row.second);
}

// The row for `profile <name> <word>`, the other way to write a command on a profile.
const CommandRow* findInfix(const Words& words) {
  if (words.size() < 3 || words[0] != "profile") return nullptr;
  for (const CommandRow& row : kRows) {
    if (row.form == CommandForm::kTarget && row.first == words[0] && row.second == words[2])
      return &row;
  }
  return nullptr;
}

ScopedPtr<TunadmCommandInstance> create(const CommandEntry& command, std::string_view target,
                                        const Words& words) {
  return command.make(command.name, {target, words});
}

ScopedPtr<TunadmCommandInstance> createFromRow(const CommandRow& row, const Words& words,
                                               int* consumed) {
  std::string_view target;
  if (row.form == CommandForm::kTarget) target = words[2];
  if (row.form == CommandForm::kPair && row.second.empty()) target = words[1];
  *consumed =
      static_cast<int>(row.form == CommandForm::kLine ? words.size() : wordsNeeded(row.form));
  return create(*row.command, target, words);
}

}  // namespace

std::span<const CommandRow> commandRows() { return kRows; }

const CommandEntry& findCommand(std::string_view name) {
  const CommandRow* row = kRows;
  while (row->command->name != name) ++row;
  return *row->command;
}

ScopedPtr<TunadmCommandInstance> lookUpCommand(std::vector<std::string>* words, int* consumed) {
  // Callers may repeat the program's name.
  if (!words->empty() && words->front() == "tunadm") words->erase(words->begin());
  if (words->empty()) {
    *consumed = 0;
    return create(kUsage, "", *words);
  }
  for (const CommandRow& row : kRows) {
    if (matches(row, *words)) return createFromRow(row, *words, consumed);
  }
  if (const CommandRow* row = findInfix(*words); row != nullptr) {
    *consumed = 3;
    return create(*row->command, (*words)[1], *words);
  }
  *consumed = -1;
  return ScopedPtr<TunadmCommandInstance>();
}

}  // namespace tunadm
