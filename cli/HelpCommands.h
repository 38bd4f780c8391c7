// The commands that explain the others.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/CommandWords.h"
#include "core/CommandCore.h"

namespace tunadm {

// The base of the commands whose result is lines of text.
class HelpCommand : public TunadmCommandInstance {
 public:
  HelpCommand(std::string_view method, const CommandWords& words)
      : TunadmCommandInstance(method), words_(words.line) {}

  void execute(StatusCodeResultField& result) final;

 protected:
  // The whole command line; the caller of the lookup owns the words.
  std::span<const std::string> words() const { return words_; }

 private:
  virtual std::vector<std::string> page() const = 0;

  std::span<const std::string> words_;
  StringVectorResultField helptext_{resultList(), "_helptext"};
};

class Hipcmd_Usage final : public HelpCommand {
 public:
  using HelpCommand::HelpCommand;

 private:
  std::vector<std::string> page() const override;
};

class Hipcmd_SimpleHelp final : public HelpCommand {
 public:
  using HelpCommand::HelpCommand;

 private:
  std::vector<std::string> page() const override;
};

class Hipcmd_ReferenceHelp final : public HelpCommand {
 public:
  using HelpCommand::HelpCommand;

 private:
  std::vector<std::string> page() const override;
};

}  // namespace tunadm
