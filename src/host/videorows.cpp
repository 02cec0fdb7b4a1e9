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
// whole, what chroma adds can be rounded to whole units, and 16 bits hold everything. The numbers were searched for;
// that all 65,536 pixels come to the same as by the rule is what the test tries.

constexpr int kBlock = 16;  // pixels in a register

VISTREL_AVX2 inline __m256i all(int value) {
  __m256i lanes = _mm256_set1_epi16(int16_t(value));
  asm("" : "+x"(lanes));  // a compiler that knew the value would make it anew for each block
  return lanes;
}
// Numbers for the chroma of a pixel.
VISTREL_AVX2 inline __m256i allPairs(int cr, int cb) { return all(cr << 8 | cb); }

VISTREL_AVX2 inline __m256i plus(__m256i a, __m256i b) { return _mm256_add_epi16(a, b); }

struct Rule {
  // Luma, in units and with the half that rounds a colour. The rule cuts its steps to 4 and to 58 and three quarters.
  VISTREL_AVX2 __m256i lumaOf(__m256i pixels) const {
    const __m256i atTop = _mm256_adds_epu16(_mm256_and_si256(pixels, lumaBits), lumaAbove);
    return plus(_mm256_mulhi_epu16(_mm256_subs_epu16(atTop, lumaBelow), lumaStep), half);
  }
  // Cr and Cb in a byte each, in eighths of steps to either side of 16. The rule cuts them to 14 steps.
  VISTREL_AVX2 __m256i chromaOf(__m256i pixels) const {
    const __m256i bits = _mm256_blendv_epi8(_mm256_slli_epi16(pixels, 3), _mm256_slli_epi16(pixels, 6), crBits);
    const __m256i around16 = _mm256_xor_si256(_mm256_and_si256(bits, stepBits), signs);
    return _mm256_min_epi8(_mm256_max_epi8(around16, leastChroma), mostChroma);
  }

  // Units to steps of a colour; what is beyond 0 to 255 stays beyond.
  VISTREL_AVX2 __m256i stepsOf(__m256i units) const { return _mm256_srai_epi16(_mm256_mulhi_epi16(units, perUnit), 5); }

  VISTREL_AVX2 __m256i redOf(__m256i luma, __m256i chroma) const {
    const __m256i cr = _mm256_and_si256(chroma, crBits);
    // The doubles lose half a step at one Cr.
    const __m256i share = plus(_mm256_mulhrs_epi16(cr, redStep), _mm256_cmpeq_epi16(cr, redTie));
    return stepsOf(_mm256_adds_epi16(luma, share));
  }
  VISTREL_AVX2 __m256i blueOf(__m256i luma, __m256i chroma) const {
    return stepsOf(_mm256_adds_epi16(luma, _mm256_mulhrs_epi16(_mm256_slli_epi16(chroma, 8), blueStep)));
  }
  // Whole units a step, a few too many, and those made good.
  VISTREL_AVX2 __m256i greenOf(__m256i luma, __m256i chroma) const {
    const __m256i tooMany = _mm256_mulhrs_epi16(_mm256_maddubs_epi16(greenExcess, chroma), greenExcessStep);
    return stepsOf(plus(_mm256_sub_epi16(luma, _mm256_maddubs_epi16(greenSteps, chroma)), tooMany));
  }

  // Of a pixel without colour: all three are the same.
  VISTREL_AVX2 __m256i greyOf(__m256i pixels) const { return stepsOf(lumaOf(pixels)); }

  __m256i lumaBits, lumaAbove, lumaBelow, lumaStep, half;
  __m256i crBits, stepBits, signs, leastChroma, mostChroma;
  __m256i redStep, redTie, blueStep, greenSteps, greenExcess, greenExcessStep;
  __m256i perUnit, chromaBits, noChroma;
};

VISTREL_AVX2 inline Rule makeRule() {
  Rule r;
  constexpr int kLeastLuma = 4 << 10, kMostLuma = (58 << 10) + (3 << 8), kAbove = 0xFFFF - kMostLuma;
  r.lumaBits = all(0xFC00);
  r.lumaAbove = all(kAbove);
  r.lumaBelow = all(kAbove + kLeastLuma);
  r.lumaStep = all(340 << 6);
  r.half = all(73 / 2);
  r.crBits = allPairs(0xFF, 0);
  r.stepBits = allPairs(0xF8, 0xF8);
  r.signs = allPairs(0x80, 0x80);
  r.leastChroma = allPairs(-14 * 8 & 0xFF, -14 * 8 & 0xFF);
  r.mostChroma = allPairs(14 * 8, 14 * 8);
  r.redStep = all(14892);  // 930 3/4 units
  r.redTie = allPairs(2 * 8, 0);
  r.blueStep = all(18849);  // 1,178 units
  r.greenSteps = allPairs(60, 33);
  r.greenExcess = allPairs(36, 239);
  r.greenExcessStep = all(605);
  r.perUnit = all(28729);  // 1/73, over 2^21
  r.chromaBits = all(0x3FF);
  r.noChroma = all(0x210);
  return r;
}

VISTREL_AVX2 inline __m256i load(const uint16_t* source) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source));
}

// With the second quarter and the third exchanged: what is dealt out by halves of a register comes to lie in order.
VISTREL_AVX2 inline __m256i loadToDeal(const uint16_t* source) { return _mm256_permute4x64_epi64(load(source), 0xD8); }

// Two bytes of each pixel and its other two.
VISTREL_AVX2 inline void deal(__m256i blueGreen, __m256i redNone, uint32_t* destination) {
  auto* const out = reinterpret_cast<__m256i*>(destination);
  _mm256_storeu_si256(out, _mm256_unpacklo_epi16(blueGreen, redNone));
  _mm256_storeu_si256(out + 1, _mm256_unpackhi_epi16(blueGreen, redNone));
}

VISTREL_AVX2 inline void convertBlock(const Rule& rule, const uint16_t* source, uint32_t* destination) {
  const __m256i pixels = loadToDeal(source), luma = rule.lumaOf(pixels), chroma = rule.chromaOf(pixels);
  const __m256i r = rule.redOf(luma, chroma), g = rule.greenOf(luma, chroma), b = rule.blueOf(luma, chroma);
  // Eight bytes of each in a half of a register, cut to 0 to 255.
  const __m256i blueRed = _mm256_packus_epi16(b, r), green = _mm256_packus_epi16(g, _mm256_setzero_si256());
  deal(_mm256_unpacklo_epi8(blueRed, green), _mm256_unpackhi_epi8(blueRed, green), destination);
}

VISTREL_AVX2 inline void convertGreyBlock(const Rule& rule, const uint16_t* source, uint32_t* destination) {
  const __m256i grey = rule.greyOf(loadToDeal(source));
  deal(_mm256_or_si256(grey, _mm256_slli_epi16(grey, 8)), grey, destination);
}

VISTREL_AVX2 inline bool isNothing(__m256i bits) { return _mm256_testz_si256(bits, bits); }

// Whether so many blocks have no colour. Among colours the first one tells.
template <int count>
VISTREL_AVX2 inline bool isGrey(const Rule& rule, const uint16_t* source) {
  __m256i coloured = _mm256_xor_si256(load(source), rule.noChroma);
  if (!_mm256_testz_si256(coloured, rule.chromaBits)) return false;
  for (int i = 1; i < count; ++i)
    coloured = _mm256_or_si256(coloured, _mm256_xor_si256(load(source + i * kBlock), rule.noChroma));
  return _mm256_testz_si256(coloured, rule.chromaBits);
}

VISTREL_AVX2 inline __m256i differencesToBefore(const uint16_t* source) {
  return _mm256_xor_si256(load(source - kBlock), load(source));
}

// Whether four blocks are each like the one before.
VISTREL_AVX2 inline bool goesOn(const uint16_t* source) {
  return isNothing(differencesToBefore(source)) &&
         isNothing(_mm256_or_si256(
             _mm256_or_si256(differencesToBefore(source + kBlock), differencesToBefore(source + 2 * kBlock)),
             differencesToBefore(source + 3 * kBlock)));
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
