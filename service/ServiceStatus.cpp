#include "service/ServiceStatus.h"

#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

#include "fundkit/KeyValueFile.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

// The daemon updates the file every second; after this many without an update it is gone.
constexpr long kUpdateIsOldAfter = 6;

bool readStatusFile(KeyValueTable* table) {
  std::string path;
  return currentProfileFile(kStatusFile, &path) && readKeyValueFile(path, '=', std::nullopt, table);
}

long numberAt(const KeyValueTable& table, int index) {
  return std::strtol(table.values()[static_cast<std::size_t>(index)].c_str(), nullptr, 10);
}

}  // namespace

TriState isDaemonRunning() {
  KeyValueTable table;
  if (!readStatusFile(&table)) return TriState::kNo;
  const int now = table.find("uptime.now");
  const int started = table.find("uptime.started");
  if (now < 0 || started < 0) return TriState::kUnknown;
  long age = 0;
  // A time that no clock shows must not overflow the difference.
  if (__builtin_sub_overflow(std::time(nullptr), numberAt(table, now), &age)) return TriState::kNo;
  return age < kUpdateIsOldAfter ? TriState::kYes : TriState::kNo;
}

TriState isCurrentProfile(const ProfileIdentity& profile) {
  const ProfileIdentity current = lookUpCurrentProfile();
  if (!current.valid) return TriState::kUnknown;
  return profile.dir_path == current.dir_path ? TriState::kYes : TriState::kNo;
}

}  // namespace tunadm
