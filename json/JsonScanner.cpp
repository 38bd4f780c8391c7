#include "json/JsonScanner.h"

#include "json/TokenScanner.h"

namespace tunadm {

bool scanJson(const char* text, std::ptrdiff_t length, TokenReceiver* receiver) {
  return scanTokens(text, length, receiver);
}

}  // namespace tunadm
