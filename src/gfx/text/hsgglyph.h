// What a strike knows of one character.
#pragma once

#include "gfx/foundation/hsfixed.h"

struct hsGGlyph {
  static constexpr uint16_t kEmpty = 0xFFFF;
  static constexpr uint16_t kFilledByCode = 0xFEED;  // the scaler may put the font's own index in its place

  uint16_t fCharCode = kEmpty;
  uint16_t fGlyphID = kEmpty;
  uint16_t fWidth = 0, fHeight = 0;  // pixels of the image; width 0: nothing to draw
  uint32_t fRowBytes = 0;
  hsFixed fLeft = 0, fTop = 0;  // the image's corner from the pen
  uint8_t* fImage = nullptr;    // null until asked for; the strike's
  hsFixed fAdvanceX = 0, fAdvanceY = 0;
};
