#include "profiles/ConfigControl.h"

#include <ifaddrs.h>

#include <cstddef>
#include <span>

#include "fundkit/AsciiText.h"
#include "fundkit/BasicLog.h"
#include "fundkit/FileUtils.h"
#include "fundkit/KeyValueFile.h"
#include "fundkit/WorkFile.h"
#include "profiles/NetworkInterfaces.h"
#include "profiles/ProfilePaths.h"

namespace tunadm {
namespace {

// A code that stands for "this profile has none".
constexpr std::string_view kNoCode = "###";
constexpr std::string_view kScheme = "https://";

// The text of a file of the profile; empty when it cannot be read.
std::string readText(std::string_view dir_name, std::string_view file_name) {
  std::string path;
  std::string text;
  if (!profileFile(dir_name, file_name, &path)) return text;
  (void)readFile(path, &text);  // leaves the text empty, which is the answer then
  return text;
}

bool namesProfile(std::string_view dir_name) {
  return !dir_name.empty() && dir_name != kCurrentMarker;
}

// The text that is to be rewritten. Only a missing file counts as empty: rewriting one that cannot
// be read would lose its lines.
Status readForRewrite(const std::string& path, std::string* text) {
  if (isMissing(path)) return Status(kSuccess);
  return readFile(path, text);
}

Status replaceFile(const std::string& path, std::string_view text) {
  WorkFile work(path);
  work.put(text);
  return work.commit();
}

Status writeSettings(std::string_view dir_name, std::string_view file_name,
                     std::span<const Setting> settings) {
  std::string path;
  std::string text;
  if (!profileFile(dir_name, file_name, &path)) return Status(kInvalidArgument);
  if (Status read = readForRewrite(path, &text); !read.ok()) return read;
  return replaceFile(path, withSettings(text, settings));
}

}  // namespace

Status refuseLineBreaks(std::initializer_list<std::string_view> values, std::string_view context) {
  for (const std::string_view value : values) {
    if (value.find('\n') != std::string_view::npos) {
      return Status(kInvalidArgument, "value holds a line break", context);
    }
  }
  return Status(kSuccess);
}

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

OverlaySettings readOverlaySettings(std::string_view dir_name) {
  return parseOverlaySettings(readText(dir_name, kEndboxConf));
}

bool readMasterInterface(std::string_view dir_name, std::string* name) {
  return parseMasterInterface(readText(dir_name, kHipConf), name);
}

bool readLogLevel(std::string_view dir_name, std::string* level) {
  level->clear();
  std::string path;
  KeyValueTable table;
  if (!profileFile(dir_name, kEndboxConf, &path) || !readKeyValueFile(path, '=', '#', &table)) {
    return false;
  }
  if (const int index = table.find("log_level"); index >= 0)
    *level = table.values()[static_cast<std::size_t>(index)];
  return !level->empty();
}

Status writeMasterInterface(std::string_view dir_name, std::string_view name) {
  if (name.empty()) return Status(kInvalidArgument);
  const Setting settings[] = {{kMasterInterfaceKey, name}};
  return writeSettings(dir_name, kHipConf, settings);
}

Status writeInvitationCode(std::string_view dir_name, std::string_view code) {
  const std::string_view trimmed = trimGraphic(code);
  if (trimmed.empty()) return Status(kSuccess);
  if (trimmed == kNoCode) return removeLinesWithPrefix(dir_name, kEndboxConf, kActivationCodeKey);
  const Setting settings[] = {{kActivationCodeKey, trimmed}};
  return writeSettings(dir_name, kEndboxConf, settings);
}

Status writeLogLevel(std::string_view dir_name, std::string_view level) {
  const std::string_view dir = trimGraphic(dir_name);
  const std::string_view value = trimGraphic(level);
  if (dir.empty() || value.empty()) return Status(kSuccess);
  const Setting settings[] = {{kLogLevelKey, value}, {kOpenhipLogLevelKey, value}};
  return writeSettings(dir, kEndboxConf, settings);
}

Status setHelmsmanAddress(std::string_view dir_name, std::string_view host, int port) {
  std::string path;
  if (!profileFile(dir_name, kMapConfig, &path)) return Status(kInvalidArgument);
  std::string line(kMapUriKey);
  if (!host.empty()) line.append(kScheme).append(host);
  if (!host.empty() && port >= 1 && port <= 65535) line.append(":").append(std::to_string(port));
  return writeLines(path, {line});
}

Status changeHelmsmanAddress(std::string_view host, int port, std::string_view dir_name) {
  std::string path;
  if (!profileFile(dir_name, kMapConfig, &path)) return Status(kInvalidArgument);
  std::string line(kMapUriKey);
  line.append(kScheme).append(host).append(":").append(std::to_string(port)).append("\n");
  Status written = overwriteFile(path, line);
  if (written.code() == kOpenFailed) written.setCode(kApplicationError);
  return written;
}

Status removeLinesWithPrefix(std::string_view dir_name, std::string_view file_name,
                             std::string_view prefix) {
  std::string path;
  std::string text;
  if (!profileFile(dir_name, file_name, &path)) return Status(kInvalidArgument);
  if (Status read = readForRewrite(path, &text); !read.ok()) return read;
  return replaceFile(path, withoutLines(text, prefix));
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

}  // namespace tunadm
