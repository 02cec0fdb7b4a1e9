#include "t2k/t2k.h"

#include <algorithm>

#include "gfx/foundation/hsfixed.h"
#include "t2k/t2kscale.h"

namespace {

constexpr uint16_t kNoGlyphYet = 65535;

tsiMemObject* HandlerOf(const T2K* t) { return t ? t->mem : nullptr; }

void ForgetScaler(void* object) {
  auto* t = static_cast<T2K*>(object);
  t->glyph = nullptr;
  t->baseAddr = nullptr;
  t->hintHandle = nullptr;
  t->width = t->height = t->rowBytes = 0;
}

void SetScaledMetrics(T2K* t) {
  int32_t ascent, descent, lineGap, maxAdvance, rise, run;
  GetFontMetrics(t->font, &ascent, &descent, &lineGap, &maxAdvance, &rise, &run);
  t->caretDx = run;
  t->caretDy = rise;
  if (!t->is_Identity) {
    t->caretDx = hsWrapAdd(hsFixMulSat(t->t00, run), hsFixMulSat(t->t01, rise));
    t->caretDy = hsWrapAdd(hsFixMulSat(t->t10, run), hsFixMulSat(t->t11, rise));
  }
  const auto scaleY = [&](int32_t units, hsFixed* x, hsFixed* y) {
    const hsFixed v = hsFixMulSat(hsIntToFixed(units), t->yMul);
    *x = hsFixMulSat(t->t01, v);
    *y = hsFixMulSat(t->t11, v);
  };
  scaleY(ascent, &t->xAscender, &t->yAscender);
  scaleY(descent, &t->xDescender, &t->yDescender);
  scaleY(lineGap, &t->xLineGap, &t->yLineGap);
  const hsFixed advance = hsFixMulSat(hsIntToFixed(maxAdvance), t->xMul);
  t->xMaxLinearAdvanceWidth = hsFixMulSat(t->t00, advance);
  t->yMaxLinearAdvanceWidth = hsFixMulSat(t->t10, advance);
  t->numGlyphs = GetNumGlyphs(t->font);
}

// The character after another one: its advance with the kerning before it, and that kerning.
struct KernedAdvance {
  int32_t advance, kern;
};

// Measures one character after the other through the cache. A character that the cache knows isn't looked up, so
// the next one that it doesn't know looks both up.
class TextMeasurer {
 public:
  explicit TextMeasurer(T2K* t) : t_(t) {}

  KernedAdvance Next(uint16_t code) {
    auto& cache = t_->kernCache;
    const uint32_t key = uint32_t(previous_) << 16 | code;
    const uint32_t slot = (uint32_t(previous_) * 16 ^ code) % kKernCacheSize;
    uint16_t glyph = kNoGlyphYet;
    if (cache.key[slot] != key) {
      if (previousGlyph_ == kNoGlyphYet) previousGlyph_ = GetSfntGlyphIndex(t_->font, previous_);
      glyph = GetSfntGlyphIndex(t_->font, code);
      int32_t kern, ignored;
      GetKernPair(t_->font, previousGlyph_, glyph, &kern, &ignored);
      cache.key[slot] = key;
      cache.kern[slot] = kern;
      cache.advance[slot] = GetAdvance(t_->font, glyph) + kern;
    }
    previous_ = code;
    previousGlyph_ = glyph;
    return {cache.advance[slot], cache.kern[slot]};
  }

 private:
  T2K* t_;
  uint16_t previous_ = ' ';
  uint16_t previousGlyph_ = kNoGlyphYet;
};

}  // namespace

T2K* NewT2K(tsiMemObject* mem, sfntClass* font, int* errCode) {
  return tsi_Enter(mem, errCode, [&] {
    tsi_Assert(mem, font);
    auto* t = tsi_NewRecord<T2K>(mem);
    t->stamp1 = kScalerStamp1;
    t->stamp2 = kScalerStamp2;
    t->mem = mem;
    t->font = font;
    t->ag_xPixelsPerEm = t->ag_yPixelsPerEm = -1;
    t->bitmapRows = T2KRows();
    std::fill_n(t->kernCache.key, kKernCacheSize, UINT32_MAX);
    font->preferedPlatformID = font->preferedPlatformSpecificID = 65535;
    tsi_HoldByCaller(mem, t, ForgetScaler);
    return t;
  });
}

void DeleteT2K(T2K* t, int* errCode) {
  if (errCode) *errCode = 0;
  if (!t) return;
  tsi_DeleteHeld(t->mem, t, errCode, [&] {
    tsi_Assert(t->mem, t->stamp1 == kScalerStamp1 && t->stamp2 == kScalerStamp2, kT2KDamagedScaler);
    Purge(t, 2);
  });
}

void T2K_NewTransformation(T2K* t, bool doSetUpNow, int xRes, int yRes, const T2KMatrix* matrix, int* errCode) {
  tsi_Enter(HandlerOf(t), errCode, [&] {
    tsi_Assert(t->mem, matrix, kT2KNullMatrix);
    tsi_Assert(t->mem, xRes >= 1 && yRes >= 1, kT2KBadResolution);
    SetScale(t, ScaleFromMatrix(t, xRes, yRes, *matrix));
    if (doSetUpNow) PrepareHinter(t);
    SetScaledMetrics(t);
  });
}

void T2K_PurgeMemory(T2K* t, int level, int* errCode) {
  tsi_Enter(HandlerOf(t), errCode, [&] { Purge(t, level); });
}

hsFixed T2K_MeasureTextInX(T2K* t, const uint16_t* text, int16_t* kernOut, uint32_t count) {
  return tsi_Enter(HandlerOf(t), nullptr, [&]() -> hsFixed {
    TextMeasurer measurer(t);
    int64_t units = 0;
    for (uint32_t i = 0; i < count; ++i) {
      const KernedAdvance next = measurer.Next(text[i]);
      units += next.advance;
      if (kernOut) kernOut[i] = int16_t(next.kern);
    }
    constexpr int64_t kEnough = int64_t{1} << 31;
    return hsSaturate(std::clamp(units, -kEnough, kEnough) * t->xMul);
  });
}

uint16_t T2K_GetGlyphIndex(T2K* t, uint32_t code) {
  return tsi_Enter(HandlerOf(t), nullptr, [&] { return GetSfntGlyphIndex(t->font, code); });
}
