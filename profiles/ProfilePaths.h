// Where things lie in the profile store. Nothing here touches the disk.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace tunadm {

// Deliberate: the doubled slash is part of the paths, and shows where they are printed.
inline constexpr std::string_view kInstallRoot = "/opt/vrx/";
inline constexpr std::string_view kProfilesRoot = "/opt/vrx//profiles/";

// Entries of the profiles directory that are not profiles of the user.
inline constexpr std::string_view kCurrentMarker = ".current";
inline constexpr std::string_view kFactoryName = ".factory";

// The friendly name of a profile that was never given one.
inline constexpr std::string_view kDefaultName = "profile";

// Files of a profile.
inline constexpr std::string_view kNameFile = "profile_name";
inline constexpr std::string_view kHipConf = "hip.conf";
inline constexpr std::string_view kEndboxConf = "endbox.conf";
inline constexpr std::string_view kMapConfig = "mapconfig.static";
inline constexpr std::string_view kDeviceId = "device_id";
inline constexpr std::string_view kStatusFile = "hipvars.txt";
inline constexpr std::string_view kLogFile = "hip.log";
inline constexpr std::string_view kRevisionFile = "firmware_revision";

// The mode of a file with a friendly name, and of a new profile's Helmsman address.
inline constexpr mode_t kPrivateFileMode = 0640;

// True for a name that is one path component: not empty, no "/", neither "." nor "..".
[[nodiscard]] bool isDirName(std::string_view name);

// Paths by plain joining; empty when one of the names is. File operations refuse an empty path.
std::string profileDirectory(std::string_view dir_name);
std::string profileFile(std::string_view dir_name, std::string_view file_name);
std::string factoryDirectory();
std::string currentMarkerPath();

// The same for callers that want to be told: false, with `path` cleared, when a name is empty.
[[nodiscard]] bool rootDirectory(std::string* path);
[[nodiscard]] bool profileDirectory(std::string_view dir_name, std::string* path);
[[nodiscard]] bool factoryDirectory(std::string* path);
[[nodiscard]] bool currentMarkerPath(std::string* path);
[[nodiscard]] bool profileFile(std::string_view dir_name, std::string_view file_name,
                               std::string* path);

}  // namespace tunadm
