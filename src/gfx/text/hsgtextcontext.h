// One run of text on its way from characters to glyphs and positions; made for a single text operation.
//
// What surprises: the extra of a character moves that character too, so a run with letter spacing begins one extra to
// the right of its origin.
#pragma once

#include <memory>

#include "gfx/foundation/hsrefcnt.h"
#include "gfx/text/hsgstrike.h"

class hsGAttribute;
struct hsGRawDraw;
struct hsGTextSpacing;

struct hsGUnderline {
  hsFixed fPosition, fThickness;  // below the baseline, user space
};

class hsGTextContext : public hsRefCnt {
 public:
  // The underline may be null.
  hsGTextContext(const hsGAttribute& attr, const hsDescriptor* strikeDesc, const hsPoint& advanceExtra,
                 const hsPoint& glyphOffset, const hsGUnderline* underline);
  ~hsGTextContext() override;

  // Takes length bytes of text and returns the number of characters. An odd last byte of 16-bit text is dropped.
  uint32_t SetText(uint32_t length, const void* text);
  // Fills and returns the glyphs of the run.
  hsGGlyph* GetGlyphs();
  // The positions of the run's characters relative to its origin, on the device, and after them its end; the glyphs
  // go to outGlyphs. Null outGlyphs and null spacing are good.
  const hsPoint* GetPositions(hsGGlyph** outGlyphs, const hsGTextSpacing* spacing);
  // Measures without making a run: one advance a character, stride bytes apart. Returns the number of characters.
  uint32_t GetWidths(uint32_t length, const void* text, const hsGTextSpacing* spacing, hsFixed out[], uint32_t stride);
  void GetMetrics(hsPoint* ascent, hsPoint* descent, hsPoint* baseline) const;

  const uint8_t* GetImage(hsGGlyph* glyph) { return fStrike->GetImage(glyph); }
  bool GetRows(const hsGGlyph& glyph, int first, int count, uint8_t* buffer) {
    return fStrike->GetRows(glyph, first, count, buffer);
  }
  const hsPath* GetPath(const hsGGlyph* glyph) { return fStrike->GetPath(glyph); }
  void FillGlyph(uint16_t code, hsGGlyph* glyph);  // "need glyph"
  // Frees the strike's images, those of the run's glyphs with them.
  void Purge();
  // The rule under a run that starts at (x, y) and goes on by (dx, dy), all on the device.
  void DrawUnderline(hsGRawDraw* raw, hsFixed x, hsFixed y, hsFixed dx, hsFixed dy) const;

  uint32_t Count() const { return fCount; }
  const uint16_t* Chars() const { return fChars; }
  uint8_t MaskType() const { return fMaskType; }
  uint8_t Encoding() const { return fEncoding; }
  bool HasUnderline() const { return fHasUnderline; }

 private:
  bool Kerns(uint32_t count) const;
  void AddSpacing(const hsGTextSpacing& spacing, uint32_t count, const uint16_t chars[], hsPoint positions[]) const;
  void Offset(hsGGlyph* glyph) const;
  uint32_t CountChars(uint32_t length, const void* text) const;
  void Decode(uint32_t length, const void* text, uint32_t count, uint16_t out[]) const;
  void FreeRun();

  uint8_t fMaskType;
  uint8_t fEncoding;
  bool fHasUnderline;
  uint32_t fCount = 0;
  // One block, from hsMemory.
  hsGGlyph* fGlyphs = nullptr;
  hsPoint* fPositions = nullptr;  // fCount + 1
  uint16_t* fChars = nullptr;
  hsRef<hsGStrike> fStrike;
  uint32_t fFlags;  // the attribute's
  hsGUnderline fUnderline{0, 0};
  hsPoint fAdvanceExtra, fGlyphOffset;
};
