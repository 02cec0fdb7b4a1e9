// GIF pictures.
#include "picture.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  drawPictureFile("p.gif", data, size);
  return 0;
}
