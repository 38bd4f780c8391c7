#include "cli/Program.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "cli/CommandLookup.h"
#include "core/CommandCore.h"
#include "core/Privilege.h"
#include "core/ProgramStatus.h"
#include "core/StatusText.h"
#include "fundkit/BasicLog.h"
#include "fundkit/DescriptorIo.h"
#include "fundkit/LinePrinter.h"
#include "fundkit/ScopedFd.h"
#include "json/ScopedJson.h"
#include "json/ScopedRelease.h"

namespace tunadm {
namespace {

void printUsage(const std::string& program) {
  LinePrinter out(STDOUT_FILENO);
  out.print("Usage: " + program + " json <command request object>");
  out.print("   or: " + program + " <two-word command name> <command-specific params>");
  out.print("   or: " + program + " help   (for a command list and short summaries)");
}

Status bindWords(TunadmCommandInstance* command, const std::vector<std::string>& words,
                 int consumed) {
  const ScopedJson array(makeArray());
  for (const std::string& word : words) appendString(array.get(), std::string_view(word));
  return bindCommandWords(command, array.get(), static_cast<std::size_t>(consumed));
}

// The result tells only what kind of failure it was.
void sayWhy(const StatusCodeResultField& result) {
  const Status& status = result.status();
  if (status.ok() || status.cause().empty()) return;
  TUNADM_LOG(programLogger(), kLogError, sourceFileName(__FILE__), __func__,
             result.method() + ": " + status.cause());
}

void execute(TunadmCommandInstance* command) {
  command->execute(command->statusField());
  sayWhy(command->statusField());
}

void runForText(TunadmCommandInstance* command) {
  execute(command);
  LinePrinter out(STDOUT_FILENO);
  command->render([&out](std::string_view line) { out.print(line); });
}

// Children inherit standard output, and what they print would break the JSON there. Where it can be
// done, it goes to standard error instead.
void runForJson(TunadmCommandInstance* command) {
  const ScopedFd output(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  if (output.valid()) (void)dup2(STDERR_FILENO, STDOUT_FILENO);
  execute(command);
  LinePrinter out(output.valid() ? output.get() : STDOUT_FILENO);
  command->renderJson([&out](std::string_view text) { out.append(text); });
}

// A write beyond the caller's limit of file size is to fail like one on a full disk, not to end the
// process halfway through a change. A handler, unlike SIG_IGN, is not passed on to children.
void surviveFileSizeLimit() {
  if (std::signal(SIGXFSZ, [](int) {}) == SIG_IGN) std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace

int runProgram(int argc, char** argv) {
  fillStandardDescriptors();
  // With an inherited SIG_IGN, waitpid could not tell how a child ended.
  std::signal(SIGCHLD, SIG_DFL);
  surviveFileSizeLimit();
  if (argc < 2) {
    printUsage(argc == 1 ? argv[0] : "tunadm");
    return 0;
  }
  registerStatusTexts(kProgramModule, &programStatusText);
  setPrivilegeMode(PrivilegeMode::kRootOnly);

  std::vector<std::string> words(argv + 1, argv + argc);
  int consumed = 0;
  const ScopedPtr<TunadmCommandInstance> command = lookUpCommand(&words, &consumed);
  if (!command) {
    LinePrinter(STDOUT_FILENO).print("invalid command name");
    return 1;
  }
  if (!bindWords(command.get(), words, consumed).ok()) {
    LinePrinter(STDOUT_FILENO).print("invalid command arguments");
    return 1;
  }
  if (command->jsonWanted()) {
    runForJson(command.get());
  } else {
    runForText(command.get());
  }
  return 0;
}

}  // namespace tunadm
