// The store's operations for callers that bring a character buffer of a fixed size.
//
// Each does what the operation of its name does and copies the resulting text into `buffer`, ended
// by a NUL byte. True only when there is a result and all of it fitted (`size` is at least its
// length plus one); otherwise `buffer`, if it has any room, holds as much as did.
#pragma once

#include <cstddef>
#include <string_view>

#include "profiles/ProfileList.h"

namespace tunadm {

bool rootDirectory(char* buffer, std::size_t size);
bool profileDirectory(std::string_view dir_name, char* buffer, std::size_t size);
bool factoryDirectory(char* buffer, std::size_t size);
bool currentMarkerPath(char* buffer, std::size_t size);
bool currentProfileDirectory(char* buffer, std::size_t size);
bool profileFile(std::string_view dir_name, std::string_view file_name, char* buffer,
                 std::size_t size);
bool currentProfileFile(std::string_view file_name, char* buffer, std::size_t size);
bool enterCurrentProfile(char* buffer, std::size_t size);
bool uniqueName(std::string_view base, TakenNames* taken, char* buffer, std::size_t size);

}  // namespace tunadm
