// The scan converter: a scaled outline to a monochrome or grey bitmap.
//
// It fills by the crossings of the outline with the grid's centre lines in both directions (crossings.h). The same
// spans give monochrome bits with dropout control and grey coverage. Grey runs from 0 to 120 and a little beyond, not
// to 255.
#pragma once

#include "t2k/glyph.h"

inline constexpr int kMaxGreyLevel = 5;
inline constexpr int kMaxBitmapSide = 2048;  // pixels; a larger glyph has bounds but no bitmap
inline constexpr int kGreyFull = 120;

struct tsiScanConv {
  int left, bottom, right, top;  // pixels, Y up, right and top exclusive
  int32_t xmin, ymax;            // of the crossings, 26.6
  int rowBytes;                  // grey: the width; mono: bits packed from the top one, (width + 7) / 8
  uint8_t* baseAddr;             // rows from the top down; null if there is none

  int Width() const { return right - left; }
  int Height() const { return top - bottom; }
};

struct ScanConvOptions {
  int greyLevel = 0;  // 0 monochrome, 1 to kMaxGreyLevel lines a pixel
  bool boundsOnly = false;
  bool sharpen = false;  // takes some grey off where two neighbours share an edge
};

// Converts glyph's scaled points. The bitmap belongs to the caller. A glyph that touches no centre line is empty:
// all zero. Throws tsiError.
tsiScanConv ScanConvert(const GlyphClass& glyph, const ScanConvOptions& options);
