// Text on the draw core: as masks from the glyph cache, or as paths where masks won't do.
#include <algorithm>
#include <vector>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/hsgrawdraw.h"
#include "gfx/text/hsgtextcontext.h"
#include "gfx/vector/hsgpatheffect.h"
#include "gfx/vector/hsscan.h"

namespace {

constexpr uint16_t kLargestImage = 2048;  // pixels a side; of a larger glyph only the rows that show are made

constexpr hsFixed RoundToPixel(hsFixed v) { return hsIntToFixed(hsFixedRound(v)); }

// Puts the attribute's flags back if they have been changed.
class FlagScope {
 public:
  explicit FlagScope(hsGAttribute* attr) : fAttr(attr), fSaved(attr->Flags()) {}
  ~FlagScope() {
    if (fAttr->Flags() != fSaved) fAttr->SetFlags(fSaved);
  }
  FlagScope(const FlagScope&) = delete;
  FlagScope& operator=(const FlagScope&) = delete;

 private:
  hsGAttribute* fAttr;
  uint32_t fSaved;
};

// Whether text goes as paths: the masks of the glyph cache know no perspective and no effect that bends whole runs.
bool DrawsAsPaths(const hsGRawDraw& draw) {
  const hsGPathEffect* effect = draw.fAttr->PathEffect();
  return draw.fMatrix->GetType() & hsMatrix::kPerspectiveType || draw.fAttr->Flags() & hsGAttribute::kTextAsPaths ||
         (effect && effect->DrawsTextAsPaths());
}

// What a text call begins with. At its end the attribute has its flags back.
struct TextCall {
  TextCall(const hsGRawDraw& draw, uint32_t length, const void* text)
      : scope(draw.fAttr),
        asPaths(DrawsAsPaths(draw)),
        hasSpacing(draw.fAttr->GetTextSpacing(&spacing)),
        context(hsAdopt(MakeContext(draw))),
        count(context->SetText(length, text)) {}

  const hsGTextSpacing* Spacing() const { return hasSpacing ? &spacing : nullptr; }
  // How far alignment moves a run with that end.
  hsPoint Shift(const hsPoint& end) const {
    const hsFixed alignment = std::max(spacing.fAlignment, 0);
    return {hsFixMulSat(alignment, end.fX), hsFixMulSat(alignment, end.fY)};
  }

  const FlagScope scope;
  const bool asPaths;
  hsGTextSpacing spacing;
  const bool hasSpacing;
  const hsRef<hsGTextContext> context;  // outlines are mapped later, as paths
  const uint32_t count;                 // characters

 private:
  hsGTextContext* MakeContext(const hsGRawDraw& draw) const {
    if (!asPaths) return draw.fAttr->GetTextContext(draw.fMatrix);
    draw.fAttr->SetFlags((draw.fAttr->Flags() & ~uint32_t{hsGAttribute::kFrame}) | hsGAttribute::kNoGridFit);
    return draw.fAttr->GetTextContext(nullptr);
  }
};

// Where the images of a run's glyphs come from. When there is no memory left, once more after a purge.
struct ContextImages {
  hsGTextContext& context;

  const uint8_t* Whole(hsGGlyph* glyph) const {
    if (const uint8_t* image = context.GetImage(glyph)) return image;
    context.Purge();
    glyph->fImage = nullptr;
    return context.GetImage(glyph);
  }
  bool Rows(const hsGGlyph& glyph, int first, int count, uint8_t* buffer) const {
    return context.GetRows(glyph, first, count, buffer);
  }
};

struct StrikeImages {
  hsGStrike& strike;

  const uint8_t* Whole(hsGGlyph* glyph) const { return strike.GetImage(glyph); }
  bool Rows(const hsGGlyph& glyph, int first, int count, uint8_t* buffer) const {
    return strike.GetRows(glyph, first, count, buffer);
  }
};

// Draws masks of glyphs, one after the other, with one blitter.
class GlyphPainter {
 public:
  GlyphPainter(const hsGRawDraw& draw, uint8_t maskType, hsGBounder* bounder)
      : fClip(draw.fClip),
        fBounder(bounder),
        fMaskType(maskType),
        fBlitter(hsAdopt(draw.GetBlitter(maskType))),
        fDevice{0, 0, int32_t(draw.fBitmap->fWidth), int32_t(draw.fBitmap->fHeight)},
        fShown(fDevice) {}

  // Passes over glyphs outside the clip before their images are made.
  void ShowClipOnly() {
    if (fClip && !fShown.Intersect(fClip->Bounds())) fShown = {0, 0, 0, 0};
  }

  // With the pen at (x, y), half a pixel added.
  template <class Images>
  void Draw(hsGGlyph* glyph, hsFixed x, hsFixed y, const Images& images) {
    if (glyph->fWidth == 0 || glyph->fCharCode == hsGGlyph::kEmpty) return;
    const hsFixed atX = hsWrapAdd(x, glyph->fLeft);
    const int32_t left = atX >> 16, top = hsWrapAdd(y, glyph->fTop) >> 16;
    hsGMask mask;
    mask.fBounds = {left, top, left + glyph->fWidth, top + glyph->fHeight};
    if (fBounder && fBounder->BoundRect(mask.fBounds, fClip)) return;
    if (!fShown.Intersects(mask.fBounds)) return;
    mask.fRowBytes = uint16_t(glyph->fRowBytes);
    mask.fMaskType = fMaskType;
    const bool isLarge = glyph->fWidth > kLargestImage || glyph->fHeight > kLargestImage;
    if (isLarge && DrawRows(*glyph, mask, atX, images)) return;
    mask.fImage = const_cast<uint8_t*>(images.Whole(glyph));
    if (mask.fImage) Blit(mask, atX);
  }

 private:
  // Draws of a mask the rows that can show. False if they can't be made alone.
  template <class Images>
  bool DrawRows(const hsGGlyph& glyph, const hsGMask& whole, hsFixed atX, const Images& images) {
    hsIntRect shown = fShown;
    if ((fClip && !shown.Intersect(fClip->Bounds())) || !shown.Intersect(whole.fBounds)) return true;
    std::vector<uint8_t> rows(size_t{whole.fRowBytes} * size_t(shown.Height()));
    if (!images.Rows(glyph, shown.fTop - whole.fBounds.fTop, shown.Height(), rows.data())) return false;
    hsGMask mask;
    mask.fBounds = {whole.fBounds.fLeft, shown.fTop, whole.fBounds.fRight, shown.fBottom};
    mask.fRowBytes = whole.fRowBytes;
    mask.fMaskType = whole.fMaskType;
    mask.fImage = rows.data();
    Blit(mask, atX);
    return true;
  }

  // Blitters take a mask without a clip only where it lies wholly on the device.
  void Blit(const hsGMask& mask, hsFixed atX) {
    const hsRegion* clip = fClip;
    if (!clip && !fDevice.Contains(mask.fBounds)) {
      fWhole.SetRect(fDevice.fLeft, fDevice.fTop, fDevice.fRight, fDevice.fBottom);
      clip = &fWhole;
    }
    if (clip && clip->IsRect() && clip->Bounds().Contains(mask.fBounds)) clip = nullptr;
    if (fMaskType != kMask_LCD) return fBlitter->BlitMask(mask, clip);
    const int32_t third = ((atX & 0xFFFF) * 3) >> 16;
    hsAssert(third <= 2, "bad lcd");
    fBlitter->BlitLCDMask(mask, clip, third);
  }

  const hsRegion* fClip;
  hsGBounder* fBounder;
  uint8_t fMaskType;
  const hsRef<hsGBlitter> fBlitter;
  hsIntRect fDevice, fShown;
  hsRegion fWhole;
};

void DrawOutlines(hsGRawDraw* draw, hsGTextContext& context, uint32_t count, const hsGGlyph glyphs[],
                  const hsPoint positions[], const hsPoint& origin) {
  for (uint32_t i = 0; i < count; ++i) {
    const hsPoint at = positions[i] + origin;
    hsPath outline;
    outline.Offset(at.fX, at.fY, context.GetPath(&glyphs[i]));
    draw->DrawPath(outline);
  }
}

// Each outline turned by its direction and moved to its position.
void DrawTurnedOutlines(hsGRawDraw* draw, hsGTextContext& context, uint32_t count, const hsGGlyph glyphs[],
                        const hsPoint positions[], const hsPoint directions[]) {
  for (uint32_t i = 0; i < count; ++i) {
    hsMatrix place;
    place.SetSinCos(directions[i].fX, directions[i].fY, 0, 0);
    place.PostTranslate(positions[i].fX, positions[i].fY);
    hsPath outline;
    outline.Transform(&place, context.GetPath(&glyphs[i]));
    draw->DrawPath(outline);
  }
}

void DrawTurnedGlyphs(hsGRawDraw* draw, hsGTextContext& plain, const hsPoint mapped[], const hsPoint directions[]) {
  for (uint32_t i = 0; i < plain.Count();) {
    hsMatrix turned = *draw->fMatrix;
    turned.PreSinCos(directions[i].fX, directions[i].fY, 0, 0);
    const auto context = hsAdopt(draw->fAttr->GetTextContext(&turned));
    GlyphPainter painter(*draw, context->MaskType(), draw->fBounder);
    const hsPoint direction = directions[i];
    for (; i < plain.Count() && directions[i] == direction; ++i) {
      hsGGlyph glyph;
      context->FillGlyph(plain.Chars()[i], &glyph);
      painter.Draw(&glyph, mapped[i].fX, mapped[i].fY, ContextImages{*context});
    }
  }
}

}  // namespace

void hsGRawDraw::DrawText(uint32_t length, const void* text, hsScalar x, hsScalar y) {
  Check();
  if (length == 0 || !text) return;
  const TextCall call(*this, length, text);
  hsGTextContext* const context = call.context.get();
  const uint32_t count = call.count;
  if (count == 0) return;
  hsGGlyph* glyphs;
  const hsPoint* positions = context->GetPositions(&glyphs, call.Spacing());
  if (fAttr->Flags() & hsGAttribute::kLayoutOnly) return;
  const hsPoint shift = call.Shift(positions[count]);
  if (call.asPaths) return DrawOutlines(this, *context, count, glyphs, positions, hsPoint{x, y} - shift);

  hsPoint origin = {x, y};
  fMatrix->MapPoints(1, &origin, &origin);
  origin = origin - shift;
  origin = {RoundToPixel(origin.fX), RoundToPixel(origin.fY)};
  {
    GlyphPainter painter(*this, context->MaskType(), fBounder);
    for (uint32_t i = 0; i < count; ++i) {
      const hsPoint at = origin + positions[i] + hsPoint{kFixedHalf, kFixedHalf};
      painter.Draw(&glyphs[i], at.fX, at.fY, ContextImages{*context});
    }
  }
  if (context->HasUnderline())
    context->DrawUnderline(this, origin.fX, origin.fY, positions[count].fX, positions[count].fY);
}

void hsGRawDraw::DrawPosText(uint32_t length, const void* text, const hsPoint positions[], const hsPoint directions[]) {
  Check();
  if (length == 0 || !text) return;
  const TextCall call(*this, length, text);
  hsGTextContext* const context = call.context.get();
  const uint32_t count = call.count;
  if (count == 0) return;
  hsGGlyph* glyphs = context->GetGlyphs();
  if (fAttr->Flags() & hsGAttribute::kLayoutOnly) return;
  if (call.asPaths && directions) return DrawTurnedOutlines(this, *context, count, glyphs, positions, directions);
  if (call.asPaths) return DrawOutlines(this, *context, count, glyphs, positions, {0, 0});

  std::vector<hsPoint> mapped(positions, positions + count);
  fMatrix->MapPoints(int32_t(count), mapped.data(), mapped.data());
  for (hsPoint& p : mapped) p = p + hsPoint{kFixedHalf, kFixedHalf};
  if (directions) return DrawTurnedGlyphs(this, *context, mapped.data(), directions);
  GlyphPainter painter(*this, context->MaskType(), fBounder);
  for (uint32_t i = 0; i < count; ++i) painter.Draw(&glyphs[i], mapped[i].fX, mapped[i].fY, ContextImages{*context});
}

void hsGRawDraw::DrawFastText(uint32_t length, const void* text, hsPoint* point, const hsGUnderline* underline) {
  Check();
  hsGTextSpacing spacing;
  const bool spaced = fAttr->GetTextSpacing(&spacing);
  if (!hsAssert(spacing.fAlignment == 0, "DrawFastText only does left-alignment")) return;
  const hsDescriptor* desc = fAttr->SimpleStrikeDesc();
  if (!hsAssert(desc, "oops")) return;
  const auto strike = hsAdopt(hsGStrike::FindOrCreate(desc));
  hsFixed x = hsWrapAdd(point->fX, kFixedHalf);
  {
    // Labels: the rows are not rounded, and no bounder hears of single glyphs.
    GlyphPainter painter(*this, kMask_Bit, nullptr);
    painter.ShowClipOnly();
    const auto* bytes = static_cast<const uint8_t*>(text);
    for (uint32_t i = 0; i < length; ++i) {
      hsGGlyph* glyph = strike->GetGlyph8(bytes[i]);
      if (!glyph) break;
      painter.Draw(glyph, x, point->fY, StrikeImages{*strike});
      x = hsWrapAdd(x, glyph->fAdvanceX);
      if (spaced) x = hsWrapAdd(x, bytes[i] == 0x20 ? spacing.fWordExtra : spacing.fCharExtra);
    }
  }
  const hsFixed end = hsWrapSub(x, kFixedHalf);
  if (underline && underline->fThickness > 0) {
    const hsFixed top = hsWrapAdd(point->fY, underline->fPosition);
    const hsRect rect = {point->fX, top, end, hsWrapAdd(top, underline->fThickness)};
    if (!fBounder || !fBounder->BoundFixedRect(rect, *fMatrix, fClip, nullptr, false)) {
      hsRegion storage;
      const auto blitter = hsAdopt(GetBlitter(kMask_Bit));
      HSScan::FillRect(&rect, ClipOrBitmap(&storage), blitter.get(), true);
    }
  }
  point->fX = end;
}
