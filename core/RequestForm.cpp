#include "core/RequestForm.h"

#include <string>

#include "core/CommandCore.h"

namespace tunadm {

Status buildRequest(int count, const char* const* words, ScopedJson* request) {
  if (count < 3) return Status(kInvalidCommand);
  request->reset(makeObject());
  setStringMember(request->get(), "method", std::string(words[1]) + " " + words[2]);
  for (int i = 3; i < count; ++i) addWordAsMember(request->get(), words[i]);
  ScopedJson arguments(makeArray());
  for (int i = 1; i < count; ++i) appendString(arguments.get(), words[i]);
  setMember(request->get(), "command_args", arguments.take());
  return Status(kSuccess);
}

}  // namespace tunadm
