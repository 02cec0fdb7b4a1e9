#include "gfx/vector/hssuperblitter.h"

#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/vector/hsregion.h"

namespace {

constexpr int32_t kSamples = 1 << hsSuperBlitter::kShift;  // to a pixel, either way
constexpr int32_t kSampleValue = 16;
constexpr uint64_t kEachByte = 0x0101010101010101;

// count bytes of 0xFF in memory order, the rest 0; count 0 to 8.
uint64_t MaskOfFirst(int32_t count) {
  static constexpr uint8_t kBytes[16] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  uint64_t mask;
  std::memcpy(&mask, kBytes + 8 - count, sizeof mask);
  return mask;
}

// Adds byte by byte; gives the bits that tell whether one overflowed. No byte of `by` is above 0x7F.
uint64_t AddBytes(uint8_t* at, uint64_t by) {
  uint64_t before;
  std::memcpy(&before, at, sizeof before);
  const uint64_t after = before + by;
  std::memcpy(at, &after, sizeof after);
  return before & ~after & (kEachByte << 7);
}

// By the byte's place in its word of four, the first one highest.
void ReportOverflow(int32_t pixel) {
  static constexpr const char* kMessages[] = {"bad 24", "bad 16", "bad 8", "bad 0"};
  hsAssert(false, kMessages[pixel & 3]);
}

}  // namespace

hsSuperBlitter::hsSuperBlitter(const hsIntRect& bounds, const hsRegion* clip, hsGBlitter* realBlitter)
    : fBounds(bounds),
      fClip(clip),
      fRealBlitter(realBlitter),
      fWordCount((bounds.Width() + 3) / 4),
      fSuperLeft(bounds.fLeft * kSamples),
      fSuperTop(bounds.fTop * kSamples) {
  uint32_t* words = fInline;
  if (fWordCount > kInlineWords) {
    fMore.reset(new uint32_t[size_t(fWordCount + kSpareWords)]);
    words = fMore.get();
  }
  std::memset(words, 0, size_t(fWordCount + kSpareWords) * sizeof *words);
  fCoverage = reinterpret_cast<uint8_t*>(words);
  if (!fClip) fRealBlitter->fAlpha = fCoverage;
}

hsSuperBlitter::~hsSuperBlitter() noexcept(false) {
  if (fDirty) Flush(false);
  fRealBlitter->fAlpha = nullptr;
}

void hsSuperBlitter::BlitH(int32_t y, int32_t x, int32_t width) {
  y -= fSuperTop;
  x -= fSuperLeft;
  const bool inside = y >= 0 && y < fBounds.Height() * kSamples && x >= 0 && x + width <= fBounds.Width() * kSamples;
  if (!hsAssert(inside, "HSScan assert failed")) return;
  const int32_t row = fBounds.fTop + (y >> kShift);
  if (row != fCurrY) {
    if (fCurrY != kNoRow) Flush(true);
    fCurrY = row;
  }
  AddSpan(y & (kSamples - 1), x, width);
  fDirty = true;
}

void hsSuperBlitter::AddSpan(int32_t subRow, int32_t x, int32_t width) {
  const int32_t less = subRow == 0 ? 1 : 0;
  const int32_t stop = x + width, first = x >> kShift, last = stop >> kShift;
  if (first == last) return Add(first, width * kSampleValue - less);
  Add(first, (kSamples - (x & (kSamples - 1))) * kSampleValue - less);
  AddFull(first + 1, last - first - 1, uint8_t(kSamples * kSampleValue - less));
  // A stop at the row's right edge falls on the spare word, with nothing to add.
  Add(last, (stop & (kSamples - 1)) * kSampleValue);
}

void hsSuperBlitter::Add(int32_t pixel, int32_t value) {
  const int32_t sum = fCoverage[pixel] + value;
  if (sum > 255) [[unlikely]]
    ReportOverflow(pixel);
  fCoverage[pixel] = uint8_t(sum);
}

// The pixels that a span fills from side to side, eight at a time; the last time may take in pixels behind, adding 0.
void hsSuperBlitter::AddFull(int32_t pixel, int32_t count, uint8_t full) {
  if (count <= 0) return;
  uint8_t* at = fCoverage + pixel;
  uint64_t overflow = 0;
  const uint64_t all = full * kEachByte;
  for (; count >= 8; count -= 8, at += 8) overflow |= AddBytes(at, all);
  overflow |= AddBytes(at, all & MaskOfFirst(count));
  if (overflow) [[unlikely]]
    ReportOverflow(pixel);
}

void hsSuperBlitter::Flush(bool clear) {
  const int32_t left = fBounds.fLeft, right = fBounds.fRight;
  if (!fClip) {
    fRealBlitter->BlitH(fCurrY, left, right - left);
  } else if (hsAssert(left < right, "HSScan assert failed")) {
    int32_t l = left, r = right;
    while (fClip->ClipSpan(fCurrY, &l, &r)) {
      fRealBlitter->fAlpha = fCoverage + (l - left);
      fRealBlitter->BlitH(fCurrY, l, r - l);
      if (r + 1 >= right) break;  // the pixel behind a piece is never in the region
      l = r + 1;
      r = right;
    }
  }
  if (clear) std::memset(fCoverage, 0, size_t(fWordCount) * 4);
}
