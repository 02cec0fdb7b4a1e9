// The scan converter: a scaled outline to a monochrome or grey bitmap.
//
// It fills by the crossings of the outline with the grid's centre lines in both directions (crossings.h). The same
// spans give monochrome bits with dropout control and grey coverage.
#pragma once

#include "t2k/glyph.h"
#include "t2k/scanbitmap.h"

struct ScanConvOptions {
  int greyLevel = 0;  // 0 monochrome, 1 to kMaxGreyLevel lines a pixel
  bool boundsOnly = false;
  bool sharpen = false;      // takes some grey off where two neighbours share an edge
  bool wholePixels = false;  // of the bounds only whole pixels count: xmin and ymax may be off inside their pixels
  T2KRows rows{};
};

// Converts glyph's scaled points. The bitmap, of the rows asked for, belongs to the caller; the bounds are the whole
// glyph's. A glyph that touches no centre line is empty: all zero. Throws tsiError.
tsiScanConv ScanConvert(const GlyphClass& glyph, const ScanConvOptions& options);
