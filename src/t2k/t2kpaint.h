// Spans to pixels; the second half of the scan converter.
#pragma once

#include "t2k/crossings.h"
#include "t2k/scanbitmap.h"

// One bit a pixel, set in a bitmap that comes zeroed and may have some of the glyph's rows only. A span that is
// narrower than a pixel and has coloured none is kept by dropout control: it sets the pixel in its middle, rounded
// towards the centre of bounds, so that thin features don't vanish.
void PaintMono(const tsiScanConv& sc, const CrossingTable& crossings, const CrossingBounds& bounds);

void SharpenGrey(const tsiScanConv& sc);
