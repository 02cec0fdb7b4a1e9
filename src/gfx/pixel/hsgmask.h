// A coverage image with a place on the device.
#pragma once

#include <cstdint>
#include <memory>

#include "gfx/foundation/hsrect.h"

enum hsMaskType : uint16_t {
  kMask_Bit = 0,    // one bit a pixel, the highest first
  kMask_Alpha = 1,  // one coverage byte a pixel
  kMask_3D = 2,     // three planes of bytes: coverage, multiply, add
  kMask_LCD = 3,    // three coverage bytes a pixel, 0 to 31; each row begins with two bytes of padding
};

struct hsGMask {
  // Pixels to a row, and a multiple of eight: what row bytes of 16 bits hold of one byte each.
  static constexpr int32_t kMaxWidth = 0xFFF8;

  // Bytes of a row of that many pixels, up to kMaxWidth of one byte each.
  static uint16_t RowBytes(uint16_t maskType, int32_t width);

  size_t PlaneSize() const { return size_t(fBounds.Height()) * fRowBytes; }  // bytes
  size_t ImageSize() const { return fMaskType == kMask_3D ? 3 * PlaneSize() : PlaneSize(); }

  // An image of zeros for the bounds, type and row bytes as they are; "allocating over existing image".
  void AllocImage();

  const uint8_t* Row(int32_t y) const { return fImage + size_t(y - fBounds.fTop) * fRowBytes; }

  hsIntRect fBounds{0, 0, 0, 0};  // device pixels
  uint8_t* fImage = nullptr;
  uint16_t fRowBytes = 0;
  uint16_t fMaskType = kMask_Bit;
  std::unique_ptr<uint8_t[]> fOwned{};  // the image's memory, unless the mask is a view of somebody's
};
