#include "gfx/vector/hssuperblitter.h"

#include <algorithm>
#include <bit>

#include "gfx/foundation/hsdebug.h"
#include "gfx/vector/hsregion.h"

namespace {

constexpr int32_t kSamples = 1 << hsSuperBlitter::kShift;  // to a pixel, either way
constexpr int32_t kSampleValue = 16;
constexpr int32_t kWordPixels = 8;
constexpr int32_t kWideWords = 4;  // from which on a run is worth holding back
constexpr uint64_t kEachByte = 0x0101010101010101, kTopBits = kEachByte << 7;

// Words hold pixels in memory order, whichever end the processor begins at.
constexpr int PlaceOf(int32_t pixel) {
  const int byte = pixel & (kWordPixels - 1);
  return 8 * (std::endian::native == std::endian::little ? byte : kWordPixels - 1 - byte);
}
constexpr uint64_t At(int32_t pixel, int32_t value) { return uint64_t(value) << PlaceOf(pixel); }
// The bytes of pixel's word to its left.
constexpr uint64_t LeftOf(int32_t pixel) {
  const uint64_t low = (uint64_t{1} << PlaceOf(pixel)) - 1;
  return std::endian::native == std::endian::little ? low : ~low & ~At(pixel, 255);
}
constexpr uint64_t RightOf(int32_t pixel) { return ~LeftOf(pixel) & ~At(pixel, 255); }

// A byte that overflows is reported by its place in its four, the first one highest.
void ReportOverflow(uint64_t carries) {
  static constexpr const char* kMessages[] = {"bad 24", "bad 16", "bad 8", "bad 0"};
  int32_t pixel = 0;
  while (!(carries & At(pixel, 0x80))) ++pixel;
  hsAssert(false, kMessages[pixel & 3]);
}

// Adds byte by byte; returns the top bits of those that overflowed.
inline uint64_t AddBytes(uint64_t* word, uint64_t by) {
  const uint64_t before = *word, after = before + by;
  *word = after;
  return ((before & by) | ((before | by) & ~after)) & kTopBits;
}

}  // namespace

hsSuperBlitter::hsSuperBlitter(const hsIntRect& bounds, const hsRegion* clip, hsGBlitter* realBlitter)
    : fBounds(bounds),
      fClip(clip),
      fRealBlitter(realBlitter),
      fCovered(realBlitter),
      fWordCount((bounds.Width() + kWordPixels - 1) / kWordPixels),
      fSuperLeft(bounds.fLeft * kSamples),
      fSuperTop(bounds.fTop * kSamples) {
  if (fWordCount >= kInlineWords) {
    fMore.reset(new uint64_t[size_t(fWordCount) + 1]);
    fCoverage = fMore.get();
  }
  std::fill_n(fCoverage, fWordCount + 1, 0);
  if (!fClip) fRealBlitter->fAlpha = Bytes();
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

void hsSuperBlitter::Finish() {
  if (fDirty) Flush(false);
  fDirty = false;
}

void hsSuperBlitter::AddSpan(int32_t subRow, int32_t x, int32_t width) {
  const int32_t less = subRow == 0 ? 1 : 0;
  const int32_t stop = x + width, first = x >> kShift, last = stop >> kShift;
  const int32_t word = first / kWordPixels;
  if (first == last) return Add(word, At(first, width * kSampleValue - less));
  // A stop at the row's right edge can fall on the spare word, with nothing to add.
  const int32_t lastWord = last / kWordPixels;
  const uint64_t full = uint64_t(kSamples * kSampleValue - less) * kEachByte;
  const uint64_t begin = At(first, (kSamples - (x & (kSamples - 1))) * kSampleValue - less) | (full & RightOf(first));
  const uint64_t end = (full & LeftOf(last)) | At(last, (stop & (kSamples - 1)) * kSampleValue);
  if (word == lastWord) return Add(word, (begin & LeftOf(last)) | (end & At(last, 255)));
  Add(word, begin);
  AddRun({word + 1, lastWord}, full);
  Add(lastWord, end);
}

void hsSuperBlitter::Add(int32_t word, uint64_t by) {
  const uint64_t carries = AddBytes(fCoverage + word, by);
  if (carries) [[unlikely]]
    ReportOverflow(carries);
}

// The inside of a shape is filled on all four sample rows. So a wide run waits, and what the rows have in common is
// added once, when the pixel row is complete.
void hsSuperBlitter::AddRun(Run run, uint64_t by) {
  const Run common{std::max(run.begin, fHeld.begin), std::min(run.end, fHeld.end)};
  if (common.end - common.begin < kWideWords) {
    if (fHeldBy != 0 || run.end - run.begin < kWideWords) return AddWords(run, by);
    fHeld = run;
    fHeldBy = by;
    return;
  }
  AddWords({fHeld.begin, common.begin}, fHeldBy);
  AddWords({common.end, fHeld.end}, fHeldBy);
  AddWords({run.begin, common.begin}, by);
  AddWords({common.end, run.end}, by);
  fHeld = common;
  fHeldBy += by;
}

void hsSuperBlitter::AddWords(Run run, uint64_t by) {
  uint64_t carries = 0;
  for (int32_t word = run.begin; word < run.end; ++word) carries |= AddBytes(fCoverage + word, by);
  if (carries) [[unlikely]]
    ReportOverflow(carries);
}

void hsSuperBlitter::Flush(bool clear) {
  AddWords(fHeld, fHeldBy);
  fHeld = {0, 0};
  fHeldBy = 0;
  const int32_t left = fBounds.fLeft, right = fBounds.fRight;
  if (!fClip) {
    fRealBlitter->BlitH(fCurrY, left, right - left);
  } else if (hsAssert(left < right, "HSScan assert failed")) {
    int32_t l = left, r = right;
    while (fClip->ClipSpan(fCurrY, &l, &r)) {
      fRealBlitter->fAlpha = Bytes() + (l - left);
      fRealBlitter->BlitH(fCurrY, l, r - l);
      if (r + 1 >= right) break;  // the pixel after a piece is never in the region
      l = r + 1;
      r = right;
    }
  }
  if (clear) std::fill_n(fCoverage, fWordCount, 0);
}
