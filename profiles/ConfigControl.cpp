#include "profiles/ConfigControl.h"

#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fundkit/AsciiText.h"
#include "fundkit/BasicLog.h"
#include "fundkit/FileUtils.h"
#include "fundkit/KeyValueFile.h"
#include "fundkit/SystemFailure.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

// A code that stands for "this profile has none".
constexpr std::string_view kNoCode = "###";
constexpr std::string_view kScheme = "https://";

// The text of a file of the profile; empty when it cannot be read.
std::string readText(std::string_view dir_name, std::string_view file_name) {
  std::string text;
  (void)readFile(profileFile(dir_name, file_name), &text);  // leaves the text empty then
  return text;
}

bool namesProfile(std::string_view dir_name) {
  return !dir_name.empty() && dir_name != kCurrentMarker;
}

Status writeSettings(std::string_view dir_name, std::string_view file_name,
                     std::initializer_list<Setting> settings) {
  return rewriteFile(profileFile(dir_name, file_name),
                     [&settings](std::string_view text) { return withSettings(text, settings); });
}

// Deliberate: the address is compared as it is stored, in network byte order, so a little-endian
// host refuses a.b.254.169 and takes 169.254.c.d. A big-endian host does the opposite.
bool isLinkLocal(const sockaddr* address) {
  sockaddr_in ipv4;
  std::memcpy(&ipv4, address, sizeof(ipv4));
  const std::uint32_t stored = ipv4.sin_addr.s_addr;
  return (stored & 0xFFFF0000u) == 0xA9FE0000u;
}

}  // namespace

bool readDeviceId(std::string_view dir_name, std::string* device_id) {
  device_id->clear();
  if (!namesProfile(dir_name)) return false;
  *device_id = firstNonEmptyLine(readText(dir_name, kDeviceId));
  return !device_id->empty();
}

bool readHelmsmanAddress(std::string_view dir_name, std::string* host, std::string* port) {
  host->clear();
  port->clear();
  return namesProfile(dir_name) && parseHelmsmanAddress(readText(dir_name, kMapConfig), host, port);
}

Status requireHelmsmanAddress(std::string_view dir_name, std::string* host, std::string* port) {
  if (readHelmsmanAddress(dir_name, host, port)) return Status(kSuccess);
  const std::string path = profileFile(dir_name, kMapConfig);
  std::string text;
  Status read = readFile(path, &text);
  const std::string cause = read.ok() ? "no Helmsman address in " + shownPath(path) : read.cause();
  return Status(kApplicationError).because(cause);
}

OverlaySettings readOverlaySettings(std::string_view dir_name) {
  return parseOverlaySettings(readText(dir_name, kEndboxConf));
}

bool readMasterInterface(std::string_view dir_name, std::string* name) {
  return parseMasterInterface(readText(dir_name, kHipConf), name);
}

bool readLogLevel(std::string_view dir_name, std::string* level) {
  level->clear();
  KeyValueTable table;
  if (!readKeyValueFile(profileFile(dir_name, kEndboxConf), '=', '#', &table)) return false;
  if (const int index = table.find("log_level"); index >= 0)
    *level = table.values()[static_cast<std::size_t>(index)];
  return !level->empty();
}

Status writeMasterInterface(std::string_view dir_name, std::string_view name) {
  if (name.empty()) return Status(kInvalidArgument);
  return writeSettings(dir_name, kHipConf, {{kMasterInterfaceKey, name}});
}

Status writeInvitationCode(std::string_view dir_name, std::string_view code) {
  const std::string_view trimmed = trimGraphic(code);
  if (trimmed.empty()) return Status(kSuccess);
  if (trimmed == kNoCode) return removeLinesWithPrefix(dir_name, kEndboxConf, kActivationCodeKey);
  return writeSettings(dir_name, kEndboxConf, {{kActivationCodeKey, trimmed}});
}

Status writeLogLevel(std::string_view dir_name, std::string_view level) {
  const std::string_view value = trimGraphic(level);
  if (trimGraphic(dir_name).empty() || value.empty()) return Status(kSuccess);
  return writeSettings(dir_name, kEndboxConf,
                       {{kLogLevelKey, value}, {kOpenhipLogLevelKey, value}});
}

Status writeNewHelmsmanAddress(std::string_view dir_name, std::string_view host, int port) {
  std::string line(kMapUriKey);
  if (!host.empty()) line.append(kScheme).append(host);
  if (!host.empty() && isPort(port)) line.append(":").append(std::to_string(port));
  return replaceFile(profileFile(dir_name, kMapConfig), line + "\n", kPrivateFileMode);
}

Status replaceHelmsmanAddress(std::string_view dir_name, std::string_view host, int port) {
  std::string line(kMapUriKey);
  line.append(kScheme).append(host).append(":").append(std::to_string(port)).append("\n");
  Status written = replaceFile(profileFile(dir_name, kMapConfig), line);
  if (written.code() == kOpenFailed) written.setCode(kApplicationError);
  return written;
}

Status removeLinesWithPrefix(std::string_view dir_name, std::string_view file_name,
                             std::string_view prefix) {
  return rewriteFile(profileFile(dir_name, file_name),
                     [prefix](std::string_view text) { return withoutLines(text, prefix); });
}

bool read_networks(std::vector<std::string>* names) {
  names->clear();
  ifaddrs* table = nullptr;
  const int result = getifaddrs(&table);
  if (result != 0 || table == nullptr) {
    TUNADM_LOG(programLogger(), kLogError, "ConfigControl.cpp", "read_networks",
               "could not getifaddrs")
        .detail("status = %d", result);
    return false;
  }
  for (const ifaddrs* entry = table; entry != nullptr; entry = entry->ifa_next) {
    if (isUnderlayCandidate(*entry)) names->emplace_back(entry->ifa_name);
  }
  freeifaddrs(table);
  return true;
}

bool isUnderlayCandidate(const ifaddrs& entry) {
  if (entry.ifa_addr == nullptr || entry.ifa_addr->sa_family != AF_INET) return false;
  if (std::string_view(entry.ifa_name).starts_with("tap")) return false;
  if ((entry.ifa_flags & IFF_LOOPBACK) != 0) return false;
  return !isLinkLocal(entry.ifa_addr);
}

}  // namespace tunadm
