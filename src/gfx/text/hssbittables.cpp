#include "gfx/text/hssbittables.h"

#include <algorithm>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsfixed.h"

namespace {

constexpr uint32_t kFirstSize = 8, kSizeRecord = 0x30;
constexpr uint32_t kHorizontalMetrics = 0x10, kPpemX = 0x2C, kPpemY = 0x2D;  // in a size record
constexpr uint32_t kSmallMetrics = 5, kBigMetrics = 8;

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

}  // namespace

bool hsSbitTables::Load(hsGFontT2K* font) {
  fFont = hsShare(font);
  fLocation = fFont->ReadTable(hsTag("bloc"));
  if (fLocation.empty()) fLocation = fFont->ReadTable(hsTag("EBLC"));
  fDataOffset = fFont->FindTable(hsTag("bdat"), &fDataLength);
  if (fDataOffset == 0) fDataOffset = fFont->FindTable(hsTag("EBDT"), &fDataLength);
  return !fLocation.empty() && fDataOffset != 0;
}

void hsSbitTables::ChooseStrike(hsFixed ppem) {
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

int32_t hsSbitTables::PpemX() const { return int32_t(hsSfntU8(fLocation, fStrike + kPpemX)); }
int32_t hsSbitTables::PpemY() const { return int32_t(hsSfntU8(fLocation, fStrike + kPpemY)); }
int32_t hsSbitTables::Ascent() const { return int8_t(hsSfntU8(fLocation, fStrike + kHorizontalMetrics)); }
int32_t hsSbitTables::Descent() const { return int8_t(hsSfntU8(fLocation, fStrike + kHorizontalMetrics + 1)); }

std::vector<uint8_t> hsSbitTables::ReadData(uint32_t offset, uint32_t length) {
  const uint32_t size = fFont->GetDataSize();
  if (offset >= fDataLength || fDataOffset >= size || offset >= size - fDataOffset) return {};
  length = std::min({length, fDataLength - offset, size - fDataOffset - offset});
  std::vector<uint8_t> bytes(length);
  if (length != 0) fFont->ReadData(fDataOffset + offset, length, bytes.data());
  return bytes;
}

bool hsSbitTables::Locate(hsSfntBytes subtable, uint32_t glyph, uint32_t first, Entry* entry) const {
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
hsSfntBytes hsSbitTables::MetricsOf(hsSfntBytes subtable, const Entry& entry, std::vector<uint8_t>* storage) {
  const uint32_t indexFormat = hsSfntU16(subtable, 0);
  if (indexFormat == 2 || indexFormat == 5) return From(subtable, 12);
  *storage = ReadData(entry.location, kSmallMetrics);
  return *storage;
}

hsSbitTables::Entry hsSbitTables::Find(uint16_t code) {
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

// The glyph's bits in rows of whole bytes.
std::vector<uint8_t> hsSbitTables::Unpack(const Entry& entry) {
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

std::vector<uint8_t> hsSbitTables::Pixels(const Entry& entry) {
  const std::vector<uint8_t> bits = Unpack(entry);
  const auto width = size_t(entry.width), height = size_t(entry.height);
  std::vector<uint8_t> bytes(width * height);
  for (size_t y = 0; y < height; ++y)
    for (size_t x = 0; x < width; ++x)
      if (bits[y * RowBytes(entry.width) + x / 8] & 0x80 >> (x & 7)) bytes[y * width + x] = 0xFF;
  return bytes;
}
