#include "gfx/text/hsgscalercontext.h"

#include <cstring>
#include <memory>
#include <vector>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/hsgrawdraw.h"
#include "gfx/text/hsgfontregistry.h"
#include "gfx/text/hsgsbitcontext.h"
#include "gfx/text/hsgscalercontextt2k.h"
#include "gfx/text/hsgstrike.h"
#include "gfx/vector/hsscan.h"

namespace {

bool FindRecord(const hsDescriptor* desc, hsGScalerRecord* record) {
  int32_t length = 0;
  const void* data = hsDescriptor::Find(desc, kRecord_FontScalerDesc, &length);
  if (!hsAssert(data && length == int32_t(sizeof *record), "need kRecord_FontScalerDesc")) return false;
  std::memcpy(static_cast<void*>(record), data, sizeof *record);
  return true;
}

// The same text without its outlining and transformation.
hsDescriptor* PlainCopy(const hsDescriptor* desc, hsGScalerRecord record) {
  record.fMatrix.Reset();
  record.fOutlineStyle = 0;
  record.fOutlineMiter = record.fOutlineWidth = 0;
  hsDescriptor* plain = hsDescriptor::Copy(desc, nullptr);
  std::memcpy(hsDescriptor::Find(plain, kRecord_FontScalerDesc), &record, sizeof record);
  hsDescriptor::ComputeCheckSum(plain);
  return plain;
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
  if (FindRecord(desc, &fRecord) && fRecord.fOutlineWidth != 0) fStrokeDesc = PlainCopy(desc, fRecord);
}

hsGScalerContext::~hsGScalerContext() noexcept(false) {
  if (fStrokeDesc) hsDescriptor::Delete(fStrokeDesc);
}

void hsGScalerContext::KernGlyphs(uint32_t, const uint16_t[], hsGGlyph[], hsPoint[]) {
  hsAssert(false, "KernGlyphs called but fDoesKerning is false");
}

void hsGScalerContext::Measure(hsGGlyph* glyph) {
  GenerateMetrics(glyph);
  if (glyph->fWidth != 0 && fStrokeDesc) {
    hsPath path;
    StrokedOutline(*glyph, &path);
    hsRect rect;
    hsIntRect bounds;
    path.ComputeBounds(&rect, false);
    rect.RoundOut(&bounds);
    const bool fits = bounds.Width() <= UINT16_MAX && bounds.Height() <= UINT16_MAX;
    glyph->fWidth = fits ? uint16_t(bounds.Width()) : 0;
    glyph->fHeight = fits ? uint16_t(bounds.Height()) : 0;
    glyph->fLeft = hsIntToFixed(bounds.fLeft);
    glyph->fTop = hsIntToFixed(bounds.fTop);
  }
  const uint32_t width = glyph->fWidth;
  switch (fMaskType) {
    case kMask_Bit: glyph->fRowBytes = (width + 7) >> 3; break;
    case kMask_Alpha:
    case kMask_3D: glyph->fRowBytes = width; break;
    case kMask_LCD:
      hsAssert(!fStrokeDesc && fRecord.fFlags & hsGScalerRecord::kLCDAllowed, "unexpected LCD mask");
      glyph->fRowBytes = width * 3 + 2;
      break;
    default: hsThrowReported("bad mask type", fMaskType, hsException::kBadParam);
  }
}

bool hsGScalerContext::GetImage(const hsGGlyph& glyph, uint8_t* buffer) {
  return fStrokeDesc ? RenderOutline(glyph, buffer) : GenerateImage(glyph, buffer);
}

void hsGScalerContext::GetOutline(const hsGGlyph& glyph, hsPath* path) {
  if (fStrokeDesc) return StrokedOutline(glyph, path);
  GeneratePath(glyph, path);
}

void hsGScalerContext::StrokedOutline(const hsGGlyph& glyph, hsPath* path) {
  if (!hsAssert(fStrokeDesc, "need fStrokeDesc")) return;
  hsGStrike* plain = hsGStrike::FindOrCreate(fStrokeDesc);
  const hsPath outline = *plain->GetPath(plain->GetGlyph(glyph.fCharCode));
  plain->Release();
  const hsFixed half = hsFixMulSat(fRecord.fOutlineWidth, fRecord.fTextSize) / 2;
  if (half < 1) {
    *path = outline;
  } else {
    HSScan::StrokePath(&outline, half, fRecord.fOutlineMiter, fRecord.fOutlineStyle, path);
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
  hsGRawDraw draw;
  draw.fBitmap = &bitmap;
  draw.fMatrix = &identity;
  draw.fAttr = &paint;
  draw.DrawPath(path);
  for (uint32_t y = 0; bits && y < glyph.fHeight; ++y)
    PackBits(coverage.data() + size_t{y} * glyph.fWidth, glyph.fWidth, buffer + size_t{y} * glyph.fRowBytes);
  return true;
}
