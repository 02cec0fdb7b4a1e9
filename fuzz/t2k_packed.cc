// Any bytes as a glyph in the packed layout, converted as if font units were 64ths of a pixel.
#include <algorithm>

#include "t2k/t2ksc.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 1 << 18) return 0;
  int err;
  tsiMemObject* mem = tsi_NewMemhandler(&err);
  InputStream* in = New_InputStream3(mem, data, uint32_t(size), &err);
  tsi_Enter(mem, &err, [&] {
    const GlyphHolder glyph(ReadPackedGlyph(*in, {int16_t(size), 600}));
    if (glyph->contourCount < 1) return;
    AllocScaledPoints(glyph.get());
    std::copy_n(glyph->oox, glyph->pointCount + 2, glyph->x);
    std::copy_n(glyph->ooy, glyph->pointCount + 2, glyph->y);
    tsi_DeAllocMem(mem, ScanConvert(*glyph.get(), {int(size % 6), false, true}).baseAddr);
  });
  Delete_InputStream(in, &err);
  tsi_DeleteMemhandler(mem);
  return 0;
}
