// Any bytes as an sfnt font.
#include "t2k_font.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  TryFont(data, size, kFontTypeSfnt);
  return 0;
}
