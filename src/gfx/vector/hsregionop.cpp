// The boolean operations on regions: one merge of bands, and within it one merge of spans.
//
// A pixel has a state: bit 0 says inside a, bit 1 inside b. An operation keeps the pixels whose state lies between two
// limits, so that 3, 3 intersects, 1, 3 unites, 1, 1 subtracts and 1, 2 keeps what is in just one of the two.
#include <algorithm>
#include <cstring>
#include <utility>

#include "gfx/vector/hsregion.h"

namespace {

constexpr int16_t S = hsRegion::kRunTypeSentinel;
constexpr int16_t kNoSpans[] = {S};

// Writes the edges of what is kept and a sentinel, at most as many elements as a and b have; gives the place behind.
// Without a branch on the data: which side an edge comes from can't be foreseen.
template <int kMin, int kMax>
int16_t* MergeSpans(const int16_t* a, const int16_t* b, int16_t* out) {
  int state = 0;
  bool inside = false;
  for (;;) {
    const int16_t ax = *a, bx = *b;
    const bool stepA = ax <= bx, stepB = bx <= ax;
    const int16_t x = stepA ? ax : bx;
    *out = x;
    if (x == S) return out + 1;
    a += stepA;
    b += stepB;
    state ^= int(stepA) | int(stepB) << 1;
    const bool now = state >= kMin && state <= kMax;
    out += now != inside;
    inside = now;
  }
}

// One operand's current band. Used up, its top and bottom are the sentinel, which no row reaches.
struct Band {
  int32_t top, bottom;
  const int16_t* spans;
  const int16_t* end;  // the band's sentinel

  explicit Band(const int16_t* runs) : top(runs[0]), bottom(runs[1]) { Enter(runs + 2); }
  void Enter(const int16_t* first) {
    spans = end = first;
    while (*end != S) end += 2;
  }
  void Advance() {
    const int16_t* next = end + 1;
    top = bottom;
    bottom = *next;
    if (bottom == S)
      top = S;
    else
      Enter(next + 1);
  }
  int32_t Size() const { return int32_t(end - spans); }
};

// A rectangle written out as runs.
struct RectRuns {
  int16_t runs[hsRegion::kRectRuns];

  explicit RectRuns(const hsIntRect& r)
      : runs{hsRunType(r.fTop), hsRunType(r.fBottom), hsRunType(r.fLeft), hsRunType(r.fRight), S, S} {}
};

}  // namespace

class hsRegionOperator {
 public:
  // Into result, which may be a or b. bounds are the result's, if the caller knows them.
  template <int kMin, int kMax>
  static void Perform(const hsRegion& a, const hsRegion& b, hsRegion* result, const hsIntRect* bounds = nullptr) {
    if (!hsAssert(!a.IsEmpty() && !b.IsEmpty(), "need non-empty rgns")) return;
    const RectRuns aRect(a.fRuns ? hsIntRect{} : a.fBounds), bRect(b.fRuns ? hsIntRect{} : b.fBounds);
    const int32_t largest = std::max({a.fRunCount, b.fRunCount, int32_t{hsRegion::kRectRuns}});
    hsRegionOperator merge(3 * largest);
    merge.MergeBands<kMin, kMax>(a.fRuns ? a.fRuns.get() : aRect.runs, b.fRuns ? b.fRuns.get() : bRect.runs);
    merge.Deliver(result, bounds);
  }

 private:
  explicit hsRegionOperator(int32_t capacity) { Allocate(capacity); }

  void Allocate(int32_t capacity) {
    fRuns.reset(new int16_t[size_t(capacity)]);
    fCapacity = capacity;
    fOut = fRuns.get() + 1;  // the first element is the top's
  }

  // Room for a band of so many span elements, its bottom and sentinel, a gap before it and the final sentinel.
  void EnsureRoom(int32_t spans) {
    const int32_t used = int32_t(fOut - fRuns.get()), needed = used + spans + 5;
    if (needed <= fCapacity) return;
    const int32_t prev = fPrev ? int32_t(fPrev - fRuns.get()) : -1;
    std::unique_ptr<int16_t[]> old = std::move(fRuns);
    Allocate(needed + fCapacity);
    std::copy_n(old.get(), used, fRuns.get());
    fOut = fRuns.get() + used;
    fPrev = prev < 0 ? nullptr : fRuns.get() + prev;
  }

  template <int kMin, int kMax>
  void MergeBands(const int16_t* aRuns, const int16_t* bRuns) {
    Band a(aRuns), b(bRuns);
    // Where pixels of a alone are dropped, a result needs both operands; where those of b alone are, it needs a.
    constexpr bool kNeedsA = kMax < 2 || kMin == 3, kNeedsB = kMin == 3;
    while (a.bottom != S || b.bottom != S) {
      if ((kNeedsA && a.bottom == S) || (kNeedsB && b.bottom == S)) return;
      const bool inA = a.top <= b.top, inB = b.top <= a.top;
      const int32_t top = std::min(a.top, b.top);
      // The band ends where either operand changes: at a bottom, or at the top of the one that isn't in it yet.
      const int32_t bottom = inA && inB ? std::min(a.bottom, b.bottom)
                             : inA      ? std::min(a.bottom, b.top)
                                        : std::min(b.bottom, a.top);
      EnsureRoom(a.Size() + b.Size());
      PutGap(top);
      int16_t* spans = fOut + 1;
      int16_t* end;
      if (inA && inB)
        end = MergeSpans<kMin, kMax>(a.spans, b.spans, spans);
      else if (inA)
        end = kMin <= 1 ? CopySpans(a, spans) : CopySpans(kNoSpans, spans);
      else
        end = kMin <= 2 && kMax >= 2 ? CopySpans(b, spans) : CopySpans(kNoSpans, spans);
      PutBand(top, bottom, end);
      if (inA) Consume(&a, bottom);
      if (inB) Consume(&b, bottom);
    }
  }

  static int16_t* CopySpans(const Band& band, int16_t* to) {
    std::memcpy(to, band.spans, size_t(band.Size() + 1) * sizeof(int16_t));
    return to + band.Size() + 1;
  }
  static int16_t* CopySpans(const int16_t (&none)[1], int16_t* to) {
    *to = none[0];
    return to + 1;
  }

  static void Consume(Band* band, int32_t bottom) {
    if (band->bottom == bottom)
      band->Advance();
    else
      band->top = bottom;
  }

  // Both operands may leave rows free between them.
  void PutGap(int32_t top) {
    if (!fPrev || *fPrev == top) return;
    fOut[1] = S;
    PutBand(*fPrev, top, fOut + 2);
  }

  // The spans and sentinel of the band lie from fOut + 1 to end. A band like the one above only makes that one higher,
  // and empty bands before all others are dropped.
  void PutBand(int32_t top, int32_t bottom, int16_t* end) {
    const int32_t size = int32_t(end - fOut) - 1;
    if (!fPrev) {
      if (size == 1) return;
      fRuns[0] = int16_t(top);
    } else if (fOut - fPrev - 1 == size && std::equal(fPrev + 1, fOut, fOut + 1)) {
      *fPrev = int16_t(bottom);
      return;
    }
    *fOut = int16_t(bottom);
    fPrev = fOut;
    fOut = end;
    if (size > 1) {
      fLeft = std::min(fLeft, int32_t{fPrev[1]});
      fRight = std::max(fRight, int32_t{end[-2]});
    }
  }

  void Deliver(hsRegion* result, const hsIntRect* bounds) {
    if (!fPrev) return result->SetEmpty();
    if (fOut - fPrev == 2) {  // an empty band at the end
      fOut = fPrev;
      fPrev = nullptr;
    }
    *fOut++ = S;
    const int32_t count = int32_t(fOut - fRuns.get());
    if (count <= hsRegion::kRectRuns) return result->SetRuns(count, fRuns.get());
    const hsIntRect exact = bounds ? *bounds : hsIntRect{fLeft, fRuns[0], fRight, LastBottom()};
    // Kept at its own size: most results need far less than the room they were made in.
    std::unique_ptr<int16_t[]> runs(new int16_t[size_t(count)]);
    std::copy_n(fRuns.get(), count, runs.get());
    result->Adopt(count, std::move(runs), exact);
  }

  int32_t LastBottom() const {
    const int16_t* p = fOut - 2;  // the last band's sentinel
    do --p;
    while (p[-1] != S && p - 1 != fRuns.get());
    return *p;
  }

  std::unique_ptr<int16_t[]> fRuns;
  int32_t fCapacity = 0;     // elements
  int16_t* fOut = nullptr;   // slot of the next band's bottom
  int16_t* fPrev = nullptr;  // slot of the bottom of the last band kept
  int32_t fLeft = S, fRight = -S;
};

void hsRegion::Intersect(const hsRegion& a, const hsRegion& b) {
  a.Validate();
  b.Validate();
  if (a.IsEmpty() || b.IsEmpty() || !a.fBounds.Intersects(b.fBounds)) return SetEmpty();
  if (a.IsRect() && b.IsRect()) {
    hsIntRect shared = a.fBounds;
    shared.Intersect(b.fBounds);
    return SetRect(shared);
  }
  if (a.IsRect() && a.fBounds.Contains(b.fBounds)) {
    *this = b;
    return;
  }
  if (b.IsRect() && b.fBounds.Contains(a.fBounds)) {
    *this = a;
    return;
  }
  hsRegionOperator::Perform<3, 3>(a, b, this);
}

void hsRegion::Union(const hsRegion& a, const hsRegion& b) {
  a.Validate();
  b.Validate();
  if (a.IsEmpty() || b.IsEmpty()) {
    *this = a.IsEmpty() ? b : a;
    return;
  }
  hsIntRect bounds = a.fBounds;
  bounds.Union(b.fBounds);
  hsRegionOperator::Perform<1, 3>(a, b, this, &bounds);
}

void hsRegion::Difference(const hsRegion& a, const hsRegion& b) {
  a.Validate();
  b.Validate();
  const bool rects = a.IsRect() && b.IsRect();
  if (a.IsEmpty() || b.IsEmpty() || (rects && !a.fBounds.Intersects(b.fBounds))) {
    *this = a;
    return;
  }
  if (rects && b.fBounds.Contains(a.fBounds)) return SetEmpty();
  hsRegionOperator::Perform<1, 1>(a, b, this);
}

void hsRegion::Xor(const hsRegion& a, const hsRegion& b) {
  a.Validate();
  b.Validate();
  if (a.IsEmpty() || b.IsEmpty()) {
    *this = a.IsEmpty() ? b : a;
    return;
  }
  if (a.IsRect() && b.IsRect() && a.fBounds == b.fBounds) return SetEmpty();
  hsRegionOperator::Perform<1, 2>(a, b, this);
}
