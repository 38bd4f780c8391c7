#include "packaging/generate/ManualTexts.h"

#include <cstdlib>
#include <iostream>

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
     "The management server. The port is 8096 when none is given. Without a host (:8097) only the "
     "port is changed."},
    {"", "helmsman", "The management server. The port is 8096 when none is given."},
    {"profile modify", "network",
     "The network interface below the overlay, taken as it is; unchanged by default."},
    {"", "network", "The network interface below the overlay, taken as it is; auto by default."},
    {"", "invitation",
     "The code that enrols the device. The code ### removes the one in the profile."},
    {"profile create", "log_level",
     "Accepted, but not used: the new profile has the log level of the factory profile."},
    {"profile modify", "log_level",
     "What the daemon writes to its log: error (or err), warning (or warn), info, debug, trace or "
     "fatal, in any letter case. Other levels are refused."},
    {"list log", "log_level",
     "Leaves out the lines of lower levels; info by default, and for an unknown level. The levels "
     "are trace, debug, info, notice, warning, error and fatal. A line that begins with none of "
     "them counts as info."},
    {"", "sys",
     "The init system that runs the service; by default the one that a file shows (see FILES), "
     "else "
     "null, which can neither start nor stop a service. An unknown name stands for systemd."},
    {"profile create", "activate",
     "Makes the new profile the current one and starts the service with it, after stopping one "
     "that runs."},
    {"profile modify", "activate",
     "Stops the service before the change, if the daemon runs, and starts it afterwards, if the "
     "daemon ran or the profile is the current one. Does not make it the current one."},
    {"", "new_name", "The new friendly name. One that another profile has is refused."},
    {"", "full", "Accepted, but not used: a restart is always the same."},
    {"", "max_lines",
     "How many lines are shown at most; 50 by default and for a negative number, and never more "
     "than 100000."},
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

std::string_view listText(std::string_view field) {
  for (const ListText& row : kListTexts) {
    if (row.field == field) return row.text;
  }
  refuseGap("", field);
}

}  // namespace tunadm
