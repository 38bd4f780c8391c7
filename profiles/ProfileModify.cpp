#include "profiles/ProfileModify.h"

#include "core/Privilege.h"
#include "fundkit/AsciiText.h"
#include "fundkit/SignalHold.h"
#include "json/AsciiCase.h"
#include "profiles/ConfigControl.h"
#include "profiles/CurrentProfile.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfileRename.h"
#include "profiles/SupportReset.h"
#include "service/ServiceControl.h"
#include "service/ServiceStatus.h"

namespace tunadm {
namespace {

constexpr std::string_view kContext = "profile modify";

// The level texts that are taken, in any letter case, and how they are written; empty: as given.
struct LevelText {
  std::string_view text;
  std::string_view written;
};
constexpr LevelText kLevelTexts[] = {{"error", ""},       {"warning", ""}, {"info", ""},
                                     {"debug", ""},       {"trace", ""},   {"fatal", ""},
                                     {"warn", "warning"}, {"err", "error"}};

bool isPort(int port) { return port >= 1 && port <= 65535; }

Status changeHelmsman(const ModifyRequest& request, const std::string& dir_name) {
  if (!request.helmsman_host.empty()) {
    const int port = isPort(request.helmsman_port) ? request.helmsman_port : kHelmsmanPort;
    return changeHelmsmanAddress(request.helmsman_host, port, dir_name);
  }
  if (!isPort(request.helmsman_port)) return Status(kSuccess);
  std::string host;
  std::string old_port;
  if (!readHelmsmanAddress(dir_name, &host, &old_port)) return Status(kApplicationError);
  return changeHelmsmanAddress(host, request.helmsman_port, dir_name);
}

Status changeLogLevel(const std::string& level, const std::string& dir_name) {
  if (level.empty()) return Status(kSuccess);
  for (const LevelText& row : kLevelTexts) {
    if (!equalIgnoringCase(level, row.text)) continue;
    const bool written = writeLogLevel(dir_name, row.written.empty() ? level : row.written).ok();
    return Status(written ? kSuccess : kApplicationError);
  }
  return Status(kApplicationError, "invalid log_level value", "doModifyProfile");
}

enum class Daemon { kMayRun, kStopped };

// A daemon that has just been stopped leaves a status file that looks alive for some seconds, so it
// is not asked then.
Status clearState(const std::string& dir_name, Daemon daemon) {
  if (daemon == Daemon::kStopped) {
    removeStateFiles(dir_name);
    return Status(kSuccess);
  }
  std::string profile_name;
  return resetProfile(selectorOf(dir_name), &profile_name);
}

// Deliberate: the status is that of the last step that sets one.
Status applyChanges(const ModifyRequest& request, Daemon daemon, ProfileRef* profile) {
  const std::string& dir_name = profile->dir_name;
  if (Status changed = changeHelmsman(request, dir_name); !changed.ok()) return changed;
  if (Status changed = changeLogLevel(request.log_level, dir_name); !changed.ok()) return changed;
  Status status = clearState(dir_name, daemon);
  // A file that cannot be rewritten is left as it was, and not reported here.
  if (!request.network.empty()) {
    (void)writeMasterInterface(dir_name, request.network);
    status = Status(kSuccess);
  }
  (void)writeInvitationCode(dir_name, request.invitation);
  if (!request.new_name.empty()) {
    status = renameProfile(selectorOf(dir_name), request.new_name);
    if (status.ok()) profile->profile_name = request.new_name;
  }
  return status;
}

bool isCurrent(const ProfileRef& profile) {
  const ProfileIdentity current = lookUpCurrentProfile();
  return current.valid && current.dir_name == profile.dir_name;
}

// The start comes last and in any case: no failure leaves the service stopped.
Status applyAroundRestart(const ModifyRequest& request, bool daemon_up, ProfileRef* profile) {
  const SignalHold hold;  // whoever asks for an end now would leave the service stopped
  Status stopped(kSuccess);
  if (daemon_up) stopped = stopService(request.system, RootCheck::kYes);
  const Daemon daemon = daemon_up && stopped.ok() ? Daemon::kStopped : Daemon::kMayRun;
  Status changed = applyChanges(request, daemon, profile);
  Status started = startService(request.system, RootCheck::kYes);
  if (!stopped.ok()) return stopped;
  return changed.ok() ? started : changed;
}

}  // namespace

Status modifyProfile(std::string_view selector, const ModifyRequest& request, ProfileRef* profile) {
  // Anybody is told that there is no such profile.
  if (Status found = resolveSelector(selector, profile); !found.ok()) return found;
  if (!isPrivileged()) return Status(kAuthRequired);
  Status checked = refuseLineBreaks(
      {request.new_name, request.helmsman_host, request.network, trimGraphic(request.invitation)},
      kContext);
  if (!checked.ok()) return checked;
  const ProfileLock lock;
  // What was found before may have been renamed or deleted while the lock was waited for.
  if (Status found = resolveSelector(selector, profile); !found.ok()) return found;
  if (!request.new_name.empty() && !isNewName(request.new_name)) {
    return Status(kInvalidArgument, "invalid profile name", kContext);
  }
  const bool daemon_up = isDaemonRunning() != TriState::kNo;
  if (request.activate && (daemon_up || isCurrent(*profile))) {
    return applyAroundRestart(request, daemon_up, profile);
  }
  return applyChanges(request, Daemon::kMayRun, profile);
}

}  // namespace tunadm
