#include "t2k/t2kscale.h"

#include <algorithm>
#include <utility>

#include "t2k/hinter.h"

namespace {

constexpr int kKanjiGlyphs = 1000;  // a font with so many glyphs is hinted as ideographs

void LoadOrComputeGlobals(T2K* t) {
  sfntClass* font = t->font;
  const sfntTableEntry* entry = font->T1 ? nullptr : GetSfntTable(font, hsTag("T2KG"));
  if (entry) {
    SubStream in(*font->in, entry->offset, std::min<uint32_t>(entry->length, kHintRecordBytes));
    uint8_t record[kHintRecordBytes];
    const uint32_t length = BytesLeft(*in);
    ReadBytes(*in, record, length);
    if (LoadHintGlobals(t->hintHandle, record, length)) return;
  }
  ComputeHintGlobals(t->hintHandle, font);
}

}  // namespace

T2KScale ScaleFromMatrix(const T2K* t, int xRes, int yRes, const T2KMatrix& matrix) {
  const int upem = GetUPEM(t->font);
  tsi_Assert(t->mem, upem >= 1);
  T2KScale scale{matrix.t00, matrix.t01, matrix.t10, matrix.t11, false, 0, 0, 0, 0, 0, 0};
  const hsFixed xMag = hsMagnitudeSat(matrix.t00, matrix.t10);
  const hsFixed yMag = hsMagnitudeSat(matrix.t01, matrix.t11);
  const auto dotsPerPoint = [](int resolution) { return hsSaturate((int64_t{resolution} << 16) / 72); };
  scale.xPixelsPerEm16Dot16 = hsFixMulSat(xMag, dotsPerPoint(xRes));
  scale.yPixelsPerEm16Dot16 = hsFixMulSat(yMag, dotsPerPoint(yRes));
  scale.xMul = hsFixDiv(scale.xPixelsPerEm16Dot16, hsIntToFixed(upem));
  scale.yMul = hsFixDiv(scale.yPixelsPerEm16Dot16, hsIntToFixed(upem));
  scale.xPixelsPerEm = hsFixedRound(scale.xPixelsPerEm16Dot16);
  scale.yPixelsPerEm = hsFixedRound(scale.yPixelsPerEm16Dot16);
  if (scale.xPixelsPerEm < 1 || scale.yPixelsPerEm < 1) {
    scale.t00 = scale.t01 = scale.t10 = scale.t11 = 0;
  } else {
    scale.t00 = hsFixDiv(scale.t00, xMag);
    scale.t10 = hsFixDiv(scale.t10, xMag);
    scale.t11 = hsFixDiv(scale.t11, yMag);
    scale.t01 = hsFixDiv(scale.t01, yMag);
  }
  scale.is_Identity = scale.t00 == kFixed1 && scale.t11 == kFixed1 && scale.t01 == 0 && scale.t10 == 0;
  return scale;
}

T2KScale CurrentScale(const T2K* t) {
  return {t->t00,
          t->t01,
          t->t10,
          t->t11,
          t->is_Identity,
          t->xPixelsPerEm,
          t->yPixelsPerEm,
          t->xPixelsPerEm16Dot16,
          t->yPixelsPerEm16Dot16,
          t->xMul,
          t->yMul};
}

void SetScale(T2K* t, const T2KScale& scale) {
  t->t00 = scale.t00;
  t->t01 = scale.t01;
  t->t10 = scale.t10;
  t->t11 = scale.t11;
  t->is_Identity = scale.is_Identity;
  t->xPixelsPerEm = scale.xPixelsPerEm;
  t->yPixelsPerEm = scale.yPixelsPerEm;
  t->xPixelsPerEm16Dot16 = scale.xPixelsPerEm16Dot16;
  t->yPixelsPerEm16Dot16 = scale.yPixelsPerEm16Dot16;
  t->xMul = scale.xMul;
  t->yMul = scale.yMul;
}

void PrepareHinter(T2K* t) {
  if (!t->hintHandle) {
    const HinterScript script = GetNumGlyphs(t->font) < kKanjiGlyphs ? ag_ROMAN : ag_KANJI;
    t->hintHandle = NewHinter(t->mem, GetUPEM(t->font), script);
    LoadOrComputeGlobals(t);
  }
  if (t->ag_xPixelsPerEm == t->xPixelsPerEm && t->ag_yPixelsPerEm == t->yPixelsPerEm) return;
  t->ag_sharpen = SetHintPixelSizes(t->hintHandle, t->xPixelsPerEm, t->yPixelsPerEm);
  t->ag_xPixelsPerEm = t->xPixelsPerEm;
  t->ag_yPixelsPerEm = t->yPixelsPerEm;
}

void Purge(T2K* t, int level) {
  Delete_GlyphClass(std::exchange(t->glyph, nullptr));
  if (level >= 1) tsi_DeAllocMem(t->mem, std::exchange(t->baseAddr, nullptr));
  if (level >= 2) {
    DeleteHinter(std::exchange(t->hintHandle, nullptr));
    t->ag_xPixelsPerEm = t->ag_yPixelsPerEm = -1;
  }
}
