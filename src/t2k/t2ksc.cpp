#include "t2k/t2ksc.h"

#include <algorithm>

#include "t2k/greycells.h"
#include "t2k/greysweep.h"
#include "t2k/t2kpaint.h"

namespace {

// Coordinates within this leave space for oversampling.
constexpr int32_t kCoordinateLimit = 1 << 24;
// A shape whose points spread further than this has no bitmap, whatever its curves do.
constexpr int32_t kSpreadLimit = 65536 * 64;
constexpr int kStripPixels = 1 << 20;  // a grey bitmap is summed by strips of rows of so many at the most
constexpr int kFewPixels = 16;         // either way: a glyph whose details are often narrower than a pixel
constexpr int kDropoutMargin = 64;     // rows around those asked for that dropout control may look at

CrossingBounds PointBounds(const GlyphClass& glyph) {
  CrossingBounds b{glyph.x[0], glyph.y[0], glyph.x[0], glyph.y[0]};
  for (int i = 1; i < glyph.pointCount; ++i) {
    b.xmin = std::min(b.xmin, glyph.x[i]);
    b.xmax = std::max(b.xmax, glyph.x[i]);
    b.ymin = std::min(b.ymin, glyph.y[i]);
    b.ymax = std::max(b.ymax, glyph.y[i]);
  }
  return b;
}

bool IsTooLarge(const CrossingBounds& b) {
  const auto outside = [](int32_t v) { return v > kCoordinateLimit || v < -kCoordinateLimit; };
  if (outside(b.xmin) || outside(b.ymin) || outside(b.xmax) || outside(b.ymax)) return true;
  return b.xmax - b.xmin > kSpreadLimit || b.ymax - b.ymin > kSpreadLimit;
}

tsiScanConv BoundsInPixels(const CrossingBounds& b) {
  tsiScanConv sc{};
  sc.left = b.xmin >> 6;
  sc.bottom = b.ymin >> 6;
  sc.right = (b.xmax >> 6) + 1;
  sc.top = (b.ymax >> 6) + 1;
  sc.xmin = b.xmin;
  sc.ymax = b.ymax;
  return sc;
}

int RowBytesFor(int greyLevel, int width) { return greyLevel ? width : (width + 7) / 8; }

// All pixels that a shape whose points lie in b may reach: ends forced odd reach one further.
PixelBox ReachOf(const CrossingBounds& b) {
  return {b.xmin >> 6, b.ymin >> 6, ((b.xmax + 1) >> 6) + 1, ((b.ymax + 1) >> 6) + 1};
}

// The bitmap of one conversion, once its bounds are known.
class BitmapMaker {
 protected:
  BitmapMaker(tsiMemObject* mem, const ScanConvOptions& options) : mem_(mem), options_(options) {}

  // False if no row is to be made, or more than can be.
  bool SetBounds(const tsiScanConv& bounds) {
    sc_ = bounds;
    sc_.rowBytes = RowBytesFor(options_.greyLevel, sc_.Width());
    const int first = std::max(options_.rows.first, 0), limit = std::min(options_.rows.limit, sc_.Height());
    if (first >= limit) return false;
    asked_ = sc_;
    asked_.top = sc_.top - first;
    asked_.bottom = sc_.top - limit;
    return int64_t{sc_.rowBytes} * asked_.Height() <= kMaxBitmapBytes;
  }

  // paint() writes every byte of the rows asked for, and may write so many more after them.
  template <class Paint>
  void MakeBits(Paint paint, int more = 0) {
    tsiBlock<uint8_t> bits(mem_, uint32_t(asked_.rowBytes * asked_.Height() + more));
    sc_.baseAddr = asked_.baseAddr = bits.get();
    paint();
    if (options_.greyLevel && options_.sharpen) SharpenGrey(asked_);
    bits.Release();
  }

  tsiMemObject* const mem_;
  const ScanConvOptions& options_;
  tsiScanConv sc_{};
  tsiScanConv asked_{};  // the rows of it that are made
};

// The usual glyph in grey.
class SweepConversion : BitmapMaker {
 public:
  SweepConversion(const GlyphClass& glyph, const CrossingBounds& points, const ScanConvOptions& options)
      : BitmapMaker(glyph.mem, options), glyph_(glyph), reach_(ReachOf(points)) {}

  // False if the crossings have to be sorted.
  bool Run(tsiScanConv* result) {
    if (options_.boundsOnly || !options_.wholePixels || !Convert()) return false;
    *result = sc_;
    return true;
  }

 private:
  bool Convert() {
    switch (options_.greyLevel) {
      case 2: return Sweep<GreySweep<2>>();
      case 3: return ConvertText();
      case 4: return Sweep<GreySweep<4>>();
      case 5: return Sweep<GreySweep<5>>();
      default: return false;
    }
  }
  // Text is at this level.
  bool ConvertText() {
    return std::max(reach_.Width(), reach_.Height()) <= kFewPixels ? Sweep<GreySweep<3, 2>>() : Sweep<GreySweep<3>>();
  }

  template <class GreySweep>
  bool Sweep() {
    if (!GreySweep::Fits(reach_)) return false;
    GreySweep sweep(glyph_, reach_);
    if (!sweep.Sum()) return false;
    const PixelBox box = sweep.Bounds();
    if (box.Width() == 0) return true;
    if (SetBounds({box.left, box.bottom, box.right, box.top, box.left * 64, box.top * 64 - 1, 0, nullptr}))
      MakeBits([&] { sweep.CopyTo(asked_); }, GreySweep::kLanes);
    return true;
  }

  const GlyphClass& glyph_;
  const PixelBox reach_;
};

// One conversion: settling its crossings, bounds, bits.
class Conversion : BitmapMaker {
 public:
  Conversion(const GlyphClass& glyph, const CrossingBounds& points, const ScanConvOptions& options)
      : BitmapMaker(glyph.mem, options),
        points_(points),
        oversample_(std::max(options.greyLevel, 1)),
        crossings_(glyph, points, oversample_) {}

  tsiScanConv Run() {
    const bool hasBits = Settle();
    if (options_.boundsOnly || !hasBits) return sc_;
    switch (options_.greyLevel) {
      case 0: RunMono(); break;
      case 1: RunGrey<1>(); break;
      case 2: RunGrey<2>(); break;
      case 3: RunGrey<3>(); break;
      case 4: RunGrey<4>(); break;
      default: RunGrey<5>(); break;
    }
    return sc_;
  }

 private:
  // Puts the crossings in order and works the bounds out. False if there is to be no bitmap.
  bool Settle() {
    crossings_.Settle(options_.greyLevel == 0);
    if (!crossings_.Overflowed() && crossings_.IsEmpty()) return false;
    bounds_ = crossings_.Overflowed() ? points_ : crossings_.Bounds();
    if (!crossings_.Overflowed()) {
      for (int32_t* edge : {&bounds_.xmin, &bounds_.ymin, &bounds_.xmax, &bounds_.ymax}) *edge /= oversample_;
    }
    return SetBounds(BoundsInPixels(bounds_)) && !crossings_.Overflowed();
  }

  void RunMono() {
    if (asked_.Height() < sc_.Height()) return PaintSomeRows();
    MakeBits([&] {
      std::memset(asked_.baseAddr, 0, size_t(asked_.rowBytes) * size_t(asked_.Height()));
      PaintMono(asked_, crossings_, bounds_);
    });
  }

  // What dropout control sets depends on neighbouring rows, so those are painted along and then left out.
  void PaintSomeRows() {
    tsiScanConv painted = asked_;
    painted.top = std::min(asked_.top + kDropoutMargin, sc_.top);
    painted.bottom = std::max(asked_.bottom - kDropoutMargin, sc_.bottom);
    const size_t bytes = size_t(painted.rowBytes) * size_t(painted.Height());
    tsiBuffer<uint8_t, 1024> rows(mem_, uint32_t(bytes));
    painted.baseAddr = rows.get();
    std::memset(painted.baseAddr, 0, bytes);
    PaintMono(painted, crossings_, bounds_);
    MakeBits([&] {
      const uint8_t* from = painted.baseAddr + (painted.top - asked_.top) * painted.rowBytes;
      std::memcpy(asked_.baseAddr, from, size_t(asked_.rowBytes) * size_t(asked_.Height()));
    });
  }

  template <int kOversample>
  void RunGrey() {
    if (asked_.Height() < sc_.Height() || int64_t{sc_.Width()} * sc_.Height() > kStripPixels)
      return RunStrips<kOversample>();
    GreyCells<kOversample> cells(mem_, {sc_.left, sc_.bottom, sc_.right, sc_.top});
    crossings_.EnterAll(cells);
    MakeBits([&] { cells.Sum(asked_); });
  }

  // For the largest glyphs, and parts of glyphs: the same, with cells for some rows at a time.
  template <int kOversample>
  void RunStrips() {
    const int most = std::max(kStripPixels / sc_.Width(), 1);
    MakeBits([&] {
      tsiScanConv strip = asked_;
      for (strip.top = asked_.top; strip.top > asked_.bottom; strip.top = strip.bottom) {
        strip.bottom = std::max(strip.top - most, asked_.bottom);
        strip.baseAddr = asked_.baseAddr + (asked_.top - strip.top) * asked_.rowBytes;
        GreyStrip<kOversample> cells(mem_, {strip.left, strip.bottom, strip.right, strip.top});
        crossings_.EnterAll(cells);
        cells.Sum(strip);
      }
    });
  }

  const CrossingBounds& points_;
  const int oversample_;
  CrossingTable crossings_;
  CrossingBounds bounds_{};
};

}  // namespace

tsiScanConv ScanConvert(const GlyphClass& glyph, const ScanConvOptions& options) {
  if (glyph.pointCount < 1 || glyph.contourCount < 1) return {};
  const CrossingBounds points = PointBounds(glyph);
  tsiScanConv sc;
  if (!IsTooLarge(points))
    return SweepConversion(glyph, points, options).Run(&sc) ? sc : Conversion(glyph, points, options).Run();
  sc = BoundsInPixels(points);
  sc.rowBytes = RowBytesFor(options.greyLevel, sc.Width());
  return sc;
}
