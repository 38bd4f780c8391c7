// The catalogue of commands, and the lookup of one by the leading words of a command line.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/CommandWords.h"
#include "core/CommandCore.h"
#include "json/ScopedRelease.h"

namespace tunadm {

// Everything about a command but its parameters and result fields, which its class declares.
struct CommandEntry {
  std::string_view name;         // also the method name that --verbose shows
  std::string_view placeholder;  // of the leading positional value, with its leading blank
  std::string_view description;  // empty for commands without a help page
  std::string_view summary;      // for lists of commands; empty for those that stand in none
  ScopedPtr<TunadmCommandInstance> (*make)(std::string_view method, const CommandWords& words);
};

// How many words a way to call a command takes: its two words and a target, two words, or the whole
// line.
enum class CommandForm { kTarget, kPair, kLine };

// One way to call a command.
struct CommandRow {
  std::string_view first;
  std::string_view second;  // empty: any word
  CommandForm form;
  const CommandEntry* command;
};

// Every row, in the order of testing. A synonym is a row of its own.
std::span<const CommandRow> commandRows();

// The command of that name, which must exist.
const CommandEntry& findCommand(std::string_view name);

// Finds the command that the leading words of `words` name and creates it; empty when there is
// none. Removes a first word that repeats the program's name. Stores in `consumed` how many words
// named the command, -1 for none.
ScopedPtr<TunadmCommandInstance> lookUpCommand(std::vector<std::string>* words, int* consumed);

}  // namespace tunadm
