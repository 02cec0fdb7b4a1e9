// Any text as a program.
#include "bobprogram.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tryProgram({reinterpret_cast<const char*>(data), size});
  return 0;
}
