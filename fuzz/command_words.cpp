// Binds words, one a line, to the command that they name, but does not execute it.
#include <span>

#include "cli/CommandLookup.h"
#include "cli/HelpPages.h"
#include "core/RequestForm.h"
#include "fuzz/Fuzz.h"
#include "json/JsonParser.h"

namespace tunadm {

// What must hold once words are bound.
static void checkBound(TunadmCommandInstance* command, std::span<const std::string> words) {
  for (const std::string& word : words) {
    const std::string name = word.substr(0, word.find('='));
    bool known = name.empty() || name == "command_name" || command->applyOption(word);
    for (const InputParamBase* param : command->params()) known |= param->name() == name;
    require(known, "every word has its parameter");
  }
  for (const InputParamBase* param : command->params())
    require(param->isSatisfied(), "every required parameter is there");
}

void checkInput(const std::string& text) {
  std::vector<std::string> words = fgetsLines(text, text.size() + 2);
  for (std::string& word : words) word.resize(word.size() - (word.back() == '\n' ? 1 : 0));
  std::vector<const char*> arguments = {"tunadm"};
  for (const std::string& word : words) arguments.push_back(word.c_str());
  ScopedJson request;
  const Status built = buildRequest(static_cast<int>(arguments.size()), arguments.data(), &request);
  require(built.ok() == (words.size() >= 2), "two words make a request");
  require(!helpPage(words).empty(), "any words have a help page");

  int consumed = 0;
  const auto command = lookUpCommand(&words, &consumed);
  if (!command || words.empty()) return;
  const ScopedJson array(makeArray());
  for (const std::string& word : words) appendString(array.get(), std::string_view(word));
  if (bindCommandWords(command.get(), array.get(), static_cast<std::size_t>(consumed)).ok())
    checkBound(command.get(), std::span(words).subspan(static_cast<std::size_t>(consumed)));
  const ScopedJson members(parseJson(words.back().c_str(), -1));
  command->statusField().status() = bind_json_args(command.get(), members.get());
  command->render([&words](std::string_view line) { words.emplace_back(line); });
}

}  // namespace tunadm
