#include "fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  tunadm::checkInput({data, data + size});
  return 0;
}
