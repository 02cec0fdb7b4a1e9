#include "gfx/text/hsgsbitcontext.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgcolor.h"
#include "gfx/pixel/hsgcolortable.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/texels.h"
#include "gfx/text/hsgfontregistry.h"
#include "gfx/vector/hspath.h"

namespace {

// A source of coverage with nothing around it.
struct Source {
  const uint8_t* bytes;
  int32_t width, height;

  int At(int32_t x, int32_t y) const {
    if (uint32_t(x) >= uint32_t(width) || uint32_t(y) >= uint32_t(height)) return 0;
    return bytes[size_t(y) * size_t(width) + size_t(x)];
  }
  uint8_t Filtered(const hsPoint& p) const {
    const int32_t x = p.fX >> 16, y = p.fY >> 16;
    const auto& w = kBilerpWeights[(p.fY >> 14 & 3) * 4 + (p.fX >> 14 & 3)];
    return uint8_t((At(x, y) * w[0] + At(x + 1, y) * w[1] + At(x, y + 1) * w[2] + At(x + 1, y + 1) * w[3]) >> 4);
  }
};

}  // namespace

hsGSbitContext::hsGSbitContext(const hsDescriptor* desc, bool) : hsGScalerContext(desc) {
  fMaskType = fRecord.fFlags & hsGScalerRecord::kAntiAlias ? kMask_Alpha : kMask_Bit;
  // The registry makes no other kind of font.
  fFont = hsShare(static_cast<hsGFontT2K*>(hsGFontRegistry::GetFontByID(fRecord.fFontID)));
  if (!hsAssert(fFont, "font is nil")) return;
  const hsGFontAccess access(fFont.get());
  if (!hsAssert(fTables.Load(fFont.get()), "missing bloc/bdat tables")) return;

  const hsMatrix device = MakeDeviceMatrix();
  const auto& m = device.fMap;
  fTables.ChooseStrike(std::max(hsMagnitudeSat(m[0][0], m[1][0]), hsMagnitudeSat(m[0][1], m[1][1])));
  if (!fTables.HasStrike()) return;
  // The reciprocals are rounded: at a size of 10 a strike of 10 comes out a trifle larger than it is, and its bits are
  // fetched a trifle too early. Sizes whose reciprocal is exact or falls short show their pixels as they are.
  const hsFixed perPixel[2] = {hsFixDiv(kFixed1, hsIntToFixed(fTables.PpemX())),
                               hsFixDiv(kFixed1, hsIntToFixed(fTables.PpemY()))};
  for (int row = 0; row < 2; ++row)
    for (int axis = 0; axis < 2; ++axis) fResidual.fMap[row][axis] = hsFixMulSat(m[row][axis], perPixel[axis]);
}

hsMatrix hsGSbitContext::MakeDeviceMatrix() const {
  hsMatrix device = fRecord.fMatrix;
  for (int row = 0; row < 2; ++row)
    for (int axis = 0; axis < 2; ++axis)
      device.fMap[row][axis] = hsFixMulSat(fRecord.fMatrix.fMap[row][axis], fRecord.fTextSize);
  return device;
}

void hsGSbitContext::GenerateMetrics(hsGGlyph* glyph) {
  glyph->fWidth = glyph->fHeight = 0;
  glyph->fLeft = glyph->fTop = glyph->fAdvanceX = glyph->fAdvanceY = 0;
  glyph->fGlyphID = 0;
  if (!fFont) return;
  const hsGFontAccess access(fFont.get());
  const hsSbitTables::Entry entry = fTables.Find(glyph->fCharCode);
  if (entry.imageFormat == 0) return;
  glyph->fWidth = uint16_t(entry.width);
  glyph->fHeight = uint16_t(entry.height);
  glyph->fLeft = hsIntToFixed(entry.bearingX);
  glyph->fTop = hsIntToFixed(-entry.bearingY);
  glyph->fAdvanceX = hsIntToFixed(entry.advance);
  if (!(fResidual.GetType() & (hsMatrix::kScaleType | hsMatrix::kAffineType))) return;
  hsPoint advance = {glyph->fAdvanceX, 0};
  fResidual.MapVectors(1, &advance, &advance);
  glyph->fAdvanceX = advance.fX;
  glyph->fAdvanceY = advance.fY;
  hsRect rect = {glyph->fLeft, glyph->fTop, hsWrapAdd(glyph->fLeft, hsIntToFixed(entry.width)),
                 hsWrapAdd(glyph->fTop, hsIntToFixed(entry.height))};
  fResidual.MapRect(&rect, &rect);
  // The size is rounded, the corner isn't: the image begins with the first of the strike's pixels wherever it is.
  glyph->fWidth = uint16_t(hsFixedRound(hsWrapSub(rect.fRight, rect.fLeft)));
  glyph->fHeight = uint16_t(hsFixedRound(hsWrapSub(rect.fBottom, rect.fTop)));
  glyph->fLeft = rect.fLeft;
  glyph->fTop = rect.fTop;
}

bool hsGSbitContext::GenerateImage(const hsGGlyph& glyph, uint8_t* buffer) {
  const bool grey = fMaskType == kMask_Alpha;
  const uint32_t rowBytes = glyph.fRowBytes;
  std::memset(buffer, 0, size_t{rowBytes} * glyph.fHeight);
  const hsGFontAccess access(fFont.get());
  const hsSbitTables::Entry entry = fTables.Find(glyph.fCharCode);
  if (entry.imageFormat == 0) return false;
  const std::vector<uint8_t> bytes = fTables.Pixels(entry);
  const Source source = {bytes.data(), entry.width, entry.height};

  // From the bits to the target's pixels, and back.
  hsMatrix place, corner;
  place.SetTranslate(hsIntToFixed(entry.bearingX), hsIntToFixed(-entry.bearingY));
  corner.SetConcat(fResidual, place);
  corner.PostTranslate(hsWrapNeg(glyph.fLeft), hsWrapNeg(glyph.fTop));
  hsMatrix inverse;
  if (!corner.Invert(&inverse)) return true;
  const auto& m = inverse.fMap;
  for (uint32_t y = 0; y < glyph.fHeight; ++y) {
    hsPoint p = {hsWrapAdd(hsWrapMul(m[0][1], int32_t(y)), m[0][2]),
                 hsWrapAdd(hsWrapMul(m[1][1], int32_t(y)), m[1][2])};
    uint8_t* row = buffer + size_t{y} * rowBytes;
    for (uint32_t x = 0; x < glyph.fWidth; ++x, p = p + hsPoint{m[0][0], m[1][0]}) {
      if (grey) {
        row[x] = source.Filtered(p);
      } else if (source.At(p.fX >> 16, p.fY >> 16)) {
        row[x / 8] |= uint8_t(0x80 >> (x & 7));
      }
    }
  }
  return true;
}

void hsGSbitContext::GeneratePath(const hsGGlyph& glyph, hsPath* path) {
  const hsRect rect = {glyph.fLeft, glyph.fTop, hsWrapAdd(glyph.fLeft, hsIntToFixed(glyph.fWidth)),
                       hsWrapAdd(glyph.fTop, hsIntToFixed(glyph.fHeight))};
  path->AddRect(&rect);
  path->Transform(&fResidual);
}

void hsGSbitContext::GetFontMetrics(hsPoint* ascent, hsPoint* descent, hsPoint* baseline) {
  hsPoint points[3] = {{0, 0}, {0, 0}, {kFixed1, 0}};
  if (fTables.HasStrike()) {
    points[0].fY = hsIntToFixed(-fTables.Ascent());
    points[1].fY = hsIntToFixed(-fTables.Descent());
  }
  fResidual.MapVectors(3, points, points);
  if (ascent) *ascent = points[0];
  if (descent) *descent = points[1];
  if (!baseline) return;
  const hsFixed length = hsMagnitudeSat(points[2].fX, points[2].fY);
  *baseline = {hsFixDiv(points[2].fX, length), hsFixDiv(points[2].fY, length)};
}
