#include <cstdlib>
#include <iostream>
#include <iterator>

#include "packaging/generate/CommandTexts.h"
#include "packaging/generate/Pieces.h"

namespace tunadm {
namespace {

std::string_view targetOf(const CommandRow& row, const TunadmCommandInstance& command) {
  if (row.form != CommandForm::kTarget) return "";
  // Always refuses the other two.
  if (row.command->name == "profile delete") return "profile --active";
  for (const InputParamBase* param : command.params()) {
    if (param->name() == "profile") return "profile .current .factory --active";
  }
  return "new";
}

std::string paramsOf(const TunadmCommandInstance& command) {
  std::vector<std::string> params;
  for (const InputParamBase* param : shownParams(command)) {
    std::string text = param->name();
    if (param->needsValue()) text.append("=").append(joined(valuesOf(*param), ","));
    params.push_back(text);
  }
  return joined(params, " ");
}

// The table stands in single quotes, which each shell leaves in its own way.
void refuseQuotes(const std::string& line) {
  if (line.find_first_of("'\\") == std::string::npos) return;
  std::cerr << "no completion can be made with a quote or a backslash: " << line << '\n';
  std::exit(EXIT_FAILURE);
}

}  // namespace

std::string completionTable() {
  std::vector<std::string> lines;
  for (const CommandRow& row : commandRows()) {
    const ScopedPtr<TunadmCommandInstance> command = sampleOf(*row.command);
    std::string line;
    for (const std::string_view field : {row.first, row.second, targetOf(row, *command)}) {
      line.append(field).append("|");
    }
    line.append(paramsOf(*command)).append("|").append(row.command->summary);
    refuseQuotes(line);
    lines.push_back(line);
  }
  return joined(lines, "\n");
}

std::string completionOptions() {
  return joined({std::begin(kOptionWords), std::end(kOptionWords)}, " ");
}

}  // namespace tunadm
