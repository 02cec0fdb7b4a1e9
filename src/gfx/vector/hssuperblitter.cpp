#include "gfx/vector/hssuperblitter.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "gfx/vector/hsregion.h"

namespace {

constexpr bool kIsLittle = std::endian::native == std::endian::little;
constexpr int kLow = kIsLittle ? 0 : 1;  // a word's byte

using Words = int16_t __attribute__((vector_size(16)));
using Bytes = uint8_t __attribute__((vector_size(16)));
using Pairs = uint64_t __attribute__((vector_size(16)));

Words LoadWords(const int16_t* from) {
  Words words;
  std::memcpy(&words, from, sizeof words);
  return words;
}

// Each lane to the one that is `lanes` further, within its four.
Words Moved(Words w, int lanes) { return Words(kIsLittle ? Pairs(w) << 16 * lanes : Pairs(w) >> 16 * lanes); }

// Each lane becomes the sum of those up to it and of carry's.
Words SumOf(Words w, Words carry) {
  w += Moved(w, 1);
  w += Moved(w, 2);
  const auto low = Words(__builtin_shufflevector(Pairs{}, Pairs(w), 0, 2));
  return w + __builtin_shufflevector(low, low, 0, 1, 2, 3, 7, 7, 7, 7) + carry;
}
Words LastOf(Words w) { return __builtin_shufflevector(w, w, 7, 7, 7, 7, 7, 7, 7, 7); }

// Of sixteen sums their low bytes.
Bytes BytesOf(Words first, Words second) {
  return __builtin_shufflevector(Bytes(first), Bytes(second), kLow, kLow + 2, kLow + 4, kLow + 6, kLow + 8, kLow + 10,
                                 kLow + 12, kLow + 14, kLow + 16, kLow + 18, kLow + 20, kLow + 22, kLow + 24, kLow + 26,
                                 kLow + 28, kLow + 30);
}

bool IsZero(Words w) { return (Pairs(w)[0] | Pairs(w)[1]) == 0; }

bool AreZero32(const int16_t* from) {
  return IsZero((LoadWords(from) | LoadWords(from + 8)) | (LoadWords(from + 16) | LoadWords(from + 24)));
}

// A byte that overflows is reported by its place in its four, the first one highest. The lanes hold sums.
void CheckBytes(Words sums) {
  static constexpr const char* kMessages[] = {"bad 24", "bad 16", "bad 8", "bad 0"};
  if (IsZero(sums & ~255)) [[likely]]
    return;
  int lane = 0;
  while ((sums[lane] & ~255) == 0) ++lane;
  hsAssert(false, kMessages[lane % 4]);
}

}  // namespace

hsSuperBlitter::hsSuperBlitter(const hsIntRect& bounds, const hsRegion* clip, hsGBlitter* realBlitter)
    : fBounds(bounds),
      fClip(clip),
      fRealBlitter(realBlitter),
      fCovered(realBlitter),
      fSuperLeft(bounds.fLeft * kSamples),
      fSuperTop(bounds.fTop * kSamples),
      fSuperWidth(bounds.Width() * kSamples),
      fSuperHeight(bounds.Height() * kSamples),
      fRowPixels((bounds.Width() + 2 + kLanes - 1) / kLanes * kLanes) {
  if (fRowPixels > kInlinePixels) {
    fManyChanges.reset(new int16_t[size_t(fRowPixels)]);
    fManyCoverage.reset(new uint8_t[size_t(fRowPixels)]);
    fChanges = fManyChanges.get();
    fCoverage = fManyCoverage.get();
  }
  std::fill_n(fChanges, fRowPixels, int16_t{0});
  if (!fClip) fRealBlitter->fAlpha = fCoverage;
}

void hsSuperBlitter::Finish() {
  if (fCurrY != kNoRow) Flush();
  fCurrY = kNoRow;
}

// From changes to coverage; no changes are left. Mostly nothing changes.
void hsSuperBlitter::SumUp() {
  constexpr Words kNone{};
  int16_t* const changes = fChanges;
  uint8_t* const coverage = fCoverage;
  const int32_t count = fRowPixels;
  Words last{}, all{};
  for (int32_t x = 0; x < count; x += kLanes) {
    Words first = LoadWords(changes + x), second = LoadWords(changes + x + kLanes / 2);
    if (IsZero(first | second)) {
      const Bytes bytes = BytesOf(last, last);
      std::memcpy(coverage + x, &bytes, sizeof bytes);
      for (; x + 3 * kLanes <= count && AreZero32(changes + x + kLanes); x += 2 * kLanes) {
        std::memcpy(coverage + x + kLanes, &bytes, sizeof bytes);
        std::memcpy(coverage + x + 2 * kLanes, &bytes, sizeof bytes);
      }
      continue;
    }
    first = SumOf(first, last);
    second = SumOf(second, LastOf(first));
    last = LastOf(second);
    all |= first | second;
    const Bytes bytes = BytesOf(first, second);
    std::memcpy(coverage + x, &bytes, sizeof bytes);
    std::memcpy(changes + x, &kNone, sizeof kNone);
    std::memcpy(changes + x + kLanes / 2, &kNone, sizeof kNone);
  }
  CheckBytes(all);
}

void hsSuperBlitter::Flush() {
  SumUp();
  const int32_t left = fBounds.fLeft, right = fBounds.fRight;
  if (!fClip) {
    fRealBlitter->BlitH(fCurrY, left, right - left);
  } else if (hsAssert(left < right, "HSScan assert failed")) {
    int32_t l = left, r = right;
    while (fClip->ClipSpan(fCurrY, &l, &r)) {
      fRealBlitter->fAlpha = fCoverage + (l - left);
      fRealBlitter->BlitH(fCurrY, l, r - l);
      if (r + 1 >= right) break;  // the pixel after a piece is never in the region
      l = r + 1;
      r = right;
    }
  }
}
