#include "packaging/generate/ManualTexts.h"

#include <cstdlib>
#include <iostream>

#include "core/ProgramStatus.h"

namespace tunadm {
namespace {

struct ParamText {
  std::string_view command;  // empty for all that have no row of their own above it
  std::string_view param;
  std::string_view text;
};

constexpr ParamText kParamTexts[] = {
    {"", "allow_rename",
     "Whether a new profile whose name is taken gets a number (office#2); true by default. "
     "Otherwise the creation fails."},
    {"profile modify", "helmsman",
     "The management server, as for profile create. Without a host (:8097) only the port is "
     "changed."},
    {"", "helmsman",
     "The management server, as host or host:port. The host ends at the first colon, so neither a "
     "URI nor an IPv6 address can be given. The port is 8096 when none is given."},
    {"profile modify", "network",
     "The network interface below the overlay, taken as it is; unchanged by default."},
    {"", "network", "The network interface below the overlay, taken as it is; auto by default."},
    {"", "invitation",
     "The code that enrols the device. The code ### removes the one in the profile. Other users of "
     "the host can see it in the list of processes while the command runs."},
    {"profile create", "log_level",
     "Accepted, but not used: the new profile has the log level of the factory profile."},
    {"profile modify", "log_level",
     "What the daemon writes to its log: error (or err), warning (or warn), info, debug, trace or "
     "fatal, in any letter case. Other levels are refused."},
    {"list log", "log_level",
     "Leaves out the lines of lower levels; info by default, and for an unknown level. The levels "
     "are trace, debug, info, notice, warning, error and fatal. A line that begins with none of "
     "them counts as info."},
    {"", "sys", "See INIT SYSTEMS."},
    {"profile create", "activate",
     "Makes the new profile the current one and starts the service with it, after stopping one "
     "that runs."},
    {"profile modify", "activate",
     "Stops the service before the change, if the daemon runs, and starts it afterwards, if the "
     "daemon ran or the profile is the current one. Does not make it the current one."},
    {"", "new_name",
     "The new friendly name. One that a profile has is refused, the present name of this one, "
     "too."},
    {"", "full", "Accepted, but not used: a restart is always the same."},
    {"", "max_lines",
     "How many lines are shown at most; 50 by default and for a negative number, and never more "
     "than 100000."},
};

// Their texts are those of the program, their order that of the codes.
constexpr StatusCause kStatusCauses[] = {
    {kSuccess, ""},
    {kSuccessWithWarnings, "From list log: the profile has no log."},
    {kInvalidArgument,
     "A new name that is empty or taken, or that selects a profile. A value with a line break. "
     "From profile delete: the factory profile, or .current. From profile activate: an empty "
     "name."},
    {kApplicationError,
     "The store could not be read or changed. From profile create: the name is taken and must not "
     "be changed. From profile modify: an unknown log level, or a new port for a profile without a "
     "management server. From support bundle: the script failed. Also for ordinary users, who "
     "cannot read friendly names."},
    {kAuthRequired, "The command needs root."},
    {kProfileNotFound, "No profile has this name or directory, or none is current."},
    {kRefusedWhileRunning,
     "The daemon runs with the profile. Settings that profile modify was given are changed all the "
     "same."},
    {kOpendirFailed, "From profile create: there is no factory profile, or it cannot be read."},
    {kOpenFailed, "A file could not be opened or made."},
    {kReadFailed, "A file could not be read."},
    {kWriteFailed, "A file could not be written, as on a full disk. It keeps its old content."},
    {kGetifaddrsFailed, "From list interfaces."},
    {kForkFailed, "No process could be made."},
    {kWaitpidFailed, "How the command of the init system ended is unknown."},
    {kRenameFailed, "A file could not be replaced. It keeps its old content."},
    {kSystemFailed, "From support bundle: its script is missing or could not be run."},
    {kChildExitedNonzero,
     "The command of the init system failed. With initd, this is also how an activation ends that "
     "found no daemon to stop."},
    {kChildSignalled, "The command of the init system was killed or stopped."},
};

struct ListText {
  std::string_view field;
  std::string_view text;
};

constexpr ListText kListTexts[] = {
    {"_profiles", "a line\n.Dq Ar directory : name\nfor each profile"},
    {"_interfaces", "a line with the name for each interface"},
    {"_log", "the last lines of the log, as they stand there"},
};

[[noreturn]] void refuseGap(std::string_view command, std::string_view name) {
  std::cerr << "ManualTexts.cpp has no text for " << name << ' ' << command << '\n';
  std::exit(EXIT_FAILURE);
}

}  // namespace

std::string_view paramText(std::string_view command, std::string_view param) {
  for (const ParamText& row : kParamTexts) {
    if (row.param == param && (row.command.empty() || row.command == command)) return row.text;
  }
  refuseGap(command, param);
}

std::span<const StatusCause> statusCauses() { return kStatusCauses; }

std::string_view listText(std::string_view field) {
  for (const ListText& row : kListTexts) {
    if (row.field == field) return row.text;
  }
  refuseGap("", field);
}

}  // namespace tunadm
