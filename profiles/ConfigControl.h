// A profile's configuration files, of which commands report values and rewrite single settings, and
// the host's interfaces that such a setting can name.
//
// The files are the daemon's. Rewriting keeps every line that is not owned, byte for byte, and
// replaces the file as a whole (work file and move), so that it is the old or the new one at every
// instant. Rewriting creates a missing file; one that cannot be read is left alone. Callers hold
// the profile lock while they write.
#pragma once

#include <ifaddrs.h>

#include <string>
#include <string_view>
#include <vector>

#include "core/Status.h"
#include "profiles/ConfigText.h"

namespace tunadm {

// Readers: true when the value was found, else false with empty texts. A file that cannot be read
// reads as empty.
[[nodiscard]] bool readDeviceId(std::string_view dir_name, std::string* device_id);
[[nodiscard]] bool readHelmsmanAddress(std::string_view dir_name, std::string* host,
                                       std::string* port);
// The same for a change that needs the old address: kApplicationError when it was not found.
Status requireHelmsmanAddress(std::string_view dir_name, std::string* host, std::string* port);
OverlaySettings readOverlaySettings(std::string_view dir_name);
[[nodiscard]] bool readMasterInterface(std::string_view dir_name, std::string* name);
[[nodiscard]] bool readLogLevel(std::string_view dir_name, std::string* level);

// Writers. Where there is something to write they report kInvalidArgument for an empty `dir_name`,
// and of a rewrite kOpenFailed or kReadFailed when the file cannot be read, kOpenFailed when its
// work file cannot be made, kWriteFailed when that cannot be written and kRenameFailed when it
// cannot be moved; the file is then as it was.

// An empty `name` is refused with kInvalidArgument.
Status writeMasterInterface(std::string_view dir_name, std::string_view name);

// Trims `code`. An empty one changes nothing; "###" removes the code from the profile.
Status writeInvitationCode(std::string_view dir_name, std::string_view code);

// Trims `level`. Nothing is done when it is empty, or `dir_name` would be if it were trimmed; that
// is a success, too.
Status writeLogLevel(std::string_view dir_name, std::string_view level);

// Writes the `mapconfig.static` of a new profile, with the address as its only line: without a port
// when isPort refuses `port`, with an empty value when `host` is empty. Mode 0640.
Status writeNewHelmsmanAddress(std::string_view dir_name, std::string_view host, int port);

// Makes "host:port" the only line of `mapconfig.static`; the file keeps its mode. Fails with
// kApplicationError when it cannot be opened, kWriteFailed when it cannot be written, kRenameFailed
// when it cannot be replaced.
Status replaceHelmsmanAddress(std::string_view dir_name, std::string_view host, int port);

// Removes the lines of `file_name` that begin with `prefix`.
Status removeLinesWithPrefix(std::string_view dir_name, std::string_view file_name,
                             std::string_view prefix);

// Fills `names` with the interfaces of this host that can be an underlay: those with an IPv4
// address, once per address, in the host's order; no loopback and no tap devices. False, with an
// error logged, when the interface table cannot be read (getifaddrs(3)).
[[nodiscard]] bool read_networks(std::vector<std::string>* names);

// True for an entry of the interface table that can be an underlay.
[[nodiscard]] bool isUnderlayCandidate(const ifaddrs& entry);

}  // namespace tunadm
