#include "gfx/text/hsgscalercontext.h"

#include <cstring>
#include <memory>
#include <vector>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgcreateproc.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/hsgmaskfilter.h"
#include "gfx/pixel/hsgrasterizer.h"
#include "gfx/pixel/hsgrawdraw.h"
#include "gfx/text/hsgfontregistry.h"
#include "gfx/text/hsgsbitcontext.h"
#include "gfx/text/hsgscalercontextt2k.h"
#include "gfx/text/hsgstrike.h"
#include "gfx/vector/hsgpatheffect.h"
#include "gfx/vector/hsscan.h"

namespace {

bool FindRecord(const hsDescriptor* desc, hsGScalerRecord* record) {
  int32_t length = 0;
  const void* data = hsDescriptor::Find(desc, kRecord_FontScalerDesc, &length);
  if (!hsAssert(data && length == int32_t(sizeof *record), "need kRecord_FontScalerDesc")) return false;
  std::memcpy(static_cast<void*>(record), data, sizeof *record);
  return true;
}

// The same text without outlining, effects and transformation.
hsDescriptor* PlainCopy(const hsDescriptor* desc, hsGScalerRecord record) {
  record.fMatrix.Reset();
  record.fOutlineWidth = 0;
  hsDescriptor* plain = hsDescriptor::Copy(desc, nullptr);
  for (uint32_t tag : {kRecord_PathEffect, kRecord_Rasterizer, kRecord_MaskFilter}) hsDescriptor::Remove(plain, tag);
  std::memcpy(hsDescriptor::Find(plain, kRecord_FontScalerDesc), &record, sizeof record);
  hsDescriptor::ComputeCheckSum(plain);
  return plain;
}

// The effect of an entry, made for the text size; null without one.
template <class Effect>
hsRef<Effect> RebuildEffect(const hsDescriptor* desc, uint32_t tag, hsFixed textSize) {
  int32_t length = 0;
  const void* data = hsDescriptor::Find(desc, tag, &length);
  if (!data) return nullptr;
  uint32_t number;
  if (!hsAssert(length >= int32_t(sizeof number), "bad dataLength")) return nullptr;
  std::memcpy(&number, data, sizeof number);
  const hsGCreateProc create = hsGFindCreateProc(number);
  if (!hsAssert(create, "need create proc")) return nullptr;
  const char* const end = static_cast<const char*>(data) + length;
  const void* cursor = static_cast<const char*>(data) + sizeof number;
  const auto made = hsAdopt(create(&cursor, textSize));
  hsAssert(cursor == end, "bad dataLength");
  return hsShare(dynamic_cast<Effect*>(made.get()));
}

hsIntRect BoundsOf(const hsGGlyph& glyph) {
  const int32_t left = hsFixedRound(glyph.fLeft), top = hsFixedRound(glyph.fTop);
  return {left, top, left + glyph.fWidth, top + glyph.fHeight};
}

// What is larger than a glyph can be is nothing.
void SetBounds(const hsIntRect& bounds, hsGGlyph* glyph) {
  const int64_t width = int64_t{bounds.fRight} - bounds.fLeft, height = int64_t{bounds.fBottom} - bounds.fTop;
  const bool fits = width >= 0 && height >= 0 && width <= UINT16_MAX && height <= UINT16_MAX;
  glyph->fWidth = fits ? uint16_t(width) : 0;
  glyph->fHeight = fits ? uint16_t(height) : 0;
  glyph->fLeft = hsWrapShl(bounds.fLeft, 16);
  glyph->fTop = hsWrapShl(bounds.fTop, 16);
}

// Eight bytes of coverage to a byte of bits.
void PackBits(const uint8_t* src, int32_t width, uint8_t* dst) {
  for (int32_t x = 0; x < width; ++x) {
    const uint8_t bit = uint8_t(0x80 >> (x & 7));
    if (x % 8 == 0) dst[x / 8] = 0;
    dst[x / 8] |= src[x] & bit;
  }
}

}  // namespace

hsGScalerContext* hsGScalerContext::Create(const hsDescriptor* desc) {
  if (hsDescriptor::Find32(desc, kRecord_FontScaler) != kScaler_Registered) return nullptr;
  hsGScalerRecord record;
  if (!FindRecord(desc, &record)) return nullptr;
  if (hsGFontRegistry::GetFontByID(record.fFontID)->Format() == kFontFormat_BitmapOnly)
    return new hsGSbitContext(desc, record.fEncoding != 0);
  return new hsGScalerContextT2K(desc);
}

hsGScalerContext::hsGScalerContext(const hsDescriptor* desc) {
  if (!FindRecord(desc, &fRecord)) return;
  fPathEffect = RebuildEffect<hsGPathEffect>(desc, kRecord_PathEffect, fRecord.fTextSize);
  fRasterizer = RebuildEffect<hsGRasterizer>(desc, kRecord_Rasterizer, fRecord.fTextSize);
  fMaskFilter = RebuildEffect<hsGMaskFilter>(desc, kRecord_MaskFilter, fRecord.fTextSize);
  if (fRecord.fOutlineWidth != 0 || fPathEffect || fRasterizer) fStrokeDesc = PlainCopy(desc, fRecord);
}

hsGScalerContext::~hsGScalerContext() {
  if (fStrokeDesc) hsDescriptor::Delete(fStrokeDesc);
}

void hsGScalerContext::KernGlyphs(uint32_t, const uint16_t[], hsGGlyph[], hsPoint[]) {
  hsAssert(false, "KernGlyphs called but fDoesKerning is false");
}

// By the outline where glyphs are drawn by it, else as the font's own kind says.
void hsGScalerContext::MeasureUnfiltered(hsGGlyph* glyph) {
  GenerateMetrics(glyph);
  if (glyph->fWidth == 0 || !fStrokeDesc) return;
  hsPath path;
  StrokedOutline(*glyph, &path);
  hsIntRect bounds = {0, 0, 0, 0};
  if (!fRasterizer) {
    hsRect rect;
    path.ComputeBounds(&rect, false);
    rect.RoundOut(&bounds);
  } else if (!fRasterizer->ComputeBounds(path, hsMatrix(), &bounds)) {
    bounds = {0, 0, 0, 0};
  }
  SetBounds(bounds, glyph);
}

void hsGScalerContext::Measure(hsGGlyph* glyph) {
  MeasureUnfiltered(glyph);
  if (glyph->fWidth != 0 && fMaskFilter) {
    hsIntRect bounds = BoundsOf(*glyph);
    fMaskFilter->ComputeBounds(fRecord.fMatrix, &bounds);
    SetBounds(bounds, glyph);
  }
  const uint32_t width = glyph->fWidth;
  switch (fMaskType) {
    case kMask_Bit: glyph->fRowBytes = (width + 7) >> 3; break;
    case kMask_Alpha:
    case kMask_3D: glyph->fRowBytes = width; break;
    case kMask_LCD:
      hsAssert(!fStrokeDesc && !fMaskFilter && fRecord.fFlags & hsGScalerRecord::kLCDAllowed, "unexpected LCD mask");
      glyph->fRowBytes = width * 3 + 2;
      break;
    default: hsThrowReported("bad mask type", fMaskType, hsException::kBadParam);
  }
}

bool hsGScalerContext::GetImage(const hsGGlyph& glyph, uint8_t* buffer) {
  return fMaskFilter ? RenderFiltered(glyph, buffer) : RenderUnfiltered(glyph, buffer);
}

bool hsGScalerContext::GetRows(const hsGGlyph& glyph, int first, int count, uint8_t* buffer) {
  return !fMaskFilter && !fStrokeDesc && GenerateRows(glyph, first, count, buffer);
}

bool hsGScalerContext::RenderUnfiltered(const hsGGlyph& glyph, uint8_t* buffer) {
  return fStrokeDesc ? RenderOutline(glyph, buffer) : GenerateImage(glyph, buffer);
}

// The image without the filter's margin, filtered, must come out as large as the glyph was measured.
bool hsGScalerContext::RenderFiltered(const hsGGlyph& glyph, uint8_t* buffer) {
  hsGGlyph plain = glyph;
  MeasureUnfiltered(&plain);
  hsGMask mask;
  mask.fBounds = BoundsOf(plain);
  mask.fMaskType = fMaskType;
  mask.fRowBytes = plain.fWidth;
  plain.fRowBytes = plain.fWidth;
  mask.AllocImage();
  if (!RenderUnfiltered(plain, mask.fImage)) return false;

  hsGMask filtered;
  const hsGMask& result = fMaskFilter->FilterMask(mask, fRecord.fMatrix, &filtered) ? filtered : mask;
  if (!hsAssert(result.fBounds.Width() == glyph.fWidth, "bad width")) return false;
  if (!hsAssert(result.fBounds.Height() == glyph.fHeight, "bad height")) return false;
  if (!hsAssert(result.fRowBytes == glyph.fRowBytes, "bad rb")) return false;
  std::memcpy(buffer, result.fImage, size_t{glyph.fRowBytes} * glyph.fHeight);
  return true;
}

void hsGScalerContext::GetOutline(const hsGGlyph& glyph, hsPath* path) {
  if (fStrokeDesc) return StrokedOutline(glyph, path);
  GeneratePath(glyph, path);
}

void hsGScalerContext::StrokedOutline(const hsGGlyph& glyph, hsPath* path) {
  if (!hsAssert(fStrokeDesc, "need fStrokeDesc")) return;
  const auto plain = hsAdopt(hsGStrike::FindOrCreate(fStrokeDesc));
  hsPath outline = *plain->GetPath(plain->GetGlyph(glyph.fCharCode));
  hsFixed width = hsFixMulSat(fRecord.fOutlineWidth, fRecord.fTextSize);
  if (fPathEffect) {
    hsPath changed;
    hsFixed changedWidth = width == 0 ? -kFixed1 : width;  // to the effect no stroke is a fill
    if (fPathEffect->FilterPath(&fRecord.fMatrix, &changedWidth, &outline, &changed)) {
      outline = changed;
      width = changedWidth;
    }
  }
  if (width / 2 < 1) {
    *path = outline;
  } else {
    HSScan::StrokePath(&outline, width / 2, fRecord.fOutlineMiter, fRecord.fOutlineStyle, path);
  }
  if (fRecord.fMatrix.GetType()) path->Transform(&fRecord.fMatrix);
}

bool hsGScalerContext::RenderOutline(const hsGGlyph& glyph, uint8_t* buffer) {
  hsPath path;
  StrokedOutline(glyph, &path);
  path.Offset(hsWrapNeg(glyph.fLeft), hsWrapNeg(glyph.fTop));

  const bool bits = fMaskType == kMask_Bit;
  std::vector<uint8_t> coverage(bits ? size_t{glyph.fWidth} * glyph.fHeight : 0);
  hsGBitmap bitmap;
  bitmap.SetConfig(hsGBitmap::kConfig_Alpha8);
  bitmap.fWidth = glyph.fWidth;
  bitmap.fHeight = glyph.fHeight;
  bitmap.fRowBytes = glyph.fWidth;
  bitmap.fImage = bits ? coverage.data() : buffer;
  std::memset(bitmap.fImage, 0, size_t{glyph.fWidth} * glyph.fHeight);

  const hsMatrix identity;
  hsGAttribute paint(bits ? 0 : uint32_t{hsGAttribute::kAntiAlias});
  paint.SetRasterizer(fRasterizer.get());
  hsGRawDraw draw;
  draw.fBitmap = &bitmap;
  draw.fMatrix = &identity;
  draw.fAttr = &paint;
  draw.DrawPath(path);
  for (uint32_t y = 0; bits && y < glyph.fHeight; ++y)
    PackBits(coverage.data() + size_t{y} * glyph.fWidth, glyph.fWidth, buffer + size_t{y} * glyph.fRowBytes);
  return true;
}
