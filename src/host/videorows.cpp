#include "host/videorows.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "host/color.h"
#include "platform/cpu.h"

#ifdef VISTREL_AVX2
#include <immintrin.h>
#endif

namespace {

// Every 16-bit pixel's desktop colour, worked out once by the exact rule.
const std::vector<uint32_t>& pixel16Table() {
  static const std::vector<uint32_t> table = [] {
    std::vector<uint32_t> colors(65536);
    for (uint32_t p = 0; p < 65536; ++p) colors[p] = yCrCbToRgb(widenPixel16(uint16_t(p)));
    return colors;
  }();
  return table;
}

uint64_t eightBytesAt(const void* pixels) {
  uint64_t eight;
  std::memcpy(&eight, pixels, sizeof eight);
  return eight;
}

// Pages are flat: eight bytes of pixels like those before are copied from what these have become.
template <class Pixel>
void convertByTable(const Pixel* source, uint32_t* destination, int count, const uint32_t* table) {
  constexpr int kEight = 8 / sizeof(Pixel);
  uint64_t seen = 0;
  std::array<uint32_t, kEight> converted;
  converted.fill(table[0]);
  for (; count >= kEight; count -= kEight, source += kEight, destination += kEight) {
    if (const uint64_t eight = eightBytesAt(source); eight != seen) {
      seen = eight;
      for (size_t i = 0; i < kEight; ++i) converted[i] = table[source[i]];
    }
    std::memcpy(destination, converted.data(), sizeof converted);
  }
  for (int i = 0; i < count; ++i) destination[i] = table[source[i]];
}

#ifdef VISTREL_AVX2

// The rule is one of doubles, but a step of luma is 340/73 of a step of red, green or blue. So in units of 1/73 luma is
// whole, what chroma adds can be cut to whole units, and 16 bits hold everything. The numbers were searched for; that
// all 65,536 pixels come to the same as by the rule is what the test tries.

constexpr int kBlock = 16;  // pixels in a register

VISTREL_AVX2 inline __m256i all(int value) {
  __m256i lanes = _mm256_set1_epi16(int16_t(value));
  asm("" : "+x"(lanes));  // a compiler that knew the value would make it anew for each block
  return lanes;
}

VISTREL_AVX2 inline __m256i plus(__m256i a, __m256i b) { return _mm256_add_epi16(a, b); }
VISTREL_AVX2 inline __m256i times(__m256i a, __m256i b) { return _mm256_mullo_epi16(a, b); }

struct Rule {
  // The steps that the rule doesn't cut: luma 4 to 58 and three quarters, chroma 2 to 30.
  VISTREL_AVX2 __m256i lumaOf(__m256i pixels) const {
    return _mm256_min_epu16(times(_mm256_max_epu16(_mm256_srli_epi16(pixels, 10), leastLuma), lumaStep), fullLuma);
  }
  VISTREL_AVX2 __m256i chromaOf(__m256i pixels) const {
    return _mm256_min_epu16(_mm256_max_epu16(_mm256_and_si256(pixels, fiveBits), leastChroma), mostChroma);
  }

  // What chroma adds to red and blue: a step's share, times 32, of its bits at the top.
  VISTREL_AVX2 __m256i redOf(__m256i cr) const {
    const __m256i share = _mm256_mulhi_epu16(_mm256_or_si256(_mm256_slli_epi16(cr, 11), redMore), redStep);
    return plus(share, _mm256_cmpeq_epi16(cr, redTie));
  }
  VISTREL_AVX2 __m256i blueOf(__m256i cb) const {
    return _mm256_mulhi_epu16(_mm256_or_si256(_mm256_slli_epi16(cb, 11), blueMore), blueStep);
  }
  // What it takes off green, the shares in units and 1,024ths.
  VISTREL_AVX2 __m256i greenOf(__m256i cr, __m256i cb) const {
    const __m256i parts = plus(plus(times(cr, greenCrParts), times(cb, greenCbParts)), greenMore);
    return plus(plus(times(cr, greenCr), times(cb, greenCb)), _mm256_srli_epi16(parts, 10));
  }

  // a - b units, at least none, in whole steps of a colour.
  VISTREL_AVX2 __m256i stepsOf(__m256i a, __m256i b) const {
    return _mm256_srli_epi16(_mm256_mulhi_epu16(_mm256_subs_epu16(a, b), perUnit), 6);
  }

  // Of a pixel without colour: all three are the same.
  VISTREL_AVX2 __m256i greyOf(__m256i pixels) const { return stepsOf(lumaOf(pixels), greyLess); }

  __m256i leastLuma, lumaStep, fullLuma, fiveBits, leastChroma, mostChroma;
  __m256i redMore, redStep, redTie, redLess;
  __m256i blueMore, blueStep, blueLess;
  __m256i greenCr, greenCrParts, greenCb, greenCbParts, greenMore, greenLuma;
  __m256i perUnit, greyLess, chromaBits, noChroma;
};

VISTREL_AVX2 inline Rule makeRule() {
  Rule r;
  constexpr int kLeastLuma = 4, kLumaStep = 340, kLess = kLeastLuma * kLumaStep;
  r.leastLuma = all(kLeastLuma);
  r.lumaStep = all(kLumaStep);
  r.fullLuma = all(255 * 73 + kLess);
  r.fiveBits = all(31);
  r.leastChroma = all(2);
  r.mostChroma = all(30);
  r.redMore = all(6);
  r.redStep = all(29784);
  r.redTie = all(18);  // the doubles lose half a step there
  r.redLess = all(14858 + kLess);
  r.blueMore = all(1);
  r.blueStep = all(37698);
  r.blueLess = all(18813 + kLess);
  r.greenCr = all(474);
  r.greenCrParts = all(699);
  r.greenCb = all(228);
  r.greenCbParts = all(715);
  r.greenMore = all(410);
  r.greenLuma = all(11290 - kLess);
  r.perUnit = all(57457);  // 1/73, over 2^22
  r.greyLess = _mm256_sub_epi16(r.redLess, r.redOf(all(16)));
  r.chromaBits = all(0x3FF);
  r.noChroma = all(0x210);
  return r;
}

VISTREL_AVX2 inline __m256i load(const uint16_t* source) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source));
}

VISTREL_AVX2 inline void convertBlock(const Rule& rule, const uint16_t* source, uint32_t* destination) {
  const __m256i pixels = load(source);
  const __m256i luma = rule.lumaOf(pixels);
  const __m256i cr = rule.chromaOf(_mm256_srli_epi16(pixels, 5)), cb = rule.chromaOf(pixels);
  const __m256i r = rule.stepsOf(plus(luma, rule.redOf(cr)), rule.redLess);
  const __m256i g = rule.stepsOf(plus(luma, rule.greenLuma), rule.greenOf(cr, cb));
  const __m256i b = rule.stepsOf(plus(luma, rule.blueOf(cb)), rule.blueLess);
  // Eight bytes of each in a half of a register, cut at 255, then dealt out.
  const __m256i blueRed = _mm256_packus_epi16(b, r), green = _mm256_packus_epi16(g, _mm256_setzero_si256());
  const __m256i blueGreen = _mm256_unpacklo_epi8(blueRed, green), redNone = _mm256_unpackhi_epi8(blueRed, green);
  const __m256i low = _mm256_unpacklo_epi16(blueGreen, redNone), high = _mm256_unpackhi_epi16(blueGreen, redNone);
  auto* const out = reinterpret_cast<__m256i*>(destination);
  _mm256_storeu_si256(out, _mm256_permute2x128_si256(low, high, 0x20));
  _mm256_storeu_si256(out + 1, _mm256_permute2x128_si256(low, high, 0x31));
}

VISTREL_AVX2 inline void convertGreyBlock(const Rule& rule, const uint16_t* source, uint32_t* destination) {
  const __m256i grey = rule.greyOf(load(source));
  const __m256i twice = _mm256_or_si256(grey, _mm256_slli_epi16(grey, 8));
  const __m256i low = _mm256_unpacklo_epi16(twice, grey), high = _mm256_unpackhi_epi16(twice, grey);
  auto* const out = reinterpret_cast<__m256i*>(destination);
  _mm256_storeu_si256(out, _mm256_permute2x128_si256(low, high, 0x20));
  _mm256_storeu_si256(out + 1, _mm256_permute2x128_si256(low, high, 0x31));
}

// Whether so many blocks have no colour.
template <int count>
VISTREL_AVX2 inline bool isGrey(const Rule& rule, const uint16_t* source) {
  __m256i coloured = _mm256_setzero_si256();
  for (int i = 0; i < count; ++i)
    coloured = _mm256_or_si256(coloured, _mm256_xor_si256(load(source + i * kBlock), rule.noChroma));
  return _mm256_testz_si256(coloured, rule.chromaBits);
}

VISTREL_AVX2 inline __m256i differencesToBefore(const uint16_t* source) {
  return _mm256_xor_si256(load(source - kBlock), load(source));
}

// Whether four blocks are each like the one before.
VISTREL_AVX2 inline bool goesOn(const uint16_t* source) {
  const __m256i first = _mm256_or_si256(differencesToBefore(source), differencesToBefore(source + kBlock));
  const __m256i second =
      _mm256_or_si256(differencesToBefore(source + 2 * kBlock), differencesToBefore(source + 3 * kBlock));
  const __m256i any = _mm256_or_si256(first, second);
  return _mm256_testz_si256(any, any);
}

// Pages are flat, or text in black and white, but what isn't goes on for a while: so four blocks are asked together how
// to convert them. The last block of a row may lie over others.
VISTREL_AVX2 void convertByAvx2(const uint16_t* source, uint32_t* destination, int stride, int width, int height) {
  const Rule rule = makeRule();
  for (; height > 0; --height, source += stride, destination += stride) {
    int x = 0;
    while (x + 4 * kBlock <= width) {
      if (x > 0 && goesOn(source + x)) {
        auto* out = reinterpret_cast<__m256i*>(destination + x);
        const __m256i first = _mm256_loadu_si256(out - 2), second = _mm256_loadu_si256(out - 1);
        do {
          for (int i = 0; i < 8; i += 2) {
            _mm256_storeu_si256(out++, first);
            _mm256_storeu_si256(out++, second);
          }
          x += 4 * kBlock;
        } while (x + 4 * kBlock <= width && goesOn(source + x));
      } else if (isGrey<4>(rule, source + x)) {
        for (int i = 0; i < 4; ++i, x += kBlock) convertGreyBlock(rule, source + x, destination + x);
      } else {
        for (int i = 0; i < 4; ++i, x += kBlock) convertBlock(rule, source + x, destination + x);
      }
    }
    for (; x < width; x += kBlock) {
      const int at = std::min(x, width - kBlock);
      if (isGrey<1>(rule, source + at))
        convertGreyBlock(rule, source + at, destination + at);
      else
        convertBlock(rule, source + at, destination + at);
    }
  }
}

// Rows of less than a block.
VISTREL_AVX2 void convertNarrowByAvx2(const uint16_t* source, uint32_t* destination, int stride, int width,
                                      int height) {
  const Rule rule = makeRule();
  std::array<uint16_t, kBlock> row{};
  std::array<uint32_t, kBlock> converted;
  for (; height > 0; --height, source += stride, destination += stride) {
    std::copy_n(source, width, row.begin());
    convertBlock(rule, row.data(), converted.data());
    std::copy_n(converted.begin(), width, destination);
  }
}

#endif

}  // namespace

void convertVideoRowsPlain(const uint16_t* source, uint32_t* destination, int stride, int width, int height) {
  for (; height > 0; --height, source += stride, destination += stride)
    convertByTable(source, destination, width, pixel16Table().data());
}

void convertVideoRows(const uint16_t* source, uint32_t* destination, int stride, int width, int height) {
#ifdef VISTREL_AVX2
  if (hasAvx2()) {
    const auto convert = width < kBlock ? convertNarrowByAvx2 : convertByAvx2;
    return convert(source, destination, stride, width, height);
  }
#endif
  convertVideoRowsPlain(source, destination, stride, width, height);
}

void convertIndexedRow(const uint8_t* source, uint32_t* destination, int count, const uint32_t* palette) {
  convertByTable(source, destination, count, palette);
}
