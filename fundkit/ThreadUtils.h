// The names that threads show in logs, lock warnings and process lists.
#pragma once

#include <string>

namespace tunadm {

// Names the calling thread; "<anonymous thread>" if `name` is null or empty. False when the system
// refuses the name, as it does every one of more than 15 bytes (so "<anonymous thread>" too): the
// thread then keeps its name.
[[nodiscard]] bool setThreadName(const char* name);

// The name of the calling thread. A new thread has the name of the one that started it, the first
// thread that of the program file. "<error in pthread_getname>" when it cannot be read.
std::string threadName();

}  // namespace tunadm
