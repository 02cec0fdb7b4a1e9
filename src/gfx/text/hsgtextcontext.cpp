#include "gfx/text/hsgtextcontext.h"

#include <cstring>
#include <new>
#include <vector>

#include "gfx/foundation/hsbytes.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsmemory.h"
#include "gfx/pixel/hsgrawdraw.h"
#include "gfx/text/hsutf8.h"

namespace {

constexpr uint16_t kSpace = 0x20;

// (x, 0) without the translation; pages may ask for any extra under any scale.
hsPoint MapLinear(const hsMatrix& matrix, hsFixed x) {
  return {hsFixMulSat(matrix.fMap[0][0], x), hsFixMulSat(matrix.fMap[1][0], x)};
}

constexpr hsPoint Divided(const hsPoint& p, uint32_t by) {
  return {hsFixed(int64_t{p.fX} / by), hsFixed(int64_t{p.fY} / by)};
}

}  // namespace

hsGTextContext::hsGTextContext(const hsGAttribute& attr, const hsDescriptor* strikeDesc, const hsPoint& advanceExtra,
                               const hsPoint& glyphOffset, const hsGUnderline* underline)
    : fStrike(hsAdopt(hsGStrike::FindOrCreate(strikeDesc))),
      fFlags(attr.Flags()),
      fAdvanceExtra(advanceExtra),
      fGlyphOffset(glyphOffset) {
  fMaskType = fStrike->MaskType();
  fEncoding = fStrike->Encoding();
  if (underline) fUnderline = *underline;
  fHasUnderline = fUnderline.fThickness > 0;
}

hsGTextContext::~hsGTextContext() { FreeRun(); }

void hsGTextContext::FreeRun() {
  if (fGlyphs) hsMemory::Delete(fGlyphs);
  fGlyphs = nullptr;
  fPositions = nullptr;
  fChars = nullptr;
  fCount = 0;
}

uint32_t hsGTextContext::CountChars(uint32_t length, const void* text) const {
  switch (fEncoding) {
    case hsGAttribute::kSingleBytes: return length;
    case hsGAttribute::kUTF8: return CountUTF8(length, static_cast<const uint8_t*>(text), nullptr);
    default: return length >> 1;
  }
}

void hsGTextContext::Decode(uint32_t length, const void* text, uint32_t count, uint16_t out[]) const {
  const auto* bytes = static_cast<const uint8_t*>(text);
  switch (fEncoding) {
    case hsGAttribute::kSingleBytes:
      for (uint32_t i = 0; i < count; ++i) out[i] = bytes[i];
      break;
    case hsGAttribute::kUTF8: {
      const uint32_t decoded = CountUTF8(length, bytes, out);
      for (uint32_t i = decoded; i < count; ++i) out[i] = 0;
      break;
    }
    default:
      for (uint32_t i = 0; i < count; ++i) out[i] = hsLittle16(bytes + 2 * i);
  }
}

uint32_t hsGTextContext::SetText(uint32_t length, const void* text) {
  FreeRun();
  const uint32_t count = CountChars(length, text);
  const uint64_t glyphBytes = uint64_t{count} * sizeof(hsGGlyph);
  const uint64_t positionBytes = (uint64_t{count} + 1) * sizeof(hsPoint);
  const uint64_t size = glyphBytes + positionBytes + uint64_t{count} * sizeof(uint16_t);
  if (size > INT32_MAX) throw std::bad_alloc();
  char* block = static_cast<char*>(hsMemory::New(int32_t(size)));
  fGlyphs = reinterpret_cast<hsGGlyph*>(block);
  fPositions = reinterpret_cast<hsPoint*>(block + glyphBytes);
  fChars = reinterpret_cast<uint16_t*>(block + glyphBytes + positionBytes);
  fCount = count;
  Decode(length, text, count, fChars);
  return fCount;
}

void hsGTextContext::Offset(hsGGlyph* glyph) const {
  glyph->fAdvanceX = hsWrapAdd(glyph->fAdvanceX, fAdvanceExtra.fX);
  glyph->fAdvanceY = hsWrapAdd(glyph->fAdvanceY, fAdvanceExtra.fY);
  glyph->fLeft = hsWrapAdd(glyph->fLeft, hsWrapAdd(fGlyphOffset.fX, fAdvanceExtra.fX >> 1));
  glyph->fTop = hsWrapAdd(glyph->fTop, hsWrapAdd(fGlyphOffset.fY, fAdvanceExtra.fY >> 1));
}

hsGGlyph* hsGTextContext::GetGlyphs() {
  fStrike->FillGlyphs(fCount, fChars, fGlyphs);
  if (fAdvanceExtra != hsPoint{} || fGlyphOffset != hsPoint{})
    for (uint32_t i = 0; i < fCount; ++i) Offset(&fGlyphs[i]);
  return fGlyphs;
}

void hsGTextContext::FillGlyph(uint16_t code, hsGGlyph* glyph) {
  if (!hsAssert(glyph, "need glyph")) return;
  fStrike->FillGlyphs(1, &code, glyph);
  Offset(glyph);
}

bool hsGTextContext::Kerns(uint32_t count) const {
  return fFlags & hsGAttribute::kKernText && count > 1 && fStrike->DoesKerning();
}

const hsPoint* hsGTextContext::GetPositions(hsGGlyph** outGlyphs, const hsGTextSpacing* spacing) {
  const hsGGlyph* glyphs = GetGlyphs();
  fPositions[0] = {0, 0};
  for (uint32_t i = 0; i < fCount; ++i)
    fPositions[i + 1] = fPositions[i] + hsPoint{glyphs[i].fAdvanceX, glyphs[i].fAdvanceY};
  if (Kerns(fCount)) fStrike->KernGlyphs(fCount, fChars, fGlyphs, fPositions);
  if (spacing) AddSpacing(*spacing, fCount, fChars, fPositions);
  if (outGlyphs) *outGlyphs = fGlyphs;
  return fPositions;
}

void hsGTextContext::AddSpacing(const hsGTextSpacing& spacing, uint32_t count, const uint16_t chars[],
                                hsPoint positions[]) const {
  const bool justified = spacing.fAlignment < 0;
  if (!justified && spacing.fWordExtra == 0 && spacing.fCharExtra == 0) return;
  hsGScalerRecord record;
  const void* found = hsDescriptor::Find(fStrike->Desc(), kRecord_FontScalerDesc);
  if (!hsAssert(found, "need kRecord_FontScalerDesc")) return;
  std::memcpy(static_cast<void*>(&record), found, sizeof record);

  uint32_t counted = count;
  hsPoint wordExtra{}, charExtra{};
  if (justified) {
    if (spacing.fFlags & hsGTextSpacing::kIgnoreTrailingSpaces)
      while (counted > 0 && chars[counted - 1] == kSpace) --counted;
    if (counted == 0) return;
    const hsPoint remaining = MapLinear(record.fMatrix, hsWrapNeg(spacing.fAlignment)) - positions[counted - 1];
    uint32_t spaces = 0;
    for (uint32_t i = 0; i < counted; ++i) spaces += chars[i] == kSpace;
    (spaces ? wordExtra : charExtra) = Divided(remaining, spaces ? spaces : counted);
  } else {
    wordExtra = MapLinear(record.fMatrix, spacing.fWordExtra);
    charExtra = MapLinear(record.fMatrix, spacing.fCharExtra);
  }
  hsPoint total{};
  for (uint32_t i = 0; i < counted; ++i) {
    total = total + (chars[i] == kSpace ? wordExtra : charExtra);
    positions[i] = positions[i] + total;
  }
  for (uint32_t i = counted; i <= count; ++i) positions[i] = positions[i] + total;
}

uint32_t hsGTextContext::GetWidths(uint32_t length, const void* text, const hsGTextSpacing* spacing, hsFixed out[],
                                   uint32_t stride) {
  const uint32_t count = CountChars(length, text);
  std::vector<uint16_t> chars(count);
  std::vector<hsPoint> positions(size_t{count} + 1);
  Decode(length, text, count, chars.data());
  for (uint32_t i = 0; i < count; ++i) {
    const hsGGlyph& glyph = *fStrike->GetGlyph(chars[i]);
    positions[i + 1] = positions[i] + hsPoint{glyph.fAdvanceX, glyph.fAdvanceY} + fAdvanceExtra;
  }
  if (Kerns(count)) fStrike->KernGlyphs(count, chars.data(), nullptr, positions.data());
  if (spacing) AddSpacing(*spacing, count, chars.data(), positions.data());
  auto* at = reinterpret_cast<char*>(out);
  for (uint32_t i = 0; i < count; ++i, at += stride) {
    const hsFixed width = hsWrapSub(positions[i + 1].fX, positions[i].fX);
    std::memcpy(at, &width, sizeof width);
  }
  return count;
}

void hsGTextContext::GetMetrics(hsPoint* ascent, hsPoint* descent, hsPoint* baseline) const {
  if (ascent) *ascent = fStrike->Ascent();
  if (descent) *descent = fStrike->Descent();
  if (baseline) *baseline = fStrike->Baseline();
}

void hsGTextContext::Purge() {
  fStrike->Purge();
  for (uint32_t i = 0; i < fCount; ++i) fGlyphs[i].fImage = nullptr;
}

void hsGTextContext::DrawUnderline(hsGRawDraw* raw, hsFixed x, hsFixed y, hsFixed dx, hsFixed dy) const {
  hsMatrix inverse;
  if (!raw->fMatrix->Invert(&inverse)) return;
  hsPoint ends[2] = {{x, y}, {hsWrapAdd(x, dx), hsWrapAdd(y, dy)}};
  inverse.MapPoints(2, ends, ends);
  const hsFixed top = hsWrapAdd(ends[0].fY, fUnderline.fPosition);
  const uint32_t saved = raw->fAttr->Flags();
  raw->fAttr->SetFlags(saved | hsGAttribute::kGrowEmptyRects);
  raw->DrawRect({ends[0].fX, top, ends[1].fX, hsWrapAdd(top, fUnderline.fThickness)});
  raw->fAttr->SetFlags(saved);
}
