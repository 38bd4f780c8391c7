#include <cstdlib>
#include <iostream>
#include <iterator>

#include "cli/Catalogue.h"
#include "packaging/generate/Joined.h"
#include "packaging/generate/Pieces.h"

namespace tunadm {
namespace {

std::string targetOf(const CommandEntry& command) {
  if (command.target == nullptr) return "";
  switch (command.target->kind) {
    case TargetKind::kProfile:
      return "profile " + std::string(command.target->words);
    case TargetKind::kNewProfile:
      return "new";
    case TargetKind::kRequest:
      break;
  }
  return "";
}

std::string paramsOf(const TunadmCommandInstance& command) {
  std::string params;
  for (const InputParamBase* param : command.shownParams()) {
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
    fields.append("|").append(paramsOf(*makeSample(command))).append("|").append(command.summary);
    for (const CommandWay& way : waysToName(command)) {
      std::string line(way.first);
      line.append("|").append(way.second).append("|").append(fields);
      refuseQuotes(line);
      table.append(table.empty() ? "" : "\n").append(line);
    }
  }
  return table;
}

std::string completionOptions() {
  std::string options = joined({std::begin(kOptionWords), std::end(kOptionWords)}, " ");
  return options.append(" ").append(kOutputParam).append("=").append(kJsonOutput);
}

}  // namespace tunadm
