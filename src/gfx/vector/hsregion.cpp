#include "gfx/vector/hsregion.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "gfx/vector/hsregioniter.h"

namespace {

constexpr int16_t S = hsRegion::kRunTypeSentinel;

// Whether runs are those of a region with at least one span, and then their bounds. Reads nothing outside, whatever
// they are.
bool ComputeBounds(int32_t count, const int16_t runs[], hsIntRect* bounds) {
  const int16_t* p = runs;
  const int16_t* const end = runs + count;
  int32_t left = S, right = -S, bottom = *p++;
  if (bottom <= -S) return false;
  while (p < end) {
    const int32_t below = *p++;
    if (below == S) {
      *bounds = {left, runs[0], right, bottom};
      return p == end && left < right;
    }
    if (below <= bottom) return false;
    bottom = below;
    int32_t last = -S;
    const int16_t* const spans = p;
    for (;;) {
      if (p == end) return false;
      const int32_t from = *p++;
      if (from == S) break;
      if (from <= last || p == end) return false;
      last = *p++;
      if (last <= from || last == S) return false;
    }
    if (p - spans > 1) {
      left = std::min<int32_t>(left, spans[0]);
      right = std::max(right, last);
    }
  }
  return false;
}

std::unique_ptr<int16_t[]> CopyOf(int32_t count, const int16_t runs[]) {
  std::unique_ptr<int16_t[]> copy(new int16_t[size_t(count)]);
  std::copy_n(runs, count, copy.get());
  return copy;
}

// A sum that leaves the range would read as a sentinel or out of order; kept inside, the runs stay walkable.
int16_t MovedRun(int16_t value, int32_t by) { return int16_t(std::clamp(value + by, 1 - S, S - 1)); }

}  // namespace

bool hsIsRunType(int32_t value) { return hsAssert(value > -S && value < S, "value out of runtype range"); }

int16_t hsRunType(int32_t value) { return int16_t(hsIsRunType(value) ? value : std::clamp(value, 1 - S, S - 1)); }

hsRegion::hsRegion() = default;
hsRegion::~hsRegion() = default;

hsRegion::hsRegion(const hsIntRect& rect) {
  if (rect.IsEmpty()) return;
  fBounds = rect;
  fRunCount = kRectCount;
}

hsRegion::hsRegion(int32_t count, const int16_t runs[], const hsIntRect* bounds) {
  if (!hsAssert(count >= kMinComplexCount, "bad count")) return;
  hsIntRect computed;
  const bool good = ComputeBounds(count, runs, &computed) && (!bounds || *bounds == computed);
  if (hsAssert(good, "rgn validate failed")) Adopt(count, CopyOf(count, runs), computed);
}

hsRegion::hsRegion(const hsRegion& other)
    : fBounds(other.fBounds), fRunCount(other.fRunCount), fIsChecked(other.fIsChecked), fIsJoined(other.fIsJoined) {
  if (other.fRuns) fRuns = CopyOf(fRunCount, other.fRuns.get());
}

hsRegion::hsRegion(hsRegion&& other) noexcept { Swap(other); }

hsRegion& hsRegion::operator=(const hsRegion& other) {
  if (this == &other) return *this;
  if (!other.fRuns) {
    fRuns.reset();
    fSpanClipper.reset();
    fBounds = other.fBounds;
    fRunCount = other.fRunCount;
    fIsChecked = true;
    return *this;
  }
  hsRegion copy(other);
  Swap(copy);
  return *this;
}

hsRegion& hsRegion::operator=(hsRegion&& other) noexcept {
  Swap(other);
  return *this;
}

void hsRegion::Swap(hsRegion& other) noexcept {
  std::swap(fBounds, other.fBounds);
  std::swap(fRunCount, other.fRunCount);
  std::swap(fIsChecked, other.fIsChecked);
  std::swap(fIsJoined, other.fIsJoined);
  fRuns.swap(other.fRuns);
  fSpanClipper.reset();  // a clipper knows its region by address
  other.fSpanClipper.reset();
}

void hsRegion::Adopt(int32_t count, std::unique_ptr<int16_t[]> runs, const hsIntRect& bounds, bool isJoined) {
  fSpanClipper.reset();
  fRuns = std::move(runs);
  fRunCount = count;
  fBounds = bounds;
  fIsChecked = true;
  fIsJoined = isJoined;
}

bool hsRegion::operator==(const hsRegion& other) const {
  if (fRunCount != other.fRunCount || fBounds != other.fBounds) return false;
  return !fRuns || std::equal(fRuns.get(), fRuns.get() + fRunCount, other.fRuns.get());
}

void hsRegion::SetEmpty() {
  fRuns.reset();
  fSpanClipper.reset();
  fBounds = {0, 0, 0, 0};
  fRunCount = kEmptyCount;
  fIsChecked = true;
}

void hsRegion::SetRect(const hsIntRect& rect) {
  if (rect.IsEmpty()) return SetEmpty();
  fRuns.reset();
  fSpanClipper.reset();
  fBounds = rect;
  fRunCount = kRectCount;
  fIsChecked = true;
}

void hsRegion::SetRect(const hsRect& rect) {
  hsIntRect rounded;
  rect.Round(&rounded);
  SetRect(rounded);
}

void hsRegion::SetRuns(int32_t count, const int16_t runs[], const hsIntRect* bounds) {
  if (count < kRectRuns) return SetEmpty();
  if (count == kRectRuns) return SetRect(runs[2], runs[0], runs[3], runs[1]);
  hsRegion built(count, runs, bounds);
  Swap(built);
}

bool hsRegion::Validate() const {
  bool good;
  if (fRunCount < kMinComplexCount) {
    good = !fRuns && !fSpanClipper;
    good = good && (fRunCount == kEmptyCount ? fBounds == hsIntRect{0, 0, 0, 0}
                                             : fRunCount == kRectCount && !fBounds.IsEmpty());
  } else {
    hsIntRect bounds;
    good = fRuns && ComputeBounds(fRunCount, fRuns.get(), &bounds) && bounds == fBounds;
    good = good && (!fSpanClipper || fSpanClipper->IsOver(this));
  }
  return hsAssert(good, "rgn validate failed");
}

bool hsRegion::GetBounds(hsIntRect* bounds) const {
  *bounds = fBounds;
  return IsRect();
}

bool hsRegion::Contains(int32_t x, int32_t y) const {
  if (!fBounds.Contains(x, y)) return false;
  if (IsRect()) return true;
  for (hsRegionRectIter iter(*this); !iter.IsDone(); iter.Next()) {
    const hsIntRect& r = iter.Rect();
    if (r.fTop > y) return false;
    if (r.fBottom > y && r.fRight > x) return r.fLeft <= x;
  }
  return false;
}

bool hsRegion::Contains(const hsIntRect& rect) const {
  if (rect.IsEmpty() || !fBounds.Contains(rect)) return false;
  if (IsRect()) return true;
  int32_t y = rect.fTop;  // all above is known to be covered
  for (hsRegionRectIter iter(*this); !iter.IsDone(); iter.Next()) {
    const hsIntRect& r = iter.Rect();
    if (r.fTop > y) return false;
    if (r.fBottom <= y || r.fRight <= rect.fLeft) continue;
    if (r.fLeft > rect.fLeft || r.fRight < rect.fRight) return false;
    y = r.fBottom;
    if (y >= rect.fBottom) return true;
  }
  return false;
}

bool hsRegion::Intersects(const hsIntRect& rect) const {
  return !IsEmpty() && fBounds.Intersects(rect) && !hsRegionClipRectIter(*this, rect).IsDone();
}

void hsRegion::Translate(int32_t dx, int32_t dy, hsRegion* dst) {
  if (dst && dst != this) {
    *dst = *this;
    return dst->Translate(dx, dy);
  }
  Check();
  if (!hsIsRunType(dx) || !hsIsRunType(dy) || IsEmpty()) return;
  fBounds = {hsWrapAdd(fBounds.fLeft, dx), hsWrapAdd(fBounds.fTop, dy), hsWrapAdd(fBounds.fRight, dx),
             hsWrapAdd(fBounds.fBottom, dy)};
  if (!fRuns) return;
  // A bounding box in range has everything in range.
  const hsIntRect range{1 - S, 1 - S, S - 1, S - 1};
  fIsChecked = fIsChecked && range.Contains(fBounds);
  int16_t* p = fRuns.get();
  *p = MovedRun(*p, dy);
  for (++p; *p != S; ++p) {
    *p = MovedRun(*p, dy);
    while (*++p != S) *p = MovedRun(*p, dx);
  }
}

bool hsRegion::ClipSpan(int32_t y, int32_t* left, int32_t* right) const {
  if (IsEmpty() || *left >= fBounds.fRight || *right < fBounds.fLeft || y < fBounds.fTop || y >= fBounds.fBottom)
    return false;
  if (IsRect()) {
    *left = std::max(*left, fBounds.fLeft);
    *right = std::min(*right, fBounds.fRight);
    return true;
  }
  if (!fSpanClipper) fSpanClipper = std::make_unique<hsRegionSpanClipper>(this);
  return fSpanClipper->ClipSpan(y, left, right);
}

void hsRegion::Blit(const hsIntRect& rect, hsGBlitter* blitter) const {
  Check();
  for (hsRegionClipRectIter iter(*this, rect); !iter.IsDone(); iter.Next()) {
    const hsIntRect& r = iter.Rect();
    blitter->BlitRect(r.fTop, r.fLeft, r.Width(), r.Height());
  }
}
