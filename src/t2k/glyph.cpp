#include "t2k/glyph.h"

#include <algorithm>
#include <cstddef>

#include "gfx/foundation/hsbytes.h"
#include "gfx/foundation/hstypes.h"

namespace {

constexpr int kPhantoms = 2;
constexpr int kFirstComponentWords = 1024;
constexpr int kComponentReserve = 10;  // more words than one entry has

// Flag bits of a point in the TrueType layout.
constexpr uint8_t kOnCurveBit = 0x01;
constexpr uint8_t kXShort = 0x02;
constexpr uint8_t kYShort = 0x04;
constexpr uint8_t kRepeat = 0x08;
constexpr uint8_t kXSameOrPositive = 0x10;
constexpr uint8_t kYSameOrPositive = 0x20;

// A glyph with space for its arrays in the same block, which is enough for most.
struct RoomyGlyph {
  static constexpr int kContours = 12;
  static constexpr int kPoints = 60;  // so that the block stays below 1 KB, which allocators hand out quickly

  GlyphClass glyph;  // first, so that the two have one address
  int16_t contours[kContours * 2];
  int32_t scaled[(kPoints + kPhantoms) * 2];
  uint8_t points[(kPoints + kPhantoms) * 5];
};
static_assert(offsetof(RoomyGlyph, points) % alignof(int16_t) == 0);

RoomyGlyph* RoomOf(GlyphClass* glyph) { return reinterpret_cast<RoomyGlyph*>(glyph); }

void FreeContours(GlyphClass* glyph, int16_t* array) {
  if (array != RoomOf(glyph)->contours) tsi_DeAllocMem(glyph->mem, array);
}
void FreePoints(GlyphClass* glyph, int16_t* array) {
  if (static_cast<void*>(array) != RoomOf(glyph)->points) tsi_DeAllocMem(glyph->mem, array);
}
void FreeScaled(GlyphClass* glyph, int32_t* array) {
  if (array != RoomOf(glyph)->scaled) tsi_DeAllocMem(glyph->mem, array);
}

// The three arrays in font units lie one after the other: oox, ooy, onCurve.
void SetPointArrays(GlyphClass* glyph, void* block, int pointMax) {
  glyph->pointCountMax = pointMax;
  glyph->oox = static_cast<int16_t*>(block);
  glyph->ooy = glyph->oox + pointMax + kPhantoms;
  glyph->onCurve = reinterpret_cast<uint8_t*>(glyph->ooy + pointMax + kPhantoms);
}

void ReadContours(InputStream& in, GlyphClass* glyph, int contourCount) {
  int next = 0;
  for (int i = 0; i < contourCount; ++i) {
    const uint16_t end = ReadUInt16(in);
    tsi_Assert(in.mem, end < kMaxGlyphPoints, kT2KTooManyPoints);
    tsi_Assert(in.mem, end + 1 >= next);
    glyph->sp[i] = int16_t(next);
    glyph->ep[i] = int16_t(end);
    next = end + 1;
  }
  tsi_Assert(in.mem, next >= 1);
  glyph->contourCount = int16_t(contourCount);
  ReservePoints(glyph, next);
  glyph->pointCount = int16_t(next);
}

void ReadInstructions(InputStream& in, GlyphClass* glyph, bool readHints) {
  const uint16_t length = ReadUInt16(in);
  if (!readHints) {
    SkipBytes(in, length);
    return;
  }
  tsi_Assert(in.mem, length <= BytesLeft(in));
  glyph->hintFragment = tsi_NewArray<uint8_t>(in.mem, length);
  glyph->hintLength = length;
  ReadBytes(in, glyph->hintFragment, length);
}

// The bytes that are left of a stream in memory, for loops that read many.
class ByteCursor {
 public:
  explicit ByteCursor(InputStream& in) : in_(in), at_(in.privateBase + in.pos), end_(in.privateBase + in.maxPos) {}
  ~ByteCursor() { in_.pos = uint32_t(at_ - in_.privateBase); }
  ByteCursor(const ByteCursor&) = delete;
  ByteCursor& operator=(const ByteCursor&) = delete;

  uint8_t Byte() {
    tsi_Assert(in_.mem, at_ < end_);
    return *at_++;
  }
  int16_t Word() {
    tsi_Assert(in_.mem, end_ - at_ >= 2);
    at_ += 2;
    return int16_t(hsBig16(at_ - 2));
  }
  // For those that look first and know how far they go.
  bool HasWord() const { return end_ - at_ >= 2; }
  const uint8_t* At() const { return at_; }
  void Skip(int bytes) { at_ += bytes; }

 private:
  InputStream& in_;
  const uint8_t* at_;
  const uint8_t* end_;
};

void ReadFlags(ByteCursor& in, uint8_t* flags, int count) {
  for (int i = 0; i < count;) {
    const uint8_t flag = in.Byte();
    flags[i++] = flag;
    if (!(flag & kRepeat)) continue;
    // A repeat count may claim more points than there are.
    for (int copies = std::min<int>(in.Byte(), count - i); copies > 0; --copies) flags[i++] = flag;
  }
}

void ReadCoordinates(ByteCursor& in, const uint8_t* flags, int count, uint8_t isShort, uint8_t sameOrPositive,
                     int16_t* out) {
  int32_t value = 0;
  int i = 0;
  // Which of the four forms comes next can't be foreseen, so nothing branches on it.
  for (; i < count && in.HasWord(); ++i) {
    const uint8_t* const p = in.At();
    const int32_t small = (flags[i] & isShort) ? 1 : 0, same = (flags[i] & sameOrPositive) ? 1 : 0;
    const int32_t sign = same - 1;  // -1 for a byte that is taken off
    const int32_t byte = (p[0] ^ sign) - sign, word = int16_t(hsBig16(p)) & sign;
    value += (byte & -small) | (word & (small - 1));
    out[i] = int16_t(value);
    in.Skip(small + (2 & sign & (small - 1)));
  }
  for (; i < count; ++i) {
    const uint8_t flag = flags[i];
    if (flag & isShort) {
      const int32_t delta = in.Byte();
      value += flag & sameOrPositive ? delta : -delta;
    } else if (!(flag & sameOrPositive)) {
      value += in.Word();
    }
    out[i] = int16_t(value);
  }
}

void ReadSimpleGlyph(InputStream& in, GlyphClass* glyph, int contourCount, bool readHints) {
  tsi_Assert(in.mem, contourCount * 2 <= int(BytesLeft(in)));
  ReserveContours(glyph, contourCount);
  ReadContours(in, glyph, contourCount);
  ReadInstructions(in, glyph, readHints);
  const int count = glyph->pointCount;
  ByteCursor cursor(in);
  ReadFlags(cursor, glyph->onCurve, count);
  ReadCoordinates(cursor, glyph->onCurve, count, kXShort, kXSameOrPositive, glyph->oox);
  ReadCoordinates(cursor, glyph->onCurve, count, kYShort, kYSameOrPositive, glyph->ooy);
  for (int i = 0; i < count; ++i) glyph->onCurve[i] &= kOnCurveBit;
}

void SetPhantoms(GlyphClass* glyph, int left, uint16_t aw) {
  const int at = glyph->pointCount;
  glyph->oox[at] = int16_t(left);
  glyph->oox[at + 1] = int16_t(left + aw);
  glyph->ooy[at] = glyph->ooy[at + 1] = 0;
  glyph->onCurve[at] = glyph->onCurve[at + 1] = 0;
}

// The offset that a component is added with.
struct Offset {
  int32_t x, y;
};

Offset OffsetOfPart(const GlyphClass* result, const GlyphClass* part, uint16_t flags, int32_t argument1,
                    int32_t argument2) {
  if (flags & kArgsAreOffset) {
    if (flags & kRoundOffset) return {hsWrapAdd(argument1, 32) & ~63, hsWrapAdd(argument2, 32) & ~63};
    return {argument1, argument2};
  }
  if (!result) return {0, 0};
  tsi_Assert(result->mem, argument1 >= 0 && argument1 < result->pointCount + kPhantoms);
  tsi_Assert(result->mem, argument2 >= 0 && argument2 < part->pointCount + kPhantoms);
  return {hsWrapSub(result->x[argument1], part->x[argument2]), hsWrapSub(result->y[argument1], part->y[argument2])};
}

// The first part becomes the result itself; its phantoms stay where they are.
GlyphClass* TakeOver(GlyphClass* part, Offset offset) {
  for (int i = 0; i < part->pointCount; ++i) {
    part->x[i] = hsWrapAdd(part->x[i], offset.x);
    part->y[i] = hsWrapAdd(part->y[i], offset.y);
  }
  return part;
}

}  // namespace

void Delete_GlyphClass(GlyphClass* glyph) {
  if (!glyph) return;
  FreeContours(glyph, glyph->sp);
  FreePoints(glyph, glyph->oox);
  FreeScaled(glyph, glyph->x);
  tsi_DeAllocMem(glyph->mem, glyph->componentData);
  tsi_DeAllocMem(glyph->mem, glyph->hintFragment);
  tsi_DeAllocMem(glyph->mem, glyph);
}

GlyphClass* NewGlyph(tsiMemObject* mem) {
  auto* roomy = static_cast<RoomyGlyph*>(tsi_AllocMem(mem, sizeof(RoomyGlyph)));
  roomy->glyph = GlyphClass{};
  roomy->glyph.mem = mem;
  roomy->glyph.curveType = 2;
  roomy->glyph.pointCountMax = -1;
  return &roomy->glyph;
}

GlyphClass* NewEmptyGlyph(tsiMemObject* mem, GlyphMetrics metrics) {
  GlyphHolder glyph(NewGlyph(mem));
  ReservePoints(glyph.get(), 0);
  SetPhantoms(glyph.get(), -metrics.lsb, metrics.aw);
  return glyph.Release();
}

void ReservePoints(GlyphClass* glyph, int points) {
  if (points <= glyph->pointCountMax) return;
  tsi_Assert(glyph->mem, points <= kMaxGlyphPoints, kT2KTooManyPoints);
  if (!glyph->oox && points <= RoomyGlyph::kPoints) {
    SetPointArrays(glyph, RoomOf(glyph)->points, RoomyGlyph::kPoints);
    return;
  }
  const GlyphClass old = *glyph;
  SetPointArrays(glyph, tsi_AllocMem(glyph->mem, uint32_t(points + kPhantoms) * 5), points);
  if (!old.oox) return;
  const auto count = size_t(old.pointCount);
  std::memcpy(glyph->oox, old.oox, count * sizeof *old.oox);
  std::memcpy(glyph->ooy, old.ooy, count * sizeof *old.ooy);
  std::memcpy(glyph->onCurve, old.onCurve, count);
  FreePoints(glyph, old.oox);
}

void ReserveContours(GlyphClass* glyph, int contours) {
  if (contours <= glyph->contourCountMax) return;
  tsi_Assert(glyph->mem, contours <= kMaxGlyphPoints, kT2KTooManyPoints);
  const bool fits = !glyph->sp && contours <= RoomyGlyph::kContours;
  int16_t* moved = fits ? RoomOf(glyph)->contours : tsi_NewArray<int16_t>(glyph->mem, uint32_t(contours) * 2);
  std::copy_n(glyph->sp, glyph->contourCount, moved);
  std::copy_n(glyph->ep, glyph->contourCount, moved + contours);
  FreeContours(glyph, glyph->sp);
  glyph->sp = moved;
  glyph->ep = moved + contours;
  glyph->contourCountMax = contours;
}

GlyphClass* ReadTrueTypeGlyph(InputStream& in, bool readHints, GlyphMetrics metrics) {
  GlyphHolder glyph(NewGlyph(in.mem));
  const int16_t contourCount = ReadInt16(in);
  glyph->xmin = ReadInt16(in);
  glyph->ymin = ReadInt16(in);
  glyph->xmax = ReadInt16(in);
  glyph->ymax = ReadInt16(in);
  tsi_Assert(in.mem, contourCount != 0);
  if (contourCount > 0) {
    ReadSimpleGlyph(in, glyph.get(), contourCount, readHints);
  } else {
    const uint16_t lastFlags = ReadComponentEntries(in, glyph.get());
    if (lastFlags & kHasInstructions) ReadInstructions(in, glyph.get(), readHints);
    glyph->contourCount = contourCount;
    ReservePoints(glyph.get(), 0);
  }
  AlignToSideBearing(glyph.get(), metrics);
  return glyph.Release();
}

uint16_t ReadComponentEntries(InputStream& in, GlyphClass* glyph) {
  glyph->componentData = tsi_NewArray<uint16_t>(in.mem, kFirstComponentWords);
  glyph->componentMax = kFirstComponentWords;
  uint16_t flags;
  do {
    if (glyph->componentMax - glyph->componentSize < kComponentReserve) {
      glyph->componentMax += glyph->componentMax / 2;
      glyph->componentData = static_cast<uint16_t*>(
          tsi_ReAllocMem(in.mem, glyph->componentData, uint32_t(glyph->componentMax) * sizeof(uint16_t)));
    }
    const auto copyWord = [&] { return glyph->componentData[glyph->componentSize++] = ReadUInt16(in); };
    flags = copyWord();
    tsi_Assert(in.mem, int16_t(copyWord()) >= 0, kT2KNoGlyph);
    const int scaleWords = flags & kHasScale ? 1 : flags & kHasXYScale ? 2 : flags & kHasTwoByTwo ? 4 : 0;
    const int words = (flags & kArgsAreWords ? 2 : 1) + scaleWords;
    for (int i = 0; i < words; ++i) copyWord();
  } while (flags & kMoreComponents);
  return flags;
}

void AlignToSideBearing(GlyphClass* glyph, GlyphMetrics metrics) {
  const int shift = metrics.lsb - glyph->xmin;
  for (int i = 0; shift && i < glyph->pointCount; ++i) glyph->oox[i] = int16_t(glyph->oox[i] + shift);
  glyph->xmin = metrics.lsb;
  SetPhantoms(glyph, glyph->xmin - metrics.lsb, metrics.aw);
}

void AllocScaledPoints(GlyphClass* glyph) {
  const auto count = uint32_t(glyph->pointCount + kPhantoms);
  FreeScaled(glyph, std::exchange(glyph->x, nullptr));
  const bool fits = glyph->pointCount <= RoomyGlyph::kPoints;
  glyph->x = fits ? RoomOf(glyph)->scaled : tsi_NewArray<int32_t>(glyph->mem, count * 2);
  glyph->y = glyph->x + count;
}

GlyphClass* MergeComponent(GlyphClass* result, GlyphClass* part, uint16_t flags, int32_t argument1, int32_t argument2) {
  if (!result) return TakeOver(part, OffsetOfPart(nullptr, part, flags, argument1, argument2));
  GlyphHolder oldHolder(result), partHolder(part);
  tsiMemObject* mem = result->mem;
  const int oldPoints = result->pointCount;
  const int oldContours = result->contourCount;
  tsi_Assert(mem, !oldContours || result->ep[oldContours - 1] == oldPoints - 1);
  tsi_Assert(mem, oldPoints + part->pointCount <= kMaxGlyphPoints, kT2KTooManyPoints);
  const Offset offset = OffsetOfPart(result, part, flags, argument1, argument2);

  GlyphHolder merged(NewGlyph(mem));
  ReserveContours(merged.get(), oldContours + part->contourCount);
  ReservePoints(merged.get(), oldPoints + part->pointCount);
  merged->curveType = part->curveType;
  merged->contourCount = int16_t(oldContours + part->contourCount);
  merged->pointCount = int16_t(oldPoints + part->pointCount);
  AllocScaledPoints(merged.get());

  std::copy_n(result->sp, oldContours, merged->sp);
  std::copy_n(result->ep, oldContours, merged->ep);
  for (int i = 0; i < part->contourCount; ++i) {
    merged->sp[oldContours + i] = int16_t(part->sp[i] + oldPoints);
    merged->ep[oldContours + i] = int16_t(part->ep[i] + oldPoints);
  }

  std::copy_n(result->x, oldPoints, merged->x);
  std::copy_n(result->y, oldPoints, merged->y);
  std::copy_n(result->onCurve, oldPoints, merged->onCurve);
  std::copy_n(part->onCurve, part->pointCount, merged->onCurve + oldPoints);
  for (int i = 0; i < part->pointCount; ++i) {
    merged->x[oldPoints + i] = hsWrapAdd(part->x[i], offset.x);
    merged->y[oldPoints + i] = hsWrapAdd(part->y[i], offset.y);
  }

  const GlyphClass* metricsFrom = flags & kUseMyMetrics ? part : result;
  std::copy_n(metricsFrom->x + metricsFrom->pointCount, kPhantoms, merged->x + merged->pointCount);
  std::copy_n(metricsFrom->y + metricsFrom->pointCount, kPhantoms, merged->y + merged->pointCount);
  std::fill_n(merged->oox, merged->pointCount + kPhantoms, int16_t{0});
  std::fill_n(merged->ooy, merged->pointCount + kPhantoms, int16_t{0});
  std::fill_n(merged->onCurve + merged->pointCount, kPhantoms, uint8_t{0});
  return merged.Release();
}
