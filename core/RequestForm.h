// A command line as one JSON object.
#pragma once

#include "core/Status.h"
#include "json/ScopedJson.h"

namespace tunadm {

// Makes the request object of `count` command-line words, the program's name first: "method" (the
// two command words), a string for each parameter word, and "command_args" (all words but the
// program's name). A word without an equals sign becomes a member that holds kWordPresent; one
// without a name is no member. A parameter called "method" takes that member's place. Fails
// with kInvalidCommand for fewer than three words; `request` is left as it was then.
Status buildRequest(int count, const char* const* words, ScopedJson* request);

}  // namespace tunadm
