// What the system refused, in words for the log.
#pragma once

#include <string>
#include <string_view>

#include "core/Status.h"

namespace tunadm {

// A path as a message shows it: of several slashes in a row one is left.
std::string shownPath(std::string_view path);

// "open /etc/motd: Permission denied", by errno, which stays as it is; 0 stands for what is not a
// regular file. The path is shown as above; an empty one is left out.
std::string systemCause(std::string_view operation, std::string_view path);

// The same for an entry of an open directory, under the name that the directory has now. An empty
// `name` stands for the directory itself.
std::string systemCause(std::string_view operation, int directory, std::string_view name);

// The status of a failed system call, with its cause as above.
Status systemFailure(StatusCode code, std::string_view operation, std::string_view path);
Status systemFailure(StatusCode code, std::string_view operation, int directory,
                     std::string_view name);

}  // namespace tunadm
