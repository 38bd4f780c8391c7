// One run of the program.
#pragma once

namespace tunadm {

// Finds, binds and runs the command that the arguments name and prints its result on standard
// output. Returns the exit status: 1 when no command was found or its arguments did not bind, else
// 0, whatever the command's own status; callers read that from the output.
int runProgram(int argc, char** argv);

}  // namespace tunadm
