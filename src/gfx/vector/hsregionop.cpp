// The boolean operations on regions: one merge of bands, and within it one merge of spans.
//
// In a band where both operands have spans these are merged; where only one has, they are kept or dropped whole. What
// sets the four operations apart is no more than that: how spans merge, and whether those of one alone are kept.
#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "gfx/vector/hsregion.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

constexpr int16_t S = hsRegion::kRunTypeSentinel;

// The first sentinel from a place on; there is one before limit.
const int16_t* FindSentinel(const int16_t* from, const int16_t* limit) {
#ifdef __SSE2__
  const __m128i sentinels = _mm_set1_epi16(S);
  for (; limit - from >= 8; from += 8) {
    const __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    if (const auto found = uint32_t(_mm_movemask_epi8(_mm_cmpeq_epi16(eight, sentinels))); found != 0)
      return from + std::countr_zero(found) / 2;
  }
#endif
  while (*from != S) ++from;
  return from;
}

// The merges of two bands' spans. Each reads pairs up to the sentinel, writes what is kept and a sentinel, at most as
// many elements as both have together, and returns the place after.

using SpanMerge = int16_t* (*)(const int16_t* a, const int16_t* b, int16_t* out);

int16_t* CopySpans(const int16_t* spans, int16_t* out) {
  while ((*out++ = *spans++) != S) {
  }
  return out;
}

// Puts one more span, which starts no earlier than the last one did, and joins the two where they meet.
inline void Join(const int16_t*& span, int16_t& right, int16_t*& out) {
  if (span[0] > right) {
    out[1] = right;
    out += 2;
    out[0] = span[0];
    right = span[1];
  } else if (span[1] > right) {
    right = span[1];
  }
  span += 2;
}

int16_t* UniteSpans(const int16_t* a, const int16_t* b, int16_t* out) {
  const int16_t*& first = *a < *b ? a : b;
  out[0] = first[0];
  int16_t right = first[1];
  first += 2;
  while (*a != S && *b != S) {
    if (*a < *b)
      Join(a, right, out);
    else
      Join(b, right, out);
  }
  const int16_t* rest = *a != S ? a : b;
  while (*rest != S && *rest <= right) Join(rest, right, out);
  out[1] = right;
  return CopySpans(rest, out + 2);
}

// Without a branch on how the spans lie, which can't be foreseen.
int16_t* IntersectSpans(const int16_t* a, const int16_t* b, int16_t* out) {
  while (*a != S && *b != S) {
    const int16_t aRight = a[1], bRight = b[1];
    out[0] = std::max(a[0], b[0]);
    out[1] = std::min(aRight, bRight);
    out += 2 * (out[0] < out[1]);
    a += 2 * (aRight <= bRight);
    b += 2 * (bRight <= aRight);
  }
  *out = S;
  return out + 1;
}

int16_t* SubtractSpans(const int16_t* a, const int16_t* b, int16_t* out) {
  for (; *a != S; a += 2) {
    int16_t left = a[0];  // of what is left of the span
    const int16_t right = a[1];
    while (*b != S && b[1] <= left) b += 2;
    while (*b < right) {
      if (left < *b) {
        out[0] = left;
        out[1] = *b;
        out += 2;
      }
      left = b[1];
      if (left >= right) break;  // and this span of b may reach into the next of a
      b += 2;
    }
    if (left < right) {
      out[0] = left;
      out[1] = right;
      out += 2;
    }
  }
  *out = S;
  return out + 1;
}

// All edges in order, but for those that both have.
int16_t* XorSpans(const int16_t* a, const int16_t* b, int16_t* out) {
  for (;;) {
    const int16_t ax = *a, bx = *b;
    *out = std::min(ax, bx);
    if (*out == S) return out + 1;
    out += ax != bx;
    a += ax <= bx;
    b += bx <= ax;
  }
}

// One operand's current band, or what is left of it. Used up, its top is the sentinel, which no row reaches.
struct Band {
  int32_t top, bottom;
  const int16_t* spans;
  const int16_t* end;    // the band's sentinel
  const int16_t* limit;  // of the region's runs

  Band(const int16_t* runs, int32_t count) : Band(runs[0], runs + 1, runs + count) {}
  Band(int32_t t, const int16_t* slot, const int16_t* limit) : top(t), limit(limit) { Enter(slot); }
  bool IsUsedUp() const { return top == S; }
  int32_t Size() const { return int32_t(end - spans); }
  // Leaves out the rows above y; y is at most the bottom.
  void ConsumeTo(int32_t y) {
    top = y;
    if (y != bottom) return;
    if (end[1] == S)
      top = S;
    else
      Enter(end + 1);
  }
  void SkipTo(int32_t y) {
    while (top < y) ConsumeTo(std::min(bottom, y));
  }

 private:
  void Enter(const int16_t* slot) {
    bottom = *slot;
    spans = slot + 1;
    end = FindSentinel(spans, limit);
  }
};

// Whether two bands have the same spans. Most differ in the first, which is why this isn't left to a library call.
bool AreSame(const int16_t* a, const int16_t* b) {
  while (*a == *b) {
    if (*a == S) return true;
    ++a;
    ++b;
  }
  return false;
}

// The slot of the first band that ends below row y, where there is one. From any place in the array the next sentinel
// leads to a slot, so there is no need to walk through all bands.
const int16_t* FindBand(const int16_t* runs, int32_t count, int32_t y) {
  const int16_t* above = runs + 1;  // a band that doesn't
  if (*above > y) return above;
  const int16_t* end = runs + count - 1;  // after all that are still in question
  const int16_t* found = nullptr;
  while (end - above > 2) {
    const int16_t* const middle = above + (end - above) / 2;
    const int16_t* next = middle;
    while (*next++ != S) {
    }
    if (next < end && *next <= y) {
      above = next;
    } else {
      if (next < end) found = next;
      end = middle + 1;
    }
  }
  return found;
}

// From the slot of a band to that of the band above it, which there is.
const int16_t* BandAbove(const int16_t* slot, const int16_t* runs) {
  slot -= 2;
  while (slot - 1 != runs && slot[-1] != S) --slot;
  return slot;
}

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
  template <SpanMerge merge, bool keepsA, bool keepsB>
  static void Perform(const hsRegion& a, const hsRegion& b, hsRegion* result, const hsIntRect* bounds = nullptr) {
    if (!hsAssert(!a.IsEmpty() && !b.IsEmpty(), "need non-empty rgns")) return;
    const RectRuns aRect(a.fRuns ? hsIntRect{} : a.fBounds), bRect(b.fRuns ? hsIntRect{} : b.fBounds);
    hsRegionOperator bands(a.fRunCount + b.fRunCount + 2 * hsRegion::kRectRuns);
    Band aBand = a.fRuns ? Band(a.fRuns.get(), a.fRunCount) : Band(aRect.runs, hsRegion::kRectRuns);
    Band bBand = b.fRuns ? Band(b.fRuns.get(), b.fRunCount) : Band(bRect.runs, hsRegion::kRectRuns);
    bands.MergeBands<merge, keepsA, keepsB, false>(aBand, bBand);
    bands.Deliver(result, bounds);
  }

  // The union of a region whose bands are joined and a rectangle that begins above its end: bands wholly above and
  // below the rectangle are copied as they stand.
  static void UniteWithRect(const hsRegion& a, const hsIntRect& b, const hsIntRect& bounds, hsRegion* result) {
    const RectRuns rect(b);
    const int16_t* const runs = a.fRuns.get();
    const int16_t* const first = FindBand(runs, a.fRunCount, b.fTop);
    hsRegionOperator bands(a.fRunCount + 3 * hsRegion::kRectRuns);
    bands.TakeAllAbove(first, runs);
    Band old(first == runs + 1 ? runs[0] : *BandAbove(first, runs), first, runs + a.fRunCount);
    Band added(rect.runs, hsRegion::kRectRuns);
    bands.MergeBands<UniteSpans, true, true, true>(old, added);
    bands.TakeRest(old, runs + a.fRunCount - 1);
    bands.Deliver(result, &bounds);
  }

 private:
  explicit hsRegionOperator(int32_t capacity) { Allocate(capacity); }

  void Allocate(int32_t capacity) {
    fRuns.reset(new int16_t[size_t(capacity)]);
    fCapacity = capacity;
    fOut = fRuns.get() + 1;  // the first element is the top's
  }

  // Space for a band of that many span elements, its bottom and sentinel, a gap before it and the final sentinel.
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

  template <SpanMerge merge, bool keepsA, bool keepsB, bool endsWithB>
  void MergeBands(Band& a, Band& b) {
    for (;;) {
      if (endsWithB && b.IsUsedUp()) return;
      if (a.top < b.top) {
        if (!keepsA && b.IsUsedUp()) return;
        TakeAlone(&a, b.top, keepsA);
      } else if (b.top < a.top) {
        if (!keepsB && a.IsUsedUp()) return;
        TakeAlone(&b, a.top, keepsB);
      } else {
        if (a.IsUsedUp()) return;
        const int32_t bottom = std::min(a.bottom, b.bottom);
        if (a.Size() > 0 && b.Size() > 0) {
          EnsureRoom(a.Size() + b.Size());
          PutBand(a.top, bottom, merge(a.spans, b.spans, SpansAt(a.top)));
        } else if (keepsA && a.Size() > 0) {
          PutSpansOf(a, bottom);
        } else if (keepsB && b.Size() > 0) {
          PutSpansOf(b, bottom);
        }
        a.ConsumeTo(bottom);
        b.ConsumeTo(bottom);
      }
    }
  }

  // All bands above first.
  void TakeAllAbove(const int16_t* first, const int16_t* runs) {
    if (first == runs + 1) return;
    const int16_t* last = BandAbove(first, runs);
    const int16_t* end = first;
    if (last[1] == S) {  // a gap, which comes with the band after it
      end = last;
      last = BandAbove(last, runs);
    }
    fOut = std::copy(runs, end, fRuns.get());
    fPrev = fRuns.get() + (last - runs);
  }

  // What is left of a region's bands, up to its final sentinel.
  void TakeRest(Band& band, const int16_t* final) {
    if (band.IsUsedUp()) return;
    if (band.Size() == 0) band.ConsumeTo(band.bottom);
    PutSpansOf(band, band.bottom);
    EnsureRoom(int32_t(final - band.end));
    fOut = std::copy(band.end + 1, final, fOut);
  }

  // The rows of band above y, where the other operand has none.
  void TakeAlone(Band* band, int32_t y, bool keeps) {
    if (!keeps) return band->SkipTo(y);
    while (band->top < y) {
      const int32_t bottom = std::min(band->bottom, y);
      if (band->Size() > 0) PutSpansOf(*band, bottom);
      band->ConsumeTo(bottom);
      if (fPrev) TakeAsTheyStand(band, y);
    }
  }

  // Whole bands above y that follow the last one put without a gap and differ from one another: in one copy.
  void TakeAsTheyStand(Band* band, int32_t y) {
    const int16_t* const from = band->spans - 1;
    const int16_t* above = fPrev + 1;
    const int16_t* to = from;
    int32_t top = *fPrev;
    while (band->top == top && band->bottom <= y && band->Size() > 0 && !AreSame(band->spans, above)) {
      fLeft = std::min(fLeft, int32_t{band->spans[0]});
      fRight = std::max(fRight, int32_t{band->end[-1]});
      above = band->spans;
      to = band->end + 1;
      top = band->bottom;
      band->ConsumeTo(top);
    }
    if (to == from) return;
    EnsureRoom(int32_t(to - from));
    fPrev = fOut + (above - 1 - from);
    fOut = std::copy(from, to, fOut);
  }

  void PutSpansOf(const Band& band, int32_t bottom) {
    EnsureRoom(band.Size());
    int16_t* const spans = SpansAt(band.top);
    PutBand(band.top, bottom, std::copy(band.spans, band.end + 1, spans));
  }

  // Rows have been left out since the last band.
  bool IsGapBefore(int32_t top) const { return fPrev && *fPrev != top; }
  // Where the spans of a band from top on are to be written, after its bottom and, after a gap, that gap's empty band.
  int16_t* SpansAt(int32_t top) const { return fOut + (IsGapBefore(top) ? 3 : 1); }

  // Takes what has been written at SpansAt, up to end, as a band. One like the band above only makes that higher, and
  // no spans make no band.
  void PutBand(int32_t top, int32_t bottom, int16_t* end) {
    int16_t* const spans = SpansAt(top);
    if (*spans == S) return;
    if (!fPrev) {
      fRuns[0] = int16_t(top);
    } else if (IsGapBefore(top)) {
      fOut[0] = int16_t(top);
      fOut[1] = S;
    } else if (AreSame(spans, fPrev + 1)) {
      *fPrev = int16_t(bottom);
      return;
    }
    fLeft = std::min(fLeft, int32_t{spans[0]});
    fRight = std::max(fRight, int32_t{end[-2]});
    fPrev = spans - 1;
    *fPrev = int16_t(bottom);
    fOut = end;
  }

  void Deliver(hsRegion* result, const hsIntRect* bounds) {
    if (!fPrev) return result->SetEmpty();
    *fOut++ = S;
    const int32_t count = int32_t(fOut - fRuns.get());
    if (count <= hsRegion::kRectRuns) return result->SetRuns(count, fRuns.get());
    const hsIntRect exact = bounds ? *bounds : hsIntRect{fLeft, fRuns[0], fRight, *fPrev};
    if (count < fCapacity / 2) {  // most of the space would lie idle
      std::unique_ptr<int16_t[]> fitting(new int16_t[size_t(count)]);
      std::copy_n(fRuns.get(), count, fitting.get());
      fRuns = std::move(fitting);
    }
    result->Adopt(count, std::move(fRuns), exact, true);
  }

  std::unique_ptr<int16_t[]> fRuns;
  int32_t fCapacity = 0;     // elements
  int16_t* fOut = nullptr;   // slot of the next band's bottom
  int16_t* fPrev = nullptr;  // slot of the bottom of the last band kept
  int32_t fLeft = S, fRight = -S;
};

void hsRegion::Intersect(const hsRegion& a, const hsRegion& b) {
  a.Check();
  b.Check();
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
  hsRegionOperator::Perform<IntersectSpans, false, false>(a, b, this);
}

void hsRegion::Union(const hsRegion& a, const hsRegion& b) {
  a.Check();
  b.Check();
  if (a.IsEmpty() || b.IsEmpty()) {
    *this = a.IsEmpty() ? b : a;
    return;
  }
  hsIntRect bounds = a.fBounds;
  bounds.Union(b.fBounds);
  const bool isToB = a.IsRect();
  const hsRegion &old = isToB ? b : a, &added = isToB ? a : b;
  if (old.fIsJoined && !old.IsRect() && added.IsRect() && added.fBounds.fTop < old.fBounds.fBottom)
    return hsRegionOperator::UniteWithRect(old, added.fBounds, bounds, this);
  hsRegionOperator::Perform<UniteSpans, true, true>(a, b, this, &bounds);
}

void hsRegion::Difference(const hsRegion& a, const hsRegion& b) {
  a.Check();
  b.Check();
  const bool rects = a.IsRect() && b.IsRect();
  if (a.IsEmpty() || b.IsEmpty() || (rects && !a.fBounds.Intersects(b.fBounds))) {
    *this = a;
    return;
  }
  if (rects && b.fBounds.Contains(a.fBounds)) return SetEmpty();
  hsRegionOperator::Perform<SubtractSpans, true, false>(a, b, this);
}

void hsRegion::Xor(const hsRegion& a, const hsRegion& b) {
  a.Check();
  b.Check();
  if (a.IsEmpty() || b.IsEmpty()) {
    *this = a.IsEmpty() ? b : a;
    return;
  }
  if (a.IsRect() && b.IsRect() && a.fBounds == b.fBounds) return SetEmpty();
  hsRegionOperator::Perform<XorSpans, true, true>(a, b, this);
}
