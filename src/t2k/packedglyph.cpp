// Glyphs in the packed layout: contour sizes in 7-bit groups, points of two to six bytes, no instructions and no
// bounding box.
#include <algorithm>

#include "t2k/glyph.h"

namespace {

struct PointDelta {
  int32_t dx, dy;
  bool onCurve;
};

// The magnitudes a and b of a point's step, by the range that the low 14 bits of its first word fall in: so many bytes
// extend the number, which then splits into a = n / modulus + bias and b = n % modulus + bias.
struct StepRange {
  uint32_t first, end;
  int extraBytes;
  uint32_t modulus, bias;
};

constexpr StepRange kStepRanges[] = {
    {2200, 12604, 0, 102, 1},
    {12604, 14652, 1, 724, 1},
    {14652, 16384, 2, 10650, 0},
};

void ReadMagnitudes(InputStream& in, uint32_t v, int32_t* a, int32_t* b) {
  *a = int32_t(v);
  *b = 0;
  for (const StepRange& range : kStepRanges) {
    if (v < range.first || v >= range.end) continue;
    uint32_t n = v - range.first;
    for (int i = 0; i < range.extraBytes; ++i) n = n << 8 | ReadUInt8(in);
    *a = int32_t(n / range.modulus + range.bias);
    *b = int32_t(n % range.modulus + range.bias);
  }
}

PointDelta ReadPoint(InputStream& in) {
  const uint16_t word = ReadUInt16(in);
  const int quadrant = word >> 14;
  const uint32_t v = word & 0x3FFF;
  if (v == 0 && quadrant <= 1) {
    const int16_t dx = ReadInt16(in);
    return {dx, ReadInt16(in), quadrant == 0};
  }
  int32_t a, b;
  ReadMagnitudes(in, v, &a, &b);
  const int32_t turned[4][2] = {{a, b}, {-b, a}, {-a, -b}, {b, -a}};
  const int32_t x = turned[quadrant][0];
  // The lowest bit of x carries the kind of the point.
  return {x >> 1, turned[quadrant][1], (x & 1) == 0};
}

void ReadPackedContours(InputStream& in, GlyphClass* glyph, int contourCount) {
  int next = 0;
  for (int i = 0; i < contourCount; ++i) {
    const uint32_t countLess1 = ReadSevenBitGroups(in);
    tsi_Assert(in.mem, countLess1 < uint32_t(kMaxGlyphPoints - next), kT2KTooManyPoints);
    glyph->sp[i] = int16_t(next);
    glyph->ep[i] = int16_t(next + int(countLess1));
    next += int(countLess1) + 1;
  }
  glyph->contourCount = int16_t(contourCount);
  ReservePoints(glyph, next);
  glyph->pointCount = int16_t(next);
}

void ReadPackedPoints(InputStream& in, GlyphClass* glyph) {
  uint32_t x = 0, y = 0;
  glyph->xmin = 32767;
  for (int i = 0; i < glyph->pointCount; ++i) {
    const PointDelta point = ReadPoint(in);
    x += uint32_t(point.dx);
    y += uint32_t(point.dy);
    glyph->oox[i] = int16_t(x);
    glyph->ooy[i] = int16_t(y);
    glyph->onCurve[i] = point.onCurve;
    glyph->xmin = std::min(glyph->xmin, glyph->oox[i]);
  }
}

}  // namespace

GlyphClass* ReadPackedGlyph(InputStream& in, GlyphMetrics metrics) {
  const int16_t contourCount = ReadInt16(in);
  GlyphHolder glyph(NewGlyph(in.mem));
  if (contourCount < 0) {
    ReadComponentEntries(in, glyph.get());
    glyph->contourCount = contourCount;
    ReservePoints(glyph.get(), 0);
  } else {
    tsi_Assert(in.mem, contourCount <= int(BytesLeft(in)));
    ReserveContours(glyph.get(), contourCount);
    ReadPackedContours(in, glyph.get(), contourCount);
    tsi_Assert(in.mem, glyph->pointCount * 2 <= int(BytesLeft(in)));
    ReadPackedPoints(in, glyph.get());
  }
  AlignToSideBearing(glyph.get(), metrics);
  return glyph.Release();
}
