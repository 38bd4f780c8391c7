#include "cli/Catalogue.h"

#include <algorithm>

#include "cli/CatalogueChecks.h"
#include "cli/HelpCommands.h"
#include "cli/JsonCommand.h"
#include "cli/ListCommands.h"
#include "cli/ProfileCommands.h"
#include "cli/ServiceCommands.h"
#include "cli/SupportBundleCommand.h"

namespace tunadm {
namespace {

constexpr Category kProfile = {.name = "profile",
                               .help_word = "profiles",
                               .summary = "for managing your HIP profiles",
                               .help = HelpWords::kExact};
constexpr Category kService = {.name = "service",
                               .help_word = "services",
                               .summary = "for starting and stopping HIP processes"};
constexpr Category kList = {
    .name = "list", .synonym = "show", .summary = "to display details of various things"};
constexpr Category kLog = {.name = "log", .summary = "to display or manage log files"};
constexpr Category kSupport = {.name = "support", .summary = "for advanced operations commands"};
constexpr Category kInternal = {.name = "internal"};
constexpr Category kSettings = {.name = "settings", .help = HelpWords::kNone};

constexpr const Category* kCategories[] = {&kProfile, &kService,  &kList,    &kLog,
                                           &kSupport, &kInternal, &kSettings};

constexpr std::string_view kProfileName = " <profile name>";

constexpr Target kNewProfile = {TargetKind::kNewProfile, " <new profile name>"};
constexpr Target kAnyProfile = {TargetKind::kProfile, kProfileName, ".current .factory --active"};
// The other two are always refused.
constexpr Target kRemovableProfile = {TargetKind::kProfile, kProfileName, "--active"};
constexpr Target kRequest = {TargetKind::kRequest, " <json object>"};

template <typename Command>
ScopedPtr<TunadmCommandInstance> make(std::string_view method, const CommandWords& words) {
  return ScopedPtr<TunadmCommandInstance>(new Command(method, words));
}

constexpr CommandEntry kUsage = {.name = "usage", .make = &make<Hipcmd_Usage>};

constexpr CommandEntry kCommands[] = {
    {.name = "profile create",
     .category = &kProfile,
     .page_place = 2,
     .reference_place = 4,
     .common = true,
     .target = &kNewProfile,
     .description = "Creates a new profile.   The name and helmsman settings are required.",
     .summary = "makes a new profile",
     .make = &make<Hipcmd_CreateProfile>},
    {.name = "profile activate",
     .category = &kProfile,
     .page_place = 1,
     .reference_place = 3,
     .common = true,
     .target = &kAnyProfile,
     .description = "Makes the given profile the active profile, possibly restarting the service "
                    "along the way.",
     .summary = "designates which profile is currently active",
     .make = &make<Hipcmd_ActivateProfile>},
    {.name = "profile delete",
     .category = &kProfile,
     .page_place = 3,
     .reference_place = 5,
     .common = true,
     .target = &kRemovableProfile,
     .description = "Removes a profile.",
     .summary = "removes a profile",
     .make = &make<Hipcmd_DeleteProfile>},
    {.name = "profile details",
     .category = &kProfile,
     .page_place = 6,
     .reference_place = 1,
     .target = &kAnyProfile,
     .description = "Displays the configuration associated with the given profile.",
     .summary = "displays configured profile settings",
     .make = &make<Hipcmd_ShowProfile>},
    {.name = "profile modify",
     .category = &kProfile,
     .page_place = 5,
     .reference_place = 2,
     .target = &kAnyProfile,
     .description = "Changes one or more of the configured properties of the profile.",
     .summary = "changes any of the profile details",
     .make = &make<Hipcmd_ModifyProfile>},
    {.name = "profile rename",
     .category = &kProfile,
     .page_place = 4,
     .reference_place = 6,
     .common = true,
     .target = &kAnyProfile,
     .description = "Changes the name of the profile.  This is a shorthand for ‘profile modify "
                    "<profile name> new_name=<string>’",
     .summary = "changes the user-friendly name attached to a profile",
     .make = &make<Hipcmd_RenameProfile>},
    {.name = "list log",
     .category = &kList,
     .page_place = 4,
     .reference_place = 4,
     .target = &kAnyProfile,
     .description = "Displays an extract from the hip.log file for the given profile.",
     .summary = "displays an excerpt of the active HIP log",
     .make = &make<Hipcmd_GetHipLog>},
    {.name = "support reset",
     .category = &kSupport,
     .page_place = 1,
     .reference_place = 1,
     .target = &kAnyProfile,
     .description =
         "Removes various temporary files associated with the profile, giving it a clean restart.",
     .summary = "clean temporary data from a profile",
     .make = &make<Hipcmd_ProfileReset>},
    {.name = "json <object>",
     .target = &kRequest,
     .description = "Executes a command given in JSON form.",
     .make = &make<Hipcmd_JsonCommand>},
    {.name = "service start",
     .category = &kService,
     .page_place = 1,
     .reference_place = 1,
     .common = true,
     .description = "Starts the vrx-hipd background process.",
     .summary = "runs the HIP background process",
     .make = &make<Hipcmd_ServiceStart>},
    {.name = "service stop",
     .category = &kService,
     .page_place = 2,
     .reference_place = 2,
     .common = true,
     .description = "Stops the vrx-hipd background process.",
     .summary = "ends the background process",
     .make = &make<Hipcmd_ServiceStop>},
    {.name = "service restart",
     .category = &kService,
     .page_place = 3,
     .reference_place = 3,
     .synonym = "bounce",
     .description =
         "Stops the vrx-hipd background process if it is running, and then starts it up again.",
     .summary = "stops and restarts the background process",
     .make = &make<Hipcmd_ServiceBounce>},
    {.name = "service status",
     .category = &kService,
     .page_place = 4,
     .reference_place = 4,
     .description = "Displays a report about the vrx-hipd background process: whether it is "
                    "running, and some information about its connections.",
     .summary = "displays the current process status",
     .make = &make<Hipcmd_ShowStatus>},
    {.name = "list interfaces",
     .category = &kList,
     .page_place = 2,
     .reference_place = 1,
     .description = "Reports the names of network interfaces on the system that are suitable for "
                    "selection as the HIP underlay.",
     .summary = "displays network interfaces available on the machine",
     .make = &make<Hipcmd_GetInterfaces>},
    {.name = "list profiles",
     .category = &kList,
     .page_place = 1,
     .reference_place = 2,
     .common = true,
     .common_summary = "provides a list of the configured profiles",
     .description = "Displays a list of the configured profiles, showing the directory and profile "
                    "name for each one.",
     .summary = "displays a list of the configured profiles",
     .make = &make<Hipcmd_GetProfiles>},
    {.name = "list versions",
     .category = &kList,
     .page_place = 3,
     .reference_place = 3,
     .description = "Displays version numbers for various pieces of the installed HIP application.",
     .summary = "displays version numbers for the software",
     .make = &make<Hipcmd_GetVersions>},
    {.name = "support bundle",
     .category = &kSupport,
     .page_place = 2,
     .reference_place = 2,
     .description = "Writes a new support bundle to the Logs directory.",
     .summary = "generate a support bundle",
     .make = &make<Hipcmd_SupportBundle>},
    kUsage,
    {.name = "help", .make = &make<Hipcmd_SimpleHelp>},
    {.name = "reference", .make = &make<Hipcmd_ReferenceHelp>},
};

static_assert(ordersAreComplete(kCommands, kCategories));
static_assert(rowsAreWhole(kCommands, kCategories));
static_assert(lookupIsPlain(kCommands));
static_assert(categoryWordsDiffer(kCategories));

}  // namespace

std::span<const CommandEntry> commands() { return kCommands; }

const CommandEntry& usageCommand() { return kUsage; }

const Category& profileCategory() { return kProfile; }

std::span<const Category* const> categories() { return kCategories; }

std::vector<const CommandEntry*> commandsOf(const Category& category, int CommandEntry::*place) {
  std::vector<const CommandEntry*> found;
  for (const CommandEntry& command : kCommands) {
    if (command.category == &category) found.push_back(&command);
  }
  std::sort(found.begin(), found.end(),
            [place](const CommandEntry* one, const CommandEntry* other) {
              return one->*place < other->*place;
            });
  return found;
}

std::vector<CommandWay> waysToName(const CommandEntry& command) {
  std::vector<CommandWay> ways = {{command.first(), command.second()}};
  if (!command.synonym.empty()) ways.push_back({command.first(), command.synonym});
  if (command.category == nullptr || command.category->synonym.empty()) return ways;
  for (std::size_t own = ways.size(), i = 0; i < own; ++i) {
    ways.push_back({command.category->synonym, ways[i].second});
  }
  return ways;
}

ScopedPtr<TunadmCommandInstance> makeSample(const CommandEntry& command) {
  return command.make(command.name, CommandWords());
}

}  // namespace tunadm
