#include "gfx/text/hsgscalercontextt2k.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsglibrary.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/text/hsgfontregistry.h"
#include "gfx/text/hsgt2kref.h"
#include "gfx/vector/hspath.h"

namespace {

constexpr int kGreyLevel = 3;
constexpr uint8_t kLargestCoverage = 0x7E;
constexpr int kLCDShift = 2;  // to the 0 to 31 that blitters take

constexpr hsFixed FromEngine(int32_t v26Dot6) { return hsWrapShl(v26Dot6, 10); }

int64_t Cross(const hsPoint& a, const hsPoint& b) { return int64_t{a.fX} * b.fY - int64_t{a.fY} * b.fX; }

hsPoint Unit(const hsPoint& v) {
  const hsFixed length = hsMagnitudeSat(v.fX, v.fY);
  return {hsFixDiv(v.fX, length), hsFixDiv(v.fY, length)};
}

// Where the line through `at` along `direction` meets the one through the pen along `slant`; unit vectors.
hsPoint Meet(const hsPoint& at, const hsPoint& direction, const hsPoint& slant) {
  const int64_t turn = Cross(slant, direction) >> 16;
  if (turn == 0) return at;
  const hsFixed t = hsFixDiv(hsSaturate(Cross(at, direction) >> 16), hsSaturate(turn));
  return {hsFixMulSat(slant.fX, t), hsFixMulSat(slant.fY, t)};
}

// Three values a pixel after two bytes of padding, and more padding up to whole pixels.
void CopyLCDRow(const uint8_t* src, int width, uint8_t* dst, uint32_t rowBytes) {
  std::memset(dst, 0, rowBytes);
  for (int x = 0; x < width && uint32_t(x) + 2 < rowBytes; ++x) {
    hsAssert(src[x] <= kLargestCoverage, "T2K value out of range");
    dst[x + 2] = uint8_t(src[x] >> kLCDShift);
  }
}

void AddContours(const GlyphClass& outline, hsPath* path) {
  std::vector<hsPoint> points;
  for (int c = 0; c < outline.contourCount; ++c) {
    const int first = outline.sp[c], count = outline.ep[c] - first + 1;
    if (count <= 2) continue;
    points.clear();
    for (int i = first; i < first + count; ++i)
      points.push_back({FromEngine(outline.x[i]), hsWrapNeg(FromEngine(outline.y[i]))});
    path->AddContourWithOnCurveFlags(count, points.data(), outline.onCurve + first, true);
  }
}

}  // namespace

bool hsFontOpens(uint32_t fontID) {
  return hsGT2KRef::Find(hsGFontRegistry::GetFontByID(fontID), kFixed1, true)->Open() != nullptr;
}

bool hsFontHasGlyph(uint32_t fontID, uint16_t code, bool unicode) {
  const hsRef<hsGT2KRef> font = hsGT2KRef::Find(hsGFontRegistry::GetFontByID(fontID), kFixed1, unicode);
  T2K* scaler = font->Open();
  return scaler && T2K_GetGlyphIndex(scaler, hsGScalerContextT2K::EngineCode(*font, code)) != 0;
}

hsFontState hsFontKnownState(uint32_t fontID) {
  for (const hsGT2KRef* ref : hsGLibrary::Current().fT2KRefs) {
    if (ref->FontID() != fontID) continue;
    if (ref->IsOpen()) return hsFontState::opens;
    if (ref->CannotOpen()) return hsFontState::fails;
  }
  return hsFontState::notTried;
}

hsGScalerContextT2K::hsGScalerContextT2K(const hsDescriptor* desc)
    : hsGScalerContext(desc),
      fRef(hsGT2KRef::Find(hsGFontRegistry::GetFontByID(fRecord.fFontID), fRecord.fSizeRatio, fRecord.fEncoding != 0)) {
  const bool grey = fRecord.fFlags & hsGScalerRecord::kAntiAlias;
  fGreyLevel = grey ? kGreyLevel : 0;
  fMaskType = grey ? kMask_Alpha : kMask_Bit;
  fCommand = fRecord.fFlags & hsGScalerRecord::kNoGridFit ? 0 : kT2KGridFit;
  const T2K* scaler = fRef->Open();
  fDoesKerning = scaler && scaler->font->kern;
}

hsGScalerContextT2K::~hsGScalerContextT2K() = default;

T2K* hsGScalerContextT2K::Scaler() {
  T2K* scaler = fRef->Open();
  if (!scaler) return nullptr;
  const auto& m = fRecord.fMatrix.fMap;
  const hsFixed size = fRecord.fTextSize;
  // The engine's y grows upward.
  const T2KMatrix matrix = {hsFixMulSat(m[0][0], size), hsWrapNeg(hsFixMulSat(m[0][1], size)),
                            hsWrapNeg(hsFixMulSat(m[1][0], size)), hsFixMulSat(m[1][1], size)};
  int error = 0;
  T2K_NewTransformation(scaler, true, 72, 72, &matrix, &error);
  if (error == 0) return scaler;
  fRef->CloseFailed("T2K_NewTransformation failed", error);
  return nullptr;
}

T2K* hsGScalerContextT2K::Render(uint16_t code, int command, const T2KRows& rows) {
  T2K* scaler = Scaler();
  if (!scaler) return nullptr;
  scaler->bitmapRows = rows;
  int error = 0;
  T2K_RenderGlyph(scaler, EngineCode(code), 0, 0, fGreyLevel, command, &error);
  if (error == 0) return scaler;
  fRef->CloseFailed("T2K_RenderGlyph failed", error);
  return nullptr;
}

void hsGScalerContextT2K::Purge() {
  int error = 0;
  T2K_PurgeMemory(fRef->Open(), 1, &error);
  if (error != 0) hsStatusMessage("T2K_PurgeMemory failed", error);
}

uint16_t hsGScalerContextT2K::EngineCode(const hsGT2KRef& font, uint16_t code) {
  if (!font.NeedsTranslation()) return code;
  const hsCharMapper mapper = hsGFontRegistry::CharMapper();
  return mapper ? mapper(code) : code & 0xFF;
}

void hsGScalerContextT2K::GenerateMetrics(hsGGlyph* glyph) {
  glyph->fWidth = glyph->fHeight = 0;
  glyph->fLeft = glyph->fTop = 0;
  glyph->fAdvanceX = glyph->fAdvanceY = 0;
  glyph->fGlyphID = 0;
  T2K* scaler = Render(glyph->fCharCode, fCommand | kT2KBitmap | kT2KBoundsOnly);
  if (!scaler) return;
  glyph->fGlyphID = T2K_GetGlyphIndex(scaler, EngineCode(glyph->fCharCode));
  const bool linear = fRecord.fFlags & hsGScalerRecord::kLinearAdvances;
  glyph->fAdvanceX = linear ? scaler->xLinearAdvanceWidth16Dot16 : scaler->xAdvanceWidth16Dot16;
  glyph->fAdvanceY = hsWrapNeg(linear ? scaler->yLinearAdvanceWidth16Dot16 : scaler->yAdvanceWidth16Dot16);
  const bool fits = scaler->width <= UINT16_MAX && scaler->height <= UINT16_MAX;
  if (scaler->width >= 1 && scaler->height >= 1 && fits) {
    glyph->fWidth = uint16_t(scaler->width);
    glyph->fHeight = uint16_t(scaler->height);
    glyph->fLeft = FromEngine(scaler->fLeft26Dot6);
    // The engine's top is that of the highest row's lower edge, so masks lie a row lower than outlines.
    glyph->fTop = hsWrapNeg(FromEngine(scaler->fTop26Dot6));
    if (fMaskType == kMask_LCD) {
      glyph->fWidth = uint16_t((scaler->width + 2 + 2) / 3);
      glyph->fLeft = glyph->fLeft / 3 - 0xAAAA;
    }
  }
  if (fMaskType == kMask_LCD) glyph->fAdvanceX /= 3;
  Purge();
}

bool hsGScalerContextT2K::GenerateImage(const hsGGlyph& glyph, uint8_t* buffer) {
  return GenerateRows(glyph, 0, glyph.fHeight, buffer);
}

bool hsGScalerContextT2K::GenerateRows(const hsGGlyph& glyph, int first, int count, uint8_t* buffer) {
  const T2K* scaler = Render(glyph.fCharCode, fCommand | kT2KBitmap, {first, first + count});
  if (!scaler) return false;
  const auto rowBytes = uint32_t(scaler->rowBytes);
  bool fits = hsAssert(scaler->height <= glyph.fHeight, "bad height");
  if (fMaskType == kMask_LCD) {
    const int pad = glyph.fWidth * 3 - scaler->width;
    fits = hsAssert(pad >= 2 && pad <= 4, "bad pad") && fits;
    fits = fits && hsAssert(glyph.fRowBytes == rowBytes + 2 + uint32_t(pad), "bad rowbytes");
  } else {
    fits = hsAssert(scaler->width <= glyph.fWidth && rowBytes <= glyph.fRowBytes, "bad width") && fits;
  }
  std::memset(buffer, 0, size_t{glyph.fRowBytes} * size_t(count));
  const int made = scaler->baseAddr ? std::min(count, scaler->height - first) : 0;
  for (int y = 0; fits && y < made; ++y) {
    const uint8_t* src = scaler->baseAddr + size_t(y) * rowBytes;
    uint8_t* dst = buffer + size_t(y) * glyph.fRowBytes;
    if (fMaskType == kMask_LCD) {
      CopyLCDRow(src, scaler->width, dst, glyph.fRowBytes);
    } else {
      std::memcpy(dst, src, rowBytes);
    }
  }
  Purge();
  return fits;
}

void hsGScalerContextT2K::GeneratePath(const hsGGlyph& glyph, hsPath* path) {
  const T2K* scaler = Render(glyph.fCharCode, fCommand | kT2KKeepGlyph);
  if (!scaler) return;
  if (scaler->glyph) AddContours(*scaler->glyph, path);
  Purge();
}

void hsGScalerContextT2K::GetFontMetrics(hsPoint* ascent, hsPoint* descent, hsPoint* baseline) {
  const T2K* scaler = Scaler();
  hsPoint top{}, bottom{}, along{}, slant{};
  if (scaler) {
    top = {scaler->xAscender, hsWrapNeg(scaler->yAscender)};
    bottom = {scaler->xDescender, hsWrapNeg(scaler->yDescender)};
    along = {scaler->xMaxLinearAdvanceWidth, hsWrapNeg(scaler->yMaxLinearAdvanceWidth)};
    slant = {scaler->caretDx, hsWrapNeg(scaler->caretDy)};
  }
  const auto& m = fRecord.fMatrix.fMap;
  const hsFixed size = fRecord.fTextSize;
  if (along == hsPoint{}) along = {hsFixMulSat(m[0][0], size), hsFixMulSat(m[1][0], size)};
  if (slant == hsPoint{}) slant = {hsWrapNeg(hsFixMulSat(m[0][1], size)), hsWrapNeg(hsFixMulSat(m[1][1], size))};
  along = Unit(along);
  slant = Unit(slant);
  if (ascent) *ascent = Meet(top, along, slant);
  if (descent) *descent = Meet(bottom, along, slant);
  if (baseline) *baseline = along;
}

void hsGScalerContextT2K::KernGlyphs(uint32_t count, const uint16_t chars[], hsGGlyph glyphs[], hsPoint positions[]) {
  if (!hsAssert(count > 1, "count should be > 1") || !hsAssert(fDoesKerning, "font doesn't have kerning")) return;
  T2K* scaler = Scaler();
  if (!scaler) return;
  std::vector<uint16_t> indices(count);
  for (uint32_t i = 0; i < count; ++i) indices[i] = T2K_GetGlyphIndex(scaler, EngineCode(chars[i]));
  hsPoint sum{}, half{};
  for (uint32_t i = 1; i < count; ++i) {
    int32_t units = 0, ignored = 0;
    if (indices[i] != 0) GetKernPair(scaler->font, indices[i - 1], indices[i], &units, &ignored);
    const hsFixed x = hsFixMulSat(hsIntToFixed(units), scaler->xMul);
    const hsPoint adjustment = {hsFixMulSat(scaler->t00, x), hsWrapNeg(hsFixMulSat(scaler->t10, x))};
    half = {adjustment.fX >> 1, adjustment.fY >> 1};
    if (glyphs) {
      glyphs[i - 1].fAdvanceX = hsWrapAdd(glyphs[i - 1].fAdvanceX, half.fX);
      glyphs[i - 1].fAdvanceY = hsWrapAdd(glyphs[i - 1].fAdvanceY, half.fY);
    }
    positions[i] = positions[i] + sum + half;
    sum = sum + adjustment;
  }
  positions[count] = positions[count] + sum - half;
}
