// What must hold of the catalogue as a whole; checked when it is compiled.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "cli/Catalogue.h"

namespace tunadm {

// Whether the places of a category's commands are 1, 2, 3 and so on, each taken once.
constexpr bool placesAreComplete(std::span<const CommandEntry> commands, const Category* category,
                                 int CommandEntry::*place) {
  std::ptrdiff_t members = 0;
  for (const CommandEntry& command : commands) members += command.category == category ? 1 : 0;
  for (int wanted = 1; wanted <= members; ++wanted) {
    const auto taken = [&](const CommandEntry& command) {
      return command.category == category && command.*place == wanted;
    };
    if (std::count_if(commands.begin(), commands.end(), taken) != 1) return false;
  }
  return true;
}

// Whether every order that is made from places can be made. A command on no page has no place.
constexpr bool ordersAreComplete(std::span<const CommandEntry> commands,
                                 std::span<const Category* const> categories) {
  for (const Category* category : categories) {
    if (!placesAreComplete(commands, category, &CommandEntry::page_place)) return false;
    if (!placesAreComplete(commands, category, &CommandEntry::reference_place)) return false;
  }
  return std::all_of(commands.begin(), commands.end(), [](const CommandEntry& command) {
    return command.category != nullptr || (command.page_place == 0 && command.reference_place == 0);
  });
}

// Whether the row has what the pages print, and its words are those of its category.
constexpr bool rowIsWhole(const CommandEntry& command,
                          std::span<const Category* const> categories) {
  if (!command.common && !command.common_summary.empty()) return false;
  const Category* const category = command.category;
  if (category == nullptr) return command.summary.empty() && !command.common;
  return std::count(categories.begin(), categories.end(), category) == 1 &&
         category->help != HelpWords::kNone && command.first() == category->name &&
         !command.second().empty() && !command.description.empty() && !command.summary.empty();
}

constexpr bool rowsAreWhole(std::span<const CommandEntry> commands,
                            std::span<const Category* const> categories) {
  return std::all_of(commands.begin(), commands.end(),
                     [&](const CommandEntry& command) { return rowIsWhole(command, categories); });
}

// Whether some words name both commands.
constexpr bool shareWords(const CommandEntry& one, const CommandEntry& other) {
  if (one.first() != other.first()) return false;
  if (one.second().empty() || other.second().empty()) return true;
  return one.second() == other.second() || one.synonym == other.second() ||
         one.second() == other.synonym || (!one.synonym.empty() && one.synonym == other.synonym);
}

// Whether commands that need more words are tested first, and each one's words reach it.
constexpr bool lookupIsPlain(std::span<const CommandEntry> commands) {
  for (std::size_t i = 0; i < commands.size(); ++i) {
    for (std::size_t before = 0; before < i; ++before) {
      if (commands[before].wordsNeeded() < commands[i].wordsNeeded()) return false;
      if (shareWords(commands[before], commands[i])) return false;
    }
  }
  return true;
}

// Whether no word leads to two categories.
constexpr bool categoryWordsDiffer(std::span<const Category* const> categories) {
  for (std::size_t i = 0; i < categories.size(); ++i) {
    for (std::size_t other = 0; other < categories.size(); ++other) {
      if (other == i) continue;
      const std::string_view name = categories[i]->name;
      if (name == categories[other]->name || name == categories[other]->synonym ||
          name == categories[other]->help_word)
        return false;
    }
  }
  return true;
}

}  // namespace tunadm
