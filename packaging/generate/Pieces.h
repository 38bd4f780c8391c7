// The pieces that the templates of the manual page and the completions ask for.
#pragma once

#include <string>

namespace tunadm {

// In mdoc, as items of a list: every command that has a help page, with its parameters and result
// fields; every status code, with its text.
std::string manualCommands();
std::string manualStatuses();

// In mdoc, a sentence's part: the keys of the lines that show a profile's details.
std::string manualDetailKeys();

// A line "first|second|target|parameters|summary" for each way to call a command. `target` says
// what the word behind the other two is: "profile" an existing one or a word that follows in the
// field, "new" one to be named, empty no word. The parameters have blanks between them, each is
// "name=value,value" or a bare word; kInterfaceValue may stand for a value. No line has a quote or
// a backslash.
std::string completionTable();

// The output options, with blanks between them.
std::string completionOptions();

}  // namespace tunadm
