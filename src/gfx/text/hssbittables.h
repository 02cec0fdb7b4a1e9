// The tables of a font that holds bitmaps only: which sizes it has, and where the bits of a glyph lie.
//
// One size, called a strike as in fonts, is chosen once; all else is about its glyphs, in its own pixels. The font must
// be accessible (hsGFontScaler::Acquire) during each call.
#pragma once

#include <vector>

#include "gfx/foundation/hsref.h"
#include "gfx/text/hsgfontscaler.h"
#include "gfx/text/hssfnt.h"

class hsSbitTables {
 public:
  // Where a glyph's image lies and how large it is.
  struct Entry {
    uint32_t imageFormat = 0;           // 0: there is no such glyph
    uint32_t location = 0, length = 0;  // in the data table
    int32_t height = 0, width = 0, bearingX = 0, bearingY = 0, advance = 0;
  };

  // False for a font without such tables.
  bool Load(hsGFontT2K* font);
  // Of the sizes the nearest one to so many pixels an em, of two equally near ones the later. "count is 0", "bad
  // index".
  void ChooseStrike(hsFixed ppem);

  bool HasStrike() const { return fStrike != 0; }
  // Of the chosen strike: pixels an em, and its top and bottom from the baseline, Y up.
  int32_t PpemX() const;
  int32_t PpemY() const;
  int32_t Ascent() const;
  int32_t Descent() const;

  Entry Find(uint16_t code);
  // A byte of coverage, 0 or 255, for each pixel of the entry. "unsupported bdat format".
  std::vector<uint8_t> Pixels(const Entry& entry);

 private:
  bool Locate(hsSfntBytes subtable, uint32_t glyph, uint32_t first, Entry* entry) const;
  hsSfntBytes MetricsOf(hsSfntBytes subtable, const Entry& entry, std::vector<uint8_t>* storage);
  std::vector<uint8_t> ReadData(uint32_t offset, uint32_t length);
  std::vector<uint8_t> Unpack(const Entry& entry);

  hsRef<hsGFontT2K> fFont;
  uint32_t fDataOffset = 0, fDataLength = 0;  // of the bitmaps' table
  std::vector<uint8_t> fLocation;             // the table that says where they are
  uint32_t fStrike = 0;                       // offset of the chosen size record; 0 for none
};
