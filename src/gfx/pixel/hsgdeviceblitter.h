// The base of all blitters that write pixels.
#pragma once

#include "gfx/pixel/hsgbitmap.h"
#include "gfx/vector/hsgblitter.h"

class hsGDeviceBlitter : public hsGBlitter {
 public:
  explicit hsGDeviceBlitter(const hsGBitmap& device) : fDevice(device) {}

 protected:
  template <class Pixel>
  Pixel* Pixels(int32_t y, int32_t x) const {
    return fDevice.Row<Pixel>(y) + x;
  }

  hsGBitmap fDevice;  // the target
};

// Whether a paint is one solid colour under plain coverage.
bool hsIsPlainPaint(const hsGAttribute& attr);
