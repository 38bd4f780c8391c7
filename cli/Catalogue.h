// The catalogue of commands: one row each. The lookup, the help pages, the reference, the
// completions and the manual page are all made from these rows.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "cli/CommandWords.h"
#include "core/CommandCore.h"
#include "json/ScopedRelease.h"

namespace tunadm {

// Which words of `help` lead to the pages of a category.
enum class HelpWords {
  kNone,   // none, not even to its own page
  kAny,    // any of its words; what follows the word for a command does not matter
  kExact,  // to a command's page only its name and exactly one more word; to its own page any
};

// A group of commands with the same first word, and the help page that lists them.
struct Category {
  std::string_view name;            // the first word of its commands
  std::string_view synonym = {};    // another first word for each of them; empty if there is none
  std::string_view help_word = {};  // another word for the category, in `help` only
  std::string_view summary = {};    // for the general help page; empty keeps the category off it
  HelpWords help = HelpWords::kAny;
};

enum class TargetKind { kProfile, kNewProfile, kRequest };

// What the word after a command's own words stands for.
struct Target {
  TargetKind kind;
  std::string_view placeholder;  // for help, with its leading blank
  std::string_view words = {};   // what it may be instead of a profile's name
};

// Everything about a command except its parameters and result fields, which its class declares.
struct CommandEntry {
  std::string_view name;                 // also the method name that --verbose shows
  const Category* category = nullptr;    // null for a command on no category's page
  int page_place = 0;                    // on the category's page, counted from 1
  int reference_place = 0;               // among the category's commands in the reference, from 1
  bool common = false;                   // listed on the general help page
  std::string_view common_summary = {};  // for that page, where it differs from `summary`
  std::string_view synonym = {};         // another second word; empty if there is none
  const Target* target = nullptr;        // null if no such word belongs to the command
  std::string_view description = {};     // empty for a command without a help page
  std::string_view summary = {};         // for lists of commands
  ScopedPtr<TunadmCommandInstance> (*make)(std::string_view method,
                                           const CommandWords& words) = nullptr;

  constexpr std::string_view first() const { return name.substr(0, name.find(' ')); }

  // Empty when the command has only one word of its own; the name may show its target after that.
  constexpr std::string_view second() const {
    const std::size_t blank = name.find(' ');
    if (blank == std::string_view::npos || name[blank + 1] == '<') return {};
    return name.substr(blank + 1);
  }

  // How many words a command line must have to name the command: its own and the target.
  constexpr std::size_t wordsNeeded() const {
    return std::size_t{1} + (second().empty() ? 0 : 1) + (target == nullptr ? 0 : 1);
  }
};

// Every command, in the order of testing: those that need more words come first.
std::span<const CommandEntry> commands();

// The command of an empty command line.
const CommandEntry& usageCommand();

// The category whose commands can also be written with the target between their two words.
const Category& profileCategory();

// Every category, in the order of the reference and of the general help page.
std::span<const Category* const> categories();

// The commands of a category, in the order of the places that `place` selects.
std::vector<const CommandEntry*> commandsOf(const Category& category, int CommandEntry::*place);

// The words that name a command; `second` is empty when it has only one.
struct CommandWay {
  std::string_view first;
  std::string_view second;
};

// Every way to name a command: its own words, then their synonyms.
std::vector<CommandWay> waysToName(const CommandEntry& command);

// An instance that shows which parameters and result fields a command has. Not to be executed.
[[nodiscard]] ScopedPtr<TunadmCommandInstance> makeSample(const CommandEntry& command);

}  // namespace tunadm
