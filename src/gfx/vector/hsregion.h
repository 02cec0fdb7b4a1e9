// A set of pixels, held as run lengths: the library's clip.
//
// Empty and rectangular regions own no storage; they are the common case and every operation looks for them first.
// A complex region is one flat array of 16-bit numbers: the top of the first band, then for each band its bottom,
// its spans as pairs of left and right, and a sentinel, then a last sentinel. A band's top is the bottom of the one
// before, so a gap is a band without spans. {0, 10, 5, 8, S, S} would be the rectangle 5, 0, 8, 10.
#pragma once

#include <cstdint>
#include <memory>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsrect.h"
#include "gfx/vector/hsgblitter.h"

class hsPath;
class hsRegionSpanClipper;

class hsRegion {
 public:
  // Ends each band. Coordinates in runs lie strictly between minus this and this ("value out of runtype range").
  static constexpr int16_t kRunTypeSentinel = 32767;
  enum RunCount : int32_t { kEmptyCount = -1, kRectCount = 0, kRectRuns = 6, kMinComplexCount = 7 };
  enum PathOp { kReplacePath = 0, kIntersectPath = 1 };

  hsRegion();
  explicit hsRegion(const hsIntRect& rect);
  // Of count runs ("bad count" below 7). Bounds are worked out unless given.
  hsRegion(int32_t count, const int16_t runs[], const hsIntRect* bounds = nullptr);
  hsRegion(const hsRegion& other);
  hsRegion(hsRegion&& other) noexcept;
  ~hsRegion();
  hsRegion& operator=(const hsRegion& other);
  hsRegion& operator=(hsRegion&& other) noexcept;
  void Swap(hsRegion& other) noexcept;

  bool operator==(const hsRegion& other) const;

  void SetEmpty();
  void SetRect(const hsIntRect& rect);
  void SetRect(int32_t left, int32_t top, int32_t right, int32_t bottom) {
    SetRect(hsIntRect{left, top, right, bottom});
  }
  void SetRect(const hsRect& rect);  // to the nearest pixels
  // Any array of runs, also of an empty region (count below 6) or a rectangle (6). Runs that are malformed are reported
  // and leave the region empty.
  void SetRuns(int32_t count, const int16_t runs[], const hsIntRect* bounds = nullptr);
  // The pixels that the path fills; with kIntersectPath only those that were in the region.
  void SetPath(const hsPath& path, int op = kReplacePath);

  bool IsEmpty() const { return fRunCount == kEmptyCount; }
  bool IsRect() const { return fRunCount <= kRectCount; }  // true for the empty region too
  const hsIntRect& Bounds() const { return fBounds; }      // all 0 for an empty region
  bool GetBounds(hsIntRect* bounds) const;                 // returns IsRect
  bool Contains(int32_t x, int32_t y) const;
  // All of rect; false for an empty one.
  bool Contains(const hsIntRect& rect) const;
  // Any pixel of rect.
  bool Intersects(const hsIntRect& rect) const;

  // The runs of a complex region, null for any other.
  const int16_t* Runs() const { return fRuns.get(); }
  int32_t CountRuns() const { return fRunCount; }

  // The receiver may be an operand.
  void Intersect(const hsRegion& a, const hsRegion& b);
  void Intersect(const hsRegion& a, const hsIntRect& b) { Intersect(a, hsRegion(b)); }
  void Intersect(const hsIntRect& a, const hsIntRect& b) { Intersect(hsRegion(a), hsRegion(b)); }
  void Union(const hsRegion& a, const hsRegion& b);
  void Union(const hsRegion& a, const hsIntRect& b) { Union(a, hsRegion(b)); }
  void Union(const hsIntRect& a, const hsIntRect& b) { Union(hsRegion(a), hsRegion(b)); }
  void Difference(const hsRegion& a, const hsRegion& b);
  void Difference(const hsRegion& a, const hsIntRect& b) { Difference(a, hsRegion(b)); }
  void Difference(const hsIntRect& a, const hsIntRect& b) { Difference(hsRegion(a), hsRegion(b)); }
  void Xor(const hsRegion& a, const hsRegion& b);
  void Xor(const hsRegion& a, const hsIntRect& b) { Xor(a, hsRegion(b)); }
  void Xor(const hsIntRect& a, const hsIntRect& b) { Xor(hsRegion(a), hsRegion(b)); }

  // Moves the region, or, given a dst, a copy of it there.
  void Translate(int32_t dx, int32_t dy, hsRegion* dst = nullptr);

  // Trims left to right on row y to the first piece of the region at or after left; false when there is none. On a
  // rectangular region the piece can come out empty, at its very edge.
  bool ClipSpan(int32_t y, int32_t* left, int32_t* right) const;
  // All pieces of left to right on row y to the blitter.
  void BlitClipped(int32_t y, int32_t left, int32_t right, hsGBlitter* blitter) const;
  // The region's rectangles, cut by rect, to the blitter.
  void Blit(const hsIntRect& rect, hsGBlitter* blitter) const;

  // Whether all that is said above holds; reports "rgn validate failed". Walks the whole region.
  bool Validate() const;

 private:
  // Validate, spared for runs that have been looked through and can't have changed since.
  bool Check() const { return fIsChecked || Validate(); }
  void Adopt(int32_t count, std::unique_ptr<int16_t[]> runs, const hsIntRect& bounds, bool isJoined = false);
  friend class hsRegionOperator;

  hsIntRect fBounds{0, 0, 0, 0};    // exact
  int32_t fRunCount = kEmptyCount;  // elements of fRuns, or one of the two counts without any
  std::unique_ptr<int16_t[]> fRuns;
  bool fIsChecked = true;                                     // false once Translate has moved runs out of their range
  bool fIsJoined = false;                                     // bands that follow each other are known to differ
  mutable std::unique_ptr<hsRegionSpanClipper> fSpanClipper;  // made by the first ClipSpan
};

// value, if it fits into runs; otherwise reported and brought to the nearest that can.
int16_t hsRunType(int32_t value);
// Whether it can; reports if not.
bool hsIsRunType(int32_t value);

inline void hsRegion::BlitClipped(int32_t y, int32_t left, int32_t right, hsGBlitter* blitter) const {
  while (left < right) {
    int32_t pieceLeft = left, pieceRight = right;
    if (!ClipSpan(y, &pieceLeft, &pieceRight)) return;
    if (!hsAssert(pieceRight <= right, "bad clipSpan")) return;
    if (pieceLeft < pieceRight) blitter->BlitH(y, pieceLeft, pieceRight - pieceLeft);
    left = pieceRight + 1;  // the pixel after a piece is never in the region
  }
}
