// Glyphs by the font engine.
//
// The engine's state for a font is shared by all contexts on it, so a context sets its transformation before each call.
// A font that can't be opened is reported once; its glyphs have no size and no advance, and nothing is drawn. A glyph
// that the engine fails on closes the font, which is opened again for the next one.
#pragma once

#include "gfx/text/hsgfontscaler.h"
#include "gfx/text/hsgscalercontext.h"
#include "t2k/scanbitmap.h"

struct T2K;
class hsGT2KRef;

// Whether the engine can open a font of the registry.
bool hsFontOpens(uint32_t fontID);

// Whether it has a glyph for a character of a text that is Unicode, or bytes; the scaler draws another for those
// without. False for a font that doesn't open.
bool hsFontHasGlyph(uint32_t fontID, uint16_t code, bool unicode);

// What has come of it so far, without trying. A font that nothing uses any more is as one that was not tried.
enum class hsFontState { notTried, opens, fails };
hsFontState hsFontKnownState(uint32_t fontID);

class hsGScalerContextT2K : public hsGScalerContext {
 public:
  // The code by which the engine knows the character.
  static uint16_t EngineCode(const hsGT2KRef& font, uint16_t code);

  explicit hsGScalerContextT2K(const hsDescriptor* desc);
  ~hsGScalerContextT2K() override;

  void GetFontMetrics(hsPoint* ascent, hsPoint* descent, hsPoint* baseline) override;
  void KernGlyphs(uint32_t count, const uint16_t chars[], hsGGlyph glyphs[], hsPoint positions[]) override;

 protected:
  void GenerateMetrics(hsGGlyph* glyph) override;
  bool GenerateImage(const hsGGlyph& glyph, uint8_t* buffer) override;
  bool GenerateRows(const hsGGlyph& glyph, int first, int count, uint8_t* buffer) override;
  void GeneratePath(const hsGGlyph& glyph, hsPath* path) override;

 private:
  T2K* Scaler();  // under this context's transformation; null if the font doesn't open
  T2K* Render(uint16_t code, int command, const T2KRows& rows = {});
  uint16_t EngineCode(uint16_t code) const { return EngineCode(*fRef, code); }
  void Purge();

  hsRef<hsGT2KRef> fRef;
  int fGreyLevel;
  int fCommand;  // kT2KGridFit or none
};
