// Glyphs of a font that holds bitmaps only.
//
// The strike of the font whose size is nearest is taken, of two equally near ones the later, and its glyphs are brought
// to the size and transformation asked for through what remains of the matrix.
#pragma once

#include "gfx/text/hsgfontscaler.h"
#include "gfx/text/hsgscalercontext.h"
#include "gfx/text/hssbittables.h"

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
  hsMatrix MakeDeviceMatrix() const;

  hsRef<hsGFontT2K> fFont;
  hsSbitTables fTables;
  hsMatrix fResidual;  // from the strike's pixels to the device
};
