// Glyphs of a font that holds bitmaps only.
//
// The strike of the font whose size is nearest is taken, of two equally near ones the later, and its glyphs are brought
// to the size and transformation asked for through what remains of the matrix.
#pragma once

#include <vector>

#include "gfx/text/hsgfontscaler.h"
#include "gfx/text/hsgscalercontext.h"
#include "gfx/text/hssfnt.h"

class hsGSbitContext : public hsGScalerContext {
 public:
  // "font is nil", "missing bloc/bdat tables", "count is 0"; such a context has no glyphs.
  hsGSbitContext(const hsDescriptor* desc, bool unicode);

  void GetFontMetrics(hsPoint* ascent, hsPoint* descent, hsPoint* baseline) override;

 protected:
  void GenerateMetrics(hsGGlyph* glyph) override;
  bool GenerateImage(const hsGGlyph& glyph, uint8_t* buffer) override;
  void GeneratePath(const hsGGlyph& glyph, hsPath* path) override;

 private:
  // Where a glyph's image lies and how large it is, in the strike's own pixels.
  struct Entry {
    uint32_t imageFormat = 0;           // 0: there is no such glyph
    uint32_t location = 0, length = 0;  // in the data table
    int32_t height = 0, width = 0, bearingX = 0, bearingY = 0, advance = 0;
  };

  hsMatrix MakeDeviceMatrix() const;
  bool LoadTables();
  void ChooseStrike(hsFixed ppem);
  Entry FindEntry(uint16_t code);
  bool Locate(hsSfntBytes subtable, uint32_t glyph, uint32_t first, Entry* entry) const;
  hsSfntBytes MetricsOf(hsSfntBytes subtable, const Entry& entry, std::vector<uint8_t>* storage);
  std::vector<uint8_t> ReadData(uint32_t offset, uint32_t length);
  std::vector<uint8_t> Unpack(const Entry& entry);

  hsRef<hsGFontT2K> fFont;
  uint32_t fDataOffset = 0, fDataLength = 0;  // of the bitmaps' table
  std::vector<uint8_t> fLocation;             // the table that says where they are
  uint32_t fStrike = 0;                       // offset of the chosen size record; 0 for none
  hsMatrix fResidual;                         // from the strike's pixels to the device
};
