// What the fuzz targets of the font engine do with a font: open it, look at it from all sides, close it. Of a large
// glyph a strip is drawn, and none after it: more would take long and tell little.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "t2k/t2k.h"

// A font that is read piece by piece, of which what lies from `readable` on can't be.
struct PieceReader {
  const uint8_t* data;
  size_t readable;
  static bool Read(void* id, uint8_t* destination, uint32_t position, uint32_t count) {
    const auto* from = static_cast<const PieceReader*>(id);
    if (position > from->readable || count > from->readable - position) return false;
    std::copy_n(from->data + position, count, destination);
    return true;
  }
};

// The last byte chooses size, grey level and commands.
inline void TryFont(const uint8_t* data, size_t size, int fontType) {
  if (!size || size > 1 << 20) return;
  const uint8_t choice = data[size - 1];
  int err;
  tsiMemObject* mem = tsi_NewMemhandler(&err);
  PieceReader pieces{data, choice % 7 == 0 ? size / 2 : size};
  InputStream* in = choice % 3 == 0 ? New_NonRamInputStream(mem, PieceReader::Read, &pieces, uint32_t(size), &err)
                                    : New_InputStream3(mem, data, uint32_t(size), &err);
  sfntClass* font = New_sfntClass(mem, fontType, 0, in, nullptr, &err);
  T2K* t = font ? NewT2K(mem, font, &err) : nullptr;
  if (t) {
    const hsFixed pixels = (5 + choice % 61) << 16;
    const T2KMatrix matrix{pixels, choice & 64 ? pixels / 3 : 0, 0, pixels};
    T2K_NewTransformation(t, true, 72, 72, &matrix, &err);
    t->bitmapRows = {0, 64};
    const int level = choice % (5 + 1);
    const int cmd = kT2KBitmap | (choice & 128 ? kT2KGridFit : 0);
    const auto isLarge = [t] { return int64_t{t->width} * t->height > 1 << 15; };
    for (int i = 0; !err && i < t->numGlyphs && i < 12 && !isLarge(); ++i) {
      T2K_RenderGlyph(t, i, choice & 63, 0, level, cmd | kT2KByIndex, &err);
    }
    for (const char* c = "Ag0"; !err && *c && !isLarge(); ++c) T2K_RenderGlyph(t, *c, 0, 0, level, cmd, &err);
    const uint16_t text[] = {'A', 'V', 0xFFFF, choice};
    if (!err) T2K_MeasureTextInX(t, text, nullptr, 4);
  }
  DeleteT2K(t, &err);
  Delete_sfntClass(font, &err);
  Delete_InputStream(in, &err);
  if (mem->numPointers) std::abort();  // something was not freed
  tsi_DeleteMemhandler(mem);
}
