// Rendering a glyph: reading, scaling, joining components, transforming, and on to the scan converter.
#include "gfx/foundation/hsfixed.h"
#include "t2k/hinter.h"
#include "t2k/t1.h"
#include "t2k/t2k.h"
#include "t2k/t2ksc.h"
#include "t2k/t2kscale.h"
#include "t2k/unitscale.h"

namespace {

constexpr int kMaxDepth = 16;         // composites within composites
constexpr int kMaxComponents = 1024;  // altogether in one glyph
constexpr int kPhantomBits = 10;      // precision that the phantoms gain for the transformation
constexpr int kSharpenBelow = 25;     // pixels an em

// One call of T2K_RenderGlyph, on its way through components.
struct RenderCall {
  T2K* t;
  int xFracPenDelta, yFracPenDelta;
  int greyScaleLevel;
  int cmd;
  int componentsLeft;

  bool GridFits() const { return (cmd & kT2KGridFit) && !(cmd & kT2KNoRounding); }
};

// Puts a scaler's scale back when the scope ends.
class ScaleKeeper {
 public:
  explicit ScaleKeeper(T2K* t) : t_(t), kept_(CurrentScale(t)) {}
  ~ScaleKeeper() { SetScale(t_, kept_); }
  ScaleKeeper(const ScaleKeeper&) = delete;
  ScaleKeeper& operator=(const ScaleKeeper&) = delete;

  const T2KScale& Kept() const { return kept_; }

 private:
  T2K* t_;
  T2KScale kept_;
};

// A composite's entry, its words unpacked.
struct ComponentEntry {
  uint16_t flags;
  uint16_t glyphIndex;
  int32_t argument1, argument2;
  hsFixed scale[4];  // x from x, y from x, x from y, y from y
  bool hasScale;
};

class EntryReader {
 public:
  explicit EntryReader(const GlyphClass* glyph)
      : at_(glyph->componentData), end_(glyph->componentData + glyph->componentSize), mem_(glyph->mem) {}

  ComponentEntry Next() {
    ComponentEntry entry{};
    entry.flags = Word();
    entry.glyphIndex = Word();
    ReadArguments(&entry);
    ReadScale(&entry);
    return entry;
  }

 private:
  uint16_t Word() {
    tsi_Assert(mem_, at_ < end_);
    return *at_++;
  }

  // Offsets are signed, point numbers aren't.
  void ReadArguments(ComponentEntry* entry) {
    const bool isOffset = entry->flags & kArgsAreOffset;
    const uint16_t word = Word();
    if (entry->flags & kArgsAreWords) {
      const uint16_t second = Word();
      entry->argument1 = isOffset ? int16_t(word) : word;
      entry->argument2 = isOffset ? int16_t(second) : second;
    } else {
      entry->argument1 = isOffset ? int8_t(word >> 8) : word >> 8;
      entry->argument2 = isOffset ? int8_t(word & 0xFF) : word & 0xFF;
    }
  }

  void ReadScale(ComponentEntry* entry) {
    const auto fixed = [&] { return int16_t(Word()) * 4; };  // 2.14 to 16.16
    entry->hasScale = entry->flags & (kHasScale | kHasXYScale | kHasTwoByTwo);
    if (entry->flags & kHasScale) {
      entry->scale[0] = entry->scale[3] = fixed();
    } else if (entry->flags & kHasXYScale) {
      entry->scale[0] = fixed();
      entry->scale[3] = fixed();
    } else if (entry->flags & kHasTwoByTwo) {
      for (hsFixed& value : entry->scale) value = fixed();
    }
  }

  const uint16_t* at_;
  const uint16_t* end_;
  tsiMemObject* mem_;
};

GlyphClass* RenderOutline(RenderCall& call, int32_t code, bool byIndex, int depth);

void ScalePoints(const RenderCall& call, GlyphClass* glyph) {
  const T2K* t = call.t;
  const UnitScale scaleX(t->xPixelsPerEm, GetUPEM(t->font)), scaleY(t->yPixelsPerEm, GetUPEM(t->font));
  const int count = glyph->pointCount;
  scaleX.Scale(glyph->oox, count + 2, glyph->x);
  scaleY.Scale(glyph->ooy, count + 2, glyph->y);
  if (call.GridFits() || !(call.xFracPenDelta | call.yFracPenDelta)) return;
  for (int i = 0; i < count; ++i) {
    glyph->x[i] = hsWrapAdd(glyph->x[i], call.xFracPenDelta);
    glyph->y[i] = hsWrapSub(glyph->y[i], call.yFracPenDelta);
  }
}

void RoundPhantoms(GlyphClass* glyph) {
  int32_t* phantom = glyph->x + glyph->pointCount;
  const int32_t left = hsWrapAdd(phantom[0], 32) & ~63;
  const int32_t advance = hsWrapAdd(hsWrapSub(phantom[1], phantom[0]), 32) & ~63;
  phantom[0] = left;
  phantom[1] = hsWrapAdd(left, advance);
}

void RenderSimple(const RenderCall& call, GlyphClass* glyph, bool isFigure) {
  AllocScaledPoints(glyph);
  ScalePoints(call, glyph);
  if (call.GridFits() && glyph->pointCount) {
    PrepareHinter(call.t);
    HintGlyph(call.t->hintHandle, glyph, {isFigure, call.greyScaleLevel > 0});
  }
  if (!(call.cmd & kT2KNoRounding)) RoundPhantoms(glyph);
}

// The scale that a component is rendered at: the composite's own pixel sizes times the entry's scale. What the
// composite is transformed by after them comes later, when it is whole.
T2KScale ScaleOfComponent(const T2K* t, const T2KScale& composite, const ComponentEntry& entry) {
  if (!entry.hasScale) {
    T2KScale plain = composite;
    plain.t00 = plain.t11 = kFixed1;
    plain.t01 = plain.t10 = 0;
    plain.is_Identity = true;
    return plain;
  }
  const hsFixed xSize = composite.xPixelsPerEm16Dot16, ySize = composite.yPixelsPerEm16Dot16;
  return ScaleFromMatrix(t, 72, 72,
                         {hsFixMulSat(entry.scale[0], xSize), hsFixMulSat(entry.scale[2], xSize),
                          hsFixMulSat(entry.scale[1], ySize), hsFixMulSat(entry.scale[3], ySize)});
}

GlyphClass* RenderComposite(RenderCall& call, const GlyphClass* composite, uint16_t aw, int depth) {
  T2K* t = call.t;
  tsi_Assert(t->mem, depth < kMaxDepth, kT2KNoGlyph);
  const int upem = GetUPEM(t->font);
  const ScaleKeeper keeper(t);
  const T2KScale& own = keeper.Kept();
  EntryReader entries(composite);
  GlyphHolder result;
  uint16_t allFlags = 0, flags;
  do {
    tsi_Assert(t->mem, call.componentsLeft-- > 0, kT2KNoGlyph);
    ComponentEntry entry = entries.Next();
    flags = entry.flags;
    allFlags |= flags;
    if (flags & kArgsAreOffset) {
      entry.argument1 = ScaleUnits(entry.argument1, own.xPixelsPerEm, upem);
      entry.argument2 = ScaleUnits(entry.argument2, own.yPixelsPerEm, upem);
    }
    SetScale(t, ScaleOfComponent(t, own, entry));
    GlyphClass* part = RenderOutline(call, entry.glyphIndex, true, depth + 1);
    result.Reset(MergeComponent(result.Release(), part, flags, entry.argument1, entry.argument2));
  } while (flags & kMoreComponents);

  if (!(allFlags & kUseMyMetrics)) {
    const int at = result->pointCount;
    const int32_t advance = ScaleUnits(aw, own.xPixelsPerEm, upem);
    result->x[at] = result->y[at] = result->y[at + 1] = 0;
    result->x[at + 1] = call.GridFits() ? hsWrapAdd(advance, 32) & ~63 : advance;
  }
  return result.Release();
}

void Shear(GlyphClass* glyph, hsFixed shear) {
  for (int i = 0; i < glyph->pointCount + 2; ++i) {
    glyph->x[i] = hsWrapAdd(glyph->x[i], hsFixMulSat(glyph->y[i], shear));
  }
}

void Transform(const T2K* t, GlyphClass* glyph) {
  const int count = glyph->pointCount + 2;
  if (t->t01 == 0 && t->t10 == 0) {
    for (int i = 0; i < count; ++i) {
      glyph->x[i] = hsFixMulSat(t->t00, glyph->x[i]);
      glyph->y[i] = hsFixMulSat(t->t11, glyph->y[i]);
    }
    return;
  }
  for (int i = 0; i < count; ++i) {
    const int32_t x = glyph->x[i], y = glyph->y[i];
    glyph->x[i] = hsWrapAdd(hsFixMulSat(t->t00, x), hsFixMulSat(t->t01, y));
    glyph->y[i] = hsWrapAdd(hsFixMulSat(t->t10, x), hsFixMulSat(t->t11, y));
  }
}

// Transforms the outline by what remains of the scaler's matrix and sets the advance from the phantoms.
void TransformAndMeasure(T2K* t, GlyphClass* glyph) {
  int32_t* x = glyph->x + glyph->pointCount;
  int32_t* y = glyph->y + glyph->pointCount;
  for (int32_t* coordinate : {x, x + 1, y, y + 1}) *coordinate = hsWrapShl(*coordinate, kPhantomBits);
  if (!t->is_Identity) Transform(t, glyph);
  t->xAdvanceWidth16Dot16 = hsWrapSub(x[1], x[0]);
  t->yAdvanceWidth16Dot16 = hsWrapSub(y[1], y[0]);
  for (int32_t* coordinate : {x, x + 1, y, y + 1}) *coordinate >>= kPhantomBits;
}

void SetLinearAdvance(T2K* t, uint16_t aw) {
  const hsFixed advance = hsFixMulSat(hsIntToFixed(aw), t->xMul);
  t->xLinearAdvanceWidth16Dot16 = advance;
  t->yLinearAdvanceWidth16Dot16 = 0;
  if (t->is_Identity) return;
  t->xLinearAdvanceWidth16Dot16 = hsFixMulSat(t->t00, advance);
  t->yLinearAdvanceWidth16Dot16 = hsFixMulSat(t->t10, advance);
}

GlyphClass* RenderOutline(RenderCall& call, int32_t code, bool byIndex, int depth) {
  T2K* t = call.t;
  uint16_t aw = 0;
  const bool isFigure = byIndex ? IsFigure(t->font, code) : code >= '0' && code <= '9';
  GlyphHolder glyph(byIndex ? GetGlyphByIndex(t->font, code, false, &aw)
                            : GetGlyphByCharCode(t->font, uint32_t(code), false, &aw));
  if (glyph->contourCount < 0) {
    glyph.Reset(RenderComposite(call, glyph.get(), aw, depth));
  } else {
    RenderSimple(call, glyph.get(), isFigure);
  }
  if (depth == 0) SetLinearAdvance(t, aw);
  // At every level: the parts of an accented character lean once by themselves and once more as a whole.
  if (t->font->T1 && t->font->T1->italicShear) Shear(glyph.get(), t->font->T1->italicShear);
  TransformAndMeasure(t, glyph.get());
  return glyph.Release();
}

void ClearBitmap(T2K* t) {
  t->width = t->height = t->rowBytes = 0;
  t->fTop26Dot6 = t->fLeft26Dot6 = 0;
}

void MakeBitmap(const RenderCall& call) {
  T2K* t = call.t;
  const GlyphClass* glyph = t->glyph;
  ScanConvOptions options;
  options.greyLevel = call.greyScaleLevel;
  options.boundsOnly = call.cmd & kT2KBoundsOnly;
  options.sharpen = call.GridFits() && t->ag_sharpen && t->ag_xPixelsPerEm < kSharpenBelow;
  options.rows = t->bitmapRows;
  const int32_t originX = glyph->x[glyph->pointCount], originY = glyph->y[glyph->pointCount];
  options.wholePixels = ((originX | originY) & 63) == 0;
  const tsiScanConv sc = ScanConvert(*glyph, options);
  t->width = sc.Width();
  t->height = sc.Height();
  t->rowBytes = sc.rowBytes;
  t->baseAddr = sc.baseAddr;
  t->fLeft26Dot6 = hsWrapSub(sc.xmin, originX) & ~63;
  t->fTop26Dot6 = hsWrapSub(sc.ymax, originY) & ~63;
}

}  // namespace

void T2K_RenderGlyph(T2K* t, int32_t code, int xFracPenDelta, int yFracPenDelta, int greyScaleLevel, int cmd,
                     int* errCode) {
  tsi_Enter(t ? t->mem : nullptr, errCode, [&] {
    tsi_Assert(t->mem, t->mem->state == kHandlerState, kT2KDamagedHandler);
    tsi_Assert(t->mem, greyScaleLevel >= 0 && greyScaleLevel <= kMaxGreyLevel, kT2KBadGreyLevel);
    const auto isFraction = [](int delta) { return delta >= 0 && delta <= 63; };
    tsi_Assert(t->mem, isFraction(xFracPenDelta) && isFraction(yFracPenDelta), kT2KBadFraction);
    tsi_Assert(t->mem, GetUPEM(t->font) >= 1);
    Purge(t, 1);
    ClearBitmap(t);
    RenderCall call{t, xFracPenDelta, yFracPenDelta, greyScaleLevel, cmd, kMaxComponents};
    t->glyph = RenderOutline(call, code, cmd & kT2KByIndex, 0);
    if ((cmd & kT2KBitmap) && t->glyph->pointCount) MakeBitmap(call);
    if (!(cmd & kT2KKeepGlyph)) Purge(t, 0);
  });
}
