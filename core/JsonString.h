// The writing of JSON strings for other programs.
#pragma once

#include <string>
#include <string_view>

namespace tunadm {

// Appends `text` as a JSON string (RFC 8259) in valid UTF-8, with its quotes. A strict parser reads
// it back as it is, but where `text` is not valid UTF-8: there, each maximal subpart of an
// ill-formed sequence becomes U+FFFD, as the Unicode standard recommends (chapter 3.9).
void appendJsonString(std::string_view text, std::string* json);

}  // namespace tunadm
