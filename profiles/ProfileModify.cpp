#include "profiles/ProfileModify.h"

#include "core/Privilege.h"
#include "core/ProgramStatus.h"
#include "fundkit/AsciiText.h"
#include "json/AsciiCase.h"
#include "profiles/ConfigControl.h"
#include "profiles/LineBreaks.h"
#include "profiles/PassedFailure.h"
#include "profiles/ProfileLock.h"
#include "profiles/ProfileRename.h"
#include "profiles/ProfileSelector.h"
#include "profiles/StoreView.h"
#include "profiles/SupportReset.h"
#include "service/ServiceRestart.h"

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

Status changeHelmsman(const ModifyRequest& request, const std::string& dir_name) {
  if (!request.helmsman_host.empty()) {
    const int port = isPort(request.helmsman_port) ? request.helmsman_port : kHelmsmanPort;
    return replaceHelmsmanAddress(dir_name, request.helmsman_host, port);
  }
  if (!isPort(request.helmsman_port)) return Status(kSuccess);
  std::string host;
  std::string old_port;
  Status read = requireHelmsmanAddress(dir_name, &host, &old_port);
  if (!read.ok()) return read;
  return replaceHelmsmanAddress(dir_name, host, request.helmsman_port);
}

Status changeLogLevel(const std::string& level, const std::string& dir_name) {
  if (level.empty()) return Status(kSuccess);
  for (const LevelText& row : kLevelTexts) {
    if (!equalIgnoringCase(level, row.text)) continue;
    Status written = writeLogLevel(dir_name, row.written.empty() ? level : row.written);
    if (!written.ok()) written.setCode(kApplicationError);
    return written;
  }
  return Status(kApplicationError, "invalid log_level value", "doModifyProfile");
}

// A daemon that has just been stopped leaves a status file that looks alive for some seconds, so it
// is not asked for then.
enum class Daemon { kMayRun, kStopped };

Status clearStateOf(const ProfileRef& profile, Daemon daemon) {
  if (daemon == Daemon::kMayRun) {
    StoreView store;
    return clearState(profile, &store);
  }
  removeStateFiles(profile);
  return Status(kSuccess);
}

// Deliberate: the status is that of the last step that sets one.
Status applyChanges(const ModifyRequest& request, Daemon daemon, ProfileRef* profile) {
  const std::string& dir_name = profile->dir_name;
  if (Status changed = changeHelmsman(request, dir_name); !changed.ok()) return changed;
  if (Status changed = changeLogLevel(request.log_level, dir_name); !changed.ok()) return changed;
  Status status = clearStateOf(*profile, daemon);
  // A file that cannot be rewritten is left as it was, and only the log tells.
  if (!request.network.empty()) {
    logPassedFailure("network not changed", writeMasterInterface(dir_name, request.network));
    status = Status(kSuccess);
  }
  logPassedFailure("invitation not changed", writeInvitationCode(dir_name, request.invitation));
  if (!request.new_name.empty()) {
    status = writeFriendlyName(*profile, request.new_name);
    if (status.ok()) profile->profile_name = request.new_name;
  }
  return status;
}

// A start is due in any case: no failure leaves the service stopped.
Status applyAroundRestart(const ModifyRequest& request, bool daemon_up, ServiceRestart* service,
                          ProfileRef* profile) {
  Status stopped(kSuccess);
  if (daemon_up) stopped = service->stop();
  if (daemon_up && !service->startIsDue()) return stopped;
  const Daemon daemon = daemon_up && stopped.ok() ? Daemon::kStopped : Daemon::kMayRun;
  Status changed = applyChanges(request, daemon, profile);
  service->requestStart();
  return stopped.ok() ? changed : stopped;
}

Status checkRequest(const ModifyRequest& request, StoreView* store) {
  Status checked = refuseLineBreaks(
      {request.new_name, request.helmsman_host, request.network, trimGraphic(request.invitation)},
      kContext);
  if (!checked.ok()) return checked;
  return request.new_name.empty() ? checked : checkNewName(request.new_name, kContext, store);
}

Status modify(std::string_view selector, const ModifyRequest& request, ServiceRestart* service,
              ProfileRef* profile) {
  const ProfileLock lock;
  StoreView store;
  if (Status found = resolveSelector(selector, &store, profile); !found.ok()) return found;
  if (Status checked = checkRequest(request, &store); !checked.ok()) return checked;
  const bool daemon_up = request.activate && store.daemon() != TriState::kNo;
  if (daemon_up || (request.activate && store.isCurrent(*profile))) {
    return applyAroundRestart(request, daemon_up, service, profile);
  }
  return applyChanges(request, Daemon::kMayRun, profile);
}

// Every caller is told when there certainly is no such profile. An ordinary user cannot read the
// friendly names, which leaves that open.
Status refuseOrdinaryUser(std::string_view selector) {
  StoreView store;
  ProfileRef profile;
  Status found = resolveSelector(selector, &store, &profile);
  return found.code() == kProfileNotFound ? found : Status(kAuthRequired);
}

}  // namespace

Status modifyProfile(std::string_view selector, const ModifyRequest& request, ProfileRef* profile) {
  if (!isPrivileged()) return refuseOrdinaryUser(selector);
  ServiceRestart service(request.system, RootCheck::kYes);
  return service.finish(modify(selector, request, &service, profile));
}

}  // namespace tunadm
