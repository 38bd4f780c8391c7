#include "cli/CommandLookup.h"

#include <algorithm>
#include <cstddef>

#include "cli/Catalogue.h"

namespace tunadm {
namespace {

using Words = std::vector<std::string>;

bool isNamed(const CommandEntry& command, std::string_view first, std::string_view second) {
  const std::vector<CommandWay> ways = waysToName(command);
  return std::any_of(ways.begin(), ways.end(), [&](const CommandWay& way) {
    return way.first == first && (way.second.empty() || way.second == second);
  });
}

const CommandEntry* findByLeadingWords(const Words& words) {
  const std::string_view second = words.size() > 1 ? std::string_view(words[1]) : "";
  for (const CommandEntry& command : commands()) {
    if (words.size() >= command.wordsNeeded() && isNamed(command, words[0], second)) {
      return &command;
    }
  }
  return nullptr;
}

// `profile <name> <word>`, the other way to write a command on a profile.
const CommandEntry* findAroundTarget(const Words& words) {
  if (words.size() < 3) return nullptr;
  for (const CommandEntry& command : commands()) {
    if (command.category == &profileCategory() && command.target != nullptr &&
        isNamed(command, words[0], words[2])) {
      return &command;
    }
  }
  return nullptr;
}

ScopedPtr<TunadmCommandInstance> create(const CommandEntry& command, std::string_view target,
                                        const Words& words) {
  return command.make(command.name, {target, words});
}

}  // namespace

ScopedPtr<TunadmCommandInstance> lookUpCommand(std::vector<std::string>* words, int* consumed) {
  // Callers may repeat the program's name.
  if (!words->empty() && words->front() == "tunadm") words->erase(words->begin());
  if (words->empty()) {
    *consumed = 0;
    return create(usageCommand(), "", *words);
  }
  if (const CommandEntry* command = findByLeadingWords(*words); command != nullptr) {
    const std::size_t needed = command->wordsNeeded();
    // A command of one word takes the whole line.
    *consumed = static_cast<int>(needed == 1 ? words->size() : needed);
    return create(*command, command->target == nullptr ? "" : (*words)[needed - 1], *words);
  }
  if (const CommandEntry* command = findAroundTarget(*words); command != nullptr) {
    *consumed = 3;
    return create(*command, (*words)[1], *words);
  }
  *consumed = -1;
  return ScopedPtr<TunadmCommandInstance>();
}

}  // namespace tunadm
