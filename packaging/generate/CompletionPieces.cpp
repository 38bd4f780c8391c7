#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>

#include "cli/Catalogue.h"
#include "packaging/generate/Joined.h"
#include "packaging/generate/Pieces.h"

namespace tunadm {
namespace {

struct Param {
  std::string_view command;
  std::string_view name;
};

// Accepted, but without an effect.
constexpr Param kIdleParams[] = {{"profile create", "log_level"}, {"service restart", "full"}};

bool isIdle(std::string_view command, const InputParamBase& param) {
  return std::any_of(std::begin(kIdleParams), std::end(kIdleParams), [&](const Param& idle) {
    return idle.command == command && idle.name == param.name();
  });
}

std::string targetOf(const CommandEntry& command) {
  if (command.target == nullptr) return "";
  switch (command.target->kind) {
    case TargetKind::kProfile:
      return "profile " + std::string(command.target->words) + " dir=";
    case TargetKind::kNewProfile:
      return "new";
    case TargetKind::kRequest:
      break;
  }
  return "";
}

std::string paramsOf(const CommandEntry& command) {
  std::string params;
  const ScopedPtr<TunadmCommandInstance> sample = makeSample(command);
  for (const InputParamBase* param : sample->shownParams()) {
    if (isIdle(command.name, *param)) continue;
    if (!params.empty()) params += " ";
    params += param->name();
    if (param->needsValue()) params.append("=").append(joined(param->values(), ","));
  }
  return params;
}

// The table stands in single quotes, which each shell leaves in its own way.
void refuseQuotes(const std::string& line) {
  if (line.find_first_of("'\\") == std::string::npos) return;
  std::cerr << "no completion can be made with a quote or a backslash: " << line << '\n';
  std::exit(EXIT_FAILURE);
}

}  // namespace

std::string completionTable() {
  std::string table;
  for (const CommandEntry& command : commands()) {
    std::string fields = targetOf(command);
    fields.append("|").append(paramsOf(command)).append("|").append(command.summary);
    for (const CommandWay& way : waysToName(command)) {
      std::string line(way.first);
      line.append("|").append(way.second).append("|").append(fields);
      refuseQuotes(line);
      table.append(table.empty() ? "" : "\n").append(line);
    }
  }
  return table;
}

// The other two options have no effect.
std::string completionOptions() {
  const auto& [quiet, verbose, json, text] = kOptionWords;
  std::string options = joined({quiet, verbose}, " ");
  return options.append(" ").append(kOutputParam).append("=").append(kJsonOutput);
}

}  // namespace tunadm
