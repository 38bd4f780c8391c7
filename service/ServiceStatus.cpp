#include "service/ServiceStatus.h"

#include <climits>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string_view>

#include "fundkit/KeyValueFile.h"

namespace tunadm {
namespace {

// After this many seconds without an update of the file, the daemon is gone.
constexpr long kUpdateIsOldAfter = 6;
// What it writes about its connections during its first seconds cannot be trusted.
constexpr long kWarmUp = 4;

bool readStatusFile(const std::string& path, KeyValueTable* table) {
  return readKeyValueFile(path, '=', std::nullopt, table);
}

// The value of a key, or null.
const std::string* valueOf(const KeyValueTable& table, std::string_view key) {
  const int index = table.find(key);
  return index < 0 ? nullptr : &table.values()[static_cast<std::size_t>(index)];
}

// Text that is not a number reads as 0.
long number(const std::string& text) { return std::strtol(text.c_str(), nullptr, 10); }

// `end` - `start`, or the nearest number that fits: the file may hold any time.
long secondsBetween(long start, long end) {
  long seconds = 0;
  if (!__builtin_sub_overflow(end, start, &seconds)) return seconds;
  return end > start ? LONG_MAX : LONG_MIN;
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
  const std::string* const update = valueOf(table, "uptime.now");
  if (update == nullptr || valueOf(table, "uptime.started") == nullptr) return TriState::kUnknown;
  return isOld(*update) ? TriState::kNo : TriState::kYes;
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
  const std::string* const update = valueOf(table, "uptime.now");
  const std::string* const started = valueOf(table, "uptime.started");
  if (update == nullptr || started == nullptr) return Status(kApplicationError);
  if (isOld(*update)) {
    state->running = TriState::kNo;
  } else if (secondsBetween(number(*started), number(*update)) > kWarmUp) {
    readConnections(table, state);
  }
  return Status(kSuccess);
}

}  // namespace tunadm
