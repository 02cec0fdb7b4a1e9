#include "t2k/t2kpaint.h"

#include <array>

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

// How much of its pixel lies beyond a crossing, by the fraction of its place, in parts of one line's unit.
template <int kOversample>
constexpr auto kPartBeyond = [] {
  std::array<uint8_t, 64> parts{};
  for (int fraction = 0; fraction < 64; ++fraction) {
    parts[size_t(fraction)] = uint8_t(((64 - fraction) * (kGreyFull / (2 * kOversample))) >> 6);
  }
  return parts;
}();

// Spans are entered into the bitmap as differences: what a crossing adds to its own pixel, and the rest of its unit on
// the next one. Running sums then fill the spans. Sums wrap in a byte; what comes out in the end fits. The padding
// takes the next pixel of the last one.
template <int kOversample>
void EnterRows(const tsiScanConv& sc, const CrossingTable& crossings, uint8_t* bits, int stride) {
  constexpr int kUnit = kGreyFull / (2 * kOversample);
  for (int i = 0; i < crossings.Rows(); ++i) {
    const LineSpans spans = crossings.Row(i);
    if (!spans.count) continue;
    uint8_t* row = bits + (sc.top - 1 - (spans.line / kOversample >> 6)) * stride - sc.left;
    for (const Crossing* c = spans.begin; c < spans.begin + spans.count; c += 2) {
      const int32_t x0 = AlongOf(c[0]) / kOversample, x1 = AlongOf(c[1]) / kOversample;
      const int part0 = kPartBeyond<kOversample>[x0 & 63], part1 = kPartBeyond<kOversample>[x1 & 63];
      uint8_t* in = row + (x0 >> 6);
      uint8_t* out = row + (x1 >> 6);
      in[0] = uint8_t(in[0] + part0);
      in[1] = uint8_t(in[1] + kUnit - part0);
      out[0] = uint8_t(out[0] - part1);
      out[1] = uint8_t(out[1] - kUnit + part1);
    }
  }
}

// The same along columns, where the next pixel is the one above.
template <int kOversample>
void EnterColumns(const tsiScanConv& sc, const CrossingTable& crossings, uint8_t* bits, int stride) {
  constexpr int kUnit = kGreyFull / (2 * kOversample);
  for (int i = 0; i < crossings.Columns(); ++i) {
    const LineSpans spans = crossings.Column(i);
    if (!spans.count) continue;
    uint8_t* column = bits + (spans.line / kOversample >> 6) - sc.left;
    for (const Crossing* c = spans.begin; c < spans.begin + spans.count; c += 2) {
      const int32_t y0 = AlongOf(c[0]) / kOversample, y1 = AlongOf(c[1]) / kOversample;
      const int part0 = kPartBeyond<kOversample>[y0 & 63], part1 = kPartBeyond<kOversample>[y1 & 63];
      uint8_t* in = column + (sc.top - (y0 >> 6)) * stride;
      uint8_t* out = column + (sc.top - (y1 >> 6)) * stride;
      in[0] = uint8_t(in[0] + part0);
      in[-stride] = uint8_t(in[-stride] + kUnit - part0);
      out[0] = uint8_t(out[0] - part1);
      out[-stride] = uint8_t(out[-stride] - kUnit + part1);
    }
  }
}

template <int kOversample>
void PaintGreySpans(const tsiScanConv& sc, const CrossingTable& crossings) {
  const int width = sc.Width(), height = sc.Height();
  const int stride = width + 1;
  const auto bytes = uint32_t(stride * (height + 1));
  tsiBuffer<uint8_t, 4096> work(crossings.Handler(), bytes * 2);
  std::memset(work.get(), 0, bytes * 2);
  uint8_t* rows = work.get();
  uint8_t* columns = rows + bytes;  // has the row of padding on top
  EnterRows<kOversample>(sc, crossings, rows, stride);
  EnterColumns<kOversample>(sc, crossings, columns, stride);

  uint8_t* column = columns + height * stride;
  for (int y = height - 1; y > 0; --y, column -= stride) {
    for (int x = 0; x < width; ++x) column[x - stride] = uint8_t(column[x - stride] + column[x]);
  }
  for (int y = 0; y < height; ++y) {
    const uint8_t* row = rows + y * stride;
    const uint8_t* sums = columns + (y + 1) * stride;
    uint8_t* out = sc.baseAddr + y * sc.rowBytes;
    uint8_t along = 0;
    for (int x = 0; x < width; ++x) {
      along = uint8_t(along + row[x]);
      out[x] = uint8_t(along + sums[x]);
    }
  }
}

}  // namespace

void PaintMono(const tsiScanConv& sc, const CrossingTable& crossings, const CrossingBounds& bounds) {
  const MonoBits bits(sc);
  ForEachRowSpan(crossings, [&](int32_t y, int32_t x0, int32_t x1) {
    const int a = (x0 + 32) >> 6, b = (x1 + 32) >> 6;
    if (a < b) bits.SetRun(bits.Row(y), a, b);
  });
  const int32_t xCentre = (bounds.xmin + bounds.xmax) >> 1;
  ForEachRowSpan(crossings, [&](int32_t y, int32_t x0, int32_t x1) {
    if (x1 - x0 >= 64 || bits.IsSet(x0, y) || bits.IsSet(x1, y)) return;
    bits.Set(DropoutPlace(x0, x1, xCentre), y);
  });
  const int32_t yCentre = (bounds.ymin + bounds.ymax) >> 1;
  ForEachColumnSpan(crossings, [&](int32_t x, int32_t y0, int32_t y1) {
    if (y1 - y0 >= 64 || bits.IsSet(x, y0) || bits.IsSet(x, y1)) return;
    bits.Set(x, DropoutPlace(y0, y1, yCentre));
  });
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
