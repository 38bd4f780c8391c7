// The syntax of a profile's configuration files, as functions from text to text or values.
//
// All files hold one setting per line, a key directly followed by its value. Lines are seen through
// a buffer of 8,000 bytes, so a longer one is several lines. For reading, a line is trimmed of
// everything that is not printable at both ends; for rewriting, it is taken as it is.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tunadm {

inline constexpr std::string_view kMasterInterfaceKey = "master_interface=";
inline constexpr std::string_view kActivationCodeKey = "activation_code=";
inline constexpr std::string_view kLogLevelKey = "log_level=";
inline constexpr std::string_view kOpenhipLogLevelKey = "openhip.log_level=";
inline constexpr std::string_view kMapUriKey = "map_uri=";

// The management server listens on this port unless an address says otherwise.
inline constexpr int kHelmsmanPort = 8096;

// True for a number that a port can have, 1 to 65535.
[[nodiscard]] constexpr bool isPort(int number) { return number >= 1 && number <= 65535; }

struct OverlaySettings {
  std::string device_ip;
  std::string device_mask;
  std::string invitation;
};

// The first line that is not empty, of `device_id`; empty when there is none.
std::string firstNonEmptyLine(std::string_view text);

// The address in the first "map_uri=" line of `mapconfig.static`; false (and empty texts) when
// there is none. Scheme and path are dropped; the port is text, the default port when none is
// given. Bytes outside ASCII become "?".
[[nodiscard]] bool parseHelmsmanAddress(std::string_view text, std::string* host,
                                        std::string* port);

// All of `endbox.conf`; a later line overrides an earlier one, what is missing is empty. Bytes
// outside ASCII become "?".
OverlaySettings parseOverlaySettings(std::string_view text);

// The value of the first "master_interface=" line of `hip.conf`; false when there is none.
[[nodiscard]] bool parseMasterInterface(std::string_view text, std::string* name);

// A setting to write: every line that begins with `key` becomes the key and the value.
struct Setting {
  std::string_view key;  // with its "="
  std::string_view value;
};

// `text` with each setting in the place of its old lines, or appended, in the order given, if it
// had none. All other lines are kept byte for byte; only a last line without its newline is given
// one before a line is appended.
std::string withSettings(std::string_view text, std::span<const Setting> settings);

// `text` without the lines that begin with `prefix`.
std::string withoutLines(std::string_view text, std::string_view prefix);

}  // namespace tunadm
