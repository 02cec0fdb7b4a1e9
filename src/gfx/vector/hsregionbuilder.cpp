#include "gfx/vector/hsregionbuilder.h"

#include <algorithm>
#include <utility>

#include "gfx/vector/hsregion.h"

namespace {

constexpr int16_t S = hsRegion::kRunTypeSentinel;
constexpr int32_t kStartCapacity = 32;

}  // namespace

hsRegionBuilder::hsRegionBuilder()
    : fStorage(new int16_t[kStartCapacity]), fCapacity(kStartCapacity), fStop(fStorage.get() + kStartCapacity) {}

void hsRegionBuilder::EnsureRoom(int32_t elements) {
  const int32_t used = fCursor ? int32_t(fCursor - fStorage.get()) : 0;
  if (used + elements < fCapacity) return;
  const int32_t capacity = fCapacity + elements + fCapacity / 2;
  std::unique_ptr<int16_t[]> bigger(new int16_t[size_t(capacity)]);
  std::copy_n(fStorage.get(), used, bigger.get());
  const auto moved = [&](int16_t* p) { return p ? bigger.get() + (p - fStorage.get()) : nullptr; };
  fBand = moved(fBand);
  fPrevBand = moved(fPrevBand);
  fCursor = moved(fCursor);
  fStorage = std::move(bigger);
  fCapacity = capacity;
  fStop = fStorage.get() + capacity;
}

void hsRegionBuilder::BlitH(int32_t y, int32_t x, int32_t width) {
  const int32_t right = hsWrapAdd(x, width);
  if (!hsIsRunType(y) || !hsIsRunType(x) || !hsIsRunType(right)) return;
  EnsureRoom(5);
  if (!hsAssert(fCursor != fStop, "overrun in blit")) return;
  if (!fCursor) {
    fStorage[0] = int16_t(y);
    fBand = fStorage.get() + 1;
    fCursor = fBand + 1;
    fLastY = y;
  }
  if (y > fLastY) {
    const bool isNext = y == fLastY + 1;
    EndRow(isNext);
    if (!isNext) {
      fPrevBand = nullptr;
      *fBand = int16_t(y);
      *fCursor++ = S;
      fBand = fCursor++;
    }
  }
  if (fCursor != fBand + 1 && fCursor[-1] == x) {
    fCursor[-1] = int16_t(right);
    return;
  }
  *fCursor++ = int16_t(x);
  *fCursor++ = int16_t(right);
  fLastY = y;
}

void hsRegionBuilder::EndRow(bool canCoalesce) {
  EnsureRoom(5);
  *fCursor++ = S;
  if (fPrevBand && std::equal(fPrevBand + 1, fBand, fBand + 1, fCursor)) {
    *fPrevBand = int16_t(fLastY + 1);
    fCursor = fBand + 1;
    return;
  }
  if (canCoalesce) fPrevBand = fBand;
  *fBand = int16_t(fLastY + 1);
  fBand = fCursor++;
}

const int16_t* hsRegionBuilder::Finish(int32_t* count) {
  if (fCursor)
    EndRow(false);
  else
    fBand = fStorage.get();
  *fBand = S;
  hsAssert(fBand < fStop, "overrun");
  *count = int32_t(fBand - fStorage.get()) + 1;
  return fStorage.get();
}
