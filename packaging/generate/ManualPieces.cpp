#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <span>

#include "cli/Catalogue.h"
#include "cli/ProfileResultFields.h"
#include "core/ProgramStatus.h"
#include "core/StatusText.h"
#include "packaging/generate/Joined.h"
#include "packaging/generate/ManualTexts.h"
#include "packaging/generate/Pieces.h"

namespace tunadm {
namespace {

void replaceAll(std::string* text, std::string_view from, std::string_view to) {
  for (std::size_t at = text->find(from); at != std::string::npos;
       at = text->find(from, at + to.size())) {
    text->replace(at, from.size(), to);
  }
}

// `sentence` in lines as short as mdoc wants them. None begins with what mdoc takes for a macro.
std::string wrapped(std::string_view sentence) {
  constexpr std::size_t kWidth = 76;
  std::string lines;
  while (!sentence.empty()) {
    std::size_t end = sentence.size() <= kWidth ? sentence.size() : sentence.rfind(' ', kWidth);
    end = std::min(end, sentence.size());  // a word that is longer stays whole
    if (sentence.front() == '.' || sentence.front() == '\'') lines += "\\&";
    lines.append(sentence.substr(0, end)).append("\n");
    sentence.remove_prefix(std::min(end + 1, sentence.size()));
  }
  return lines;
}

// Text for lines of its own. Each sentence begins a line, as mdoc wants it.
std::string prose(std::string_view text) {
  std::string rest(text);
  replaceAll(&rest, "\\", "\\e");
  replaceAll(&rest, "‘", "\\(oq");
  replaceAll(&rest, "’", "\\(cq");
  std::string lines;
  for (std::size_t stop = rest.find(". "); stop != std::string::npos; stop = rest.find(". ")) {
    lines += wrapped(std::string_view(rest).substr(0, stop + 1));
    rest.erase(0, rest.find_first_not_of(' ', stop + 1));
  }
  return lines + wrapped(rest);
}

// "Cm name Ns = Ns Ar hint", the arguments of a macro line.
std::string paramWords(const InputParamBase& param) {
  const std::string hint = param.hint();
  return "Cm " + param.name() + (hint.empty() ? "" : " Ns = Ns Ar \"" + hint + "\"");
}

std::string wayWords(const CommandWay& way) {
  return std::string(way.first) + (way.second.empty() ? "" : " ") + std::string(way.second);
}

// The head of a command's item: its words, its target and its parameters.
std::string itemHead(const CommandEntry& entry, const TunadmCommandInstance& command) {
  std::string text = ".It Xo\n.Ic " + wayWords(waysToName(entry).front()) + "\n";
  if (entry.target != nullptr) {
    std::string target(entry.target->placeholder);
    std::erase_if(target, [](char byte) { return byte == '<' || byte == '>'; });
    text += ".Ar \"" + target.substr(1) + "\"\n";
  }
  for (const InputParamBase* param : command.shownParams()) {
    text += (param->required() ? "." : ".Op ") + paramWords(*param) + "\n";
  }
  return text + ".Xc\n";
}

std::string synonyms(const CommandEntry& entry) {
  const std::vector<CommandWay> ways = waysToName(entry);
  std::string text;
  for (const CommandWay& way : std::span(ways).subspan(1)) {
    text += "The same as\n.Ic " + wayWords(way) + " .\n";
  }
  return text;
}

std::string paramItem(const InputParamBase& param, std::string_view command) {
  std::string text = ".It " + paramWords(param) + "\n(" + std::string(param.description());
  if (param.required()) text += ", required";
  if (!param.hintTellsValues()) text += ", one of " + joined(param.values(), ", ");
  return text + ")\n" + prose(paramText(command, param.name()));
}

std::string paramList(const TunadmCommandInstance& command, std::string_view name) {
  const std::vector<const InputParamBase*> params = command.shownParams();
  if (params.empty()) return "";
  std::string text = ".Pp\nParameters:\n.Bl -tag -compact -width Ds\n";
  for (const InputParamBase* param : params) text += paramItem(*param, name);
  return text + ".El\n";
}

// "lines of text" for a list, whose type is its name. A name that begins with an underscore is not
// printed. Empty for a field that the command keeps out of its output.
std::string resultField(const ResultParamBase& field) {
  std::string type;
  field.typeName(&type);
  std::vector<std::string> lines;
  const LineReceiver take = [&lines](std::string_view line) { lines.emplace_back(line); };
  StringVectorValueBinder out(take);
  field.render(out);
  if (type == "string" && lines.empty()) return "";
  if (field.name().starts_with('_')) return std::string(listText(field.name()));
  return ".Va " + field.name() + "\n(" + (type == field.name() ? "lines of text" : type) + ")";
}

std::string resultList(TunadmCommandInstance* command) {
  std::vector<std::string> fields;
  for (const ResultParamBase* field : command->results()) {
    if (field == &command->statusField()) continue;
    if (std::string text = resultField(*field); !text.empty()) fields.push_back(text);
  }
  if (fields.empty()) return ".Pp\nNo result but the status.\n";
  return ".Pp\nResult:\n" + joined({fields.begin(), fields.end()}, ",\n") + "\n";
}

std::string statusItem(const StatusCause& row) {
  char shown[sizeof("0x00000000")];
  (void)std::snprintf(shown, sizeof(shown), "0x%08x", static_cast<unsigned>(row.code));
  const std::string text = std::string(".It ") + shown + " " + statusText(row.code) + "\n";
  return row.cause.empty() ? text : text + prose(row.cause);
}

}  // namespace

std::string manualCommands() {
  std::string text;
  for (const CommandEntry& entry : commands()) {
    if (entry.description.empty()) continue;
    const ScopedPtr<TunadmCommandInstance> command = makeSample(entry);
    text += itemHead(entry, *command) + prose(entry.description) + synonyms(entry);
    text += paramList(*command, entry.name) + resultList(command.get());
  }
  text.pop_back();
  return text;
}

std::string manualStatuses() {
  registerStatusTexts(kProgramModule, &programStatusText);
  std::string items;
  for (const StatusCause& row : statusCauses()) items += statusItem(row);
  items.pop_back();
  return items;
}

std::string manualDetailKeys() {
  ResultList fields;
  ProfileDetailsResultField details(&fields, "");
  details.details().helmsman_host = "host";  // or its line is left out
  std::vector<std::string> lines;
  const LineReceiver take = [&lines](std::string_view line) { lines.emplace_back(line); };
  StringVectorValueBinder out(take);
  details.render(out);
  for (std::string& line : lines) line = ".Va " + line.substr(0, line.find('='));
  return joined({lines.begin(), lines.end()}, " ,\n");
}

}  // namespace tunadm
