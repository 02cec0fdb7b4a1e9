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

constexpr uint32_t kFirstSize = 8, kSizeRecord = 0x30;
constexpr uint32_t kHorizontalMetrics = 0x10, kPpemX = 0x2C, kPpemY = 0x2D;  // in a size record
constexpr uint32_t kSmallMetrics = 5, kBigMetrics = 8;

// The glyphs of a font are used between these two.
class Access {
 public:
  explicit Access(hsGFontScaler* font) : fFont(font) { fFont->Acquire(); }
  ~Access() { fFont->Release(); }
  Access(const Access&) = delete;
  Access& operator=(const Access&) = delete;

 private:
  hsGFontScaler* fFont;
};

hsSfntBytes From(hsSfntBytes bytes, uint64_t offset) {
  return offset < bytes.size() ? bytes.subspan(size_t(offset)) : hsSfntBytes();
}

uint32_t RowBytes(int32_t width) { return uint32_t(width + 7) >> 3; }

// Rows that follow each other without padding, to rows of whole bytes.
void UnpackRows(hsSfntBytes src, int32_t width, int32_t height, uint8_t* dst) {
  const uint32_t rowBytes = RowBytes(width);
  const auto lastMask = uint8_t(0xFF << (-width & 7));
  for (int32_t y = 0; y < height; ++y, dst += rowBytes) {
    const uint32_t bit = uint32_t(y) * uint32_t(width);
    for (uint32_t i = 0; i < rowBytes; ++i) {
      const uint32_t pair = hsSfntU8(src, bit / 8 + i) << 8 | hsSfntU8(src, bit / 8 + i + 1);
      dst[i] = uint8_t(pair << (bit & 7) >> 8);
    }
    dst[rowBytes - 1] &= lastMask;
  }
}

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

// One byte a pixel from one bit.
std::vector<uint8_t> Expanded(const std::vector<uint8_t>& bits, int32_t width, int32_t height) {
  std::vector<uint8_t> bytes(size_t(width) * size_t(height));
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x)
      if (bits[size_t(y) * RowBytes(width) + size_t(x / 8)] & 0x80 >> (x & 7))
        bytes[size_t(y) * size_t(width) + size_t(x)] = 0xFF;
  return bytes;
}

}  // namespace

hsGSbitContext::hsGSbitContext(const hsDescriptor* desc, bool) : hsGScalerContext(desc) {
  fMaskType = fRecord.fFlags & hsGScalerRecord::kAntiAlias ? kMask_Alpha : kMask_Bit;
  // The registry makes no other kind of font.
  fFont = hsShare(static_cast<hsGFontT2K*>(hsGFontRegistry::GetFontByID(fRecord.fFontID)));
  if (!hsAssert(fFont, "font is nil")) return;
  const Access access(fFont.get());
  if (!hsAssert(LoadTables(), "missing bloc/bdat tables")) return;

  const hsMatrix device = MakeDeviceMatrix();
  const auto& m = device.fMap;
  ChooseStrike(std::max(hsMagnitudeSat(m[0][0], m[1][0]), hsMagnitudeSat(m[0][1], m[1][1])));
  if (fStrike == 0) return;
  // The reciprocals are rounded: at a size of 10 a strike of 10 comes out a trifle larger than it is, and its bits are
  // fetched a trifle too early. Sizes whose reciprocal is exact or falls short show their pixels as they are.
  const auto reciprocal = [&](uint32_t at) {
    return hsFixDiv(kFixed1, hsIntToFixed(int32_t(hsSfntU8(fLocation, fStrike + at))));
  };
  const hsFixed perPixel[2] = {reciprocal(kPpemX), reciprocal(kPpemY)};
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

bool hsGSbitContext::LoadTables() {
  fLocation = fFont->ReadTable(hsTag("bloc"));
  if (fLocation.empty()) fLocation = fFont->ReadTable(hsTag("EBLC"));
  fDataOffset = fFont->FindTable(hsTag("bdat"), &fDataLength);
  if (fDataOffset == 0) fDataOffset = fFont->FindTable(hsTag("EBDT"), &fDataLength);
  return !fLocation.empty() && fDataOffset != 0;
}

void hsGSbitContext::ChooseStrike(hsFixed ppem) {
  const uint32_t count = hsSfntU32(fLocation, 4);
  if (!hsAssert(count != 0, "count is 0")) return;
  uint32_t best = UINT32_MAX;
  for (uint64_t i = 0; i < count; ++i) {
    const uint64_t record = kFirstSize + i * kSizeRecord;
    if (record + kSizeRecord > fLocation.size()) break;
    const hsFixed size = hsIntToFixed(int32_t(hsSfntU8(fLocation, record + kPpemY)));
    const uint32_t distance = hsMagnitude32(hsWrapSub(size, ppem));
    if (distance > best) continue;
    best = distance;
    fStrike = uint32_t(record);
  }
  hsAssert(fStrike != 0, "bad index");
}

std::vector<uint8_t> hsGSbitContext::ReadData(uint32_t offset, uint32_t length) {
  const uint32_t size = fFont->GetDataSize();
  if (offset >= fDataLength || fDataOffset >= size || offset >= size - fDataOffset) return {};
  length = std::min({length, fDataLength - offset, size - fDataOffset - offset});
  std::vector<uint8_t> bytes(length);
  if (length != 0) fFont->ReadData(fDataOffset + offset, length, bytes.data());
  return bytes;
}

bool hsGSbitContext::Locate(hsSfntBytes subtable, uint32_t glyph, uint32_t first, Entry* entry) const {
  // The place of the glyph among pairs of glyph and offset; UINT32_MAX if it isn't there.
  const auto search = [&](uint32_t at, uint32_t count) {
    for (uint32_t i = 0; i < count && at + (uint64_t{i} + 1) * 4 <= subtable.size(); ++i) {
      const uint32_t listed = hsSfntU16(subtable, at + uint64_t{i} * 4);
      if (listed >= glyph) return listed == glyph ? i : UINT32_MAX;
    }
    return UINT32_MAX;
  };
  const uint64_t index = glyph - first;
  switch (hsSfntU16(subtable, 0)) {
    case 1:
      entry->location = hsSfntU32(subtable, 8 + 4 * index);
      entry->length = hsSfntU32(subtable, 12 + 4 * index) - entry->location;
      return true;
    case 2:  // all glyphs of the range share the first one's place; fonts are drawn so
      entry->location = 0;
      entry->length = hsSfntU32(subtable, 8);
      return true;
    case 3:
      entry->location = hsSfntU16(subtable, 8 + 2 * index);
      entry->length = hsSfntU16(subtable, 10 + 2 * index) - entry->location;
      return true;
    case 4: {
      const uint32_t place = search(12, hsSfntU32(subtable, 8));
      if (place == UINT32_MAX) return false;
      entry->location = hsSfntU16(subtable, 14 + uint64_t{place} * 4);
      entry->length = hsSfntU16(subtable, 18 + uint64_t{place} * 4) - entry->location;
      return true;
    }
    case 5: {
      const uint32_t place = search(24, hsSfntU32(subtable, 20));
      if (place == UINT32_MAX) return false;
      entry->length = hsSfntU32(subtable, 8);
      entry->location = hsSfntU16(subtable, 26 + uint64_t{place} * 4);
      return true;
    }
    default: return false;
  }
}

// The five bytes of metrics, in the location table or in front of the image.
hsSfntBytes hsGSbitContext::MetricsOf(hsSfntBytes subtable, const Entry& entry, std::vector<uint8_t>* storage) {
  const uint32_t indexFormat = hsSfntU16(subtable, 0);
  if (indexFormat == 2 || indexFormat == 5) return From(subtable, 12);
  *storage = ReadData(entry.location, kSmallMetrics);
  return *storage;
}

hsGSbitContext::Entry hsGSbitContext::FindEntry(uint16_t code) {
  Entry entry;
  if (fStrike == 0) return entry;
  const uint32_t glyph = fFont->CharToGlyph(code);
  const uint32_t array = hsSfntU32(fLocation, fStrike), count = hsSfntU32(fLocation, fStrike + 8);
  for (uint64_t i = 0; i < count && array + (i + 1) * 8 <= fLocation.size(); ++i) {
    const uint64_t range = array + i * 8;
    const uint32_t first = hsSfntU16(fLocation, range);
    if (glyph < first || glyph > hsSfntU16(fLocation, range + 2)) continue;
    const hsSfntBytes subtable = From(fLocation, uint64_t{array} + hsSfntU32(fLocation, range + 4));
    const uint32_t format = hsSfntU16(subtable, 2);
    if (format != 1 && format != 2 && (format < 5 || format > 7)) return entry;
    if (!Locate(subtable, glyph, first, &entry)) return entry;
    entry.location += hsSfntU32(subtable, 4);
    std::vector<uint8_t> storage;
    const hsSfntBytes metrics = MetricsOf(subtable, entry, &storage);
    if (metrics.size() < kSmallMetrics) return entry;
    entry.imageFormat = format;
    entry.height = metrics[0];
    entry.width = metrics[1];
    entry.bearingX = int8_t(metrics[2]);
    entry.bearingY = int8_t(metrics[3]);
    entry.advance = metrics[4];
    return entry;
  }
  return entry;
}

void hsGSbitContext::GenerateMetrics(hsGGlyph* glyph) {
  glyph->fWidth = glyph->fHeight = 0;
  glyph->fLeft = glyph->fTop = glyph->fAdvanceX = glyph->fAdvanceY = 0;
  glyph->fGlyphID = 0;
  if (!fFont) return;
  const Access access(fFont.get());
  const Entry entry = FindEntry(glyph->fCharCode);
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

// The glyph's bits in rows of whole bytes.
std::vector<uint8_t> hsGSbitContext::Unpack(const Entry& entry) {
  const std::vector<uint8_t> data = ReadData(entry.location, entry.length);
  const uint32_t rowBytes = RowBytes(entry.width);
  std::vector<uint8_t> bits(size_t{rowBytes} * size_t(entry.height));
  if (bits.empty()) return bits;
  switch (entry.imageFormat) {
    case 1:
    case 6: {
      const hsSfntBytes rows = From(data, entry.imageFormat == 1 ? kSmallMetrics : kBigMetrics);
      std::copy_n(rows.begin(), std::min(rows.size(), bits.size()), bits.begin());
      break;
    }
    case 2: UnpackRows(From(data, kSmallMetrics), entry.width, entry.height, bits.data()); break;
    case 7: UnpackRows(From(data, kBigMetrics), entry.width, entry.height, bits.data()); break;
    case 5: UnpackRows(data, entry.width, entry.height, bits.data()); break;
    default: hsThrowReported("unsupported bdat format", int32_t(entry.imageFormat), hsException::kBadParam);
  }
  return bits;
}

bool hsGSbitContext::GenerateImage(const hsGGlyph& glyph, uint8_t* buffer) {
  const bool grey = fMaskType == kMask_Alpha;
  const uint32_t rowBytes = glyph.fRowBytes;
  std::memset(buffer, 0, size_t{rowBytes} * glyph.fHeight);
  const Access access(fFont.get());
  const Entry entry = FindEntry(glyph.fCharCode);
  if (entry.imageFormat == 0) return false;
  const std::vector<uint8_t> bytes = Expanded(Unpack(entry), entry.width, entry.height);
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
    hsPoint p = {hsWrapAdd(int32_t(uint32_t(m[0][1]) * y), m[0][2]),
                 hsWrapAdd(int32_t(uint32_t(m[1][1]) * y), m[1][2])};
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
  const auto metric = [&](uint32_t at) { return hsIntToFixed(-int8_t(hsSfntU8(fLocation, fStrike + at))); };
  hsPoint points[3] = {
      {0, fStrike ? metric(kHorizontalMetrics) : 0}, {0, fStrike ? metric(kHorizontalMetrics + 1) : 0}, {kFixed1, 0}};
  fResidual.MapVectors(3, points, points);
  if (ascent) *ascent = points[0];
  if (descent) *descent = points[1];
  if (!baseline) return;
  const hsFixed length = hsMagnitudeSat(points[2].fX, points[2].fY);
  *baseline = {hsFixDiv(points[2].fX, length), hsFixDiv(points[2].fY, length)};
}
