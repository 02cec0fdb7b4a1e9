// Programs that the compiler accepts, made by the grammar: what changes to a text seldom get to.
#include "bobprogram.h"
#include "choices.h"
#include "kit/language/randombob.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Choices choices(data, size);
  RandomBob random([&]() -> uint32_t { return choices.isEmpty() ? 1 : choices.byte(); });
  tryProgram(random.program());
  return 0;
}
