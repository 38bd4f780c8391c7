#include "cli/HelpPages.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string_view>

#include "cli/Catalogue.h"

namespace tunadm {
namespace {

constexpr std::size_t kKeyWidth = 20;

// Deliberate: the bracket of deviceID is missing.
constexpr const char* kReferenceTrailer[] = {
    "",
    "Commands also return standard fields for result status:",
    "  method: <string, the name of the method invoked>",
    "  status_code: <integer, a code giving the specific result>",
    "  status_text: <string, readable explanatory text for the status>",
    "  status_details: <optional string, more detail about the status code>",
    "  status_context: <optional string, detail about where an error occurred>",
    "",
    "Commands that return profile details do so with this set of fields:",
    "  profile_name: <string, the common name of the profile>",
    "  profile_dir: <string, the subdirectory in which the profile is stored>",
    "  network: <string, the name of the underlay interface>",
    "  deviceID: <string, the device ID for a managed profile",
    "  overlay_device_ip: <string, the IP address on the overlay network>",
    "  overlay_mask: <string, the subnet mask for this Quenlay>",
    "  invitation: <string, a code used when creating the profile>",
    "  helmsman: <string in host:port form, the Helmsman address>",
    "  networks: <local interfaces suitable for use as the underlay network>",
};

std::string summaryLine(std::string_view name, std::string_view summary) {
  return std::string("    '").append(name).append("' ").append(summary);
}

// "key=<hint>", in brackets when the parameter may be left out.
std::string usageForm(const InputParamBase& param) {
  const std::string hint = param.hint();
  std::string form(param.required() ? 0 : 1, '[');
  form.append(param.name());
  if (!hint.empty()) form.append("=<").append(hint).append(">");
  if (!param.required()) form += "]";
  return form;
}

std::string usageLine(const CommandEntry& command, const TunadmCommandInstance& instance) {
  std::string line(command.name);
  if (command.target != nullptr) line.append(command.target->placeholder);
  for (const InputParamBase* param : instance.shownParams()) {
    line.append(" ").append(usageForm(*param));
  }
  return line;
}

void appendParameters(const TunadmCommandInstance& instance, HelpLines* lines) {
  const std::vector<const InputParamBase*> params = instance.shownParams();
  if (!params.empty()) lines->insert(lines->end(), {"", "PARAMETERS"});
  for (const InputParamBase* param : params) {
    std::string line = param->name();
    line.resize(std::max(line.size(), kKeyWidth), ' ');
    lines->push_back(line.append(param->description()));
  }
}

HelpLines commandPage(const CommandEntry& command) {
  const ScopedPtr<TunadmCommandInstance> instance = makeSample(command);
  HelpLines lines = {
      "", "NAME",  std::string(command.name) + " - " + std::string(command.description),
      "", "USAGE", usageLine(command, *instance)};
  appendParameters(*instance, &lines);
  return lines;
}

HelpLines categoryPage(const Category& category) {
  HelpLines lines = {"tunadm help for '" + std::string(category.name) + "' commands:"};
  for (const CommandEntry* command : commandsOf(category, &CommandEntry::page_place)) {
    lines.push_back(summaryLine(command->name, command->summary));
  }
  return lines;
}

void appendCommonCommands(const Category& category, HelpLines* lines) {
  for (const CommandEntry* command : commandsOf(category, &CommandEntry::page_place)) {
    if (!command->common) continue;
    const bool differs = !command->common_summary.empty();
    lines->push_back(
        summaryLine(command->name, differs ? command->common_summary : command->summary));
  }
}

HelpLines generalPage() {
  HelpLines lines = {"tunadm help for command: help", "Look up commands by category:"};
  for (const Category* category : categories()) {
    if (category->summary.empty()) continue;
    lines.push_back(summaryLine("help " + std::string(category->name), category->summary));
  }
  lines.insert(lines.end(),
               {"",
                "Try 'reference' for the complete list of all commands, or start with these common "
                "ones:"});
  for (const Category* category : categories()) appendCommonCommands(*category, &lines);
  return lines;
}

// The category that a word after "help" leads to, or null.
const Category* findCategory(std::string_view word) {
  if (word.empty()) return nullptr;
  for (const Category* category : categories()) {
    if (category->help == HelpWords::kNone) continue;
    if (word == category->name || word == category->synonym || word == category->help_word) {
      return category;
    }
  }
  return nullptr;
}

// The command of the category that `words` name after "help", or null.
const CommandEntry* findCommand(const Category& category, std::span<const std::string> words) {
  if (words.size() < 3) return nullptr;
  // Deliberate: the plural "profiles" and further words lead to the page of the category.
  if (category.help == HelpWords::kExact && (words.size() > 3 || words[1] != category.name)) {
    return nullptr;
  }
  for (const CommandEntry* command : commandsOf(category, &CommandEntry::page_place)) {
    for (const CommandWay& way : waysToName(*command)) {
      if (way.second == words[2]) return command;
    }
  }
  return nullptr;
}

// The command that is on no category's page and has one of its own under its first word, or null.
const CommandEntry* findOther(std::string_view word) {
  for (const CommandEntry& command : commands()) {
    if (command.category == nullptr && !command.description.empty() && command.first() == word) {
      return &command;
    }
  }
  return nullptr;
}

void appendReference(const CommandEntry& command, HelpLines* lines) {
  const ScopedPtr<TunadmCommandInstance> instance = makeSample(command);
  lines->push_back(std::string("  ").append(usageLine(command, *instance)));
  std::string fields(8, ' ');
  for (const ResultParamBase* field : instance->results()) {
    if (field == &instance->statusField()) continue;
    fields.append(" ").append(field->name()).append("=<");
    field->typeName(&fields);
    fields += ">";
  }
  if (instance->results().size() == 1) fields += " <no additional result data>";
  lines->push_back(fields);
  lines->push_back("");
}

}  // namespace

HelpLines usagePage() {
  return {"tunadm usage:",
          "    <command name> <command-specific params> [--quiet | --verbose]",
          "    help",
          "    help <category>",
          "    help <command name>",
          "    reference",
          "    json <request object>"};
}

HelpLines helpPage(std::span<const std::string> words) {
  if (words.size() < 2) return generalPage();
  if (const Category* category = findCategory(words[1]); category != nullptr) {
    const CommandEntry* const command = findCommand(*category, words);
    return command == nullptr ? categoryPage(*category) : commandPage(*command);
  }
  const CommandEntry* const command = findOther(words[1]);
  return command == nullptr ? generalPage() : commandPage(*command);
}

HelpLines referencePage() {
  HelpLines lines = {"this is the help full reference page"};
  for (const Category* category : categories()) {
    for (const CommandEntry* command : commandsOf(*category, &CommandEntry::reference_place)) {
      appendReference(*command, &lines);
    }
  }
  return lines;
}

void printReference() {
  HelpLines lines = referencePage();
  lines.insert(lines.end(), std::begin(kReferenceTrailer), std::end(kReferenceTrailer));
  for (const std::string& line : lines) std::puts(line.c_str());  // nowhere to report to
}

}  // namespace tunadm
