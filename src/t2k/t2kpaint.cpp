#include "t2k/t2kpaint.h"

namespace {

class MonoBits {
 public:
  explicit MonoBits(const tsiScanConv& sc) : sc_(sc) {}

  uint8_t* Row(int32_t y) const { return sc_.baseAddr + (sc_.top - 1 - (y >> 6)) * sc_.rowBytes; }

  bool IsSet(int32_t x, int32_t y) const {
    const int column = (x >> 6) - sc_.left;
    return Row(y)[column >> 3] & (0x80 >> (column & 7));
  }
  void Set(int32_t x, int32_t y) const {
    const int column = (x >> 6) - sc_.left;
    Row(y)[column >> 3] |= uint8_t(0x80 >> (column & 7));
  }
  // Pixels a to b - 1 of a row, a below b.
  void SetRun(uint8_t* row, int a, int b) const {
    a -= sc_.left;
    b -= sc_.left;
    const int firstByte = a >> 3, lastByte = (b - 1) >> 3;
    const auto firstMask = uint8_t(0xFF >> (a & 7));
    const auto lastMask = uint8_t(0xFF << (7 - ((b - 1) & 7)));
    if (firstByte == lastByte) {
      row[firstByte] |= firstMask & lastMask;
      return;
    }
    row[firstByte] |= firstMask;
    std::memset(row + firstByte + 1, 0xFF, size_t(lastByte - firstByte - 1));
    row[lastByte] |= lastMask;
  }

 private:
  const tsiScanConv& sc_;
};

// The middle of a narrow span: both roundings push towards the centre.
int32_t DropoutPlace(int32_t a0, int32_t a1, int32_t centre) {
  return a0 <= centre ? (a0 + a1 + 1) >> 1 : (a0 + a1 - 2) >> 1;
}

// How much of its pixel lies beyond a crossing, in units of the line.
inline int PartBeyond(int32_t along, int unit) { return ((64 - (along & 63)) * unit) >> 6; }

template <int kOversample>
void PaintGreySpans(const tsiScanConv& sc, const CrossingTable& crossings) {
  constexpr int kUnit = kGreyFull / (2 * kOversample);
  for (const Crossing* c = crossings.HorizontalBegin(); c < crossings.HorizontalEnd(); c += 2) {
    const int32_t y = LineOf(c[0]) / kOversample;
    const int32_t x0 = AlongOf(c[0]) / kOversample, x1 = AlongOf(c[1]) / kOversample;
    uint8_t* row = sc.baseAddr + (sc.top - 1 - (y >> 6)) * sc.rowBytes - sc.left;
    const int first = x0 >> 6, last = x1 >> 6;
    row[first] = uint8_t(row[first] + PartBeyond(x0, kUnit));
    row[last] = uint8_t(row[last] - PartBeyond(x1, kUnit));
    for (int i = first + 1; i <= last; ++i) row[i] = uint8_t(row[i] + kUnit);
  }
  for (const Crossing* c = crossings.VerticalBegin(); c < crossings.VerticalEnd(); c += 2) {
    const int32_t x = LineOf(c[0]) / kOversample;
    const int32_t y0 = AlongOf(c[0]) / kOversample, y1 = AlongOf(c[1]) / kOversample;
    uint8_t* column = sc.baseAddr + (x >> 6) - sc.left;
    uint8_t* first = column + (sc.top - 1 - (y0 >> 6)) * sc.rowBytes;
    uint8_t* last = column + (sc.top - 1 - (y1 >> 6)) * sc.rowBytes;
    *first = uint8_t(*first + PartBeyond(y0, kUnit));
    *last = uint8_t(*last - PartBeyond(y1, kUnit));
    while (first != last) {
      first -= sc.rowBytes;
      *first = uint8_t(*first + kUnit);
    }
  }
}

}  // namespace

void PaintMono(const tsiScanConv& sc, const CrossingTable& crossings, const CrossingBounds& bounds) {
  const MonoBits bits(sc);
  for (const Crossing* c = crossings.HorizontalBegin(); c < crossings.HorizontalEnd(); c += 2) {
    const int a = (AlongOf(c[0]) + 32) >> 6, b = (AlongOf(c[1]) + 32) >> 6;
    if (a < b) bits.SetRun(bits.Row(LineOf(c[0])), a, b);
  }
  const int32_t xCentre = (bounds.xmin + bounds.xmax) >> 1;
  for (const Crossing* c = crossings.HorizontalBegin(); c < crossings.HorizontalEnd(); c += 2) {
    const int32_t y = LineOf(c[0]), x0 = AlongOf(c[0]), x1 = AlongOf(c[1]);
    if (x1 - x0 >= 64 || bits.IsSet(x0, y) || bits.IsSet(x1, y)) continue;
    bits.Set(DropoutPlace(x0, x1, xCentre), y);
  }
  const int32_t yCentre = (bounds.ymin + bounds.ymax) >> 1;
  for (const Crossing* c = crossings.VerticalBegin(); c < crossings.VerticalEnd(); c += 2) {
    const int32_t x = LineOf(c[0]), y0 = AlongOf(c[0]), y1 = AlongOf(c[1]);
    if (y1 - y0 >= 64 || bits.IsSet(x, y0) || bits.IsSet(x, y1)) continue;
    bits.Set(x, DropoutPlace(y0, y1, yCentre));
  }
}

void PaintGrey(const tsiScanConv& sc, const CrossingTable& crossings, int oversample) {
  switch (oversample) {
    case 1: return PaintGreySpans<1>(sc, crossings);
    case 2: return PaintGreySpans<2>(sc, crossings);
    case 3: return PaintGreySpans<3>(sc, crossings);
    case 4: return PaintGreySpans<4>(sc, crossings);
    default: return PaintGreySpans<5>(sc, crossings);
  }
}

// Where two neighbours hold between them a little more than one full pixel, both give three eighths of the excess.
void SharpenGrey(const tsiScanConv& sc) {
  for (int y = 0; y < sc.Height(); ++y) {
    uint8_t* row = sc.baseAddr + y * sc.rowBytes;
    for (int x = 0; x + 1 < sc.Width(); ++x) {
      const int sum = row[x] + row[x + 1];
      if (sum < kGreyFull + 1 || sum > 210) continue;
      int excess = (sum - kGreyFull) >> 2;
      excess += excess >> 1;
      row[x] = uint8_t(row[x] - excess);
      row[x + 1] = uint8_t(row[x + 1] - excess);
    }
  }
}
