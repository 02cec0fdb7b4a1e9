#include "t2k/t2kpaint.h"

namespace {

class MonoBits {
 public:
  explicit MonoBits(const tsiScanConv& sc) : sc_(sc) {}

  bool HasRow(int32_t y) const { return (y >> 6) >= sc_.bottom && (y >> 6) < sc_.top; }
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

template <class Work>
void ForEachSpan(const LineSpans& spans, Work work) {
  for (const Crossing* c = spans.begin; c < spans.begin + spans.count; c += 2) {
    work(spans.line, AlongOf(c[0]), AlongOf(c[1]));
  }
}

template <class Work>
void ForEachRowSpan(const CrossingTable& crossings, Work work) {
  for (int i = 0; i < crossings.Rows(); ++i) ForEachSpan(crossings.Row(i), work);
}

template <class Work>
void ForEachColumnSpan(const CrossingTable& crossings, Work work) {
  for (int i = 0; i < crossings.Columns(); ++i) ForEachSpan(crossings.Column(i), work);
}

// The middle of a narrow span: both roundings push towards the centre.
int32_t DropoutPlace(int32_t a0, int32_t a1, int32_t centre) {
  return a0 <= centre ? (a0 + a1 + 1) >> 1 : (a0 + a1 - 2) >> 1;
}

}  // namespace

void PaintMono(const tsiScanConv& sc, const CrossingTable& crossings, const CrossingBounds& bounds) {
  const MonoBits bits(sc);
  ForEachRowSpan(crossings, [&](int32_t y, int32_t x0, int32_t x1) {
    const int a = (x0 + 32) >> 6, b = (x1 + 32) >> 6;
    if (a < b && bits.HasRow(y)) bits.SetRun(bits.Row(y), a, b);
  });
  const int32_t xCentre = (bounds.xmin + bounds.xmax) >> 1;
  ForEachRowSpan(crossings, [&](int32_t y, int32_t x0, int32_t x1) {
    if (x1 - x0 >= 64 || !bits.HasRow(y) || bits.IsSet(x0, y) || bits.IsSet(x1, y)) return;
    bits.Set(DropoutPlace(x0, x1, xCentre), y);
  });
  const int32_t yCentre = (bounds.ymin + bounds.ymax) >> 1;
  ForEachColumnSpan(crossings, [&](int32_t x, int32_t y0, int32_t y1) {
    if (y1 - y0 >= 64 || !bits.HasRow(y0) || !bits.HasRow(y1) || bits.IsSet(x, y0) || bits.IsSet(x, y1)) return;
    // Of a part of a glyph the span may be in the last row, and its middle in the next.
    const int32_t y = DropoutPlace(y0, y1, yCentre);
    if (bits.HasRow(y)) bits.Set(x, y);
  });
}

// Where two neighbours hold between them a little more than one full pixel, both lose three eighths of the excess.
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
