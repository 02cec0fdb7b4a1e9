#include "gfx/vector/coveragesum.h"

#include <bit>
#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "platform/cpu.h"

#ifdef VISTREL_AVX2
#include <immintrin.h>
#endif

namespace {

constexpr int32_t kLanes = hsCoverageLanes;
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

#ifdef VISTREL_AVX2

VISTREL_AVX2 inline __m256i Load(const int16_t* from) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
}

// Returns all sums or'ed, eight lanes over eight.
VISTREL_AVX2 Words SumUpByAvx2(int16_t* changes, uint8_t* coverage, int32_t count) {
  const __m256i none = _mm256_setzero_si256(), lastOfHalf = _mm256_set1_epi16(0x0F0E);
  const __m256i lowBytes = _mm256_set1_epi64x(0x0E0C0A0806040200);
  __m256i last = none, all = none;  // last: in each lane
  for (int32_t x = 0; x < count; x += kLanes) {
    __m256i w = Load(changes + x);
    if (_mm256_testz_si256(w, w)) {
      const __m256i bytes = _mm256_shuffle_epi8(last, none);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(coverage + x), _mm256_castsi256_si128(bytes));
      for (; x + 3 * kLanes <= count; x += 2 * kLanes) {
        const __m256i next = _mm256_or_si256(Load(changes + x + kLanes), Load(changes + x + 2 * kLanes));
        if (!_mm256_testz_si256(next, next)) break;
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(coverage + x + kLanes), bytes);
      }
      continue;
    }
    w = _mm256_add_epi16(w, _mm256_slli_si256(w, 2));
    w = _mm256_add_epi16(w, _mm256_slli_si256(w, 4));
    w = _mm256_add_epi16(w, _mm256_slli_si256(w, 8));
    const __m256i lowHalfAbove = _mm256_permute2x128_si256(w, w, 0x08);
    w = _mm256_add_epi16(_mm256_add_epi16(w, last), _mm256_shuffle_epi8(lowHalfAbove, lastOfHalf));
    last = _mm256_shuffle_epi8(_mm256_permute4x64_epi64(w, 0xFF), lastOfHalf);
    all = _mm256_or_si256(all, w);
    const __m256i bytes = _mm256_permute4x64_epi64(_mm256_shuffle_epi8(w, lowBytes), 0x08);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(coverage + x), _mm256_castsi256_si128(bytes));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(changes + x), none);
  }
  return Words(_mm_or_si128(_mm256_castsi256_si128(all), _mm256_extracti128_si256(all, 1)));
}

#endif

}  // namespace

void hsSumUpCoveragePlain(int16_t* changes, uint8_t* coverage, int32_t count) {
  constexpr Words kNone{};
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

void hsSumUpCoverage(int16_t* changes, uint8_t* coverage, int32_t count) {
#ifdef VISTREL_AVX2
  if (hasAvx2()) return CheckBytes(SumUpByAvx2(changes, coverage, count));
#endif
  hsSumUpCoveragePlain(changes, coverage, count);
}
