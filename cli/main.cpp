#include "cli/Program.h"

int main(int argc, char** argv) { return tunadm::runProgram(argc, argv); }
