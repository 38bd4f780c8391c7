#include "fundkit/ThreadUtils.h"

#include <pthread.h>

namespace tunadm {

bool setThreadName(const char* name) {
  const bool anonymous = name == nullptr || *name == '\0';
  return pthread_setname_np(pthread_self(), anonymous ? "<anonymous thread>" : name) == 0;
}

std::string threadName() {
  char name[300];
  if (pthread_getname_np(pthread_self(), name, sizeof(name)) != 0) {
    return "<error in pthread_getname>";
  }
  return name;
}

}  // namespace tunadm
