#include "core/CommandCore.h"

#include <cstdint>
#include <limits>

#include "core/JsonValueBinder.h"
#include "json/JsonPrinter.h"
#include "json/ScopedJson.h"

namespace tunadm {
namespace {

constexpr std::string_view kCommandName = "command_name";

Status bindError(std::string_view message, std::string_view subject) {
  return Status(kInvalidArgument, std::string(message).append(subject), "bind_json_args");
}

// The first parameter of that name, or null.
InputParamBase* findParam(const TunadmCommandInstance& command, std::string_view name) {
  for (InputParamBase* param : command.params()) {
    if (param->name() == name) return param;
  }
  return nullptr;
}

// Truncates toward zero. A number out of range becomes the nearest limit, a NaN becomes 0.
std::int32_t truncateNumber(double number) {
  if (number != number) return 0;
  if (number >= std::numeric_limits<std::int32_t>::max()) {
    return std::numeric_limits<std::int32_t>::max();
  }
  if (number <= std::numeric_limits<std::int32_t>::min()) {
    return std::numeric_limits<std::int32_t>::min();
  }
  return static_cast<std::int32_t>(number);
}

bool offerValue(InputParamBase* param, const jsObject* value) {
  if (isString(value)) return param->setFromText(stringView(value));
  if (isNumber(value)) return param->setFromInteger(truncateNumber(numberValue(value)));
  if (isBoolean(value)) return param->setFromBoolean(booleanValue(value));
  return false;
}

bool isMarker(const jsObject* value) {
  if (!isString(value)) return false;
  const std::string_view text = stringView(value);
  return text == kWordPresent || text == kWordAbsent;
}

Status bindMember(const TunadmCommandInstance& command, std::string_view name,
                  const jsObject* value) {
  InputParamBase* const param = findParam(command, name);
  if (param == nullptr) return bindError("disregarding unused input: ", name);
  if (!param->isSingleWord() && param->needsValue() && isMarker(value)) {
    return bindError("parameter value required", "");
  }
  if (offerValue(param, value)) return Status(kSuccess);
  std::string shown;
  printJson(value, &shown);
  return bindError(
      param->isSingleWord() ? "illegal single-word input: " : "illegal value presented: ", shown);
}

// Options among the naming words are applied first, because these words come first on the line.
void addCommandName(TunadmCommandInstance* command, const jsObject* words, std::size_t consumed,
                    jsObject* naming) {
  for (std::size_t i = 0; i < consumed && i < arraySize(words); ++i) {
    const jsObject* const word = arrayAt(words, i);
    if (isString(word))
      (void)command->applyOption(stringView(word));  // it names the command all the same
    appendValue(naming, deepCopy(word));
  }
}

}  // namespace

TunadmCommandInstance::TunadmCommandInstance(std::string_view method)
    : auth_(&params_),
      request_id_(&params_, "requestID", "", Required::kNo),
      output_(&params_, kOutputParam, "", Required::kNo),
      status_(&results_, method, &flags_) {
  for (InputParamBase* param : params_) param->hide();
}

std::vector<const InputParamBase*> TunadmCommandInstance::shownParams() const {
  std::vector<const InputParamBase*> shown;
  for (const InputParamBase* param : params_) {
    if (!param->hidden()) shown.push_back(param);
  }
  return shown;
}

bool TunadmCommandInstance::applyOption(std::string_view word) {
  const auto& [quiet, verbose, json, text] = kOptionWords;
  if (word == quiet || word == verbose) {
    flags_.quiet = word == quiet;
    flags_.verbose = !flags_.quiet;
    return true;
  }
  if (word == json || word == text) {
    flags_.json = word == json;
    flags_.text = !flags_.json;
    return true;
  }
  return false;
}

void TunadmCommandInstance::render(const LineReceiver& receiver) const {
  StringVectorValueBinder out(receiver);
  renderFields(out);
}

void TunadmCommandInstance::renderJson(const TextReceiver& receiver) const {
  JsonValueBinder out(receiver);
  if (request_id_.presented()) out.addText(request_id_.name(), request_id_.value());
  renderFields(out);
  out.finish();
}

void TunadmCommandInstance::renderFields(ValueBinder& out) const {
  if (!status_.status().ok()) {
    status_.render(out);
    return;
  }
  for (const ResultParamBase* field : results_) field->render(out);
}

void addWordAsMember(jsObject* arguments, std::string_view word) {
  const std::size_t equals = word.find('=');
  if (equals == std::string_view::npos) {
    setStringMember(arguments, word, kWordPresent);
  } else {
    setStringMember(arguments, word.substr(0, equals), word.substr(equals + 1));
  }
}

Status bindCommandWords(TunadmCommandInstance* command, const jsObject* words,
                        std::size_t consumed) {
  const ScopedJson arguments(makeObject());
  ScopedJson naming(makeArray());
  addCommandName(command, words, consumed, naming.get());
  for (std::size_t i = consumed; i < arraySize(words); ++i) {
    const jsObject* const word = arrayAt(words, i);
    if (!isString(word)) {
      return Status(kInvalidArgument, "parameter not a string", "binding input args");
    }
    if (!command->applyOption(stringView(word))) addWordAsMember(arguments.get(), stringView(word));
  }
  setMember(arguments.get(), kCommandName, naming.take());
  return bind_json_args(command, arguments.get());
}

Status bind_json_args(TunadmCommandInstance* command, const jsObject* arguments) {
  for (std::size_t i = 0; i < objectSize(arguments); ++i) {
    const std::string_view name = memberName(arguments, i);
    if (name == kCommandName) continue;
    if (Status bound = bindMember(*command, name, memberValue(arguments, i)); !bound.ok()) {
      return bound;
    }
  }
  for (const InputParamBase* param : command->params()) {
    if (!param->isSatisfied()) return bindError("illegal or missing parameter: ", param->name());
  }
  return Status(kSuccess);
}

}  // namespace tunadm
