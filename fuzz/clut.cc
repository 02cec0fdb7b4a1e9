// Colour tables, by way of a picture that names one.
#include "picture.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static constexpr uint8_t kPicture[] = {0, 0, 0, 2, 0, 1, 0, 1, 0, 0, 7, 'p', '.', 'c', 'l', 'u', 't', 0, 0, 9, 237};
  freshEngine();
  writeBytes("p.clut", data, size);
  drawPictureFile("q.kpx", kPicture, sizeof kPicture);
  return 0;
}
