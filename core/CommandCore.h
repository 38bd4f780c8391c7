// One invocation of a command: how words are bound to its parameters, and how its result fields are
// rendered as text lines or JSON.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/InputParam.h"
#include "core/ResultParam.h"
#include "core/Status.h"
#include "core/TextLines.h"
#include "json/JsonValue.h"

namespace tunadm {

// The output options: two pairs of opposites.
inline constexpr std::string_view kOptionWords[] = {"--quiet", "--verbose", "--json", "--text"};

// The parameter of every command that asks for JSON, and its value for that. Other values mean
// nothing.
inline constexpr std::string_view kOutputParam = "output";
inline constexpr std::string_view kJsonOutput = "json";

// The base of every command. A concrete command declares its parameters and result fields as
// members; each adds itself to the lists here, after the common ones.
class TunadmCommandInstance {
 public:
  // Does the command's work: reads the parameters, fills the result fields and sets the status of
  // `result`, which is this instance's own status field.
  virtual void execute(StatusCodeResultField& result) = 0;

  TunadmCommandInstance(const TunadmCommandInstance&) = delete;
  TunadmCommandInstance& operator=(const TunadmCommandInstance&) = delete;
  virtual ~TunadmCommandInstance() = default;

  const ParamList& params() const { return params_; }
  // The parameters that help lists: those that are not hidden.
  std::vector<const InputParamBase*> shownParams() const;
  const ResultList& results() const { return results_; }
  const OutputFlags& flags() const { return flags_; }
  StatusCodeResultField& statusField() { return status_; }

  // If `word` is exactly one of kOptionWords, sets its flag and returns true. Of --quiet and
  // --verbose the last one counts, and so it does of --json and --text.
  [[nodiscard]] bool applyOption(std::string_view word);

  // Whether the command line asks for JSON.
  [[nodiscard]] bool jsonWanted() const { return output_.value() == kJsonOutput; }

  // Each renders every field of a success, but only the status of a failure: as text lines, or as
  // one line with a JSON object, which begins with the request's ID if there is one.
  void render(const LineReceiver& out) const;
  void renderJson(const TextReceiver& out) const;

 protected:
  // `method` is the canonical name of the command, which --verbose shows.
  explicit TunadmCommandInstance(std::string_view method);

  ParamList* paramList() { return &params_; }
  ResultList* resultList() { return &results_; }

 private:
  void renderFields(ValueBinder& out) const;

  ParamList params_;
  ResultList results_;
  AuthParam auth_;
  StringParam request_id_;
  StringParam output_;
  OutputFlags flags_;
  StatusCodeResultField status_;
};

// Adds a parameter word to an argument object: the name before its first equals sign, with all text
// after that sign as its value. A word without an equals sign is a name with the value
// kWordPresent. A word without a name is dropped.
void addWordAsMember(jsObject* arguments, std::string_view word);

// Binds command-line words to the parameters of `command`. `words` is a JSON array of strings; its
// first `consumed` elements named the command. Options are applied wherever they stand. A word with
// an equals sign is a parameter and its value, any other word a parameter that is switched on.
// Fails with kInvalidArgument and texts that say why; parameters that were bound before the failure
// keep their values.
Status bindCommandWords(TunadmCommandInstance* command, const jsObject* words,
                        std::size_t consumed);

// Binds the members of a JSON object to the parameters of the same names. Skips "command_name". Any
// other unknown name is an error, and so is a missing required parameter. Fails with
// kInvalidArgument as above.
Status bind_json_args(TunadmCommandInstance* command, const jsObject* arguments);

}  // namespace tunadm
