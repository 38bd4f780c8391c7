#include "cli/HelpPages.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string_view>

#include "cli/Catalogue.h"

namespace tunadm {
namespace {

constexpr std::size_t kKeyWidth = 20;
constexpr std::size_t kMostCommands = 6;

// A list of commands under one word. The names are filled up with empty ones.
struct Category {
  std::string_view name;
  std::string_view commands[kMostCommands];
};

constexpr Category kCategories[] = {
    {"profile",
     {"profile activate", "profile create", "profile delete", "profile rename", "profile modify",
      "profile details"}},
    {"service", {"service start", "service stop", "service restart", "service status"}},
    {"list", {"list profiles", "list interfaces", "list versions", "list log"}},
    {"support", {"support reset", "support bundle"}},
    {"internal", {}},
    {"log", {}},
    {"settings", {}},  // no word of help leads to it
};

struct SummaryEntry {
  std::string_view name;
  std::string_view summary;  // empty: the command's own
};

constexpr SummaryEntry kCategoryPointers[] = {
    {"help profile", "for managing your HIP profiles"},
    {"help service", "for starting and stopping HIP processes"},
    {"help list", "to display details of various things"},
    {"help log", "to display or manage log files"},
    {"help support", "for advanced operations commands"},
};

constexpr SummaryEntry kCommonCommands[] = {
    {"profile activate", ""},
    {"profile create", ""},
    {"profile delete", ""},
    {"profile rename", ""},
    {"service start", ""},
    {"service stop", ""},
    {"list profiles", "provides a list of the configured profiles"},
};

// The words after "help" that lead to a page. A second word that is empty stands for none, or one
// that no row has; an empty command for the category's own page.
struct HelpTopic {
  std::string_view first;
  std::string_view second;
  std::string_view category;
  std::string_view command;
};

constexpr HelpTopic kTopics[] = {
    {"profile", "create", "profile", "profile create"},
    {"profile", "activate", "profile", "profile activate"},
    {"profile", "delete", "profile", "profile delete"},
    {"profile", "details", "profile", "profile details"},
    {"profile", "modify", "profile", "profile modify"},
    {"profile", "rename", "profile", "profile rename"},
    {"profile", "", "profile", ""},
    // Deliberate: the plural leads to the category only.
    {"profiles", "", "profile", ""},
    {"service", "start", "service", "service start"},
    {"service", "stop", "service", "service stop"},
    {"service", "restart", "service", "service restart"},
    {"service", "bounce", "service", "service restart"},
    {"service", "status", "service", "service status"},
    {"service", "", "service", ""},
    {"list", "interfaces", "list", "list interfaces"},
    {"list", "profiles", "list", "list profiles"},
    {"list", "log", "list", "list log"},
    {"list", "versions", "list", "list versions"},
    {"list", "", "list", ""},
    {"support", "reset", "support", "support reset"},
    {"support", "bundle", "support", "support bundle"},
    {"support", "", "support", ""},
    {"internal", "", "internal", ""},
    {"json", "", "", "json <object>"},
    {"log", "", "log", ""},
};

constexpr std::string_view kReferenceOrder[] = {
    "profile details", "profile modify", "profile activate", "profile create",
    "profile delete",  "profile rename", "service start",    "service stop",
    "service restart", "service status", "list interfaces",  "list profiles",
    "list versions",   "list log",       "support reset",    "support bundle",
};

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

ScopedPtr<TunadmCommandInstance> sample(const CommandEntry& command) {
  return command.make(command.name, CommandWords());
}

std::string summaryLine(std::string_view name, std::string_view summary) {
  return std::string("    '").append(name).append("' ").append(summary);
}

void appendSummaries(std::span<const SummaryEntry> entries, HelpLines* lines) {
  for (const SummaryEntry& entry : entries) {
    const std::string_view summary =
        entry.summary.empty() ? findCommand(entry.name).summary : entry.summary;
    lines->push_back(summaryLine(entry.name, summary));
  }
}

// "key=<hint>", in brackets when the parameter may be left out.
std::string usageForm(const InputParamBase& param) {
  std::string hint;
  param.appendHint(&hint);
  std::string form(param.required() ? 0 : 1, '[');
  form.append(param.name());
  if (!hint.empty()) form.append("=<").append(hint).append(">");
  if (!param.required()) form += "]";
  return form;
}

std::string usageLine(const CommandEntry& command, const TunadmCommandInstance& instance) {
  std::string line = std::string(command.name) + std::string(command.placeholder);
  for (const InputParamBase* param : instance.params()) {
    if (!param->hidden()) line.append(" ").append(usageForm(*param));
  }
  return line;
}

void appendParameters(const TunadmCommandInstance& instance, HelpLines* lines) {
  bool heading = false;
  for (const InputParamBase* param : instance.params()) {
    if (param->hidden()) continue;
    if (!heading) lines->insert(lines->end(), {"", "PARAMETERS"});
    heading = true;
    std::string line = param->name();
    line.resize(std::max(line.size(), kKeyWidth), ' ');
    lines->push_back(line.append(param->description()));
  }
}

HelpLines commandPage(std::string_view name) {
  const CommandEntry& command = findCommand(name);
  const ScopedPtr<TunadmCommandInstance> instance = sample(command);
  HelpLines lines = {
      "", "NAME",  std::string(command.name) + " - " + std::string(command.description),
      "", "USAGE", usageLine(command, *instance)};
  appendParameters(*instance, &lines);
  return lines;
}

HelpLines categoryPage(std::string_view name) {
  HelpLines lines = {"tunadm help for '" + std::string(name) + "' commands:"};
  for (const Category& category : kCategories) {
    if (category.name != name) continue;
    for (const std::string_view command : category.commands) {
      if (!command.empty()) lines.push_back(summaryLine(command, findCommand(command).summary));
    }
  }
  return lines;
}

HelpLines generalPage() {
  HelpLines lines = {"tunadm help for command: help", "Look up commands by category:"};
  appendSummaries(kCategoryPointers, &lines);
  lines.insert(lines.end(),
               {"",
                "Try 'reference' for the complete list of all commands, or start with these common "
                "ones:"});
  appendSummaries(kCommonCommands, &lines);
  return lines;
}

// Other words for the same topics.
std::string_view canonicalTopic(std::string_view word) {
  if (word == "services") return "service";
  if (word == "show") return "list";
  return word;
}

void appendReference(const CommandEntry& command, HelpLines* lines) {
  const ScopedPtr<TunadmCommandInstance> instance = sample(command);
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
  const std::string_view first = words.size() > 1 ? canonicalTopic(words[1]) : "";
  std::string_view second = words.size() > 2 ? std::string_view(words[2]) : "";
  // Deliberate: only the pages of the profile commands ask for exactly three words.
  if (first == "profile" && words.size() > 3) second = "";
  for (const HelpTopic& topic : kTopics) {
    if (topic.first != first || (topic.second != second && !topic.second.empty())) continue;
    return topic.command.empty() ? categoryPage(topic.category) : commandPage(topic.command);
  }
  return generalPage();
}

HelpLines referencePage() {
  HelpLines lines = {"this is the help full reference page"};
  for (const std::string_view name : kReferenceOrder) appendReference(findCommand(name), &lines);
  return lines;
}

void printReference() {
  HelpLines lines = referencePage();
  lines.insert(lines.end(), std::begin(kReferenceTrailer), std::end(kReferenceTrailer));
  for (const std::string& line : lines) (void)std::puts(line.c_str());  // nowhere to report to
}

}  // namespace tunadm
