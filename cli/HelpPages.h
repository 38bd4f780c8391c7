// The pages of the help system, made from the catalogue of commands.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace tunadm {

using HelpLines = std::vector<std::string>;

// The page of `usage`.
HelpLines usagePage();

// The page that the words of a `help` command line lead to, the first of them being "help": a
// command's, a category's, or the general one.
HelpLines helpPage(std::span<const std::string> words);

// The page of `reference`: every command with its parameters and result fields.
HelpLines referencePage();

// Writes the reference page and what explains the standard fields to standard output.
void printReference();

}  // namespace tunadm
