// A command line as one JSON object.
#pragma once

#include "core/Status.h"
#include "json/ScopedJson.h"

namespace tunadm {

// Makes the request object for `count` command-line words, the program's name first: "method" (the
// two command words), a string for each parameter word, and "command_args" (all words except the
// program's name). Parameter words become members as addWordAsMember describes it; one called
// "method" replaces that member. With fewer than three words it fails with kInvalidCommand and
// leaves `request` as it was.
Status buildRequest(int count, const char* const* words, ScopedJson* request);

}  // namespace tunadm
