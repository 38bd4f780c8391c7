// The store's operations for callers that bring a character buffer of a fixed size.
//
// Each does what the operation of its name does and copies the resulting text into `buffer`, ended
// by a NUL byte. True only when there is a result and all of it fitted (`size` is at least its
// length plus one); otherwise `buffer`, if it has any room, holds as much as did.
#pragma once

#include <cstddef>
#include <string_view>

#include "profiles/TakenNames.h"

namespace tunadm {

[[nodiscard]] bool rootDirectory(char* buffer, std::size_t size);
[[nodiscard]] bool profileDirectory(std::string_view dir_name, char* buffer, std::size_t size);
[[nodiscard]] bool factoryDirectory(char* buffer, std::size_t size);
[[nodiscard]] bool currentMarkerPath(char* buffer, std::size_t size);
[[nodiscard]] bool currentProfileDirectory(char* buffer, std::size_t size);
[[nodiscard]] bool profileFile(std::string_view dir_name, std::string_view file_name, char* buffer,
                               std::size_t size);
[[nodiscard]] bool currentProfileFile(std::string_view file_name, char* buffer, std::size_t size);
[[nodiscard]] bool enterCurrentProfile(char* buffer, std::size_t size);
[[nodiscard]] bool uniqueName(std::string_view base, TakenNames* taken, char* buffer,
                              std::size_t size);

}  // namespace tunadm
