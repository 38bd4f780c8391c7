#include "service/ServiceStatus.h"

#include <poll.h>

#include <climits>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string_view>

#include "fundkit/FileUtils.h"
#include "fundkit/KeyValueFile.h"
#include "fundkit/SystemFailure.h"

namespace tunadm {
namespace {

// After this many seconds without an update of the file, the daemon is gone.
constexpr long long kUpdateIsOldAfter = 6;
// What it writes about its connections during its first seconds cannot be trusted.
constexpr long long kWarmUp = 4;

constexpr int kFurtherLooks = 3;
constexpr int kMillisecondsBetweenLooks = 33;

constexpr std::string_view kUpdateKey = "uptime.now";
constexpr std::string_view kStartKey = "uptime.started";

// The value of a key, or null.
const std::string* valueOf(const KeyValueTable& table, std::string_view key) {
  const int index = table.find(key);
  return index < 0 ? nullptr : &table.values()[static_cast<std::size_t>(index)];
}

bool hasTimes(const KeyValueTable& table) {
  return valueOf(table, kUpdateKey) != nullptr && valueOf(table, kStartKey) != nullptr;
}

// The daemon may be just rewriting the file. One that is there but cannot be read, or lacks the
// times, is looked at again for a tenth of a second before that is believed.
bool readStatusFile(const std::string& path, KeyValueTable* table) {
  bool read = readKeyValueFile(path, '=', std::nullopt, table);
  for (int look = 0; look < kFurtherLooks; ++look) {
    if (read ? hasTimes(*table) : path.empty() || isMissing(path)) break;
    poll(nullptr, 0, kMillisecondsBetweenLooks);
    read = readKeyValueFile(path, '=', std::nullopt, table);
  }
  return read;
}

// Text that is not a number reads as 0.
long long number(const std::string& text) { return std::strtoll(text.c_str(), nullptr, 10); }

// `end` - `start`, or the nearest number that fits: the file may hold any time.
long long secondsBetween(long long start, long long end) {
  long long seconds = 0;
  if (!__builtin_sub_overflow(end, start, &seconds)) return seconds;
  return end > start ? LLONG_MAX : LLONG_MIN;
}

bool isOld(const std::string& update) {
  return secondsBetween(number(update), std::time(nullptr)) >= kUpdateIsOldAfter;
}

void readConnections(const KeyValueTable& table, ServiceState* state) {
  if (valueOf(table, "hipd_state") == nullptr) return;
  if (const std::string* peers = valueOf(table, "peers.count"); peers != nullptr) {
    state->tunnel = number(*peers) < 1 ? TriState::kNo : TriState::kYes;
  }
  if (const std::string* up = valueOf(table, "helmsman.up"); up != nullptr) {
    state->helmsman = *up == "true" ? TriState::kYes : TriState::kNo;
  }
}

}  // namespace

TriState isDaemonRunning(const std::string& status_file) {
  KeyValueTable table;
  if (!readStatusFile(status_file, &table)) return TriState::kNo;
  if (!hasTimes(table)) return TriState::kUnknown;
  return isOld(*valueOf(table, kUpdateKey)) ? TriState::kNo : TriState::kYes;
}

Status readServiceState(const std::string& status_file, ServiceState* state) {
  *state = ServiceState();
  state->running = isDaemonRunning(status_file);
  if (state->running != TriState::kYes) return Status(kSuccess);

  // The daemon may have rewritten the file since: look again at all of it.
  KeyValueTable table;
  if (!readStatusFile(status_file, &table)) {
    state->running = TriState::kNo;
    return Status(kSuccess);
  }
  const std::string* const update = valueOf(table, kUpdateKey);
  const std::string* const started = valueOf(table, kStartKey);
  if (update == nullptr || started == nullptr) {
    return Status(kApplicationError)
        .because("the times have vanished from " + shownPath(status_file));
  }
  if (isOld(*update)) {
    state->running = TriState::kNo;
  } else if (secondsBetween(number(*started), number(*update)) > kWarmUp) {
    readConnections(table, state);
  }
  return Status(kSuccess);
}

}  // namespace tunadm
