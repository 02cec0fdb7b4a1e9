// Grey coverage on its way from spans to pixels.
//
// A span adds to the pixel it begins in the part that lies beyond its begin, and to all pixels after it a whole unit;
// where it ends both are taken off again. Each end is thus one entry into the cell of its pixel: the part, and the unit
// for the pixels after. Rows and columns have cells of their own and give half of the coverage each. Sums finally run
// along rows and up columns.
#pragma once

#include <array>

#include "t2k/crossings.h"
#include "t2k/scanbitmap.h"

template <int kOversample>
class GreyCells {
 public:
  static constexpr int kInlinePixels = 2048;

  // box holds every pixel that spans touch.
  GreyCells(tsiMemObject* mem, const PixelBox& box)
      : mem_(mem),
        box_(box),
        stride_((box.Width() + kLanes - 1) & -kLanes),
        pixels_(uint32_t(stride_ * box.Height())),
        cells_(mem, pixels_ * 2),
        rows_(cells_.get()),
        columns_(rows_ + pixels_) {
    std::memset(rows_, 0, pixels_ * 2 * sizeof(Cell));
  }

  template <bool kVertical>
  void Enter(const LineSpans& spans) {
    const int32_t at = spans.line / kOversample >> 6;
    if (kVertical) {
      EnterEnds(columns_, at - box_.left - box_.bottom * stride_, stride_, spans);
    } else {
      EnterEnds(rows_, (at - box_.bottom) * stride_ - box_.left, 1, spans);
    }
  }

  // Writes sc's bitmap, which lies within the box.
  void Sum(const tsiScanConv& sc) const {
    tsiBuffer<Cell, 512> lanes(mem_, uint32_t(stride_) * 2);
    Cell* units = lanes.get();  // of the columns, running up
    Cell* sums = units + stride_;
    std::memset(units, 0, size_t(stride_) * sizeof(Cell));
    const int indent = sc.left - box_.left;
    for (int y = box_.bottom; y < sc.top; ++y) {
      const int row = (y - box_.bottom) * stride_;
      SumColumns(columns_ + row, units, sums, stride_);
      if (y >= sc.bottom)
        SumRow(rows_ + row + indent, sums + indent, sc.baseAddr + (sc.top - 1 - y) * sc.rowBytes, sc.Width());
    }
  }

 protected:
  // The part in the low byte and the unit above it, both signed: the part's sign borrows from the unit. A pixel's parts
  // come to 60 at the most, since on one line rising and falling alternate.
  using Cell = int16_t;
  static constexpr int kUnit = kGreyFull / (2 * kOversample);
  static constexpr int kLanes = 8;  // columns that are summed at once
  static int UnitOf(Cell cell) { return (cell + 128) >> 8; }

  // What a span's end enters, by the fraction of its place.
  static constexpr auto kEntry = [] {
    std::array<int16_t, 64> entries{};
    for (int fraction = 0; fraction < 64; ++fraction) {
      entries[size_t(fraction)] = int16_t(kUnit * 256 + (((64 - fraction) * kUnit) >> 6));
    }
    return entries;
  }();

  // The cell of the line's pixel 0 is, or would be, number zero; the next one's lies step further.
  static void EnterEnds(Cell* cells, int zero, int step, const LineSpans& spans) {
    for (int i = 0; i < spans.count; i += 2) {
      const int32_t begin = AlongOf(spans.begin[i]) / kOversample, end = AlongOf(spans.begin[i + 1]) / kOversample;
      Cell& in = cells[zero + (begin >> 6) * step];
      in = Cell(in + kEntry[begin & 63]);
      Cell& out = cells[zero + (end >> 6) * step];
      out = Cell(out - kEntry[end & 63]);
    }
  }

  // Of sums only the low byte counts, so they take in cells as they are.
  static void SumColumns(const Cell* __restrict cells, Cell* __restrict units, Cell* __restrict sums, int width) {
    for (int first = 0; first < width; first += kLanes) {
      for (int x = first; x < first + kLanes; ++x) {
        sums[x] = Cell(units[x] + cells[x]);
        units[x] = Cell(units[x] + (Cell(cells[x] + 128) >> 8));
      }
    }
  }

  static void SumRow(const Cell* cells, const Cell* sums, uint8_t* out, int width) {
    int unit = 0;
    for (int x = 0; x < width; ++x) {
      out[x] = uint8_t(sums[x] + unit + cells[x]);
      unit += UnitOf(cells[x]);
    }
  }

  tsiMemObject* mem_;
  const PixelBox box_;
  const int stride_;
  const uint32_t pixels_;
  tsiBuffer<Cell, kInlinePixels * 2> cells_;
  Cell* const rows_;
  Cell* const columns_;
};

// Cells for some rows of a glyph. Columns run up from below them, so the units of what ends there are entered into an
// extra row below; what ends above changes nothing.
template <int kOversample>
class GreyStrip : private GreyCells<kOversample> {
 public:
  GreyStrip(tsiMemObject* mem, const PixelBox& rows)
      : GreyCells<kOversample>(mem, {rows.left, rows.bottom - 1, rows.right, rows.top}) {}

  using GreyCells<kOversample>::Sum;

  template <bool kVertical>
  void Enter(const LineSpans& spans) {
    const int32_t at = spans.line / kOversample >> 6;
    if (!kVertical) {
      if (at > this->box_.bottom && at < this->box_.top) GreyCells<kOversample>::template Enter<false>(spans);
      return;
    }
    typename GreyCells<kOversample>::Cell* const column = this->columns_ + (at - this->box_.left);
    for (int i = 0; i < spans.count; i += 2) {
      EnterEnd(column, AlongOf(spans.begin[i]) / kOversample, 1);
      EnterEnd(column, AlongOf(spans.begin[i + 1]) / kOversample, -1);
    }
  }

 private:
  using Cell = typename GreyCells<kOversample>::Cell;

  void EnterEnd(Cell* column, int32_t end, int sign) {
    const int row = (end >> 6) - this->box_.bottom;
    if (row >= this->box_.Height()) return;
    Cell& cell = column[std::max(row, 0) * this->stride_];
    cell = Cell(cell + sign * (row > 0 ? this->kEntry[size_t(end & 63)] : this->kUnit * 256));
  }
};
