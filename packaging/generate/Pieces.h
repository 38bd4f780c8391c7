// The pieces that the templates of the manual page and the completions ask for.
#pragma once

#include <string>

namespace tunadm {

// In mdoc, as items of a list: every command that has a help page, with its parameters and result
// fields; every status that a command returns, with its text and its cause.
std::string manualCommands();
std::string manualStatuses();

// In mdoc, part of a sentence: the keys of the lines that show a profile's details.
std::string manualDetailKeys();

// A line "first|second|target|parameters|summary" for each way to name a command. `target` says
// what the word after the first two is: "profile" for an existing profile or one of the words that
// follow in the field, "new" for a new name; empty if there is no such word. The parameters are
// separated by blanks; each is "name=value,value" or a bare word. kInterfaceValue may be one of the
// values. No line has a quote or a backslash.
std::string completionTable();

// The output options and the parameter that asks for JSON, separated by blanks.
std::string completionOptions();

}  // namespace tunadm
